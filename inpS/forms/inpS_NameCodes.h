#pragma once

#include "parser/inp_BulkColumns.h"
#include <algorithm>

// What the names in the fields of a column come to, each found out once for each slot of pieces.
class inpS_NameCodes {
public:
  // of(name) gives what the column holds for it.
  template <class Of> void Translate(const inp_ColumnPiece& piece, std::span<int> slots, Of of) {
    if (piece.names.empty()) return;
    if (m_bySlot.size() <= piece.slot) m_bySlot.resize(piece.slot + 1);
    cow_List<int>& codes = m_bySlot[piece.slot];
    codes.resize(std::min(codes.size(), piece.known));
    codes.resize(piece.names.size(), inp_blankInt);
    for (int& slot : slots) {
      if (!inp_isNameCode(slot)) continue;
      const auto place = static_cast<std::size_t>(inp_namePlace(slot));
      if (codes[place] == inp_blankInt) codes[place] = of(piece.names[place]);
      slot = codes[place];
    }
  }

private:
  cow_List<cow_List<int>> m_bySlot;
};
