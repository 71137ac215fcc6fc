#pragma once

#include "database/eds_ModelReader.h"
#include <span>

// The schema at run time: the tables of *.def as data.

struct eds_SymbolInfo {
  eds_Vocabulary vocabulary;
  int number;
  std::string_view name;
};

enum class eds_MemberShape : uint8_t { One, Set, List, IntMap, TextMap };

struct eds_MemberInfo {
  eds_Member member;
  std::string_view name;
  eds_MemberShape shape;
  int firstTarget; // the kinds that it leads to, from here
  int lastTarget;  // to here
  bool isAlone;    // what it leads to has no other holder
};

// What the members of a collection are: nothing but positions, the symbols of a vocabulary, or the
// records of a kind.
struct eds_CollectionInfo {
  eds_CollectionKind kind;
  std::string_view name;
  eds_TypeID source; // null: positions
};

std::span<const eds_RecordInfo> eds_schemaRecords(); // by number
const eds_RecordInfo* eds_schemaRecord(eds_RecordKind kind);
int64_t eds_schemaFieldCount(); // of all kinds
std::span<const eds_MemberInfo> eds_schemaMembers();
const eds_MemberInfo* eds_schemaMember(eds_Member member);
std::span<const eds_CollectionInfo> eds_schemaCollections();
const eds_CollectionInfo* eds_schemaCollection(eds_CollectionKind kind);
bool eds_schemaHasDataType(int number);
std::span<const eds_SymbolInfo> eds_schemaSymbols();
std::span<const eds_SymbolInfo> eds_schemaSymbols(eds_Vocabulary vocabulary);
std::string_view eds_vocabularyName(eds_Vocabulary vocabulary); // "" when there is none
// The kinds from this number on are the store's own, up to those of forms.
constexpr int eds_firstOwnKind = 900;
// The other kinds from here on are many, and a model has few of them: their tables
// are made with their first record.
constexpr int eds_firstLateKind = 100;
constexpr int eds_firstFormKind = 1000; // forms.def
inline bool eds_isOwnKind(eds_RecordKind kind) {
  const int number = static_cast<int>(kind);
  return number >= eds_firstOwnKind && number < eds_firstFormKind;
}
inline bool eds_isLateKind(eds_RecordKind kind) {
  const int number = static_cast<int>(kind);
  return number >= eds_firstLateKind && !eds_isOwnKind(kind);
}
