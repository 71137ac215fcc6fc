#pragma once

#include "database/KvoObjDocument.h"
#include "inpS/mesh/inpS_MeshScope.h"

class KvoObjLabeler;
class KvoSimCollection;
class inpS_ElementParameters;
class inpS_SetResolver;
class inp_Visitor;
struct inpS_SetDefinition;

// Writes a gathered mesh into the database, inside the caller's transaction. A part is a pattern
// with ordinals of its own; root and instances are laid into the flat mesh. An instance costs its
// coordinates: connectivity (and coordinates, where nothing moves) are its part's arrays.
class inpS_MeshStore {
public:
  inpS_MeshStore(const KvoObjDocument& document, KvoObjLabeler& nodes, KvoObjLabeler& elements,
                 inpS_MeshScopes& scopes);

  static KvoSimPosition SaveElementType(const KvoObjDocument& document,
                                        const inpS_ElementParameters& type, int dimension);
  void SaveExtraNodes(); // (element, node) pairs of flat ordinals
  void SaveNodes(inp_Visitor& messages);
  void SaveElements(const cow_List<KvoSimPosition>& specs); // by the visitor's type index
  void SaveSets(inpS_SetResolver& resolver);
  static eds_Member MemberOf(const inpS_SetDefinition& set); // by which its owner knows it

private:
  void SaveSet(inpS_MeshScope& scope, const inpS_SetDefinition& definition,
               inpS_SetResolver& resolver);
  void SaveOwnNodes(inpS_MeshScope& scope);
  void SaveCopiedNodes(inpS_MeshScope& scope, const inpS_MeshScope& part);
  void SaveOwnElements(inpS_MeshScope& scope, const cow_List<KvoSimPosition>& specs);
  void SaveSharedElements(const inpS_MeshScope& scope, const inpS_MeshScope& part);
  void SaveCounts(const inpS_MeshScope& scope);
  void SaveUserSets(bool nodes);

  KvoObjDocument m_document;
  KvoObjLabeler& m_nodes;
  KvoObjLabeler& m_elements;
  inpS_MeshScopes& m_scopes;
};
