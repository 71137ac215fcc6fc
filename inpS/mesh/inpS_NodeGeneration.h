#pragma once

#include "inpS/mesh/inpS_KnownNodes.h"
#include "inpS/mesh/inpS_MeshSetReader.h"
#include "inpS/mesh/inpS_NodeGenerator.h"
#include <initializer_list>
#include <set>

// Owners whose nodes are looked at again while the deck is read, because generators make others
// from them. An instance's generators look at its part's nodes as well, but those are stored by
// then.
class inpS_GeneratorScopes {
public:
  inpS_GeneratorScopes() = default;
  explicit inpS_GeneratorScopes(const inp_KeywordList& keywords);
  bool Holds(const inpS_MeshScope& scope) const;

private:
  bool m_root = false;
  std::set<cow_String> m_parts;
  std::set<cow_String> m_instances;
};

// The node generation keywords of one owner: reads their parameters and sets the reader of each to
// work. New nodes go to the sink; those that form a set are said to.
class inpS_NodeGeneration {
public:
  using Sink = std::function<void(const inpS_NodePiece&, inpS_SetDefinition* set)>;

  inpS_NodeGeneration(inpS_KnownNodes& known, inpS_MeshScope& scope, inpS_MeshSetReader& sets,
                      bool threeDimensional, inp_Visitor& messages, Sink sink)
      : m_known(known), m_scope(scope), m_sets(sets), m_threeDimensional(threeDimensional),
        m_messages(messages), m_sink(std::move(sink)) {}

  void Read(const inp_Keyword& keyword); // *NGEN, *NFILL, *NCOPY or *NMAP
  // By how much of its largest coordinate a node may move when it is made once more, before that is
  // told; below 0: the keyword is there to move nodes.
  // Whether its words tell what it makes: RC, LINE, SPHERICAL. What is wrong with them was told
  // where they were read.
  static bool KnowsKind(const inp_Keyword& keyword);
  static double ToleranceOf(const inp_Keyword& keyword);

private:
  void Ngen(const inp_Keyword& keyword);
  void Nfill(const inp_Keyword& keyword);
  void Ncopy(const inp_Keyword& keyword);
  void Nmap(const inp_Keyword& keyword);
  bool FindSet(const inp_Keyword& keyword, const char* parameter, inpS_KnownNodes::Set& set);
  void Refuse(const inp_Keyword& keyword, const char* parameter);
  inpS_NodeSink SinkTo(inpS_SetDefinition* set) const;

  inpS_KnownNodes& m_known;
  inpS_MeshScope& m_scope;
  inpS_MeshSetReader& m_sets;
  bool m_threeDimensional;
  inp_Visitor& m_messages;
  Sink m_sink;
};
