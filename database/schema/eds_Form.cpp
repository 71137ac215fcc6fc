#include "database/schema/eds_Form.h"
#include "base/utl_Assert.h"
#include "database/schema/eds_FormKind.h"
#include "database/schema/eds_Schema.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <deque>
#include <memory>
#include <mutex>

namespace {

struct Row {
  eds_RecordKind kind;
  std::string_view name;
  std::string_view keyword;
  std::string_view selectors;
  std::string_view parameters;
  std::string_view data;
  eds_FormRepeat repeat;
};

constexpr Row rows[] = {
#define EDS_FORM(Kind, Keyword, Selectors, Parameters, Data, Repeat)                               \
  {eds_FormKind::Kind, #Kind, #Keyword, Selectors, Parameters, Data, eds_FormRepeat::Repeat},
#include "database/schema/forms.def"
};

constexpr auto keywords = [] {
  std::array<eds_FormKeyword, std::size(rows)> all{};
  for (std::size_t n = 0; n < all.size(); ++n) all[n] = {rows[n].kind, rows[n].keyword};
  return all;
}();

// By the number of the kind; -1: it has no form. Each record that is made asks.
constexpr auto rowOfKind = [] {
  std::array<short, static_cast<std::size_t>(std::ranges::max(rows, {}, &Row::kind).kind) + 1> all;
  all.fill(-1);
  for (std::size_t n = 0; n < std::size(rows); ++n)
    all[static_cast<std::size_t>(rows[n].kind)] = static_cast<short>(n);
  return all;
}();

// What a referable may be: nothing certain, a record of the store, or a form.
namespace referred {
using namespace eds_FormKind;
constexpr eds_RecordKind None = eds_RecordKind::None;
#define EDS_RECORD(kind, number, table) constexpr eds_RecordKind kind = eds_RecordKind::kind;
#define EDS_FIELD(kind, number, name, column, type, argument)
#include "database/schema/records.def"
} // namespace referred

constexpr eds_Referable referables[] = {
#define EDS_REFERABLE(word, Keyword, Kind, Where, Member, InternalMember, Text)                    \
  {#word,                                                                                          \
   #Keyword,                                                                                       \
   referred::Kind,                                                                                 \
   eds_Referable::Place::Where,                                                                    \
   eds_Member::Member,                                                                             \
   eds_Member::InternalMember,                                                                     \
   Text},
#include "database/schema/referables.def"
};

struct Vocabulary {
  std::string_view name;
  eds_Vocabulary number;
};
constexpr Vocabulary vocabularies[] = {
#define EDS_VOCABULARY(name, number) {#name, eds_Vocabulary::name},
#define EDS_SYMBOL(vocabulary, number, name)
#include "database/schema/symbols.def"
};

// ---- the text of a row

// What stands between separators, those within braces, brackets and parentheses not counting.
cow_List<std::string_view> piecesOf(std::string_view text, char separator) {
  cow_List<std::string_view> pieces;
  std::size_t begin = 0;
  int depth = 0;
  for (std::size_t n = 0; n <= text.size(); ++n) {
    const char c = n < text.size() ? text[n] : separator;
    depth += (c == '{' || c == '[' || c == '(') - (c == '}' || c == ']' || c == ')');
    if (c != separator || depth > 0) continue;
    if (n > begin) pieces.push_back(text.substr(begin, n - begin));
    begin = n + 1;
  }
  return pieces;
}

eds_FormItem::Alternative alternativeOf(std::string_view type) {
  eds_FormItem::Alternative alternative;
  alternative.isLate = type.ends_with('+');
  if (alternative.isLate) type.remove_suffix(1);
  if (type.starts_with('{')) {
    alternative.type = eds_FormType::Choice;
    for (const std::string_view word : piecesOf(type.substr(1, type.size() - 2), '|'))
      alternative.words.emplace_back(word);
    return alternative;
  }
  constexpr std::pair<std::string_view, eds_FormType> plain[] = {
      {"flag", eds_FormType::Flag},      {"int", eds_FormType::Int}, {"real", eds_FormType::Real},
      {"text", eds_FormType::Text},      {"any", eds_FormType::Any}, {"node", eds_FormType::Node},
      {"element", eds_FormType::Element}};
  for (const auto& [word, known] : plain) {
    if (word != type) continue;
    alternative.type = known;
    return alternative;
  }
  if (const auto known = std::ranges::find(vocabularies, type, &Vocabulary::name);
      known != std::end(vocabularies)) {
    alternative.type = eds_FormType::Symbol;
    alternative.vocabulary = known->number;
    return alternative;
  }
  const auto referable = std::ranges::find(referables, type, &eds_Referable::word);
  utl_ASSERT(referable != std::end(referables));
  alternative.type = eds_FormType::Reference;
  alternative.referable = referable;
  return alternative;
}

eds_FormItem itemOf(std::string_view text) {
  eds_FormItem item;
  item.isRequired = text.ends_with('!');
  item.isOptional = text.ends_with('?');
  if (const std::size_t star = text.find('*'); star != text.npos && star + 1 < text.size()) {
    item.perLine = text.back() - '0';
    utl_ASSERT(star + 2 == text.size() && item.perLine > 0 && item.perLine < 9);
    text.remove_suffix(1);
  }
  item.isRepeated = text.ends_with('*');
  if (item.isRequired || item.isOptional || item.isRepeated) text.remove_suffix(1);
  item.isParameter = !text.starts_with('.');
  if (!item.isParameter) text.remove_prefix(1);
  if (const std::size_t equals = text.find('='); equals != text.npos) {
    const char* end = text.data() + text.size();
    utl_ASSERT(std::from_chars(text.data() + equals + 1, end, item.unset).ptr == end);
    text = text.substr(0, equals);
  }
  const std::size_t colon = text.find(':');
  item.name = text.substr(0, colon);
  item.isLate = item.name.ends_with('+');
  if (item.isLate) item.name.pop_back();
  const std::string_view types = colon == text.npos ? text : text.substr(colon + 1);
  for (const std::string_view type : piecesOf(types, '|'))
    item.alternatives.push_back(alternativeOf(type));
  return item;
}

cow_List<eds_FormItem> itemsOf(std::string_view text) {
  cow_List<eds_FormItem> items;
  for (const std::string_view word : piecesOf(text, ' ')) items.push_back(itemOf(word));
  return items;
}

eds_RecordKind kindNamed(std::string_view name) {
  const auto row = std::ranges::find(rows, name, &Row::name);
  utl_ASSERT(row != std::end(rows));
  return row->kind;
}

// "table?(E>0 nu)": its columns, and whether there may be no rows.
void readTable(std::string_view text, eds_FormInfo& form) {
  const std::size_t open = text.find('(');
  utl_ASSERT(open != text.npos && text.ends_with(')'));
  form.columns = text.substr(open + 1, text.size() - open - 2);
  std::string_view word = text.substr(0, open);
  form.mayLackRows = word.ends_with('?');
  if (form.mayLackRows) word.remove_suffix(1);
  utl_ASSERT(word == "table" || word == "plain");
  form.data = word == "table" ? eds_FormData::Table : eds_FormData::Plain;
}

void readData(std::string_view text, eds_FormInfo& form) {
  for (const std::string_view piece : piecesOf(text, ' ')) {
    if (piece.starts_with('[')) {
      form.lines.push_back(itemsOf(piece.substr(1, piece.size() - 2)));
    } else if (piece == "text") {
      form.data = eds_FormData::Text;
    } else if (piece == "pairs") {
      form.data = eds_FormData::Pairs;
    } else if (piece.starts_with("words(")) {
      form.data = eds_FormData::Words;
      form.words = itemOf(piece.substr(6, piece.size() - 7));
    } else if (piece.starts_with("*{")) {
      form.data = eds_FormData::Records;
      form.record = kindNamed(piece.substr(2, piece.size() - 3));
    } else if (piece.starts_with("*[")) {
      form.data = eds_FormData::Columns;
      form.columnItems = itemsOf(piece.substr(2, piece.size() - 3));
    } else if (piece.starts_with('#')) {
      const std::size_t open = piece.find('[');
      form.data = eds_FormData::Columns;
      form.isGrouped = true;
      form.group = itemOf(cow_String(piece.substr(1, open - 1)) + ":int!");
      form.columnItems = itemsOf(piece.substr(open + 1, piece.size() - open - 2));
    } else {
      readTable(piece, form);
    }
  }
}

// ---- the record kind of a form

eds_FieldType fieldTypeOf(const eds_FormItem::Alternative& alternative) {
  switch (alternative.type) {
  case eds_FormType::Flag:
    return eds_FieldType::Bool;
  case eds_FormType::Int:
  case eds_FormType::Node:
  case eds_FormType::Element:
    return eds_FieldType::Int;
  case eds_FormType::Real:
    return eds_FieldType::Real;
  case eds_FormType::Symbol:
    return eds_FieldType::Symbol;
  case eds_FormType::Any:
    return eds_FieldType::AnyRef;
  case eds_FormType::Reference:
    return alternative.referable->kind == eds_RecordKind::None ? eds_FieldType::AnyRef
                                                               : eds_FieldType::Ref;
  default:
    return eds_FieldType::Text;
  }
}

bool isCapital(char c) {
  return c >= 'A' && c <= 'Z';
}

// "SolidSection" and "solid_section", "NonlinearBH" and "nonlinear_bh": names in code and on disk.
cow_String tableNameOf(std::string_view kind) {
  cow_String name;
  for (std::size_t n = 0; n < kind.size(); ++n) {
    const char c = kind[n];
    if (isCapital(c) && n > 0 && !isCapital(kind[n - 1])) name += '_';
    name += isCapital(c) ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return name;
}

cow_String codeNameOf(std::string_view column) {
  cow_String name;
  bool capital = true;
  for (const char c : column) {
    if (c != '_') name += capital && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    capital = c == '_';
  }
  return name;
}

// A row that has been read.
class Form {
public:
  explicit Form(const Row& row) {
    m_form.kind = row.kind;
    m_form.keyword = row.keyword;
    m_form.selectors = row.selectors;
    m_form.repeat = row.repeat;
    m_form.parameters = itemsOf(row.parameters);
    readData(row.data, m_form);
    m_record.kind = row.kind;
    m_record.name = row.name;
    m_record.table = m_texts.emplace_back(tableNameOf(row.name));
    for (eds_FormItem& item : m_form.parameters) AddItem(item);
    for (cow_List<eds_FormItem>& line : m_form.lines)
      for (eds_FormItem& item : line) AddItem(item);
    if (m_form.data == eds_FormData::Text)
      m_form.textField = static_cast<int>(AddField("lines", eds_FieldType::Text).number);
    if (m_form.data == eds_FormData::Words) AddItem(m_form.words);
    if (m_form.data == eds_FormData::Columns) AddColumns();
    for (eds_FormItem& item : m_form.parameters) AddLate(item);
    for (cow_List<eds_FormItem>& line : m_form.lines)
      for (eds_FormItem& item : line) AddLate(item);
    if (const int field = FieldOf("other_parameters"); field >= 0) m_form.othersField = field;
  }
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const eds_FormInfo& Info() const { return m_form; }
  const eds_RecordInfo& Record() const { return m_record; }

  int FieldOf(std::string_view column) const {
    const auto field = std::ranges::find(m_record.fields, column, &eds_FieldInfo::column);
    return field == m_record.fields.end() ? -1 : static_cast<int>(field - m_record.fields.begin());
  }

private:
  struct Field {
    eds_FieldInfo& info;
    std::size_t number;
  };
  Field AddField(const cow_String& column, eds_FieldType type,
                 eds_RecordKind target = eds_RecordKind::None) {
    eds_FieldInfo field;
    field.column = m_texts.emplace_back(column);
    field.name = m_texts.emplace_back(codeNameOf(column));
    field.type = type;
    field.target = target;
    m_record.fields.push_back(field);
    return {m_record.fields.back(), m_record.fields.size() - 1};
  }

  // The first type's field has the item's name, the others that of their type behind it.
  void AddItem(eds_FormItem& item) {
    for (eds_FormItem::Alternative& one : item.alternatives) {
      one.isLate = one.isLate || item.isLate;
      const bool isFirst = &one == &item.alternatives.front();
      if ((isFirst && !item.isLate) || !one.isLate) AddValue(item, one);
      if (!one.isLate) AddInstance(item, one);
    }
  }

  // What came later than the form: no field changes its number.
  void AddLate(eds_FormItem& item) {
    for (eds_FormItem::Alternative& one : item.alternatives) {
      if (!one.isLate) continue;
      if (item.isLate || &one != &item.alternatives.front()) AddValue(item, one);
      AddInstance(item, one);
    }
  }

  static cow_String ColumnOf(const eds_FormItem& item, const eds_FormItem::Alternative& one) {
    if (&one == &item.alternatives.front()) return item.name;
    return item.name + (one.referable                    ? "_" + cow_String(one.referable->word)
                        : one.type == eds_FormType::Text ? "_text"
                                                         : "_value");
  }

  void AddValue(const eds_FormItem& item, eds_FormItem::Alternative& one) {
    const Field field = AddField(ColumnOf(item, one), fieldTypeOf(one),
                                 one.referable ? one.referable->kind : eds_RecordKind::None);
    field.info.vocabulary = one.vocabulary;
    field.info.intDefault = static_cast<int64_t>(item.unset);
    field.info.realDefault = item.unset;
    one.field = static_cast<int>(field.number);
  }

  void AddInstance(const eds_FormItem& item, eds_FormItem::Alternative& one) {
    const bool isLabel = one.type == eds_FormType::Node || one.type == eds_FormType::Element;
    if (!isLabel && (!one.referable || !one.referable->IsScoped())) return;
    one.instanceField = static_cast<int>(
        AddField(ColumnOf(item, one) + "_instance", eds_FieldType::Ref, eds_RecordKind::Instance)
            .number);
  }

  void AddColumns() {
    m_form.rowsField = static_cast<int>(AddField("rows", eds_FieldType::Int).number);
    if (m_form.isGrouped) AddColumn(m_form.group);
    for (eds_FormItem& item : m_form.columnItems) AddColumn(item);
    if (!m_form.columnItems.front().isOptional) return;
    const Field row = AddField("default_row", eds_FieldType::Int);
    row.info.intDefault = -1;
    m_form.defaultRowField = static_cast<int>(row.number);
    m_form.defaultsField = static_cast<int>(AddField("defaults", eds_FieldType::Bytes).number);
  }

  void AddColumn(eds_FormItem& item) {
    eds_FormItem::Alternative& one = item.alternatives.front();
    // Words and names are places in what the record lists of them.
    const bool isReal = one.type == eds_FormType::Real;
    one.field = static_cast<int>(
        AddField(item.name, isReal ? eds_FieldType::Real : eds_FieldType::Int).number);
    const Field few = AddField(item.name + "_few", eds_FieldType::Bytes);
    item.fewField = static_cast<int>(few.number);
    if (one.type != eds_FormType::Real) few.info.valueType = eds_ValueType::Int32;
    item.arrayField = static_cast<int>(
        AddField(item.name + "_array", eds_FieldType::Ref, eds_RecordKind::Array).number);
    const auto isText = [](const eds_FormItem::Alternative& type) {
      return type.type == eds_FormType::Text;
    };
    if (std::ranges::any_of(item.alternatives, isText))
      item.wordsField =
          static_cast<int>(AddField(item.name + "_words", eds_FieldType::Text).number);
    if (item.isRepeated) {
      const Field perRow = AddField(item.name + "_per_row", eds_FieldType::Int);
      perRow.info.intDefault = 1;
      item.perRowField = static_cast<int>(perRow.number);
    }
  }

  eds_FormInfo m_form;
  eds_RecordInfo m_record;
  std::deque<cow_String> m_texts; // what names and columns lie in
};

// Read when first asked for, by whatever thread.
struct Entry {
  std::once_flag once;
  std::unique_ptr<const Form> form;
};
Entry entries[std::size(rows)];

const Form* formOf(eds_RecordKind kind) {
  const auto number = static_cast<std::size_t>(kind);
  if (number >= rowOfKind.size() || rowOfKind[number] < 0) return nullptr;
  const auto row = static_cast<std::size_t>(rowOfKind[number]);
  Entry& entry = entries[row];
  std::call_once(entry.once, [&] { entry.form = std::make_unique<const Form>(rows[row]); });
  return entry.form.get();
}

} // namespace

std::span<const eds_Referable> eds_referables() {
  return referables;
}

std::span<const eds_FormKeyword> eds_formKeywords() {
  return keywords;
}

const eds_FormInfo* eds_formOf(eds_RecordKind kind) {
  const Form* form = formOf(kind);
  return form ? &form->Info() : nullptr;
}

const eds_RecordInfo* eds_formRecord(eds_RecordKind kind) {
  const Form* form = formOf(kind);
  return form ? &form->Record() : nullptr;
}

int eds_formField(eds_RecordKind kind, std::string_view column) {
  const Form* form = formOf(kind);
  const int field = form ? form->FieldOf(column) : -1;
  utl_ASSERT(field >= 0);
  return field;
}

const eds_RecordInfo* eds_formRecord(std::string_view table) {
  // Names are made for the few rows whose first letter fits.
  const auto isIts = [&](const Row& row) {
    return table.starts_with(static_cast<char>(row.name.front() - 'A' + 'a')) &&
           tableNameOf(row.name) == table;
  };
  const auto row = std::ranges::find_if(rows, isIts);
  return row != std::end(rows) ? eds_formRecord(row->kind) : nullptr;
}
