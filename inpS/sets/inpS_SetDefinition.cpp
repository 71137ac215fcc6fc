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
