#include "inpS/history/inpS_StepVisitor.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>

// What keywords of a step leave out, or turn round, so that they say nothing or nothing that an
// analysis can go by: told, and kept as given.

namespace {

// Parameters of which a keyword needs one, or all; or lines.
enum class Need : unsigned char { Any, All, Lines };
struct Needs {
  inp_KeywordEnm keyword;
  Need need;
  const char* parameters; // separated by blanks, as the parser delivers them
  const char* text;       // what is missing
};
constexpr Needs kNeeds[] = {
    {inp_KwFixedMassScaling, Need::Any, "factor dt", "neither FACTOR nor DT"},
    {inp_KwVariableMassScaling, Need::Any, "dt type", "no DT"},
    {inp_KwMonitor, Need::All, "node dof", "not both NODE and DOF"},
    {inp_KwCorrelation, Need::Any, "psd user", "no power spectrum"},
    {inp_KwSteadyStateDynamics, Need::Lines, "", "no frequency"},
    {inp_KwRandomResponse, Need::Lines, "", "no frequency"},
    {inp_KwResponseSpectrum, Need::Lines, "", "no spectrum"},
    {inp_KwModalDamping, Need::Lines, "", "no damping"},
    {inp_KwGlobalDamping, Need::Any, "alpha beta structural", "no damping"},
    {inp_KwCompositeModalDamping, Need::Lines, "", "no damping"},
    {inp_KwSelectEigenmodes, Need::Lines, "", "no modes"},
    {inp_KwRetainedEigenmodes, Need::Lines, "", "no modes"},
    {inp_KwRetainedNodalDofs, Need::Lines, "", "no degrees of freedom"},
    {inp_KwCreepStrainRateControl, Need::Lines, "", "no strain rate"},
    {inp_KwBuckle, Need::Lines, "", "no number of modes"},
    {inp_KwSubstructureGenerate, Need::Any, "type", "no TYPE"},
    {inp_KwMatrixGenerate, Need::Any, "stiffness mass viscousdamping structuraldamping load",
     "no matrix"},
    {inp_KwMatrixOutput, Need::Any, "stiffness mass viscousdamping structuraldamping load",
     "no matrix"},
};

// A first and a last one in columns next to each other, and the least that the first may be.
struct Run {
  inp_KeywordEnm keyword;
  int first;
  long long least;
  const char* only; // where this parameter is there; null: always
};
constexpr Run kRuns[] = {
    {inp_KwModalDamping, 0, 1, nullptr},           {inp_KwRetainedNodalDofs, 1, 1, nullptr},
    {inp_KwAdaptiveMeshConstraint, 1, 1, nullptr}, {inp_KwSelectEigenmodes, 0, 1, "generate"},
    {inp_KwRetainedEigenmodes, 0, 1, "generate"},
};

// Numbers that must be greater than zero.
struct Positive {
  inp_KeywordEnm keyword;
  const char* parameter;
};
constexpr Positive kPositive[] = {
    {inp_KwFixedMassScaling, "factor"},
    {inp_KwFixedMassScaling, "dt"},
    {inp_KwVariableMassScaling, "dt"},
    {inp_KwContourIntegral, "contours"},
    {inp_KwDynamic, "scalefactor"},
    {inp_KwDynamicTemperatureDisplacement, "scalefactor"},
    {inp_KwHeatTransfer, "deltmx"},
    {inp_KwCoupledTemperatureDisplacement, "deltmx"},
    {inp_KwHeatTransfer, "mxdem"},
    {inp_KwCoupledTemperatureDisplacement, "cetol"},
    {inp_KwMassDiffusion, "dcmax"},
    {inp_KwCoupledThermalElectrical, "deltmx"},
    {inp_KwSoils, "deltmx"},
    {inp_KwCoupledThermalElectrical, "mxdem"},
    {inp_KwCoupledThermalElectrical, "cetol"},
    {inp_KwSoils, "utol"},
    {inp_KwSoils, "cetol"},
    {inp_KwVisco, "cetol"},
    {inp_KwGeostatic, "utol"},
    {inp_KwDirectCyclic, "cetol"},
    {inp_KwDirectCyclic, "deltmx"},
};

constexpr const char* kKept = "; it is kept as given.";

bool hasAnyLine(const inp_DataArray& data) {
  for (long long row = 0; row < data.Rows(); ++row)
    for (int col = 0; col < data.Cols(row); ++col)
      if (data.HasValue(row, col)) return true;
  return false;
}

bool isLacking(const inp_Keyword& keyword, const Needs& needs) {
  if (needs.need == Need::Lines) return !hasAnyLine(keyword.Data());
  bool any = false;
  bool all = true;
  for (std::string_view rest = needs.parameters; !rest.empty();) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    const bool has = keyword.HasParameter(cow_String(rest.substr(0, end)));
    any = any || has;
    all = all && has;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return needs.need == Need::Any ? !any : !all;
}

bool isWhole(const inp_DataArray& data, long long row, int col) {
  return col < data.Cols(row) && data.HasValue(row, col) && data.IsInteger(row, col);
}

} // namespace

void inpS_StepVisitor::CheckOptions(const inp_Keyword& keyword) {
  for (const Needs& one : kNeeds)
    if (one.keyword == keyword.Kind() && isLacking(keyword, one))
      Warning(keyword, "*" + keyword.Name() + " tells " + one.text + kKept);
  for (const Positive& one : kPositive) {
    const inp_Item* item = one.keyword == keyword.Kind() ? keyword.Find(one.parameter) : nullptr;
    if (item && item->IsNumber() && item->AsDouble() <= 0)
      AddWarning(inp_Utils::MessageAtParameter(keyword, one.parameter,
                                               "The value " + item->AsString() +
                                                   " is not greater than zero" + kKept));
  }
  CheckRuns(keyword);
  if (keyword.Kind() == inp_KwVariableMassScaling && keyword.StringOf("type", "") == "ROLLING" &&
      isLacking(keyword,
                {keyword.Kind(), Need::All, "crosssectionnodes extrudedlength feedrate", ""}))
    Warning(keyword,
            cow_String("TYPE=ROLLING goes by CROSS SECTION NODES, EXTRUDED LENGTH and FEED "
                       "RATE, and not all of them are given") +
                kKept);
  if (keyword.Kind() != inp_KwSelectCyclicSymmetryModes) return;
  const inp_Item* least = keyword.Find("nmin");
  const inp_Item* most = keyword.Find("nmax");
  if (least && most && least->IsNumber() && most->IsNumber() && least->AsInt() > most->AsInt())
    AddWarning(inp_Utils::MessageAtParameter(keyword, "nmin",
                                             cow_String("NMIN is greater than NMAX") + kKept));
}

void inpS_StepVisitor::CheckRuns(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  const bool isOfFrequencies = keyword.StringOf("definition", "") == "FREQUENCY RANGE";
  for (const Run& one : kRuns) {
    if (one.keyword != keyword.Kind() || isOfFrequencies) continue;
    if (one.only && !inpS_saysYes(keyword, one.only)) continue;
    for (long long row = 0; row < data.Rows(); ++row) {
      if (!isWhole(data, row, one.first)) continue;
      const long long first = data.AsInt64(row, one.first);
      const cow_String spelled = data.AsStringVerbatim(row, one.first);
      if (first < one.least)
        AddWarning(inp_Utils::MessageAtField(keyword, row, one.first,
                                             "The first one, " + spelled + ", is less than " +
                                                 std::to_string(one.least) + kKept));
      else if (isWhole(data, row, one.first + 1) && data.AsInt64(row, one.first + 1) != 0 &&
               data.AsInt64(row, one.first + 1) < first)
        AddWarning(inp_Utils::MessageAtField(keyword, row, one.first,
                                             "The first one, " + spelled +
                                                 ", is behind the last one" + kKept));
    }
  }
}
