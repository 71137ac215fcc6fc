#pragma once

#include "inpS/sets/inpS_SurfaceElements.h"
#include "inpS/sets/inpS_SurfaceFaceSets.h"
#include "inpS/sets/inpS_SurfaceLines.h"

// Writes what was read of a surface into the store: the pieces as they were given, and the faces or
// nodes they come to. Inside the caller's transaction; the surface's owner is the visitor's.
class inpS_SurfaceStore {
public:
  inpS_SurfaceStore(const KvoObjMesh& mesh, inpS_SetVisitor& visitor)
      : m_mesh(mesh), m_visitor(visitor), m_elements(mesh) {}

  const inpS_SurfaceElements& Elements() const { return m_elements; }
  void SaveFaces(const inp_Keyword& keyword, KvoObjSurface surface, inpS_SurfaceLines& lines);
  void SaveNodes(KvoObjSurface surface, inpS_SurfaceLines& lines);
  void SaveCut(KvoObjSurface surface, inpS_SurfaceLines& lines); // elements without faces

private:
  using Piece = inpS_SurfaceLines::Piece;
  using Runs = cow_List<inpS_SurfaceElements::Run>;
  void Check(const inp_Keyword& keyword, const Runs& runs, inpS_SurfaceLines& lines);
  void CheckNamed(const inp_Keyword& keyword, const Runs& runs, const Piece& piece);
  void CheckListed(const inp_Keyword& keyword, const Runs& runs, inpS_SurfaceLines& lines,
                   Piece& piece);
  // kept: what becomes of it
  void ReportNoFace(const inp_Keyword& keyword, long long row, int col, const Piece& piece,
                    long long element, const Runs& runs, const cow_String& kept);
  // Those members of a named set that have the face; of a list all.
  KvoSimCSet WithFace(const Runs& runs, const Piece& piece, const KvoSimCSet& members);
  // The members of a piece as the surface's owner counts them, after its record was made.
  KvoSimCSet SavePiece(KvoObjSurface& surface, const Piece& piece, bool nodes);

  KvoObjMesh m_mesh;
  inpS_SetVisitor& m_visitor;
  inpS_SurfaceElements m_elements;
};
