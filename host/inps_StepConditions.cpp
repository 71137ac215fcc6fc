#include "host/inps_StepConditions.h"

#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_Schema.h"
#include "host/inps_ExportGrid.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// By their numbers.
cow_List<cow_String> keywordNames() {
  cow_List<cow_String> names;
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols(eds_Vocabulary::ExcitationKind)) {
    const auto number = static_cast<std::size_t>(symbol.number);
    names.resize(std::max(names.size(), number + 1));
    names[number] = symbol.name;
  }
  return names;
}

bool hasFlag(const inpS_ExcitationKind& kind, const KvoSimPosition& record, std::string_view name) {
  const auto item = std::ranges::find(kind.info->parameters, name, &eds_FormItem::name);
  return item != kind.info->parameters.end() &&
         record.DataRecord().GetBool(item->alternatives.front().field);
}

// P1 to P6 push against a face. P pushes a shell, a membrane or a line along its normal: against
// its negative side.
std::optional<eds_SurfaceFace> faceOf(std::string_view label) {
  if (label == "P") return eds_SurfaceFace::SNeg;
  if (label.size() != 2 || label[0] != 'P' || label[1] < '1' || label[1] > '6') return {};
  return static_cast<eds_SurfaceFace>(static_cast<int>(eds_SurfaceFace::S1) + label[1] - '1');
}

} // namespace

inps_StepConditions::inps_StepConditions(const inps_FlatMesh& mesh, const KvoObjDocument& document,
                                         int step)
    : m_mesh(mesh), m_document(document), m_keywords(keywordNames()), m_kept(document) {
  PartOf({}, {});
  inpS_ActingConditions(document, step).ForAll([this](const Acting& acting) {
    if (!(acting.record == m_given.record)) Read(acting);
    Add(acting);
  });
  for (const auto& part : m_parts) part->nodes.Finish();
  // Of other programs: what they act on is not read from the given keywords.
  for (const KvoSimPosition& position : document.Context().GetRecords(eds_RecordKind::Relay)) {
    const KvoSimDataRecord relay = position.DataRecord();
    const KvoSimPosition excitation = relay.GetReference(eds_Relay_Excitation);
    if (excitation.IsNull() || !excitation.DataRecord().GetReference(eds_Excitation_Given).IsNull())
      continue;
    const bool isOver =
        !relay.IsMemberNull(eds_Relay_LastStep) && relay.GetInt64(eds_Relay_LastStep) < step;
    if (relay.GetInt64(eds_Relay_FirstStep) <= step && !isOver)
      ++m_leftOut["excitation " + excitation.Name() + ", which no keyword gives,"];
  }
}

bool inps_StepConditions::IsEmpty() const {
  return m_leftOut.empty() && std::ranges::all_of(m_parts, [](const auto& part) {
           return part->nodes.IsEmpty() && part->pressures.empty();
         });
}

// In the order in which something is found in them.
inps_StepConditions::Part* inps_StepConditions::PartOf(const KvoSimPosition& loadCase,
                                                       std::optional<int> number) {
  const auto [known, isNew] = m_ofLoadCases.try_emplace(
      std::pair(loadCase.IsNull() ? 0 : loadCase.Object().Packed(), number));
  if (!isNew) return known->second;
  cow_String name = loadCase.IsNull() ? cow_String() : loadCase.Name();
  if (!loadCase.IsNull() && name.empty()) name = "unnamed " + std::to_string(m_parts.size());
  if (number) name += (name.empty() ? "" : " ") + std::to_string(*number);
  m_parts.push_back(std::make_unique<Part>(Part{name, inps_NodalConditions(m_mesh, m_document)}));
  return known->second = m_parts.back().get();
}

void inps_StepConditions::Read(const Acting& acting) {
  const inpS_ExcitationKind& kind = acting.kind;
  const KvoSimDataRecord record = acting.record.DataRecord();
  const bool hasNumber = kind.loadCase >= 0 && !record.IsMemberNull(kind.loadCase);
  m_part = PartOf(acting.loadCase,
                  hasNumber ? std::optional(record.GetInt(kind.loadCase)) : std::nullopt);
  m_given = {
      acting.record, m_keywords.at(static_cast<std::size_t>(kind.number)), {}, 1, false, false, {}};
  if (kind.type >= 0) m_given.type = record.GetString(kind.type);
  if (kind.variable >= 0) m_given.variable = std::max<int64_t>(1, record.GetInt64(kind.variable));
  m_given.isFixed = hasFlag(kind, acting.record, "fixed");
  m_given.isZero = acting.isHeld && m_given.keyword == "BOUNDARY";
  if (m_given.isZero) return; // as a perturbation, whoever gave it
  static constexpr std::pair<std::string_view, const char*> flags[] = {
      {"imaginary", ", IMAGINARY"}, {"user", ", USER"}, {"submodel", ", SUBMODEL"}};
  for (const auto& [flag, text] : flags)
    if (m_given.unknown.empty() && hasFlag(kind, acting.record, flag)) m_given.unknown = text;
  if (m_given.unknown.empty() && kind.cyclicMode >= 0 && !record.IsMemberNull(kind.cyclicMode))
    m_given.unknown = ", CYCLIC MODE"; // of another sector than this one, too
  if (m_given.unknown.empty() && kind.file >= 0 && !record.GetString(kind.file).empty())
    m_given.unknown = ", FILE";
}

void inps_StepConditions::Add(const Acting& acting) {
  const bool isLoad = !acting.label.empty();
  if (!m_given.unknown.empty()) {
    ++m_leftOut["*" + m_given.keyword + m_given.unknown];
    // Values of a routine are not known, but which degrees have them.
    if (m_given.unknown == ", USER" && m_given.keyword == "BOUNDARY") AddToNodes(acting);
  } else if (!(isLoad ? AddPressure(acting) : AddToNodes(acting))) {
    ++m_leftOut["*" + m_given.keyword + (isLoad ? ", " + acting.label : cow_String())];
  }
}

bool inps_StepConditions::AddToNodes(const Acting& acting) {
  if (acting.target < 0 && !acting.members) return false;
  const eds_MemberSet one =
      acting.target >= 0 ? eds_MemberSet::Strided(acting.target, 1) : eds_MemberSet();
  const eds_MemberSet& nodes = acting.target >= 0 ? one : *acting.members;
  const inps_NodalConditions::Kind kind{m_given.keyword, m_given.type, m_given.variable};
  if (!m_given.isZero && m_given.isFixed) {
    AddKept(acting, nodes);
    return true;
  }
  if (!m_given.unknown.empty()) { // which is told
    if (!m_part->nodes.Add(kind, acting.degrees, nodes, kNone))
      m_part->nodes.Hold(acting.degrees, nodes, m_given.type);
    return true;
  }
  if (acting.restraint < 0) {
    inps_NodalConditions::Kind further = kind;
    for (const double value : acting.more) {
      ++further.place;
      if (!std::isnan(value)) m_part->nodes.Add(further, acting.degrees, nodes, value);
    }
    return m_part->nodes.Add(kind, acting.degrees, nodes, m_given.isZero ? 0.0 : acting.magnitude);
  }
  m_part->nodes.Hold(acting.degrees, nodes);
  return true;
}

// Displacements and so on, whatever its TYPE: they stay.
void inps_StepConditions::AddKept(const Acting& acting, const eds_MemberSet& nodes) {
  bool isKnown = true;
  for (int64_t n = 0; n < nodes.Size(); ++n)
    for (uint64_t left = acting.degrees; left != 0; left &= left - 1) {
      const int degree = std::countr_zero(left) + 1;
      const eds_MemberSet node = eds_MemberSet::Strided(nodes[n], 1);
      const double value = m_kept.At(acting.fromStep, nodes[n], degree);
      isKnown &= !std::isnan(value);
      if (!m_part->nodes.Add({m_given.keyword, {}, 1}, inpS_Degrees::Bit(degree), node, value))
        m_part->nodes.Hold(inpS_Degrees::Bit(degree), node);
    }
  if (!isKnown) ++m_leftOut["what *BOUNDARY, FIXED keeps of steps in which it is not prescribed"];
}

bool inps_StepConditions::AddPressure(const Acting& acting) {
  if (m_given.keyword == "DSLOAD") {
    if (acting.label != "P" || acting.region.IsNull()) return false;
    const KvoObjSurface surface(acting.region);
    if (surface.Type() != eds_SurfaceType::Element) return false;
    const bool isOfPart = !acting.instance.IsNull() && surface.Owner().IsA(eds_RecordKind::Part);
    const int64_t shift =
        isOfPart ? acting.instance.DataRecord().GetInt64(eds_Instance_FirstElement) : 0;
    const cow_String scope = acting.instance.IsNull() ? cow_String() : acting.instance.Name() + ".";
    inps_FacePressures& pressures = m_part->pressures[scope + surface.Name()];
    for (const KvoSurfaceFaces& faces : surface.Faces())
      pressures.Add(faces.face, inps_shifted(faces.elements, shift), acting.magnitude);
    return true;
  }
  const auto face = m_given.keyword == "DLOAD" ? faceOf(acting.label) : std::nullopt;
  if (!face || (acting.target < 0 && !acting.members)) return false;
  // A name that no surface has.
  inps_FacePressures& pressures = m_part->pressures["(element faces)"];
  if (acting.target >= 0)
    pressures.Add(*face, acting.target, acting.magnitude);
  else
    pressures.Add(*face, *acting.members, acting.magnitude);
  return true;
}
