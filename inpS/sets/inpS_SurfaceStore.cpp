#include "inpS/sets/inpS_SurfaceStore.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/sets/inpS_FreeFaces.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

using Face = eds_SurfaceFace;

constexpr int kMostFaultsTold = 10; // of one piece

KvoSimCSet membershipOf(const KvoSimPosition& set, bool nodes) {
  return set.DataRecord().GetSet(nodes ? eds_NodeSet_Membership : eds_ElementSet_Membership);
}

eds_MemberSet unionOf(const cow_List<eds_MemberSet>& sets) {
  cow_List<const eds_MemberSet*> some;
  for (const eds_MemberSet& set : sets)
    if (!set.IsEmpty()) some.push_back(&set);
  return inpS_unionOf(some);
}

void addFree(const cow_List<inpS_FaceSet>& sets, Face first, inpS_FaceSets& faces) {
  for (const inpS_FaceSet& set : sets)
    faces.Add(static_cast<Face>(static_cast<int>(first) + set.face - 1), set.elements);
}

} // namespace

// ---- faces

void inpS_SurfaceStore::SaveFaces(const inp_Keyword& keyword, KvoObjSurface surface,
                                  inpS_SurfaceLines& lines) {
  const Runs& runs = m_elements.RunsOf(m_visitor.Owner());
  Check(keyword, runs, lines);
  inpS_FaceSets faces;
  cow_List<eds_MemberSet> free, edged;
  const auto hasFree = [](const inpS_SurfaceElements::Run& run) { return run.hasFreeFaces; };
  const auto hasNone = [](const inpS_SurfaceElements::Run& run) { return !run.hasFreeFaces; };
  for (const Piece& piece : lines.Pieces()) {
    const KvoSimCSet members = WithFace(runs, piece, SavePiece(surface, piece, false));
    if (piece.face == Face::Edge) {
      edged.push_back(members.Set());
    } else if (piece.face == Face::Whole) {
      free.push_back(inpS_SurfaceElements::Select(runs, members.Set(), hasFree));
      if (free.back().IsEmpty())
        faces.Add(Face::Whole, members);
      else
        faces.Add(Face::Whole, inpS_SurfaceElements::Select(runs, members.Set(), hasNone));
    } else {
      faces.Add(piece.face, members);
    }
  }
  // Free is what no other element of the lines without identifier shares: one body, however many
  // lines it is given in.
  addFree(inpS_freeFaces(runs, unionOf(free)), Face::S1, faces);
  addFree(inpS_freeEdges(runs, unionOf(edged)), Face::E1, faces);
  faces.Settle();
  faces.Save(surface, m_mesh.CollectionOf(m_visitor.Owner(), false));
}

void inpS_SurfaceStore::Check(const inp_Keyword& keyword, const Runs& runs,
                              inpS_SurfaceLines& lines) {
  std::erase_if(lines.Pieces(), [&](Piece& piece) {
    const bool allHave =
        std::all_of(runs.begin(), runs.end(), [&](const auto& run) { return run.Has(piece.face); });
    if (allHave) return false;
    if (piece.named.set.IsNull()) {
      CheckListed(keyword, runs, lines, piece);
      return piece.ordinals.IsEmpty();
    }
    CheckNamed(keyword, runs, piece);
    return false;
  });
}

// The line stands for the elements of the set that have the face.
void inpS_SurfaceStore::CheckNamed(const inp_Keyword& keyword, const Runs& runs,
                                   const Piece& piece) {
  const KvoSimCSet membership = membershipOf(piece.named.set, false);
  const eds_MemberSet& members = membership.Set();
  const inpS_SurfaceElements::Run* run = nullptr;
  long long first = -1, others = 0;
  for (long long n = 0; n < members.Size(); ++n) {
    const long long element = members[n] + piece.named.offset;
    if (!run || element < run->first || element >= run->first + run->count)
      run = inpS_SurfaceElements::RunAt(runs, element);
    if (run && run->Has(piece.face)) continue;
    if (first < 0)
      first = element;
    else
      ++others;
  }
  if (first < 0) return;
  cow_String kept = "it is not in the surface.";
  if (others > 0)
    kept = inp_Utils::Format("it and %lld more of the set are not in the surface.", others);
  ReportNoFace(keyword, piece.row, piece.col, piece, first, runs, kept);
}

KvoSimCSet inpS_SurfaceStore::WithFace(const Runs& runs, const Piece& piece,
                                       const KvoSimCSet& members) {
  const auto has = [&](const inpS_SurfaceElements::Run& run) { return run.Has(piece.face); };
  const bool isList = piece.named.set.IsNull(); // holds no others
  if (isList || members.IsEmpty() || std::ranges::all_of(runs, has)) return members;
  const eds_MemberSet some = inpS_SurfaceElements::Select(runs, members.Set(), has);
  if (some.Size() == members.Set().Size()) return members;
  return {m_mesh.CollectionOf(m_visitor.Owner(), false), some};
}

void inpS_SurfaceStore::CheckListed(const inp_Keyword& keyword, const Runs& runs,
                                    inpS_SurfaceLines& lines, Piece& piece) {
  std::size_t kept = 0;
  int told = 0;
  for (std::size_t n = 0; n < piece.ordinals.Size(); ++n) {
    const inpS_SurfaceElements::Run* run = inpS_SurfaceElements::RunAt(runs, piece.ordinals[n]);
    if (run && run->Has(piece.face)) {
      piece.ordinals[kept] = piece.ordinals[n];
      piece.rows[kept++] = piece.rows[n];
    } else if (told++ < kMostFaultsTold) {
      ReportNoFace(keyword, piece.rows[n], 0, piece, piece.ordinals[n], runs,
                   "the line is kept as it stands.");
    }
  }
  piece.ordinals.Resize(kept);
  piece.rows.Resize(kept);
  if (told > 0) lines.SetPartial();
  if (told <= kMostFaultsTold) return;
  m_visitor.AddError(inp_Utils::MessageInKeyword(
      keyword,
      inp_Utils::Format(
          "%d more elements of this surface have no such face; their lines are kept as they stand.",
          told - kMostFaultsTold)));
}

void inpS_SurfaceStore::ReportNoFace(const inp_Keyword& keyword, long long row, int col,
                                     const Piece& piece, long long element, const Runs& runs,
                                     const cow_String& kept) {
  if (piece.face == Face::Whole) {
    m_visitor.AddError(inp_Utils::MessageAtField(keyword, row, col,
                                                 inpS_messageText(inpS_mesh_SurfaceWithoutFace)));
    return;
  }
  const inpS_SurfaceElements::Run* run = inpS_SurfaceElements::RunAt(runs, element);
  m_visitor.AddError(inp_Utils::MessageAtField(
      keyword, row, col + 1,
      inp_Utils::Format("Element %d is of type %s, which has no face %s; %s",
                        m_visitor.GetElementLabel(element), run ? run->type.c_str() : "?",
                        cow_String(inpS_faceName(piece.face)).c_str(), kept.c_str())));
}

// ---- pieces

KvoSimCSet inpS_SurfaceStore::SavePiece(KvoObjSurface& surface, const Piece& piece, bool nodes) {
  KvoSurfacePiece stored;
  stored.face = piece.face;
  stored.area = piece.area;
  KvoSimCollection collection = m_mesh.CollectionOf(m_visitor.Owner(), nodes);
  if (!piece.named.set.IsNull()) {
    stored.source = piece.named.set;
    stored.instance = piece.named.instance;
    surface.AddPiece(stored);
    const KvoSimCSet members = membershipOf(piece.named.set, nodes);
    if (piece.named.offset == 0 || members.IsEmpty()) return members;
    return {collection, inpS_SetVisitor::Moved(members.Set(), piece.named.offset)};
  }
  const KvoSimCSet members = collection.CreateOrderedCSet(piece.ordinals);
  stored.members = members.ID();
  if (nodes) {
    const auto& areas = piece.areas;
    if (std::all_of(areas.begin(), areas.end(), [&](double area) { return area == areas[0]; })) {
      stored.area = areas[0];
    } else {
      eds_ArrayWriter writer(surface.Position(), eds_ValueType::Double, 1);
      writer.Append(std::span<const double>(areas));
      stored.areas = writer.Finish();
    }
  }
  surface.AddPiece(stored);
  return members;
}

// ---- nodes, cuts

void inpS_SurfaceStore::SaveNodes(KvoObjSurface surface, inpS_SurfaceLines& lines) {
  cow_List<KvoSimCSet> sets;
  for (const Piece& piece : lines.Pieces()) sets.push_back(SavePiece(surface, piece, true));
  std::erase_if(sets, [](const KvoSimCSet& set) { return set.IsEmpty(); });
  if (sets.size() == 1 && sets[0].IsAscending() && !sets[0].ID().IsNull()) {
    surface.SetNodes(sets[0].ID());
    return;
  }
  cow_List<const eds_MemberSet*> members;
  for (const KvoSimCSet& set : sets) members.push_back(&set.Set());
  KvoSimCollection collection = m_mesh.CollectionOf(m_visitor.Owner(), true);
  if (!members.empty()) surface.SetNodes(collection.CreateCSet(inpS_unionOf(members)).ID());
}

void inpS_SurfaceStore::SaveCut(KvoObjSurface surface, inpS_SurfaceLines& lines) {
  for (const Piece& piece : lines.Pieces()) SavePiece(surface, piece, false);
}
