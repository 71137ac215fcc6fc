#include "database/schema/eds_Schema.h"
#include "base/utl_Assert.h"
#include "database/schema/eds_Form.h"
#include <algorithm>
#include <array>

namespace {

struct FieldRow {
  eds_RecordKind record;
  int number;
  eds_FieldInfo info;
};

eds_FieldInfo fieldOfType(eds_FieldType type, int64_t value) {
  return {{}, {}, type, {}, {}, value, 0, {}};
}
eds_FieldInfo fieldOfType(eds_FieldType type, double value) {
  return {{}, {}, type, {}, {}, 0, value, {}};
}
eds_FieldInfo fieldOfType(eds_FieldType type, std::string_view value) {
  return {{}, {}, type, {}, {}, 0, 0, value};
}
eds_FieldInfo fieldOfType(eds_FieldType type, eds_RecordKind target) {
  return {{}, {}, type, target, {}, 0, 0, {}};
}
eds_FieldInfo fieldOfType(eds_FieldType type, eds_Vocabulary vocabulary) {
  return {{}, {}, type, {}, vocabulary, 0, 0, {}};
}

FieldRow fieldRow(eds_RecordKind record, int number, std::string_view name, std::string_view column,
                  eds_FieldInfo info) {
  info.name = name;
  info.column = column;
  return {record, number, info};
}

// How a row's argument reads for each type.
#define EDS_ARGUMENT_Int(argument)                                                                 \
  int64_t {                                                                                        \
    argument                                                                                       \
  }
#define EDS_ARGUMENT_Bool(argument)                                                                \
  int64_t {                                                                                        \
    argument                                                                                       \
  }
#define EDS_ARGUMENT_Real(argument)                                                                \
  double {                                                                                         \
    argument                                                                                       \
  }
#define EDS_ARGUMENT_Text(argument) std::string_view(argument)
#define EDS_ARGUMENT_Bytes(argument) std::string_view(argument)
#define EDS_ARGUMENT_Symbol(argument) eds_Vocabulary::argument
#define EDS_ARGUMENT_Ref(argument) eds_RecordKind::argument
#define EDS_ARGUMENT_AnyRef(argument) eds_RecordKind::argument

std::vector<FieldRow> fieldRows() {
  return {
#define EDS_RECORD(kind, number, table)
#define EDS_FIELD(kind, number, name, column, type, argument)                                      \
  fieldRow(eds_RecordKind::kind, number, #name, #column,                                           \
           fieldOfType(eds_FieldType::type, EDS_ARGUMENT_##type(argument))),
#include "database/schema/records.def"
  };
}

// Of records.def alone; forms are kept by eds_Form.
std::vector<eds_RecordInfo> buildPlainRecords() {
  std::vector<eds_RecordInfo> records{
#define EDS_RECORD(kind, number, table) eds_RecordInfo{eds_RecordKind::kind, #kind, #table, {}},
#define EDS_FIELD(kind, number, name, column, type, argument)
#include "database/schema/records.def"
  };
  std::sort(records.begin(), records.end(),
            [](const auto& a, const auto& b) { return a.kind < b.kind; });
  for (const FieldRow& row : fieldRows()) {
    const auto record = std::ranges::lower_bound(records, row.record, {}, &eds_RecordInfo::kind);
    utl_ASSERT(row.number == static_cast<int>(record->fields.size()));
    record->fields.push_back(row.info);
  }
  return records;
}

const std::vector<eds_RecordInfo>& plainRecords() {
  static const std::vector<eds_RecordInfo> table = buildPlainRecords();
  return table;
}

std::vector<eds_RecordInfo> buildRecords() {
  std::vector<eds_RecordInfo> records = plainRecords();
  for (const eds_FormKeyword& form : eds_formKeywords())
    records.push_back(*eds_formRecord(form.kind));
  std::ranges::sort(records, {}, &eds_RecordInfo::kind);
  return records;
}

const std::vector<eds_RecordInfo>& records() {
  static const std::vector<eds_RecordInfo> table = buildRecords();
  return table;
}

// What members lead to.
namespace target {
struct Kinds {
  int first;
  int last;
};
#define EDS_RECORD(kind, number, table) constexpr Kinds kind{number, number};
#define EDS_FIELD(kind, number, name, column, type, argument)
#include "database/schema/records.def"
#define EDS_KIND(kind, number) constexpr Kinds kind{number, number};
#include "database/schema/kinds.def"
constexpr Kinds AnyKind{1, 0xfffe};
constexpr Kinds AnyField{Field.first, MeshedField.last};
constexpr Kinds AnyProperty{ElasticIsotropic.first, AmplitudeTabular.first - 1};
constexpr Kinds AnyAmplitude{AmplitudeTabular.first, eds_firstOwnKind - 1};
constexpr Kinds AnyOption{GasketBehavior.first, 0xfffe}; // of a material's or another form
constexpr Kinds AnyForm{eds_firstFormKind, 0xfffe};
} // namespace target

enum class Holding : uint8_t { Alone, Shared };

constexpr eds_MemberInfo members[] = {
#define EDS_MEMBER(name, number, shape, kinds, holding)                                            \
  {eds_Member::name,       #name,                                                                  \
   eds_MemberShape::shape, target::kinds.first,                                                    \
   target::kinds.last,     Holding::holding == Holding::Alone},
#include "database/schema/members.def"
};

constexpr eds_SymbolInfo symbols[] = {
#define EDS_VOCABULARY(name, number)
#define EDS_SYMBOL(vocabulary, number, name) {eds_Vocabulary::vocabulary, number, name},
#include "database/schema/symbols.def"
};

struct VocabularyRow {
  eds_Vocabulary vocabulary;
  std::string_view name;
};
constexpr VocabularyRow vocabularies[] = {
#define EDS_VOCABULARY(name, number) {eds_Vocabulary::name, #name},
#define EDS_SYMBOL(vocabulary, number, name)
#include "database/schema/symbols.def"
};

constexpr int dataTypes[] = {
#define EDS_DATATYPE(name, number) number,
#include "database/schema/dsets.def"
};

constexpr eds_TypeID Space{};
#define EDS_RECORD(kind, number, table) constexpr eds_TypeID Record_##kind{eds_RecordKind::kind};
#define EDS_FIELD(kind, number, name, column, type, argument)
#include "database/schema/records.def"
#define EDS_VOCABULARY(name, number) constexpr eds_TypeID Vocabulary_##name{eds_Vocabulary::name};
#define EDS_SYMBOL(vocabulary, number, name)
#include "database/schema/symbols.def"

constexpr eds_CollectionInfo collections[] = {
#define EDS_COLLECTION(name, number, source) {eds_CollectionKind::name, #name, source},
#include "database/schema/collections.def"
};

template <class Rows, class Key> auto findRow(const Rows& rows, Key key, auto member) {
  auto row = std::find_if(std::begin(rows), std::end(rows),
                          [&](const auto& r) { return r.*member == key; });
  return row == std::end(rows) ? nullptr : &*row;
}

} // namespace

std::span<const eds_RecordInfo> eds_schemaRecords() {
  return records();
}

const eds_RecordInfo* eds_schemaRecord(eds_RecordKind kind) {
  if (const eds_RecordInfo* form = eds_formRecord(kind)) return form;
  const auto& plain = plainRecords();
  const auto record = std::ranges::lower_bound(plain, kind, {}, &eds_RecordInfo::kind);
  return record != plain.end() && record->kind == kind ? &*record : nullptr;
}

const eds_RecordInfo* eds_schemaRecord(std::string_view table) {
  const auto& plain = plainRecords();
  const auto record = std::ranges::find(plain, table, &eds_RecordInfo::table);
  return record != plain.end() ? &*record : eds_formRecord(table);
}

std::span<const eds_MemberInfo> eds_schemaMembers() {
  return members;
}

const eds_MemberInfo* eds_schemaMember(eds_Member member) {
  // Each link that is made asks.
  static const auto byNumber = [] {
    std::array<const eds_MemberInfo*, 256> rows{};
    for (const eds_MemberInfo& row : members) rows.at(static_cast<std::size_t>(row.member)) = &row;
    return rows;
  }();
  const auto number = static_cast<std::size_t>(member);
  return number < byNumber.size() ? byNumber[number] : nullptr;
}

std::span<const eds_CollectionInfo> eds_schemaCollections() {
  return collections;
}

const eds_CollectionInfo* eds_schemaCollection(eds_CollectionKind kind) {
  return findRow(collections, kind, &eds_CollectionInfo::kind);
}

bool eds_schemaHasDataType(int number) {
  return std::find(std::begin(dataTypes), std::end(dataTypes), number) != std::end(dataTypes);
}

std::span<const eds_SymbolInfo> eds_schemaSymbols() {
  return symbols;
}

std::span<const eds_SymbolInfo> eds_schemaSymbols(eds_Vocabulary vocabulary) {
  auto ofIt = [&](const eds_SymbolInfo& symbol) { return symbol.vocabulary == vocabulary; };
  auto first = std::find_if(std::begin(symbols), std::end(symbols), ofIt);
  auto last = std::find_if_not(first, std::end(symbols), ofIt);
  return {first, last};
}

std::string_view eds_vocabularyName(eds_Vocabulary vocabulary) {
  const VocabularyRow* row = findRow(vocabularies, vocabulary, &VocabularyRow::vocabulary);
  return row != nullptr ? row->name : std::string_view();
}

eds_TypeID eds_InputFragmentTypeIndex(int fragment, int index) {
  const auto number = static_cast<uint16_t>(index);
  if (index < 0 || index != number) return {};
  switch (static_cast<eds_Fragment>(fragment)) {
  case eds_Fragment::Record:
    if (eds_schemaRecord(static_cast<eds_RecordKind>(number)) == nullptr) return {};
    return static_cast<eds_RecordKind>(number);
  case eds_Fragment::Collection:
    if (eds_schemaCollection(static_cast<eds_CollectionKind>(number)) == nullptr) return {};
    return static_cast<eds_CollectionKind>(number);
  case eds_Fragment::Data:
    if (!eds_schemaHasDataType(index)) return {};
    return static_cast<eds_DataType>(number);
  case eds_Fragment::Member:
    if (eds_schemaMember(static_cast<eds_Member>(number)) == nullptr) return {};
    return static_cast<eds_Member>(number);
  case eds_Fragment::Symbol:
    if (eds_vocabularyName(static_cast<eds_Vocabulary>(number)).empty()) return {};
    return static_cast<eds_Vocabulary>(number);
  case eds_Fragment::None:
    break;
  }
  return {};
}
