#include "database/engine/eds_ChunkStore.h"
#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "base/utl_Interruption.h"
#include "database/eds_Exception.h"
#include <bit>
#include <cstring>
#define XXH_INLINE_ALL
#include <xxhash.h>

// Chunks are little-endian on disk and go there as they lie in memory.
static_assert(std::endian::native == std::endian::little);

namespace {

int64_t chunkID(int64_t array, int64_t number) {
  return array * eds_mostChunks + number;
}

int64_t checksumOf(std::span<const std::byte> bytes) {
  return static_cast<int64_t>(XXH3_64bits(bytes.data(), bytes.size()));
}

} // namespace

void eds_ChunkStore::Damaged(int64_t array, const cow_String& what) const {
  throw eds_DamagedFileException("\"" + utl_pathText(m_engine.File()) + "\" is damaged: array " +
                                 std::to_string(array) + ": " + what);
}

void eds_ChunkStore::Write(int64_t array, int64_t number, std::span<const std::byte> bytes) {
  utl_ASSERT(number >= 0 && number < eds_mostChunks);
  if (m_insert == nullptr)
    m_insert = &m_engine.Prepare("INSERT OR REPLACE INTO chunk VALUES (?, ?, ?, ?, ?)");
  m_insert->Bind(1, chunkID(array, number));
  m_insert->Bind(2, array);
  m_insert->Bind(3, number);
  m_insert->Bind(4, checksumOf(bytes));
  m_insert->BindBytes(5, bytes);
  m_insert->Run();
}

void eds_ChunkStore::Read(int64_t array, int64_t number, std::span<std::byte> out) {
  utl_stopIfAsked();
  if (m_select == nullptr)
    m_select = &m_engine.Prepare("SELECT checksum, data FROM chunk WHERE id = ?");
  m_select->Bind(1, chunkID(array, number));
  if (!m_select->Step()) {
    m_select->Reset();
    Damaged(array, "chunk " + std::to_string(number) + " is missing");
  }
  const int64_t checksum = m_select->Int(0);
  const std::span<const std::byte> bytes = m_select->Bytes(1);
  const bool right = bytes.size() == out.size();
  if (right && !out.empty()) std::memcpy(out.data(), bytes.data(), out.size());
  m_select->Reset();
  if (!right) Damaged(array, "chunk " + std::to_string(number) + " has the wrong length");
  if (checksumOf(out) != checksum)
    Damaged(array, "chunk " + std::to_string(number) + " does not match its checksum");
}

void eds_ChunkStore::CheckExtent(int64_t array, int64_t chunks, int64_t bytes) {
  if (m_extent == nullptr)
    m_extent = &m_engine.Prepare(
        "SELECT count(*), total(length(data)) FROM chunk WHERE id >= ? AND id < ?");
  m_extent->Bind(1, chunkID(array, 0));
  m_extent->Bind(2, chunkID(array + 1, 0));
  m_extent->Step();
  const int64_t foundChunks = m_extent->Int(0);
  const double foundBytes = m_extent->Real(1);
  m_extent->Reset();
  if (foundChunks != chunks || foundBytes != static_cast<double>(bytes))
    Damaged(array, "its chunks do not make up its length");
}

void eds_ChunkStore::Remove(int64_t array) {
  eds_Statement remove(m_engine, "DELETE FROM chunk WHERE id >= ? AND id < ?");
  remove.Bind(1, chunkID(array, 0));
  remove.Bind(2, chunkID(array + 1, 0));
  remove.Run();
}

utl_Buffer<std::byte> eds_ChunkStore::TakeBuffer() {
  utl_Buffer<std::byte> taken;
  for (utl_Buffer<std::byte>& spare : m_spare)
    if (spare.Capacity() > taken.Capacity()) taken.Swap(spare);
  return taken;
}

void eds_ChunkStore::KeepBuffer(utl_Buffer<std::byte> buffer) noexcept {
  constexpr std::size_t worthIt = 64 << 10;
  if (buffer.Capacity() < worthIt) return;
  buffer.Clear();
  for (utl_Buffer<std::byte>& spare : m_spare)
    if (spare.Capacity() < buffer.Capacity()) spare.Swap(buffer);
}
