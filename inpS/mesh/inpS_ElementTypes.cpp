#include "inpS/mesh/inpS_ElementTypes.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/mesh/inpS_MeshScope.h"
#include "inpS/mesh/inpS_MeshStore.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

constexpr int kMostNodesOfUserElement = 100000; // as of a type that nobody describes

} // namespace

void inpS_ElementTypes::ReadUserElement(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inp_Item* type = keyword.Find("type");
  const inp_Item* nodes = keyword.Find("nodes");
  if (!type || !nodes) return;
  const bool usable =
      nodes->IsInteger() && nodes->AsInt() > 0 && nodes->AsInt() <= kMostNodesOfUserElement;
  if (!usable)
    return messages.AddError(inp_Utils::MessageAtParameter(
        keyword, "nodes",
        "A user element has from 1 to " + std::to_string(kMostNodesOfUserElement) + " nodes."));
  const cow_String& name = type->AsString();
  const int known = m_data.MinNodesPerElement(name);
  if (known > 0 && known != nodes->AsInt())
    messages.AddWarning(
        inp_Utils::MessageAtParameter(keyword, "nodes",
                                      "Element type \"" + name + "\" has " + std::to_string(known) +
                                          " nodes already; this number is not used."));
  m_data.UpdateUserElemType(name, nodes->AsInt());
}

std::optional<wip_Message> inpS_ElementTypes::FaultOf(const inp_Keyword& keyword) const {
  const inp_Item* item = keyword.Find("type");
  if (!item || item->AsString().empty())
    return inp_Utils::MessageInKeyword(keyword,
                                       inpS_messageText(inpS_app_RequiredParameter, {"type"}) +
                                           " The keyword is kept as text.");
  const cow_String type = inp_Utils::Fold(item->AsString());
  const inpS_ElementParameters parameters(m_data, type);
  if (m_data.IsSupported(type) || parameters.IsSubstructure() || parameters.IsUserElement())
    return {};
  const bool isObsolete = m_data.IsObsolete(type);
  wip_Message message = inp_Utils::MessageAtParameter(
      keyword, "type",
      "Element type \"" + type + (isObsolete ? "\" is obsolete" : "\" is not known") +
          "; the keyword is kept as text.");
  const std::string_view near =
      isObsolete ? std::string_view() : inp_KeywordTable::Instance().NearestElement(type);
  if (!near.empty()) message.notes.push_back({"did you mean " + cow_String(near) + "?", {}});
  return message;
}

int inpS_ElementTypes::IndexOf(const inpS_ElementParameters& type) {
  const auto [known, isNew] = m_index.try_emplace(type.Name(), static_cast<int>(m_types.size()));
  if (isNew) m_types.push_back({type.Name(), {}});
  return known->second;
}

cow_List<cow_String> inpS_ElementTypes::Names() const {
  cow_List<cow_String> names;
  for (const Type& type : m_types) names.push_back(type.name);
  return names;
}

cow_List<KvoSimPosition> inpS_ElementTypes::Records() const {
  cow_List<KvoSimPosition> records;
  for (const Type& type : m_types) records.push_back(type.record);
  return records;
}

void inpS_ElementTypes::Save(const KvoObjDocument& document, const inpS_MeshScopes& scopes) {
  for (const inpS_MeshScope& scope : scopes.All()) {
    for (const inpS_ElementBlock& block : scope.elements.Blocks()) {
      Type& type = m_types[static_cast<std::size_t>(block.spec)];
      if (!type.record.IsNull()) continue;
      const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(type.name);
      type.record = inpS_MeshStore::SaveElementType(
          document, inpS_ElementParameters(m_data, type.name), info ? info->dimension : 0);
    }
  }
}
