#include "parser/inp_BulkDecode.h"
#include "parser/inp_BulkPiece.h"
#include "parser/inp_LineScan.h"
#include <atomic>

namespace {

class RowPiece {
public:
  void Decode(const inp_DataPiece& piece, int width) {
    m_values.Clear();
    m_good =
        m_scan.Run(piece, [&](const inp_Stretch& stretch) { return TakeLines(stretch, width); });
  }
  bool IsGood() const { return m_good; }
  void Publish(utl_Buffer<double>& values) const {
    values.Append(std::span<const double>(m_values));
  }

private:
  bool TakeLines(const inp_Stretch& stretch, int width) {
    std::size_t size = m_values.Size();
    m_values.Resize(size + stretch.count);
    double* next = m_values.Data() + size;
    std::size_t i = 0;
    for (std::size_t line = 0; line < stretch.lines; ++line) {
      const char* const lineEnd = stretch.text + stretch.feeds[line];
      if (TakeLine(stretch, i, lineEnd, width, next)) {
        next += width;
        i += static_cast<std::size_t>(width);
        continue;
      }
      if (inp_lineKind(stretch.FieldBegin(i), lineEnd) == inp_LineKind::Data) return false;
      while (stretch.FieldEnd(i) != lineEnd) ++i; // a comment
      ++i;
    }
    m_values.Resize(static_cast<std::size_t>(next - m_values.Data()));
    return true;
  }

  static bool TakeLine(const inp_Stretch& stretch, std::size_t i, const char* lineEnd, int width,
                       double* values) {
    for (int k = 0; k < width; ++k, ++i) {
      const char* const begin = stretch.FieldBegin(i);
      const char* const end = stretch.FieldEnd(i);
      if ((end == lineEnd) != (k + 1 == width)) return false;
      if (inp_fastReal(begin, end, values[k])) continue;
      if (inp_trim(begin, end).empty() || !inp_readOtherReal(begin, end, values[k])) return false;
    }
    return true;
  }

  inp_LineScan m_scan;
  utl_Buffer<double> m_values;
  bool m_good = true;
};

} // namespace

bool inp_decodeRows(const inp_DataArray& data, int width, utl_Buffer<double>& values) {
  inp_reserveMore(values, static_cast<std::size_t>(data.Rows() * width));
  const inp_PieceBuffers<RowPiece> buffers;
  std::atomic<bool> good = true; // of no use further on once a line is another
  inp_decodePieces(
      inp_cutData(data),
      [&](const inp_DataPiece& piece, std::size_t slot) {
        if (good) buffers[slot].Decode(piece, width);
        if (!buffers[slot].IsGood()) good = false;
      },
      [&](std::size_t slot) {
        if (good) buffers[slot].Publish(values);
      });
  return good;
}
