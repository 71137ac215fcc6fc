#include "inpS/sets/inpS_SurfaceCombiner.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/sets/inpS_SurfaceCrop.h"
#include "inpS/sets/inpS_SurfaceNumbers.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

using Type = eds_SurfaceType;
using Op = eds_SurfaceOperation;

bool isCrop(Op operation) {
  return operation == Op::CropIn || operation == Op::CropOut;
}

} // namespace

void inpS_SurfaceCombiner::Add(const inp_Keyword& keyword, const KvoObjSurface& surface) {
  m_bySurface[surface.Position().ID()] = m_entries.size();
  m_entries.push_back({keyword, surface, {}, {}, true, State::New});
}

void inpS_SurfaceCombiner::AddKeptAsText(const KvoSimPosition& owner, const cow_String& name) {
  m_keptAsText.insert({owner.Object().Packed(), name});
}

void inpS_SurfaceCombiner::Resolve(const std::function<void(const inp_Keyword&)>& enter) {
  m_enter = enter;
  for (Entry& entry : m_entries) {
    m_enter(entry.keyword);
    KvoSimTransaction transaction(m_document.ContextID());
    ReadOperands(entry);
    CheckCount(entry);
    transaction.Commit();
  }
  for (std::size_t n = 0; n < m_entries.size(); ++n)
    if (m_entries[n].state == State::New) OpenFrom(n);
}

void inpS_SurfaceCombiner::ReadOperands(Entry& entry) {
  const Op operation = entry.surface.Operation();
  const inp_DataArray& data = entry.keyword.Data();
  inpS_SurfaceLines lines(entry.keyword, m_visitor);
  lines.ReadSurfaces(0, isCrop(operation) ? 1 : data.Rows());
  bool isWhole = true; // the record holds all that the lines say
  for (const inpS_SurfaceLines::Piece& piece : lines.Pieces()) {
    Operand operand{
        m_visitor.FindField(inpS_SetVisitor::Kind::Surfaces, data.FieldText(piece.row, piece.col)),
        piece.row, piece.col};
    if (operand.found.set.IsNull()) {
      const cow_String name = data.AsString(piece.row, piece.col);
      const bool kept = m_keptAsText.contains({m_visitor.Owner().Object().Packed(), name});
      Fault(entry, operand,
            "Surface \"" + name + (kept ? "\" is kept as text" : "\" does not exist") +
                " and takes no part in this one, which stays empty.");
      isWhole = false;
      continue;
    }
    KvoSurfacePiece stored;
    stored.source = operand.found.set;
    stored.instance = operand.found.instance;
    entry.surface.AddPiece(stored);
    entry.operands.push_back(operand);
  }
  if (isCrop(operation)) isWhole = ReadBox(entry) && isWhole;
  if (!isWhole)
    inpS_keepPart(entry.surface.Position(),
                  {inpS_wholeLines, {}, inpS_dataLines(entry.keyword, m_visitor)});
}

bool inpS_SurfaceCombiner::ReadBox(Entry& entry) {
  long long row = 1;
  inpS_SurfaceNumbers numbers(entry.keyword, m_visitor, " The surface is left empty.");
  const Op operation = entry.surface.Operation();
  const bool isRead =
      numbers.ReadPoints(inpS_pointLinesOf(entry.surface.Type(), operation), 1, row, entry.box) &&
      numbers.CheckBox(row - 1, entry.box);
  entry.good = entry.good && isRead;
  if (!isRead) return false;
  numbers.TellUnused(row);
  entry.surface.SetPoints(entry.box);
  return numbers.IsWhole();
}

void inpS_SurfaceCombiner::CheckCount(Entry& entry) {
  if (!entry.good) return;
  const std::size_t count = entry.operands.size();
  const Op operation = entry.surface.Operation();
  const char* fault = nullptr;
  if (isCrop(operation) && count != 1) fault = "CROP takes one surface.";
  if (operation == Op::Difference && count != 2) fault = "COMBINE=DIFFERENCE takes two surfaces.";
  if ((operation == Op::Union || operation == Op::Intersection) && count < 2)
    fault = "COMBINE takes two or more surfaces.";
  if (!fault) return;
  entry.good = false;
  m_visitor.AddError(inp_Utils::MessageInKeyword(entry.keyword, fault));
}

// Surfaces may be nested thousands deep: the open ones are kept in a list, not on the stack.
void inpS_SurfaceCombiner::OpenFrom(std::size_t first) {
  struct Frame {
    std::size_t entry;
    std::size_t next = 0;
  };
  cow_List<Frame> open{{first}};
  m_entries[first].state = State::Open;
  while (!open.empty()) {
    Entry& entry = m_entries[open.back().entry];
    if (open.back().next == entry.operands.size()) {
      m_enter(entry.keyword);
      Compute(entry);
      entry.state = State::Done;
      open.pop_back();
      continue;
    }
    const Operand& operand = entry.operands[open.back().next++];
    const auto made = m_bySurface.find(operand.found.set.ID());
    if (made == m_bySurface.end()) continue;
    Entry& other = m_entries[made->second];
    if (other.state == State::Open)
      Fault(entry, operand,
            "Surface \"" + other.surface.Name() + "\" is made of itself; it stays empty.");
    if (other.state != State::New) continue;
    other.state = State::Open;
    open.push_back({made->second});
  }
}

void inpS_SurfaceCombiner::Compute(Entry& entry) {
  if (!entry.good || !CheckTypes(entry)) return;
  KvoSimTransaction transaction(m_document.ContextID());
  if (entry.surface.Type() == Type::Node)
    ComputeNodes(entry);
  else
    ComputeFaces(entry);
  transaction.Commit();
}

// The result is of the one type that all are of; what TYPE says must not contradict.
bool inpS_SurfaceCombiner::CheckTypes(Entry& entry) {
  const Type type = KvoObjSurface(entry.operands[0].found.set).Type();
  const bool said = entry.keyword.HasParameter("type");
  const Type wanted = said ? entry.surface.Type() : type;
  const auto isMade = [](Type some) { return some == Type::Element || some == Type::Node; };
  if (said && !isMade(wanted)) {
    entry.good = false;
    m_visitor.AddError(inp_Utils::MessageAtParameter(
        entry.keyword, "type",
        "COMBINE and CROP make surfaces of elements or of nodes; this one stays empty."));
    return false;
  }
  for (const Operand& operand : entry.operands) {
    const Type other = KvoObjSurface(operand.found.set).Type();
    if (other == wanted && isMade(other)) continue;
    const char* const fault =
        !isMade(other) ? "This surface has neither faces of elements nor nodes to be combined."
        : said         ? "This surface is not of the type that the combined one is said to have."
                       : "Surfaces of elements and surfaces of nodes cannot be combined.";
    Fault(entry, operand, fault);
    return false;
  }
  if (wanted != entry.surface.Type()) {
    KvoSimTransaction transaction(m_document.ContextID());
    entry.surface.SetType(wanted);
    transaction.Commit();
  }
  return true;
}

inpS_FaceSets inpS_SurfaceCombiner::FacesOf(const Operand& operand) const {
  inpS_FaceSets sets;
  for (const KvoSurfaceFaces& faces : KvoObjSurface(operand.found.set).Faces())
    sets.Add(faces.face, inpS_SetVisitor::Moved(faces.elements, operand.found.offset));
  return sets;
}

eds_MemberSet inpS_SurfaceCombiner::NodesOf(const Operand& operand) const {
  const KvoObjSurface surface(operand.found.set);
  long long offset = 0;
  if (surface.Owner().IsA(eds_RecordKind::Part) && surface.Owner() != m_visitor.Owner()) {
    const KvoSimPosition& scoped = operand.found.instance;
    offset = (scoped.IsNull() ? m_visitor.Owner() : scoped)
                 .DataRecord()
                 .GetInt64(eds_Instance_FirstNode);
  }
  return inpS_SetVisitor::Moved(surface.Nodes(), offset);
}

void inpS_SurfaceCombiner::ComputeFaces(Entry& entry) {
  const KvoObjMesh mesh = m_document.GetMesh();
  const Op operation = entry.surface.Operation();
  inpS_FaceSets result = FacesOf(entry.operands[0]);
  if (isCrop(operation)) {
    const inpS_SurfaceCrop crop(mesh, m_visitor.Owner(), entry.box);
    result =
        crop.Faces(result, m_store.Elements().RunsOf(m_visitor.Owner()), operation == Op::CropIn);
  }
  for (std::size_t n = 1; n < entry.operands.size(); ++n) {
    const inpS_FaceSets other = FacesOf(entry.operands[n]);
    // The faces of a union settle once, however many surfaces there are.
    if (operation == Op::Union)
      for (int face = 0; face < eds_surfaceFaceCount; ++face)
        result.Add(static_cast<eds_SurfaceFace>(face),
                   other.Elements(static_cast<eds_SurfaceFace>(face)));
    else
      result =
          operation == Op::Intersection ? result.Intersection(other) : result.Difference(other);
  }
  result.Settle();
  if (result.IsEmpty()) TellEmpty(entry);
  result.Save(entry.surface, mesh.CollectionOf(m_visitor.Owner(), false));
}

void inpS_SurfaceCombiner::ComputeNodes(Entry& entry) {
  const KvoObjMesh mesh = m_document.GetMesh();
  const Op operation = entry.surface.Operation();
  eds_MemberSet result = NodesOf(entry.operands[0]);
  if (isCrop(operation))
    result =
        inpS_SurfaceCrop(mesh, m_visitor.Owner(), entry.box).Nodes(result, operation == Op::CropIn);
  cow_List<eds_MemberSet> others;
  for (std::size_t n = 1; n < entry.operands.size(); ++n) {
    others.push_back(NodesOf(entry.operands[n]));
    if (operation == Op::Intersection) result = result.Intersection(others.back());
    if (operation == Op::Difference) result = inpS_difference(result, others.back());
  }
  if (operation == Op::Union) {
    cow_List<const eds_MemberSet*> all{&result};
    for (const eds_MemberSet& other : others) all.push_back(&other);
    result = inpS_unionOf(all);
  }
  if (result.IsEmpty()) TellEmpty(entry);
  entry.surface.SetNodes(mesh.CollectionOf(m_visitor.Owner(), true).CreateCSet(result).ID());
}

void inpS_SurfaceCombiner::TellEmpty(const Entry& entry) {
  m_visitor.AddWarning(
      inp_Utils::MessageInKeyword(entry.keyword, "Nothing is left of the surfaces; \"" +
                                                     entry.surface.Name() + "\" is empty."));
}

void inpS_SurfaceCombiner::Fault(Entry& entry, const Operand& operand, cow_String text) {
  entry.good = false;
  m_visitor.AddError(
      inp_Utils::MessageAtField(entry.keyword, operand.row, operand.col, std::move(text)));
}
