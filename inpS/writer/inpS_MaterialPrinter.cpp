#include "inpS/writer/inpS_MaterialPrinter.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSrvFsmFTable.h"
#include "inpS/materials/inpS_Behavior.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

constexpr int kRateColumn = 2; // of isotropic hardening, behind yield stress and plastic strain

std::string_view nameOf(inp_KeywordEnm keyword) {
  return inp_KeywordTable::Instance().Row(keyword)->name;
}

void printDependencies(utl_Stream& out, const KvoSrvFsmFTable& table) {
  if (!table.IsNull() && table.FieldVariables() > 0)
    out << ", DEPENDENCIES=" << table.FieldVariables();
}

// The record's fields as parameters, for what has no row of its own.
void printPlain(utl_Stream& out, inp_KeywordEnm keyword, const KvoSimPosition& position) {
  out << '*' << nameOf(keyword);
  inpS_printParameters(out, inpS_bindParameters(keyword, position.Object().RecordKind()),
                       position.DataRecord());
}

// Rows of numbers, eight to a line. A table that lost its temperature gets a column of zeros where
// field variables stand behind it.
void printRows(utl_Stream& out, std::span<const double> values, int columns, int zeroAt) {
  cow_List<double> row;
  for (std::size_t at = 0; at < values.size(); at += static_cast<std::size_t>(columns)) {
    const auto given = values.subspan(at, static_cast<std::size_t>(columns));
    row.assign(given.begin(), given.end());
    if (zeroAt >= 0) row.insert(row.begin() + zeroAt, 0.0);
    const int width = static_cast<int>(row.size());
    for (int first = 0; first < width; first += 8) {
      inpS_printArray(out, row.data() + first, std::min(8, width - first));
      out << (first + 8 < width ? ",\n" : "\n");
    }
  }
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
  m_out << '\n';
}

void inpS_MaterialPrinter::PrintNamed(const KvoSimPosition& owner, inp_KeywordEnm keyword) {
  m_owner = owner;
  printPlain(m_out, keyword, owner);
  m_out << '\n';
  for (const KvoSimPosition& property : owner.GetVector(eds_Member::Properties))
    if (!property.IsA(eds_RecordKind::Potential)) PrintProperty(property);
  m_texts(owner);
}

void inpS_MaterialPrinter::PrintProperty(const KvoSimPosition& property) {
  const inpS_Behavior* behavior =
      inpS_BehaviorTable::Instance().Find(property.Object().RecordKind());
  if (!behavior) return; // of a newer version's kind: nothing is known of it
  if (property.IsA(eds_RecordKind::PlasticIsotropic)) {
    PrintIsotropicHardening(property, *behavior);
  } else {
    PrintKeyword(property, *behavior);
    printDependencies(m_out, property.GetFTable());
    m_out << '\n';
    PrintTable(property);
    if (behavior->linesField >= 0) m_out << property.DataRecord().GetString(behavior->linesField);
  }
  PrintSuboptions(property);
}

void inpS_MaterialPrinter::PrintKeyword(const KvoSimPosition& property,
                                        const inpS_Behavior& behavior) {
  const KvoSimDataRecord record = property.DataRecord();
  m_out << '*' << nameOf(behavior.keyword);
  for (const inpS_Behavior::Selector& selector : behavior.selectors) {
    if (!selector.IsPrinted()) continue;
    m_out << ", " << selector.name;
    if (!selector.text.empty()) m_out << '=' << selector.text;
  }
  inpS_printParameters(m_out, behavior.parameters, record);
  if (behavior.othersField >= 0) m_out << record.GetString(behavior.othersField);
}

void inpS_MaterialPrinter::PrintTable(const KvoSimPosition& property) {
  const KvoSrvFsmFTable table = property.GetFTable();
  if (table.IsNull()) return;
  const inpS_Behavior& behavior =
      *inpS_BehaviorTable::Instance().Find(property.Object().RecordKind());
  const int variables = table.FieldVariables();
  const bool lacksTemperature = behavior.HasTemperature() && !table.IsTemperatureDependent();
  printRows(m_out, table.Values(), table.Columns(),
            lacksTemperature && variables > 0 ? table.Columns() - variables : -1);
}

// One keyword for each run of rows of one rate.
void inpS_MaterialPrinter::PrintIsotropicHardening(const KvoSimPosition& property,
                                                   const inpS_Behavior& behavior) {
  const KvoSrvFsmFTable table = property.GetFTable();
  const int columns = table.Columns();
  cow_List<double> values = table.Values();
  const auto rows = static_cast<std::size_t>(table.Rows());
  const auto width = static_cast<std::size_t>(columns);
  const auto rateOf = [&](std::size_t row) { return values[row * width + kRateColumn]; };
  const int variables = table.FieldVariables();
  const bool lacksTemperature = variables > 0 && !table.IsTemperatureDependent();
  for (std::size_t row = 0; row < rows;) {
    const std::size_t first = row;
    cow_List<double> run;
    for (; row < rows && rateOf(row) == rateOf(first); ++row) {
      const auto at = values.begin() + static_cast<std::ptrdiff_t>(row * width);
      run.insert(run.end(), at, at + kRateColumn);
      run.insert(run.end(), at + kRateColumn + 1, at + columns);
    }
    PrintKeyword(property, behavior);
    if (rateOf(first) != 0.0) m_out << ", RATE=" << rateOf(first);
    printDependencies(m_out, table);
    m_out << '\n';
    printRows(m_out, run, columns - 1, lacksTemperature ? kRateColumn : -1);
  }
}

void inpS_MaterialPrinter::PrintSuboptions(const KvoSimPosition& property) {
  const eds_RecordKind kind = property.Object().RecordKind();
  for (const inp_KeywordEnm flag : {inp_KwNoCompression, inp_KwNoTension}) {
    const int field = inpS_flagField(kind, flag);
    if (field >= 0 && property.DataRecord().GetBool(field)) m_out << '*' << nameOf(flag) << '\n';
  }
  // The material's potential stood under the keyword of this property.
  for (const KvoSimPosition& potential : m_owner.GetVector(eds_Member::Properties)) {
    if (!potential.IsA(eds_RecordKind::Potential)) continue;
    if (potential.DataRecord().GetReference(eds_Potential_GivenWith) == property)
      PrintProperty(potential);
  }
  for (const KvoSimPosition& suboption : property.GetVector(eds_Member::Suboptions))
    PrintProperty(suboption);
  m_texts(property);
}
