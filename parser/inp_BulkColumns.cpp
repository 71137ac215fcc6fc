#include "parser/inp_BulkColumns.h"
#include "base/utl_BlockSize.h"
#include "parser/inp_BulkPiece.h"
#include "parser/inp_LineScan.h"
#include <algorithm>
#include <bit>
#include <cstring>
#include <deque>

namespace {

// Names in order of first appearance, each with its place, in memory of their own. One of at most
// sixteen characters is told from others by two words, without a look at its text.
class Names {
public:
  void Clear() {
    m_names.clear();
    m_keys.clear();
    m_texts.resize(std::min<std::size_t>(m_texts.size(), 1));
    if (!m_texts.empty()) m_texts.front().clear();
    std::ranges::fill(m_slots, 0);
  }

  struct Key {
    std::uint64_t head = 0;              // the first eight characters of more than eight
    std::uint64_t tail = 0;              // the last eight, the very last one on top
    explicit Key(std::string_view name); // loads inp_fieldReach bytes in front of its end
    // Of a name of at most sixteen characters.
    bool HasQuote() const { return HasQuote(head) || HasQuote(tail); }
    std::size_t Home(std::size_t slots) const {
      // What differs stands mostly on top, and a product carries upwards alone.
      const std::uint64_t text = tail ^ std::rotl(head, 23);
      const std::uint64_t hash = (text ^ text >> 32) * 0x9e3779b97f4a7c15ULL;
      return static_cast<std::size_t>(hash >> 32) & (slots - 1);
    }

  private:
    static bool HasQuote(std::uint64_t text) {
      constexpr std::uint64_t ones = 0x0101010101010101;
      const std::uint64_t differs = text ^ (ones * '"'); // a quote becomes a byte of nought
      return ((differs - ones) & ~differs & (ones << 7)) != 0;
    }
  };

  int PlaceOf(std::string_view name, const Key& key) {
    if (2 * (m_names.size() + 1) > m_slots.size()) Grow();
    std::size_t slot = key.Home(m_slots.size());
    while (m_slots[slot] != 0 && !Is(m_slots[slot] - 1, key, name))
      slot = (slot + 1) & (m_slots.size() - 1);
    if (m_slots[slot] == 0) {
      m_names.push_back(Keep(name));
      m_keys.push_back(key);
      m_slots[slot] = static_cast<std::uint32_t>(m_names.size());
    }
    return static_cast<int>(m_slots[slot] - 1);
  }

  std::span<const std::string_view> All() const { return m_names; }

private:
  bool Is(std::size_t place, const Key& key, std::string_view name) const {
    return m_keys[place].tail == key.tail && m_keys[place].head == key.head &&
           m_names[place].size() == name.size() && (name.size() <= 16 || m_names[place] == name);
  }

  // A text is never grown beyond what it has reserved: the names stay where they are.
  std::string_view Keep(std::string_view name) {
    constexpr std::size_t usual = 4096;
    if (m_texts.empty() || m_texts.back().capacity() - m_texts.back().size() < name.size())
      m_texts.emplace_back().reserve(std::max(usual, name.size()));
    cow_String& text = m_texts.back();
    text += name;
    return {text.data() + (text.size() - name.size()), name.size()};
  }

  void Grow() {
    m_slots.assign(std::max<std::size_t>(64, 2 * m_slots.size()), 0);
    for (std::size_t n = 0; n < m_names.size(); ++n) {
      std::size_t slot = m_keys[n].Home(m_slots.size());
      while (m_slots[slot] != 0) slot = (slot + 1) & (m_slots.size() - 1);
      m_slots[slot] = static_cast<std::uint32_t>(n + 1);
    }
  }

  cow_List<std::string_view> m_names;
  cow_List<Key> m_keys;
  std::deque<cow_String> m_texts;  // what the names lie in
  cow_List<std::uint32_t> m_slots; // place + 1; 0: free. A power of two of them, half of them free
};

Names::Key::Key(std::string_view name) {
  std::memcpy(&tail, name.data() + name.size() - 8, 8);
  if (name.size() < 8)
    tail &= ~std::uint64_t{0} << (64 - 8 * name.size());
  else if (name.size() > 8)
    std::memcpy(&head, name.data(), 8);
}

class ColumnsPiece {
public:
  void Begin() { // of a keyword
    m_names.Clear();
    m_wait = m_pause = 0;
  }

  void Decode(const inp_DataPiece& piece, std::span<const inp_ColumnType> types) {
    m_types = types;
    m_columns.resize(types.size());
    for (Column& column : m_columns) {
      column.ints.Clear();
      column.reals.Clear();
    }
    m_given = 0;
    if (m_names.All().size() > static_cast<std::size_t>(utl_blockSize(keptNames))) m_names.Clear();
    m_known = m_names.All().size();
    m_odd.clear();
    m_count = 0;
    m_rows = 0;
    m_scan.Run(piece, [this](const inp_Stretch& stretch) {
      TakeLines(stretch);
      return true;
    });
  }

  inp_ColumnPiece View(long long firstRow, std::size_t slot) {
    m_view.clear();
    for (Column& column : m_columns) m_view.push_back({column.ints, column.reals});
    for (inp_OddRow& odd : m_odd) odd.row += firstRow;
    return {m_count, m_view, m_given, m_names.All(), m_known, slot, m_odd, firstRow};
  }
  long long Rows() const { return m_rows; }

private:
  struct Column {
    utl_Buffer<int> ints;
    utl_Buffer<double> reals;
  };

  // After lines that are not all alike, stretches are taken line by line for a while, and longer
  // after each further one.
  void TakeLines(const inp_Stretch& stretch) {
    Resize(m_count + stretch.lines);
    if (m_wait > 0) {
      --m_wait;
    } else if (TakeLikeLines(stretch)) {
      m_pause = 0;
      return;
    } else {
      m_wait = m_pause = std::min(2 * m_pause + 1, longestPause);
    }
    TakeOneByOne(stretch);
  }

  // Lines of equally many fields of the plainest form, column by column; false: some are not, and
  // nothing is taken.
  bool TakeLikeLines(const inp_Stretch& stretch) {
    const std::size_t width = stretch.lines == 0 ? 0 : stretch.count / stretch.lines;
    if (width > m_columns.size() || stretch.count != stretch.lines * width) return false;
    for (std::size_t line = 0; line < stretch.lines; ++line)
      if (stretch.places[(line + 1) * width - 1] != stretch.feeds[line]) return false;
    for (std::size_t c = 0; c < width; ++c)
      if (!TakeColumn(c, width, stretch)) return false;
    for (std::size_t c = width; c < m_columns.size(); ++c) FillBlank(c, stretch.lines);
    m_given = std::max(m_given, width);
    m_count += stretch.lines;
    m_rows += static_cast<long long>(stretch.lines);
    return true;
  }

  bool TakeColumn(std::size_t c, std::size_t width, const inp_Stretch& stretch) {
    int* const ints = HasInts(c) ? m_columns[c].ints.Data() + m_count : nullptr;
    double* const reals = HasReals(c) ? m_columns[c].reals.Data() + m_count : nullptr;
    const auto each = [&](auto take) {
      std::size_t i = c;
      for (std::size_t line = 0; line < stretch.lines; ++line, i += width)
        if (!take(line, stretch.FieldBegin(i), stretch.FieldEnd(i))) return false;
      return true;
    };
    switch (m_types[c]) {
    case inp_ColumnType::Real:
      return each([&](std::size_t line, const char* begin, const char* end) {
        return inp_fastReal(begin, end, reals[line]);
      });
    case inp_ColumnType::Int:
      return each([&](std::size_t line, const char* begin, const char* end) {
        return isDigitAlone(begin, end, ints[line]) || inp_fastSmallInt(begin, end, ints[line]);
      });
    case inp_ColumnType::Target:
      return each([&](std::size_t line, const char* begin, const char* end) {
        return isLetter(*begin) ? TakeName(ints[line], begin, end)
                                : inp_fastSmallInt(begin, end, ints[line]);
      });
    case inp_ColumnType::Word:
      return each([&](std::size_t line, const char* begin, const char* end) {
        return TakeName(ints[line], begin, end);
      });
    case inp_ColumnType::TargetOrReal:
      break; // of lines that are seldom alike
    }
    return false;
  }

  void TakeOneByOne(const inp_Stretch& stretch) {
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
    m_given = std::max(m_given, c);
    for (; c < m_columns.size(); ++c) SetBlank(c);
    return true;
  }

  static bool isLetter(char c) {
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'z';
  }

  // As degrees of freedom are mostly given, all of a column alike.
  static bool isDigitAlone(const char* begin, const char* end, int& value) {
    value = end[-1] - '0';
    return static_cast<unsigned>(value) < 10 &&
           (end - begin == 1 || (end - begin == 2 && *begin == ' '));
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
      return (!isLetter(*begin) && inp_fastSmallInt(begin, end, column.ints[m_count])) ||
             TakeName(column.ints[m_count], begin, end);
    case inp_ColumnType::TargetOrReal:
      if (inp_fastSmallInt(begin, end, column.ints[m_count])) {
        column.reals[m_count] = column.ints[m_count];
        return true;
      }
      column.ints[m_count] = inp_blankInt;
      if (inp_fastReal(begin, end, column.reals[m_count])) return true;
      column.reals[m_count] = inp_blankReal;
      return TakeName(column.ints[m_count], begin, end);
    case inp_ColumnType::Word:
      break;
    }
    return TakeName(column.ints[m_count], begin, end);
  }

  // What begins with a letter and holds no quote is a name as it stands.
  bool TakeName(int& code, const char* begin, const char* end) {
    const std::string_view text = inp_trim(begin, end);
    if (text.empty() || !isLetter(text[0])) return false;
    const Names::Key key(text);
    if (text.size() <= 16 ? key.HasQuote() : text.find('"') != text.npos) return false;
    code = inp_nameCode(m_names.PlaceOf(text, key));
    return true;
  }

  void FillBlank(std::size_t c, std::size_t rows) {
    if (HasReals(c)) std::fill_n(m_columns[c].reals.Data() + m_count, rows, inp_blankReal);
    if (HasInts(c)) std::fill_n(m_columns[c].ints.Data() + m_count, rows, inp_blankInt);
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
    m_given = m_columns.size();
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
    column.ints[m_count] = inp_nameCode(m_names.PlaceOf(text, Names::Key(text)));
    return true;
  }

  bool TakeOtherReal(Column& column, std::string_view text) {
    double value = 0;
    if (!inp_readOtherReal(text.data(), text.data() + text.size(), value)) return false;
    column.reals[m_count] = value;
    return true;
  }

  static constexpr std::ptrdiff_t keptNames = 1 << 16; // from one piece to the next
  static constexpr int longestPause = 63;              // stretches

  std::span<const inp_ColumnType> m_types;
  cow_List<Column> m_columns;
  cow_List<inp_ColumnPiece::Column> m_view;
  Names m_names;
  std::size_t m_known = 0;
  std::size_t m_given = 0;    // columns of which some row has a field
  cow_List<inp_OddRow> m_odd; // row and slot within the piece
  inp_LineScan m_scan;
  int m_wait = 0; // stretches
  int m_pause = 0;
  std::size_t m_count = 0;
  long long m_rows = 0;
};

} // namespace

void inp_streamColumns(const inp_DataArray& data, std::span<const inp_ColumnType> columns,
                       const std::function<void(const inp_ColumnPiece&)>& prepare,
                       const std::function<void(const inp_ColumnPiece&)>& take) {
  const inp_PieceBuffers<ColumnsPiece> buffers;
  const cow_List<inp_DataPiece> pieces = inp_cutData(data);
  for (std::size_t slot = 0; slot < std::min(pieces.size(), utl_slotCount()); ++slot)
    buffers[slot].Begin();
  long long row = 0;
  inp_decodePieces(
      pieces,
      [&](const inp_DataPiece& piece, std::size_t slot) {
        buffers[slot].Decode(piece, columns);
        prepare(buffers[slot].View(0, slot));
      },
      [&](std::size_t slot) {
        take(buffers[slot].View(row, slot));
        row += buffers[slot].Rows();
      });
}
