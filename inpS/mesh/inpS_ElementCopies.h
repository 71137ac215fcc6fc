#pragma once

#include "inpS/mesh/inpS_BasicElemTypeData.h"
#include "inpS/mesh/inpS_LabelFaults.h"
#include "inpS/mesh/inpS_MeshSetReader.h"
#include "inpS/mesh/inpS_OldElements.h"
#include <optional>
#include <vector>

struct inpS_MadeElements;
class inpS_Salvage;

// Makes elements from those that their owner has so far: *ELGEN and *ELCOPY. They join the owner's
// as if *ELEMENT had listed them; nodes may be defined later, and those that never are, are told at
// the keyword.
class inpS_ElementCopies {
public:
  // typeNames: of the element types by their index.
  inpS_ElementCopies(const KvoObjLabeler& nodes, KvoObjLabeler& elements, inpS_MeshScopes& scopes,
                     inpS_MeshSetReader& sets, const inpS_BasicElemTypeData& types,
                     cow_List<cow_String> typeNames, inpS_Salvage* salvage, inp_Visitor& messages)
      : m_nodes(nodes), m_elements(elements), m_scopes(scopes), m_sets(sets), m_types(types),
        m_typeNames(std::move(typeNames)), m_salvage(salvage), m_messages(messages) {}

  // except: data lines that are passed over, ascending
  void Generate(const inp_Keyword& keyword, inpS_MeshScope& scope,
                const cow_List<long long>& except);
  void Copy(const inp_Keyword& keyword, inpS_MeshScope& scope);

private:
  std::optional<long long> ReadShift(const inp_Keyword& keyword, const char* parameter);
  bool FindOldSet(const inp_Keyword& keyword, const inpS_MeshScope& scope,
                  std::vector<int>& ordinals);
  void Append(const inp_Keyword& keyword, inpS_MeshScope& scope, const inpS_MadeElements& made);
  void AppendAll(const inp_Keyword& keyword, inpS_MeshScope& scope, const inpS_MadeElements& made);
  void AppendFresh(const inp_Keyword& keyword, inpS_MeshScope& scope, long long first,
                   const inpS_MadeElements& made);
  void AddAgain(inpS_SetDefinition& set);
  void Report(const inp_Keyword& keyword);

  const KvoObjLabeler& m_nodes;
  KvoObjLabeler& m_elements;
  inpS_MeshScopes& m_scopes;
  inpS_MeshSetReader& m_sets;
  const inpS_BasicElemTypeData& m_types;
  cow_List<cow_String> m_typeNames;
  inpS_Salvage* m_salvage; // null: elements with faults are not passed over
  inp_Visitor& m_messages;
  inpS_LabelFaults m_faults;
  cow_List<int> m_again; // elements that the keyword's set is to hold besides its new ones
};
