#pragma once

#include "inpS/writer/inpS_DeckScope.h"

class utl_Stream;

// The node and element blocks of one owner, printed in pieces on all cores.
class inpS_MeshPrinter {
public:
  inpS_MeshPrinter(const inpS_DeckLabels& labels, utl_Stream& out) : m_labels(labels), m_out(out) {}

  void PrintNodes(const inpS_DeckScope& scope);
  void PrintElements(const inpS_DeckScope& scope);

private:
  void PrintSpace(const inpS_DeckScope& scope);
  void PrintNodeBlock(const inpS_DeckScope& scope, const KvoMeshNodeBlock& block);
  void PrintElementBlock(const inpS_DeckScope& scope, const KvoMeshElementBlock& block);

  const inpS_DeckLabels& m_labels;
  utl_Stream& m_out;
};
