#pragma once

#include "database/KvoObjSurface.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/writer/inpS_DeckScope.h"

class utl_Stream;

// The surfaces of one owner, in the order in which they were made, as the deck gave them: sets by
// name, labels one to a line. What lies in an instance is named by it.
class inpS_SurfacePrinter {
public:
  inpS_SurfacePrinter(const inpS_DeckLabels& labels, const inpS_KeptParts& parts, utl_Stream& out)
      : m_labels(labels), m_parts(parts), m_out(out) {}

  void PrintSurfaces(const inpS_DeckScope& scope);

private:
  void PrintSurface(const inpS_DeckScope& scope, const KvoObjSurface& surface);
  void PrintPoints(const KvoObjSurface& surface);
  void PrintSegments(const KvoObjSurface& surface);
  void PrintNames(const cow_List<KvoSurfacePiece>& pieces);
  void PrintPiece(const inpS_DeckScope& scope, const KvoSurfacePiece& piece, bool nodes);
  void PrintListed(const inpS_DeckScope& scope, const KvoSurfacePiece& piece, bool nodes);

  const inpS_DeckLabels& m_labels;
  const inpS_KeptParts& m_parts;
  utl_Stream& m_out;
};
