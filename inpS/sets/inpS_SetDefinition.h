#pragma once

#include "base/utl_Buffer.h"
#include "parser/inp_Keyword.h"
#include <deque>

enum class inpS_SetKind : unsigned char { Nodes, Elements };

// One thing the deck says a set holds, before labels and names are looked up: sets may name sets
// and labels that the deck defines later.
struct inpS_SetEntry {
  enum class Kind : unsigned char {
    Labels,       // labels in the order read
    Range,        // first, first + increment, … (count of them)
    Set,          // the members of another set of the same kind
    NodesOfElset, // the nodes of an element set's elements
    Positions     // what a mesh keyword itself defined: ordinals first … first + count - 1
  };
  Kind kind = Kind::Labels;
  utl_Buffer<int> labels;
  long long first = 0;
  long long increment = 1;
  long long count = 0;
  cow_String name;     // of the other set
  cow_String instance; // the instance the labels or the name belong to; empty: the owner itself
  int keyword = 0;     // index into the definition's keywords
  long long row = 0;   // data row and field it was read from, for messages
  int col = 0;
};

// A set under construction: everything every keyword of its name said of it, in deck order.
struct inpS_SetDefinition {
  inpS_SetKind kind = inpS_SetKind::Nodes;
  cow_String name;
  bool internal = false;
  bool isStored = false; // as it is in the database already (restart)
  bool unsorted = false; // members keep the order in which they were read
  cow_List<inpS_SetEntry> entries;
  cow_List<inp_Keyword> keywords;
  cow_String otherParameters;   // that nothing reads, as given
  cow_List<int> elementsAsText; // that keywords of elements kept as text put into it
};

// The sets of one owner (model, part, instance or assembly) in order of first definition.
class inpS_SetTable {
public:
  inpS_SetDefinition& FindOrAdd(inpS_SetKind kind, const cow_String& name);
  const inpS_SetDefinition* Find(inpS_SetKind kind, const cow_String& name) const;
  std::deque<inpS_SetDefinition>& All() { return m_sets; }
  const std::deque<inpS_SetDefinition>& All() const { return m_sets; }

private:
  std::deque<inpS_SetDefinition> m_sets;
  cow_Map<cow_String, inpS_SetDefinition*> m_byName[2];
};

// A mesh keyword is about to add what it defines itself.
void inpS_beginRuns(inpS_SetDefinition& set, const inp_Keyword& keyword);
// Adds ordinals of the owner: first … first + count - 1; runs that meet become one.
void inpS_addRun(inpS_SetDefinition& set, long long first, long long count);
