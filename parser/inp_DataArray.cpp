#include "parser/inp_DataArray.h"
#include "base/utl_Assert.h"
#include "base/utl_Controls.h"
#include "base/utl_Number.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace {

constexpr long long indexStep = 64; // rows between two entries of the row index
constexpr std::ptrdiff_t releaseStep = 8 * 1024 * 1024;

struct RowStart {
  std::size_t segment;
  const char* at;
  long long line;
};

template <class Int> Int toInt(const utl_Field& field) {
  constexpr auto low = std::numeric_limits<Int>::min();
  constexpr auto high = std::numeric_limits<Int>::max();
  if (field.kind == utl_FieldKind::Integer)
    return static_cast<Int>(std::clamp<std::int64_t>(field.integer, low, high));
  if (field.kind != utl_FieldKind::Double) return 0;
  if (field.real <= static_cast<double>(low)) return low;
  if (field.real >= static_cast<double>(high)) return high;
  return static_cast<Int>(field.real);
}

} // namespace

// The segments, a sparse index of row starts that grows as far as anyone has read, and a cursor on
// the row and the fields read last: reading left to right and top to bottom scans the text once.
struct inp_DataArray::Impl {
  cow_List<inp_DataSegment> segments;
  long long rows = 0;
  bool wholeLines = false; // a line is one field, whatever it holds

  cow_List<RowStart> starts; // of rows 0, 64, 128 …; stays empty when they are few

  long long row = -1; // the cursor; -1: before the first row
  std::size_t segment = 0;
  const char* rowBegin = nullptr;
  const char* rowEnd = nullptr;  // line end left out
  const char* nextRow = nullptr; // null: at the segment's start
  long long line = 0;
  long long nextLine = 0;
  const char* kept = nullptr; // pages before it have been released

  cow_List<std::string_view> fields; // of the cursor's row, as far as split
  const char* unsplit = nullptr;     // null: all fields are split
  const char* lastQuote = nullptr;   // no pair of quotes opens at or behind it; null: not known

  void Seek(long long wanted) {
    if (wanted == row) return;
    utl_ASSERT(wanted >= 0 && wanted < rows);
    if (wanted < row || wanted - row > indexStep) JumpNear(wanted);
    while (row < wanted) Step();
    BeginFields();
  }

  // Puts the cursor before the last indexed row that is not behind the wanted one.
  void JumpNear(long long wanted) {
    if (starts.empty()) return Rewind();
    const auto block = std::min(static_cast<std::size_t>(wanted / indexStep), starts.size() - 1);
    const auto blockRow = static_cast<long long>(block) * indexStep;
    if (wanted > row && row > blockRow) return; // the cursor is nearer
    segment = starts[block].segment;
    nextRow = starts[block].at;
    nextLine = starts[block].line;
    kept = nextRow;
    row = blockRow - 1;
  }

  void Rewind() {
    segment = 0;
    nextRow = nullptr;
    row = -1;
  }

  void Step() {
    while (!StepInSegment()) {
      ++segment;
      utl_ASSERT(segment < segments.size());
      nextRow = nullptr;
    }
    ++row;
    if (rows <= indexStep) return;
    if (row % indexStep == 0 && static_cast<std::size_t>(row / indexStep) == starts.size())
      starts.push_back({segment, rowBegin, line});
  }

  bool StepInSegment() {
    const inp_DataSegment& in = segments[segment];
    if (!nextRow) {
      nextRow = kept = in.begin;
      nextLine = in.firstLine;
    }
    while (nextRow != in.end) {
      rowBegin = nextRow;
      line = nextLine++;
      rowEnd = inp_lineFeed(rowBegin, in.end);
      nextRow = rowEnd == in.end ? in.end : rowEnd + 1;
      if (inp_lineKind(rowBegin, rowEnd) != inp_LineKind::Data) continue;
      while (rowEnd != rowBegin && rowEnd[-1] == '\r') --rowEnd;
      ReleaseBehind();
      return true;
    }
    return false;
  }

  void ReleaseBehind() {
    if (rowBegin - kept < releaseStep) return;
    segments[segment].text->Release(kept, rowBegin);
    kept = rowBegin;
  }

  void BeginFields() {
    fields.clear();
    if (wholeLines) {
      fields.push_back(inp_trim(rowBegin, rowEnd));
      unsplit = nullptr;
      return;
    }
    const bool blank = inp_skipBlanks(rowBegin, rowEnd) == rowEnd;
    unsplit = blank ? nullptr : rowBegin;
    lastQuote = nullptr;
  }

  // A quote protects up to the next one on its line; a single one (5" pipe) is a plain character.
  const char* BehindQuoted(const char* quote) {
    if (lastQuote && quote >= lastQuote) return quote + 1;
    const void* close = std::memchr(quote + 1, '"', static_cast<std::size_t>(rowEnd - quote - 1));
    if (close) return static_cast<const char*>(close) + 1;
    lastQuote = quote;
    return quote + 1;
  }

  void SplitField() {
    const char* p = unsplit;
    while (p != rowEnd && *p != ',') p = *p == '"' ? BehindQuoted(p) : p + 1;
    fields.push_back(inp_trim(unsplit, p));
    unsplit = p == rowEnd ? nullptr : p + 1;
  }

  int Cols(long long wanted) {
    Seek(wanted);
    while (unsplit) SplitField();
    return static_cast<int>(fields.size());
  }

  std::string_view Field(long long wanted, int col) {
    Seek(wanted);
    const auto index = static_cast<std::size_t>(col);
    while (unsplit && fields.size() <= index) SplitField();
    utl_ASSERT(col >= 0 && index < fields.size());
    return fields[index];
  }
};

inp_DataArray::inp_DataArray(cow_List<inp_DataSegment> segments, bool wholeLines) {
  std::erase_if(segments, [](const inp_DataSegment& segment) { return segment.rows == 0; });
  if (segments.empty()) return;
  m_impl = std::make_shared<Impl>();
  for (const inp_DataSegment& segment : segments) m_impl->rows += segment.rows;
  m_impl->segments = std::move(segments);
  m_impl->wholeLines = wholeLines;
}

long long inp_DataArray::Rows() const {
  return m_impl ? m_impl->rows : 0;
}

bool inp_DataArray::HasWholeLines() const {
  return m_impl && m_impl->wholeLines;
}

int inp_DataArray::Cols(long long row) const {
  utl_ASSERT(row >= 0 && row < Rows());
  return m_impl->Cols(row);
}

std::string_view inp_DataArray::FieldText(long long row, int col) const {
  utl_ASSERT(row >= 0 && row < Rows());
  return m_impl->Field(row, col);
}

inp_FieldType inp_DataArray::Type(long long row, int col) const {
  switch (utl_classifyField(FieldText(row, col)).kind) {
  case utl_FieldKind::None:
    return inp_FieldType::None;
  case utl_FieldKind::Integer:
    return inp_FieldType::Integer;
  case utl_FieldKind::Double:
    return inp_FieldType::Double;
  case utl_FieldKind::String:
    break;
  }
  return inp_FieldType::String;
}

bool inp_DataArray::IsNone(long long row, int col) const {
  return FieldText(row, col).empty();
}
bool inp_DataArray::HasValue(long long row, int col) const {
  return !IsNone(row, col);
}
bool inp_DataArray::IsNumber(long long row, int col) const {
  return utl_classifyField(FieldText(row, col)).IsNumber();
}
bool inp_DataArray::IsInteger(long long row, int col) const {
  return utl_classifyField(FieldText(row, col)).IsWhole();
}
int inp_DataArray::AsInt(long long row, int col) const {
  return toInt<int>(utl_classifyField(FieldText(row, col)));
}
long long inp_DataArray::AsInt64(long long row, int col) const {
  return toInt<std::int64_t>(utl_classifyField(FieldText(row, col)));
}
double inp_DataArray::AsDouble(long long row, int col) const {
  const utl_Field field = utl_classifyField(FieldText(row, col));
  return field.IsNumber() ? field.real : 0;
}
cow_String inp_DataArray::AsString(long long row, int col) const {
  return inp_Utils::Fold(FieldText(row, col));
}
cow_String inp_DataArray::AsStringVerbatim(long long row, int col) const {
  return cow_String(FieldText(row, col));
}

bool inp_DataArray::HasRowContinuation(long long row) const {
  const int cols = Cols(row);
  return cols > 1 && IsNone(row, cols - 1);
}

std::string_view inp_DataArray::RowText(long long row) const {
  utl_ASSERT(row >= 0 && row < Rows());
  m_impl->Seek(row);
  return {m_impl->rowBegin, static_cast<std::size_t>(m_impl->rowEnd - m_impl->rowBegin)};
}

cow_String inp_DataArray::Text() const {
  cow_String out;
  for (long long row = 0; row < Rows(); ++row) {
    out += RowText(row);
    out += '\n';
  }
  utl_maskControlsInLines(out);
  return out;
}

wip_Place inp_DataArray::PlaceOf(long long row, int col) const {
  const std::string_view field = FieldText(row, col);
  const inp_DeckText& text = *m_impl->segments[m_impl->segment].text;
  const int width = static_cast<int>(std::min<std::size_t>(field.size(), 4096));
  return text.PlaceInLine(m_impl->rowBegin, field.data(), width, m_impl->line);
}

wip_Place inp_DataArray::PlaceOfRow(long long row) const {
  const std::string_view text = RowText(row);
  const std::string_view shown = inp_trim(text.data(), text.data() + text.size());
  const int width = static_cast<int>(std::min<std::size_t>(shown.size(), 4096));
  return m_impl->segments[m_impl->segment].text->PlaceInLine(m_impl->rowBegin, shown.data(), width,
                                                             m_impl->line);
}

bool inp_DataArray::SharesTextWith(const inp_DataArray& other) const {
  return m_impl && m_impl == other.m_impl;
}

const void* inp_DataArray::Identity() const {
  return m_impl.get();
}

const cow_List<inp_DataSegment>& inp_DataArray::Segments() const {
  static const cow_List<inp_DataSegment> none;
  return m_impl ? m_impl->segments : none;
}
