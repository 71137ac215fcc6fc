#pragma once

#include "inpS/mesh/inpS_MeshScope.h"

class inp_Visitor;
class KvoObjMesh;

// Reads the set keywords of one owner into its table of sets: *NSET, *ELSET and the names that mesh
// keywords give to what they define.
class inpS_MeshSetReader {
public:
  inpS_MeshSetReader(inpS_MeshScopes& scopes, inp_Visitor& messages)
      : m_scopes(scopes), m_messages(messages) {}

  void Read(const inp_Keyword& keyword, inpS_MeshScope& scope, inpS_SetKind kind);
  void ReadElsetNodes(const inp_Keyword& keyword, inpS_MeshScope& scope); // with ELSET=NAME

  // The set that a mesh keyword's nodes or elements also go into, opened for them; null: none, or
  // one without a name, which is told.
  inpS_SetDefinition* Open(const inp_Keyword& keyword, inpS_MeshScope& scope, inpS_SetKind kind,
                           std::string_view parameter);
  // The parameter alone, by the same rule.
  const inp_Item* FindName(const inp_Keyword& keyword, std::string_view parameter);

  // Sets of the database that a restart deck may name.
  static void ReadStored(const KvoObjMesh& mesh, inpS_MeshScope& scope);

private:
  inpS_SetDefinition* Begin(const inp_Keyword& keyword, inpS_MeshScope& scope, inpS_SetKind kind,
                            cow_String& instance);
  bool FindInstance(const inp_Keyword& keyword, const inpS_MeshScope& scope, cow_String& instance);

  inpS_MeshScopes& m_scopes;
  inp_Visitor& m_messages;
};
