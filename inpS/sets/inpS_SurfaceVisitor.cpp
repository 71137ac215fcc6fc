#include "inpS/sets/inpS_SurfaceVisitor.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "inpS/keywords/inpS_BlankLine.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/keywords/inpS_KeywordParameterReader.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/sets/inpS_SurfaceCombiner.h"
#include "inpS/sets/inpS_SurfaceNumbers.h"
#include "inpS/sets/inpS_SurfaceStore.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

using Type = eds_SurfaceType;
using Operation = eds_SurfaceOperation;

const inpS_ParameterBinding& rowOf(std::string_view name) {
  const auto rows = inpS_surfaceParameters();
  return *std::find_if(rows.begin(), rows.end(),
                       [&](const inpS_ParameterBinding& row) { return row.key == name; });
}

// Element surfaces when nothing is said.
int typeOf(const inp_Keyword& keyword) {
  const inp_Item* type = keyword.Find("type");
  return type ? inpS_wordPlace(rowOf("type"), type->AsString()) : static_cast<int>(Type::Element);
}

bool isAnalytical(Type type) {
  return type == Type::Segments || type == Type::Cylinder || type == Type::Revolution;
}

// A cutting plane through nodes would have to follow them; it stays text.
bool isModelled(const inp_Keyword& keyword) {
  if (inpS_hasUnknownWord(keyword)) return false; // told with the text
  const int type = typeOf(keyword);
  if (type != static_cast<int>(Type::Cutting)) return type >= 0;
  const inp_Item* definition = keyword.Find("definition");
  return !definition || definition->AsString() != "NODES";
}

} // namespace

inpS_SurfaceVisitor::inpS_SurfaceVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                         const inpS_Inventory& inventory, inpS_Ledger& ledger)
    : inpS_SetVisitor(nodes, elements, inventory), m_ledger(ledger) {}

inpS_SurfaceVisitor::~inpS_SurfaceVisitor() = default;

void inpS_SurfaceVisitor::VisitList(inp_KeywordListRef keywords) {
  if (!m_isConverted) {
    m_store = std::make_unique<inpS_SurfaceStore>(Inventory().GetDocument().GetMesh(), *this);
    m_combiner = std::make_unique<inpS_SurfaceCombiner>(Inventory().GetDocument(), *m_store, *this);
  }
  inpS_SetVisitor::VisitList(keywords);
  if (m_isConverted) return;
  m_combiner->Resolve([this](const inp_Keyword& keyword) { Enter(keyword); });
  m_combiner.reset();
  m_store.reset();
  ReportUnreferredParameters(keywords, inpS_ownKeywords(inpS_Subject::Surfaces));
  LeaveOut("surface", m_withoutMesh);
  if (m_withoutMesh > 0)
    Warning(
        m_firstWithoutMesh,
        inp_Utils::Format("The mesh could not be converted; surfaces that stand on it (%lld) are "
                          "left out.",
                          m_withoutMesh));
  m_isConverted = true;
}

void inpS_SurfaceVisitor::VisitSurface(const inp_Keyword& keyword) {
  if (m_isConverted || keyword.IsInstanceCopy()) return;
  if (keyword.Scope().kind == inp_Scope::Kind::Step) return keyword.ReferAll(); // text, and told
  if (!isModelled(keyword)) {
    keyword.ReferAll();
    m_ledger.KeepAsText(keyword);
    m_combiner->AddKeptAsText(Owner(), keyword.StringOf("name", {}));
    return;
  }
  const inp_Item* name = keyword.Find("name");
  if (!name || name->AsString().empty())
    return Refuse(keyword, inpS_messageText(inpS_app_RequiredParameter, {"name"}) +
                               " The surface is left out.");
  if (Owner().IsNull()) return Settle(keyword); // its part or instance was refused
  const bool internal = inpS_readFlag(keyword, "internal", *this, inpS_OddFlag::Kept);
  Operation operation = Operation::Defined;
  if (!ReadOperation(keyword, operation) || !IsFree(keyword, name->AsString(), internal)) {
    LeaveOut("surface");
    return Settle(keyword);
  }
  const Type type = static_cast<Type>(typeOf(keyword));
  cow_List<double> points, segments;
  bool isWhole = true;
  if (isAnalytical(type) && operation == Operation::Defined) {
    if (IsSecondAnalytical(keyword) || !ReadAnalytical(keyword, points, segments, isWhole)) {
      LeaveOut("surface");
      return Settle(keyword);
    }
  } else if (LacksMesh()) {
    if (m_withoutMesh++ == 0) m_firstWithoutMesh = keyword;
    return Settle(keyword);
  }
  KvoSimTransaction transaction(Inventory().GetDocument().ContextID());
  KvoObjSurface surface(Owner(), name->AsString(), internal);
  m_ledger.Take(keyword, surface.Position());
  inpS_readParameters(keyword, inpS_surfaceParameters(), surface.Position().DataRecord(), *this);
  TellKept(keyword, type, operation);
  if (!points.empty()) surface.SetPoints(points);
  if (!segments.empty()) surface.SetSegments(segments);
  if (operation != Operation::Defined)
    m_combiner->Add(keyword, surface);
  else if (!isAnalytical(type))
    isWhole = ReadData(keyword, surface);
  if (!isWhole)
    inpS_keepPart(surface.Position(), {inpS_wholeLines, {}, inpS_dataLines(keyword, *this)});
  inpS_keepOthers(keyword, surface.Position(), *this);
  transaction.Commit();
}

// What is written back as it was given, but leaves the faces found here as they are.
void inpS_SurfaceVisitor::TellKept(const inp_Keyword& keyword, Type type, Operation operation) {
  if (type == Type::Cutting && operation == Operation::Defined)
    Warning(keyword, "The plane and the elements of a cutting surface are kept; the faces where it "
                     "cuts them are not determined.");
  if (isAnalytical(type)) return; // has no faces
  for (const char* name : {"radius", "offset", "spos", "sneg"})
    if (keyword.HasParameter(name) &&
        inpS_KeywordParameterReader::GetParameterBoolValue(keyword, name, true))
      AddWarning(inp_Utils::MessageAtParameter(
          keyword, name,
          "Parameter \"" + cow_String(name) +
              "\" is kept; it changes nothing of the faces and areas found here."));
}

bool inpS_SurfaceVisitor::ReadOperation(const inp_Keyword& keyword, Operation& operation) {
  using Reader = inpS_KeywordParameterReader;
  const cow_String way =
      Reader::CheckMutuallyExclusiveParameters(keyword, "combine", "crop", false);
  if (way.empty()) return true;
  if (way.find(',') != cow_String::npos) {
    AddError(inp_Utils::MessageAtParameter(keyword, "crop",
                                           inpS_messageText(inpS_app_ExclusiveParameters, {way}) +
                                               " The surface is left out."));
    return false;
  }
  const inpS_ParameterBinding& row = rowOf(way);
  const int place = inpS_wordPlace(row, keyword.Find(way)->AsString());
  if (place < 0) {
    AddError(inp_Utils::MessageAtParameter(keyword, way,
                                           row.name + " is one of " + inpS_wordList(row) +
                                               "; the surface is left out."));
    return false;
  }
  operation = static_cast<Operation>(place);
  return true;
}

bool inpS_SurfaceVisitor::IsFree(const inp_Keyword& keyword, const cow_String& name,
                                 bool internal) {
  const eds_Member member = internal ? eds_Member::InternalSurfaces : eds_Member::Surfaces;
  if (Owner().FollowStringKey(member, name).IsNull()) return true;
  AddError(inp_Utils::MessageAtParameter(
      keyword, "name",
      "Surface \"" + name + "\" is defined already; this second one is left out."));
  return false;
}

bool inpS_SurfaceVisitor::IsSecondAnalytical(const inp_Keyword& keyword) {
  if (!IsPlaced()) return false;
  const bool inPart = Owner().IsA(eds_RecordKind::Part);
  cow_List<KvoSimPosition> known = KvoObjSurface::OfOwner(Owner());
  if (!inPart) {
    const KvoSimPosition part = Owner().DataRecord().GetReference(eds_Instance_Part);
    const auto ofPart = part.IsNull() ? cow_List<KvoSimPosition>() : KvoObjSurface::OfOwner(part);
    known.insert(known.end(), ofPart.begin(), ofPart.end());
  }
  const auto first = std::find_if(known.begin(), known.end(), [](const KvoSimPosition& surface) {
    return KvoObjSurface(surface).IsAnalytical();
  });
  if (first == known.end()) return false;
  const cow_String name = KvoObjSurface(*first).Name();
  Error(keyword, inPart ? inpS_messageText(inpS_model_SecondRigidSurface, {CurrentPart(), name})
                        : inpS_messageText(inpS_model_OneRigidSurfacePerPart));
  return true;
}

// A mesh with faults is not stored, neither this owner's nor those of the instances that its lines
// name: all labels lead nowhere.
bool inpS_SurfaceVisitor::LacksMesh() {
  if (!m_lacksMesh)
    m_lacksMesh = Inventory().GetDocument().GetMesh().IsNull() || LacksAny(Kind::Nodes) ||
                  LacksAny(Kind::Elements);
  return *m_lacksMesh;
}

bool inpS_SurfaceVisitor::LacksAny(Kind kind) {
  const KvoObjMesh mesh = Inventory().GetDocument().GetMesh();
  const KvoObjLabeler& labeler = LabelerOf(kind);
  const bool nodes = kind == Kind::Nodes;
  const long long flat =
      nodes ? mesh.GetNodeCollection().Space() : mesh.GetElementCollection().Space();
  int occurrence = 0;
  for (const KvoSimPosition& owner : labeler.Occurrences()) {
    const bool isPart = owner.IsA(eds_RecordKind::Part);
    const long long labels = labeler.Size(occurrence);
    const long long first = isPart ? 0 : labeler.FlatFirst(occurrence);
    const long long stored =
        isPart ? owner.DataRecord().GetInt64(nodes ? eds_Part_NodeCount : eds_Part_ElementCount)
               : flat;
    if (labels > 0 && (first < 0 || first + labels > stored)) return true;
    ++occurrence;
  }
  return false;
}

// Whether the model has all that the lines say.
bool inpS_SurfaceVisitor::ReadData(const inp_Keyword& keyword, KvoObjSurface& surface) {
  inpS_SurfaceLines lines(keyword, *this);
  bool isWhole = true;
  switch (surface.Type()) {
  case Type::Element:
    lines.ReadFaces();
    m_store->SaveFaces(keyword, surface, lines);
    break;
  case Type::Node:
    lines.ReadNodes();
    m_store->SaveNodes(surface, lines);
    break;
  case Type::Cutting: {
    inpS_SurfaceNumbers numbers(keyword, *this,
                                " The surface is left without its plane and elements.");
    cow_List<double> plane;
    long long row = 0;
    if (!numbers.ReadPoints(inpS_pointLinesOf(Type::Cutting, Operation::Defined), 0, row, plane) ||
        !numbers.CheckPoints(Type::Cutting, plane)) {
      LeaveOut("surface");
      return true;
    }
    surface.SetPoints(plane);
    lines.ReadElements(row);
    m_store->SaveCut(surface, lines);
    isWhole = numbers.IsWhole();
    break;
  }
  default:
    return true;
  }
  isWhole = isWhole && lines.IsWhole();
  if (const cow_String asText = lines.TakeAsText(); !asText.empty() && isWhole)
    inpS_keepPart(surface.Position(), {inpS_moreLines, {}, asText});
  if (surface.Type() == Type::Cutting) return isWhole;
  if (inpS_isBlank(keyword.Data()))
    Warning(keyword, "Surface \"" + surface.Name() + "\" has no data lines; it is empty.");
  return isWhole;
}

bool inpS_SurfaceVisitor::ReadAnalytical(const inp_Keyword& keyword, cow_List<double>& points,
                                         cow_List<double>& segments, bool& isWhole) {
  const Type type = static_cast<Type>(typeOf(keyword));
  const inpS_PointLines lines = inpS_pointLinesOf(type, Operation::Defined);
  inpS_SurfaceNumbers numbers(keyword, *this, " The surface is left out.");
  long long row = 0;
  // Points may be left out where an instance places the surface: it stands in the part's own axes.
  const bool hasPoints = lines.lines > 0 && !numbers.BeginsWithSegments();
  if (!hasPoints && lines.lines > 0 && !IsPlaced()) {
    Error(keyword, "The points of the surface's axes are missing in front of START; only within a "
                   "part or an instance, which are placed, may they be left out. The surface is "
                   "left out.");
    return false;
  }
  if (hasPoints &&
      !(numbers.ReadPoints(lines, 0, row, points) && numbers.CheckPoints(type, points)))
    return false;
  const bool good = numbers.ReadSegments(row, type == Type::Revolution, segments);
  isWhole = numbers.IsWhole();
  return good;
}

void inpS_SurfaceVisitor::Refuse(const inp_Keyword& keyword, cow_String text) {
  Error(keyword, std::move(text));
  m_ledger.LeaveOut(keyword);
  LeaveOut("surface");
}

void inpS_SurfaceVisitor::Settle(const inp_Keyword& keyword) {
  m_ledger.LeaveOut(keyword);
  keyword.ReferAll();
}

// Whether what is open is, or is made, an instance.
bool inpS_SurfaceVisitor::IsPlaced() const {
  return Owner().IsA(eds_RecordKind::Part) || Owner().IsA(eds_RecordKind::Instance);
}
