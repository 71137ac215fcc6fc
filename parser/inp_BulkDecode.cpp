#include "parser/inp_BulkDecode.h"
#include "base/utl_TinyNumber.h"
#include "parser/inp_BulkPiece.h"
#include "parser/inp_LineScan.h"
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

// ---- nodes -------------------------------------------------------------------------------------

class NodePiece {
public:
  void Decode(const inp_DataPiece& piece) {
    m_labels.Clear();
    m_coords.Clear();
    m_odd.clear();
    m_rows = 0;
    m_scan.Run(piece, [this](const inp_Stretch& stretch) {
      TakeLines(stretch);
      return true;
    });
  }

  // What it holds; rows count from firstRow.
  inp_NodePiece View(long long firstRow) {
    for (inp_OddRow& odd : m_odd) odd.row += firstRow;
    return {m_labels, m_coords, m_odd};
  }
  long long Rows() const { return m_rows; }

  // Appends to the result; returns the data rows it held.
  long long Publish(inp_NodeRows& result, long long firstRow) const {
    const auto firstSlot = static_cast<long long>(result.labels.Size());
    result.labels.Append(std::span<const int>(m_labels));
    result.coords.Append(std::span<const double>(m_coords));
    for (const inp_OddRow& odd : m_odd)
      result.odd.push_back({firstRow + odd.row, firstSlot + odd.slot});
    return m_rows;
  }

private:
  void TakeLines(const inp_Stretch& stretch) {
    const std::size_t done = m_labels.Size();
    m_labels.Resize(done + stretch.count);
    m_coords.Resize(3 * (done + stretch.count));
    m_nodes = done;
    inp_LinePlace at;
    while (at.line < stretch.lines) {
      TakePlainLines(stretch, at);
      for (int n = 0; n <= m_pause && at.line < stretch.lines; ++n) TakeLine(stretch, at);
    }
    m_labels.Resize(m_nodes);
    m_coords.Resize(3 * m_nodes);
  }

  // After a failure the lines are taken one by one for a while, and longer after each further one.
  void TakePlainLines(const inp_Stretch& stretch, inp_LinePlace& at) {
    const std::size_t taken =
        inp_takeNodeLines(stretch, at, m_labels.Data() + m_nodes, m_coords.Data() + 3 * m_nodes);
    m_nodes += taken;
    m_rows += static_cast<long long>(taken);
    m_pause = taken > 0 ? 0 : std::min(2 * m_pause + 1, longestPause);
  }

  void TakeLine(const inp_Stretch& stretch, inp_LinePlace& at) {
    const char* const line = stretch.FieldBegin(at.separator);
    const char* const lineEnd = stretch.text + stretch.feeds[at.line];
    if (!TakeNode(stretch, at.separator, lineEnd)) TakeOtherLine(line, lineEnd);
    while (stretch.FieldEnd(at.separator) != lineEnd) ++at.separator;
    ++at.separator;
    ++at.line;
  }

  // A line of a label and at most three numbers, the first one of them from separator i on.
  bool TakeNode(const inp_Stretch& stretch, std::size_t i, const char* lineEnd) {
    const char* end = stretch.FieldEnd(i);
    if (end == lineEnd || !inp_readLabel(stretch.FieldBegin(i), end, m_labels[m_nodes]))
      return false;
    double* const xyz = m_coords.Data() + 3 * m_nodes;
    xyz[0] = xyz[1] = xyz[2] = 0;
    for (int k = 0; k < 3 && end != lineEnd; ++k) {
      const char* const begin = end + 1;
      end = stretch.FieldEnd(++i);
      if (!inp_readReal(begin, end, xyz[k])) return false;
    }
    if (end != lineEnd) return false;
    ++m_nodes;
    ++m_rows;
    return true;
  }

  // Comments, blank lines, labels alone, normals, texts.
  void TakeOtherLine(const char* line, const char* lineEnd) {
    if (inp_lineKind(line, lineEnd) != inp_LineKind::Data) return;
    const long long row = m_rows++;
    if (inp_trim(line, lineEnd).empty()) return;
    double* const xyz = m_coords.Data() + 3 * m_nodes;
    xyz[0] = xyz[1] = xyz[2] = 0;
    m_labels[m_nodes] = 0;
    bool plain = std::memchr(line, '"', static_cast<std::size_t>(lineEnd - line)) == nullptr;
    const char* begin = line;
    for (int k = 0;; ++k) {
      const void* const comma = std::memchr(begin, ',', static_cast<std::size_t>(lineEnd - begin));
      const char* const end = comma ? static_cast<const char*>(comma) : lineEnd;
      if (k == 0)
        plain = inp_readLabel(begin, end, m_labels[m_nodes]) && plain;
      else if (k < 4)
        plain = inp_readReal(begin, end, xyz[k - 1]) && plain;
      else
        plain = inp_trim(begin, end).empty() && plain;
      if (!comma) break;
      begin = end + 1;
    }
    if (!plain) m_odd.push_back({row, static_cast<long long>(m_nodes)});
    ++m_nodes;
  }

  static constexpr int longestPause = 63;

  inp_LineScan m_scan;
  int m_pause = 0; // lines
  utl_Buffer<int> m_labels;
  utl_Buffer<double> m_coords;
  cow_List<inp_OddRow> m_odd; // row and slot within the piece
  std::size_t m_nodes = 0;
  long long m_rows = 0;
};

// ---- labels ------------------------------------------------------------------------------------

class LabelPiece {
public:
  void Decode(const inp_DataPiece& piece) {
    m_labels.Clear();
    m_rows = 0;
    m_good = m_scan.Run(piece, [this](const inp_Stretch& stretch) { return TakeLines(stretch); });
  }

  bool IsGood() const { return m_good; }
  long long Rows() const { return m_rows; } // the rows before the bad one, when there is one
  int BadCol() const { return m_col; }
  void Publish(utl_Buffer<int>& labels) const { labels.Append(std::span<const int>(m_labels)); }

private:
  bool TakeLines(const inp_Stretch& stretch) {
    std::size_t size = m_labels.Size();
    m_labels.Resize(size + stretch.count);
    int* const values = m_values.Of(stretch);
    bool good = true;
    m_col = 0;
    for (std::size_t i = 0; i < stretch.count && good; ++i) {
      const char* const end = stretch.FieldEnd(i);
      if (values[i] >= 0) {
        m_labels[size++] = values[i];
      } else {
        const char* const begin = stretch.FieldBegin(i);
        if (m_col == 0 && inp_lineKind(begin, end) != inp_LineKind::Data) {
          while (*stretch.FieldEnd(i) != '\n') ++i;
          continue;
        }
        if (!inp_trim(begin, end).empty()) {
          good = inp_readOtherInt(begin, end, m_labels[size]);
          size += good;
        }
      }
      const bool last = *end == '\n';
      if (good) m_col = last ? 0 : m_col + 1;
      if (good) m_rows += last;
    }
    m_labels.Resize(size);
    return good;
  }

  inp_FieldValues m_values;
  inp_LineScan m_scan;
  utl_Buffer<int> m_labels;
  long long m_rows = 0;
  int m_col = 0;
  bool m_good = true;
};

} // namespace

bool inp_readOtherReal(const char* begin, const char* end, double& value) {
  const std::string_view text = inp_trim(begin, end);
  value = 0;
  if (text.empty()) return true;
  double number = 0;
  const char* const stop = text.data() + text.size();
  if (utl_readDouble(text.data(), stop, number) != stop || !std::isfinite(number)) return false;
  // As long as the spelling is an integer's, nought has no sign.
  const bool isNought = number == 0 && text.find_first_not_of("+-0") == std::string_view::npos;
  value = isNought ? 0 : number;
  return !utl_isTinyNumber(text, number); // the general road tells of it
}

bool inp_readOtherInt(const char* begin, const char* end, int& value) {
  const utl_Field field = utl_classifyField(inp_trim(begin, end));
  if (field.kind != utl_FieldKind::Integer) return false;
  value = static_cast<int>(field.integer);
  return field.integer == value;
}

bool inp_readOtherLabel(const char* begin, const char* end, int& value) {
  std::int64_t label = 0;
  if (!inp_fastLongInt(begin, end, label)) {
    const utl_Field field = utl_classifyField(inp_trim(begin, end));
    if (field.kind != utl_FieldKind::Integer) return false;
    label = field.integer;
  }
  if (label > inp_largestLabel || label < -inp_largestLabel) return false;
  value = static_cast<int>(label);
  return true;
}

void inp_decodeNodes(const inp_DataArray& data, inp_NodeRows& result) {
  const auto rows = static_cast<std::size_t>(data.Rows());
  inp_reserveMore(result.labels, rows);
  inp_reserveMore(result.coords, 3 * rows);
  const inp_PieceBuffers<NodePiece> buffers;
  long long row = 0;
  inp_decodePieces(
      inp_cutData(data),
      [&](const inp_DataPiece& piece, std::size_t slot) { buffers[slot].Decode(piece); },
      [&](std::size_t slot) { row += buffers[slot].Publish(result, row); });
}

void inp_streamNodes(const inp_DataArray& data,
                     const std::function<void(const inp_NodePiece&)>& prepare,
                     const std::function<void(const inp_NodePiece&)>& take) {
  const inp_PieceBuffers<NodePiece> buffers;
  long long row = 0;
  inp_decodePieces(
      inp_cutData(data),
      [&](const inp_DataPiece& piece, std::size_t slot) {
        buffers[slot].Decode(piece);
        prepare(buffers[slot].View(0));
      },
      [&](std::size_t slot) {
        take(buffers[slot].View(row));
        row += buffers[slot].Rows();
      });
}

bool inp_decodeLabels(const inp_DataArray& data, utl_Buffer<int>& labels, long long& badRow,
                      int& badCol) {
  const inp_PieceBuffers<LabelPiece> buffers;
  long long row = 0;
  bool good = true;
  inp_decodePieces(
      inp_cutData(data),
      [&](const inp_DataPiece& piece, std::size_t slot) { buffers[slot].Decode(piece); },
      [&](std::size_t slot) {
        if (!good) return; // what stands behind the bad field does not count
        const LabelPiece& piece = buffers[slot];
        piece.Publish(labels);
        row += piece.Rows();
        good = piece.IsGood();
        if (good) return;
        badRow = row;
        badCol = piece.BadCol();
      });
  return good;
}
