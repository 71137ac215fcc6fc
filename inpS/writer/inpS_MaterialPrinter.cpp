#include "inpS/writer/inpS_MaterialPrinter.h"
#include "base/utl_Controls.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/keywords/inpS_QuotedName.h"
#include "inpS/keywords/inpS_RecordParameters.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include "inpS/writer/inpS_PropertyWords.h"
#include "inpS/writer/inpS_RowLayout.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

constexpr int kRateColumn = 2; // of isotropic hardening, behind yield stress and plastic strain

// A table of another program may lack them.
bool hasRates(const KvoSrvFsmFTable& table) {
  return !table.IsNull() && table.NumOfCols() > kRateColumn;
}

std::string_view nameOf(inp_KeywordEnm keyword) {
  return inp_KeywordTable::Instance().Row(keyword)->name;
}

void printDependencies(utl_Stream& out, const KvoSrvFsmFTable& table) {
  if (!table.IsNull() && table.NumberFieldVariables() > 0)
    out << ", DEPENDENCIES=" << table.NumberFieldVariables();
}

// The record's fields as parameters, for what has no row of its own.
void printPlain(utl_Stream& out, inp_KeywordEnm keyword, const KvoSimPosition& position) {
  out << '*' << nameOf(keyword);
  inpS_printParameters(out, inpS_bindParameters(keyword, position.Object().RecordKind()),
                       position.DataRecord());
}

} // namespace

void inpS_MaterialPrinter::PrintMaterials(const KvoObjModel& model) {
  for (const KvoSimPosition& material : model.Position().FollowMap(eds_Member::Materials))
    PrintNamed(material, inp_KwMaterial);
}

void inpS_MaterialPrinter::PrintGasketBehaviors(const KvoObjModel& model) {
  for (const KvoSimPosition& gasket : model.Position().FollowMap(eds_Member::GasketBehaviors))
    PrintNamed(gasket, inp_KwGasketBehavior);
}

void inpS_MaterialPrinter::PrintPhysicalConstants(const KvoObjModel& model) {
  const KvoSimPosition constants = model.Position().Follow(eds_Member::PhysicalConstants);
  if (constants.IsNull()) return;
  printPlain(m_out, inp_KwPhysicalConstants, constants);
  const int others = eds_formOf(eds_FormKind::PhysicalConstants)->othersField;
  utl_printLines(m_out, constants.DataRecord().GetString(others));
  m_out << '\n' << m_parts.FirstOf(constants).lines;
}

void inpS_MaterialPrinter::PrintNamed(const KvoSimPosition& owner, inp_KeywordEnm keyword) {
  const inpS_OwnedProperties owned(owner);
  m_potentials = owned.potentials;
  printPlain(m_out, keyword, owner);
  m_out << m_parts.FirstOf(owner).parameters << '\n' << m_parts.FirstOf(owner).lines;
  m_texts(owner, owner);
  for (const KvoSimPosition& property : owned.properties) {
    PrintProperty(property);
    m_texts(owner, property);
  }
  m_texts(owner, {});
}

void inpS_MaterialPrinter::PrintProperty(const KvoSimPosition& property) {
  const inpS_Form* behavior = inpS_FormTable::Instance().Find(property.Object().RecordKind());
  if (!behavior) return; // of a newer version's kind: nothing is known of it
  if (property.IsA(eds_FormKind::PlasticIsotropic) && hasRates(property.GetFTable())) {
    PrintIsotropicHardening(property, *behavior);
  } else {
    const inpS_KeptPart& part = m_parts.FirstOf(property);
    PrintKeyword(property, *behavior);
    printDependencies(m_out, property.GetFTable());
    m_out << part.parameters << '\n';
    if (part.lines.empty())
      PrintTable(property);
    else
      m_out << part.lines;
    if (behavior->info->textField >= 0)
      utl_printLines(m_out, property.DataRecord().GetString(behavior->info->textField));
  }
  PrintSuboptions(property);
}

void inpS_MaterialPrinter::PrintKeyword(const KvoSimPosition& property, const inpS_Form& behavior) {
  const KvoSimDataRecord record = property.DataRecord();
  const int others = behavior.info->othersField;
  inpS_printVariant(m_out, behavior,
                    others >= 0 ? record.ReturnString(others)
                                : m_parts.FirstOf(property).parameters);
  inpS_printOtherParameters(m_out, behavior, record);
}

// Or the name of the distribution that gives the values.
void inpS_MaterialPrinter::PrintTable(const KvoSimPosition& property) {
  const inpS_Form* form = inpS_FormTable::Instance().Find(property.Object().RecordKind());
  if (!form) return;
  if (form->HasTable() && property.GetFTable().IsNull()) {
    const KvoSimPosition values = property.Follow(eds_Member::ValuesFrom);
    if (!values.IsNull()) m_out << inpS_quoted(values.Name()) << '\n';
    return;
  }
  inpS_printRows(m_out, *form, property);
}

// One keyword for each run of rows of one rate, and for each that keeps something of its own.
void inpS_MaterialPrinter::PrintIsotropicHardening(const KvoSimPosition& property,
                                                   const inpS_Form& behavior) {
  const KvoSrvFsmFTable table = property.GetFTable();
  const int columns = table.NumOfCols();
  const cow_List<double> values = table.Values();
  const long long rows = table.NumOfRows();
  const auto at = [&](long long row) { return values.begin() + row * columns; };
  const auto parts = m_parts.Of(property);
  auto next = parts.begin();
  for (long long row = 0; row < rows;) {
    static const inpS_KeptPart none;
    while (next != parts.end() && next->firstRow < row) ++next; // of another program
    const inpS_KeptPart& part = next != parts.end() && next->firstRow == row ? *next++ : none;
    const double rate = at(row)[kRateColumn];
    const long long end = next == parts.end() ? rows : std::min(rows, next->firstRow);
    inpS_printVariant(m_out, behavior);
    if (row == 0) inpS_printOtherParameters(m_out, behavior, property.DataRecord());
    if (rate != 0.0) m_out << ", RATE=" << rate;
    printDependencies(m_out, table);
    m_out << part.parameters << '\n' << part.lines;
    cow_List<double> run;
    do { // the first in any case: a number that is none equals nothing
      run.insert(run.end(), at(row), at(row) + kRateColumn);
      run.insert(run.end(), at(row) + kRateColumn + 1, at(row) + columns);
      ++row;
    } while (row < end && at(row)[kRateColumn] == rate);
    if (part.lines.empty()) PrintRows(table, run);
  }
}

// Of one keyword, without their rate.
void inpS_MaterialPrinter::PrintRows(const KvoSrvFsmFTable& table, const cow_List<double>& run) {
  const bool lacksTemperature = table.NumberFieldVariables() > 0 && !table.IsTemperatureDependent();
  const inpS_RowLayout layout(table.NumOfCols() - 1, lacksTemperature ? kRateColumn : -1);
  inpS_printFTable(m_out, {&layout, run}, table);
}

void inpS_MaterialPrinter::PrintSuboptions(const KvoSimPosition& property) {
  const inpS_PropertySuboptions suboptions = inpS_suboptionsOf(property, m_potentials);
  for (const inp_KeywordEnm flag : suboptions.flags) m_out << '*' << nameOf(flag) << '\n';
  m_texts(property, property);
  for (const KvoSimPosition& suboption : suboptions.properties) {
    PrintProperty(suboption);
    m_texts(property, suboption);
  }
  m_texts(property, {});
}
