#pragma once

#include "database/KvoObjLabeler.h"
#include "database/KvoSimPosition.h"
#include "database/eds_MemberSet.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_System.h"
#include "inpS/framework/inpS_Visitor.h"
#include "inpS/sets/inpS_TextElements.h"

// Base of the visitors that refer to nodes, elements and sets: it knows where in the deck the walk
// stands (part, instance, step, coordinate system) and looks labels and sets up from there.
//
// A name without a scope is looked for in the owner that is open (model, assembly, part or
// instance) and, inside an instance, then in its part; "instance.name" and "instance.label" name an
// instance of the assembly. Ordinals are flat ordinals of the mesh, inside a part those of the
// part.
class inpS_SetVisitor : public inpS_Visitor {
public:
  enum class Kind { Nodes, Elements, Surfaces };
  // A set or surface as something names it.
  struct Found {
    KvoSimPosition set;
    long long offset = 0;    // from its ordinals to those of the owner that is open
    KvoSimPosition instance; // that the name was scoped by
  };
  // Where the labels of nodes or elements stand: those of the owner that is open, or of an
  // instance.
  struct LabelSpace {
    int occurrence = -1; // of the labeler; -1: there is none
    long long offset = 0;
  };

  inpS_SetVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements, const inpS_Inventory& inventory);

  void Visit(const inp_Keyword& keyword) override;
  void VisitSystem(const inp_Keyword& keyword) override;
  void VisitInstance(const inp_Keyword& keyword) override;

  const cow_String& CurrentPart() const { return m_part; }
  const cow_String& CurrentInstance() const { return m_instance; }
  const cow_String& CurrentStep() const { return m_step; }
  const inpS_System& System() const { return m_system; }
  const inpS_System& InstanceSystem() const { return m_instanceSystem; }

  KvoSimPosition GetNodeSet(const cow_String& name);
  KvoSimPosition GetElementSet(const cow_String& name);
  KvoSimPosition GetSurface(const cow_String& name);
  // A field as it is written: name, "name", instance.name.
  Found FindField(Kind kind, std::string_view asWritten) const;
  LabelSpace SpaceOf(Kind kind, const cow_String& instance = {}) const; // empty: no instance
  // Elements that the deck has in keywords kept as text: a label of theirs is no fault.
  void SetTextElements(inpS_TextElements elements) { m_textElements = std::move(elements); }
  bool IsInText(Kind kind, const LabelSpace& space, int label) const {
    return kind == Kind::Elements && m_textElements.Has(space.occurrence, label);
  }
  const KvoObjLabeler& LabelerOf(Kind kind) const {
    return kind == Kind::Nodes ? m_nodes : m_elements;
  }
  const KvoSimPosition& Owner() const { return m_owner; } // that is open; null: it was refused
  // What the keywords of this place belong to: as the owner, but for the model's own beside an
  // assembly.
  KvoSimPosition Holder() const;
  KvoSimPosition Model() const;
  // The members of a named set as ordinals, in the order of their labels unless the set is
  // unsorted; false when there is no such set.
  bool GetNodeSetMembers(const cow_String& name, eds_MemberSet& ordinals);
  bool GetElementSetMembers(const cow_String& name, eds_MemberSet& ordinals);

  // Labels of a set's members within their owners, in the same order.
  void GetNodeLabels(const KvoSimPosition& set, cow_List<int>& labels) const;
  void GetElementLabels(const KvoSimPosition& set, cow_List<int>& labels) const;

  int GetNodeLabel(long long ordinal) const;
  int GetElementLabel(long long ordinal) const;
  bool GetNodeOrdinal(int label, long long& ordinal) const; // false when the label is unknown
  bool GetElementOrdinal(int label, long long& ordinal) const;

  // The fields of a data line, from one column on, taken as labels or set names; what cannot be
  // found goes to `unknown`.
  void ReadNodeData(const inp_Keyword& keyword, long long row, int col, cow_List<int>& ordinals,
                    cow_List<cow_String>& unknown);
  void ReadElementData(const inp_Keyword& keyword, long long row, int col, cow_List<int>& ordinals,
                       cow_List<cow_String>& unknown);
  void ReadNodeParameter(const inp_Keyword& keyword, std::string_view parameter,
                         cow_List<int>& ordinals, cow_List<cow_String>& unknown);
  void ReadElementParameter(const inp_Keyword& keyword, std::string_view parameter,
                            cow_List<int>& ordinals, cow_List<cow_String>& unknown);
  // The members with an offset added to each.
  static eds_MemberSet Moved(const eds_MemberSet& members, long long offset);
  static cow_String RemoveQuotes(const cow_String& name);

protected:
  void Enter(const inp_Keyword& keyword); // makes its place in the deck the one names are seen from
  const inpS_Inventory& Inventory() const { return m_inventory; }
  KvoObjLabeler& NodeLabeler() { return m_nodes; }
  KvoObjLabeler& ElementLabeler() { return m_elements; }

private:
  KvoSimPosition OwnerOf(const inp_Scope& scope) const;
  // Null: there is none, or none that may be named here.
  KvoSimPosition OccurrenceOf(const cow_String& instance) const;
  Found FindIn(Kind kind, const KvoSimPosition& owner, const cow_String& key) const;
  Found Find(Kind kind, const cow_String& name) const;
  int LabelOf(Kind kind, long long ordinal) const;
  eds_MemberSet InOrder(Kind kind, const KvoSimPosition& set) const;
  bool MembersOf(Kind kind, const Found& found, eds_MemberSet& ordinals) const;
  bool OrdinalOf(Kind kind, const KvoSimPosition& owner, long long label, long long& ordinal) const;
  void LabelsOf(Kind kind, const KvoSimPosition& set, cow_List<int>& labels) const;
  bool AddLabel(Kind kind, const KvoSimPosition& owner, long long label,
                cow_List<int>& ordinals) const;
  bool AddNamed(Kind kind, std::string_view asWritten, cow_List<int>& ordinals) const;
  void ReadData(Kind kind, const inp_Keyword& keyword, long long row, int col,
                cow_List<int>& ordinals, cow_List<cow_String>& unknown);
  void ReadParameter(Kind kind, const inp_Keyword& keyword, std::string_view parameter,
                     cow_List<int>& ordinals, cow_List<cow_String>& unknown);

  KvoObjLabeler& m_nodes;
  KvoObjLabeler& m_elements;
  const inpS_Inventory& m_inventory;
  inpS_TextElements m_textElements;
  inp_ScopePtr m_scope;
  KvoSimPosition m_owner;
  cow_String m_part;
  cow_String m_instance;
  cow_String m_step;
  inpS_System m_system;
  inpS_System m_instanceSystem;
};
