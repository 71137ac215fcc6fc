#pragma once

#include "base/cow_Value.h"
#include "tests/random/DeckForm.h"
#include <array>
#include <set>

// A deck made by chance and what it means, kept by the generator while it writes the deck.

// A node or an element by where it stands and its label; label 0: a node left out.
struct Meant {
  int scope; // in RandomDeck::scopes
  int label;
  auto operator<=>(const Meant&) const = default;
};

struct MeantElement {
  cow_String type;
  cow_List<Meant> nodes;
};

struct MeantSet {
  struct Entry {
    cow_List<Meant> members; // of this entry, or, where a name is given,
    cow_String name;         // those of another set
    int scope = 0;           // that is seen from here
    bool nodesOfElset = false;
  };
  bool unsorted = false;
  bool internal = false;
  cow_List<Entry> entries;
};

struct MeantScope {
  enum Kind { Root, Part, Instance };
  Kind kind = Root;
  cow_String name; // as the model holds it
  cow_String text; // as the deck writes it
  int part = -1;   // of an instance
  bool placed = false;
  std::array<double, 10> placement = {}; // translation, axis points, degrees
  cow_Map<int, std::array<double, 3>> points;
  cow_List<int> nodeOrder;
  std::set<int> impliedNodes; // that elements make by their labels
  int middleNodes = 0;        // that they make under labels nobody gave
  cow_Map<int, MeantElement> elements;
  cow_Map<cow_String, MeantSet> nodeSets, elementSets;

  cow_Map<cow_String, MeantSet>& Sets(bool nodes) { return nodes ? nodeSets : elementSets; }
  const cow_Map<cow_String, MeantSet>& Sets(bool nodes) const {
    return nodes ? nodeSets : elementSets;
  }
};

struct RandomDeck {
  explicit RandomDeck(std::uint64_t seed);

  // A node or an element of that label; not those that elements make under labels nobody gave.
  bool Has(const Meant& item, bool nodes) const;
  bool IsGiven(const Meant& node) const;
  // The members of a set, in the order read when it is unsorted and names no other set.
  cow_List<Meant> MembersOf(const MeantSet& set, bool nodes) const;
  cow_List<Meant> MembersOf(int scope, const cow_String& name, bool nodes) const;
  std::array<double, 3> PointOf(const Meant& node) const;
  const MeantElement* ElementOf(const Meant& element) const;

  cow_Map<cow_String, cow_String> files; // by name; "deck.inp" is the deck
  cow_List<MeantScope> scopes;           // the root first, then parts, then instances
};
