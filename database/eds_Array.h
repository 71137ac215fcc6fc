#pragma once

#include "database/eds_Type.h"
#include <memory>
#include <span>
#include <type_traits>

class eds_Store;
class KvoSimPosition;

// Bulk arrays: items of `width` values of one type, kept in chunks of about 1 MiB with a checksum
// each. Sizes are 64-bit. Arrays are named by their record, so that several records may share one.

// The value type of a C++ type.
template <class T> constexpr eds_ValueType eds_valueTypeOf() {
  static_assert(std::is_same_v<T, int32_t> || std::is_same_v<T, int64_t> ||
                std::is_same_v<T, double> || std::is_same_v<T, char>);
  if constexpr (std::is_same_v<T, int32_t>) return eds_ValueType::Int32;
  if constexpr (std::is_same_v<T, int64_t>) return eds_ValueType::Int64;
  if constexpr (std::is_same_v<T, double>) return eds_ValueType::Double;
  return eds_ValueType::Byte;
}

// Names one stored array; 0 = none.
struct eds_ArrayID {
  eds_Store* store = nullptr;
  int64_t id = 0;
  bool IsNull() const { return id == 0; }
  KvoSimPosition Position() const;
  friend bool operator==(const eds_ArrayID&, const eds_ArrayID&) = default;
};

// Writes a new array from its front to its end, as the values come. Whole chunks go to the engine
// straight from the caller's memory; at most one chunk is buffered. Made inside a transaction and
// finished before that commits.
class eds_ArrayWriter {
public:
  eds_ArrayWriter(eds_Store* store, eds_ValueType type, int width);
  eds_ArrayWriter(const KvoSimPosition& anyObject, eds_ValueType type, int width);
  ~eds_ArrayWriter(); // an unfinished array is left as far as whole chunks went
  eds_ArrayWriter(eds_ArrayWriter&&) noexcept;
  eds_ArrayWriter& operator=(eds_ArrayWriter&&) noexcept;

  eds_ArrayID ID() const;
  int64_t Count() const; // items so far

  // Whole items only: the length is a multiple of the width.
  template <class T> void Append(std::span<const T> values) {
    AppendBytes(std::as_bytes(values), eds_valueTypeOf<T>());
  }
  void AppendItems(std::span<const std::byte> bytes); // of the array's type
  // Replaces items already appended, whether buffered or written.
  template <class T> void Overwrite(int64_t firstItem, std::span<const T> values) {
    OverwriteBytes(firstItem, std::as_bytes(values), eds_valueTypeOf<T>());
  }
  // An item as it stands, before it is overwritten.
  template <class T> void ReadItem(int64_t item, std::span<T> values) {
    ReadBytes(item, std::as_writable_bytes(values), eds_valueTypeOf<T>());
  }
  eds_ArrayID Finish();

private:
  void ReadBytes(int64_t item, std::span<std::byte> bytes, eds_ValueType type);
  void AppendBytes(std::span<const std::byte> bytes, eds_ValueType type);
  void OverwriteBytes(int64_t firstItem, std::span<const std::byte> bytes, eds_ValueType type);
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Reads a stored array by the piece; holds one chunk. Checksum, size and bounds are checked as each
// chunk is read (eds_DamagedFileException).
class eds_ArrayReader {
public:
  explicit eds_ArrayReader(const eds_ArrayID& array);
  ~eds_ArrayReader();
  eds_ArrayReader(eds_ArrayReader&&) noexcept;
  eds_ArrayReader& operator=(eds_ArrayReader&&) noexcept;

  eds_ValueType ValueType() const;
  int Width() const;
  int64_t Count() const; // items
  int64_t ItemsPerChunk() const;
  int64_t ChunkCount() const;

  // The items from `firstItem` on, as many as the buffer takes (a multiple of the width).
  template <class T> void ReadPiece(int64_t firstItem, std::span<T> out) {
    ReadBytes(firstItem, std::as_writable_bytes(out), eds_valueTypeOf<T>());
  }
  void ReadItems(int64_t firstItem, std::span<std::byte> out); // of the array's type
  // One chunk in the reader's own memory, valid until the next call.
  template <class T> std::span<const T> Chunk(int64_t number) {
    std::span<const std::byte> bytes = ChunkBytes(number, eds_valueTypeOf<T>());
    return {reinterpret_cast<const T*>(bytes.data()), bytes.size() / sizeof(T)};
  }
  std::span<const std::byte> ChunkBytes(int64_t number);

private:
  void ReadBytes(int64_t firstItem, std::span<std::byte> out, eds_ValueType type);
  std::span<const std::byte> ChunkBytes(int64_t number, eds_ValueType type);
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};

// Replaces items of a stored array in place, or appends behind its end.
void eds_updateArray(const eds_ArrayID& array, int64_t firstItem, std::span<const std::byte> bytes);
