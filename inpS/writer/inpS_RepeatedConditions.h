#pragma once

#include "inpS/history/inpS_InForce.h"
#include "inpS/writer/inpS_DeckScope.h"
#include <optional>

class KvoObjDocument;
class inpS_KeptParts;
class utl_Stream;

// Given conditions and loads of earlier steps that still act where a keyword takes back all of
// their kind: they are given once more behind it. A row of which other rows have taken something is
// printed as what is left of it: node by node, degree by degree. An amplitude that has ended is not
// repeated, for it would begin anew.
class inpS_RepeatedConditions {
public:
  inpS_RepeatedConditions(const KvoObjDocument& document, const inpS_DeckLabels& labels,
                          const inpS_KeptParts& parts)
      : m_document(document), m_labels(labels), m_parts(parts) {}

  // Whether some still act in the step, and those as keywords with OP=NEW.
  bool Print(utl_Stream& out, const inpS_ExcitationKind& kind, long long variable, int step,
             bool isPerturbation, const inpS_DeckScope& scope);

private:
  bool IsMeant(const inpS_InForce::Source& source, const inpS_ExcitationKind& kind,
               long long variable, int step, bool isPerturbation) const;
  bool IsLeft(std::size_t place, int step, inpS_InForce::Pieces& pieces) const;
  cow_String LinesOf(std::size_t place, int step, inpS_InForce::Pieces& pieces,
                     const inpS_DeckScope& scope);
  void AddPiece(cow_String& lines, const inpS_ExcitationKind& kind, const inpS_ConditionRow& row,
                const inpS_InForce::Piece& piece, cow_List<cow_String> fields) const;

  const KvoObjDocument& m_document;
  const inpS_DeckLabels& m_labels;
  const inpS_KeptParts& m_parts;
  std::optional<inpS_InForce> m_inForce; // when first asked for: most models need none of it
};
