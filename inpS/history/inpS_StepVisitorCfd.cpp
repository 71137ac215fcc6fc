#include "inpS/history/inpS_StepVisitor.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

bool isOneOf(const cow_String& word, std::initializer_list<std::string_view> words) {
  return std::ranges::find(words, word) != words.end();
}

// "momentum", from *MOMENTUM EQUATION SOLVER
cow_String equationOf(const inp_Keyword& keyword) {
  cow_String name = keyword.Name().substr(0, keyword.Name().find(' '));
  for (char& c : name) c = static_cast<char>(c - 'A' + 'a');
  return name;
}

} // namespace

void inpS_StepVisitor::CheckCfd(const inp_Keyword& keyword) {
  const inp_Item* isFlow = keyword.Find("incompressiblenavierstokes");
  if (!isFlow || !inpS_flagValue(*isFlow).value_or(true))
    Error(keyword, "INCOMPRESSIBLE NAVIER STOKES parameter must be provided for *CFD");
  if (keyword.HasParameter("timeintegrator") &&
      !isOneOf(inp_KeywordTable::BareWord(keyword.StringOf("timeintegrator", "")),
               {"THETA", "FORWARDEULER", "BDF2"}))
    AddError(inp_Utils::MessageAtParameter(keyword, "timeintegrator", "Invalid time integrator"));
  const inp_DataArray& data = keyword.Data();
  const bool hasIncrement = data.Rows() > 0 && data.Cols(0) > 0 && data.HasValue(0, 0);
  if (inp_KeywordTable::BareWord(keyword.StringOf("incrementation", "")) == "FIXEDCFL" &&
      !hasIncrement)
    Error(keyword, "Initial time increment must be specified");
  constexpr int iterations = 1; // on the second line
  if (data.Rows() < 2 || data.Cols(1) <= iterations || !data.HasValue(1, iterations)) return;
  if (!data.IsInteger(1, iterations) || data.AsInt64(1, iterations) <= 0)
    AddError(inp_Utils::MessageAtField(keyword, 1, iterations,
                                       "Maximum number of iterations must be a positive integer"));
}

void inpS_StepVisitor::CheckIsOfFlow(const inp_Keyword& keyword) {
  if (m_open && m_open->procedure != inp_NullKeyword && !m_open->isFluid)
    Warning(keyword, "*" + keyword.Name() + " means nothing without *CFD; it is kept as given.");
}

// Two whole numbers and a tolerance.
void inpS_StepVisitor::CheckSolverLimits(const inp_Keyword& keyword) {
  constexpr const char* faults[] = {"Maximum number of iterations must be a positive integer",
                                    "Interval of convergence checks must be a positive integer",
                                    "Convergence tolerance must be greater than zero"};
  constexpr int tolerance = 2;
  const inp_DataArray& data = keyword.Data();
  if (data.Rows() == 0) return;
  for (int col = 0; col < std::min(data.Cols(0), static_cast<int>(std::size(faults))); ++col) {
    if (!data.HasValue(0, col)) continue;
    const bool isSound = col == tolerance ? data.IsNumber(0, col) && data.AsDouble(0, col) > 0
                                          : data.IsInteger(0, col) && data.AsInt64(0, col) > 0;
    if (!isSound) AddError(inp_Utils::MessageAtField(keyword, 0, col, faults[col]));
  }
}

void inpS_StepVisitor::CheckEquationSolver(const inp_Keyword& keyword) {
  CheckIsOfFlow(keyword);
  CheckSolverLimits(keyword);
  if (!keyword.HasParameter("type")) return;
  const cow_String type = inp_KeywordTable::BareWord(keyword.StringOf("type", ""));
  const bool isPressure = keyword.Kind() == inp_KwPressureEquationSolver;
  const bool isKnown = isPressure ? isOneOf(type, {"AMG", "DSCG", "SSORCG", "ACONJUGATE"})
                                  : isOneOf(type, {"DSFGMRES", "DSGMRES", "ILUFGMRES", "ILUGMRES",
                                                   "AMGFGMRES", "AMGGMRES"});
  if (!isKnown)
    AddError(inp_Utils::MessageAtParameter(keyword, "type",
                                           "Unknown " + equationOf(keyword) + " solver type"));
  if (type.starts_with("AMG")) CheckSmoother(keyword, type);
}

// The second line begins with it; a word behind it is the method that it serves.
void inpS_StepVisitor::CheckSmoother(const inp_Keyword& keyword, const cow_String& type) {
  const inp_DataArray& data = keyword.Data();
  if (data.Rows() < 2) return;
  for (int col = 1; col < data.Cols(1); ++col)
    if (data.Type(1, col) == inp_FieldType::String &&
        !isOneOf(inp_KeywordTable::BareWord(inp_Utils::Fold(data.AsStringVerbatim(1, col))),
                 {"CG", "BCGS", "FGMRES"}))
      AddError(inp_Utils::MessageAtField(
          keyword, 1, col, "Unknown Krylov solver type " + data.AsStringVerbatim(1, col)));
  if (data.Cols(1) == 0 || !data.HasValue(1, 0)) return;
  const cow_String smoother = inp_Utils::Fold(data.AsStringVerbatim(1, 0));
  if (isOneOf(inp_KeywordTable::BareWord(smoother), {"CHEBYCHEV", "ICC", "ILU", "SSOR"})) return;
  AddError(inp_Utils::MessageAtField(
      keyword, 1, 0,
      (type == "AMG" ? cow_String("Unknown AMG") : "Unsupported " + type) + " smoother type " +
          smoother));
}
