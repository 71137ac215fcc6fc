#include "inpS/properties/inpS_NodalThicknessVisitor.h"
#include "database/KvoObjMeshedField.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimTransaction.h"
#include "database/KvoSimTransfer.h"
#include "database/eds_DamagedModel.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include <cmath>
#include <cstring>
#include <limits>

namespace {

// A bulk column, whatever it is kept as.
template <class T>
cow_List<T> columnOf(const KvoSimPosition& position, const eds_FormItem& item, std::size_t rows) {
  const KvoSimDataRecord record = position.DataRecord();
  const int field = item.alternatives.front().field;
  cow_List<T> values(rows);
  std::size_t held = rows;
  if (const KvoSimPosition array = record.GetReference(item.arrayField); !array.IsNull()) {
    eds_ArrayReader reader(eds_ArrayID{array.Store(), array.ID()});
    held = static_cast<std::size_t>(reader.Count());
    if (held == rows) reader.ReadPiece(0, std::span<T>(values));
  } else if (!record.IsMemberNull(item.fewField)) {
    const std::string_view bytes = record.GetString(item.fewField);
    held = bytes.size() / sizeof(T);
    if (held == rows) std::memcpy(values.data(), bytes.data(), rows * sizeof(T));
  } else if constexpr (std::is_same_v<T, double>) {
    values.assign(rows, record.GetDouble(field));
  } else {
    values.assign(rows, record.IsMemberNull(field) ? std::numeric_limits<int>::min()
                                                   : record.GetInt(field));
  }
  if (held != rows) eds_tellDamaged(position, "a column does not have a value for each row");
  return values;
}

std::size_t rowsOf(const KvoSimPosition& record) {
  const eds_FormInfo& form = *eds_formOf(record.Object().RecordKind());
  return static_cast<std::size_t>(record.DataRecord().GetInt64(form.rowsField));
}

const eds_FormItem& columnItem(const KvoSimPosition& record, std::size_t column) {
  return eds_formOf(record.Object().RecordKind())->columnItems[column];
}

} // namespace

void inpS_NodalThicknessVisitor::VisitNodalThickness(const inp_Keyword& keyword) {
  if (keyword.IsInstanceCopy()) return;
  m_hasAny = true;
  if (!keyword.HasParameter("generate")) return;
  for (long long row = 0; row < keyword.Data().Rows(); ++row)
    if (!inpS_KeywordReader::IsBlankRow(keyword.Data(), row)) CheckRange(keyword, row);
}

void inpS_NodalThicknessVisitor::CheckRange(const inp_Keyword& keyword, long long row) {
  const inp_DataArray& data = keyword.Data();
  const int cols = data.Cols(row);
  for (int col = 0; col < std::min(3, cols); ++col)
    if (data.HasValue(row, col) && data.Type(row, col) != inp_FieldType::Integer) return; // told
  if (cols < 2) return;
  const long long first = data.AsInt64(row, 0);
  const long long last = data.AsInt64(row, 1);
  const long long step = cols > 2 && data.HasValue(row, 2) ? data.AsInt64(row, 2) : 1;
  if (step == 0 || (last - first) % step != 0 || (last - first) / step < 0)
    return AddWarning(inp_Utils::MessageAtRow(
        keyword, row,
        "Steps of " + std::to_string(step) + " do not lead from node " + std::to_string(first) +
            " to " + std::to_string(last) + "; the line gives no node a thickness."));
  for (const long long label : {first, last}) {
    long long ordinal = 0;
    if (label != static_cast<int>(label) || !GetNodeOrdinal(static_cast<int>(label), ordinal))
      AddWarning(inp_Utils::MessageAtRow(keyword, row,
                                         "Node " + std::to_string(label) + " does not exist."));
  }
}

void inpS_NodalThicknessVisitor::ApplyTargets(const KvoSimPosition& record, bool isPart,
                                              const KvoSimPosition& instance,
                                              std::span<double> values) const {
  const std::size_t rows = rowsOf(record);
  const cow_List<int> targets = columnOf<int>(record, columnItem(record, 0), rows);
  const cow_List<double> thickness = columnOf<double>(record, columnItem(record, 1), rows);
  const auto sets = record.GetVector(eds_Member::Targets);
  const auto firstOf = [](const KvoSimPosition& of) {
    return of.IsNull() ? 0 : of.DataRecord().GetInt64(eds_Instance_FirstNode);
  };
  const int64_t offset = isPart ? firstOf(instance) : 0; // ordinals are the part's own
  for (std::size_t n = 0; n < rows; ++n) {
    if (targets[n] >= 0) {
      values[static_cast<std::size_t>(targets[n] + offset)] = thickness[n];
      continue;
    }
    const KvoSimDataRecord target =
        sets.at(static_cast<std::size_t>(-1LL - targets[n])).DataRecord();
    const KvoSimDataRecord set = target.GetReference(eds_Target_Set).DataRecord();
    const KvoSimPosition named = target.GetReference(eds_Target_Instance);
    const bool ofPart = set.GetReference(eds_NodeSet_Owner).IsA(eds_RecordKind::Part);
    const int64_t first = ofPart ? firstOf(named.IsNull() ? instance : named) : 0;
    const eds_MemberSet members = set.GetSet(eds_NodeSet_Membership).Set();
    for (int64_t m = 0; m < members.Size(); ++m)
      values[static_cast<std::size_t>(members[m] + first)] = thickness[n];
  }
}

void inpS_NodalThicknessVisitor::ApplyRanges(const KvoSimPosition& record,
                                             const KvoSimPosition& owner,
                                             std::span<double> values) const {
  const KvoObjLabeler& labeler = LabelerOf(Kind::Nodes);
  const int occurrence = labeler.FindOccurrence(owner);
  if (occurrence < 0) return;
  const std::size_t rows = rowsOf(record);
  cow_List<int> columns[3];
  for (std::size_t c = 0; c < 3; ++c)
    columns[c] = columnOf<int>(record, columnItem(record, c), rows);
  const cow_List<double> thickness = columnOf<double>(record, columnItem(record, 3), rows);
  const eds_LabelMap& labels = labeler.Labels(occurrence);
  const int64_t flat = std::max<int64_t>(0, labeler.FlatFirst(occurrence));
  for (std::size_t n = 0; n < rows; ++n) {
    const long long first = columns[0][n], last = columns[1][n];
    const long long given = columns[2][n];
    const long long step = given == std::numeric_limits<int>::min() ? 1 : given;
    if (step == 0 || (last - first) % step != 0 || (last - first) / step < 0) continue; // told
    const long long count = (last - first) / step;
    const auto set = [&](int64_t ordinal) {
      if (ordinal >= 0) values[static_cast<std::size_t>(ordinal + flat)] = thickness[n];
    };
    for (long long k = 0; count < labels.Size() && k <= count; ++k)
      set(labels.Ordinal(static_cast<int>(first + k * step)));
    // A range wider than there are nodes.
    for (int64_t ordinal = 0; count >= labels.Size() && ordinal < labels.Size(); ++ordinal) {
      const long long place = labels.Label(ordinal) - first;
      if (place % step == 0 && place / step >= 0 && place / step <= count) set(ordinal);
    }
  }
}

void inpS_NodalThicknessVisitor::Apply(const KvoSimPosition& owner, const KvoSimPosition& instance,
                                       std::span<double> values) const {
  const KvoObjModel model = Inventory().GetDocument().GetModel();
  KvoSimPosition labels = instance.IsNull() ? owner : instance;
  if (labels == model.Position() && !model.GetAssembly().IsNull()) labels = model.GetAssembly();
  for (const KvoSimPosition& record : owner.GetVector(eds_Member::Transforms)) {
    if (record.IsA(eds_FormKind::NodalThickness))
      ApplyTargets(record, owner.IsA(eds_RecordKind::Part), instance, values);
    if (record.IsA(eds_FormKind::NodalThicknessGenerate)) ApplyRanges(record, labels, values);
  }
}

void inpS_NodalThicknessVisitor::Save() {
  if (!m_hasAny) return;
  const KvoObjDocument& document = Inventory().GetDocument();
  KvoObjModel model = document.GetModel();
  KvoSimCollection nodes = model.GetMesh().GetNodeCollection();
  cow_List<double> values(static_cast<std::size_t>(nodes.Space()),
                          std::numeric_limits<double>::quiet_NaN());
  for (const KvoSimPosition& instance : model.Occurences()) {
    const KvoSimPosition part = instance.DataRecord().GetReference(eds_Instance_Part);
    if (!part.IsNull()) Apply(part, instance, values);
    Apply(instance, instance, values);
  }
  if (const KvoSimPosition assembly = model.GetAssembly(); !assembly.IsNull())
    Apply(assembly, {}, values);
  Apply(model.Position(), {}, values);

  cow_List<int> members;
  std::size_t held = 0;
  for (std::size_t n = 0; n < values.size(); ++n) {
    if (std::isnan(values[n])) continue;
    members.push_back(static_cast<int>(n));
    values[held++] = values[n];
  }
  if (held == 0) return;
  values.resize(held);
  KvoSimTransaction transaction(document.ContextID());
  KvoObjMeshedField field;
  field.Register(document.Context(), "NODAL THICKNESS", "thickness", KvoGridType::Node);
  const KvoSimDistribution data = document.CreateTypedDistribution(
      eds_DataType::FieldData, KvoSimGrid{nodes}, KvoSimRangeType(eds_ValueType::Double, 1));
  KvoSimTransfer transfer(data);
  transfer.SetMakeNewDrawer(nodes.CreateCSet(eds_MemberSet::Ascending(std::move(members))).ID());
  transfer.SetBuffer(std::span<const double>(values));
  transfer.ExecMake();
  field.AddData(data);
  model.SetNodalThicknessField(field);
  transaction.Commit();
}
