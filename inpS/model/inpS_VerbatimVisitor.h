#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Visitor.h"

// Keeps as text, at its level, every keyword that no phase converts, so that nothing of a deck is
// lost: the writer puts it back in its place. One warning per kind of keyword, at its first place.
class inpS_VerbatimVisitor : public inpS_Visitor {
public:
  // One row per kind of keyword kept.
  struct Kept {
    cow_String keyword;
    long long count = 0;
    cow_String file;
    long long line = 0;
    bool known = true;
  };

  // modelled: the keyword kinds that some phase converts.
  inpS_VerbatimVisitor(const inpS_Inventory& inventory, const cow_List<inp_KeywordEnm>& modelled);

  void Visit(const inp_Keyword& keyword) override;
  void Report() override;
  const cow_List<Kept>& AllKept() const { return m_kept; }

private:
  struct Place {
    KvoSimPosition owner;
    const char* level;
  };
  bool IsModelled(const inp_Keyword& keyword) const;
  Place PlaceOf(const inp_Scope& scope);
  int BlockOf(const inp_Keyword& keyword);
  void Count(const inp_Keyword& keyword);

  const inpS_Inventory& m_inventory;
  cow_List<bool> m_modelled;
  const inp_Scope* m_scope = nullptr; // of the keyword before
  inp_ScopePtr m_scopeHeld;
  Place m_place{};
  int m_block = 0;
  cow_Map<std::pair<unsigned long long, int>, int> m_positions; // by owner and block
  cow_List<Kept> m_kept;
  cow_List<inp_Keyword> m_firsts;
  cow_Map<cow_String, std::size_t> m_byName;
};
