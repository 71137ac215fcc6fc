#include "inpS/framework/inpS_Inventory.h"
#include "base/utl_Assert.h"
#include "base/utl_Number.h"
#include "database/schema/eds_Form.h"
#include "inpS/framework/inpS_ComponentSets.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "parser/inp_ElementInfo.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// By keyword: whether its NAME is one that others refer to.
cow_List<bool> findNaming() {
  cow_List<bool> naming;
  for (const inp_KeywordRow& row : inp_KeywordTable::Instance().Rows()) {
    const auto index = static_cast<std::size_t>(row.kind);
    if (index >= naming.size()) naming.resize(index + 1);
    naming[index] = std::ranges::find(eds_referables(), row.suffix, &eds_Referable::keyword) !=
                        eds_referables().end() ||
                    row.kind == inp_KwEnrichment;
  }
  return naming;
}

// Whether a surface is no record whatever its lines: of types that are not converted, and in steps.
bool staysText(const inp_Keyword& surface) {
  constexpr std::string_view types[] = {"EULERIANMATERIAL", "BSPLINE", "BEZIER", "XFEM", "USER"};
  if (surface.Scope().kind == inp_Scope::Kind::Step || inpS_hasUnknownWord(surface)) return true;
  const cow_String type = surface.StringOf("type", "");
  if (type == "CUTTINGSURFACE") return surface.StringOf("definition", "") == "NODES";
  return std::ranges::find(types, type) != std::end(types);
}

int clampToInt(long long value) {
  return static_cast<int>(std::min<long long>(value, std::numeric_limits<int>::max()));
}

bool hasField(const inp_DataArray& data, long long row, int col) {
  return row < data.Rows() && col < data.Cols(row) && data.HasValue(row, col);
}

// A value that is not a number counts as not zero, in every rule on dimensions.
bool isNonZero(const inp_DataArray& data, long long row, int col) {
  return hasField(data, row, col) && !(data.IsNumber(row, col) && data.AsDouble(row, col) == 0.0);
}

bool isNonZeroField(std::string_view field) {
  const utl_Field parsed = utl_classifyField(field.data(), field.data() + field.size());
  if (parsed.kind == utl_FieldKind::None) return false;
  if (parsed.kind == utl_FieldKind::Integer) return parsed.integer != 0;
  return !(parsed.kind == utl_FieldKind::Double && parsed.real == 0.0);
}

// The fourth field of a line, found by its commas alone: a planar mesh of millions of nodes is
// looked through to its end, so no field before the fourth is read.
std::string_view fourthField(const char* line, const char* end) {
  for (int commas = 0; commas < 3; ++commas) {
    line = static_cast<const char*>(std::memchr(line, ',', static_cast<std::size_t>(end - line)));
    if (!line) return {};
    ++line;
  }
  const void* comma = std::memchr(line, ',', static_cast<std::size_t>(end - line));
  const char* stop = comma ? static_cast<const char*>(comma) : end;
  return {line, static_cast<std::size_t>(stop - line)};
}

bool hasNonZeroZ(const inp_DataSegment& segment) {
  constexpr std::ptrdiff_t kReleaseStep = 8 << 20;
  const char* released = segment.begin;
  for (const char* line = segment.begin; line < segment.end;) {
    const void* found = std::memchr(line, '\n', static_cast<std::size_t>(segment.end - line));
    const char* end = found ? static_cast<const char*>(found) : segment.end;
    const bool comment = end - line > 1 && line[0] == '*' && line[1] == '*';
    if (!comment && isNonZeroField(fourthField(line, end))) return true;
    line = end + 1;
    if (line - released > kReleaseStep) {
      segment.text->Release(released, std::min(line, segment.end));
      released = line;
    }
  }
  return false;
}

bool hasNonZeroZ(const inp_DataArray& data) {
  const auto& segments = data.Segments();
  return std::any_of(segments.begin(), segments.end(),
                     [](const inp_DataSegment& segment) { return hasNonZeroZ(segment); });
}

// That it stands in; empty: in none.
cow_String partOf(const inp_Keyword& keyword) {
  return keyword.Scope().kind == inp_Scope::Kind::Part ? keyword.Scope().name : cow_String();
}

// Whether a name belongs to what it is defined in.
bool isNear(inp_KeywordEnm kind) {
  const cow_String suffix(inp_KeywordTable::Instance().Row(kind)->suffix);
  return std::ranges::any_of(eds_referables(), [&](const eds_Referable& one) {
    return one.keyword == suffix && one.place == eds_Referable::Place::Near;
  });
}

} // namespace

inpS_Inventory::inpS_Inventory() = default;
inpS_Inventory::~inpS_Inventory() = default;
inpS_Inventory::inpS_Inventory(const inpS_Inventory&) = default;
inpS_Inventory& inpS_Inventory::operator=(const inpS_Inventory&) = default;

void inpS_Inventory::SetDocument(const KvoObjDocument& document) {
  m_document = document;
  m_componentSets.reset(); // they belong to the document
}

int inpS_Inventory::NodeChunkSize() const {
  const long long n = m_nodeCount / 16;
  if (m_ncopySeen && n < 8192) return 8192;
  return clampToInt(std::max(n, 256LL));
}

int inpS_Inventory::ElementChunkSize() const {
  long long n = 0;
  for (const auto& [type, count] : m_elementCounts) n += count;
  n /= 16;
  if (m_elcopySeen && n < 1024) return 1024;
  return clampToInt(std::max(n, 128LL));
}

cow_Map<cow_String, int> inpS_Inventory::ElementChunkSizes() const {
  // Each type by the rule for all: a sixteenth of its elements within the same bounds.
  cow_Map<cow_String, int> sizes;
  for (const auto& [type, count] : m_elementCounts) {
    const long long n = count / 16;
    sizes[type] = m_elcopySeen && n < 1024 ? 1024 : clampToInt(std::max(n, 128LL));
  }
  return sizes;
}

inpS_ComponentSets& inpS_Inventory::Components() const {
  if (!m_componentSets) m_componentSets = std::make_shared<inpS_ComponentSets>(m_document);
  return *m_componentSets;
}

const KvoSimCSetID& inpS_Inventory::VectorComponentsCSet() const {
  return Components().Vector(m_dimensions);
}

const KvoSimCSetID& inpS_Inventory::VectorComponents3DCSet() const {
  return Components().Vector(3);
}

const KvoSimCSetID& inpS_Inventory::QuaternionComponentsCSet() const {
  return Components().Quaternion();
}

void inpS_Inventory::SetDimensions(int dimensions) {
  m_dimensions = std::max(m_dimensions, dimensions);
  if (!m_partOpen) return;
  int& ofPart = m_parts[m_openPart].dimensions;
  ofPart = std::max(ofPart, dimensions);
}

void inpS_Inventory::CountNodes(long long count) {
  m_nodeCount += count;
  if (m_partOpen) m_parts[m_openPart].nodes += clampToInt(count);
}

void inpS_Inventory::VisitAssembly(const inp_Keyword& keyword) {
  m_featureEnhanced = true;
  if (const inp_Item* name = keyword.Find("name")) m_assemblyName = name->AsString();
}

void inpS_Inventory::VisitRestart(const inp_Keyword& keyword) {
  if (!keyword.HasParameter("read")) return;
  const inp_Item* step = keyword.Find("step");
  m_restartStep = step && step->IsNumber() ? step->AsInt() : -1;
  m_restartEndStep = keyword.HasParameter("endstep");
  m_restartKind = inpS_RestartKind::None;
  m_restartNumber = -1;
  static constexpr std::pair<const char*, inpS_RestartKind> kKinds[] = {
      {"inc", inpS_RestartKind::Increment},
      {"interval", inpS_RestartKind::Interval},
      {"cycle", inpS_RestartKind::Cycle},
      {"iteration", inpS_RestartKind::Iteration}};
  for (const auto& [name, kind] : kKinds) {
    const inp_Item* value = keyword.Find(name);
    if (!value) continue;
    m_restartKind = kind;
    m_restartNumber = value->IsNumber() ? value->AsInt() : -1;
    return;
  }
}

void inpS_Inventory::VisitStep(const inp_Keyword&) {
  m_standard = true;
}

void inpS_Inventory::Visit(const inp_Keyword& keyword) {
  static const cow_List<bool> naming = findNaming();
  const auto index = static_cast<std::size_t>(keyword.Kind());
  if (index < naming.size() && naming[index] && !keyword.IsInstanceCopy())
    if (const inp_Item* name = keyword.Find("name"))
      m_names[{keyword.Kind(), name->AsString()}].insert(partOf(keyword));
  if (keyword.Kind() == inp_KwSurface && staysText(keyword))
    m_names[{inp_KwSurface, keyword.StringOf("name", "")}].insert(partOf(keyword));
  inp_Visitor::Visit(keyword);
}

bool inpS_Inventory::Names(inp_KeywordEnm kind, const cow_String& name) const {
  return m_names.contains({kind, name});
}

bool inpS_Inventory::NamesFor(const inp_Keyword& from, inp_KeywordEnm kind,
                              const cow_String& name) const {
  const auto known = m_names.find({kind, name});
  if (known == m_names.end()) return false;
  if (known->second.contains("")) return true;
  const inp_Scope::Kind scope = from.Scope().kind;
  if (scope == inp_Scope::Kind::Part) return known->second.contains(from.Scope().name);
  const bool isOutside = scope == inp_Scope::Kind::Assembly || scope == inp_Scope::Kind::Model;
  return !isOutside || !isNear(kind); // parts keep to themselves what is defined in them
}

// An annealing step is treated as explicit whatever its parameters: a deliberate simplification.
void inpS_Inventory::VisitAnneal(const inp_Keyword&) {
  m_standard = false;
  m_explicit = true;
}

void inpS_Inventory::VisitCfd(const inp_Keyword&) {
  m_cfd = true;
  m_standard = false;
}

void inpS_Inventory::VisitDynamic(const inp_Keyword& keyword) {
  const inp_Item* isExplicit = keyword.Find("explicit");
  if (!isExplicit || !inpS_flagValue(*isExplicit).value_or(true)) return;
  m_standard = false;
  m_explicit = true;
}

void inpS_Inventory::VisitEndStep(const inp_Keyword&) {
  if (m_explicit && m_needs3DInExplicit) m_dimensions = 3;
}

void inpS_Inventory::VisitNcopy(const inp_Keyword&) {
  m_ncopySeen = true;
}
void inpS_Inventory::VisitElcopy(const inp_Keyword&) {
  m_elcopySeen = true;
}

void inpS_Inventory::VisitHeatTransfer(const inp_Keyword& keyword) {
  const inp_Item* type = keyword.Find("type");
  if (type && type->AsString() == "THERMALFLOW") VisitCfd(keyword);
}

// A step keeps its own as text.
void inpS_Inventory::VisitHeading(const inp_Keyword& keyword) {
  if (keyword.IsInstanceCopy() || keyword.Scope().kind == inp_Scope::Kind::Step) return;
  m_headingSeen = true;
  m_heading.clear();
  if (keyword.Data().Rows() == 0) return;
  if (keyword.Data().Cols(0) != 1) utl_assertionFailed("keyword.data.Cols(0) == 1");
  m_heading = keyword.Data().Text();
}

void inpS_Inventory::VisitNode(const inp_Keyword& keyword) {
  m_hasNodes = true;
  if (m_partOpen) m_hasPartNodes = true;
  if (m_instancesSeen) return;
  CountNodes(keyword.Data().Rows());
  const bool threeDimensional =
      m_dimensions == 3 && (!m_partOpen || m_parts[m_openPart].dimensions == 3);
  if (!threeDimensional && hasNonZeroZ(keyword.Data())) SetDimensions(3);
}

void inpS_Inventory::VisitElement(const inp_Keyword& keyword) {
  const inp_Item* type = keyword.Find("type");
  if (!type) return;
  m_elementCounts[type->AsString()] += keyword.Data().Rows();
  const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(type->AsString());
  if (!info) return;
  if (info->Is(inp_ElemAxisymmetric)) m_axisymmetric = true;
  if (info->Is(inp_ElemThreeDExplicit)) m_needs3DInExplicit = true;
  if (info->Is(inp_ElemThreeD)) SetDimensions(3);
}

void inpS_Inventory::VisitAssemblyElement(const inp_Keyword& keyword) {
  VisitElement(keyword);
}

void inpS_Inventory::VisitSurface(const inp_Keyword& keyword) {
  const inp_Item* type = keyword.Find("type");
  if (type && (type->AsString() == "CYLINDER" || type->AsString() == "REVOLUTION"))
    SetDimensions(3);
}

void inpS_Inventory::VisitStatic(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  if (keyword.HasParameter("riks") && hasField(data, 0, 6) && data.AsInt(0, 6) == 3)
    SetDimensions(3);
}

void inpS_Inventory::VisitSystem(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  // A blank line says nothing here, as where the system is read.
  const bool secondLine = data.Rows() > 1 && !inpS_KeywordReader::IsBlankRow(data, 1);
  if (isNonZero(data, 0, 2) || isNonZero(data, 0, 5) || secondLine) SetDimensions(3);
}

void inpS_Inventory::VisitNgen(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row) {
    if (!hasField(data, row, 0) || !hasField(data, row, 1)) continue;
    const long long start = data.AsInt64(row, 0), end = data.AsInt64(row, 1);
    long long increment = hasField(data, row, 2) ? data.AsInt64(row, 2) : 1;
    if (increment == 0) increment = 1;
    constexpr long long most = 999'999'999; // no label is beyond; the mesh phase tells of it
    if (std::max(start, end) > most || std::min(start, end) < -most) continue;
    m_nodeCount += (end - start) / increment - 1;
  }
}

// Generated elements are not counted: the sizes drawn from the counts are estimates, and a line of
// generation says nothing of its element's type here.
void inpS_Inventory::VisitElgen(const inp_Keyword&) {}

void inpS_Inventory::VisitPart(const inp_Keyword& keyword) {
  m_featureEnhanced = true;
  m_partOpen = true;
  const inp_Item* name = keyword.Find("name");
  m_openPart = name ? name->AsString() : cow_String();
  m_parts.emplace(m_openPart, PartFacts{});
}

void inpS_Inventory::VisitEndPart(const inp_Keyword&) {
  m_partOpen = false;
}

void inpS_Inventory::VisitInstance(const inp_Keyword& keyword) {
  m_featureEnhanced = true;
  m_instancesSeen = true;
  m_partOpen = false;
  const inp_Item* part = keyword.Find("part");
  const auto known = part ? m_parts.find(part->AsString()) : m_parts.end();
  if (known == m_parts.end()) return;
  m_nodeCount += known->second.nodes;
  SetDimensions(known->second.dimensions);
}
