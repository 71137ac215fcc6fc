#include "inpS/model/inpS_RestartDefinitions.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/forms/inpS_Blocks.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Parser.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

constexpr int kHistoryBlock = 29;

bool isNamed(inp_KeywordEnm kind) {
  return kind == inp_KwMaterial || kind == inp_KwGasketBehavior;
}

// Physical constants have no name: there is one set of them.
cow_String nameOf(const inp_Keyword& keyword) {
  return isNamed(keyword.Kind()) ? keyword.StringOf("name", {}) : cow_String();
}

} // namespace

inpS_RestartDefinitions::inpS_RestartDefinitions(const KvoObjDocument& document) {
  const KvoSimPosition model = document.GetModel().Position();
  for (const cow_String& name : model.GetStringKeys(eds_Member::Materials))
    m_names.emplace(inp_KwMaterial, name);
  for (const cow_String& name : model.GetStringKeys(eds_Member::GasketBehaviors))
    m_names.emplace(inp_KwGasketBehavior, name);
  if (!model.Follow(eds_Member::PhysicalConstants).IsNull())
    m_names.emplace(inp_KwPhysicalConstants, "");
  AddKept(document);
}

// Those that an earlier restart kept as text.
void inpS_RestartDefinitions::AddKept(const KvoObjDocument& document) {
  for (const KvoSimPosition& kept :
       document.Context().GetRecords(eds_RecordKind::VerbatimKeyword)) {
    const KvoSimDataRecord record = kept.DataRecord();
    const std::string_view name = record.GetString(eds_VerbatimKeyword_Keyword);
    if (name != "MATERIAL" && name != "GASKET BEHAVIOR" && name != "PHYSICAL CONSTANTS") continue;
    if (record.GetInt(eds_VerbatimKeyword_Block) == kHistoryBlock) continue; // the step's own
    inp_Parser parser(cow_String(record.GetString(eds_VerbatimKeyword_Text)), "", {}, "", true,
                      true, false);
    for (const inp_Keyword& keyword : parser.Parse(false))
      m_names.emplace(keyword.Kind(), nameOf(keyword));
  }
}

cow_String inpS_RestartDefinitions::Conflict(const inp_Keyword& keyword) {
  const inp_KeywordEnm kind = keyword.Kind();
  const bool named = isNamed(kind);
  if (!named && kind != inp_KwPhysicalConstants) return {};
  const cow_String name = nameOf(keyword);
  // Of constants that come in several pieces the later ones go on with the former.
  const bool isKnown =
      named ? !name.empty() && !m_names.emplace(kind, name).second : m_names.contains({kind, name});
  if (!isKnown) return {};
  AddRefused(keyword);
  if (!named) return "The model that is restarted has physical constants; these are left out.";
  return cow_String(kind == inp_KwMaterial ? "Material" : "Gasket behavior") + " with name \"" +
         name + "\" has already been defined; this one is left out with all that belongs to it.";
}

void inpS_RestartDefinitions::AddRefused(const inp_Keyword& keyword) {
  for (const inp_Keyword& suboption : keyword.Suboptions()) {
    m_ofRefused.insert(suboption.Body().get());
    AddRefused(suboption);
  }
}

bool inpS_RestartDefinitions::IsOfRefused(const inp_Keyword& keyword) const {
  return m_ofRefused.contains(keyword.Body().get());
}

// ---- parts and instances

namespace {

// Of an instance that the model has.
void checkPart(const inp_Keyword& keyword, const KvoSimPosition& instance, const KvoObjModel& model,
               inp_Visitor& messages) {
  const inp_Item* part = keyword.Find("part");
  if (!part) return;
  const KvoSimPosition known = model.GetPart(part->AsString());
  if (known == instance.DataRecord().GetReference(eds_Instance_Part) && !known.IsNull()) return;
  messages.AddError(inp_Utils::MessageAtParameter(
      keyword, "part",
      known.IsNull() ? "Part \"" + part->AsString() +
                           "\" is not defined; the instance is taken as the restarted model has it."
                     : "The instance of this name in the model that is restarted has another part; "
                       "it is taken as it is there."));
}

// Whether the data lines have the numbers that are stored from a field on, and nothing else.
bool hasStored(const inp_DataArray& data, long long row, const KvoSimDataRecord& record, int first,
               int count) {
  for (int col = count; row < data.Rows() && col < data.Cols(row); ++col)
    if (data.HasValue(row, col)) return false;
  for (int col = 0; col < count; ++col) {
    const bool isGiven = row < data.Rows() && col < data.Cols(row) && data.HasValue(row, col);
    if (isGiven && !data.IsNumber(row, col)) return false;
    if ((isGiven ? data.AsDouble(row, col) : 0) != record.GetDouble(first + col)) return false;
  }
  return true;
}

// Of an instance that the model has. No lines say nothing of its place.
void checkPlacement(const inp_Keyword& keyword, const KvoSimPosition& instance,
                    inp_Visitor& messages) {
  const inp_DataArray& data = keyword.Data();
  const KvoSimDataRecord record = instance.DataRecord();
  if (data.Rows() == 0 ||
      (data.Rows() <= 2 && hasStored(data, 0, record, eds_Instance_TranslationX, 3) &&
       hasStored(data, 1, record, eds_Instance_RotationAX, 7)))
    return;
  messages.AddWarning(inp_Utils::MessageAtRow(
      keyword, 0,
      "The instance stays where it is in the model that is restarted; the placement that is given "
      "here is another one and is left out."));
  messages.LeaveOut("placement");
}

void checkAssembly(const inp_Keyword& keyword, const KvoObjModel& model, inp_Visitor& messages) {
  const cow_String name = keyword.StringOf("name", "");
  const KvoSimPosition assembly = model.GetAssembly();
  if (assembly.IsNull()) {
    messages.AddWarning(inp_Utils::MessageInKeyword(
        keyword, "The model that is restarted has no assembly, and gets none; what stands in this "
                 "one is of the model itself."));
    return messages.LeaveOut("assembly");
  }
  if (name.empty()) return;
  const cow_String known = assembly.DataRecord().ReturnString(eds_Assembly_Name);
  if (known == name) return;
  messages.AddWarning(inp_Utils::MessageAtParameter(
      keyword, "name",
      known.empty()
          ? cow_String("The assembly of the model that is restarted has no name, and gets "
                       "none.")
          : "The assembly of the model that is restarted is \"" + known +
                "\" and keeps its name."));
  messages.LeaveOut("assembly name");
}

bool checkOwner(const inp_Keyword& keyword, const KvoObjModel& model, inp_Visitor& messages) {
  const bool isPart = keyword.Kind() == inp_KwPart;
  const cow_String name = keyword.StringOf("name", "");
  const KvoSimPosition known = name.empty() ? KvoSimPosition()
                               : isPart     ? model.GetPart(name)
                                            : model.GetOccurence(name);
  if (!known.IsNull()) {
    if (isPart) return true;
    checkPart(keyword, known, model, messages);
    checkPlacement(keyword, known, messages);
    return true;
  }
  wip_Message message = inp_Utils::MessageInKeyword(
      keyword, name.empty() ? inpS_messageText(isPart ? inpS_model_PartNameMissing
                                                      : inpS_model_InstanceNameMissing)
                            : "The model that is restarted has no \"" + name +
                                  "\", and a restart cannot add one; it is left out with all that "
                                  "stands in it.");
  if (name.empty()) message.notes.push_back({"it is left out with all that stands in it", {}});
  messages.AddError(std::move(message));
  messages.LeaveOut(isPart ? "part" : "instance");
  return false;
}

// The model is read whole, whatever place within a step the deck names.
void checkReading(const inp_Keyword& keyword, inp_Visitor& messages) {
  if (!keyword.HasParameter("read")) return;
  cow_String given;
  for (const inp_Parameter& parameter : keyword.Parameters())
    if (parameter.name == "inc" || parameter.name == "iteration" || parameter.name == "interval" ||
        parameter.name == "cycle" || parameter.name == "endstep")
      given += (given.empty() ? "" : ", ") + inpS_spelledName(parameter);
  if (given.empty()) return;
  messages.AddWarning(inp_Utils::MessageInKeyword(
      keyword,
      "A restart goes on behind the last step of its model; what tells a place within one (" +
          given + ") is left out."));
  messages.LeaveOut("place of a restart");
}

// Kept as text it would stand before all steps of the written deck, and act in them.
bool isBeforeSteps(const inp_Keyword& keyword, eds_Member member) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
  return row && !keyword.IsSuboption() && keyword.Scope().kind != inp_Scope::Kind::Step &&
         inpS_block(row->block).member == member;
}

} // namespace

bool inpS_checkRestart(const inp_Keyword& keyword, const KvoObjModel& model, bool hasSteps,
                       inp_Visitor& messages) {
  const bool isModels = keyword.Scope().kind == inp_Scope::Kind::Model;
  if (keyword.IsInstanceCopy()) return true;
  // Axes of nodes and thicknesses are what the loads of all steps act along and on.
  if (hasSteps && isBeforeSteps(keyword, eds_Member::Transforms)) {
    messages.AddError(inp_Utils::MessageInKeyword(
        keyword, "The model that is restarted has steps, which this would change; *" +
                     keyword.Name() + " is left out."));
    messages.LeaveOut("change of steps that are there");
    keyword.ReferAll();
    return false;
  }
  if (hasSteps && isBeforeSteps(keyword, eds_Member::InitialConditions)) {
    messages.AddError(inp_Utils::MessageInKeyword(
        keyword, "The model that is restarted has steps, and what acts before them is its own; the "
                 "keyword is left out."));
    messages.LeaveOut("condition before the first step");
    return false;
  }
  if (keyword.Kind() == inp_KwPart || keyword.Kind() == inp_KwInstance)
    return checkOwner(keyword, model, messages);
  if (keyword.Kind() == inp_KwAssembly) checkAssembly(keyword, model, messages);
  if (keyword.Kind() == inp_KwRestart) checkReading(keyword, messages);
  if (keyword.Kind() != inp_KwHeading || !isModels || keyword.Data().Rows() == 0) return true;
  messages.AddWarning(inp_Utils::MessageInKeyword(
      keyword, "The model keeps the heading of its base; that of the restart is left out."));
  messages.LeaveOut("heading");
  return false;
}
