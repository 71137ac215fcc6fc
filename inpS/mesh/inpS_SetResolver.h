#pragma once

#include "database/eds_MemberSet.h"
#include "inpS/mesh/inpS_MeshScope.h"
#include <map>
#include <unordered_map>
#include <vector>

class KvoObjLabeler;
class inpS_BaseSets;
class inp_Visitor;

// Turns set definitions into members: ordinals of the owner for sets of a part, flat ordinals of
// the mesh for those of an instance, the assembly or a flat model. Sets may name sets defined
// later; a set that holds itself, a name that no set has and labels that do not exist are reported,
// and so is a set of more members than there may be: it is left empty, and what names it is told.
class inpS_SetResolver {
public:
  inpS_SetResolver(const KvoObjLabeler& nodes, const KvoObjLabeler& elements,
                   inpS_MeshScopes& scopes, inp_Visitor& messages);

  const eds_MemberSet& Members(const inpS_MeshScope& scope, const inpS_SetDefinition& set);
  // Data lines that name what the set has besides: elements that stand in keywords kept as text,
  // but for those that these keywords put into it themselves. Once its members are known.
  cow_String LinesOfText(const inpS_SetDefinition& set) const;

  // Of a restart: tells what the sets of its base may have.
  void SetBase(inpS_BaseSets* base) { m_base = base; }

  // While the deck is still read: ordinals of the owner, by what is known so far. What belongs to
  // instances cannot be told yet; such entries are left out. The elements of owners whose sets name
  // the nodes of elements are to be held as labels.
  void SetUnderway() { m_underway = true; }
  bool HasLeftOut() const { return m_leftOut; }

private:
  // A set of some scope, and what its ordinals need to become those of the set that asks.
  struct Target {
    const inpS_MeshScope* scope = nullptr;
    const inpS_SetDefinition* set = nullptr;
    long long offset = 0;
  };
  enum class State : unsigned char { New, Open, Done, TooLarge };
  using Scoped = std::pair<cow_String, int>; // an instance's name, or none, and a label
  struct Result {
    State state = State::New;
    eds_MemberSet members;
    std::vector<Scoped> asText; // ascending, each once
  };
  struct Frame {
    const inpS_MeshScope* scope;
    const inpS_SetDefinition* set;
    std::size_t nextEntry = 0;
  };
  struct Gathered;
  struct Undefined { // an instance that nobody defined, named by one keyword of a set
    const inpS_SetDefinition* set;
    const inpS_SetEntry* entry; // the first one
    long long count;
    bool inPart;
  };

  inpS_MeshScope* InstanceOf(const inpS_MeshScope& scope, const inpS_SetDefinition& set,
                             const inpS_SetEntry& entry, bool report);
  Target Find(const inpS_MeshScope& scope, inpS_SetKind kind, const inpS_SetDefinition& set,
              const inpS_SetEntry& entry, bool report);
  void ResolveFirst(const inpS_MeshScope& scope, const inpS_SetDefinition& set);
  void Finish(const inpS_MeshScope& scope, const inpS_SetDefinition& set);
  bool MayTell(const inpS_SetEntry& entry) const;
  void AddEntry(const inpS_MeshScope& scope, const inpS_SetDefinition& set,
                const inpS_SetEntry& entry, Gathered& gathered);
  void AddLabels(const inpS_MeshScope& owner, inpS_SetKind kind, const inpS_SetEntry& entry,
                 Gathered& gathered) const;
  void Miss(const inpS_MeshScope& owner, inpS_SetKind kind, const inpS_SetEntry& entry,
            long long label, Gathered& gathered) const;
  void AddTextOf(const inpS_SetDefinition& set, const inpS_SetEntry& entry,
                 const inpS_SetDefinition& other, Gathered& gathered);
  void AddRange(const inpS_MeshScope& owner, inpS_SetKind kind, const inpS_SetEntry& entry,
                Gathered& gathered) const;
  void AddNodesOf(const inpS_MeshScope& scope, const eds_MemberSet& elements, long long offset,
                  Gathered& gathered) const;
  void AddNodesKnown(const inpS_MeshScope& scope, const eds_MemberSet& elements,
                     Gathered& gathered);
  void NoteUndefined(bool inPart, const inpS_SetDefinition& set, const inpS_SetEntry& entry);
  void ReportUndefined();
  bool HasMembers(const inpS_SetDefinition& set, const inpS_SetEntry& entry, const Target& target);
  bool IsTooLarge(const inpS_SetDefinition& set, const inpS_SetEntry& entry,
                  const Gathered& gathered);
  void ReportMissing(const inpS_SetDefinition& set, Gathered& gathered);
  void ReportEntry(const inpS_SetDefinition& set, const inpS_SetEntry& entry, cow_String text);

  const KvoObjLabeler& m_nodes;
  const KvoObjLabeler& m_elements;
  inpS_MeshScopes& m_scopes;
  inp_Visitor& m_messages;
  inpS_BaseSets* m_base = nullptr;
  bool m_underway = false;
  bool m_leftOut = false;
  long long m_listed = 0;          // members of all sets that are no single run
  cow_List<Undefined> m_undefined; // of the set at hand
  std::map<std::pair<int, cow_String>, std::size_t> m_undefinedAt; // by keyword and instance
  std::unordered_map<const inpS_SetDefinition*, Result> m_results; // a set belongs to one scope
};
