#include "inpS/history/inpS_ExcitationWriter.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include <algorithm>
#include <cstdlib>

namespace {

using Kind = inpS_ExcitationKind;
constexpr long long kFewRows = 64;
constexpr long long kMostSets = 10'000;

bool hasDegrees(const Kind& kind) {
  return kind.key == Kind::Key::Degrees || kind.key == Kind::Key::Degree;
}

// Vectors of nodes have the axes of their nodes; temperatures and potentials have none, and
// connectors have their own.
bool isTurned(const Kind& kind, uint64_t degrees) {
  return hasDegrees(kind) && kind.IsOfNodes() && (degrees & inpS_Degrees::kTurned) != 0;
}

// Of inertia relief: "C_1 C_ROT3", of no degree where it names none and means all.
cow_String directionsOf(const Kind& kind, const KvoSimDataRecord& given) {
  cow_String text;
  for (const auto& line : kind.info->lines)
    for (const eds_FormItem& item : line) {
      const int field = item.alternatives.front().field;
      const long long degree = given.IsMemberNull(field) ? 0 : given.GetInt64(field);
      if (degree < 1 || degree > 6) continue; // is told
      text += (text.empty() ? "C_" : " C_") + cow_String(degree > 3 ? "ROT" : "") +
              std::to_string(degree > 3 ? degree - 3 : degree);
    }
  return text;
}

} // namespace

inpS_ExcitationWriter::inpS_ExcitationWriter(const KvoObjDocument& document, inpS_InForce& inForce)
    : m_document(document), m_model(document.GetModel().Position()), m_inForce(inForce),
      m_pieces(inForce), m_number(NumberOfOthers()) {
  ReadTransforms();
}

// Names go on behind those of other programs.
long long inpS_ExcitationWriter::NumberOfOthers() const {
  constexpr std::string_view prefix = "Excitation_";
  long long next = 0;
  for (const KvoSimPosition& other : m_document.Context().GetRecords(eds_RecordKind::Excitation)) {
    ++next;
    const cow_String name = other.DataRecord().ReturnString(eds_Excitation_Name);
    if (!name.starts_with(prefix)) continue;
    next = std::max(next, std::atoll(name.c_str() + prefix.size()) + 1);
  }
  return next;
}

void inpS_ExcitationWriter::Write() {
  for (std::size_t n = 0; n < m_inForce.Sources().size(); ++n) WriteSource(n);
}

void inpS_ExcitationWriter::ReadTransforms() {
  static const int nset = eds_formField(eds_FormKind::Transform, "nset");
  static const int instance = eds_formField(eds_FormKind::Transform, "nset_instance");
  for (const KvoSimPosition& record : m_document.Context().GetRecords(eds_FormKind::Transform)) {
    const KvoSimPosition set = record.DataRecord().GetReference(nset);
    if (set.IsNull()) continue;
    const KvoSimPosition owner = set.DataRecord().GetReference(eds_NodeSet_Owner);
    const KvoSimCSet members = set.DataRecord().GetSet(eds_NodeSet_Membership);
    if (members.IsNull()) continue;
    const eds_MemberSet nodes = members.Set().AscendingSet();
    if (!owner.IsA(eds_RecordKind::Part)) {
      m_transforms.push_back({record, nodes});
      continue;
    }
    // One of a part is about each of its instances.
    const KvoSimPosition named = record.DataRecord().GetReference(instance);
    for (const KvoSimPosition& one : m_document.GetModel().Occurences()) {
      const KvoSimDataRecord moved = one.DataRecord();
      if (!(moved.GetReference(eds_Instance_Part) == owner)) continue;
      if (!named.IsNull() && !(named == one)) continue;
      m_transforms.push_back(
          {record, inpS_SetVisitor::Moved(nodes, moved.GetInt64(eds_Instance_FirstNode))});
    }
  }
}

// Of several transforms of a node the last one holds.
cow_List<inpS_ExcitationWriter::Part> inpS_ExcitationWriter::PartsOf(const inpS_ConditionRow& row,
                                                                     Current& current) const {
  if (m_transforms.empty() || !isTurned(*current.source.kind, row.degrees) ||
      row.target == inpS_ConditionRow::kAll || current.targets.IsSurface())
    return {Part{}};
  if (row.target >= 0) {
    Part part;
    for (std::size_t n = 0; n < m_transforms.size(); ++n)
      if (m_transforms[n].nodes.IsMember(row.target)) part.transform = static_cast<int>(n);
    return {part};
  }
  cow_List<Part> parts;
  eds_MemberSet left = current.targets.Members(row.target);
  const long long all = left.Size();
  for (std::size_t n = m_transforms.size(); n-- > 0 && !left.IsEmpty();) {
    eds_MemberSet rest = inpS_without(left, m_transforms[n].nodes);
    if (rest.Size() == left.Size()) continue;
    parts.push_back({static_cast<int>(n), inpS_without(left, rest)});
    left = std::move(rest);
  }
  if (!left.IsEmpty() || parts.empty()) parts.push_back({-1, left});
  if (parts.size() == 1 && parts.front().members->Size() == all) parts.front().members.reset();
  return parts;
}

void inpS_ExcitationWriter::WriteSource(std::size_t place) {
  const inpS_InForce::Source& source = m_inForce.Sources()[place];
  m_rows.Open(source.record, *source.kind);
  Current current{place,
                  source,
                  m_rows,
                  inpS_ConditionTargets(source.record, *source.kind),
                  source.rows <= kFewRows,
                  0,
                  {},
                  {},
                  {}};
  inpS_ConditionRow row;
  if (AreRowsAlike(current))
    WriteLooks(current);
  else
    for (long long n = 0; current.rows.Next(row); ++n)
      if (row.degrees != 0) WriteRow(current, n, row, m_pieces.Of(place, n, row, current.targets));
  for (auto& [key, group] : current.groups) {
    EndRun(current, group);
    group.excitation.DataRecord().SetInt(eds_Excitation_Rows, group.rows);
  }
}

// Rows that share their relays, whatever their targets: to count them is enough.
bool inpS_ExcitationWriter::AreRowsAlike(const Current& current) {
  return !current.isSmall && !current.source.looks.empty() && m_pieces.AreWhole(current.place) &&
         (m_transforms.empty() || !hasDegrees(*current.source.kind) ||
          !current.source.kind->IsOfNodes());
}

void inpS_ExcitationWriter::WriteLooks(Current& current) {
  for (const auto& look : current.source.looks) { // in order of appearance
    if (look.count == 0) continue;
    for (const auto& [key, group] : GroupsOf(current, look.first, -1)) {
      group->rows += look.count;
      group->runRows += look.count;
      if (group->runFirst >= 0 && group->runFirst < look.firstRow) continue;
      group->runFirst = look.firstRow;
      group->first = look.first;
    }
  }
}

// A row is about as many excitations as its degrees have fields.
void inpS_ExcitationWriter::WriteRow(Current& current, long long n, const inpS_ConditionRow& row,
                                     const cow_List<inpS_InForce::Piece>* pieces) {
  const bool isSet = row.target < 0;
  if (isSet) ++current.sets;
  const bool isAlone = current.isSmall || (isSet && current.sets <= kMostSets);
  const cow_List<Part> parts = PartsOf(row, current);
  for (const Part& part : parts)
    for (const auto& [key, group] : GroupsOf(current, row, part.transform)) {
      const bool isSplit = parts.size() > 1 && isTurned(*current.source.kind, key->degrees);
      if (!isSplit && &part != &parts.front()) continue; // it is whole whatever turns the others
      const Part& whole = parts.size() > 1 && !isSplit ? Part{} : part;
      WriteGroup(current, n, row, pieces, whole, *key, *group, isAlone || whole.members);
    }
}

const inpS_ExcitationWriter::Groups&
inpS_ExcitationWriter::GroupsOf(Current& current, const inpS_ConditionRow& row, int transform) {
  const auto look = static_cast<std::size_t>(row.look);
  if (transform < 0 && look < current.plain.size() && current.plain[look])
    return *current.plain[look];
  const auto [known, isNew] = current.looks.try_emplace({transform, row.look});
  if (isNew) known->second = MakeGroups(current, row, transform);
  if (transform < 0) {
    if (look >= current.plain.size()) current.plain.resize(look + 1);
    current.plain[look] = &known->second;
  }
  return known->second;
}

inpS_ExcitationWriter::Groups
inpS_ExcitationWriter::MakeGroups(Current& current, const inpS_ConditionRow& row, int transform) {
  const Kind& kind = *current.source.kind;
  GroupKey key{0, row.degrees, row.restraint, row.label, transform};
  if (!hasDegrees(kind) || row.restraint >= 0 || row.label >= 0 || row.isOfAll)
    return {GroupOf(current, key, FieldOf(current, row))};
  const KvoSimDataRecord record = current.source.record.DataRecord();
  const std::string_view type = kind.type < 0 ? std::string_view() : record.GetString(kind.type);
  Groups groups;
  for (const inpS_Degrees::Group& group : inpS_Degrees::Groups(row.degrees, kind, type)) {
    key.field = group.firstDegree;
    key.degrees = group.degrees;
    key.transform = isTurned(kind, group.degrees) ? transform : -1;
    groups.push_back(GroupOf(current, key, group.field));
  }
  return groups;
}

cow_String inpS_ExcitationWriter::FieldOf(const Current& current, const inpS_ConditionRow& row) {
  const Kind& kind = *current.source.kind;
  if (row.restraint >= 0 || row.isOfAll) return {};
  cow_String field(kind.field);
  if (kind.form == eds_FormKind::MotionRotation &&
      current.source.record.DataRecord().GetString(kind.type) == "VELOCITY")
    field.front() = 'V';
  for (const Kind::Amplitude& one : kind.amplitudes) // of a wave: what its amplitude is of
    if (const std::size_t end = one.parameter.find(" AMPLITUDE");
        end != one.parameter.npos && one.isOfMagnitude &&
        !current.source.record.DataRecord().GetReference(one.field).IsNull())
      return cow_String(one.parameter.substr(0, end));
  if (kind.key == Kind::Key::Variable) field += std::to_string(current.source.variable);
  const bool isWord = field.empty() || kind.form == eds_FormKind::Boundary; // of a flow's velocity
  return isWord && row.label >= 0 ? current.rows.Label(row.label) : field;
}

std::pair<const inpS_ExcitationWriter::GroupKey*, inpS_ExcitationWriter::Group*>
inpS_ExcitationWriter::GroupOf(Current& current, const GroupKey& key, cow_String field) {
  const auto [known, isNew] = current.groups.try_emplace(key);
  Group& group = known->second;
  if (!isNew) return {&known->first, &group};
  const inpS_InForce::Source& source = current.source;
  const Kind& kind = *source.kind;
  const KvoSimDataRecord given = source.record.DataRecord();
  group.excitation = m_model.CreateDataRecord(eds_RecordKind::Excitation);
  KvoSimDataRecord record = group.excitation.DataRecord();
  record.SetString(eds_Excitation_Name, "Excitation_" + std::to_string(m_number++));
  record.SetSymb(eds_Excitation_Kind, kind.number);
  record.SetReference(eds_Excitation_Given, source.record);
  cow_String components =
      key.field > 0 ? inpS_Degrees::Components(key.degrees, key.field) : cow_String();
  const long long degree = kind.degree < 0 ? 0 : given.GetInt64(kind.degree);
  if (const uint64_t one = inpS_Degrees::Of(degree, degree); one != 0) { // a parameter tells it
    const inpS_Degrees::Group group =
        inpS_Degrees::Groups(one, kind, given.GetString(kind.type)).front();
    field = group.field;
    components = inpS_Degrees::Components(one, group.firstDegree);
  }
  if (kind.form == eds_FormKind::InertiaRelief) components = directionsOf(kind, given);
  if (!field.empty()) record.SetString(eds_Excitation_Field, field);
  if (!components.empty()) record.SetString(eds_Excitation_Components, components);
  if (key.restraint >= 0) record.SetSymb(eds_Excitation_Restraint, key.restraint);
  if (key.label >= 0) record.SetString(eds_Excitation_Label, current.rows.Label(key.label));
  record.SetInt(eds_Excitation_Step, source.firstStep);
  if (!source.loadCase.IsNull()) record.SetReference(eds_Excitation_LoadCase, source.loadCase);
  if (kind.loadCase >= 0 && !given.IsMemberNull(kind.loadCase))
    record.SetInt(eds_Excitation_LoadCaseNumber, given.GetInt(kind.loadCase));
  if (kind.cyclicMode >= 0 && !given.IsMemberNull(kind.cyclicMode))
    record.SetInt(eds_Excitation_CyclicMode, given.GetInt(kind.cyclicMode));
  if (const KvoSimPosition amplitude = kind.AmplitudeOf(given); !amplitude.IsNull())
    record.SetReference(eds_Excitation_Amplitude, amplitude);
  double magnitude = 0;
  if (key.restraint < 0 && !kind.IsGivenElsewhere(given, current.rows.Label(key.label)) &&
      current.rows.HasOneValue(magnitude) && !inp_isBlankReal(magnitude))
    record.SetDouble(eds_Excitation_Magnitude, magnitude);
  if (const KvoSimPosition values = current.rows.Values(); !values.IsNull())
    record.SetReference(eds_Excitation_Magnitudes, values);
  if (key.transform >= 0)
    record.SetReference(eds_Excitation_Transform,
                        m_transforms[static_cast<std::size_t>(key.transform)].record);
  TellOrigin(record, kind, given);
  return {&known->first, &group};
}

// What parameters say of the values, and whence they come where no line has them.
void inpS_ExcitationWriter::TellOrigin(KvoSimDataRecord record, const Kind& kind,
                                       const KvoSimDataRecord& given) {
  const auto tellFlag = [&](int from, int to) {
    if (from >= 0 && given.GetBool(from)) record.SetBool(to, true);
  };
  const auto has = [&](int field) { return field >= 0 && !given.IsMemberNull(field); };
  tellFlag(kind.imaginary, eds_Excitation_Imaginary);
  tellFlag(kind.fixed, eds_Excitation_Fixed);
  tellFlag(kind.user, eds_Excitation_User);
  if (has(kind.baseName)) record.SetString(eds_Excitation_Base, given.ReturnString(kind.baseName));
  if (has(kind.scale)) record.SetDouble(eds_Excitation_Scale, given.GetDouble(kind.scale));
  if (has(kind.property))
    record.SetReference(eds_Excitation_Property, given.GetReference(kind.property));
  if (kind.submodel < 0 || !given.GetBool(kind.submodel)) return;
  record.SetBool(eds_Excitation_Submodel, true);
  if (has(kind.globalStep)) record.SetInt(eds_Excitation_GlobalStep, given.GetInt(kind.globalStep));
  if (has(kind.globalIncrement))
    record.SetInt(eds_Excitation_GlobalIncrement, given.GetInt(kind.globalIncrement));
  tellFlag(kind.timeScale, eds_Excitation_TimeScale);
}

void inpS_ExcitationWriter::WriteGroup(Current& current, long long n, const inpS_ConditionRow& row,
                                       const cow_List<inpS_InForce::Piece>* pieces,
                                       const Part& part, const GroupKey& key, Group& group,
                                       bool isAlone) {
  ++group.rows;
  if (!pieces && !isAlone) {
    if (group.runRows++ > 0) return;
    group.runFirst = n;
    group.first = row;
    return;
  }
  EndRun(current, group);
  const inpS_InForce::Piece whole{current.source.firstStep, current.source.lastStep, row.degrees,
                                  nullptr};
  if (!pieces) return WritePiece(current, n, row, whole, part, key, group);
  for (const inpS_InForce::Piece& piece : *pieces)
    WritePiece(current, n, row, piece, part, key, group);
}

void inpS_ExcitationWriter::WritePiece(Current& current, long long n, const inpS_ConditionRow& row,
                                       const inpS_InForce::Piece& piece, const Part& part,
                                       const GroupKey& key, const Group& group) {
  const uint64_t degrees = piece.degrees & key.degrees;
  if (degrees == 0) return;
  std::optional<eds_MemberSet> members = part.members;
  if (piece.members) members = members ? members->Intersection(*piece.members) : *piece.members;
  if (members && members->IsEmpty()) return;
  KvoSimDataRecord relay = AddRelay(group, piece.firstStep, piece.lastStep, n);
  TellRow(relay, current, row);
  if (degrees != key.degrees)
    relay.SetString(eds_Relay_Components,
                    inpS_Degrees::Components(degrees, std::max(1, key.field)));
  if (!members) return;
  const bool isNodes = current.source.kind->IsOfNodes();
  const KvoSimCollection all = m_document.GetMesh().CollectionOf(m_model, isNodes);
  relay.SetSet(eds_Relay_Members, KvoSimCSet(all, *members).NewID());
}

void inpS_ExcitationWriter::EndRun(Current& current, Group& group) {
  if (group.runRows == 0) return;
  const inpS_InForce::Source& source = current.source;
  KvoSimDataRecord relay = AddRelay(group, source.firstStep, source.lastStep, group.runFirst);
  if (group.runRows > 1)
    relay.SetInt(eds_Relay_Rows, group.runRows);
  else
    TellRow(relay, current, group.first);
  group.runRows = 0;
}

KvoSimDataRecord inpS_ExcitationWriter::AddRelay(const Group& group, int firstStep, int lastStep,
                                                 long long row) {
  KvoSimDataRecord relay = m_model.CreateDataRecord(eds_RecordKind::Relay).DataRecord();
  relay.SetReference(eds_Relay_Excitation, group.excitation);
  relay.SetInt(eds_Relay_FirstStep, firstStep);
  if (lastStep != inpS_InForce::kOpen) relay.SetInt(eds_Relay_LastStep, lastStep);
  relay.SetInt(eds_Relay_FirstRow, row);
  return relay;
}

void inpS_ExcitationWriter::TellRow(KvoSimDataRecord relay, Current& current,
                                    const inpS_ConditionRow& row) {
  const Kind& kind = *current.source.kind;
  const KvoSimDataRecord given = current.source.record.DataRecord();
  if (kind.value >= 0 && row.restraint < 0 && !inp_isBlankReal(row.value) &&
      !kind.IsGivenElsewhere(given, current.rows.Label(row.label)) &&
      given.GetInt64(kind.info->rowsField) > 0)
    relay.SetDouble(eds_Relay_Magnitude, row.value);
  if (row.target == inpS_ConditionRow::kAll) return;
  if (row.target < 0) {
    const inpS_ConditionTargets::Region& region = current.targets.At(row.target);
    if (!region.set.IsNull()) relay.SetReference(eds_Relay_Region, region.set);
    if (!region.instance.IsNull()) relay.SetReference(eds_Relay_Instance, region.instance);
    return;
  }
  const bool isNodes = kind.IsOfNodes();
  std::optional<KvoObjLabeler>& labeler = isNodes ? m_nodes : m_elements;
  cow_List<KvoSimPosition>& owners = isNodes ? m_nodeOwners : m_elementOwners;
  if (!labeler) {
    labeler.emplace(m_document, isNodes ? 0 : 1);
    labeler->Read();
    owners = labeler->Occurrences();
  }
  int64_t ordinal = 0;
  const int occurrence = labeler->OccurrenceOfFlat(row.target, ordinal);
  if (occurrence < 0) return;
  relay.SetInt(eds_Relay_Label, labeler->GetInstanceLabel(occurrence, ordinal));
  const KvoSimPosition& owner = owners[static_cast<std::size_t>(occurrence)];
  if (owner.IsA(eds_RecordKind::Instance)) relay.SetReference(eds_Relay_Instance, owner);
}
