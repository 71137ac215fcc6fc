#include "inpS/history/inpS_ProcedureKind.h"
#include "inpS/forms/inpS_FormTable.h"
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
    return kind == Kind::ElectromagneticTransient ? Family::Time : Family::Ranges;
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

Procedure procedureOf(Kind kind, inp_KeywordEnm keyword) {
  const eds_RecordInfo& info = *eds_formRecord(kind);
  const auto field = [&](std::string_view column, std::string_view other = {}) {
    for (std::size_t n = 0; n < info.fields.size(); ++n)
      if (info.fields[n].column == column || (!other.empty() && info.fields[n].column == other))
        return static_cast<int>(n);
    return -1;
  };
  Procedure made;
  made.family = familyOf(kind, keyword);
  made.registration = registrationOf(keyword);
  // That of implicit dynamics is a parameter, too.
  made.initial = field(kind == Kind::DynamicImplicit ? "initial_increment" : "initial");
  made.period = field("period", "total");
  made.minimum = field("minimum");
  made.maximum = field("maximum");
  made.direct = field("direct");
  made.directWord = field("direct_value");
  made.userControl = field("direct_user_control");
  made.userControlWord = field("direct_user_control_value");
  made.isFixed = field("fixed_time_incrementation");
  made.incrementation = field("incrementation");
  made.stabilize = field("stabilize");
  made.stabilizeFlag = field("stabilize_value");
  made.allsdtol = field("allsdtol");
  made.keepDamping = field("continue");
  made.factor = field("factor");
  made.steadyState = field("steady_state");
  made.end = field("end");
  made.rate = field("rate");
  made.consolidation = field("consolidation");
  made.deltmx = field("deltmx");
  made.mxdem = field("mxdem");
  made.cetol = field("cetol");
  made.utol = field("utol");
  made.dcmax = field("dcmax");
  made.haftol = field("haftol");
  made.loadFactor = field("load_factor");
  made.count = field("count");
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

bool Procedure::IsFixed(Kind kind, const KvoSimDataRecord& record) const {
  if (kind == Kind::ModalDynamic) return true;
  if (Flag(record, direct) || Flag(record, userControl) || Flag(record, isFixed)) return true;
  if (IsNoStop(record) || HasWord(record, incrementation, "FIXED STEP SIZE")) return true;
  const bool hasTolerances = cetol >= 0 || deltmx >= 0 || dcmax >= 0;
  if (!hasTolerances) return false;
  if (kind != Kind::CoupledTemperatureDisplacement && Flag(record, steadyState)) return false;
  if (consolidation >= 0 && !Flag(record, consolidation)) return false; // a steady state
  return !Real(record, cetol) && !Real(record, deltmx) && !Real(record, dcmax) &&
         !Real(record, utol);
}
