#include "inpS/writer/inpS_SurfacePrinter.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/sets/inpS_SurfaceTable.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include "inpS/writer/inpS_SetNames.h"

namespace {

using Operation = eds_SurfaceOperation;

cow_String nameOf(const KvoSurfacePiece& piece) {
  cow_String text;
  if (!piece.instance.IsNull())
    text = inpS_quoted(piece.instance.DataRecord().ReturnString(eds_Instance_Name)) + ".";
  const bool isSurface = piece.source.IsA(eds_RecordKind::Surface);
  return text + inpS_quoted(isSurface ? GetSurfaceName(piece.source) : SetName(piece.source));
}

} // namespace

void inpS_SurfacePrinter::PrintSurfaces(const inpS_DeckScope& scope) {
  for (const KvoSimPosition& surface : KvoObjSurface::OfOwner(scope.owner))
    PrintSurface(scope, KvoObjSurface(surface));
}

void inpS_SurfacePrinter::PrintSurface(const inpS_DeckScope& scope, const KvoObjSurface& surface) {
  m_out << "*SURFACE";
  const cow_String& kept = m_parts.At(surface.Position(), 0).parameters;
  const KvoSimDataRecord record = surface.Position().DataRecord();
  for (const inpS_ParameterBinding& row : inpS_surfaceParameters())
    if (kept.empty() || !inpS_holdsParameter(kept, row.name))
      inpS_printParameters(m_out, std::span(&row, 1), record);
  m_out << kept << '\n';
  const inpS_KeptPart& whole = m_parts.At(surface.Position(), inpS_wholeLines);
  m_out << whole.lines;
  if (!whole.lines.empty()) return;
  const cow_List<KvoSurfacePiece> pieces = surface.Pieces();
  const bool isMade = surface.Operation() != Operation::Defined;
  if (isMade) PrintNames(pieces);
  PrintPoints(surface);
  PrintSegments(surface);
  if (isMade) return;
  for (const KvoSurfacePiece& piece : pieces)
    PrintPiece(scope, piece, surface.Type() == eds_SurfaceType::Node);
  m_out << m_parts.At(surface.Position(), inpS_moreLines).lines;
}

void inpS_SurfacePrinter::PrintPoints(const KvoObjSurface& surface) {
  const cow_List<double> points = surface.Points();
  const inpS_PointLines lines = inpS_pointLinesOf(surface.Type(), surface.Operation());
  std::size_t at = 0;
  for (int n = 0; n < lines.lines; ++n) {
    const auto count = static_cast<std::size_t>(lines.numbers[n]);
    if (at + count > points.size()) return; // a line that need not be given
    inpS_printArray(m_out, points.data() + at, lines.numbers[n]);
    m_out << '\n';
    at += count;
  }
}

void inpS_SurfacePrinter::PrintSegments(const KvoObjSurface& surface) {
  const cow_List<double> rows = surface.Segments();
  for (std::size_t at = 0; at + eds_segmentWidth <= rows.size(); at += eds_segmentWidth) {
    if (!(rows[at] >= 0 && rows[at] < static_cast<double>(inpS_segmentRows().size()))) continue;
    const inpS_SegmentRow& kind = inpS_segmentRows()[static_cast<std::size_t>(rows[at])];
    m_out << kind.word << ", ";
    inpS_printArray(m_out, rows.data() + at + 1, kind.numbers);
    m_out << '\n';
  }
}

void inpS_SurfacePrinter::PrintNames(const cow_List<KvoSurfacePiece>& pieces) {
  constexpr std::size_t perLine = 4;
  for (std::size_t n = 0; n < pieces.size(); ++n) {
    if (n > 0) m_out << (n % perLine ? ", " : "\n");
    m_out << nameOf(pieces[n]);
  }
  if (!pieces.empty()) m_out << '\n';
}

void inpS_SurfacePrinter::PrintPiece(const inpS_DeckScope& scope, const KvoSurfacePiece& piece,
                                     bool nodes) {
  if (piece.source.IsNull()) return PrintListed(scope, piece, nodes);
  m_out << nameOf(piece);
  if (piece.face != eds_SurfaceFace::Whole) m_out << ", " << inpS_faceName(piece.face);
  if (nodes && piece.area != 1) m_out << ", " << piece.area;
  // A comma behind: one field alone would do, but so decks have it.
  m_out << (piece.face == eds_SurfaceFace::Whole && !(nodes && piece.area != 1) ? ",\n" : "\n");
}

void inpS_SurfacePrinter::PrintListed(const inpS_DeckScope& scope, const KvoSurfacePiece& piece,
                                      bool nodes) {
  const KvoSimCSet set(piece.members);
  const KvoObjLabeler& labeler = nodes ? m_labels.nodes : m_labels.elements;
  const int own = nodes ? scope.nodes : scope.elements;
  const eds_MemberSet& members = set.Set();
  cow_List<double> areas(piece.areas.IsNull() ? 0 : static_cast<std::size_t>(members.Size()));
  if (!areas.empty()) eds_ArrayReader(piece.areas).ReadPiece<double>(0, areas);

  cow_String end = ",";
  if (piece.face != eds_SurfaceFace::Whole) end = ", " + cow_String(inpS_faceName(piece.face));
  cow_String prefix;
  int occurrence = own;
  // The labels of a part are by its own ordinals; else one occurrence follows the other.
  long long low = 0, high = scope.isPart && own >= 0 ? labeler.Size(own) : 0;
  for (long long n = 0; n < members.Size(); ++n) {
    const int member = members[n];
    if (member < low || member >= high) {
      int64_t local = 0;
      occurrence = scope.isPart ? -1 : labeler.OccurrenceOfFlat(member, local);
      if (occurrence < 0) continue; // a damaged model's
      low = member - local;
      high = low + labeler.Size(occurrence);
      prefix = occurrence == own ? cow_String() : m_labels.InstanceOf(nodes, occurrence) + ".";
    }
    m_out << prefix << labeler.GetInstanceLabel(occurrence, member - low);
    const double area = areas.empty() ? piece.area : areas[static_cast<std::size_t>(n)];
    if (nodes && area != 1)
      m_out << ", " << area << '\n';
    else
      m_out << end << '\n';
  }
}
