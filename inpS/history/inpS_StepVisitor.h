#pragma once

#include "inpS/forms/inpS_FormVisitor.h"
#include "inpS/history/inpS_LoadedElements.h"
#include <optional>
#include <unordered_map>

// The steps phase: each step becomes a record that holds its procedure and the keywords that go
// with it by their place in the deck. What its keywords are that nothing converts stays within the
// step as text. A step whose procedure cannot be modelled is kept as text as a whole, never a half
// of it. What fluid dynamics asks of its keywords is in inpS_StepVisitorCfd.cpp.
class inpS_StepVisitor : public inpS_FormVisitor {
public:
  inpS_StepVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements, const inpS_Inventory& inventory,
                   inpS_Ledger& ledger)
      : inpS_FormVisitor(inpS_Phase::Steps, nodes, elements, inventory, ledger) {}

  void VisitList(inp_KeywordListRef keywords) override;
  void Visit(const inp_Keyword& keyword) override;
  void VisitRestart(const inp_Keyword& keyword) override;
  void VisitStep(const inp_Keyword& keyword) override;
  void VisitEndStep(const inp_Keyword& keyword) override;

protected:
  bool IsOfPhase(const inp_Keyword& keyword) const override;
  const inpS_Form* Choose(const inp_Keyword& keyword, const inp_Keyword* parent) override;
  bool IsErrorToLack(inp_KeywordEnm kind) const override;
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  bool MayLack(const inpS_Form& form, const eds_FormItem& item) const override;
  cow_String FaultOfLine(const KvoSimPosition& line) override;
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;

private:
  // What the walk must know of a step before it meets its keywords.
  struct Facts {
    inp_KeywordEnm procedure = inp_NullKeyword; // the first; null: it has none
    bool isExplicit = false;
    bool isFluid = false;
    bool isRefused = false; // a procedure of it cannot be modelled
  };
  void Look(inp_KeywordListRef keywords);
  void LookAtBase(const KvoSimPosition& firstStep);
  void SetDampings();
  void AddGlobalDamping(const inp_Keyword& keyword, const KvoSimDataRecord& given,
                        const KvoSimPosition& procedure);
  void Judge(const inp_Keyword& procedure, Facts& facts);
  void Open(const inp_Keyword& keyword, const KvoSimPosition& record);
  void SetProcedure(const inp_Keyword& keyword, const KvoSimPosition& record);
  void CheckProcedure(const inp_Keyword& keyword, const inpS_Form& form,
                      const KvoSimPosition& record);
  void CheckMonitoring(const inp_Keyword& keyword);
  void CheckExtrapolation(const inp_Keyword& keyword);
  void CheckControls(const inp_Keyword& keyword, const inpS_Form& form);
  void CheckFluidStructure(const inp_Keyword& keyword);
  void TellIrrelevant(const inp_Keyword& keyword);
  void OpenLoadCase(const inp_Keyword& keyword);
  void CloseLoadCase();
  bool IsPerturbation() const; // by what is left to it, too
  bool IsLinear() const;       // of the open step

  // Values that no analysis can go by: inpS_StepVisitorValues.cpp.
  void CheckIncrements(const inp_Keyword& keyword, const KvoSimPosition& record);
  void CheckPerturbation(const inp_Keyword& keyword, const inpS_Form& form);
  void CheckSolver(const inp_Keyword& keyword, const inpS_Form& form);
  void CheckTimes(const inp_Keyword& keyword, const inpS_Form& form, const KvoSimPosition& record);
  void CheckIncrement(const inp_Keyword& keyword, const inpS_Form& form,
                      const KvoSimDataRecord& values);
  void CheckStabilization(const inp_Keyword& keyword, const inpS_Form& form);
  void CheckWatchedSet(const inp_Keyword& keyword, const KvoSimPosition& record);
  void CheckRanges(const inp_Keyword& keyword);
  void CheckModelChange(const inp_Keyword& keyword);

  // What is left out or turned round: inpS_StepVisitorOptions.cpp.
  void CheckOptions(const inp_Keyword& keyword);
  void CheckRuns(const inp_Keyword& keyword);

  // Names that are kept as words: inpS_StepVisitorNames.cpp.
  void CheckNames(const inp_Keyword& keyword);
  void CheckEnrichment(const inp_Keyword& keyword);
  bool IsThere(const eds_Referable& referable, const cow_String& asWritten);

  // Of fluid dynamics.
  void CheckCfd(const inp_Keyword& keyword);
  void CheckEquationSolver(const inp_Keyword& keyword);
  void CheckIsOfFlow(const inp_Keyword& keyword);
  void CheckSolverLimits(const inp_Keyword& keyword);
  void CheckSmoother(const inp_Keyword& keyword, const cow_String& type);

  std::unordered_map<const inp_KeywordBody*, Facts> m_facts; // by *STEP
  const Facts* m_open = nullptr;                             // of the step that is open
  const inp_KeywordBody* m_first = nullptr;                  // the first *STEP of the deck
  long long m_baseSteps = 0;                                 // of the model that is restarted
  inp_Keyword m_keyword;                                     // that is being converted
  long long m_times = 0;                                     // that lines of *TIME POINTS make
  KvoSimPosition m_procedure;                                // of the open step, its first
  KvoSimPosition m_lastProcedure;                            // likewise, the last one so far
  struct Option {
    inp_Keyword keyword;
    KvoSimPosition record;
    KvoSimPosition procedure; // that it stands behind; null: it stands before all
  };
  cow_List<Option> m_ofProcedures;       // likewise, what is for one of its procedures
  std::optional<inp_Keyword> m_loadCase; // that is open
  cow_List<cow_String> m_loadCases;      // names of those of the open step
  // Parameters of *STEP in the steps right before without a procedure, and in the one that is open.
  cow_List<cow_String> m_left;
  cow_List<cow_String> m_given;
  std::optional<inpS_LoadedElements> m_elements; // once a load of connectors is met
  cow_String m_extrapolation; // that holds in the open step; empty: none is given
};
