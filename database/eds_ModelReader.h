#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"
#include "database/eds_Array.h"
#include "database/eds_MemberSet.h"
#include <string_view>
#include <variant>

// One field of a record kind, as the schema describes it.
struct eds_FieldInfo {
  std::string_view name;   // as in the code
  std::string_view column; // as on disk
  eds_FieldType type = eds_FieldType::Int;
  eds_RecordKind target = eds_RecordKind::None; // Ref
  eds_Vocabulary vocabulary{};                  // Symbol
  int64_t intDefault = 0;
  double realDefault = 0;
  std::string_view textDefault;
  eds_ValueType valueType = eds_ValueType::Double; // Bytes: of the values in them
};

struct eds_RecordInfo {
  eds_RecordKind kind = eds_RecordKind::None;
  std::string_view name;  // as in the code
  std::string_view table; // as on disk
  std::vector<eds_FieldInfo> fields;
};

// What a field holds; monostate when it was never set.
using eds_FieldValue =
    std::variant<std::monostate, int64_t, double, bool, std::string_view, eds_ObjectID>;

struct eds_LinkInfo {
  eds_Member member{};
  std::string_view memberName;
  int64_t position = 0;
  bool hasIntKey = false;
  bool hasTextKey = false;
  int64_t intKey = 0;
  std::string_view textKey;
  eds_ObjectID target;
};

// Walks a whole model without knowing its kinds: for dumps, comparisons and summaries. Everything
// comes in the order of creation, so equal decks give equal walks.
class eds_ModelReader {
public:
  explicit eds_ModelReader(const KvoObjDocument& document);

  // The kinds with at least one record, by number; the store's own kinds (collections, component
  // sets, distributions, drawers, arrays, label spaces, annotations) come last. Links are not among
  // them.
  std::vector<const eds_RecordInfo*> Kinds() const;
  static const eds_RecordInfo* Info(eds_RecordKind kind); // null for an unknown one
  int64_t RecordCount(eds_RecordKind kind) const;
  std::vector<int64_t> RecordIDs(eds_RecordKind kind) const;
  eds_FieldValue Value(eds_RecordKind kind, int64_t id, int field) const;
  // The symbol's name for a field of type Symbol, "" when the number is unknown.
  static std::string_view SymbolName(eds_Vocabulary vocabulary, int64_t number);

  std::vector<eds_LinkInfo> Links(eds_RecordKind kind, int64_t id) const; // of this owner
  std::string_view Annotation(eds_RecordKind kind, int64_t id) const;     // "" when it has none

  eds_ArrayReader Array(int64_t id) const;
  eds_MemberSet CSet(int64_t id) const;

  // "instance 3 'Inst-1'": kind, number, and the name when it has one.
  cow_String Describe(eds_ObjectID object) const;

  std::vector<std::pair<cow_String, cow_String>> Meta() const;

private:
  KvoObjDocument m_document;
};

// One fault of a file, in words.
using eds_Faults = std::vector<cow_String>;

// The whole check, for `check-model` and tests: the engine's integrity check, every checksum, every
// reference and link, every array's length against what refers to it. Empty when all is well. Reads
// the whole file.
eds_Faults eds_checkModel(const KvoObjDocument& document);
