#include "database/KvoObjSurface.h"
#include "base/utl_Assert.h"
#include "database/KvoSimDataRecord.h"
#include <algorithm>

namespace {

cow_List<double> doublesOf(const KvoSimDataRecord& record, int field) {
  const KvoSimPosition position = record.GetReference(field);
  if (position.IsNull()) return {};
  eds_ArrayReader array({position.Store(), position.ID()});
  cow_List<double> values(static_cast<size_t>(array.Count() * array.Width()));
  array.ReadPiece<double>(0, values);
  return values;
}

void setDoubles(const KvoSimPosition& object, int field, int width,
                std::span<const double> values) {
  eds_ArrayWriter array(object, eds_ValueType::Double, width);
  array.Append(values);
  object.DataRecord().SetReference(field, array.Finish().Position());
}

} // namespace

KvoObjSurface::KvoObjSurface(const KvoSimPosition& position) : m_position(position) {
  utl_ASSERT(position.IsNull() || position.IsA(eds_RecordKind::Surface));
}

KvoObjSurface::KvoObjSurface(const KvoSimPosition& owner, std::string_view name, bool internal)
    : m_position(owner.CreateDataRecord(eds_RecordKind::Surface)) {
  KvoSimDataRecord record = m_position.DataRecord();
  record.SetString(eds_Surface_Name, name);
  record.SetReference(eds_Surface_Owner, owner);
  if (internal) record.SetBool(eds_Surface_Internal, true);
  owner.AssociateStringKey(internal ? eds_Member::InternalSurfaces : eds_Member::Surfaces, name,
                           m_position);
}

cow_String KvoObjSurface::Name() const {
  return m_position.DataRecord().ReturnString(eds_Surface_Name);
}

KvoSimPosition KvoObjSurface::Owner() const {
  return m_position.DataRecord().GetReference(eds_Surface_Owner);
}

bool KvoObjSurface::IsInternal() const {
  return m_position.DataRecord().GetBool(eds_Surface_Internal);
}

eds_SurfaceType KvoObjSurface::Type() const {
  return static_cast<eds_SurfaceType>(m_position.DataRecord().GetSymb(eds_Surface_Type));
}

void KvoObjSurface::SetType(eds_SurfaceType type) {
  m_position.DataRecord().SetSymb(eds_Surface_Type, static_cast<int>(type));
}

bool KvoObjSurface::IsAnalytical() const {
  const eds_SurfaceType type = Type();
  return type == eds_SurfaceType::Segments || type == eds_SurfaceType::Cylinder ||
         type == eds_SurfaceType::Revolution;
}

eds_SurfaceOperation KvoObjSurface::Operation() const {
  return static_cast<eds_SurfaceOperation>(m_position.DataRecord().GetSymb(eds_Surface_Operation));
}

void KvoObjSurface::SetOperation(eds_SurfaceOperation operation) {
  m_position.DataRecord().SetSymb(eds_Surface_Operation, static_cast<int>(operation));
}

// ---- what it comes to

cow_List<KvoSurfaceFaces> KvoObjSurface::Faces() const {
  cow_List<KvoSurfaceFaces> all;
  for (const KvoSimPosition& position : m_position.FollowMap(eds_Member::SurfaceFaces)) {
    const KvoSimDataRecord record = position.DataRecord();
    all.push_back({static_cast<eds_SurfaceFace>(record.GetSymb(eds_SurfaceFaces_Face)),
                   record.GetSet(eds_SurfaceFaces_Elements).Set()});
  }
  return all;
}

void KvoObjSurface::AddFaces(eds_SurfaceFace face, const KvoSimCSetID& elements) {
  const KvoSimPosition faces = m_position.CreateDataRecord(eds_RecordKind::SurfaceFaces);
  KvoSimDataRecord record = faces.DataRecord();
  record.SetReference(eds_SurfaceFaces_Surface, m_position);
  record.SetSymb(eds_SurfaceFaces_Face, static_cast<int>(face));
  record.SetSet(eds_SurfaceFaces_Elements, elements);
  m_position.Associate(eds_Member::SurfaceFaces, faces);
}

eds_MemberSet KvoObjSurface::Nodes() const {
  return m_position.DataRecord().GetSet(eds_Surface_Nodes).Set();
}

void KvoObjSurface::SetNodes(const KvoSimCSetID& nodes) {
  m_position.DataRecord().SetSet(eds_Surface_Nodes, nodes);
}

bool KvoObjSurface::HasNodalAreas() const {
  return !m_position.DataRecord().GetReference(eds_Surface_NodalAreas).IsNull();
}

KvoSurfaceNodalAreas KvoObjSurface::NodalAreas() const {
  const KvoSimPosition drawer = m_position.DataRecord().GetReference(eds_Surface_NodalAreas);
  if (drawer.IsNull()) return {};
  const KvoSimPosition areas = drawer.DataRecord().GetReference(eds_Drawer_Array);
  return {drawer.DataRecord().GetSet(eds_Drawer_Over).Set(), {areas.Store(), areas.ID()}};
}

void KvoObjSurface::SetNodalAreas(KvoSimDistribution all, const KvoSimCSetID& nodes,
                                  const eds_ArrayID& areas) {
  const int64_t drawer = all.AddDrawer(nodes, areas);
  m_position.DataRecord().SetReference(eds_Surface_NodalAreas,
                                       {all.Store(), {eds_RecordKind::Drawer, drawer}});
}

// ---- what the deck says

cow_List<KvoSurfacePiece> KvoObjSurface::Pieces() const {
  cow_List<KvoSurfacePiece> all;
  for (const KvoSimPosition& position : m_position.FollowMap(eds_Member::SurfacePieces)) {
    const KvoSimDataRecord record = position.DataRecord();
    KvoSurfacePiece& piece = all.emplace_back();
    piece.face = static_cast<eds_SurfaceFace>(record.GetSymb(eds_SurfacePiece_Face));
    piece.source = record.GetReference(eds_SurfacePiece_Source);
    piece.instance = record.GetReference(eds_SurfacePiece_Instance);
    const KvoSimPosition members = record.GetReference(eds_SurfacePiece_Members);
    if (!members.IsNull()) piece.members = {members.Store(), members.ID()};
    piece.area = record.GetDouble(eds_SurfacePiece_Area);
    const KvoSimPosition areas = record.GetReference(eds_SurfacePiece_Areas);
    if (!areas.IsNull()) piece.areas = {areas.Store(), areas.ID()};
  }
  return all;
}

void KvoObjSurface::AddPiece(const KvoSurfacePiece& piece) {
  const KvoSimPosition position = m_position.CreateDataRecord(eds_RecordKind::SurfacePiece);
  KvoSimDataRecord record = position.DataRecord();
  record.SetReference(eds_SurfacePiece_Surface, m_position);
  if (piece.face != eds_SurfaceFace::Whole)
    record.SetSymb(eds_SurfacePiece_Face, static_cast<int>(piece.face));
  if (!piece.source.IsNull()) record.SetReference(eds_SurfacePiece_Source, piece.source);
  if (!piece.instance.IsNull()) record.SetReference(eds_SurfacePiece_Instance, piece.instance);
  if (!piece.members.IsNull()) record.SetSet(eds_SurfacePiece_Members, piece.members);
  if (piece.area != 1) record.SetDouble(eds_SurfacePiece_Area, piece.area);
  if (!piece.areas.IsNull()) record.SetReference(eds_SurfacePiece_Areas, piece.areas.Position());
  m_position.Associate(eds_Member::SurfacePieces, position);
}

cow_List<double> KvoObjSurface::Points() const {
  return doublesOf(m_position.DataRecord(), eds_Surface_Points);
}

void KvoObjSurface::SetPoints(std::span<const double> coordinates) {
  setDoubles(m_position, eds_Surface_Points, 3, coordinates);
}

cow_List<double> KvoObjSurface::Segments() const {
  return doublesOf(m_position.DataRecord(), eds_Surface_Segments);
}

void KvoObjSurface::SetSegments(std::span<const double> rows) {
  setDoubles(m_position, eds_Surface_Segments, eds_segmentWidth, rows);
}

cow_List<KvoSimPosition> KvoObjSurface::OfOwner(const KvoSimPosition& owner) {
  cow_List<KvoSimPosition> surfaces = owner.FollowMap(eds_Member::Surfaces);
  const auto internal = owner.FollowMap(eds_Member::InternalSurfaces);
  surfaces.insert(surfaces.end(), internal.begin(), internal.end());
  std::sort(surfaces.begin(), surfaces.end(),
            [](const KvoSimPosition& a, const KvoSimPosition& b) { return a.ID() < b.ID(); });
  return surfaces;
}
