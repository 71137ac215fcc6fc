#include "inpS/properties/inpS_DistributionReader.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kFieldsPerLine = 8;
constexpr const char* kKept = " The line is kept as it stands, and nothing is made of it.";

} // namespace

void inpS_DistributionReader::Rows::Clear() {
  targets.clear();
  values.clear();
  faults.clear();
  lines.clear();
}

inpS_DistributionReader::inpS_DistributionReader(
    const inp_Keyword& keyword, const eds_FormInfo& form, const KvoSimPosition& record,
    const inpS_FormNames& names, const inpS_DistributionTable& table, inp_Visitor& messages)
    : m_keyword(keyword), m_form(form), m_record(record), m_messages(messages),
      m_components(table.GetAllComponents()), m_sets(record),
      m_targets(form.columnItems.front(), names, m_sets),
      m_targetColumn(record, form.columnItems.front()),
      m_valueColumn(record, form.columnItems.back(), table.TotalNumComponents()) {}

bool inpS_DistributionReader::IsWrapped() const {
  return m_components.size() + 1 > kFieldsPerLine;
}

cow_List<inp_ColumnType> inpS_DistributionReader::LineTypes() const {
  const std::size_t fields = std::min(m_components.size() + 1, kFieldsPerLine);
  cow_List<inp_ColumnType> types(fields, inp_ColumnType::Real);
  types.front() = IsWrapped() ? inp_ColumnType::TargetOrReal : inp_ColumnType::Target;
  return types;
}

bool inpS_DistributionReader::Read() {
  const auto translate = [&](const Piece& piece) {
    m_targets.Translate(piece.columns.front().ints.first(piece.count));
  };
  const cow_List<inp_ColumnType> types = LineTypes();
  inp_streamColumns(m_keyword.Data(), types, translate, [&](const Piece& piece) { Take(piece); });
  if (m_open) {
    m_rows.Clear();
    CloseRow();
    Store(m_rows);
  }
  m_targetColumn.Finish();
  m_valueColumn.Finish();
  KvoSimDataRecord record = m_record.DataRecord();
  record.SetInt(m_form.rowsField, m_count);
  if (!m_defaults.empty()) {
    const auto bytes = std::as_bytes(std::span(m_defaults));
    record.SetInt(m_form.defaultRowField, m_defaultRow);
    record.SetString(m_form.defaultsField,
                     {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  if (!m_isWhole) TellFaults();
  return m_isWhole;
}

void inpS_DistributionReader::Take(const Piece& piece) {
  m_targets.TranslateNames(piece, piece.columns.front().ints.first(piece.count));
  m_rows.Clear();
  IsWrapped() ? TakeLines(piece) : TakePlain(piece);
  Store(m_rows);
}

// A row for each line: the columns of the piece become rows of values.
void inpS_DistributionReader::TakePlain(const Piece& piece) {
  const std::size_t width = m_components.size();
  const std::span<int> targets = piece.columns.front().ints.first(piece.count);
  m_rows.faults.assign(piece.count, Fault::None);
  m_rows.values.resize(piece.count * width);
  for (std::size_t k = 0; k < width; ++k) {
    const double* const from = piece.columns[k + 1].reals.data();
    double* const to = m_rows.values.data() + k;
    for (std::size_t n = 0; n < piece.count; ++n) to[n * width] = from[n];
  }
  for (const inp_OddRow& odd : piece.odd) {
    const auto slot = static_cast<std::size_t>(odd.slot);
    double first = inp_blankReal;
    m_rows.faults[slot] = ReadOdd(odd.row, targets[slot], first,
                                  std::span(m_rows.values).subspan(slot * width, width));
  }
  m_rows.targets.assign(targets.begin(), targets.end());
  for (std::size_t n = 0; n < piece.count; ++n)
    if (targets[n] == inpS_noTarget) m_rows.faults[n] = Fault::Target;
  for (std::size_t n = 0; n < m_rows.values.size(); ++n)
    if (inp_isBlankReal(m_rows.values[n]) && m_rows.faults[n / width] == Fault::None)
      m_rows.faults[n / width] = Fault::Values;
}

void inpS_DistributionReader::TakeLines(const Piece& piece) {
  double values[kFieldsPerLine - 1];
  const std::size_t fields = piece.columns.size();
  auto odd = piece.odd.begin();
  for (std::size_t n = 0; n < piece.count; ++n) {
    Line line;
    line.target = piece.columns[0].ints[n];
    line.first = piece.columns[0].reals[n];
    for (std::size_t c = 1; c < fields; ++c) values[c - 1] = piece.columns[c].reals[n];
    line.values = std::span(values).first(fields - 1);
    if (odd != piece.odd.end() && odd->slot == static_cast<long long>(n)) {
      line.fault = ReadOdd(odd->row, line.target, line.first, std::span(values).first(fields - 1));
      line.surplus = m_surplus;
      ++odd;
    }
    AddLine(line);
  }
}

// By the general road. What stands behind the fields of a line is counted.
inpS_DistributionReader::Fault inpS_DistributionReader::ReadOdd(long long row, int& target,
                                                                double& first,
                                                                std::span<double> values) {
  m_surplus = 0;
  const inp_DataArray& data = m_keyword.Data();
  const bool hasTarget = data.Cols(row) > 0 && data.HasValue(row, 0);
  target = hasTarget ? m_targets.Of(data, row, 0) : inp_blankInt;
  if (hasTarget && data.IsNumber(row, 0)) first = data.AsDouble(row, 0);
  Fault fault = Fault::None;
  for (std::size_t k = 0; k < values.size(); ++k) {
    const int col = static_cast<int>(k) + 1;
    const bool hasValue = col < data.Cols(row) && data.HasValue(row, col);
    values[k] = hasValue && data.IsNumber(row, col) ? data.AsDouble(row, col) : inp_blankReal;
    if (hasValue && !data.IsNumber(row, col) && fault == Fault::None) fault = Fault::Word;
  }
  for (int col = static_cast<int>(values.size()) + 1; col < data.Cols(row); ++col) {
    if (!data.HasValue(row, col)) continue;
    m_surplus = static_cast<std::size_t>(col) - values.size();
    if (fault == Fault::None) fault = Fault::TooMany;
  }
  return fault;
}

// A row takes as many lines as its values do; a full line that holds more than it still lacks
// begins the next one. More fields than a line has, or than the row lacks, cost the row, and none
// behind it: one that has such a line goes on with what stands on a row's last line.
void inpS_DistributionReader::AddLine(const Line& line) {
  std::size_t given = line.values.size();
  while (given > 0 && inp_isBlankReal(line.values[given - 1])) --given;
  const std::size_t fields = 1 + given + line.surplus;
  const std::size_t onLast = m_components.size() % kFieldsPerLine + 1;
  bool isSurplus = m_open && m_values.size() + fields > m_components.size();
  if (isSurplus && fields >= kFieldsPerLine && !(m_fault == Fault::TooMany && fields == onLast)) {
    CloseRow();
    isSurplus = false;
  }
  if (m_open)
    m_values.push_back(line.first);
  else
    BeginRow(line);
  m_values.insert(m_values.end(), line.values.begin(),
                  line.values.begin() + static_cast<std::ptrdiff_t>(given));
  m_values.resize(m_values.size() + line.surplus, inp_blankReal);
  const Fault fault = isSurplus ? Fault::TooMany : line.fault;
  if (m_fault == Fault::None && fault != Fault::None) {
    m_fault = fault;
    m_line = line.row;
  }
  if (!IsWrapped() || m_values.size() >= m_components.size()) CloseRow();
}

void inpS_DistributionReader::BeginRow(const Line& line) {
  m_open = true;
  m_values.clear();
  m_fault = Fault::None;
  m_line = line.row;
  const bool isNumber = line.target == inp_blankInt && !inp_isBlankReal(line.first);
  m_target = isNumber ? inpS_noTarget : line.target;
}

void inpS_DistributionReader::CloseRow() {
  m_open = false;
  m_values.resize(m_components.size(), inp_blankReal);
  if (m_target == inpS_noTarget)
    m_fault = Fault::Target;
  else if (m_fault == Fault::None && std::ranges::any_of(m_values, inp_isBlankReal))
    m_fault = Fault::Values;
  m_rows.targets.push_back(m_target);
  m_rows.values.insert(m_rows.values.end(), m_values.begin(), m_values.end());
  m_rows.faults.push_back(m_fault);
  m_rows.lines.push_back(m_line);
}

// ---- into the record

void inpS_DistributionReader::Store(const Rows& rows) {
  const auto isFault = [](Fault fault) { return fault != Fault::None; };
  if (std::ranges::any_of(rows.faults, isFault) ||
      std::ranges::find(rows.targets, inp_blankInt) != rows.targets.end())
    return StoreSound(rows);
  Append(rows.targets, rows.values);
}

// The first rows one by one: a column that outgrows its record becomes an array, and which of the
// two comes first must not depend on the pieces that the rows come in.
void inpS_DistributionReader::Append(std::span<const int> targets, std::span<const double> values) {
  constexpr long long fewRows = 256; // more than a record holds
  const std::size_t width = m_components.size();
  for (; !targets.empty() && m_count < fewRows; ++m_count) {
    m_targetColumn.Append(targets.first(1));
    m_valueColumn.Append(values.first(width));
    targets = targets.subspan(1);
    values = values.subspan(width);
  }
  m_targetColumn.Append(targets);
  m_valueColumn.Append(values);
  m_count += static_cast<long long>(targets.size());
}

// Without the faulty ones and that of all others, of which the last one holds.
void inpS_DistributionReader::StoreSound(const Rows& rows) {
  const auto width = static_cast<std::ptrdiff_t>(m_components.size());
  cow_List<int> targets;
  cow_List<double> values;
  for (std::size_t n = 0; n < rows.targets.size(); ++n) {
    const auto begin = rows.values.begin() + static_cast<std::ptrdiff_t>(n) * width;
    if (rows.faults[n] != Fault::None) {
      m_isWhole = false;
    } else if (rows.targets[n] == inp_blankInt) {
      m_isWhole = m_isWhole && m_defaults.empty();
      m_defaults.assign(begin, begin + width);
      m_defaultRow = m_count + static_cast<long long>(targets.size());
    } else {
      targets.push_back(rows.targets[n]);
      values.insert(values.end(), begin, begin + width);
    }
  }
  Append(targets, values);
}

// ---- what cannot be taken

// Once more over the lines, now that it is known that there are such.
void inpS_DistributionReader::TellFaults() {
  const inp_DataArray& data = m_keyword.Data();
  const std::size_t fields = LineTypes().size();
  double values[kFieldsPerLine - 1];
  m_rows.Clear();
  m_open = false;
  for (long long row = 0; row < data.Rows(); ++row) {
    if (inpS_KeywordReader::IsBlankRow(data, row)) continue;
    Line line;
    line.row = row;
    line.values = std::span(values).first(fields - 1);
    line.fault = ReadOdd(row, line.target, line.first, std::span(values).first(fields - 1));
    line.surplus = m_surplus;
    AddLine(line);
    TellRows();
  }
  if (m_open) CloseRow();
  TellRows();
  if (!m_undefined.empty()) TellUndefined();
}

void inpS_DistributionReader::TellRows() {
  for (std::size_t n = 0; n < m_rows.faults.size(); ++n) {
    const Fault fault = m_rows.faults[n];
    const long long row = m_rows.lines[n];
    if (fault == Fault::None && m_rows.targets[n] == inp_blankInt &&
        std::exchange(m_hasDefault, true))
      m_messages.AddWarning(inp_Utils::MessageAtRow(
          m_keyword, row,
          "Another line without a label or set was given before; the last one holds."));
    else if (fault == Fault::Target)
      TellTarget(row);
    else if (fault == Fault::Values)
      TellMissing(n);
    else if (fault != Fault::None)
      TellField(row, fault);
  }
  m_rows.Clear();
}

void inpS_DistributionReader::TellTarget(long long row) {
  const inp_DataArray& data = m_keyword.Data();
  const cow_String text = data.AsStringVerbatim(row, 0);
  if (data.IsNumber(row, 0) || m_targets.IsLabel(text)) {
    if (m_undefined.empty()) m_firstUndefined = row;
    m_undefined.push_back(text);
    return;
  }
  const cow_String missing(m_form.columnItems.front().alternatives.back().referable->missing);
  m_messages.AddWarning(inp_Utils::MessageAtField(
      m_keyword, row, 0,
      inp_Utils::Format(missing.c_str(), inp_Utils::Fold(text).c_str()) + kKept));
}

void inpS_DistributionReader::TellMissing(std::size_t n) {
  const auto begin = m_rows.values.begin() + static_cast<std::ptrdiff_t>(n * m_components.size());
  const auto first = std::find_if(begin, m_rows.values.end(), inp_isBlankReal);
  m_messages.AddWarning(inp_Utils::MessageAtRow(
      m_keyword, m_rows.lines[n],
      "The line does not tell its " + m_components[static_cast<std::size_t>(first - begin)] + "." +
          kKept));
}

// A word among the numbers, or a number behind them.
void inpS_DistributionReader::TellField(long long row, Fault fault) {
  const inp_DataArray& data = m_keyword.Data();
  int col = fault == Fault::Word ? 1 : static_cast<int>(LineTypes().size());
  if (col >= data.Cols(row)) { // of a row's last line
    m_messages.AddWarning(inp_Utils::MessageAtRow(
        m_keyword, row, cow_String("The row has more values than it can have.") + kKept));
    return;
  }
  while (!data.HasValue(row, col) || (fault == Fault::Word && data.IsNumber(row, col))) ++col;
  const cow_String text = fault == Fault::Word
                              ? "\"" + data.AsStringVerbatim(row, col) + "\" is no number."
                              : cow_String("The line has more values than it can have.");
  m_messages.AddWarning(inp_Utils::MessageAtField(m_keyword, row, col, text + kKept));
}

void inpS_DistributionReader::TellUndefined() {
  const bool isNode = m_form.columnItems.front().alternatives.front().type == eds_FormType::Node;
  const cow_String name = m_keyword.StringOf("name", "");
  const char* const what = isNode ? "nodes" : "elements";
  const cow_String text =
      m_instance.empty()
          ? inp_Utils::Format("Distribution %s references undefined %s: ", name.c_str(), what)
          : inp_Utils::Format("Distribution %s references undefined %s from instance %s: ",
                              name.c_str(), what, m_instance.c_str());
  m_messages.AddWarning(inp_Utils::MessageAtField(
      m_keyword, m_firstUndefined, 0,
      inp_Utils::MessageWithItems(text, m_undefined) +
          ". Their lines are kept as they stand, and nothing is made of them."));
}
