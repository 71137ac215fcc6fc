#include "inpS/history/inpS_ValueLines.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_BulkColumns.h"
#include <algorithm>
#include <limits>

namespace {

struct Row {
  eds_RecordKind form;
  int column;
  const char* what;
  enum class Kind : unsigned char {
    One,
    Any,     // of it and those behind, one value is enough
    Fraction // from 0 to 1
  } kind = Kind::One;
};
namespace Kind = eds_FormKind;
constexpr auto any = Row::Kind::Any;
constexpr auto fraction = Row::Kind::Fraction;
constexpr Row table[] = {{Kind::TemperatureField, 1, "value"},
                         {Kind::PredefinedField, 1, "value"},
                         {Kind::PressureStress, 1, "value"},
                         {Kind::MassFlowRate, 1, "value"},
                         {Kind::TransportVelocity, 1, "velocity"},
                         {Kind::FluidFlux, 1, "magnitude"},
                         {Kind::MotionRotation, 1, "magnitude"},
                         {Kind::SubstructureLoad, 2, "factor"},
                         {Kind::NodeFilm, 3, "coefficient", any}, // or the name of its property
                         {Kind::NodeRadiation, 3, "emissivity"},
                         {Kind::IncidentWave, 1, "magnitude"},
                         {Kind::InitialTemperature, 1, "value"},
                         {Kind::InitialField, 1, "value"},
                         {Kind::InitialPressureStress, 1, "value"},
                         {Kind::InitialMassFlowRate, 1, "value"},
                         {Kind::InitialConcentration, 1, "value"},
                         {Kind::InitialAcousticPressure, 1, "value"},
                         {Kind::InitialRatio, 1, "value"},
                         {Kind::InitialPorePressure, 1, "value"},
                         {Kind::InitialSaturation, 1, "value", fraction},
                         {Kind::InitialFluidPressure, 1, "value"},
                         {Kind::InitialElectricPotential, 1, "value"},
                         {Kind::InitialPorosity, 1, "value", fraction},
                         {Kind::InitialStress, 1, "value", any},
                         {Kind::InitialStressGeostatic, 1, "value", any},
                         {Kind::InitialPlasticStrain, 1, "value", any},
                         {Kind::InitialHardening, 1, "value", any},
                         {Kind::InitialStressAtPoints, 2, "value", any},
                         {Kind::InitialPlasticStrainAtPoints, 2, "value", any},
                         {Kind::InitialHardeningAtPoints, 2, "value", any},
                         {Kind::InitialStressOfRebar, 2, "value"},
                         {Kind::InitialPlasticStrainOfRebar, 2, "value"},
                         {Kind::InitialHardeningOfRebar, 2, "value", any},
                         {Kind::InitialDamage, 1, "value", any},
                         {Kind::InitialDamageAtPoints, 2, "value", any},
                         {Kind::InitialDamageOfRebar, 2, "value", any},
                         {Kind::InitialGap, 1, "value"},
                         {Kind::InitialRotatingVelocity, 1, "value"},
                         {Kind::InitialEnrichment, 3, "distance from the crack"},
                         {Kind::InitialActivation, 2, "value", fraction},
                         {Kind::InitialFluidVelocity, 1, "value", any},
                         {Kind::InitialReferenceCoordinates, 1, "value", any},
                         {Kind::AcousticFlowVelocity, 1, "value", any},
                         {Kind::ImperfectionModes, 1, "factor"},
                         {Kind::ImperfectionShape, 1, "value", any},
                         {Kind::InitialSpecificEnergy, 1, "value"},
                         {Kind::InitialSpud, 1, "value"},
                         {Kind::InitialSpudPreload, 1, "value"},
                         {Kind::InitialRelativeDensity, 1, "value"},
                         {Kind::InitialVolumeFraction, 2, "value", fraction},
                         {Kind::InitialFluidDensity, 1, "value"},
                         {Kind::InitialFluidTemperature, 1, "value"},
                         {Kind::InitialFluidEnergy, 1, "value"},
                         {Kind::InitialTurbulence, 1, "value"}};

// What is numbered from 1 on.
struct Numbered {
  eds_RecordKind form;
  int column;
  const char* one;
  const char* all;
};
constexpr Numbered numbered[] = {
    {Kind::ImperfectionModes, 0, "Mode", "modes"},
    {Kind::InitialEnrichment, 1, "Node", "the nodes of an element"},
    {Kind::InitialStressAtPoints, 1, "Section point", "section points"},
    {Kind::InitialPlasticStrainAtPoints, 1, "Section point", "section points"},
    {Kind::InitialHardeningAtPoints, 1, "Section point", "section points"},
    {Kind::InitialDamageAtPoints, 1, "Section point", "section points"}};

// Of the two of an axis, behind a magnitude; what is not given is 0.
template <class Value> bool isSamePoint(const Value& valueAt) {
  constexpr int first = 2;
  return valueAt(first) == valueAt(first + 3) && valueAt(first + 1) == valueAt(first + 4) &&
         valueAt(first + 2) == valueAt(first + 5);
}

bool isFraction(double value) {
  return value >= 0 && value <= 1;
}

} // namespace

inpS_ValueLines::inpS_ValueLines(eds_RecordKind form, int dimensions)
    : m_hasAxis(form == Kind::MotionRotation && dimensions == 3) {
  const Row& row = *std::ranges::find(table, form, &Row::form);
  m_column = row.column;
  m_what = row.what;
  m_isAny = row.kind == any;
  m_isFraction = row.kind == fraction;
  if (const auto known = std::ranges::find(numbered, form, &Numbered::form);
      known != std::end(numbered)) {
    m_numbers = known->column;
    m_one = known->one;
    m_all = known->all;
  }
}

// Where the form has no such parameter, it gives nothing.
bool inpS_ValueLines::Has(const inp_Keyword& keyword, eds_RecordKind kind) {
  if (std::ranges::find(table, kind, &Row::form) == std::end(table)) return false;
  const inpS_Form& form = *inpS_FormTable::Instance().Find(kind);
  const bool isOfUser = form.Binds("user") && inpS_saysYes(keyword, "user");
  const bool isOfFile = form.Binds("file") && keyword.HasParameter("file");
  return !isOfUser && (!isOfFile || kind == Kind::ImperfectionModes);
}

inpS_LoadedElements::Type inpS_ValueLines::TypeOfFewer(int target, int nodes) {
  if (target == inp_blankInt || target == inpS_noTarget) return nullptr;
  const auto hasFewer = [=](inpS_LoadedElements::Type type) {
    return type && type->maxNodes < nodes;
  };
  if (target >= 0) {
    const int type = m_elements->TypeOf(target);
    const auto own = type < 0 ? nullptr : m_elements->Types()[static_cast<std::size_t>(type)];
    return hasFewer(own) ? own : nullptr;
  }
  const auto [types, isNew] = m_sets.try_emplace(target);
  if (isNew) types->second = m_elements->TypesOf(m_record, static_cast<std::size_t>(-1 - target));
  const auto found = std::ranges::find_if(types->second, hasFewer);
  return found == types->second.end() ? nullptr : *found;
}

bool inpS_ValueLines::IsSound(const inp_ColumnPiece& piece, Words) {
  if (m_numbers >= 0 &&
      !inp_areWithin(piece.columns[static_cast<std::size_t>(m_numbers)].ints.first(piece.count), 1,
                     std::numeric_limits<int>::max()))
    return false;
  for (std::size_t n = 0; m_elements && n < piece.count; ++n)
    if (TypeOfFewer(piece.columns[0].ints[n],
                    piece.columns[static_cast<std::size_t>(m_numbers)].ints[n]))
      return false;
  const auto at = [&](int col, std::size_t n) {
    const double value = piece.columns[static_cast<std::size_t>(col)].reals[n];
    return inp_isBlankReal(value) ? 0 : value;
  };
  for (std::size_t n = 0; m_hasAxis && n < piece.count; ++n)
    if (isSamePoint([&](int col) { return at(col, n); })) return false;
  const auto values = piece.columns[static_cast<std::size_t>(m_column)].reals.first(piece.count);
  if (m_isFraction) return std::ranges::all_of(values, isFraction); // and none is blank
  return std::ranges::none_of(values, inp_isBlankReal);
}

std::optional<inpS_LineFault> inpS_ValueLines::FaultOf(const inpS_LineView& line) {
  if (m_numbers >= 0 && line.slots[static_cast<std::size_t>(m_numbers)] < 1)
    return inpS_LineFault{m_numbers, m_one + " " + line.Text(m_numbers) + " is none: " + m_all +
                                         " are numbered from 1 on."};
  if (m_elements)
    if (const auto type =
            TypeOfFewer(line.slots[0], line.slots[static_cast<std::size_t>(m_numbers)]))
      return inpS_LineFault{m_numbers, "Elements of type " + cow_String(type->name) + " have " +
                                           std::to_string(type->maxNodes) + " nodes, and no node " +
                                           line.Text(m_numbers) + "."};
  if (m_hasAxis && isSamePoint([&](int col) { return line.Real(col); }))
    return inpS_LineFault{-1, "The two points of the axis are the same."};
  if (line.Has(m_column)) {
    if (!m_isFraction || isFraction(line.Real(m_column))) return {};
    return inpS_LineFault{m_column,
                          line.Text(m_column) + " is no fraction from 0 to 1. It is kept as given.",
                          false, false};
  }
  for (int col = m_column; m_isAny && col < line.data.Cols(line.row); ++col)
    if (line.Has(col)) return {};
  return inpS_LineFault{-1, "The line gives no " + m_what + ", which is 0.", false, false};
}
