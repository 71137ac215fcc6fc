#pragma once

#include "base/utl_Buffer.h"
#include "database/engine/eds_Engine.h"
#include <array>
#include <cstddef>

// The chunks of bulk arrays: one row each with a checksum (64-bit XXH3).
constexpr int64_t eds_chunkBytes = int64_t{1} << 20;
constexpr int64_t eds_mostChunks = int64_t{1} << 24; // of one array

class eds_ChunkStore {
public:
  explicit eds_ChunkStore(eds_Engine& engine) : m_engine(engine) {}

  void Write(int64_t array, int64_t number, std::span<const std::byte> bytes);
  // Into a buffer of exactly the chunk's size; throws when chunk, size or checksum are not right.
  void Read(int64_t array, int64_t number, std::span<std::byte> out);
  // Throws unless the array has so many chunks with so many bytes in all. Does not read them.
  void CheckExtent(int64_t array, int64_t chunks, int64_t bytes);
  void Remove(int64_t array);

  // Empty memory for a chunk, such as another one left behind, or none; and what one leaves behind.
  utl_Buffer<std::byte> TakeBuffer();
  void KeepBuffer(utl_Buffer<std::byte> buffer) noexcept;

private:
  [[noreturn]] void Damaged(int64_t array, const cow_String& what) const;

  eds_Engine& m_engine;
  eds_Statement* m_insert = nullptr;
  eds_Statement* m_select = nullptr;
  eds_Statement* m_extent = nullptr;
  std::array<utl_Buffer<std::byte>, 4> m_spare;
};
