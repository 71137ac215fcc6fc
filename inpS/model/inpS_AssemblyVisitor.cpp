#include "inpS/model/inpS_AssemblyVisitor.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "inpS/framework/inpS_System.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include <cmath>

namespace {

// What is bare says nothing: it is left unread, to be kept.
const inp_Item* findValue(const inp_Keyword& keyword, std::string_view name) {
  const inp_Item* item = keyword.Find(name);
  if (!item || !item->IsFlag()) return item;
  for (const inp_Parameter& parameter : keyword.Parameters())
    if (parameter.name == name) parameter.referred = false;
  return nullptr;
}

constexpr double kCoincident = 1e-6; // the length below which two points are one

bool isGiven(const inp_DataArray& data, long long row) {
  if (row >= data.Rows()) return false;
  for (int col = 0, cols = data.Cols(row); col < cols; ++col)
    if (data.HasValue(row, col)) return true;
  return false;
}

double valueAt(const inp_DataArray& data, long long row, int col) {
  return col < data.Cols(row) ? data.AsDouble(row, col) : 0.0;
}

} // namespace

void inpS_AssemblyVisitor::VisitAssembly(const inp_Keyword& keyword) {
  const KvoObjDocument& document = m_inventory.GetDocument();
  const KvoSimPosition model = document.GetModel().Position();
  if (!model.Follow(eds_Member::Assembly).IsNull()) {
    Error(keyword, "A model has one assembly; this second one is taken as part of the first.");
    return m_ledger.LeaveOut(keyword);
  }
  const inp_Item* name = findValue(keyword, "name");
  KvoSimTransaction transaction(document.ContextID());
  const KvoSimPosition assembly = model.CreateDataRecord(eds_RecordKind::Assembly);
  if (name && !name->AsString().empty())
    assembly.DataRecord().SetString(eds_Assembly_Name, name->AsString());
  model.SetPosition(eds_Member::Assembly, assembly);
  inpS_keepUnused(keyword, assembly, *this);
  m_ledger.Take(keyword, assembly);
  transaction.Commit();
  m_assembly = assembly;
}

void inpS_AssemblyVisitor::VisitEndAssembly(const inp_Keyword& keyword) {
  KeepClosing(keyword, m_assembly);
}

void inpS_AssemblyVisitor::VisitEndInstance(const inp_Keyword& keyword) {
  KeepClosing(keyword, m_instance);
}

void inpS_AssemblyVisitor::KeepClosing(const inp_Keyword& keyword, KvoSimPosition& open) {
  if (open.IsNull()) return m_ledger.LeaveOut(keyword); // refused
  KvoSimTransaction transaction(m_inventory.GetDocument().ContextID());
  inpS_keepUnused(keyword, open, *this, inpS_closingRow);
  m_ledger.Take(keyword);
  transaction.Commit();
  open = {};
}

void inpS_AssemblyVisitor::VisitInstance(const inp_Keyword& keyword) {
  m_instance = {};
  if (Place(keyword)) return m_ledger.Take(keyword, m_instance);
  m_ledger.LeaveOut(keyword);
  LeaveOut("instance");
}

// False, with a message, when the model does not get it.
bool inpS_AssemblyVisitor::Place(const inp_Keyword& keyword) {
  const inp_Item* name = keyword.Find("name");
  if (!name || name->AsString().empty()) {
    Error(keyword, inpS_messageText(inpS_model_InstanceNameMissing));
    return false;
  }
  if (keyword.Scope().kind != inp_Scope::Kind::Assembly) {
    Error(keyword, "An instance belongs to an assembly, and none is open here; it is left out.");
    return false;
  }
  const KvoObjDocument& document = m_inventory.GetDocument();
  const KvoSimPosition model = document.GetModel().Position();
  if (!model.FollowStringKey(eds_Member::Occurrences, name->AsString()).IsNull()) {
    Error(keyword, inpS_messageText(inpS_model_InstanceNameTaken, {name->AsString()}));
    return false;
  }
  const inp_Item* partName = keyword.Find("part");
  const inp_Item* library = findValue(keyword, "library");
  const inp_Item* source = findValue(keyword, "instance");
  KvoSimPosition part;
  if (partName) part = model.FollowStringKey(eds_Member::Parts, partName->AsString());
  if (!partName && !library) {
    Error(keyword, inpS_messageText(inpS_app_RequiredParameter, {"part"}));
    return false;
  }
  if (partName && part.IsNull()) {
    AddError(inp_Utils::MessageAtParameter(keyword, "part",
                                           "Part \"" + partName->AsString() +
                                               "\" is not defined; the instance is left out."));
    return false;
  }
  if (library)
    Warning(keyword, "The mesh of an instance imported from \"" + library->Verbatim() +
                         "\" is not read: only what this deck gives of it is converted.");
  bool isWhole = true;
  if (!CheckPlacement(keyword, isWhole)) return false;

  KvoSimTransaction transaction(document.ContextID());
  const KvoSimPosition instance = model.CreateDataRecord(eds_RecordKind::Instance);
  KvoSimDataRecord record = instance.DataRecord();
  record.SetString(eds_Instance_Name, name->AsString());
  if (!part.IsNull()) record.SetReference(eds_Instance_Part, part);
  if (library) record.SetString(eds_Instance_Library, library->AsString());
  if (source) record.SetString(eds_Instance_SourceInstance, source->AsString());
  WritePlacement(keyword, instance);
  model.AssociateStringKey(eds_Member::Occurrences, name->AsString(), instance);
  inpS_tellOtherParameters(keyword, *this);
  const inpS_KeptPart kept{0, inpS_takeOtherParameters(keyword),
                           isWhole ? cow_String() : inpS_dataLines(keyword, *this)};
  if (!kept.parameters.empty() || !kept.lines.empty()) inpS_keepPart(instance, kept);
  transaction.Commit();
  m_instance = instance;
  return true;
}

// False when it cannot be placed. What is beyond the values that it takes is told and leaves them
// as they are.
bool inpS_AssemblyVisitor::CheckPlacement(const inp_Keyword& keyword, bool& isWhole) {
  const inp_DataArray& data = keyword.Data();
  constexpr int kFields[] = {3, 7};
  for (long long row = 0; row < data.Rows(); ++row) {
    for (int col = 0, cols = data.Cols(row); col < cols; ++col) {
      if (!data.HasValue(row, col)) continue;
      if (row < 2 && col < kFields[row] && data.IsNumber(row, col)) continue;
      const bool isTaken = row < 2 && col < kFields[row];
      if (isTaken) {
        AddError(inp_Utils::MessageAtField(keyword, row, col,
                                           "\"" + data.AsStringVerbatim(row, col) +
                                               "\" is no number; the instance is left out."));
        return false;
      }
      if (isWhole)
        AddWarning(inp_Utils::MessageAtField(
            keyword, row, col,
            "An instance takes a translation (3 values) and a rotation (two points and an angle); "
            "what is beyond is kept, but not used."));
      isWhole = false;
    }
  }
  inpS_reportTinyNumbers(keyword, kFields, *this);
  const bool turns = isGiven(data, 1);
  double axis[3] = {};
  for (int i = 0; turns && i < 3; ++i) axis[i] = valueAt(data, 1, 3 + i) - valueAt(data, 1, i);
  const double length = std::hypot(axis[0], axis[1], axis[2]);
  inpS_System placement;
  placement.ReadInstance(keyword);
  if (!placement.IsFinite() || !std::isfinite(length)) {
    Error(keyword, "The numbers of the placement are too large to reckon with; the instance is "
                   "left out.");
    return false;
  }
  if (turns && length < kCoincident)
    AddWarning(
        inp_Utils::MessageAtRow(keyword, 1, inpS_messageText(inpS_model_RotationAxisDegenerate)));
  return true;
}

// The numbers stay as the deck gives them, so that they can be written back; beside them stands the
// rotation as a quaternion.
void inpS_AssemblyVisitor::WritePlacement(const inp_Keyword& keyword,
                                          const KvoSimPosition& instance) {
  const inp_DataArray& data = keyword.Data();
  KvoSimDataRecord record = instance.DataRecord();
  if (isGiven(data, 0)) {
    record.SetBool(eds_Instance_TranslationGiven, true);
    for (int i = 0; i < 3; ++i)
      record.SetDouble(eds_Instance_TranslationX + i, valueAt(data, 0, i));
  }
  if (!isGiven(data, 1)) return;
  record.SetBool(eds_Instance_RotationGiven, true);
  for (int i = 0; i < 7; ++i) record.SetDouble(eds_Instance_RotationAX + i, valueAt(data, 1, i));
  inpS_System rotation;
  rotation.ReadInstanceRotation(keyword);
  const cow_List<double> quaternion = rotation.GetRotationQuaternion();
  for (int i = 0; i < 4; ++i)
    record.SetDouble(eds_Instance_QuaternionX + i, quaternion[static_cast<std::size_t>(i)]);
}
