#include "database/eds_Array.h"
#include "base/utl_Assert.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Buffer.h"
#include "base/utl_File.h"
#include "database/KvoSimPosition.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Store.h"
#include <algorithm>
#include <cstring>

KvoSimPosition eds_ArrayID::Position() const {
  return KvoSimPosition(store, eds_ObjectID(eds_RecordKind::Array, id));
}

// ---- writing

struct eds_ArrayWriter::Impl {
  eds_Store* store;
  int64_t id;
  eds_ValueType type;
  int64_t itemBytes;
  int64_t itemsPerChunk;
  int64_t written = 0;        // items in whole chunks
  utl_Buffer<std::byte> tail; // items behind them
  int64_t patchNumber = -1;   // a written chunk taken back for changes
  utl_Buffer<std::byte> patch;
  bool ownsTransaction = false; // nobody had opened one
  bool finished = false;

  // Unfinished only when an exception passes: the transaction takes everything back.
  ~Impl() {
    if (finished || !ownsTransaction) return;
    try {
      store->Abandon();
    } catch (const std::exception&) { // of the engine, or for lack of memory
      store->Engine().MarkFailed();
    }
  }

  int64_t ChunkBytes() const { return itemsPerChunk * itemBytes; }
  int64_t Count() const { return written + static_cast<int64_t>(tail.Size()) / itemBytes; }

  void Write(int64_t number, std::span<const std::byte> bytes) {
    store->BeforeChunk();
    store->Chunks().Write(id, number, bytes);
  }

  void WritePatch() {
    if (patchNumber >= 0) Write(patchNumber, patch);
    patchNumber = -1;
  }

  void TakePatch(int64_t number) {
    if (patchNumber == number) return;
    WritePatch();
    patch.Resize(static_cast<size_t>(ChunkBytes()));
    store->Chunks().Read(id, number, patch);
    patchNumber = number;
  }

  // A chunk's memory goes from one array to the next: fresh memory costs as much as the copy.
  void MakeRoom(size_t bytes) {
    constexpr size_t few = 4096;
    if (bytes <= tail.Capacity() || bytes <= few) return;
    utl_Buffer<std::byte> larger = store->Chunks().TakeBuffer();
    if (larger.Capacity() < bytes) return;
    larger.Append(std::span<const std::byte>(tail));
    tail = std::move(larger);
  }

  void SetCount() { store->Rows(eds_RecordKind::Array).SetInt(id, eds_Array_Count, Count()); }
};

namespace {

int64_t itemsPerChunk(int64_t itemBytes) {
  return std::max<int64_t>(1, utl_blockSize(eds_chunkBytes) / itemBytes);
}

} // namespace

eds_ArrayWriter::eds_ArrayWriter(eds_Store* store, eds_ValueType type, int width) {
  utl_ASSERT(width > 0);
  m_impl = std::make_unique<Impl>();
  m_impl->store = store;
  m_impl->type = type;
  m_impl->itemBytes = eds_sizeOf(type) * width;
  m_impl->itemsPerChunk = itemsPerChunk(m_impl->itemBytes);
  if (!store->InTransaction()) {
    store->Begin();
    m_impl->ownsTransaction = true;
  }
  eds_RowTable& rows = store->Rows(eds_RecordKind::Array);
  m_impl->id = rows.Create();
  rows.SetInt(m_impl->id, eds_Array_ValueType, static_cast<int64_t>(type));
  rows.SetInt(m_impl->id, eds_Array_Width, width);
  rows.SetInt(m_impl->id, eds_Array_ItemsPerChunk, m_impl->itemsPerChunk);
  m_impl->SetCount();
}

eds_ArrayWriter::eds_ArrayWriter(const KvoSimPosition& anyObject, eds_ValueType type, int width)
    : eds_ArrayWriter(anyObject.Store(), type, width) {}

eds_ArrayWriter::eds_ArrayWriter(eds_ArrayWriter&&) noexcept = default;
eds_ArrayWriter& eds_ArrayWriter::operator=(eds_ArrayWriter&&) noexcept = default;

eds_ArrayWriter::~eds_ArrayWriter() = default;

eds_ArrayID eds_ArrayWriter::ID() const {
  return {m_impl->store, m_impl->id};
}
int64_t eds_ArrayWriter::Count() const {
  return m_impl->Count();
}

void eds_ArrayWriter::AppendBytes(std::span<const std::byte> bytes, eds_ValueType type) {
  Impl& impl = *m_impl;
  utl_ASSERT(type == impl.type && !impl.finished);
  utl_ASSERT(static_cast<int64_t>(bytes.size()) % impl.itemBytes == 0);
  const auto chunkBytes = static_cast<size_t>(impl.ChunkBytes());
  while (!bytes.empty()) {
    if (impl.tail.IsEmpty() && bytes.size() >= chunkBytes) {
      impl.Write(impl.written / impl.itemsPerChunk, bytes.first(chunkBytes));
      impl.written += impl.itemsPerChunk;
      bytes = bytes.subspan(chunkBytes);
      continue;
    }
    const size_t taken = std::min(bytes.size(), chunkBytes - impl.tail.Size());
    impl.MakeRoom(impl.tail.Size() + taken);
    impl.tail.Append(bytes.first(taken));
    bytes = bytes.subspan(taken);
    if (impl.tail.Size() < chunkBytes) continue;
    impl.Write(impl.written / impl.itemsPerChunk, impl.tail);
    impl.written += impl.itemsPerChunk;
    impl.tail.Clear();
  }
}

void eds_ArrayWriter::AppendItems(std::span<const std::byte> bytes) {
  AppendBytes(bytes, m_impl->type);
}

void eds_ArrayWriter::OverwriteBytes(int64_t firstItem, std::span<const std::byte> bytes,
                                     eds_ValueType type) {
  Impl& impl = *m_impl;
  utl_ASSERT(type == impl.type && !impl.finished);
  const int64_t count = static_cast<int64_t>(bytes.size()) / impl.itemBytes;
  utl_ASSERT(firstItem >= 0 && firstItem + count <= impl.Count());
  while (!bytes.empty()) {
    const bool inTail = firstItem >= impl.written;
    const int64_t number = firstItem / impl.itemsPerChunk;
    if (!inTail) impl.TakePatch(number);
    utl_Buffer<std::byte>& chunk = inTail ? impl.tail : impl.patch;
    const auto offset = static_cast<size_t>(firstItem % impl.itemsPerChunk * impl.itemBytes);
    const size_t taken = std::min(bytes.size(), chunk.Size() - offset);
    std::memcpy(chunk.Data() + offset, bytes.data(), taken);
    bytes = bytes.subspan(taken);
    firstItem += static_cast<int64_t>(taken) / impl.itemBytes;
  }
}

void eds_ArrayWriter::ReadBytes(int64_t item, std::span<std::byte> bytes, eds_ValueType type) {
  Impl& impl = *m_impl;
  utl_ASSERT(type == impl.type && !impl.finished);
  utl_ASSERT(item >= 0 && item < impl.Count());
  utl_ASSERT(static_cast<int64_t>(bytes.size()) == impl.itemBytes);
  const bool inTail = item >= impl.written;
  if (!inTail) impl.TakePatch(item / impl.itemsPerChunk);
  const utl_Buffer<std::byte>& chunk = inTail ? impl.tail : impl.patch;
  std::memcpy(bytes.data(), chunk.Data() + item % impl.itemsPerChunk * impl.itemBytes,
              bytes.size());
}

eds_ArrayID eds_ArrayWriter::Finish() {
  Impl& impl = *m_impl;
  utl_ASSERT(!impl.finished);
  impl.WritePatch();
  if (!impl.tail.IsEmpty()) impl.Write(impl.written / impl.itemsPerChunk, impl.tail);
  impl.SetCount();
  impl.finished = true;
  if (impl.ownsTransaction) impl.store->Commit();
  const eds_ArrayID array = ID();
  impl.store->Chunks().KeepBuffer(std::move(impl.tail));
  impl.patch = {};
  return array;
}

// ---- reading

struct eds_ArrayReader::Impl {
  eds_Store* store;
  int64_t id;
  eds_ValueType type;
  int width;
  int64_t count;
  int64_t itemsPerChunk;
  int64_t loaded = -1; // the chunk held
  utl_Buffer<std::byte> chunk;

  int64_t ItemBytes() const { return eds_sizeOf(type) * width; }
  int64_t ChunkCount() const { return (count + itemsPerChunk - 1) / itemsPerChunk; }
  int64_t ItemsOf(int64_t number) const {
    return std::min(itemsPerChunk, count - number * itemsPerChunk);
  }
};

namespace {

[[noreturn]] void damagedArray(eds_Store& store, int64_t id) {
  throw eds_DamagedFileException("\"" + utl_pathText(store.Path()) + "\" is damaged: array " +
                                 std::to_string(id) + ": not as it should be described");
}

} // namespace

eds_ArrayReader::eds_ArrayReader(const eds_ArrayID& array) {
  utl_ASSERT(array.store != nullptr);
  eds_RowTable& rows = array.store->Rows(eds_RecordKind::Array);
  if (!rows.Has(array.id)) damagedArray(*array.store, array.id);
  m_impl = std::make_unique<Impl>();
  m_impl->store = array.store;
  m_impl->id = array.id;
  const int64_t type = rows.Int(array.id, eds_Array_ValueType);
  const int64_t width = rows.Int(array.id, eds_Array_Width);
  m_impl->count = rows.Int(array.id, eds_Array_Count);
  m_impl->itemsPerChunk = rows.Int(array.id, eds_Array_ItemsPerChunk);
  constexpr int64_t widest = 1 << 20;
  if (type < 0 || type > 3 || width < 1 || width > widest) damagedArray(*array.store, array.id);
  m_impl->type = static_cast<eds_ValueType>(type);
  m_impl->width = static_cast<int>(width);
  const bool described = m_impl->itemsPerChunk == itemsPerChunk(m_impl->ItemBytes()) &&
                         m_impl->count >= 0 &&
                         m_impl->count / m_impl->itemsPerChunk < eds_mostChunks;
  if (!described) damagedArray(*array.store, array.id);
  // Before anybody makes room for what the record promises.
  array.store->Chunks().CheckExtent(array.id, m_impl->ChunkCount(),
                                    m_impl->count * m_impl->ItemBytes());
}

eds_ArrayReader::~eds_ArrayReader() = default;
eds_ArrayReader::eds_ArrayReader(eds_ArrayReader&&) noexcept = default;
eds_ArrayReader& eds_ArrayReader::operator=(eds_ArrayReader&&) noexcept = default;

eds_ValueType eds_ArrayReader::ValueType() const {
  return m_impl->type;
}
int eds_ArrayReader::Width() const {
  return m_impl->width;
}
int64_t eds_ArrayReader::Count() const {
  return m_impl->count;
}
int64_t eds_ArrayReader::ItemsPerChunk() const {
  return m_impl->itemsPerChunk;
}
int64_t eds_ArrayReader::ChunkCount() const {
  return m_impl->ChunkCount();
}

std::span<const std::byte> eds_ArrayReader::ChunkBytes(int64_t number) {
  Impl& impl = *m_impl;
  utl_ASSERT(number >= 0 && number < impl.ChunkCount());
  if (impl.loaded != number) {
    impl.loaded = -1;
    impl.chunk.Resize(static_cast<size_t>(impl.ItemsOf(number) * impl.ItemBytes()));
    impl.store->Chunks().Read(impl.id, number, impl.chunk);
    impl.loaded = number;
  }
  return impl.chunk;
}

std::span<const std::byte> eds_ArrayReader::ChunkBytes(int64_t number, eds_ValueType type) {
  if (type != m_impl->type) damagedArray(*m_impl->store, m_impl->id);
  return ChunkBytes(number);
}

void eds_ArrayReader::ReadBytes(int64_t firstItem, std::span<std::byte> out, eds_ValueType type) {
  Impl& impl = *m_impl;
  if (type != impl.type) damagedArray(*impl.store, impl.id);
  const int64_t itemBytes = impl.ItemBytes();
  utl_ASSERT(static_cast<int64_t>(out.size()) % itemBytes == 0);
  utl_ASSERT(firstItem >= 0 &&
             firstItem + static_cast<int64_t>(out.size()) / itemBytes <= impl.count);
  while (!out.empty()) {
    const int64_t number = firstItem / impl.itemsPerChunk;
    const int64_t skipped = firstItem % impl.itemsPerChunk;
    const auto whole = static_cast<size_t>(impl.ItemsOf(number) * itemBytes);
    size_t taken = 0;
    if (skipped == 0 && out.size() >= whole && impl.loaded != number) {
      taken = whole; // straight into the caller's memory
      impl.store->Chunks().Read(impl.id, number, out.first(whole));
    } else {
      const std::span<const std::byte> chunk = ChunkBytes(number);
      const auto offset = static_cast<size_t>(skipped * itemBytes);
      taken = std::min(out.size(), chunk.size() - offset);
      std::memcpy(out.data(), chunk.data() + offset, taken);
    }
    out = out.subspan(taken);
    firstItem += static_cast<int64_t>(taken) / itemBytes;
  }
}

void eds_ArrayReader::ReadItems(int64_t firstItem, std::span<std::byte> out) {
  ReadBytes(firstItem, out, m_impl->type);
}

// ---- changing

void eds_updateArray(const eds_ArrayID& array, int64_t firstItem,
                     std::span<const std::byte> bytes) {
  eds_Store& store = *array.store;
  utl_ASSERT(store.InTransaction());
  eds_RowTable& rows = store.Rows(eds_RecordKind::Array);
  eds_ArrayReader reader(array); // checks the description
  const int64_t itemBytes = eds_sizeOf(reader.ValueType()) * reader.Width();
  const int64_t perChunk = reader.ItemsPerChunk();
  int64_t count = reader.Count();
  utl_ASSERT(static_cast<int64_t>(bytes.size()) % itemBytes == 0);
  utl_ASSERT(firstItem >= 0 && firstItem <= count);
  std::vector<std::byte> chunk;
  while (!bytes.empty()) {
    const int64_t number = firstItem / perChunk;
    const int64_t held = std::clamp<int64_t>(count - number * perChunk, 0, perChunk);
    const int64_t skipped = firstItem % perChunk;
    const int64_t taken =
        std::min(static_cast<int64_t>(bytes.size()) / itemBytes, perChunk - skipped);
    chunk.resize(static_cast<size_t>(held * itemBytes));
    if (held > 0) store.Chunks().Read(array.id, number, chunk);
    chunk.resize(static_cast<size_t>(std::max(held, skipped + taken) * itemBytes));
    const auto takenBytes = static_cast<size_t>(taken * itemBytes);
    std::memcpy(chunk.data() + skipped * itemBytes, bytes.data(), takenBytes);
    store.BeforeChunk();
    store.Chunks().Write(array.id, number, chunk);
    bytes = bytes.subspan(takenBytes);
    firstItem += taken;
    count = std::max(count, firstItem);
  }
  rows.SetInt(array.id, eds_Array_Count, count);
}
