// What acts in a step: no form of a condition or load may be forgotten among the excitations.

#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_Blocks.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include <gtest/gtest.h>
#include <set>

TEST(ExcitationKind, EveryConditionOfStepsActs) {
  namespace Form = eds_FormKind;
  // What waves and winds are like acts by way of others; their lines name nothing.
  const std::set<eds_RecordKind> others = {Form::Wave, Form::WaveUser, Form::WaveGridded,
                                           Form::Wind, Form::IncidentWaveReflection};
  const inp_KeywordEnm keywords[] = {
#define INPS_STEP_PHASE(Keyword, Phase) inp_Kw##Keyword,
#include "inpS/forms/inpS_stepPhases.def"
      inp_KwTemperature, inp_KwConnectorLoad, inp_KwConnectorMotion};
  for (const inp_KeywordEnm keyword : keywords) {
    if (inpS_stepPhaseOf(keyword) == inpS_Phase::None) continue; // of the whole model
    for (const eds_RecordKind form : inpS_FormTable::Instance().KindsOf(keyword))
      EXPECT_NE(inpS_ExcitationKind::Of(form) != nullptr, others.contains(form))
          << eds_formRecord(form)->name << ": inpS/history/inpS_excitations.def";
  }
  for (const inpS_ExcitationKind& kind : inpS_ExcitationKind::All()) {
    const bool hasDegree = kind.key == inpS_ExcitationKind::Key::Degrees ||
                           kind.key == inpS_ExcitationKind::Key::Degree;
    EXPECT_EQ(hasDegree, kind.first >= 0) << eds_formRecord(kind.form)->name;
    if (kind.key == inpS_ExcitationKind::Key::Label) {
      EXPECT_GE(kind.label, 0) << eds_formRecord(kind.form)->name;
    }
  }
}
