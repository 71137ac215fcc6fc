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

// All of them, by number: this reads every form. What works on a model asks for the kinds that the
// model has, one by one, so that its cost does not grow with the number of kinds.
std::span<const eds_RecordInfo> eds_schemaRecords();
// Null when there is none. The same object at every call.
const eds_RecordInfo* eds_schemaRecord(eds_RecordKind kind);
const eds_RecordInfo* eds_schemaRecord(std::string_view table);
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
constexpr int eds_firstFormKind = 1000; // forms.def
inline bool eds_isOwnKind(eds_RecordKind kind) {
  const int number = static_cast<int>(kind);
  return number >= eds_firstOwnKind && number < eds_firstFormKind;
}
