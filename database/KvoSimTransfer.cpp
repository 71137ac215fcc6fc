#include "database/KvoSimTransfer.h"
#include "base/utl_Assert.h"
#include "base/utl_BlockSize.h"
#include "database/KvoSimPosition.h"
#include "database/engine/eds_Store.h"
#include <algorithm>
#include <cstring>

// What of the drawer goes through the buffer.
struct KvoSimTransfer::Window {
  int64_t firstItem;
  int64_t items;
  int64_t firstValue;
  int64_t values;
  int64_t held; // items in the drawer
};

KvoSimTransfer::KvoSimTransfer(const KvoSimDistribution& distribution)
    : m_distribution(distribution), m_range(distribution.RangeType()) {}

void KvoSimTransfer::SetDrawer(int64_t drawer) {
  m_drawer = drawer;
  m_makeEmpty = false;
}

void KvoSimTransfer::SetMakeNewDrawer(const KvoSimCSetID& over) {
  m_over = over;
  m_drawer = 0;
  m_makeEmpty = false;
}

void KvoSimTransfer::SetMakeNewDrawerChunked(const KvoSimCSetID& over, int64_t) {
  SetMakeNewDrawer(over);
  m_makeEmpty = true;
  m_autoExtend = true;
}

void KvoSimTransfer::SetDim(int dimension, int64_t first, int64_t count) {
  utl_ASSERT((dimension == 0 || dimension == 1) && first >= 0 && count >= 0);
  m_first[dimension] = first;
  m_count[dimension] = count;
}

void KvoSimTransfer::SetDims(std::span<const int64_t> counts) {
  utl_ASSERT(counts.size() <= 2);
  for (size_t i = 0; i < counts.size(); ++i) SetDim(static_cast<int>(i), 0, counts[i]);
}

void KvoSimTransfer::SetExtendableDim(int dimension) {
  utl_ASSERT(dimension == 0);
  m_autoExtend = true;
}

void KvoSimTransfer::SetBufferType(eds_ValueType type) {
  utl_ASSERT(type == m_range.ValueType());
}

void KvoSimTransfer::SetBufferBytes(std::byte* data, int64_t size, eds_ValueType type) {
  SetBufferType(type);
  m_buffer = data;
  m_bufferSize = size;
}

void KvoSimTransfer::RelinquishBuffers() {
  m_buffer = nullptr;
  m_bufferSize = 0;
}

KvoSimTransfer::Window KvoSimTransfer::CurrentWindow() const {
  Window window{m_first[0], m_count[0], m_first[1], m_count[1], 0};
  eds_Store* store = m_distribution.Store();
  if (m_drawer != 0) {
    const eds_ArrayID array = m_distribution.DrawerArray(m_drawer);
    if (!array.IsNull())
      window.held = store->Rows(eds_RecordKind::Array).Int(array.id, eds_Array_Count);
  }
  // A drawer that is filled by the piece goes on where it ended.
  const bool appends = m_write && m_makeEmpty && m_first[0] == 0;
  if (appends) window.firstItem = window.held;
  if (window.values < 0) window.values = m_range.NumValues() - window.firstValue;
  if (window.items < 0 && (m_drawer == 0 || appends)) {
    const int64_t perItem = (window.values + m_padding) * eds_sizeOf(m_range.ValueType());
    const int64_t inBuffer = m_bufferSize / perItem;
    window.items = m_drawer == 0 && !m_makeEmpty ? KvoSimCSet(m_over).Size() : inBuffer;
  }
  if (window.items < 0) window.items = window.held - window.firstItem;
  utl_ASSERT(window.firstValue + window.values <= m_range.NumValues());
  return window;
}

int64_t KvoSimTransfer::RequiredBufferSize() const {
  const Window window = CurrentWindow();
  const int64_t size = eds_sizeOf(m_range.ValueType());
  const int64_t items = m_sparse >= 0 ? std::min(m_sparse, window.items) : window.items;
  return m_serialization == KvoSerialization::ByItem ? items * (window.values + m_padding) * size
                                                     : window.values * (items + m_padding) * size;
}

bool KvoSimTransfer::IsPlain(const Window& window) const {
  return window.values == m_range.NumValues() && m_padding == 0 &&
         (m_serialization == KvoSerialization::ByItem || window.values == 1);
}

// From the buffer into whole items.
void KvoSimTransfer::Gather(const Window& window, int64_t item, int64_t count,
                            std::byte* out) const {
  const auto size = static_cast<size_t>(eds_sizeOf(m_range.ValueType()));
  const bool byItem = m_serialization == KvoSerialization::ByItem;
  const int64_t itemStep = byItem ? window.values + m_padding : 1;
  const int64_t valueStep = byItem ? 1 : window.items + m_padding;
  for (int64_t i = 0; i < count; ++i) {
    std::byte* to = out + static_cast<size_t>(i * m_range.NumValues() + window.firstValue) * size;
    for (int64_t v = 0; v < window.values; ++v, to += size)
      std::memcpy(to, m_buffer + static_cast<size_t>((item + i) * itemStep + v * valueStep) * size,
                  size);
  }
}

void KvoSimTransfer::Scatter(const Window& window, int64_t item, int64_t count,
                             const std::byte* in) const {
  const auto size = static_cast<size_t>(eds_sizeOf(m_range.ValueType()));
  const bool byItem = m_serialization == KvoSerialization::ByItem;
  const int64_t itemStep = byItem ? window.values + m_padding : 1;
  const int64_t valueStep = byItem ? 1 : window.items + m_padding;
  for (int64_t i = 0; i < count; ++i) {
    const std::byte* from =
        in + static_cast<size_t>(i * m_range.NumValues() + window.firstValue) * size;
    for (int64_t v = 0; v < window.values; ++v, from += size)
      std::memcpy(m_buffer + static_cast<size_t>((item + i) * itemStep + v * valueStep) * size,
                  from, size);
  }
}

namespace {

constexpr int64_t pieceBytes = int64_t{1} << 18; // stays in the cache

void fillWith(std::span<std::byte> bytes, eds_ValueType type, double value) {
  auto fill = [&](auto typed) {
    for (size_t at = 0; at < bytes.size(); at += sizeof typed)
      std::memcpy(bytes.data() + at, &typed, sizeof typed);
  };
  switch (type) {
  case eds_ValueType::Int32:
    return fill(static_cast<int32_t>(value));
  case eds_ValueType::Int64:
    return fill(static_cast<int64_t>(value));
  case eds_ValueType::Double:
    return fill(value);
  case eds_ValueType::Byte:
    return fill(static_cast<char>(value));
  }
}

} // namespace

int64_t KvoSimTransfer::ExecMake() {
  utl_ASSERT(!m_over.IsNull());
  KvoSimTransaction transaction(KvoSimContextID{m_distribution.Store()});
  const Window window = CurrentWindow(); // of a drawer that is not there yet
  eds_ArrayWriter writer(m_distribution.Store(), m_range.ValueType(), m_range.NumValues());
  int64_t rest = m_extension;
  if (m_buffer != nullptr && !m_makeEmpty) {
    const int64_t given = m_sparse >= 0 ? std::min(m_sparse, window.items) : window.items;
    utl_ASSERT(RequiredBufferSize() <= m_bufferSize);
    AppendBuffer(writer, window, given);
    rest += window.items - given;
  } else if (!m_makeEmpty) {
    rest += window.items;
  }
  AppendInitial(writer, rest);
  m_drawer = m_distribution.AddDrawer(m_over, writer.Finish());
  transaction.Commit();
  return m_drawer;
}

void KvoSimTransfer::AppendBuffer(eds_ArrayWriter& writer, const Window& window, int64_t items) {
  const int64_t itemSize = m_range.ItemSize();
  if (IsPlain(window)) return writer.AppendItems({m_buffer, static_cast<size_t>(items * itemSize)});
  const int64_t perPiece = std::max<int64_t>(1, utl_blockSize(pieceBytes) / itemSize);
  std::vector<std::byte> piece;
  for (int64_t done = 0; done < items; done += perPiece) {
    const int64_t count = std::min(perPiece, items - done);
    piece.resize(static_cast<size_t>(count * itemSize));
    fillWith(piece, m_range.ValueType(), m_initial); // the components outside the window
    Gather(window, done, count, piece.data());
    writer.AppendItems(piece);
  }
}

void KvoSimTransfer::AppendInitial(eds_ArrayWriter& writer, int64_t items) {
  const int64_t itemSize = m_range.ItemSize();
  const int64_t perPiece = std::max<int64_t>(1, utl_blockSize(pieceBytes) / itemSize);
  std::vector<std::byte> piece(static_cast<size_t>(std::min(perPiece, items) * itemSize));
  fillWith(piece, m_range.ValueType(), m_initial);
  for (int64_t done = 0; done < items; done += perPiece) {
    const int64_t count = std::min(perPiece, items - done);
    writer.AppendItems(std::span(piece).first(static_cast<size_t>(count * itemSize)));
  }
}

void KvoSimTransfer::ExecRead() {
  utl_ASSERT(m_drawer != 0 && m_buffer != nullptr);
  Window window = CurrentWindow();
  utl_ASSERT(window.firstItem + window.items <= window.held);
  utl_ASSERT(RequiredBufferSize() <= m_bufferSize);
  eds_ArrayReader reader(m_distribution.DrawerArray(m_drawer));
  const int64_t itemSize = m_range.ItemSize();
  if (IsPlain(window)) {
    return reader.ReadItems(window.firstItem,
                            {m_buffer, static_cast<size_t>(window.items * itemSize)});
  }
  const int64_t perPiece = std::max<int64_t>(1, utl_blockSize(pieceBytes) / itemSize);
  std::vector<std::byte> piece;
  for (int64_t done = 0; done < window.items; done += perPiece) {
    const int64_t count = std::min(perPiece, window.items - done);
    piece.resize(static_cast<size_t>(count * itemSize));
    reader.ReadItems(window.firstItem + done, piece);
    Scatter(window, done, count, piece.data());
  }
}

void KvoSimTransfer::ExecWrite() {
  utl_ASSERT(m_drawer != 0 && m_buffer != nullptr);
  m_write = true;
  const Window window = CurrentWindow();
  utl_ASSERT(m_autoExtend || window.firstItem + window.items <= window.held);
  utl_ASSERT(RequiredBufferSize() <= m_bufferSize);
  KvoSimTransaction transaction(KvoSimContextID{m_distribution.Store()});
  const eds_ArrayID array = m_distribution.DrawerArray(m_drawer);
  const int64_t itemSize = m_range.ItemSize();
  if (IsPlain(window)) {
    eds_updateArray(array, window.firstItem,
                    {m_buffer, static_cast<size_t>(window.items * itemSize)});
    return transaction.Commit();
  }
  // Items of which only some components are given keep the others.
  const int64_t perPiece = std::max<int64_t>(1, utl_blockSize(pieceBytes) / itemSize);
  std::vector<std::byte> piece;
  for (int64_t done = 0; done < window.items; done += perPiece) {
    const int64_t count = std::min(perPiece, window.items - done);
    const int64_t first = window.firstItem + done;
    const int64_t known = std::clamp<int64_t>(window.held - first, 0, count);
    piece.resize(static_cast<size_t>(count * itemSize));
    fillWith(piece, m_range.ValueType(), m_initial);
    if (known > 0)
      eds_ArrayReader(array).ReadItems(
          first, std::span(piece).first(static_cast<size_t>(known * itemSize)));
    Gather(window, done, count, piece.data());
    eds_updateArray(array, first, piece);
  }
  transaction.Commit();
}
