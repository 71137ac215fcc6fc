#pragma once

#include "inpS/mesh/inpS_ElementConnectivity.h"
#include "inpS/mesh/inpS_KnownElement.h"
#include <deque>
#include <span>

// Elements of one owner that the deck defines again. The last definition of a label holds, its
// first position is kept: they are put in their places when somebody looks at the elements, and at
// the end.
class inpS_RedefinedElements {
public:
  // What was read or made for labels that are known: all of it, `known` telling the elements.
  void Take(const inpS_ElementConnectivity::Kind& kind, const inp_Keyword& keyword,
            inpS_ElementTopologyReader again, bool ragged,
            const cow_List<inpS_KnownElement>& known);
  void Take(const inpS_MadeElements& again, const inp_Keyword& keyword,
            const cow_List<inpS_KnownElement>& known);
  // From a streamed piece; what it has besides goes into `fresh` and `freshOpen`.
  void Take(const inpS_ElementConnectivity::Kind& kind, const inp_Keyword& keyword,
            std::span<const int> ordinals, std::span<const inpS_OpenEntry> open,
            const cow_List<inpS_KnownElement>& known, const KvoObjLabeler& nodes, int occurrence,
            cow_List<int>& fresh, cow_List<inpS_OpenEntry>& freshOpen);

  // Each keyword that gave elements other nodes or another type is told with their labels.
  void Settle(inpS_ElementConnectivity& elements, const KvoObjLabeler& nodes, int nodeOccurrence,
              const KvoObjLabeler& labels, int elementOccurrence, inp_Visitor& messages);

private:
  struct Again {
    inpS_ElementBlock block;
    cow_List<int> ordinals; // of its elements; -1: not this owner's own
  };
  struct Definition { // one of those of an element, in deck order
    int ordinal;
    std::size_t again;
    long long element;
  };
  Again& BlockFor(const inpS_ElementConnectivity::Kind& kind, const inp_Keyword& keyword);
  static void AddOrdinals(Again& again, const cow_List<inpS_KnownElement>& known);
  cow_List<Definition> Definitions() const;
  void Replace(inpS_ElementConnectivity& elements, std::span<const Definition> last) const;
  static void Tidy(inpS_ElementConnectivity& elements, const KvoObjLabeler& nodes,
                   int nodeOccurrence);

  std::deque<Again> m_again;
};
