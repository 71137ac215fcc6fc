#include "inpS/mesh/inpS_LabelFaults.h"
#include "base/utl_BlockSize.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/mesh/inpS_ElementSearch.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

// Reading the lines of a long keyword again for each of thousands of short ones that repeat its
// elements would take hours: behind so many lines the keyword's own place has to do.
constexpr long long kLinesToSearch = 1000;

wip_Message messageAt(const inp_Keyword& keyword, const inpS_ElementSearch::Place& place,
                      cow_String text) {
  return inp_Utils::MessageAtField(keyword, place.row, place.col, std::move(text));
}

} // namespace

// An element label may be defined once: unlike a node, which is only moved, a second element would
// silently take the first one's nodes away.
void inpS_LabelFaults::Define(const inpS_MeshScope& scope, std::span<const int> labels,
                              KvoObjLabeler& elements) {
  constexpr std::size_t kBlock = 1 << 14;
  int ordinals[kBlock];
  const std::size_t most = utl_blockSize(kBlock);
  for (std::size_t begin = 0; begin < labels.size(); begin += most) {
    const std::span<const int> block = labels.subspan(begin, std::min(most, labels.size() - begin));
    long long next = elements.Size(scope.elementOccurrence);
    const auto fresh = static_cast<std::size_t>(elements.AddInstanceLabels(
        scope.elementOccurrence, block, std::span<int>(ordinals, block.size())));
    for (const int label : block)
      if (label <= 0) m_notPositive.push_back(label);
    if (fresh == block.size()) continue;
    for (std::size_t n = 0; n < block.size(); ++n) {
      if (ordinals[n] == next)
        ++next;
      else
        AddRepeated(block[n], ordinals[n]);
    }
  }
}

void inpS_LabelFaults::AddRepeated(int label, int ordinal) {
  if (m_repeated.empty()) m_firstDefinition = ordinal;
  m_repeated.push_back(label);
}

void inpS_LabelFaults::Report(const inp_Keyword& keyword, const inpS_ElementParameters& type,
                              const inpS_MeshScope& scope, const KvoObjLabeler& elements,
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
  if (!m_repeated.empty()) ReportRepeated(keyword, type.Form(), scope, elements, messages);
}

void inpS_LabelFaults::ReportRepeated(const inp_Keyword& keyword, const inp_ElementForm& form,
                                      const inpS_MeshScope& scope, const KvoObjLabeler& elements,
                                      inp_Visitor& messages) const {
  const bool ofPart =
      scope.part && m_firstDefinition < elements.Size(scope.part->elementOccurrence);
  const inpS_ElementBlock::From* from =
      (ofPart ? scope.part : &scope)->elements.DefinitionOf(m_firstDefinition);
  const bool isHere = from && from->keyword.Body() == keyword.Body();
  const int label = m_repeated.front();
  wip_Message message = messageAt(
      keyword, inpS_ElementSearch(keyword, form).OfLabel(label, isHere ? 2 : 1),
      inp_Utils::MessageWithItems(
          "Elements are defined more than once; only the first definition counts: ", m_repeated));
  if (from) {
    inpS_ElementSearch::Place place;
    if (isHere || from->keyword.Data().Rows() <= kLinesToSearch)
      place = inpS_ElementSearch(from->keyword, from->form).OfLabel(label);
    message.notes.push_back(
        {"first defined here",
         inp_Utils::MessageAtField(from->keyword, place.row, place.col, {}).place});
  }
  messages.AddError(std::move(message));
}
