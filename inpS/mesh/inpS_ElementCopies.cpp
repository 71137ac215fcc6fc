#include "inpS/mesh/inpS_ElementCopies.h"
#include "base/utl_BlockSize.h"
#include "database/KvoObjLabeler.h"
#include "inpS/keywords/inpS_BlankLine.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/mesh/inpS_ElcopyReader.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/mesh/inpS_ElgenReader.h"
#include "inpS/mesh/inpS_GeneratedNodes.h"
#include "inpS/mesh/inpS_Salvage.h"
#include "inpS/mesh/inpS_SetResolver.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/sets/inpS_SetServices.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

constexpr long long kMaxLabel = 999999999;
constexpr std::size_t kLabels = 1 << 14; // at a time: 64 KiB
constexpr long long kManyLabels = 1 << 16;

eds_MemberSet newElements(long long first, long long count) {
  return eds_MemberSet::Strided(static_cast<int>(first), count);
}

} // namespace

void inpS_ElementCopies::Generate(const inp_Keyword& keyword, inpS_MeshScope& scope,
                                  const cow_List<long long>& except) {
  inpS_SetDefinition* set = m_sets.Open(keyword, scope, inpS_SetKind::Elements, "elset");
  inpS_ElgenReader reader(keyword, scope, m_nodes, m_elements, m_messages);
  if (inpS_isBlank(keyword.Data()))
    m_messages.AddWarning(inp_Utils::MessageInKeyword(
        keyword, "There are no data lines; no elements are generated."));
  for (long long row = 0; row < keyword.Data().Rows(); ++row) {
    if (std::ranges::binary_search(except, row)) continue;
    scope.SettleElements(m_nodes, m_elements, m_messages);
    if (!reader.ReadLine(row)) continue;
    const long long first = m_elements.Size(scope.elementOccurrence);
    Append(keyword, scope, reader.Made());
    const long long count = m_elements.Size(scope.elementOccurrence) - first;
    if (!set) continue;
    inpS_SetServices::UnionElementSets(*set, newElements(reader.Master(), 1));
    inpS_SetServices::UnionElementSets(*set, newElements(first, count));
    AddAgain(*set);
  }
  Report(keyword);
}

void inpS_ElementCopies::Copy(const inp_Keyword& keyword, inpS_MeshScope& scope) {
  const bool reflect = inpS_readFlag(keyword, "reflect", m_messages);
  const std::optional<long long> elementShift = ReadShift(keyword, "elementshift");
  const std::optional<long long> nodeShift = ReadShift(keyword, "shiftnodes");
  scope.SettleElements(m_nodes, m_elements, m_messages);
  std::vector<int> old;
  // Before the new set, which may hide one of the part that has its name.
  const bool hasOld = FindOldSet(keyword, scope, old);
  inpS_SetDefinition* set = m_sets.Open(keyword, scope, inpS_SetKind::Elements, "newset");
  if (!hasOld || !elementShift || !nodeShift) return;
  inpS_ElcopyReader reader(*elementShift, std::move(old), *nodeShift, reflect, scope, m_nodes,
                           m_elements, m_typeNames);
  if (!reader.Read(keyword, m_messages)) return;
  const long long first = m_elements.Size(scope.elementOccurrence);
  for (std::size_t run = 0; run < reader.ElementTypes().size(); ++run)
    Append(keyword, scope, reader.Connectivity(run));
  const long long count = m_elements.Size(scope.elementOccurrence) - first;
  if (set) inpS_SetServices::UnionElementSets(*set, newElements(first, count));
  if (set) AddAgain(*set);
  Report(keyword);
}

// Without it a copy would be made that nobody asked for, so it is required.
std::optional<long long> inpS_ElementCopies::ReadShift(const inp_Keyword& keyword,
                                                       const char* parameter) {
  const inp_Item* item = keyword.Find(parameter);
  if (!item || item->AsString().empty()) {
    m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword, inpS_messageText(inpS_app_RequiredParameter, {parameter})));
    return {};
  }
  const bool isInteger = item->IsInteger();
  if (isInteger && item->AsInt() >= -kMaxLabel && item->AsInt() <= kMaxLabel) return item->AsInt();
  m_messages.AddError(inp_Utils::MessageAtParameter(
      keyword, parameter,
      inpS_messageText(inpS_app_InvalidParameterValue, {parameter}) +
          " An integer between labels was expected; nothing is copied."));
  return {};
}

bool inpS_ElementCopies::FindOldSet(const inp_Keyword& keyword, const inpS_MeshScope& scope,
                                    std::vector<int>& ordinals) {
  const inp_Item* name = keyword.Find("oldset");
  if (!name || name->AsString().empty()) {
    m_messages.AddError(inp_Utils::MessageInKeyword(
        keyword, inpS_messageText(inpS_app_RequiredParameter, {"oldset"})));
    return false;
  }
  const inpS_MeshScope* owner = &scope;
  const inpS_SetDefinition* set = owner->sets.Find(inpS_SetKind::Elements, name->AsString());
  if (!set && scope.part) {
    owner = scope.part;
    set = owner->sets.Find(inpS_SetKind::Elements, name->AsString());
  }
  if (!set) {
    m_messages.AddError(inp_Utils::MessageAtParameter(
        keyword, "oldset", inpS_messageText(inpS_mesh_ElementSetUnknown, {name->AsString()})));
    return false;
  }
  inp_Visitor silent; // what is missing now may come later; the end of the deck tells
  inpS_SetResolver resolver(m_nodes, m_elements, m_scopes, silent);
  resolver.SetUnderway();
  const eds_MemberSet& members = resolver.Members(*owner, *set);
  ordinals.resize(static_cast<std::size_t>(members.Size()));
  for (std::size_t n = 0; n < ordinals.size(); ++n)
    ordinals[n] = static_cast<int>(members[static_cast<long long>(n)] - owner->elementBase);
  if (resolver.HasLeftOut())
    m_messages.AddError(inp_Utils::MessageAtParameter(
        keyword, "oldset",
        "The set holds elements of instances, which cannot be copied; they are left out."));
  else if (ordinals.empty())
    m_messages.AddWarning(inp_Utils::MessageAtParameter(
        keyword, "oldset", "The set holds no elements yet; nothing is copied."));
  return true;
}

void inpS_ElementCopies::Append(const inp_Keyword& keyword, inpS_MeshScope& scope,
                                const inpS_MadeElements& made) {
  inpS_MadeElements all = made;
  // Blocks of one type may be of several widths: what of a node is topology goes by that of all.
  const inpS_ElementParameters type(m_types, m_typeNames[static_cast<std::size_t>(made.kind.spec)]);
  all.topology = type.TopologyNodes(made.kind.width);
  all.referenceNode = made.kind.width > all.topology && type.CarriesReferenceNode();
  AppendAll(keyword, scope, m_salvage ? m_salvage->SoundOf(all, scope, m_elements) : all);
}

void inpS_ElementCopies::AppendAll(const inp_Keyword& keyword, inpS_MeshScope& scope,
                                   const inpS_MadeElements& made) {
  if (made.count == 0) return;
  const long long first = m_elements.Size(scope.elementOccurrence);
  // One line of thousands may make a few elements: room is asked for when it pays.
  if (made.count > utl_blockSize(kManyLabels))
    m_elements.Reserve(scope.elementOccurrence, first + made.count);
  std::vector<int> labels(
      std::min<std::size_t>(utl_blockSize(kLabels), static_cast<std::size_t>(made.count)));
  cow_List<inpS_KnownElement> known;
  for (long long at = 0; at < made.count; at += static_cast<long long>(labels.size())) {
    const std::span<int> piece(labels.data(),
                               std::min(labels.size(), static_cast<std::size_t>(made.count - at)));
    made.labels(at, piece);
    for (inpS_KnownElement element : m_faults.Define(scope, piece, m_elements)) {
      element.at += static_cast<std::size_t>(at);
      known.push_back(element);
    }
  }
  if (known.empty()) return AppendFresh(keyword, scope, first, made);
  std::vector<long long> again, fresh;
  for (const inpS_KnownElement& element : known) {
    again.push_back(static_cast<long long>(element.at));
    if (element.ordinal >= 0) m_again.push_back(element.ordinal);
  }
  std::size_t next = 0;
  for (long long at = 0; at < made.count; ++at) {
    if (next < again.size() && again[next] == at)
      ++next;
    else
      fresh.push_back(at);
  }
  scope.redefined.Take(inpS_someOf(made, std::move(again)), keyword, known);
  if (!fresh.empty()) AppendFresh(keyword, scope, first, inpS_someOf(made, std::move(fresh)));
}

void inpS_ElementCopies::AppendFresh(const inp_Keyword& keyword, inpS_MeshScope& scope,
                                     long long first, const inpS_MadeElements& made) {
  inpS_ElementBlock& block = scope.elements.BlockFor(made.kind, first, keyword, scope.owner);
  scope.elements.AppendMade(block, made);
}

// Elements that had their labels already belong to the keyword's set as its new ones do.
void inpS_ElementCopies::AddAgain(inpS_SetDefinition& set) {
  for (const int ordinal : m_again) inpS_addRun(set, ordinal, 1);
  m_again.clear();
}

void inpS_ElementCopies::Report(const inp_Keyword& keyword) {
  m_faults.Report(keyword, inpS_ElementParameters(m_types, ""), m_messages);
}
