#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Ledger.h"
#include "inpS/framework/inpS_Visitor.h"
#include "inpS/model/inpS_NotModelled.h"
#include "inpS/model/inpS_PlaceCheck.h"
#include "inpS/model/inpS_RestartDefinitions.h"
#include <optional>
#include <unordered_map>
#include <unordered_set>

// Keeps as text, at its level, every keyword that the ledger does not have for settled, so that
// nothing of a deck is lost: the writer puts it back in its place. One warning per kind of keyword,
// at its first place.
class inpS_VerbatimVisitor : public inpS_Visitor {
public:
  inpS_VerbatimVisitor(const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : m_inventory(inventory), m_ledger(ledger) {}

  void Visit(const inp_Keyword& keyword) override;
  void Report() override;
  const cow_List<inpS_NotModelled>& AllKept() const { return m_kept; }
  // Goes on behind what the database keeps already (restart).
  void ContinuePositions();
  // A restart goes on with the skeleton of its model: what this deck says of it is settled, and
  // what the model does not take is told.
  void SettleSkeleton(const inp_KeywordList& keywords);

private:
  struct Place {
    KvoSimPosition owner;
    const char* level;
  };
  // Where a kept keyword goes, and its sub-options with it.
  struct Along {
    Place place;
    int block;
    KvoSimPosition behind; // null: behind all
    cow_String text{};     // what is kept; empty: what the ledger says, or the whole keyword
    bool isTold = false;   // that it stands where it may not, and is kept
  };
  const KvoSimPosition* RecordOfBlock(const inp_Keyword& keyword, int block) const;
  KvoSimPosition HolderOf(const inp_Keyword& keyword) const;
  const Along* AlongOf(const inp_Keyword& keyword) const;
  Along AtOwn(const inp_Keyword& keyword, int block);
  KvoSimPosition LastOf(const KvoSimPosition& owner, int block);
  void Keep(const inp_Keyword& keyword, const Along& at);
  bool IsLeftOut(const inp_Keyword& keyword);
  bool IsOfLackingOwner(const inp_Keyword& keyword) const;
  bool IsTooLong(const inp_Keyword& keyword);
  bool IsStray(const inp_Keyword& keyword) const;
  Place PlaceOf(const inp_Scope& scope);
  int BlockOf(const inp_Keyword& keyword);
  bool IsWrittenHere(const inp_Keyword& keyword);
  void Count(const inp_Keyword& keyword, bool isTold);
  bool TellDoubts(const inp_Keyword& keyword, const cow_String& text);
  void TellKept(const inp_Keyword& keyword, const cow_String& text);

  const inpS_Inventory& m_inventory;
  inpS_Ledger& m_ledger;
  bool m_isRestart = false;
  KvoSimPosition m_step; // that is open; null: none, or one that is kept as text
  std::optional<inpS_RestartDefinitions> m_definitions; // of a restart
  std::unordered_set<unsigned long long> m_added;       // records that its keywords became
  const inp_Scope* m_scope = nullptr;                   // of the keyword before
  inp_ScopePtr m_scopeHeld;
  Place m_place{};
  int m_block = 0;    // of the scope, that of what is written before
  int m_ownBlock = 0; // of the last keyword that goes with no other one
  // The last record of an owner's block of those that phases spoke of; the owner: none.
  cow_Map<std::pair<unsigned long long, int>, KvoSimPosition> m_records;
  cow_Map<std::pair<unsigned long long, int>, bool> m_written; // by owner and block
  // By owner, block and what they stand behind, if that counts.
  cow_Map<std::pair<unsigned long long, std::pair<int, unsigned long long>>, int> m_positions;
  std::unordered_map<const inp_KeywordBody*, Along> m_along; // sub-options of what is kept
  inpS_PlaceCheck m_places;
  cow_List<inpS_NotModelled> m_kept;
  struct Untold { // keywords of one name of which nobody has said why they are kept
    inp_Keyword first;
    long long count = 0;
  };
  cow_List<Untold> m_untold; // as m_kept
  cow_Map<cow_String, std::size_t> m_byName;
};
