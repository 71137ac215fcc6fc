#include "inpS/mesh/inpS_LabelFaults.h"
#include "base/utl_BlockSize.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/mesh/inpS_ElementSearch.h"
#include "inpS/mesh/inpS_MeshScope.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

wip_Message messageAt(const inp_Keyword& keyword, const inpS_ElementSearch::Place& place,
                      cow_String text) {
  return inp_Utils::MessageAtField(keyword, place.row, place.col, std::move(text));
}

} // namespace

long long inpS_firstOwnElement(const inpS_MeshScope& scope, const KvoObjLabeler& elements) {
  if (scope.isStored || !scope.part) return scope.storedElements;
  return elements.Size(scope.part->elementOccurrence);
}

cow_List<inpS_KnownElement> inpS_LabelFaults::Define(const inpS_MeshScope& scope,
                                                     std::span<const int> labels,
                                                     KvoObjLabeler& elements) {
  constexpr std::size_t kBlock = 1 << 14;
  int ordinals[kBlock];
  cow_List<inpS_KnownElement> known;
  const std::size_t most = utl_blockSize(kBlock);
  for (std::size_t begin = 0; begin < labels.size(); begin += most) {
    const std::span<const int> block = labels.subspan(begin, std::min(most, labels.size() - begin));
    long long next = elements.Size(scope.elementOccurrence);
    const auto fresh = static_cast<std::size_t>(elements.AddInstanceLabels(
        scope.elementOccurrence, block, std::span<int>(ordinals, block.size())));
    for (const int label : block)
      if (label <= 0) m_notPositive.push_back(label);
    if (fresh == block.size()) continue;
    const long long own = inpS_firstOwnElement(scope, elements);
    for (std::size_t n = 0; n < block.size(); ++n) {
      if (ordinals[n] == next) {
        ++next;
        continue;
      }
      const bool isOwn = ordinals[n] >= own;
      if (!isOwn) m_notOwn.push_back(block[n]);
      known.push_back({begin + n, isOwn ? ordinals[n] : -1});
    }
  }
  return known;
}

void inpS_LabelFaults::Report(const inp_Keyword& keyword, const inpS_ElementParameters& type,
                              inp_Visitor& messages) {
  const inpS_ElementSearch search(keyword, type.Form());
  if (std::erase(m_notPositive, 0) > 0)
    messages.AddError(
        messageAt(keyword, search.OfLabel(0),
                  inp_Utils::Format(inpS_messageText(inpS_mesh_ElementNumberMissing).c_str(),
                                    type.Name().c_str())));
  if (!m_notPositive.empty())
    messages.AddError(messageAt(
        keyword, search.OfLabel(m_notPositive.front()),
        inp_Utils::MessageWithItems("Element labels must be positive integers: ", m_notPositive)));
  if (!m_notOwn.empty())
    messages.AddError(messageAt(
        keyword, search.OfLabel(m_notOwn.front()),
        inp_Utils::MessageWithItems("These elements are not this deck section's own and cannot be "
                                    "defined again here: ",
                                    m_notOwn)));
}
