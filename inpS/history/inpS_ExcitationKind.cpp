#include "inpS/history/inpS_ExcitationKind.h"
#include "base/utl_Assert.h"
#include "database/schema/eds_FormKind.h"
#include "database/schema/eds_Schema.h"
#include <algorithm>
#include <bit>
#include <unordered_map>

namespace {

using Kind = inpS_ExcitationKind;
using Key = Kind::Key;

int numberOf(std::string_view keyword) {
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols(eds_Vocabulary::ExcitationKind))
    if (symbol.name == keyword) return symbol.number;
  utl_assertionFailed("the vocabulary ExcitationKind has the keyword");
}

int fieldOf(const eds_FormInfo& info, std::string_view name) {
  const auto item = std::ranges::find(info.parameters, name, &eds_FormItem::name);
  return item == info.parameters.end() ? -1 : item->alternatives.front().field;
}

// Which columns they are follows from their types: the target is the first, a label the next one of
// words, degrees are integers, the value is the magnitude or else the first real number.
void findColumns(Kind& kind) {
  const auto& items = kind.info->columnItems;
  for (int c = 0; c < static_cast<int>(items.size()); ++c) {
    const eds_FormType type = items[static_cast<std::size_t>(c)].alternatives.front().type;
    if (c == 0)
      kind.target = 0;
    else if (type == eds_FormType::Int && kind.first < 0)
      kind.first = c;
    else if (type == eds_FormType::Int && kind.last < 0)
      kind.last = c;
    else if (type == eds_FormType::Text && kind.label < 0 &&
             (kind.key == Key::Label || kind.key == Key::Words))
      kind.label = c; // and not the name of a property
    else if (type == eds_FormType::Real &&
             (kind.value < 0 || items[static_cast<std::size_t>(c)].name == "magnitude"))
      kind.value = c;
  }
}

struct AmplitudeName {
  std::string_view name, parameter;
  bool isOfMagnitude;
};
constexpr AmplitudeName amplitudeNames[] = {
    {"amplitude", "AMPLITUDE", true},
    {"pressure_amplitude", "PRESSURE AMPLITUDE", true},
    {"acceleration_amplitude", "ACCELERATION AMPLITUDE", true},
    {"film_amplitude", "FILM AMPLITUDE", false}};

constexpr uint64_t degrees(std::initializer_list<int> all) {
  uint64_t bits = 0;
  for (const int degree : all) bits |= inpS_Degrees::Bit(degree);
  return bits;
}

constexpr uint64_t translations = degrees({1, 2, 3});
constexpr uint64_t rotations = degrees({4, 5, 6});
constexpr int firstTemperature = 11;

} // namespace

const cow_List<Kind>& inpS_ExcitationKind::All() {
  static const cow_List<Kind> all = [] {
    cow_List<Kind> kinds;
    const auto add = [&](eds_RecordKind form, std::string_view keyword, Key key,
                         std::string_view field, Twice twice, Lasting lasting) {
      Kind& kind = kinds.emplace_back();
      kind.form = form;
      kind.number = numberOf(keyword);
      kind.key = key;
      kind.field = field;
      kind.twice = twice;
      kind.lasting = lasting;
      kind.info = eds_formOf(form);
      kind.op = fieldOf(*kind.info, "op");
      for (const auto& [name, parameter, isOfMagnitude] : amplitudeNames)
        if (const int field = fieldOf(*kind.info, name); field >= 0)
          kind.amplitudes.push_back({parameter, field, isOfMagnitude});
      kind.imaginary = fieldOf(*kind.info, "imaginary");
      kind.fixed = fieldOf(*kind.info, "fixed");
      kind.type = fieldOf(*kind.info, "type");
      kind.variable = fieldOf(*kind.info, "variable");
      kind.variables = kind.variable < 0 ? -1 : fieldOf(*kind.info, "number");
      kind.remove = fieldOf(*kind.info, "remove");
      kind.user = fieldOf(*kind.info, "user");
      kind.submodel = fieldOf(*kind.info, "submodel");
      kind.file = fieldOf(*kind.info, "file");
      kind.loadCase = fieldOf(*kind.info, "load_case");
      kind.cyclicMode = fieldOf(*kind.info, "cyclic_mode");
      kind.degree = fieldOf(*kind.info, "dof");
      kind.baseName = fieldOf(*kind.info, "base_name");
      kind.scale = fieldOf(*kind.info, "scale");
      kind.globalStep = kind.submodel < 0 ? -1 : fieldOf(*kind.info, "step");
      kind.globalIncrement = kind.submodel < 0 ? -1 : fieldOf(*kind.info, "inc");
      kind.timeScale = fieldOf(*kind.info, "time_scale");
      kind.property = fieldOf(*kind.info, "property");
      kind.isValueOptional =
          form == eds_FormKind::Impedance || form == eds_FormKind::SurfaceImpedance;
      if (form == eds_FormKind::FluidBoundaryPhysical) {
        kind.lineSurface = eds_formField(eds_FormKind::FluidRegion, "surface");
        kind.lineInstance = eds_formField(eds_FormKind::FluidRegion, "surface_instance");
      }
      findColumns(kind);
    };
#define INPS_EXCITATION(Form, Keyword, KeyOf, Field, GivenTwice, Lasts)                            \
  add(eds_FormKind::Form, Keyword, Key::KeyOf, Field, Twice::GivenTwice, Lasting::Lasts);
#include "inpS/history/inpS_excitations.def"
    return kinds;
  }();
  return all;
}

const Kind* inpS_ExcitationKind::Of(eds_RecordKind form) {
  static const auto places = [] {
    std::unordered_map<eds_RecordKind, const Kind*> byForm;
    for (const Kind& kind : All()) byForm.emplace(kind.form, &kind);
    return byForm;
  }();
  const auto found = places.find(form);
  return found == places.end() ? nullptr : found->second;
}

long long inpS_ExcitationKind::VariableOf(const KvoSimDataRecord& record) const {
  if (variable < 0) return 0;
  return record.IsMemberNull(variable) ? 1 : record.GetInt64(variable);
}

// Decided here: NUMBER is about a routine alone, and about the variable named and those behind it.
long long inpS_ExcitationKind::VariablesOf(const KvoSimDataRecord& record) const {
  if (variables < 0 || record.IsMemberNull(variables) || !record.GetBool(user)) return 1;
  return std::clamp<long long>(record.GetInt64(variables), 1, kMostVariables);
}

cow_String inpS_ExcitationKind::PartOf(const KvoSimDataRecord& record) const {
  cow_String part = imaginary >= 0 && record.GetBool(imaginary) ? "i" : "r";
  if (loadCase >= 0 && !record.IsMemberNull(loadCase))
    part += std::to_string(record.GetInt64(loadCase));
  if (cyclicMode >= 0 && !record.IsMemberNull(cyclicMode))
    part += "c" + std::to_string(record.GetInt64(cyclicMode));
  if (degree >= 0) part += "," + std::to_string(record.GetInt64(degree));
  if (degree >= 0 && baseName >= 0) part += "," + record.ReturnString(baseName);
  if (form == eds_FormKind::MotionRotation) part += "R"; // beside a translation
  // Surfaces, elements and nodes have numbers of their own.
  using Type = inpS_NamedTargets::Type;
  const auto isOf = [&](eds_RecordKind own, Type type) {
    return form == own || (named && namedType == type);
  };
  if (isOf(eds_FormKind::FluidBoundarySurface, Type::Surface)) part += "S";
  if (isOf(eds_FormKind::FluidBoundaryElement, Type::Element)) part += "E";
  if (form == eds_FormKind::FluidBoundaryPhysical) part += "P";
  return part + "\n";
}

// Fluxes are of the temperature, the eleventh degree; currents and charges of the potential, the
// ninth; flows of the pore pressure, the eighth. Decided here: of another analysis it is its
// displacements and rotations, as at the edge of a submodel.
uint64_t inpS_ExcitationKind::BlankDegrees(const KvoSimDataRecord& record) const {
  namespace Form = eds_FormKind;
  if (form == Form::Boundary && (record.GetBool(submodel) || !record.GetString(file).empty()))
    return inpS_Degrees::kTurned;
  if (form == Form::ConcentratedFlux) return inpS_Degrees::Bit(firstTemperature);
  if (form == Form::ConcentratedCharge || form == Form::ConcentratedCurrent)
    return inpS_Degrees::Bit(9);
  return form == Form::ConcentratedFlow ? inpS_Degrees::Bit(8) : 0;
}

KvoSimPosition inpS_ExcitationKind::AmplitudeOf(const KvoSimDataRecord& record) const {
  for (const Amplitude& one : amplitudes)
    if (one.isOfMagnitude)
      if (const KvoSimPosition amplitude = record.GetReference(one.field); !amplitude.IsNull())
        return amplitude;
  return {};
}

bool inpS_ExcitationKind::IsGivenElsewhere(const KvoSimDataRecord& record,
                                           std::string_view label) const {
  // A routine of the user gives it: unless the word is the name of a load case, or of a surface.
  const bool isLabel = form != eds_FormKind::SubstructureLoad &&
                       (key != Key::Words || label.find(' ') != std::string_view::npos);
  if (isLabel && inpS_isOfRoutine(label)) return true;
  const bool isAboutDegrees = key == Key::Degrees || key == Key::Degree;
  for (const int flag : {user, submodel, fixed})
    if (flag >= 0 && record.GetBool(flag)) return true;
  return isAboutDegrees && file >= 0 && !record.GetString(file).empty();
}

bool inpS_isOfRoutine(std::string_view label) {
  return label.ends_with("NU") && !label.ends_with("TURBNU");
}

// The number of a face may stand behind the NU, or before it.
cow_String inpS_ExcitationKind::Prescribed(std::string_view label) const {
  static const int flow = numberOf("FLUID BOUNDARY");
  const std::string_view face = label.substr(label.find_last_not_of("0123456789") + 1);
  std::string_view what = label.substr(0, label.size() - face.size());
  if ((number == flow || form == eds_FormKind::Boundary) && inpS_isOfRoutine(what))
    what.remove_suffix(2);
  return cow_String(what) + cow_String(face);
}

inpS_ExcitationKind
inpS_ExcitationKind::OfType(inpS_NamedTargets::Type type,
                            std::shared_ptr<const inpS_NamedTargets> targets) const {
  inpS_ExcitationKind kind = *this;
  kind.key = Key::Label;
  kind.twice = type == inpS_NamedTargets::Type::Surface ? Twice::Later : Twice::First;
  kind.named = std::move(targets);
  kind.namedType = type;
  return kind;
}

bool inpS_ExcitationKind::NamesSurfaces() const {
  if (named) return namedType == inpS_NamedTargets::Type::Surface;
  return lineSurface >= 0 ||
         (info->data == eds_FormData::Columns &&
          info->columnItems.front().alternatives.front().type == eds_FormType::Reference);
}

bool inpS_ExcitationKind::IsOfNodes() const {
  if (named) return namedType == inpS_NamedTargets::Type::Node;
  if (form == eds_FormKind::TemperatureDriven || form == eds_FormKind::FieldDriven) return true;
  return info->data == eds_FormData::Columns &&
         info->columnItems.front().alternatives.front().type == eds_FormType::Node;
}

bool inpS_ExcitationKind::ActsWithoutRows(const KvoSimDataRecord& record) const {
  if (key != Key::One && key != Key::Variable) return false;
  return (file >= 0 && !record.GetString(file).empty()) || (user >= 0 && record.GetBool(user));
}

namespace inpS_Degrees {

uint64_t Of(long long first, long long last) {
  if (first < 1 || last < first || last > kMost) return 0;
  return ((uint64_t{1} << last) - 1) & ~((uint64_t{1} << (first - 1)) - 1);
}

uint64_t OfRestraint(int restraint) {
  // A plane of symmetry holds what leaves it and turns it, one of antisymmetry the others; warping
  // and ovalization are degrees of pipes and beams beyond the numbered ones.
  constexpr uint64_t held[] = {degrees({1, 2, 3, 4, 5, 6}), translations,
                               degrees({1, 5, 6}),          degrees({2, 4, 6}),
                               degrees({3, 4, 5}),          degrees({2, 3, 4}),
                               degrees({1, 3, 5}),          degrees({1, 2, 6}),
                               uint64_t{1} << kMost,        uint64_t{1} << (kMost + 1),
                               uint64_t{1} << (kMost + 2)};
  const auto place = static_cast<std::size_t>(restraint);
  return restraint >= 0 && place < std::size(held) ? held[place] : 0;
}

cow_List<Group> Groups(uint64_t all, const inpS_ExcitationKind& kind, std::string_view type) {
  cow_List<Group> groups;
  const bool isCondition = kind.form == eds_FormKind::Boundary;
  cow_String base(kind.field);
  const bool isMotion = isCondition || kind.form == eds_FormKind::ConnectorMotion ||
                        kind.form == eds_FormKind::Motion;
  if (isMotion && type == "VELOCITY") base.back() = 'V';
  if (isMotion && type == "ACCELERATION") base.back() = 'A';
  if (kind.form == eds_FormKind::BaseMotion && type == "VELOCITY") base += "_V";
  if (kind.form == eds_FormKind::BaseMotion && type == "DISPLACEMENT") base += "_U";
  const bool isVector = kind.field == "U" || kind.field == "CF" || kind.field == "CU" ||
                        kind.field == "CCF" || kind.field == "BASE";
  const auto take = [&](uint64_t some, const cow_String& field, int firstDegree) {
    if ((all & some) != 0) groups.push_back({all & some, field, firstDegree});
    all &= ~some;
  };
  if (isVector) {
    take(translations, base + "_D", 1);
    take(rotations, base + "_R", 4);
  }
  if (isCondition) {
    // The degrees that no vector has: warping, the pore or acoustic pressure, the electric
    // potential, the tenth of coupled elements.
    take(Bit(7), "W", 7);
    take(Bit(8), "HP", 8);
    take(Bit(9), "EPOT", 9);
    take(Bit(10), "DOF_10", 10);
  }
  take(Of(firstTemperature, kMost), isCondition ? "NT" : base, firstTemperature);
  const bool isNumbered = base.empty() || isVector; // the field of a vector is none of theirs
  for (; all != 0; all &= all - 1) {
    const int degree = std::countr_zero(all) + 1;
    groups.push_back({Bit(degree), isNumbered ? "DOF_" + std::to_string(degree) : base, degree});
  }
  return groups;
}

cow_String Components(uint64_t all, int firstDegree) {
  cow_String text;
  if (firstDegree > 6 && firstDegree < firstTemperature) return text; // a field of one number
  for (; all != 0; all &= all - 1) {
    const int component = std::countr_zero(all) + 1 - firstDegree;
    text += (text.empty() ? "" : " ");
    text += firstDegree >= firstTemperature ? std::to_string(component)
                                            : "C_" + std::to_string(component + 1);
  }
  return text;
}

} // namespace inpS_Degrees
