#pragma once

#include "inpS/forms/inpS_FormPrinter.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "inpS/inpS_Export.h"
#include "inpS/writer/inpS_DeckScope.h"
#include "inpS/writer/inpS_RepeatedConditions.h"

// Conditions and loads that another program made as excitations alone, with no keyword behind them:
// printed within the steps, each against the general step before it.
//
// What begins in a step stands under its keyword, which modifies what there is. What ended with the
// step before is taken back by OP=NEW. That takes back all of the kind, so all that still acts is
// repeated behind it: other excitations, and what keywords of earlier steps gave. In the deck these
// are of this step from there on; an amplitude that has ended is left out. An excitation in whose
// place another one begins (the same field of the same region) needs no such keyword. Excitations
// are not compared with given conditions of the same nodes: who makes both keeps them apart.
class inpS_ExcitationPrinter {
public:
  inpS_ExcitationPrinter(const KvoObjDocument& document, const inpS_DeckLabels& labels,
                         const inpS_KeptParts& parts);

  bool IsEmpty() const { return m_conditions.empty(); }
  void PrintBeforeSteps(utl_Stream& out) const;
  // Those that stand behind a keyword of the step; null: before its first one.
  void PrintStep(utl_Stream& out, const KvoSimPosition& step, const KvoSimPosition& behind,
                 const inpS_DeckScope& scope);
  void PrintLoadCase(utl_Stream& out, const KvoSimPosition& step,
                     const KvoSimPosition& loadCase) const;

private:
  struct Step {
    int number = 0; // 0: what is there before the first one
    bool isPerturbation = false;
    int previous = 0;         // the general step before it
    KvoSimPosition procedure; // behind which all stand but inertia relief
    KvoSimPosition reliefPlace;
  };
  struct Condition {
    KvoSimPosition excitation;
    KvoSimPosition relay;
    const inpS_ExcitationKind* kind;
    long long variable; // of fields
    KvoSimPosition loadCase;
    long long firstStep;
    long long lastStep;
    cow_String place; // which field of which region
    cow_String self;  // that, of which excitation with which magnitude
  };
  using Some = cow_List<const Condition*>;
  struct Change { // of one kind in one step
    Some begins, ends, stays;
  };

  Condition Read(const KvoSimPosition& relay, const KvoSimPosition& excitation,
                 const inpS_ExcitationKind& kind) const;
  static bool ActsIn(const Condition& condition, const Step& step);
  Change ChangeOf(const Some& family, const Step& step) const;
  static bool IsTakenBack(const inpS_ExcitationKind& kind, long long variable,
                          const KvoSimPosition& step);
  void PrintFamily(utl_Stream& out, const Some& family, const KvoSimPosition& step, const Step& at,
                   const inpS_DeckScope& scope);
  void PrintSome(utl_Stream& out, const Some& some, int step, bool isNew) const;
  inpS_ParameterTexts ParametersOf(const Condition& condition, int step, bool isNew) const;
  cow_String LinesOf(const Condition& condition) const;
  cow_List<cow_String> TargetsOf(const Condition& condition, bool oneByOne) const;
  cow_List<cow_String> NamesOf(const KvoSimPosition& set, const KvoSimPosition& instance) const;

  KvoObjDocument m_document;
  const inpS_DeckLabels& m_labels;
  const inpS_KeptParts& m_parts;
  cow_List<Condition> m_conditions;
  cow_List<Some> m_families; // by kind, fields by their number; those of load cases apart
  cow_Map<unsigned long long, Step> m_steps; // by the keyword's record
  inpS_RepeatedConditions m_repeated;
};
