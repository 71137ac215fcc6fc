#pragma once

#include "tests/random/RandomDeck.h"
#include <functional>
#include <set>

// Writes the nodes, elements and sets of one part, instance, assembly or flat model in any order of
// keywords, with keywords among them that are kept as text.
class ScopeWriter {
public:
  ScopeWriter(Random& random, RandomDeck& deck, DeckForm& form)
      : m_random(random), m_deck(deck), m_deckForm(form), m_form(&form) {}

  void Write(int scope);
  void Kept();
  void KeptStep();
  // Makes a name: as the model holds it and as a deck may write it.
  void Name(const cow_String& letter, cow_String& name, cow_String& text);

private:
  struct SetName {
    cow_String name;
    cow_String text;
  };
  using Block = std::function<void()>;

  MeantScope& Here() { return m_deck.scopes[static_cast<std::size_t>(m_scope)]; }
  void Plan();
  void PlanLabels();
  cow_List<int> Labels(long long count, bool nodes);
  MeantSet& SetOf(bool nodes, std::size_t name);
  void Emit(std::vector<Block>& blocks);

  void System();
  void Nodes(const cow_List<int>& labels);
  void NodeRecord(int label, char system, DeckForm& form);
  void Elements();
  void UserElement();
  MeantElement Element(const cow_String& type, long long nodes, cow_List<cow_String>& fields);
  void ImplyNodes(MeantElement& element, long long plane, long long all, int offset);
  void Set(bool nodes, std::size_t name);
  void GeneratedSet(bool nodes, MeantSet& set, int instance);
  void ListedSet(bool nodes, std::size_t name, MeantSet& set, int instance);
  Meant AnyItem(bool nodes, int instance);
  cow_String TextOf(const Meant& item) const;

  Random& m_random;
  RandomDeck& m_deck;
  DeckForm& m_deckForm;
  DeckForm* m_form;
  int m_scope = 0;
  int m_files = 0;
  int m_nextElement = 1;
  cow_List<int> m_labels;          // of the nodes the scope is to have
  cow_List<int> m_positive;        // that elements may have
  cow_List<SetName> m_setNames[2]; // elements, nodes
  cow_List<int> m_instances;       // whose nodes and elements may be named here
  // Rotation (by columns) and origin of *SYSTEM.
  std::array<double, 12> m_system = {};
  bool m_hasSystem = false;
  int m_userNodes = 0;            // of U1; 0: not defined yet
  std::set<cow_String> m_defined; // of what is kept as text
};
