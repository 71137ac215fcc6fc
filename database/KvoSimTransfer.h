#pragma once

#include "database/KvoSimDistribution.h"

// How the caller's buffer is laid out: item by item, or component by component.
enum class KvoSerialization { ByItem, ByComponent };

// Bulk read and write of a distribution's values through the caller's buffer. The buffer holds the
// window of SetDim / SetDims: some items, some of their components. It is not copied when it holds
// whole items one after the other.
class KvoSimTransfer {
public:
  explicit KvoSimTransfer(const KvoSimDistribution& distribution);

  void SetDrawer(int64_t drawer);                  // an existing one
  void SetMakeNewDrawer(const KvoSimCSetID& over); // ExecMake will create it
  // The same, written a piece at a time: ExecMake creates it empty, ExecWrite appends. Pieces of
  // `itemsHint` items are expected; chunks on disk keep their usual size.
  void SetMakeNewDrawerChunked(const KvoSimCSetID& over, int64_t itemsHint);

  // The window: dimension 0 is the items, dimension 1 the values of an item.
  void SetDim(int dimension, int64_t first, int64_t count);
  void SetDims(std::span<const int64_t> counts);               // from 0 on
  void SetDimExtension(int64_t items) { m_extension = items; } // items ExecMake adds, initialised
  void SetExtendableDim(int dimension);                        // only dimension 0 can grow
  void SetAutoExtend(bool on) { m_autoExtend = on; }           // writing past the end grows

  template <class T> void SetBuffer(std::span<T> buffer) {
    using Value = std::remove_const_t<T>;
    SetBufferBytes(reinterpret_cast<std::byte*>(const_cast<Value*>(buffer.data())),
                   static_cast<int64_t>(buffer.size_bytes()), eds_valueTypeOf<Value>());
  }
  void SetBufferType(eds_ValueType type); // asserts that it is the distribution's
  void SetBufferPadding(int64_t values) { m_padding = values; } // unused values behind each item
  void SetSerialization(KvoSerialization order) { m_serialization = order; }
  void SetInitializationValue(double value) { m_initial = value; }
  // Only the first `items` items come from the buffer; ExecMake fills the rest with the
  // initialisation value.
  void SetSparseNNonzero(int64_t items) { m_sparse = items; }
  void SetRead() { m_write = false; }
  void SetWrite() { m_write = true; }

  int64_t ExecMake(); // creates the drawer, with the buffer's values if one is set; its number
  void ExecRead();
  void ExecWrite();
  void Exec() { m_write ? ExecWrite() : ExecRead(); }
  void RelinquishBuffers();
  int64_t RequiredBufferSize() const; // bytes

private:
  void SetBufferBytes(std::byte* data, int64_t size, eds_ValueType type);
  struct Window;
  Window CurrentWindow() const;
  void Gather(const Window& window, int64_t item, int64_t count, std::byte* out) const;
  void Scatter(const Window& window, int64_t item, int64_t count, const std::byte* in) const;
  bool IsPlain(const Window& window) const;
  void AppendBuffer(eds_ArrayWriter& writer, const Window& window, int64_t items);
  void AppendInitial(eds_ArrayWriter& writer, int64_t items);

  KvoSimDistribution m_distribution;
  KvoSimRangeType m_range;
  KvoSimCSetID m_over;
  int64_t m_drawer = 0;
  bool m_makeEmpty = false;
  std::byte* m_buffer = nullptr;
  int64_t m_bufferSize = 0;
  int64_t m_first[2] = {0, 0};
  int64_t m_count[2] = {-1, -1}; // -1: all
  int64_t m_extension = 0;
  int64_t m_padding = 0;
  int64_t m_sparse = -1;
  double m_initial = 0;
  bool m_autoExtend = false;
  bool m_write = false;
  KvoSerialization m_serialization = KvoSerialization::ByItem;
};
