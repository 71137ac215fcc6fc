#include "inpS/sets/inpS_SetDefinition.h"
#include <algorithm>

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

void inpS_beginRuns(inpS_SetDefinition& set, const inp_Keyword& keyword) {
  set.isStored = false;
  set.keywords.push_back(keyword);
}

void inpS_addRun(inpS_SetDefinition& set, long long first, long long count) {
  if (!set.entries.empty()) {
    inpS_SetEntry& last = set.entries.back();
    if (last.kind == inpS_SetEntry::Kind::Positions && last.first + last.count == first) {
      last.count += count;
      return;
    }
  }
  inpS_SetEntry& entry = set.entries.emplace_back();
  entry.kind = inpS_SetEntry::Kind::Positions;
  entry.first = first;
  entry.count = count;
  entry.keyword = std::max(0, static_cast<int>(set.keywords.size()) - 1);
}
