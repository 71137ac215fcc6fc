#include "inpS/history/inpS_ValueLines.h"
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
  bool isAny = false; // of it and those behind, one value is enough
};
namespace Kind = eds_FormKind;
constexpr Row table[] = {{Kind::TemperatureField, 1, "value"},
                         {Kind::PredefinedField, 1, "value"},
                         {Kind::PressureStress, 1, "value"},
                         {Kind::MassFlowRate, 1, "value"},
                         {Kind::TransportVelocity, 1, "velocity"},
                         {Kind::FluidFlux, 1, "magnitude"},
                         {Kind::MotionRotation, 1, "magnitude"},
                         {Kind::SubstructureLoad, 2, "factor"},
                         {Kind::NodeRadiation, 3, "emissivity"},
                         {Kind::NodeFilm, 3, "coefficient"},
                         {Kind::IncidentWave, 1, "magnitude"},
                         {Kind::InitialTemperature, 1, "value"},
                         {Kind::InitialField, 1, "value"},
                         {Kind::InitialPressureStress, 1, "value"},
                         {Kind::InitialMassFlowRate, 1, "value"},
                         {Kind::InitialConcentration, 1, "value"},
                         {Kind::InitialAcousticPressure, 1, "value"},
                         {Kind::InitialRatio, 1, "value"},
                         {Kind::InitialPorePressure, 1, "value"},
                         {Kind::InitialSaturation, 1, "value"},
                         {Kind::InitialFluidPressure, 1, "value"},
                         {Kind::InitialElectricPotential, 1, "value"},
                         {Kind::InitialPorosity, 1, "value"},
                         {Kind::InitialStress, 1, "value", true},
                         {Kind::InitialStressGeostatic, 1, "value", true},
                         {Kind::InitialPlasticStrain, 1, "value", true},
                         {Kind::InitialHardening, 1, "value", true},
                         {Kind::InitialFluidVelocity, 1, "value", true},
                         {Kind::InitialReferenceCoordinates, 1, "value", true},
                         {Kind::AcousticFlowVelocity, 1, "value", true},
                         {Kind::ImperfectionModes, 1, "factor"},
                         {Kind::ImperfectionShape, 1, "value", true},
                         {Kind::InitialSpecificEnergy, 1, "value"},
                         {Kind::InitialSpud, 1, "value"},
                         {Kind::InitialSpudPreload, 1, "value"},
                         {Kind::InitialRelativeDensity, 1, "value"},
                         {Kind::InitialVolumeFraction, 2, "value"},
                         {Kind::InitialFluidDensity, 1, "value"},
                         {Kind::InitialFluidTemperature, 1, "value"},
                         {Kind::InitialFluidEnergy, 1, "value"},
                         {Kind::InitialTurbulence, 1, "value"}};

// Of the two of an axis, behind a magnitude; what is not given is 0.
template <class Value> bool isSamePoint(const Value& valueAt) {
  constexpr int first = 2;
  return valueAt(first) == valueAt(first + 3) && valueAt(first + 1) == valueAt(first + 4) &&
         valueAt(first + 2) == valueAt(first + 5);
}

} // namespace

inpS_ValueLines::inpS_ValueLines(eds_RecordKind form, int dimensions)
    : m_isOfModes(form == Kind::ImperfectionModes),
      m_hasAxis(form == Kind::MotionRotation && dimensions == 3) {
  const Row& row = *std::ranges::find(table, form, &Row::form);
  m_column = row.column;
  m_what = row.what;
  m_isAny = row.isAny;
  m_hasProperty = form == Kind::NodeFilm;
}

// Where the form has no such parameter, it gives nothing.
bool inpS_ValueLines::Has(const inp_Keyword& keyword, eds_RecordKind kind) {
  if (std::ranges::find(table, kind, &Row::form) == std::end(table)) return false;
  const inpS_Form& form = *inpS_FormTable::Instance().Find(kind);
  const bool isOfUser = form.Binds("user") && inpS_saysYes(keyword, "user");
  const bool isOfFile = form.Binds("file") && keyword.HasParameter("file");
  return !isOfUser && (!isOfFile || kind == Kind::ImperfectionModes);
}

bool inpS_ValueLines::IsSound(const inp_ColumnPiece& piece, Words) {
  if (m_isOfModes &&
      !inp_areWithin(piece.columns[0].ints.first(piece.count), 1, std::numeric_limits<int>::max()))
    return false;
  const auto at = [&](int col, std::size_t n) {
    const double value = piece.columns[static_cast<std::size_t>(col)].reals[n];
    return inp_isBlankReal(value) ? 0 : value;
  };
  for (std::size_t n = 0; m_hasAxis && n < piece.count; ++n)
    if (isSamePoint([&](int col) { return at(col, n); })) return false;
  const auto column = static_cast<std::size_t>(m_column);
  return std::ranges::none_of(piece.columns[column].reals.first(piece.count), inp_isBlankReal);
}

std::optional<inpS_LineFault> inpS_ValueLines::FaultOf(const inpS_LineView& line) {
  if (m_isOfModes && line.slots[0] < 1)
    return inpS_LineFault{0, "Mode " + line.Text(0) + " is none: modes are numbered from 1 on."};
  if (m_hasAxis && isSamePoint([&](int col) { return line.Real(col); }))
    return inpS_LineFault{-1, "The two points of the axis are the same."};
  const auto behind = static_cast<std::size_t>(m_column) + 1;
  if (line.Has(m_column) || (m_hasProperty && line.slots[behind] != inp_blankInt)) return {};
  for (int col = m_column; m_isAny && col < line.data.Cols(line.row); ++col)
    if (line.Has(col)) return {};
  return inpS_LineFault{-1, "The line gives no " + m_what + ", which is 0.", false, false};
}
