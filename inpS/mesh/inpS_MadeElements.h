#pragma once

#include "inpS/mesh/inpS_ElementConnectivity.h"
#include <functional>
#include <vector>

// Elements of one type made from others, to be appended to their owner's. What fills them is asked
// by the piece, from several threads: elements from `first` on, as many as the span takes.
struct inpS_MadeElements {
  inpS_ElementConnectivity::Kind kind; // held
  int topology = 0;
  bool referenceNode = false;
  bool ragged = false;
  long long count = 0;
  std::function<void(long long first, std::span<int> labels)> labels;
  std::function<void(long long first, std::span<int> nodes)> nodes; // labels, kind.width for each
  cow_List<inpS_ScopedNode> scoped;
};

// Those of them that stand at these places, ascending.
inpS_MadeElements inpS_someOf(const inpS_MadeElements& made, std::vector<long long> places);
