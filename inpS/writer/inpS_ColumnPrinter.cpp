#include "inpS/writer/inpS_ColumnPrinter.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "database/eds_DamagedModel.h"
#include "inpS/forms/inpS_ColumnWords.h"
#include "inpS/forms/inpS_StoredColumn.h"
#include "inpS/keywords/inpS_QuotedName.h"
#include "inpS/writer/inpS_SetNames.h"
#include "parser/inp_BulkColumns.h"
#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

namespace {

constexpr long long kRowsPerPiece = 8 << 10;
constexpr std::size_t kFieldsPerLine = 8;

// What a line shows for a target: a label, "instance.label", or the name of a set.
class Targets {
public:
  Targets(const KvoSimPosition& record, bool nodes, const inpS_DeckLabels& labels,
          const inpS_DeckScope& scope)
      : m_record(record), m_labeler(nodes ? labels.nodes : labels.elements), m_all(labels),
        m_nodes(nodes), m_own(nodes ? scope.nodes : scope.elements) {
    for (const KvoSimPosition& target : record.GetVector(eds_Member::Targets)) {
      const KvoSimDataRecord named = target.DataRecord();
      const KvoSimPosition instance = named.GetReference(eds_Target_Instance);
      cow_String name;
      if (!instance.IsNull())
        name = inpS_quoted(instance.DataRecord().ReturnString(eds_Instance_Name)) + ".";
      const KvoSimPosition set = named.GetReference(eds_Target_Set);
      const bool isSurface = set.IsA(eds_RecordKind::Surface);
      m_names.push_back(name + inpS_quoted(isSurface ? GetSurfaceName(set) : SetName(set)));
      m_room = std::max(m_room, m_names.back().size());
    }
    for (const cow_String& name : nodes ? labels.nodeInstances : labels.elementInstances)
      m_room = std::max(m_room, name.size() + 1 + utl_intTextRoom);
    if (m_own < 0) return;
    m_labels = &m_labeler.Labels(m_own);
    m_first = scope.isPart ? 0 : std::max<long long>(0, m_labeler.FlatFirst(m_own));
  }

  std::size_t Room() const { return m_room; }

  char* Print(char* out, int target) const {
    if (target < 0) {
      const auto place = static_cast<std::size_t>(-1LL - target);
      if (place >= m_names.size()) TellDamaged(target);
      return Put(out, m_names[place]);
    }
    if (m_labels && target >= m_first && target - m_first < m_labels->Size())
      return utl_printInt(out, m_labels->Label(target - m_first));
    int64_t ordinal = 0;
    const int occurrence = m_labeler.OccurrenceOfFlat(target, ordinal);
    if (occurrence < 0) TellDamaged(target);
    if (const cow_String& instance = m_all.InstanceOf(m_nodes, occurrence); !instance.empty()) {
      out = Put(out, instance);
      *out++ = '.';
    }
    return utl_printInt(out, m_labeler.Labels(occurrence).Label(ordinal));
  }

private:
  static char* Put(char* out, std::string_view text) {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
  }
  [[noreturn]] void TellDamaged(int target) const {
    eds_tellDamaged(m_record, "a column names " + std::to_string(target) + ", which is nothing");
  }

  KvoSimPosition m_record;
  const KvoObjLabeler& m_labeler;
  const inpS_DeckLabels& m_all;
  bool m_nodes;
  int m_own;
  const eds_LabelMap* m_labels = nullptr; // of the scope's own
  long long m_first = 0;                  // of their ordinals
  cow_List<cow_String> m_names;
  std::size_t m_room = utl_intTextRoom;
};

// One field of each line, a piece at a time.
class Field {
public:
  Field(const eds_FormInfo& form, const eds_FormItem& item, const KvoSimPosition& position,
        long long rows, const inpS_DeckLabels& labels, const inpS_DeckScope& scope,
        std::mutex& guard)
      : m_record(position), m_type(item.alternatives.front().type) {
    const KvoSimDataRecord record = position.DataRecord();
    const int field = item.alternatives.front().field;
    m_goesOn = item.isRepeated;
    m_perLine = static_cast<std::size_t>(item.perLine);
    if (item.perRowField >= 0) m_perRow = record.GetInt(item.perRowField);
    if (m_perRow < 1) eds_tellDamaged(position, "a column has rows of no value");
    if (m_type == eds_FormType::Real) {
      m_reals.emplace(record, item, rows, m_perRow,
                      record.IsMemberNull(field) ? inp_blankReal : record.GetDouble(field), guard);
      return;
    }
    m_ints.emplace(record, item, rows, 1,
                   record.IsMemberNull(field) ? inp_blankInt : record.GetInt(field), guard);
    if (item.wordsField >= 0)
      ReadWords(record, item.wordsField, IsOfTextsAlone(form, item));
    else if (m_type != eds_FormType::Int)
      m_targets.emplace(position, m_type == eds_FormType::Node, labels, scope);
  }

  std::size_t Room() const {
    return m_targets ? m_targets->Room()
           : m_reals ? PerRow() * (utl_doubleTextRoom + 2)
                     : std::max<std::size_t>(utl_intTextRoom, m_wordRoom);
  }
  std::size_t PerRow() const { return static_cast<std::size_t>(m_perRow); }
  bool GoesOn() const { return m_goesOn; }
  std::size_t PerLine() const { return m_perLine; } // of values that go on; 0: eight fields

  struct Values {
    cow_List<int> ints;
    cow_List<double> reals;
    bool IsBlank(std::size_t n) const {
      return ints.empty() ? inp_isBlankReal(reals[n]) : ints[n] == inp_blankInt;
    }
  };
  // `n` counts values, of which a row may have several.
  void Read(long long first, std::size_t count, Values& values) {
    values.ints.resize(m_ints ? count : 0);
    values.reals.resize(m_reals ? count * PerRow() : 0);
    if (m_ints) m_ints->Read(first, values.ints);
    if (m_reals) m_reals->Read(first, values.reals);
  }
  char* Print(char* out, const Values& values, std::size_t n) const {
    if (values.IsBlank(n)) return out;
    if (m_targets) return m_targets->Print(out, values.ints[n]);
    if (m_ints && m_hasWords && values.ints[n] < 0) return PrintWord(out, values.ints[n]);
    return m_reals ? utl_printDouble(out, values.reals[n]) : utl_printInt(out, values.ints[n]);
  }

private:
  // Where a number can stand, a word of digits is in quotes.
  static bool IsOfTextsAlone(const eds_FormInfo& form, const eds_FormItem& item) {
    const bool maySwap = &item == &form.columnItems.back() && inpS_endsInTexts(form.columnItems);
    return item.alternatives.size() == 1 && !maySwap;
  }
  void ReadWords(const KvoSimDataRecord& record, int field, bool isAlone) {
    m_hasWords = true;
    for (const cow_String& word : inpS_ColumnWords::Stored(record, field)) {
      m_words.push_back(isAlone ? inpS_textInDeck(word) : inpS_quoted(word));
      m_wordRoom = std::max(m_wordRoom, m_words.back().size());
    }
  }
  char* PrintWord(char* out, int code) const {
    const auto place = static_cast<std::size_t>(-1LL - code);
    if (place >= m_words.size())
      eds_tellDamaged(m_record, "a column names a word that the record does not have");
    std::memcpy(out, m_words[place].data(), m_words[place].size());
    return out + m_words[place].size();
  }

  KvoSimPosition m_record;
  eds_FormType m_type;
  int m_perRow = 1;
  bool m_goesOn = false; // over further lines
  std::size_t m_perLine = 0;
  bool m_hasWords = false;
  cow_List<cow_String> m_words;
  std::size_t m_wordRoom = 0;
  std::optional<inpS_StoredColumn<int>> m_ints;
  std::optional<inpS_StoredColumn<double>> m_reals;
  std::optional<Targets> m_targets;
};

using Fields = cow_List<std::unique_ptr<Field>>;

char* printSeparator(char* out, std::size_t place, bool isNewLine) {
  if (place == 0) return out;
  *out++ = ',';
  *out++ = isNewLine ? '\n' : ' ';
  return out;
}

// The values of a repeated column go on over further lines; a row of any other is one line.
// place: of the field; value: of the column's, in the row.
bool isNewLine(const Field& field, std::size_t place, std::size_t value) {
  if (!field.GoesOn()) return false;
  if (field.PerLine() == 0) return place % kFieldsPerLine == 0;
  return value > 0 && value % field.PerLine() == 0;
}

// Up to the last field that is given; one that goes on over further lines is there whole, as all
// rows have as many lines. A text at the end stands in the place of a real that is not
// given where it may (endsInTexts).
char* printLine(char* out, const Fields& fields, const cow_List<Field::Values>& values,
                std::size_t n, bool endsInTexts) {
  std::size_t count = fields.size();
  while (count > 0 && !fields[count - 1]->GoesOn() && values[count - 1].IsBlank(n)) --count;
  std::size_t place = 0;
  for (std::size_t c = 0; c < count; ++c) {
    const std::size_t perRow = fields[c]->PerRow();
    if (endsInTexts && c + 2 == fields.size() && count == fields.size() && values[c].IsBlank(n))
      continue;
    for (std::size_t k = 0; k < perRow; ++k, ++place)
      out = fields[c]->Print(printSeparator(out, place, isNewLine(*fields[c], place, k)), values[c],
                             n * perRow + k);
    // Lest the line of one that is not given be no line.
    if (fields[c]->PerLine() == 1 && values[c].IsBlank(n * perRow + perRow - 1)) *out++ = ',';
  }
  *out++ = '\n';
  return out;
}

// The line of all others: nothing in the place of the target.
class DefaultLine {
public:
  DefaultLine(const eds_FormInfo& form, const KvoSimDataRecord& record, const Field& values) {
    if (form.defaultsField < 0 || record.IsMemberNull(form.defaultsField)) return;
    const std::string_view bytes = record.GetString(form.defaultsField);
    if (bytes.size() != values.PerRow() * sizeof(double))
      eds_tellDamaged(record.Pos(), "the values of all others are not as many as a row's");
    cow_List<double> defaults(values.PerRow());
    std::memcpy(defaults.data(), bytes.data(), bytes.size());
    m_text.resize(4 + defaults.size() * (utl_doubleTextRoom + 2));
    char* out = m_text.data();
    for (std::size_t k = 0; k < defaults.size(); ++k)
      out = utl_printDouble(printSeparator(out, k + 1, (k + 1) % kFieldsPerLine == 0), defaults[k]);
    *out++ = '\n';
    m_text.resize(static_cast<std::size_t>(out - m_text.data()));
    m_row = record.GetInt64(form.defaultRowField);
  }
  std::string_view Text() const { return m_text; }
  bool IsBefore(long long row) const { return !m_text.empty() && m_row == row; }
  bool IsBehind(long long rows) const { return !m_text.empty() && (m_row < 0 || m_row >= rows); }
  char* Print(char* out) const {
    std::memcpy(out, m_text.data(), m_text.size());
    return out + m_text.size();
  }

private:
  cow_String m_text;
  long long m_row = -1;
};

// One group after the other: how many rows it has, and these, so many to a line.
void printGroups(utl_Stream& out, const eds_FormInfo& form, const KvoSimPosition& record,
                 Fields& fields, std::size_t room) {
  constexpr std::size_t rowsPerLine = 4;
  const long long rows = record.DataRecord().GetInt64(form.rowsField);
  std::mutex guard;
  const int field = form.group.alternatives.front().field;
  const KvoSimDataRecord data = record.DataRecord();
  inpS_StoredColumn<int> groups(data, form.group, rows, 1,
                                data.IsMemberNull(field) ? 0 : data.GetInt(field), guard);
  cow_List<long long> sizes;
  cow_List<int> numbers;
  int latest = -1;
  for (long long first = 0; first < rows; first += kRowsPerPiece) {
    numbers.resize(static_cast<std::size_t>(std::min(kRowsPerPiece, rows - first)));
    groups.Read(first, numbers);
    for (const int number : numbers) {
      if (sizes.empty() || number != latest) sizes.push_back(0);
      latest = number;
      ++sizes.back();
    }
  }
  cow_List<Field::Values> values(fields.size());
  cow_List<char> text(room);
  long long row = 0, loaded = 0, begin = 0;
  for (const long long size : sizes) {
    out << std::to_string(size) << '\n';
    for (long long n = 0; n < size; ++n, ++row) {
      if (row == loaded) {
        begin = loaded;
        loaded = std::min(rows, begin + kRowsPerPiece);
        for (std::size_t c = 0; c < fields.size(); ++c)
          fields[c]->Read(begin, static_cast<std::size_t>(loaded - begin), values[c]);
      }
      char* end = text.data();
      for (std::size_t c = 0; c < fields.size(); ++c) {
        if (c > 0) end = printSeparator(end, c, false);
        end = fields[c]->Print(end, values[c], static_cast<std::size_t>(row - begin));
      }
      const bool isLast = n + 1 == size || (n + 1) % rowsPerLine == 0;
      out << std::string_view(text.data(), static_cast<std::size_t>(end - text.data()))
          << (n + 1 == size ? "\n"
              : isLast      ? ",\n"
                            : ", ");
    }
  }
}

} // namespace

void inpS_printColumns(utl_Stream& out, const eds_FormInfo& form, const KvoSimPosition& record,
                       const inpS_DeckLabels& labels, const inpS_DeckScope& scope) {
  const long long rows = record.DataRecord().GetInt64(form.rowsField);
  std::mutex guard;
  Fields fields;
  std::size_t room = 1;
  for (const eds_FormItem& item : form.columnItems) {
    fields.push_back(std::make_unique<Field>(form, item, record, rows, labels, scope, guard));
    room += fields.back()->Room() + 2;
  }
  if (form.isGrouped) return printGroups(out, form, record, fields, room);
  const bool endsInTexts = inpS_endsInTexts(form.columnItems);
  const DefaultLine others(form, record.DataRecord(), *fields.back());
  const long long perPiece = std::clamp(rows, 1LL, utl_blockSize(kRowsPerPiece));
  const long long pieces = (rows + perPiece - 1) / perPiece;
  utl_printBlocks(out, static_cast<std::size_t>(std::max(pieces, 0LL)),
                  room * static_cast<std::size_t>(perPiece) + others.Text().size(),
                  [&](std::size_t piece, char* line) {
                    const long long first = static_cast<long long>(piece) * perPiece;
                    const auto count = static_cast<std::size_t>(std::min(perPiece, rows - first));
                    thread_local cow_List<Field::Values> values;
                    values.resize(fields.size());
                    for (std::size_t c = 0; c < fields.size(); ++c)
                      fields[c]->Read(first, count, values[c]);
                    for (std::size_t n = 0; n < count; ++n) {
                      if (others.IsBefore(first + static_cast<long long>(n)))
                        line = others.Print(line);
                      line = printLine(line, fields, values, n, endsInTexts);
                    }
                    return line;
                  });
  if (others.IsBehind(rows)) out << others.Text();
}

std::function<cow_List<cow_String>(long long row)> inpS_rowTexts(const eds_FormInfo& form,
                                                                 const KvoSimPosition& record,
                                                                 const inpS_DeckLabels& labels,
                                                                 const inpS_DeckScope& scope) {
  struct Open {
    std::mutex guard;
    Fields fields;
    cow_List<char> room;
  };
  const auto open = std::make_shared<Open>();
  const long long rows = record.DataRecord().GetInt64(form.rowsField);
  for (const eds_FormItem& item : form.columnItems) {
    open->fields.push_back(
        std::make_unique<Field>(form, item, record, rows, labels, scope, open->guard));
    open->room.resize(std::max(open->room.size(), open->fields.back()->Room()));
  }
  return [open](long long row) {
    cow_List<cow_String> texts;
    for (const auto& field : open->fields) {
      Field::Values values;
      field->Read(row, 1, values);
      char* const begin = open->room.data();
      for (std::size_t k = 0; k < field->PerRow(); ++k)
        texts.emplace_back(begin, field->Print(begin, values, k));
    }
    return texts;
  };
}
