#include "inpS/history/inpS_History.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_ProcedureKind.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Parser.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <optional>
#include <unordered_map>

namespace {

using Kind = eds_RecordKind;
using Procedure = inpS_ProcedureKind;
using Family = Procedure::Family;

// Numbers of the store's vocabularies.
enum Incrementation { NoIncrements, AutomaticIncrements, FixedIncrements };
enum Stabilization { NotStabilized, ByEnergy, ByFactor };
constexpr int kStepUnderLinear = 0;

// ---- what *STEP says

// What holds from step to step: reset where a step with a procedure ends.
struct Said {
  std::optional<int> amplitude;
  std::optional<int> extrapolation;
  std::optional<int> storage;
  std::optional<bool> convertSdi;
  std::optional<bool> nonlinear;
  std::optional<long long> increments;
  bool perturbation = false;
  bool iterative = false;
  cow_String description;
};

struct StepFields {
  int name = eds_formField(eds_FormKind::Step, "name");
  int amplitude = eds_formField(eds_FormKind::Step, "amplitude");
  int convertSdi = eds_formField(eds_FormKind::Step, "convert_sdi");
  int dsa = eds_formField(eds_FormKind::Step, "dsa");
  int extrapolation = eds_formField(eds_FormKind::Step, "extrapolation");
  int increments = eds_formField(eds_FormKind::Step, "inc");
  int nonlinear = eds_formField(eds_FormKind::Step, "nlgeom");
  int perturbation = eds_formField(eds_FormKind::Step, "perturbation");
  int solver = eds_formField(eds_FormKind::Step, "solver");
  int storage = eds_formField(eds_FormKind::Step, "unsymm");
  int lines = eds_formField(eds_FormKind::Step, "lines");
};

std::optional<int> wordOf(const KvoSimDataRecord& record, int field,
                          std::initializer_list<std::string_view> words) {
  if (record.IsMemberNull(field)) return std::nullopt;
  const auto known = std::ranges::find(words, record.GetString(field));
  if (known == words.end()) return std::nullopt;
  return static_cast<int>(known - words.begin());
}

cow_String trimmed(std::string_view name) {
  while (name.starts_with('"')) name.remove_prefix(1);
  while (name.ends_with('"')) name.remove_suffix(1);
  return cow_String(name);
}

// ---- names

class Names {
public:
  struct Holder {
    int64_t number;         // of the step
    KvoSimPosition history; // null: the step is kept as text
    cow_String name = {};   // as it is spelt; names keep no case
  };

  // A step's name is that of its place in the map when all are in.
  void Take(cow_String name, Holder step) {
    constexpr int most = 50;
    cow_String key = inp_Utils::Fold(name);
    step.name = std::move(name);
    for (int times = 0; times < most; ++times) {
      const auto [known, isNew] = m_holders.try_emplace(key, step);
      if (isNew) return;
      std::swap(known->second, step);
      step.name += "-Old";
      key += "-OLD";
    }
    step.name += "-" + std::to_string(step.number);
    m_beyond.push_back(std::move(step));
  }
  void Save() const {
    for (const auto& [key, step] : m_holders) Save(step);
    for (const Holder& step : m_beyond) Save(step);
  }

private:
  static void Save(const Holder& step) {
    if (!step.history.IsNull())
      step.history.DataRecord().SetString(eds_HistoryStep_Name, step.name);
  }
  std::unordered_map<cow_String, Holder> m_holders; // by the folded name
  cow_List<Holder> m_beyond;
};

// ---- the history

class Deriver {
public:
  explicit Deriver(const KvoObjDocument& document)
      : m_document(document), m_parts(document.Context()) {}

  void Run() {
    for (KvoSimPosition& old : m_document.Context().GetRecords(Kind::HistoryStep)) old.Remove();
    const auto steps = m_document.GetModel().Position().GetVector(eds_Member::Steps);
    FindTexts();
    Pass(m_document.GetModel().Position());
    for (const KvoSimPosition& step : steps) {
      Add(step);
      Pass(step);
    }
    m_names.Save();
  }

private:
  void FindTexts();
  void Pass(const KvoSimPosition& before);
  void Add(const KvoSimPosition& step);
  cow_String NameOr(cow_String given) const;
  void Read(const KvoSimPosition& step);
  bool IsOdd(const KvoSimPosition& step, std::string_view parameter) const;
  void SetCommon(KvoSimDataRecord& to, const KvoSimPosition& procedure) const;
  static KvoSimPosition ProcedureOf(const KvoSimPosition& step);

  const KvoObjDocument& m_document;
  inpS_KeptParts m_parts;
  StepFields m_fields;
  Said m_said;
  bool m_dsa = false;
  long long m_number = 0;
  // Names of steps kept as text, by what they stand behind.
  std::unordered_map<unsigned long long, cow_List<cow_String>> m_texts;
  Names m_names;
};

void Deriver::FindTexts() {
  for (const KvoSimPosition& text : m_document.Context().GetRecords(Kind::VerbatimKeyword)) {
    const KvoSimDataRecord record = text.DataRecord();
    if (record.GetString(eds_VerbatimKeyword_Keyword) != "STEP") continue;
    const KvoSimPosition behind = record.GetReference(eds_VerbatimKeyword_Behind);
    m_texts[(behind.IsNull() ? m_document.GetModel().Position() : behind).Object().Packed()]
        .push_back(inpS_nameOfStepText(record.GetString(eds_VerbatimKeyword_Text)));
  }
}

// Without one, that of the step's number.
cow_String Deriver::NameOr(cow_String given) const {
  return given.empty() ? "Step-" + std::to_string(m_number) : std::move(given);
}

// Steps kept as text count, and have procedures: nothing is left to the next one. Their names are
// taken as those of others are: a later step moves the name of one on, whose text stays as it is.
void Deriver::Pass(const KvoSimPosition& before) {
  const auto texts = m_texts.find(before.Object().Packed());
  if (texts == m_texts.end()) return;
  for (const cow_String& name : texts->second) {
    ++m_number;
    m_names.Take(NameOr(name), {m_number, {}});
  }
  m_said = {};
}

// A value that is neither yes nor no is kept beside the record.
bool Deriver::IsOdd(const KvoSimPosition& step, std::string_view parameter) const {
  return inpS_holdsParameter(m_parts.FirstOf(step).parameters, parameter);
}

// What it does not say stays as it is.
void Deriver::Read(const KvoSimPosition& step) {
  const KvoSimDataRecord record = step.DataRecord();
  if (const auto word = wordOf(record, m_fields.amplitude, {"RAMP", "STEP"}))
    m_said.amplitude = word;
  if (const auto word = wordOf(record, m_fields.extrapolation,
                               {"LINEAR", "PARABOLIC", "NO", "VELOCITY PARABOLIC"}))
    m_said.extrapolation = word;
  if (const auto word = wordOf(record, m_fields.storage, {"AUTOMATIC", "NO", "YES"}))
    m_said.storage = word;
  if (const auto word = wordOf(record, m_fields.convertSdi, {"YES", "NO"}))
    m_said.convertSdi = *word == 0;
  if (wordOf(record, m_fields.solver, {"ITERATIVE"})) m_said.iterative = true;
  if (!record.IsMemberNull(m_fields.nonlinear))
    m_said.nonlinear = record.GetBool(m_fields.nonlinear);
  else if (IsOdd(step, "NLGEOM"))
    m_said.nonlinear = false;
  if (!record.IsMemberNull(m_fields.dsa))
    m_dsa = record.GetBool(m_fields.dsa);
  else if (IsOdd(step, "DSA"))
    m_dsa = false;
  if (!record.IsMemberNull(m_fields.increments))
    m_said.increments = record.GetInt64(m_fields.increments);
  // Whatever its value, it is there.
  if (!record.IsMemberNull(m_fields.perturbation) || IsOdd(step, "PERTURBATION"))
    m_said.perturbation = true;
  if (const std::string_view lines = record.GetString(m_fields.lines); !lines.empty())
    m_said.description = lines.substr(0, lines.find('\n'));
}

// The first one; what is said of the heat of a flow, wherever it stands, is none.
KvoSimPosition Deriver::ProcedureOf(const KvoSimPosition& step) {
  const cow_List<KvoSimPosition> records = inpS_keywordsInOrder(step);
  const bool isFluid = std::ranges::any_of(
      records, [](const KvoSimPosition& one) { return one.IsA(eds_FormKind::Cfd); });
  const auto first = std::ranges::find_if(records, [&](const KvoSimPosition& one) {
    return Procedure::Of(one.Object().RecordKind()) &&
           !(isFluid && one.IsA(eds_FormKind::HeatTransfer));
  });
  return first == records.end() ? KvoSimPosition() : *first;
}

void Deriver::SetCommon(KvoSimDataRecord& to, const KvoSimPosition& procedure) const {
  constexpr int none = 2;
  to.SetInt(eds_HistoryStep_Increments, m_said.increments.value_or(100));
  to.SetBool(eds_HistoryStep_Perturbation, m_said.perturbation);
  to.SetSymb(eds_HistoryStep_Storage, m_said.storage.value_or(0));
  to.SetBool(eds_HistoryStep_Dsa, m_dsa);
  const bool hasSolver =
      procedure.IsNull() || Procedure::Of(procedure.Object().RecordKind())->hasSolver;
  if (m_said.iterative && hasSolver) to.SetBool(eds_HistoryStep_Iterative, true);
  if (m_said.amplitude) to.SetSymb(eds_HistoryStep_Amplitude, *m_said.amplitude);
  if (m_said.convertSdi) to.SetBool(eds_HistoryStep_ConvertSdi, *m_said.convertSdi);
  if (m_said.nonlinear) to.SetBool(eds_HistoryStep_Nonlinear, *m_said.nonlinear);
  if (!m_said.description.empty()) to.SetString(eds_HistoryStep_Description, m_said.description);
  if (!m_said.extrapolation) return;
  const bool needsOne = !procedure.IsNull() && (procedure.IsA(eds_FormKind::StaticRiks) ||
                                                procedure.IsA(eds_FormKind::DynamicImplicit));
  to.SetSymb(eds_HistoryStep_Extrapolation,
             needsOne && *m_said.extrapolation == none ? kStepUnderLinear : *m_said.extrapolation);
}

// ---- what its procedure says

void setReal(KvoSimDataRecord& to, int field, const std::optional<double>& value) {
  if (value) to.SetDouble(field, *value);
}

void setIncrements(KvoSimDataRecord& to, const Procedure& of, Kind kind,
                   const KvoSimDataRecord& record, const cow_String& beside) {
  // Of an arc the solver chooses what is not given, but for the first increment.
  const bool isArc = kind == eds_FormKind::StaticRiks;
  const double period = Procedure::Real(record, of.period).value_or(isArc ? 0. : 1.);
  const bool isFixed = of.IsFixed(kind, record, beside);
  const bool isByElements = of.IsByElements(kind, record, beside);
  to.SetDouble(eds_HistoryStep_Period, period);
  to.SetSymb(eds_HistoryStep_Incrementation, isFixed ? FixedIncrements : AutomaticIncrements);
  double initial = Procedure::Real(record, of.initial).value_or(isFixed || isArc ? 1. : 0.);
  if (isFixed && !isArc && initial == 0) initial = period;
  if (isByElements) initial = 0.; // whatever stands there
  to.SetDouble(eds_HistoryStep_Initial, initial);
  if (isFixed) to.SetBool(eds_HistoryStep_NoStop, of.IsNoStop(record));
  if (!isFixed || isByElements) {
    to.SetDouble(eds_HistoryStep_Minimum, Procedure::Real(record, of.minimum).value_or(0.));
    to.SetDouble(eds_HistoryStep_Maximum, Procedure::Real(record, of.maximum).value_or(0.));
  }
  // Of these the solver chooses, too, what is not given.
  const auto orChosen = [&](int field, bool isLeft) {
    const auto given = Procedure::Real(record, field);
    return given || !isLeft || isFixed || field < 0 ? given : std::optional(0.);
  };
  const bool isCoupled = kind == eds_FormKind::CoupledTemperatureDisplacement;
  setReal(to, eds_HistoryStep_TemperatureChange, orChosen(of.deltmx, isCoupled));
  setReal(to, eds_HistoryStep_CreepTolerance, orChosen(of.cetol, isCoupled));
  setReal(to, eds_HistoryStep_PressureChange, Procedure::Real(record, of.utol));
  setReal(to, eds_HistoryStep_ConcentrationChange, Procedure::Real(record, of.dcmax));
  setReal(to, eds_HistoryStep_HalfIncrementResidual, orChosen(of.haftol, true));
  setReal(to, eds_HistoryStep_LoadFactor, Procedure::Real(record, of.loadFactor));
  if (of.mxdem >= 0)
    to.SetDouble(eds_HistoryStep_EmissivityChange,
                 Procedure::Real(record, of.mxdem).value_or(0.01));
  if (of.IsSteady(record, beside)) to.SetBool(eds_HistoryStep_SteadyState, true);
  if (Procedure::HasWord(record, of.end, "SS"))
    setReal(to, eds_HistoryStep_EndCriterion, Procedure::Real(record, of.rate));
}

void setStabilization(KvoSimDataRecord& to, const Procedure& of, const KvoSimDataRecord& record,
                      const cow_String& beside) {
  if (of.stabilize < 0) return;
  const auto fraction = Procedure::Real(record, of.stabilize);
  const auto factor = Procedure::Real(record, of.factor);
  if (!fraction && !Procedure::Flag(record, of.stabilizeFlag) &&
      !inpS_holdsParameter(beside, "STABILIZE"))
    return;
  to.SetSymb(eds_HistoryStep_Stabilization, factor ? ByFactor : ByEnergy);
  if (factor) to.SetDouble(eds_HistoryStep_DampingFactor, *factor);
  if (fraction || !factor) to.SetDouble(eds_HistoryStep_EnergyFraction, fraction.value_or(0.0002));
  to.SetDouble(eds_HistoryStep_EnergyTolerance,
               Procedure::Real(record, of.allsdtol).value_or(0.05));
  to.SetBool(eds_HistoryStep_KeepDamping, Procedure::HasWord(record, of.keepDamping, "YES"));
}

void setModes(KvoSimDataRecord& to, const Procedure& of, const KvoSimDataRecord& record) {
  if (of.count >= 0 && !record.IsMemberNull(of.count))
    to.SetInt(eds_HistoryStep_Eigenvalues, record.GetInt64(of.count));
  setReal(to, eds_HistoryStep_LowestFrequency, Procedure::Real(record, of.minimum));
  setReal(to, eds_HistoryStep_HighestFrequency, Procedure::Real(record, of.maximum));
}

void setRanges(KvoSimDataRecord& to, const KvoSimPosition& procedure) {
  static const int lower = eds_formField(eds_FormKind::FrequencyRange, "lower");
  static const int upper = eds_formField(eds_FormKind::FrequencyRange, "upper");
  const auto lines = procedure.GetVector(eds_Member::Lines);
  to.SetInt(eds_HistoryStep_Ranges, static_cast<int64_t>(lines.size()));
  std::optional<double> least;
  std::optional<double> most;
  for (const KvoSimPosition& line : lines) {
    const KvoSimDataRecord record = line.DataRecord();
    const double from = record.GetDouble(lower);
    // Without an upper bound, or with one of zero, it is the lower one alone.
    const double given = Procedure::Real(record, upper).value_or(0.);
    const double until = given != 0 ? given : from;
    least = std::min(least.value_or(from), std::min(from, until));
    most = std::max(most.value_or(until), std::max(from, until));
  }
  setReal(to, eds_HistoryStep_LowestFrequency, least);
  setReal(to, eds_HistoryStep_HighestFrequency, most);
}

// beside: what is kept beside the procedure's record; an odd value of a flag is no reason to take
// it for not given.
void setProcedure(KvoSimDataRecord& to, const KvoSimPosition& procedure, bool isPerturbation,
                  const cow_String& beside) {
  const Kind kind = procedure.Object().RecordKind();
  const Procedure& of = *Procedure::Of(kind);
  const KvoSimDataRecord record = procedure.DataRecord();
  const bool isEvent =
      isPerturbation && (kind == eds_FormKind::Static || kind == eds_FormKind::StaticRiks);
  to.SetReference(eds_HistoryStep_Procedure, procedure);
  to.SetSymb(eds_HistoryStep_Registration,
             static_cast<int>(isEvent ? Procedure::Registration::Event : of.registration));
  // A linear perturbation takes no time.
  const Family family = isEvent ? Family::None : of.family;
  if (family == Family::Time) {
    setIncrements(to, of, kind, record, beside);
    setStabilization(to, of, record, beside);
  } else {
    to.SetSymb(eds_HistoryStep_Incrementation, NoIncrements);
  }
  if (family == Family::Modes) setModes(to, of, record);
  if (family == Family::Ranges) setRanges(to, procedure);
}

void Deriver::Add(const KvoSimPosition& step) {
  Read(step);
  const KvoSimPosition procedure = ProcedureOf(step);
  const KvoSimPosition made = step.CreateDataRecord(Kind::HistoryStep);
  KvoSimDataRecord record = made.DataRecord();
  record.SetInt(eds_HistoryStep_Number, ++m_number);
  cow_String name = NameOr(trimmed(step.DataRecord().GetString(m_fields.name)));
  record.SetReference(eds_HistoryStep_Step, step);
  SetCommon(record, procedure);
  if (procedure.IsNull()) {
    record.SetString(eds_HistoryStep_Name, name);
    return;
  }
  setProcedure(record, procedure, m_said.perturbation, m_parts.FirstOf(procedure).parameters);
  m_names.Take(std::move(name), {m_number, made});
  m_said = {};
}

} // namespace

cow_String inpS_nameOfStepText(std::string_view text) {
  inp_Parser parser(cow_String(text), "", {}, "", true, true, false);
  for (const inp_Keyword& keyword : parser.Parse(false))
    if (const inp_Item* name = keyword.Find("name")) return trimmed(name->AsString());
  return {};
}

cow_List<KvoSimPosition> inpS_keywordsInOrder(const KvoSimPosition& step) {
  const auto places = step.GetIntKeys(eds_Member::StepKeywords);
  const auto records = step.FollowMap(eds_Member::StepKeywords);
  cow_List<std::size_t> order(records.size());
  for (std::size_t n = 0; n < order.size(); ++n) order[n] = n;
  std::ranges::stable_sort(order, {}, [&](std::size_t n) { return places[n]; });
  cow_List<KvoSimPosition> inOrder;
  for (const std::size_t n : order) inOrder.push_back(records[n]);
  return inOrder;
}

void inpS_deriveHistory(const KvoObjDocument& document) {
  const auto has = [&](Kind kind) { return !document.Context().GetRecords(kind).empty(); };
  if (!has(eds_FormKind::Step) && !has(Kind::HistoryStep)) return;
  KvoSimTransaction transaction(document.ContextID());
  Deriver(document).Run();
  transaction.Commit();
}
