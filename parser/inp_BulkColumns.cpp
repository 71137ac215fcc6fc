#include "parser/inp_BulkColumns.h"
#include "parser/inp_BulkPiece.h"
#include "parser/inp_LineScan.h"
#include <algorithm>
#include <deque>

namespace {

// The names of a piece, each with its place in order of first appearance, in memory of their own.
// Lines that name one set mostly follow each other, so the last one is asked first.
class PieceNames {
public:
  void Clear() {
    m_names.clear();
    m_texts.resize(std::min<std::size_t>(m_texts.size(), 1));
    if (!m_texts.empty()) m_texts.front().clear();
    std::ranges::fill(m_slots, 0);
  }

  int PlaceOf(std::string_view name) {
    if (m_last < m_names.size() && m_names[m_last] == name) return static_cast<int>(m_last);
    if (2 * (m_names.size() + 1) > m_slots.size()) Grow();
    std::size_t slot = HashOf(name) & (m_slots.size() - 1);
    while (m_slots[slot] != 0 && m_names[m_slots[slot] - 1] != name)
      slot = (slot + 1) & (m_slots.size() - 1);
    if (m_slots[slot] == 0) {
      m_names.push_back(Keep(name));
      m_slots[slot] = static_cast<std::uint32_t>(m_names.size());
    }
    m_last = m_slots[slot] - 1;
    return static_cast<int>(m_last);
  }

  std::span<const std::string_view> All() const { return m_names; }

private:
  // A text is never grown beyond what it has reserved: the names stay where they are.
  std::string_view Keep(std::string_view name) {
    constexpr std::size_t usual = 4096;
    if (m_texts.empty() || m_texts.back().capacity() - m_texts.back().size() < name.size())
      m_texts.emplace_back().reserve(std::max(usual, name.size()));
    cow_String& text = m_texts.back();
    text += name;
    return {text.data() + (text.size() - name.size()), name.size()};
  }

  static std::size_t HashOf(std::string_view name) {
    std::uint64_t hash = 0xcbf29ce484222325ULL; // FNV-1a: names are short
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3ULL;
    return static_cast<std::size_t>(hash ^ hash >> 32);
  }

  void Grow() {
    m_slots.assign(std::max<std::size_t>(64, 2 * m_slots.size()), 0);
    for (std::size_t n = 0; n < m_names.size(); ++n) {
      std::size_t slot = HashOf(m_names[n]) & (m_slots.size() - 1);
      while (m_slots[slot] != 0) slot = (slot + 1) & (m_slots.size() - 1);
      m_slots[slot] = static_cast<std::uint32_t>(n + 1);
    }
  }

  cow_List<std::string_view> m_names;
  std::deque<cow_String> m_texts;  // what the names lie in
  cow_List<std::uint32_t> m_slots; // place + 1; 0: free. A power of two of them, half of them free
  std::size_t m_last = 0;
};

class ColumnsPiece {
public:
  void Decode(const inp_DataPiece& piece, std::span<const inp_ColumnType> types) {
    m_types = types;
    m_columns.resize(types.size());
    for (Column& column : m_columns) {
      column.ints.Clear();
      column.reals.Clear();
    }
    m_names.Clear();
    m_odd.clear();
    m_count = 0;
    m_rows = 0;
    m_scan.Run(piece, [this](const inp_Stretch& stretch) {
      TakeLines(stretch);
      return true;
    });
  }

  inp_ColumnPiece View(long long firstRow) {
    m_view.clear();
    for (Column& column : m_columns) m_view.push_back({column.ints, column.reals});
    for (inp_OddRow& odd : m_odd) odd.row += firstRow;
    return {m_count, m_view, m_names.All(), m_odd, firstRow};
  }
  long long Rows() const { return m_rows; }

private:
  struct Column {
    utl_Buffer<int> ints;
    utl_Buffer<double> reals;
  };

  void TakeLines(const inp_Stretch& stretch) {
    Resize(m_count + stretch.lines);
    std::size_t i = 0; // separator
    for (std::size_t line = 0; line < stretch.lines; ++line) {
      const char* const lineEnd = stretch.text + stretch.feeds[line];
      std::size_t next = i;
      if (TakeRow(stretch, next, lineEnd)) {
        i = next;
        ++m_count;
        ++m_rows;
        continue;
      }
      TakeOtherLine(stretch.FieldBegin(i), lineEnd);
      while (stretch.FieldEnd(i) != lineEnd) ++i;
      ++i;
    }
    Resize(m_count);
  }

  void Resize(std::size_t rows) {
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
      if (HasReals(c)) m_columns[c].reals.Resize(rows);
      if (HasInts(c)) m_columns[c].ints.Resize(rows);
    }
  }

  bool HasReals(std::size_t c) const {
    return m_types[c] == inp_ColumnType::Real || m_types[c] == inp_ColumnType::TargetOrReal;
  }
  bool HasInts(std::size_t c) const { return m_types[c] != inp_ColumnType::Real; }

  // A line of nothing but what its columns want, or a comma behind it; `i` becomes the first
  // separator of the next one.
  bool TakeRow(const inp_Stretch& stretch, std::size_t& i, const char* lineEnd) {
    std::size_t c = 0;
    for (const char* end = nullptr; end != lineEnd; ++i, ++c) {
      end = stretch.FieldEnd(i);
      const char* const begin = stretch.FieldBegin(i);
      const bool isBehindAll = c == m_columns.size();
      if (isBehindAll ? begin != lineEnd : !TakeField(c, begin, end)) return false;
      if (isBehindAll) --c;
    }
    for (; c < m_columns.size(); ++c) SetBlank(c);
    return true;
  }

  // A field of the plainest form.
  bool TakeField(std::size_t c, const char* begin, const char* end) {
    Column& column = m_columns[c];
    switch (m_types[c]) {
    case inp_ColumnType::Real:
      return inp_fastReal(begin, end, column.reals[m_count]);
    case inp_ColumnType::Int:
      return inp_fastSmallInt(begin, end, column.ints[m_count]);
    case inp_ColumnType::Target:
      return inp_fastSmallInt(begin, end, column.ints[m_count]) || TakeName(column, begin, end);
    case inp_ColumnType::TargetOrReal:
      if (inp_fastSmallInt(begin, end, column.ints[m_count])) {
        column.reals[m_count] = column.ints[m_count];
        return true;
      }
      column.ints[m_count] = inp_blankInt;
      if (inp_fastReal(begin, end, column.reals[m_count])) return true;
      column.reals[m_count] = inp_blankReal;
      return TakeName(column, begin, end);
    case inp_ColumnType::Word:
      break;
    }
    return TakeName(column, begin, end);
  }

  // What begins with a letter and holds no quote is a name as it stands.
  bool TakeName(Column& column, const char* begin, const char* end) {
    const std::string_view text = inp_trim(begin, end);
    if (text.empty()) return false;
    const char first = static_cast<char>(text[0] | 0x20);
    if (first < 'a' || first > 'z') return false;
    if (std::memchr(text.data(), '"', text.size())) return false;
    column.ints[m_count] = inp_nameCode(m_names.PlaceOf(text));
    return true;
  }

  void SetBlank(std::size_t c) {
    if (HasReals(c)) m_columns[c].reals[m_count] = inp_blankReal;
    if (HasInts(c)) m_columns[c].ints[m_count] = inp_blankInt;
  }

  // Comments, blank lines, blank fields, numbers of other forms; what is none of these is odd.
  void TakeOtherLine(const char* line, const char* lineEnd) {
    if (inp_lineKind(line, lineEnd) != inp_LineKind::Data) return;
    const long long row = m_rows++;
    if (inp_trim(line, lineEnd).empty()) return;
    for (std::size_t c = 0; c < m_columns.size(); ++c) SetBlank(c);
    bool plain = std::memchr(line, '"', static_cast<std::size_t>(lineEnd - line)) == nullptr;
    const char* begin = line;
    for (std::size_t c = 0;; ++c) {
      const void* const comma = std::memchr(begin, ',', static_cast<std::size_t>(lineEnd - begin));
      const char* const end = comma ? static_cast<const char*>(comma) : lineEnd;
      if (const std::string_view text = inp_trim(begin, end); !text.empty())
        plain = c < m_columns.size() && TakeOtherField(c, text) && plain;
      if (!comma) break;
      begin = end + 1;
    }
    if (!plain) m_odd.push_back({row, static_cast<long long>(m_count)});
    ++m_count;
  }

  bool TakeOtherField(std::size_t c, std::string_view text) {
    Column& column = m_columns[c];
    const char* const end = text.data() + text.size();
    if (m_types[c] == inp_ColumnType::Real) return TakeOtherReal(column, text);
    int value = 0;
    if (m_types[c] != inp_ColumnType::Word && inp_readOtherLabel(text.data(), end, value)) {
      if (HasReals(c)) column.reals[m_count] = value;
      column.ints[m_count] = value;
      return true;
    }
    const bool isNumber = utl_classifyField(text).kind != utl_FieldKind::String;
    if (isNumber && m_types[c] == inp_ColumnType::TargetOrReal) return TakeOtherReal(column, text);
    if (m_types[c] == inp_ColumnType::Int || (m_types[c] == inp_ColumnType::Target && isNumber))
      return false;
    column.ints[m_count] = inp_nameCode(m_names.PlaceOf(text));
    return true;
  }

  bool TakeOtherReal(Column& column, std::string_view text) {
    double value = 0;
    if (!inp_readOtherReal(text.data(), text.data() + text.size(), value)) return false;
    column.reals[m_count] = value;
    return true;
  }

  std::span<const inp_ColumnType> m_types;
  cow_List<Column> m_columns;
  cow_List<inp_ColumnPiece::Column> m_view;
  PieceNames m_names;
  cow_List<inp_OddRow> m_odd; // row and slot within the piece
  inp_LineScan m_scan;
  std::size_t m_count = 0;
  long long m_rows = 0;
};

} // namespace

void inp_streamColumns(const inp_DataArray& data, std::span<const inp_ColumnType> columns,
                       const std::function<void(const inp_ColumnPiece&)>& prepare,
                       const std::function<void(const inp_ColumnPiece&)>& take) {
  const inp_PieceBuffers<ColumnsPiece> buffers;
  long long row = 0;
  inp_decodePieces(
      inp_cutData(data),
      [&](const inp_DataPiece& piece, std::size_t slot) {
        buffers[slot].Decode(piece, columns);
        prepare(buffers[slot].View(0));
      },
      [&](std::size_t slot) {
        take(buffers[slot].View(row));
        row += buffers[slot].Rows();
      });
}
