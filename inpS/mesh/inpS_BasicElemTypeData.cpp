#include "inpS/mesh/inpS_BasicElemTypeData.h"

#include "parser/inp_KeywordTable.h"
#include "parser/inp_NameIndex.h"
#include <algorithm>
#include <iterator>

namespace {

constexpr int mostNodesOfUnknownType = 100000;

constexpr std::string_view obsoleteTypes[] = {
    "CGPE5",   "CGPE5H", "CGPE6",  "CGPE6H", "CGPE6I",  "CGPE6IH", "CGPE6R",
    "CGPE6RH", "CGPE8",  "CGPE8H", "CGPE10", "CGPE10H", "CGPE10R", "CGPE10RH",
};

const inp_ElementInfo* find(std::string_view name) {
  return inp_KeywordTable::Instance().FindElement(name);
}

} // namespace

bool inpS_BasicElemTypeData::IsSupported(std::string_view name) const {
  return find(name);
}

bool inpS_BasicElemTypeData::IsObsolete(std::string_view name) const {
  const inp_FoldedName folded(name);
  return std::find(std::begin(obsoleteTypes), std::end(obsoleteTypes), folded.Text()) !=
         std::end(obsoleteTypes);
}

int inpS_BasicElemTypeData::MinNodesPerElement(std::string_view name) const {
  if (const inp_ElementInfo* info = find(name)) return info->minNodes;
  const int* nodes = UserNodes(name);
  return nodes ? *nodes : 0;
}

int inpS_BasicElemTypeData::MaxNodesPerElement(std::string_view name) const {
  if (const inp_ElementInfo* info = find(name)) return info->maxNodes;
  const int* nodes = UserNodes(name);
  return nodes ? *nodes : mostNodesOfUnknownType;
}

void inpS_BasicElemTypeData::UpdateUserElemType(std::string_view name, int nodes) {
  m_userTypes.emplace(inp_FoldedName(name).Text(), nodes);
}

const int* inpS_BasicElemTypeData::UserNodes(std::string_view name) const {
  const auto found = m_userTypes.find(cow_String(inp_FoldedName(name).Text()));
  return found == m_userTypes.end() ? nullptr : &found->second;
}
