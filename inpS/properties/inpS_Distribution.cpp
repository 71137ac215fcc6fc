#include "inpS/properties/inpS_Distribution.h"
#include "database/KvoObjElementSet.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/eds_DamagedModel.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include <algorithm>
#include <cstring>

namespace {

// The rows of a record as they were given.
class GivenRows {
public:
  explicit GivenRows(const KvoSimPosition& position)
      : m_position(position), m_record(position.DataRecord()),
        m_form(*eds_formOf(position.Object().RecordKind())),
        m_rows(m_record.GetInt64(m_form.rowsField)),
        m_width(m_record.GetInt(m_form.columnItems.back().perRowField)) {}

  long long Rows() const { return m_rows; }
  int Width() const { return m_width; }

  cow_List<int> Targets() const {
    const eds_FormItem& item = m_form.columnItems.front();
    cow_List<int> targets(static_cast<std::size_t>(m_rows));
    if (!Copy(item, std::span<int>(targets)))
      std::ranges::fill(targets, m_record.GetInt(item.alternatives.front().field));
    return targets;
  }
  // Row by row.
  cow_List<double> Values() const {
    const eds_FormItem& item = m_form.columnItems.back();
    cow_List<double> values(static_cast<std::size_t>(m_rows * m_width));
    if (!Copy(item, std::span<double>(values)))
      std::ranges::fill(values, m_record.GetDouble(item.alternatives.front().field));
    return values;
  }
  // Null: they are few, or all the same.
  eds_ArrayID ValueArray() const {
    const KvoSimPosition array = m_record.GetReference(m_form.columnItems.back().arrayField);
    return array.IsNull() ? eds_ArrayID() : eds_ArrayID{array.Store(), array.ID()};
  }

private:
  template <class T> bool Copy(const eds_FormItem& item, std::span<T> out) const {
    if (const KvoSimPosition array = m_record.GetReference(item.arrayField); !array.IsNull()) {
      eds_ArrayReader reader(eds_ArrayID{array.Store(), array.ID()});
      Check(reader.Count() * reader.Width(), static_cast<long long>(out.size()));
      reader.ReadPiece(0, out);
      return true;
    }
    if (m_record.IsMemberNull(item.fewField)) return false;
    const std::string_view bytes = m_record.GetString(item.fewField);
    Check(static_cast<long long>(bytes.size()), static_cast<long long>(out.size_bytes()));
    std::memcpy(out.data(), bytes.data(), bytes.size());
    return true;
  }
  void Check(long long has, long long wanted) const {
    if (has != wanted) eds_tellDamaged(m_position, "a column does not fit the number of rows");
  }

  KvoSimPosition m_position;
  KvoSimDataRecord m_record;
  const eds_FormInfo& m_form;
  long long m_rows;
  int m_width;
};

// Where the ordinals of a part begin in the flat mesh, seen from the distribution's owner.
long long offsetOf(const KvoSimPosition& instance, bool nodes) {
  const int field = nodes ? eds_Instance_FirstNode : eds_Instance_FirstElement;
  return std::max<int64_t>(0, instance.DataRecord().GetInt64(field));
}

// The members that a named set stands for, in the space of the distribution's owner.
eds_MemberSet membersOf(const KvoSimPosition& target, const KvoSimPosition& owner, bool nodes) {
  const KvoSimDataRecord named = target.DataRecord();
  const KvoObjElementSet elements =
      nodes ? KvoObjElementSet() : KvoObjElementSet(named.GetReference(eds_Target_Set));
  const KvoObjNodeSet nodeSet =
      nodes ? KvoObjNodeSet(named.GetReference(eds_Target_Set)) : KvoObjNodeSet();
  const eds_MeshSet& set = nodes ? static_cast<const eds_MeshSet&>(nodeSet) : elements;
  const KvoSimCSet membership = set.Membership(); // which holds the members
  if (membership.IsNull()) return {};
  const eds_MemberSet& members = membership.Set();
  if (!set.Owner().IsA(eds_RecordKind::Part) || owner.IsA(eds_RecordKind::Part)) return members;
  const KvoSimPosition by = named.GetReference(eds_Target_Instance);
  const long long offset = offsetOf(by.IsNull() ? owner : by, nodes);
  std::vector<int32_t> moved = members.Members();
  for (int32_t& member : moved) member += static_cast<int32_t>(offset);
  return eds_MemberSet::Ordered(std::move(moved));
}

// Member and row, by member; of several rows the one that holds.
using MemberRows = cow_List<std::pair<int32_t, int32_t>>;

MemberRows resolve(const cow_List<int>& targets, const KvoSimPosition& record,
                   const KvoSimPosition& owner, bool nodes) {
  const auto sets = record.GetVector(eds_Member::Targets);
  MemberRows rows;
  for (std::size_t row = 0; row < targets.size(); ++row) { // those of sets first
    if (targets[row] >= 0) continue;
    const auto place = static_cast<std::size_t>(-1LL - targets[row]);
    if (place >= sets.size()) eds_tellDamaged(record, "a row names a set that is not there");
    const eds_MemberSet members = membersOf(sets[place], owner, nodes);
    for (int64_t n = 0; n < members.Size(); ++n)
      rows.emplace_back(members[n], static_cast<int32_t>(row));
  }
  for (std::size_t row = 0; row < targets.size(); ++row)
    if (targets[row] >= 0) rows.emplace_back(targets[row], static_cast<int32_t>(row));
  std::ranges::stable_sort(rows, {}, &MemberRows::value_type::first);
  MemberRows held;
  for (std::size_t n = 0; n < rows.size(); ++n)
    if (n + 1 == rows.size() || rows[n + 1].first != rows[n].first) held.push_back(rows[n]);
  return held;
}

bool areDistinctLabels(const cow_List<int>& targets) {
  if (std::ranges::any_of(targets, [](int target) { return target < 0; })) return false;
  if (std::ranges::adjacent_find(targets, std::greater_equal()) == targets.end()) return true;
  cow_List<int> sorted = targets;
  std::ranges::sort(sorted);
  return std::ranges::adjacent_find(sorted) == sorted.end();
}

} // namespace

inpS_Distribution inpS_Distribution::Of(const KvoSimPosition& record) {
  const bool nodes = record.IsA(eds_FormKind::DistributionByNode);
  if (!nodes && !record.IsA(eds_FormKind::DistributionByElement))
    return inpS_Distribution(KvoSimDistribution());
  for (const KvoSimPosition& known : record.GetVector(eds_Member::Distributions))
    return inpS_Distribution(known.AsDistribution());
  const KvoSimPosition owner = record.Parent();
  KvoSimPosition model(record.Context());
  KvoSimCollection collection = KvoObjModel(model).GetMesh().CollectionOf(owner, nodes);
  const GivenRows given(record);
  inpS_Distribution made(record.Context().CreateDistribution(
      eds_DataType::General, KvoSimGrid{collection}, {eds_ValueType::Double, given.Width()}));
  made.Get().Position().DataRecord().SetString(eds_Distribution_Name, record.Name());
  record.Associate(eds_Member::Distributions, made.Get().Position());
  if (given.Rows() == 0) return made;
  cow_List<int> targets = given.Targets();
  if (areDistinctLabels(targets)) {
    const KvoSimCSet over = collection.CreateCSet(eds_MemberSet::Ordered(std::move(targets)));
    if (!given.ValueArray().IsNull())
      made.m_distribution.AddDrawer(over.ID(), given.ValueArray());
    else
      made.WriteDouble(over, given.Values());
    return made;
  }
  const MemberRows rows = resolve(targets, record, owner, nodes);
  if (rows.empty()) return made;
  const auto width = static_cast<std::size_t>(given.Width());
  const cow_List<double> all = given.Values();
  std::vector<int32_t> members;
  cow_List<double> values;
  members.reserve(rows.size());
  values.reserve(rows.size() * width);
  for (const auto& [member, row] : rows) {
    members.push_back(member);
    const auto from =
        all.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(row) * width);
    values.insert(values.end(), from, from + static_cast<std::ptrdiff_t>(width));
  }
  made.WriteDouble(collection.CreateCSet(eds_MemberSet::Ordered(std::move(members))), values);
  return made;
}

KvoSimCSet inpS_Distribution::Over() const {
  const std::vector<int64_t> drawers = m_distribution.DrawerIDArray();
  return drawers.empty() ? KvoSimCSet() : m_distribution.DrawerCSet(drawers.front());
}

void inpS_Distribution::WriteDouble(const KvoSimCSet& members, std::span<const double> values) {
  eds_ArrayWriter array(m_distribution.Position(), eds_ValueType::Double, NumComponents());
  array.Append(values);
  m_distribution.AddDrawer(members.ID(), array.Finish());
}
