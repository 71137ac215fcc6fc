#include "inpS/mesh/inpS_NodeGeneration.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "inpS/mesh/inpS_NcopyReader.h"
#include "inpS/mesh/inpS_NfillReader.h"
#include "inpS/mesh/inpS_NgenReader.h"
#include "inpS/mesh/inpS_NmapReader.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

bool isGenerator(inp_KeywordEnm kind) {
  return kind == inp_KwNgen || kind == inp_KwNfill || kind == inp_KwNcopy || kind == inp_KwNmap;
}

bool isInteger(const inp_Item& item) {
  return item.IsInteger();
}

} // namespace

inpS_GeneratorScopes::inpS_GeneratorScopes(const inp_KeywordList& keywords) {
  for (const inp_Keyword& keyword : keywords) {
    if (!isGenerator(keyword.Kind()) || keyword.IsInstanceCopy()) continue;
    if (keyword.Scope().kind == inp_Scope::Kind::Part)
      m_parts.insert(keyword.Scope().name);
    else if (keyword.Scope().kind == inp_Scope::Kind::Instance)
      m_instances.insert(keyword.Scope().name);
    else
      m_root = true;
  }
}

bool inpS_GeneratorScopes::Holds(const inpS_MeshScope& scope) const {
  switch (scope.kind) {
  case inpS_MeshScope::Kind::Part:
    return m_parts.contains(scope.name);
  case inpS_MeshScope::Kind::Instance:
    return m_instances.contains(scope.name);
  default:
    return m_root;
  }
}

// What is reckoned comes out a little different from what is listed. A copy without a change of
// labels tells itself that it moves the nodes.
double inpS_NodeGeneration::ToleranceOf(const inp_Keyword& keyword) {
  constexpr double samePlace = 1e-6;
  if (keyword.Kind() == inp_KwNmap) return -1;
  const inp_Item* change = keyword.Find("changenumber");
  const bool movesOld = keyword.Kind() == inp_KwNcopy && change && change->AsInt() == 0;
  return movesOld ? -1 : samePlace;
}

bool inpS_NodeGeneration::KnowsKind(const inp_Keyword& keyword) {
  const bool isMoved = keyword.HasParameter("shift") || keyword.HasParameter("pole");
  if (keyword.Kind() == inp_KwNcopy && isMoved) return true; // asks for no word
  const inp_KeywordTable& table = inp_KeywordTable::Instance();
  return !inpS_hasUnknownWord(keyword) &&
         std::ranges::none_of(keyword.Parameters(), [&](const inp_Parameter& parameter) {
           return parameter.value.IsFlag() &&
                  !table.WordsOf(keyword.Kind(), parameter.name).empty();
         });
}

void inpS_NodeGeneration::Read(const inp_Keyword& keyword) {
  switch (keyword.Kind()) {
  case inp_KwNgen:
    return Ngen(keyword);
  case inp_KwNfill:
    return Nfill(keyword);
  case inp_KwNcopy:
    return Ncopy(keyword);
  default:
    return Nmap(keyword);
  }
}

void inpS_NodeGeneration::Refuse(const inp_Keyword& keyword, const char* parameter) {
  m_messages.AddError(inp_Utils::MessageAtParameter(
      keyword, parameter, inpS_messageText(inpS_app_InvalidParameterValue, {parameter})));
}

inpS_NodeSink inpS_NodeGeneration::SinkTo(inpS_SetDefinition* set) const {
  return [this, set](const inpS_NodePiece& nodes) { m_sink(nodes, set); };
}

// The set whose nodes a keyword copies or maps.
bool inpS_NodeGeneration::FindSet(const inp_Keyword& keyword, const char* parameter,
                                  inpS_KnownNodes::Set& set) {
  const inp_Item* name = keyword.Find(parameter);
  if (!name || name->AsString().empty()) {
    m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword, inpS_messageText(inpS_app_RequiredParameter, {parameter})));
    return false;
  }
  if (!m_known.FindSet(name->AsString(), set)) {
    m_messages.AddError(inp_Utils::MessageAtParameter(
        keyword, parameter, inpS_messageText(inpS_mesh_NodeSetUnknown, {name->AsString()})));
    return false;
  }
  if (set.ordinals.IsEmpty() && !set.leftOut)
    m_messages.AddWarning(inp_Utils::MessageAtParameter(
        keyword, parameter, "The set holds no nodes yet; the keyword has no effect."));
  if (!set.leftOut) return true;
  m_messages.AddError(inp_Utils::MessageAtParameter(
      keyword, parameter,
      "Set \"" + name->AsString() +
          "\" names nodes of instances, which cannot be used to generate nodes."));
  return false;
}

void inpS_NodeGeneration::Ngen(const inp_Keyword& keyword) {
  inpS_SetDefinition* set = m_sets.Open(keyword, m_scope, inpS_SetKind::Nodes, "nset");
  inpS_NgenReader reader(keyword.StringOf("line", "RC"), m_threeDimensional, m_scope.system,
                         m_known, m_messages);
  reader.ReadLocalSystem(keyword, m_messages);
  reader.Read(keyword, SinkTo(set), set);
}

// SINGULAR names the end: 1 (or nothing) the first set, 2 the second.
void inpS_NodeGeneration::Nfill(const inp_Keyword& keyword) {
  using Singular = inpS_NfillReader::Singular;
  double bias = 1.0;
  if (const inp_Item* item = keyword.Find("bias")) {
    bias = item->IsNumber() ? item->AsDouble() : 0.0;
    if (auto tiny = inpS_tinyNumberMessage(keyword, "bias"))
      m_messages.AddWarning(std::move(*tiny));
    if (!(bias > 0)) return Refuse(keyword, "bias");
  }
  Singular singular = Singular::None;
  if (const inp_Item* item = keyword.Find("singular")) {
    const cow_String& value = item->AsString();
    if (!value.empty() && value != "1" && value != "2") return Refuse(keyword, "singular");
    singular = value == "2" ? Singular::Last : Singular::First;
  }
  const bool twoStep = inpS_readFlag(keyword, "twostep", m_messages);
  inpS_SetDefinition* set = m_sets.Open(keyword, m_scope, inpS_SetKind::Nodes, "nset");
  inpS_NfillReader reader(bias, twoStep, singular, m_threeDimensional, m_known, m_messages);
  reader.Read(keyword, SinkTo(set), set);
}

void inpS_NodeGeneration::Ncopy(const inp_Keyword& keyword) {
  inpS_NcopyReader::Options options;
  // One way of copying is taken; what the deck says of others is not asked for and so is told.
  options.shift = inpS_readFlag(keyword, "shift", m_messages);
  options.pole = !options.shift && inpS_readFlag(keyword, "pole", m_messages);
  if (!options.shift && !options.pole) {
    if (!keyword.HasParameter("reflect"))
      return m_messages.AddError(inp_Utils::MessageInKeyword(
          keyword, "*NCOPY needs one of SHIFT, POLE and REFLECT; the keyword is ignored."));
    options.reflect = keyword.StringOf("reflect", "");
  }
  const inp_Item* changeNumber = keyword.Find("changenumber");
  const inp_Item* multiple = options.shift ? keyword.Find("multiple") : nullptr;
  const inp_Item* newSet = m_sets.FindName(keyword, "newset");
  inpS_KnownNodes::Set oldSet;
  if (!FindSet(keyword, "oldset", oldSet)) return;
  if (!changeNumber)
    return m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword, inpS_messageText(inpS_app_RequiredParameter, {"changenumber"})));
  if (!isInteger(*changeNumber)) return Refuse(keyword, "changenumber");
  options.changeNumber = changeNumber->AsInt();
  if (multiple) {
    if (!isInteger(*multiple) || multiple->AsInt() < 1) return Refuse(keyword, "multiple");
    options.multiple = multiple->AsInt();
  }
  inpS_NcopyReader reader(std::move(oldSet), options, m_known, m_messages, m_threeDimensional);
  inpS_SetDefinition* set = nullptr;
  if (newSet) {
    set = m_sets.Open(keyword, m_scope, inpS_SetKind::Nodes, "newset");
    set->unsorted = set->unsorted || reader.IsUnsorted();
  }
  reader.Read(keyword, SinkTo(set));
}

void inpS_NodeGeneration::Nmap(const inp_Keyword& keyword) {
  const inp_Item* type = keyword.Find("type");
  cow_String definition = keyword.StringOf("definition", "COORDINATES");
  inpS_KnownNodes::Set nodes;
  if (!FindSet(keyword, "nset", nodes)) return;
  if (!type)
    return m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword, inpS_messageText(inpS_app_RequiredParameter, {"type"})));
  if (type->AsString() == "BLENDED")
    return m_messages.AddError(inp_Utils::MessageAtParameter(
        keyword, "type", "*NMAP, TYPE=BLENDED is not provided; the nodes stay where they are."));
  if (type->AsString() == "SCALE" && keyword.Data().Rows() < 2)
    return m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword, inpS_messageText(inpS_mesh_IncompleteData) +
                     " A scale takes a line with its point and one with its factors; no nodes are "
                     "mapped."));
  inpS_NmapReader reader(type->AsString(), std::move(definition), std::move(nodes), m_known,
                         m_messages);
  reader.Read(keyword, SinkTo(nullptr));
}
