#include "parser/inp_BulkDecode.h"
#include "parser/inp_BulkPiece.h"
#include "parser/inp_ElementCut.h"
#include "parser/inp_LineScan.h"
#include <algorithm>
#include <utility>

namespace {

// Elements of one piece of text: nodes one after the other, `counts` of them for each element.
class ElementPiece {
public:
  void Decode(const inp_DataPiece& piece, const inp_ElementForm& form) {
    m_form = form;
    m_mostKept = std::min(inp_mostFields(form), inp_mostElementNodes);
    m_labels.Clear();
    m_counts.Clear();
    m_rowOf.Clear();
    m_nodes.Clear();
    m_odd.clear();
    m_rows = 0;
    m_open = false;
    m_next = 0;
    m_lineFields = 0;
    m_least = static_cast<int>(inp_mostElementNodes);
    m_most = 0;
    m_scan.Run(piece, [this](const inp_Stretch& stretch) {
      TakeLines(stretch);
      return true;
    });
    if (m_open) Close();
    m_nodes.Resize(m_next);
  }

  inp_ElementPiece View(long long firstRow, std::size_t slot) {
    for (inp_OddRow& odd : m_odd) odd.row += firstRow;
    const int width = m_labels.IsEmpty() || !IsUniform() ? -1 : m_most;
    return {m_labels, m_nodes, m_counts, width, m_odd, firstRow, slot};
  }

  std::size_t Count() const { return m_labels.Size(); }
  int Most() const { return m_most; }
  bool IsUniform() const { return m_least == m_most; }
  long long Rows() const { return m_rows; }
  const utl_Buffer<int>& Labels() const { return m_labels; }
  const utl_Buffer<int>& Counts() const { return m_counts; }
  const utl_Buffer<int>& Nodes() const { return m_nodes; }
  const utl_Buffer<long long>& RowOf() const { return m_rowOf; }
  const cow_List<inp_OddRow>& Odd() const { return m_odd; }

private:
  void TakeLines(const inp_Stretch& stretch) {
    const std::size_t done = m_nodes.Size();
    m_nodes.Resize(done + stretch.count + inp_batchRoom);
    m_next = done;
    m_values = m_ints.Of(stretch);
    inp_LinePlace at;
    while (at.line < stretch.lines) {
      TakeEqualLines(stretch, at);
      if (at.line < stretch.lines) TakeLine(stretch, at);
    }
    m_nodes.Resize(m_next);
  }

  // Lines that are an element each and have as many fields as the one before, plain labels all.
  void TakeEqualLines(const inp_Stretch& stretch, inp_LinePlace& at) {
    const std::size_t fields = m_lineFields;
    if (m_open || fields == 0) return;
    std::size_t end = at.separator; // behind the lines that are as wanted
    std::size_t count = 0;
    for (; end + fields <= stretch.count && at.line + count < stretch.lines; end += fields) {
      if (stretch.places[end + fields - 1] != stretch.feeds[at.line + count]) break;
      if (!m_ints.AreAll() && !AreLabels(m_values + end, fields)) break;
      ++count;
    }
    if (count == 0) return;
    AppendElements(m_values + at.separator, count, fields);
    at.separator = end;
    at.line += count;
  }

  static bool AreLabels(const int* values, std::size_t count) {
    return std::all_of(values, values + count, [](int value) { return value >= 0; });
  }

  // Elements of a label and fields - 1 nodes each.
  void AppendElements(const int* values, std::size_t count, std::size_t fields) {
    const std::size_t nodes = fields - 1;
    int* label = m_labels.AppendSpace(count);
    long long* row = m_rowOf.AppendSpace(count);
    int* node = m_nodes.Data() + m_next;
    for (std::size_t n = 0; n < count; ++n, values += fields, node += nodes) {
      label[n] = values[0];
      row[n] = m_rows++;
      for (std::size_t k = 0; k < nodes; k += 8) // what is too much goes into the room behind
        std::memcpy(node + k, values + 1 + k, 8 * sizeof(int));
    }
    m_next += count * nodes;
    const int width = static_cast<int>(nodes);
    std::fill_n(m_counts.AppendSpace(count), count, width);
    m_least = std::min(m_least, width);
    m_most = std::max(m_most, width);
  }

  void TakeLine(const inp_Stretch& stretch, inp_LinePlace& at) {
    const std::size_t i = at.separator;
    std::size_t feed = i;
    while (stretch.places[feed] != stretch.feeds[at.line]) ++feed;
    m_lineFields = 0;
    if (m_open)
      GoOn(stretch, i, feed);
    else
      Begin(stretch, i, feed);
    at.separator = feed + 1;
    ++at.line;
  }

  // Takes the line of the separators i to feed as the first one of an element.
  void Begin(const inp_Stretch& stretch, std::size_t i, std::size_t feed) {
    int label = m_values[i];
    m_isOdd = false;
    if (label < 0) {
      label = 0;
      const char* const line = stretch.FieldBegin(i);
      if (!inp_readOtherLabel(line, stretch.FieldEnd(i), label)) {
        const char* const lineEnd = stretch.FieldEnd(feed);
        if (inp_lineKind(line, lineEnd) != inp_LineKind::Data) return;
        if (inp_trim(line, lineEnd).empty()) {
          ++m_rows;
          return;
        }
        m_isOdd = true;
      }
    }
    m_labels.Append(label);
    m_rowOf.Append(m_rows++);
    m_first = m_next;
    m_fields = 0;
    if (i != feed) TakeNodes(stretch, i + 1, feed);
    if (m_form.firstLineNodes > 0 && m_fields > m_form.firstLineNodes) m_isOdd = true;
    if (m_open) return;
    Close();
    // A good element of one line is what more of its kind are compared with.
    if (!m_isOdd) m_lineFields = feed + 1 - i;
  }

  // The line behind one that ended in a comma: its fields are nodes as far as they fit.
  void GoOn(const inp_Stretch& stretch, std::size_t i, std::size_t feed) {
    const char* const line = stretch.FieldBegin(i);
    const char* const lineEnd = stretch.FieldEnd(feed);
    if (inp_lineKind(line, lineEnd) != inp_LineKind::Data) return;
    if (inp_trim(line, lineEnd).empty()) {
      ++m_rows;
      return;
    }
    const bool trailing = feed != i && inp_trim(stretch.FieldBegin(feed), lineEnd).empty();
    const auto fields = static_cast<long long>(feed - i) + (trailing ? 0 : 1);
    m_open = false;
    const long long tooMany = m_fields + fields - inp_mostFields(m_form);
    if (tooMany > 0 && tooMany > inp_quotedCommas(line, lineEnd)) {
      Close();
      return Begin(stretch, i, feed);
    }
    TakeNodes(stretch, i, feed);
    ++m_rows;
    if (!m_open) Close();
  }

  // Node fields from separator i to the line's. The element stays open when the line ends in a
  // comma.
  void TakeNodes(const inp_Stretch& stretch, std::size_t i, std::size_t feed) {
    int* const start = m_nodes.Data() + m_next;
    int* next = start;
    const char* const line = stretch.FieldBegin(i);
    const bool wasOdd = std::exchange(m_isOdd, false);
    for (; i <= feed; ++i) {
      *next = m_values[i];
      if (*next >= 0 || TakeOtherNode(stretch.FieldBegin(i), stretch.FieldEnd(i), *next)) ++next;
    }
    if (m_isOdd) next -= inp_quotedCommas(line, stretch.FieldEnd(feed));
    m_isOdd = m_isOdd || wasOdd;
    m_next += static_cast<std::size_t>(next - start);
    m_fields += next - start;
  }

  // False when the field is the empty one behind a trailing comma.
  bool TakeOtherNode(const char* begin, const char* end, int& node) {
    if (inp_readOtherLabel(begin, end, node)) return true;
    if (*end == '\n' && inp_trim(begin, end).empty()) {
      m_open = true;
      return false;
    }
    node = 0;
    m_isOdd = true;
    return true;
  }

  void Close() {
    m_open = false;
    if (m_fields > m_mostKept) {
      m_isOdd = true;
      m_fields = m_fields > inp_mostElementNodes ? 0 : m_mostKept;
      m_next = m_first + static_cast<std::size_t>(m_fields);
    }
    const int count = static_cast<int>(m_fields);
    if (m_isOdd) {
      const auto slot = static_cast<long long>(m_counts.Size());
      m_odd.push_back({m_rowOf[m_counts.Size()], slot});
    }
    m_counts.Append(count);
    m_least = std::min(m_least, count);
    m_most = std::max(m_most, count);
  }

  inp_LineScan m_scan;
  inp_FieldValues m_ints;
  const int* m_values = nullptr; // of the stretch
  std::size_t m_lineFields = 0;  // of the last line; 0 when it was no plain element
  inp_ElementForm m_form;
  long long m_mostKept = 0;
  utl_Buffer<int> m_labels, m_counts, m_nodes;
  utl_Buffer<long long> m_rowOf; // within the piece
  cow_List<inp_OddRow> m_odd;
  std::size_t m_next = 0;  // where the next node goes
  std::size_t m_first = 0; // of the element that is being read
  long long m_fields = 0;  // of it, the label not counted
  bool m_isOdd = false;
  bool m_open = false; // its last line ended in a comma
  long long m_rows = 0;
  int m_least = 0, m_most = 0;
};

// Puts pieces into the result, all elements with the same room for nodes: as much as the widest one
// so far asks for, with some to spare once they turn out to differ; spare room goes at the end.
class Assembler {
public:
  Assembler(inp_ElementRows& result, const inp_DataArray& data, int widest)
      : m_result(result), m_expected(static_cast<std::size_t>(data.Rows())), m_widest(widest),
        m_stride(result.width) {
    inp_reserveMore(m_result.labels, m_expected);
  }

  void Add(const ElementPiece& piece) {
    const long long firstRow = m_row;
    m_row += piece.Rows();
    if (piece.Count() == 0) return;
    MakeRoom(piece.Most());
    AddCounts(piece);
    AddRows(piece, firstRow);
    for (const inp_OddRow& odd : piece.Odd())
      m_result.odd.push_back({firstRow + odd.row, m_result.Count() + odd.slot});
    AddNodes(piece);
    m_result.labels.Append(std::span<const int>(piece.Labels()));
  }

  void Finish() {
    const auto width = static_cast<std::size_t>(m_result.width);
    if (m_stride == m_result.width) return;
    int* const nodes = m_result.nodes.Data();
    const std::size_t count = m_result.labels.Size();
    for (std::size_t i = 1; i < count; ++i)
      std::memmove(nodes + i * width, nodes + i * Stride(), width * sizeof(int));
    m_result.nodes.Resize(count * width);
  }

private:
  std::size_t Stride() const { return static_cast<std::size_t>(m_stride); }

  void MakeRoom(int width) {
    if (m_reserved && width <= m_stride) return;
    const std::size_t count = m_result.labels.Size();
    const std::size_t old = Stride();
    if (width > m_stride)
      m_stride = count == 0 ? width : std::max(width, std::min(2 * m_stride, m_widest));
    inp_reserveMore(m_result.nodes, (count + m_expected) * Stride() - m_result.nodes.Size());
    m_reserved = true;
    if (Stride() == old || count == 0) return;
    m_result.nodes.Resize(count * Stride());
    int* const nodes = m_result.nodes.Data();
    for (std::size_t i = count; i-- > 0;) {
      std::memmove(nodes + i * Stride(), nodes + i * old, old * sizeof(int));
      std::fill(nodes + i * Stride() + old, nodes + (i + 1) * Stride(), 0);
    }
  }

  // Counts are kept from the first element on that differs from the others.
  void AddCounts(const ElementPiece& piece) {
    const std::size_t before = m_result.labels.Size();
    const bool differs = !piece.IsUniform() || (before > 0 && piece.Most() != m_result.width);
    if (m_result.counts.IsEmpty() && differs) {
      m_result.counts.Reserve(before + m_expected);
      m_result.counts.Resize(before);
      std::fill(m_result.counts.begin(), m_result.counts.end(), m_result.width);
    }
    if (!m_result.counts.IsEmpty() || differs)
      m_result.counts.Append(std::span<const int>(piece.Counts()));
    m_result.width = std::max(m_result.width, piece.Most());
  }

  void AddRows(const ElementPiece& piece, long long firstRow) {
    const std::size_t before = m_result.labels.Size();
    const utl_Buffer<long long>& rows = piece.RowOf();
    if (m_result.rows.IsEmpty()) {
      // Rows of a piece rise by at least one: when the last one fits, all do.
      const auto last = static_cast<long long>(before + rows.Size()) - 1;
      if (firstRow + rows[rows.Size() - 1] == last && firstRow == static_cast<long long>(before))
        return;
      m_result.rows.Reserve(before + m_expected);
      m_result.rows.Resize(before);
      for (std::size_t i = 0; i < before; ++i) m_result.rows[i] = static_cast<long long>(i);
    }
    long long* to = m_result.rows.AppendSpace(rows.Size());
    for (const long long row : rows) *to++ = firstRow + row;
  }

  void AddNodes(const ElementPiece& piece) {
    if (piece.IsUniform() && piece.Most() == m_stride)
      return m_result.nodes.Append(std::span<const int>(piece.Nodes()));
    const int* from = piece.Nodes().Data();
    int* to = m_result.nodes.AppendSpace(piece.Count() * Stride());
    for (const int count : piece.Counts()) {
      std::copy(from, from + count, to);
      std::fill(to + count, to + m_stride, 0);
      from += count;
      to += m_stride;
    }
  }

  inp_ElementRows& m_result;
  const std::size_t m_expected; // elements this keyword has at most
  const int m_widest;
  int m_stride;
  bool m_reserved = false;
  long long m_row = 0;
};

} // namespace

void inp_decodeElements(const inp_DataArray& data, const inp_ElementForm& form,
                        inp_ElementRows& result) {
  const inp_PieceBuffers<ElementPiece> buffers;
  const int widest = static_cast<int>(std::min(inp_mostFields(form), inp_mostElementNodes));
  Assembler assembler(result, data, widest);
  const inp_ElementCut cut(form);
  inp_decodePieces(
      inp_cutData(data, &cut),
      [&](const inp_DataPiece& piece, std::size_t slot) { buffers[slot].Decode(piece, form); },
      [&](std::size_t slot) { assembler.Add(buffers[slot]); });
  assembler.Finish();
}

void inp_streamElements(const inp_DataArray& data, const inp_ElementForm& form,
                        const std::function<void(const inp_ElementPiece&)>& prepare,
                        const std::function<void(const inp_ElementPiece&)>& take) {
  const inp_PieceBuffers<ElementPiece> buffers;
  const inp_ElementCut cut(form);
  long long row = 0;
  inp_decodePieces(
      inp_cutData(data, &cut),
      [&](const inp_DataPiece& piece, std::size_t slot) {
        buffers[slot].Decode(piece, form);
        prepare(buffers[slot].View(0, slot));
      },
      [&](std::size_t slot) {
        take(buffers[slot].View(row, slot));
        row += buffers[slot].Rows();
      });
}

cow_List<std::string_view> inp_elementFields(const inp_DataArray& data, const inp_ElementForm& form,
                                             long long row, long long& nextRow) {
  cow_List<std::string_view> fields;
  nextRow = row;
  for (bool open = true; open && nextRow < data.Rows(); ++nextRow) {
    const std::string_view text = data.RowText(nextRow);
    const std::string_view line = inp_trim(text.data(), text.data() + text.size());
    if (line.empty()) continue;
    cow_List<std::string_view> found;
    for (const char* p = line.data();;) {
      const char* const lineEnd = line.data() + line.size();
      const char* comma = p;
      while (comma != lineEnd && *comma != ',')
        comma = *comma == '"' ? inp_behindQuoted(comma, lineEnd) : comma + 1;
      found.push_back(inp_trim(p, comma));
      if (comma == lineEnd) break;
      p = comma + 1;
    }
    open = found.size() > 1 && found.back().empty();
    if (open) found.pop_back();
    const auto behindLabel = static_cast<long long>(fields.size() + found.size()) - 1;
    if (!fields.empty() && behindLabel > inp_mostFields(form)) break;
    fields.insert(fields.end(), found.begin(), found.end());
  }
  return fields;
}
