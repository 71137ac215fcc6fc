#pragma once

#include <cstdint>

// The identifiers of everything the store can hold, generated from database/schema/*.def; the
// record kinds of forms are named in database/schema/eds_FormKind.h.

enum class eds_RecordKind : uint16_t {
  None = 0,
#define EDS_RECORD(kind, number, table) kind = number,
#define EDS_FIELD(kind, number, name, column, type, argument)
#include "database/schema/records.def"
};

enum class eds_CollectionKind : uint16_t {
#define EDS_COLLECTION(name, number, source) name = number,
#include "database/schema/collections.def"
};

enum class eds_DataType : uint16_t {
#define EDS_DATATYPE(name, number) name = number,
#include "database/schema/dsets.def"
};

enum class eds_Member : uint16_t {
#define EDS_MEMBER(name, number, shape, target, holding) name = number,
#include "database/schema/members.def"
};

enum class eds_Vocabulary : uint16_t {
#define EDS_VOCABULARY(name, number) name = number,
#define EDS_SYMBOL(vocabulary, number, name)
#include "database/schema/symbols.def"
};

enum class eds_FieldType : uint8_t { Int, Real, Bool, Text, Bytes, Symbol, Ref, AnyRef };

// The type of the values of an array or a distribution; the numbers are those of the vocabulary.
enum class eds_ValueType : uint8_t { Int32 = 0, Int64 = 1, Double = 2, Byte = 3 };

constexpr int64_t eds_sizeOf(eds_ValueType type) {
  constexpr int64_t sizes[] = {4, 8, 8, 1};
  return sizes[static_cast<int>(type)];
}

// The families of types; a fragment's number is the first half of a type identifier.
enum class eds_Fragment : int32_t {
  None = 0,
  Record = 1,
  Collection = 2,
  Data = 3, // data sets and distributions
  Member = 4,
  Symbol = 5, // one vocabulary each
};

// What a record, collection, data set, distribution or member is created as.
struct eds_TypeID {
  eds_Fragment fragment = eds_Fragment::None;
  int32_t index = 0;

  constexpr eds_TypeID() = default;
  constexpr eds_TypeID(eds_RecordKind kind)
      : fragment(eds_Fragment::Record), index(static_cast<int32_t>(kind)) {}
  constexpr eds_TypeID(eds_CollectionKind kind)
      : fragment(eds_Fragment::Collection), index(static_cast<int32_t>(kind)) {}
  constexpr eds_TypeID(eds_DataType type)
      : fragment(eds_Fragment::Data), index(static_cast<int32_t>(type)) {}
  constexpr eds_TypeID(eds_Member member)
      : fragment(eds_Fragment::Member), index(static_cast<int32_t>(member)) {}
  constexpr eds_TypeID(eds_Vocabulary vocabulary)
      : fragment(eds_Fragment::Symbol), index(static_cast<int32_t>(vocabulary)) {}

  constexpr bool IsNull() const { return fragment == eds_Fragment::None; }
  friend constexpr bool operator==(const eds_TypeID&, const eds_TypeID&) = default;
};

// The type identifier of a pair of numbers; null when the schema has no such type.
eds_TypeID eds_InputFragmentTypeIndex(int fragment, int index);

// One numbered field of a record kind: eds_Model_ModelString, eds_Part_Name, ...
struct eds_FieldID {
  eds_RecordKind record;
  int16_t number;
  constexpr operator int() const { return number; }
};

#define EDS_RECORD(kind, number, table)
#define EDS_FIELD(kind, number, name, column, type, argument)                                      \
  inline constexpr eds_FieldID eds_##kind##_##name{eds_RecordKind::kind, number};
#include "database/schema/records.def"

// One object of the store: a record (its kind) or a symbol (kind 0xffff, its vocabulary in the id).
struct eds_ObjectID {
  uint16_t kind = 0;
  int64_t id = 0;

  static constexpr uint16_t SymbolKind = 0xffff;
  constexpr eds_ObjectID() = default;
  constexpr eds_ObjectID(eds_RecordKind recordKind, int64_t recordID)
      : kind(static_cast<uint16_t>(recordKind)), id(recordID) {}

  constexpr bool IsNull() const { return id == 0; }
  constexpr eds_RecordKind RecordKind() const { return static_cast<eds_RecordKind>(kind); }
  // 16 bits of kind and 48 of id in one word.
  constexpr uint64_t Packed() const {
    return (static_cast<uint64_t>(kind) << 48) | static_cast<uint64_t>(id);
  }
  static constexpr eds_ObjectID Unpacked(uint64_t word) {
    eds_ObjectID object;
    object.kind = static_cast<uint16_t>(word >> 48);
    object.id = static_cast<int64_t>(word & 0xffffffffffffULL);
    return object;
  }
  friend constexpr bool operator==(const eds_ObjectID&, const eds_ObjectID&) = default;
};
