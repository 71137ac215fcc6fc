#include "inpS/history/inpS_ProcedureKind.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <map>

namespace {

using Kind = eds_RecordKind;
using Procedure = inpS_ProcedureKind;
using Family = Procedure::Family;

Family familyOf(Kind kind, inp_KeywordEnm keyword) {
  switch (keyword) {
  case inp_KwFrequency:
  case inp_KwComplexFrequency:
  case inp_KwBuckle:
    return Family::Modes;
  case inp_KwSteadyStateDynamics:
  case inp_KwRandomResponse:
    return Family::Ranges;
  case inp_KwElectromagnetic:
    return kind == eds_FormKind::ElectromagneticTransient ? Family::Time : Family::Ranges;
  case inp_KwResponseSpectrum:
  case inp_KwAnneal:
  case inp_KwFatigue:
  case inp_KwBeamSectionGenerate:
  case inp_KwSubstructureGenerate:
  case inp_KwMatrixGenerate:
    return Family::None;
  default:
    return Family::Time;
  }
}

// General procedures are steps of the model's sequence, those about a base state are tasks.
Procedure::Registration registrationOf(inp_KeywordEnm keyword) {
  switch (keyword) {
  case inp_KwFrequency:
  case inp_KwComplexFrequency:
  case inp_KwBuckle:
  case inp_KwModalDynamic:
  case inp_KwSteadyStateDynamics:
  case inp_KwRandomResponse:
  case inp_KwResponseSpectrum:
  case inp_KwSubstructureGenerate:
  case inp_KwMatrixGenerate:
    return Procedure::Registration::Task;
  default:
    return Procedure::Registration::Step;
  }
}

// Modes are extracted, and what is a sum of them or explicit solves no equations; a flow has
// solvers of its own.
bool hasSolver(Kind kind, inp_KeywordEnm keyword) {
  const bool isDirect =
      keyword == inp_KwSteadyStateDynamics && kind == eds_FormKind::SteadyStateDynamicsDirect;
  const bool isExplicit =
      kind == eds_FormKind::DynamicExplicit || keyword == inp_KwDynamicTemperatureDisplacement;
  const bool isOther = keyword == inp_KwModalDynamic || keyword == inp_KwCfd ||
                       kind == eds_FormKind::DynamicSubspace;
  return isDirect || keyword == inp_KwElectromagnetic ||
         (familyOf(kind, keyword) == Family::Time && !isExplicit && !isOther);
}

Procedure procedureOf(Kind kind, inp_KeywordEnm keyword) {
  const eds_RecordInfo& info = *eds_formRecord(kind);
  // A name may mean another thing elsewhere: END is a word, or a displacement.
  const auto field = [&](eds_FieldType type, std::string_view column, std::string_view other = {}) {
    for (std::size_t n = 0; n < info.fields.size(); ++n) {
      const std::string_view name = info.fields[n].column;
      if (info.fields[n].type == type && (name == column || (!other.empty() && name == other)))
        return static_cast<int>(n);
    }
    return -1;
  };
  const auto real = [&](std::string_view column, std::string_view other = {}) {
    return field(eds_FieldType::Real, column, other);
  };
  const auto flag = [&](std::string_view column) { return field(eds_FieldType::Bool, column); };
  const auto word = [&](std::string_view column) { return field(eds_FieldType::Text, column); };
  Procedure made;
  made.family = familyOf(kind, keyword);
  made.registration = registrationOf(keyword);
  made.hasSolver = hasSolver(kind, keyword);
  // That of implicit dynamics is a parameter, too.
  made.initial = real(kind == eds_FormKind::DynamicImplicit ? "initial_increment" : "initial");
  made.period = real("period", "total");
  made.minimum = real("minimum");
  made.maximum = real("maximum");
  made.direct = flag("direct");
  made.directWord = word("direct_value");
  made.userControl = flag("direct_user_control");
  made.userControlWord = word("direct_user_control_value");
  made.isFixed = flag("fixed_time_incrementation");
  made.incrementation = word("incrementation");
  made.stabilize = real("stabilize");
  made.stabilizeFlag = flag("stabilize_value");
  made.allsdtol = real("allsdtol");
  made.keepDamping = word("continue");
  made.factor = real("factor");
  made.steadyState = flag("steady_state");
  made.end = word("end");
  made.rate = real("rate");
  made.consolidation = flag("consolidation");
  made.deltmx = real("deltmx");
  made.mxdem = real("mxdem");
  made.cetol = real("cetol");
  made.utol = real("utol");
  made.dcmax = real("dcmax");
  made.haftol = real("haftol");
  made.loadFactor = real("load_factor");
  made.count = field(eds_FieldType::Int, "count");
  return made;
}

} // namespace

const Procedure* Procedure::Of(Kind kind) {
  static const std::map<Kind, Procedure> all = [] {
    std::map<Kind, Procedure> made;
    const inp_KeywordTable& keywords = inp_KeywordTable::Instance();
    for (const inp_KeywordEnm keyword : inpS_FormTable::Instance().Keywords())
      if (keywords.Row(keyword)->role == inp_KeywordRole::Procedure)
        for (const Kind one : inpS_FormTable::Instance().KindsOf(keyword))
          made.emplace(one, procedureOf(one, keyword));
    return made;
  }();
  const auto found = all.find(kind);
  return found == all.end() ? nullptr : &found->second;
}

std::optional<double> Procedure::Real(const KvoSimDataRecord& record, int field) {
  if (field < 0 || record.IsMemberNull(field)) return std::nullopt;
  return record.GetDouble(field);
}

bool Procedure::Flag(const KvoSimDataRecord& record, int field) {
  return field >= 0 && !record.IsMemberNull(field) && record.GetBool(field);
}

bool Procedure::HasWord(const KvoSimDataRecord& record, int field, std::string_view word) {
  return field >= 0 && !record.IsMemberNull(field) && record.GetString(field) == word;
}

bool Procedure::IsNoStop(const KvoSimDataRecord& record) const {
  return HasWord(record, directWord, "NO STOP") || HasWord(record, userControlWord, "NO STOP");
}

bool Procedure::IsByElements(Kind kind, const KvoSimDataRecord& record,
                             std::string_view beside) const {
  if (kind != eds_FormKind::DynamicExplicit && kind != eds_FormKind::DynamicTemperatureDisplacement)
    return false;
  return !Flag(record, userControl) && !inpS_holdsParameter(beside, "DIRECT USER CONTROL");
}

bool Procedure::IsSteady(const KvoSimDataRecord& record, std::string_view beside) const {
  return Flag(record, steadyState) ||
         (steadyState >= 0 && inpS_holdsParameter(beside, "STEADY STATE"));
}

bool Procedure::IsFixed(Kind kind, const KvoSimDataRecord& record, std::string_view beside) const {
  if (kind == eds_FormKind::ModalDynamic) return true;
  for (const char* one : {"DIRECT", "DIRECT USER CONTROL", "FIXED TIME INCREMENTATION"})
    if (inpS_holdsParameter(beside, one)) return true;
  if (Flag(record, direct) || Flag(record, userControl) || Flag(record, isFixed)) return true;
  if (IsNoStop(record) || HasWord(record, incrementation, "FIXED STEP SIZE")) return true;
  const bool hasTolerances = cetol >= 0 || deltmx >= 0 || dcmax >= 0;
  if (!hasTolerances) return false;
  if (kind != eds_FormKind::CoupledTemperatureDisplacement && IsSteady(record, beside))
    return false;
  if (consolidation >= 0 && !Flag(record, consolidation) &&
      !inpS_holdsParameter(beside, "CONSOLIDATION"))
    return false; // a steady state
  return !Real(record, cetol) && !Real(record, deltmx) && !Real(record, dcmax) &&
         !Real(record, utol);
}
