#include "inpS/sets/inpS_SetDefinition.h"

inpS_SetDefinition& inpS_SetTable::FindOrAdd(inpS_SetKind kind, const cow_String& name) {
  inpS_SetDefinition*& known = m_byName[static_cast<int>(kind)][name];
  if (!known) {
    known = &m_sets.emplace_back();
    known->kind = kind;
    known->name = name;
  }
  return *known;
}

const inpS_SetDefinition* inpS_SetTable::Find(inpS_SetKind kind, const cow_String& name) const {
  const auto& names = m_byName[static_cast<int>(kind)];
  const auto known = names.find(name);
  return known == names.end() ? nullptr : known->second;
}

inpS_SetEntry& inpS_addPositions(inpS_SetDefinition& set, const inp_Keyword& keyword,
                                 long long first, long long count) {
  set.isStored = false;
  inpS_SetEntry& entry = set.entries.emplace_back();
  entry.kind = count > 0 ? inpS_SetEntry::Kind::Positions : inpS_SetEntry::Kind::Labels;
  entry.first = first;
  entry.count = count;
  entry.keyword = static_cast<int>(set.keywords.size());
  set.keywords.push_back(keyword);
  return entry;
}

void inpS_addPosition(inpS_SetDefinition& set, long long ordinal) {
  if (!set.entries.empty()) {
    inpS_SetEntry& last = set.entries.back();
    if (last.kind == inpS_SetEntry::Kind::Positions && last.first + last.count == ordinal) {
      ++last.count;
      return;
    }
  }
  inpS_SetEntry& entry = set.entries.emplace_back();
  entry.kind = inpS_SetEntry::Kind::Positions;
  entry.first = ordinal;
  entry.count = 1;
}
