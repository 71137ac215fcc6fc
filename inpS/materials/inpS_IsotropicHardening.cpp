#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_TableCheck.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "inpS/materials/inpS_MaterialVisitor.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

// Yield stress, plastic strain and the rate of its keyword, then the temperature when any row
// depends on it, then the field variables. The strain column stays even where it is not given: a
// later keyword of the material may give it.
constexpr int kRateColumn = 2;
constexpr int kStateColumn = 3; // temperature, field variables
// Of one material; each one's rows join those of all before it.
constexpr std::size_t kMostRates = 1000;

double rateOf(const inp_Keyword& keyword) {
  const inp_Item* rate = keyword.Find("rate");
  if (rate && !rate->IsNumber()) keyword.LeaveUnread("rate"); // told where it is read first
  return rate ? rate->AsDouble() : 0.0;
}

void appendRows(cow_List<double>& all, std::span<const double> rows, int columns,
                bool addTemperature) {
  for (std::size_t at = 0; at < rows.size(); at += static_cast<std::size_t>(columns)) {
    const auto row = rows.subspan(at, static_cast<std::size_t>(columns));
    all.insert(all.end(), row.begin(), row.begin() + kStateColumn);
    if (addTemperature) all.push_back(0.0);
    all.insert(all.end(), row.begin() + kStateColumn, row.end());
  }
}

} // namespace

inpS_KeywordDataTable inpS_MaterialVisitor::ReadIsotropicHardening(const inp_Keyword& keyword) {
  const inpS_Form& row = *inpS_FormTable::Instance().Find(eds_FormKind::PlasticIsotropic);
  inpS_KeywordDataTable table(keyword, static_cast<int>(row.columns.Fixed().size()), 0, true);
  table.Read();
  table.ReportUnread(*this);
  inpS_checkTable(keyword, table, row.columns.Fixed(), *this);
  table.RemoveTempColumnIfIndependent();
  const inp_Item* rate = keyword.Find("rate");
  if (rate && !rate->IsNumber() && keyword.LeaveUnread("rate"))
    AddError(inp_Utils::MessageAtParameter(
        keyword, "rate",
        inpS_messageText(inpS_app_InvalidParameterValue, {"RATE"}) + " It is read as 0."));
  if (auto tiny = inpS_tinyNumberMessage(keyword, "rate")) AddWarning(std::move(*tiny));
  table.InsertValueToColumn(rateOf(keyword), kRateColumn);
  return table;
}

KvoSimPosition inpS_MaterialVisitor::CreateIsotropicHardeningPlastic(KvoSimTransaction&,
                                                                     const inp_Keyword& keyword) {
  constexpr eds_RecordKind kind = eds_FormKind::PlasticIsotropic;
  const inpS_KeywordDataTable table = ReadIsotropicHardening(keyword);
  if (table.NumRows() == 0) return {};
  const Potential potential = CreatePotential(keyword);
  const KvoSimPosition property = m_owner.CreateDataRecord(kind);
  m_owner.Associate(eds_Member::Properties, property);
  m_ledger.Take(keyword, property);
  PlacePotential(potential, property);
  m_rates = {rateOf(keyword)};
  const inpS_Form& row = *inpS_FormTable::Instance().Find(kind);
  inpS_readParameters(keyword, row.parameters, property.DataRecord(), *this);
  KeepOthers(keyword, row, property,
             table.Unread().empty() ? cow_String() : inpS_dataLines(keyword, *this));
  const int tableKind = inpS_PropertyUtils::TableKindOf(kind);
  KvoSrvFsmFTable::CreateTable(
      property, tableKind, table.NumRows(), table.NumDependencies(), {},
      {"PlasticStrain", "PlasticStrainRate"}, tableKind, table.GetDataAsBuffer(), table.NumCols(),
      table.HasTemperatureColumn(), {"YieldStress", "PlasticStrain", "PlasticStrainRate"});
  CreateSuboptions(keyword, property);
  return property;
}

// False: the keyword cannot be converted; that is told.
bool inpS_MaterialVisitor::AppendIsotropicHardeningPlastic(KvoSimTransaction&,
                                                           const inp_Keyword& keyword,
                                                           const KvoSimPosition& property) {
  if (m_rates.size() >= kMostRates) {
    Warning(keyword, "A material has at most " + std::to_string(kMostRates) +
                         " *PLASTIC with isotropic hardening; the keyword is kept as text.");
    return false;
  }
  const inpS_KeywordDataTable added = ReadIsotropicHardening(keyword);
  if (added.NumRows() == 0) return false;
  KvoSrvFsmFTable table = property.GetFTable();
  if (added.NumDependencies() != table.NumberFieldVariables()) {
    Warning(keyword, "The number of field variables is another than that of the material's first "
                     "*PLASTIC; the keyword is kept as text.");
    return false;
  }
  const double rate = rateOf(keyword);
  if (std::ranges::find(m_rates, rate) != m_rates.end())
    Warning(keyword,
            "The material has a *PLASTIC of this rate already; its rows are joined to those.");
  // The record holds the parameters of the first keyword. Of this one they are kept as they stand,
  // and where it begins, when its rate does not tell.
  inpS_KeptPart part{table.NumOfRows()};
  if (!added.Unread().empty()) part.lines = inpS_dataLines(keyword, *this);
  KeepParts(keyword, property, std::move(part), rate == m_rates.back());
  m_ledger.Take(keyword, property);
  m_rates.push_back(rate);
  const bool temperature = table.IsTemperatureDependent() || added.HasTemperatureColumn();
  cow_List<double> rows;
  appendRows(rows, table.Values(), table.NumOfCols(),
             temperature && !table.IsTemperatureDependent());
  appendRows(rows, added.GetDataAsBuffer(), added.NumCols(),
             temperature && !added.HasTemperatureColumn());
  table.SetValues(table.NumOfRows() + added.NumRows(), rows,
                  kStateColumn + table.NumberFieldVariables() + (temperature ? 1 : 0), temperature);
  return true;
}
