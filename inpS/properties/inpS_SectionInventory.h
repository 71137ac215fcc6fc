#pragma once

#include "database/eds_MemberSet.h"
#include "inpS/framework/inpS_Ledger.h"
#include "inpS/sets/inpS_SetVisitor.h"

// What the sections phase must know of all sections beforehand: which keyword gives which elements
// their properties, by a number that counts from 0 in the order of the deck.
class inpS_SectionInventory : public inpS_SetVisitor {
public:
  using inpS_SetVisitor::inpS_SetVisitor;

  void Visit(const inp_Keyword& keyword) override;

  // "Section-", the part's name and "-" when it belongs to one, the value of ELSET.
  static cow_String GetSectionName(const cow_String& part, const cow_String& elset);
  // That of a section by its record. instance: by which the deck names the set; null: none.
  static cow_String GetSectionName(const KvoSimPosition& owner, const KvoSimPosition& set,
                                   const KvoSimPosition& instance);

  int NumberSections() const { return static_cast<int>(m_sections.size()); }
  // The set that the deck names; null: there is none.
  KvoSimPosition GetOriginalElementSet(int sectionIndex) const;
  // Its elements, ascending: ordinals of the owner of the set.
  eds_MemberSet GetCorrectedElset(int sectionIndex) const;

  // Elements that two sections name, of those that have been converted: told at the later one,
  // which holds.
  void TellDoubled(const inpS_Ledger& ledger, inp_Visitor& messages) const;

private:
  struct Section {
    inp_Keyword keyword;
    cow_String elset;
    KvoSimPosition set;
    KvoSimPosition space; // of its ordinals: the part, or the model for the flat mesh
    long long offset = 0; // from the set's ordinals to those
  };
  const Section& At(int sectionIndex) const;
  struct Placed {
    std::size_t section;
    long long offset; // from its set's ordinals to those of the space
  };
  void Tell(std::size_t later, const cow_List<Placed>& before, inp_Visitor& messages) const;

  cow_List<Section> m_sections;
};
