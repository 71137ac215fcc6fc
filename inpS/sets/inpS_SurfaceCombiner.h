#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/sets/inpS_SurfaceFaceSets.h"
#include "inpS/sets/inpS_SurfaceLines.h"
#include "inpS/sets/inpS_SurfaceStore.h"
#include <functional>
#include <set>
#include <unordered_map>

// Surfaces made of others: unions, intersections, differences, and what lies in or out of a box.
// They are noted as they are met and worked out once every surface of the deck is known, each after
// those it is made of; a surface that is made of itself is told.
class inpS_SurfaceCombiner {
public:
  inpS_SurfaceCombiner(const KvoObjDocument& document, inpS_SurfaceStore& store,
                       inpS_SetVisitor& visitor)
      : m_document(document), m_store(store), m_visitor(visitor) {}

  void Add(const inp_Keyword& keyword, const KvoObjSurface& surface);
  void AddKeptAsText(const KvoSimPosition& owner, const cow_String& name);
  // enter: makes a keyword's place the one that names are looked up from.
  void Resolve(const std::function<void(const inp_Keyword&)>& enter);

private:
  struct Operand {
    inpS_SetVisitor::Found found;
    long long row = 0;
    int col = 0;
  };
  enum class State : unsigned char { New, Open, Done };
  struct Entry {
    inp_Keyword keyword;
    KvoObjSurface surface;
    cow_List<Operand> operands;
    cow_List<double> box;
    bool good = true;
    State state = State::New;
  };

  void ReadOperands(Entry& entry);
  bool ReadBox(Entry& entry); // false: the record does not hold all of it
  void CheckCount(Entry& entry);
  void OpenFrom(std::size_t first);
  bool CheckTypes(Entry& entry);
  void Compute(Entry& entry);
  void ComputeFaces(Entry& entry);
  void ComputeNodes(Entry& entry);
  inpS_FaceSets FacesOf(const Operand& operand) const;
  eds_MemberSet NodesOf(const Operand& operand) const;
  void TellEmpty(const Entry& entry);
  void Fault(Entry& entry, const Operand& operand, cow_String text);

  KvoObjDocument m_document;
  inpS_SurfaceStore& m_store;
  inpS_SetVisitor& m_visitor;
  std::function<void(const inp_Keyword&)> m_enter;
  cow_List<Entry> m_entries;
  std::unordered_map<int64_t, std::size_t> m_bySurface;
  std::set<std::pair<unsigned long long, cow_String>> m_keptAsText;
};
