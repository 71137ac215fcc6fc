// Every form in both directions: a keyword with a value of its own in every place is converted,
// written and converted again; each value must lie in its field, and the two decks must be equal.
// Behaviours of materials have a walk of their own, for their tables.

#include "database/KvoObjDocument.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/eds_ModelReader.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_Blocks.h"
#include "inpS/materials/inpS_Behaviors.h"
#include "parser/inp_KeywordTable.h"
#include "tests/host/KeptParameters.h"
#include <cmath>
#include <set>

namespace {

// What forms refer to, by the words of referables.def.
const cow_Map<std::string_view, cow_String> targets = {
    {"nset", "NODES-1"},
    {"elset", "SOLID"},
    {"surface", "TOP"},
    {"material", "STEEL"},
    {"amplitude", "RAMP"},
    {"distribution_table", "TABLE-1"},
    {"distribution", "FIELD-1"},
    {"orientation", "AXES"},
    {"section_controls", "CONTROLS"},
    {"gasket_behavior", "SEAL"},
    {"connector_behavior", "HINGE-1"},
    {"matrix", "K-1"},
    {"impedance_property", "LINING"},
    {"incident_wave_property", "BLAST"},
    {"incident_wave_interaction_property", "CHARGE"}};
// That of a word.
cow_String targetOf(std::string_view word) {
  const auto known = targets.find(word);
  if (known != targets.end()) return known->second;
  ADD_FAILURE() << "a form refers to a " << word << ", and the walk's targets have none";
  return "NONE";
}

// Nodes of many labels, no three of them in one line.
cow_String moreNodes() {
  cow_String text = "*NODE\n";
  for (int label = 9; label <= 800; ++label)
    text += std::to_string(label) + ", " + std::to_string(label * label) + "., " +
            std::to_string(label) + "., 0.\n";
  return text;
}
const cow_String model = cow_String("*HEADING\nall forms\n") + oneBrick + moreNodes() +
                         "*ELEMENT, TYPE=T3D2, ELSET=BARS\n91, 1, 2\n"
                         "*ELEMENT, TYPE=CPS4, ELSET=PLATES\n92, 1, 2, 3, 4\n"
                         "*NSET, NSET=NODES-1\n1, 2\n*SURFACE, NAME=TOP\nSOLID, S2\n"
                         "*DISTRIBUTION TABLE, NAME=TABLE-1\nLENGTH\n"
                         "*DISTRIBUTION, NAME=FIELD-1, TABLE=TABLE-1, LOCATION=ELEMENT\n1, 5.\n"
                         "*ORIENTATION, NAME=AXES\n1., 0., 0., 0., 1., 0.\n"
                         "*AMPLITUDE, NAME=RAMP\n0., 0., 1., 1.\n"
                         "*SECTION CONTROLS, NAME=CONTROLS\n"
                         "*GASKET BEHAVIOR, NAME=SEAL\n"
                         "*CONNECTOR BEHAVIOR, NAME=HINGE-1\n"
                         "*MATRIX INPUT, NAME=K-1\n1, 1, 1, 1, 5.\n"
                         "*IMPEDANCE PROPERTY, NAME=LINING\n1., 2.\n"
                         "*INCIDENT WAVE PROPERTY, NAME=BLAST\n0., 0., 1.\n0., 0., 2.\n"
                         "*INCIDENT WAVE INTERACTION PROPERTY, NAME=CHARGE\n1., 2.\n"
                         "*MATERIAL, NAME=STEEL\n*ELASTIC\n210., 0.3\n";

// A keyword's text, and what the fields of its record must hold.
struct Given {
  cow_String text;
  cow_Map<int, cow_String> values; // as text
  cow_List<double> row;            // of its table
};

// What sections and conditions say of these, in words of their own.
const cow_Map<std::string_view, cow_String> ownTexts = {
    {"nset", "Boundary condition references undefined node set: NOWHERE"},
    {"surface", "invalid surface definition in PHYSICAL fluid boundary"},
    {"elset", "Element set NOWHERE is not defined. This section definition will not be used"},
    {"material", "Material NOWHERE not found."}};

// Of bulk columns: a label, or a set that stands for its members.
bool isByLabelOrSet(const eds_FormItem& item) {
  return item.alternatives.size() > 1 && item.alternatives.back().referable;
}
// What is checked beyond its type: only some values are no error; with none it is left out.
const cow_Map<cow_String, cow_String> soundValues = {
    {"StaticRiks.dof", "2"},
    {"Cfd.time_integrator", "BDF2"},
    {"ControlsFluidStructure.minimum_remesh", "3"},
    {"ControlsFluidStructure.maximum_remesh", "4"},
    {"MomentumEquationSolver.type", "DSGMRES"},
    {"PressureEquationSolver.type", "DSCG"},
    {"EnergyEquationSolver.type", "ILUGMRES"},
    {"TransportEquationSolver.type", "ILUGMRES"},
    {"TurbulenceEquationSolver.type", "ILUGMRES"},
    {"KinematicConstraint.first", "2"},
    {"KinematicConstraint.last", "3"},
    {"DistributingConstraint.first", "2"},
    {"DistributingConstraint.last", "3"},
    {"Boundary.first", "4"},
    {"FluidBoundary.type", ""},
    {"FluidBoundary.target", "TOP"},
    {"Foundation.label", "F1"},
    {"InitialContact.nodes", "NODES-1"},
    {"ConcentratedFlux.user", ""},
    {"InitialStress.section_points", ""},
    {"Motion.rotation", ""},
    {"Motion.first", "2"},
    {"Motion.last", "3"},
    {"BaseMotion.dof", "5"},
    {"InertiaRelief.dof_1", "1"},
    {"InertiaRelief.dof_2", "2"},
    {"InertiaRelief.dof_3", "3"},
    {"InertiaRelief.dof_4", "4"},
    {"InertiaRelief.dof_5", "5"},
    {"InertiaRelief.dof_6", "6"},
    {"InertiaRelief.fixed", ""},
    {"ConcentratedFlux.dof", "12"},
    {"ConcentratedFlow.dof", "8"},
    {"ConcentratedCharge.dof", "9"},
    {"ConcentratedCurrent.dof", "9"},
    {"ConnectorLoad.component", "3"},
    {"FluidBoundaryElement.value", "0.5"},
    {"InitialVelocity.component", "5"},
    {"InitialAcceleration.component", "6"},
    {"ConnectorMotion.component", "4"},
    {"InitialStress.rebar", ""},
    {"InitialPlasticStrain.section_points", ""},
    {"InitialPlasticStrain.rebar", ""},
    {"InitialHardening.section_points", ""},
    {"InitialHardening.rebar", ""},
    {"InitialHardening.number_back_stresses", "1"},
    {"InitialBackStressRows.number_backstresses", "2"},
    {"InitialBackStressRowsAtPoints.number_backstresses", "2"},
    {"InitialBackStressRowsOfRebar.number_backstresses", "2"},
    {"InitialDamage.section_points", ""},
    {"InitialDamage.rebar", ""},
    {"InitialActivation.value", "0.5"},
    {"InitialPorosity.value", "0.5"},
    {"InitialSaturation.value", "0.5"},
    {"InitialVolumeFraction.value", "0.5"},
    {"InitialEnrichment.node", "2"},
    {"Wave.type", "AIRY"},
    {"ConnectorSection.behavior", ""},
    {"BeamSectionTapered.section", "ARBITRARY"},
    {"BeamGeneralSectionTaperedProfile.section", "MESHED"},
    {"ConnectorPotential.component", "2"},
    {"Boundary.last", "6"},
    {"Boundary.magnitude", "0.5"},
    {"ConcentratedLoad.dof", "3"},
    {"FoundationLine.label", "F1"},
    {"DistributedLoad.label", "P3"},
    {"DistributedLoad.ref_node", "1"},
    {"SurfaceLoad.ref_node", "1"},
    {"SurfaceLoad.label", "P"},
    {"DistributedFlux.label", "BF"},
    {"SurfaceFlux.label", "S"},
    {"DistributedFlow.label", "S2"},
    {"SurfaceFlow.label", "S"},
    {"PoreFlow.label", "Q2"},
    {"SurfacePoreFlow.label", "Q"},
    {"DistributedCharge.label", "EBF"},
    {"SurfaceCharge.label", "ES"},
    {"DistributedCurrent.label", "CBF"},
    {"SurfaceCurrent.label", "CS"},
    {"MagneticPotential.label", "MVP"},
    {"Film.label", "F2"},
    {"SurfaceFilm.label", "F"},
    {"Radiation.label", "R2"},
    {"SurfaceRadiation.label", "R"},
    {"Impedance.label", "I2"},
    {"FluidBoundaryElement.label", "P2"}};

class FormDeck {
public:
  // least: without the parameters that it may lack. copy: of those of one deck, whose names differ.
  explicit FormDeck(const inpS_Form& form, bool least = false, int copy = 0)
      : m_form(form), m_isLeast(least), m_copy(copy) {}

  // missing: the item of a reference that names nothing; null: all are there.
  Given Keyword(const eds_FormItem* missing) {
    Given given;
    given.text = "*" + cow_String(inp_KeywordTable::Instance().Row(m_form.keyword)->name);
    for (const inpS_Form::Selector& selector : m_form.selectors) {
      if (selector.isField) continue;
      given.text += ", " + selector.name;
      if (!selector.text.empty()) given.text += "=" + selector.text;
    }
    for (std::size_t n = 0; n < m_form.items.size(); ++n) {
      const eds_FormItem& item = *m_form.items[n];
      const auto sound = soundValues.find(Name(item));
      if (sound != soundValues.end() && sound->second.empty()) continue;
      if (item.name == "taper") continue; // where it says yes another row holds
      if (m_isLeast && !item.isRequired && !IsCount(m_form.parameters[n].key)) continue;
      given.text += ", " + m_form.parameters[n].name;
      const cow_String value =
          Value(item, m_form.parameters[n].words, &item == missing, given.values);
      if (!value.empty()) given.text += "=" + value;
    }
    given.text += "\n";
    for (const auto& line : m_form.info->lines) given.text += Line(line, missing, given.values);
    if (m_form.HasTable()) given.text += TableRow(given.row);
    if (m_form.kind == eds_FormKind::Step) given.text += "*STATIC\n*END STEP\n";
    if (m_form.info->data == eds_FormData::Text) given.text += "1, TWO, 3.\n";
    if (m_form.info->data == eds_FormData::Pairs) given.text += "0., 0.5, 1., 0.25\n";
    if (m_form.info->data == eds_FormData::Records)
      for (int row = 0; row < 2; ++row)
        for (const auto& line : eds_formOf(m_form.info->record)->lines)
          given.text += Line(line, missing, m_lost);
    if (m_form.info->data == eds_FormData::Columns) given.text += Rows(missing);
    if (m_form.info->data == eds_FormData::Words)
      given.text += Value(m_form.info->words, {}, false, given.values) + "\n";
    if (m_form.HasTable() && m_form.columns.IsEmpty()) given.text += "0.5\n"; // as its table says
    return given;
  }

private:
  bool IsCount(const cow_String& parameter) const {
    const cow_List<cow_String> counts = m_form.columns.Parameters();
    return std::ranges::find(counts, parameter) != counts.end();
  }

  cow_String Line(const cow_List<eds_FormItem>& items, const eds_FormItem* missing,
                  cow_Map<int, cow_String>& values) {
    cow_String text;
    for (const eds_FormItem& item : items)
      text += (text.empty() ? "" : ", ") + Value(item, {}, &item == missing, values);
    return text + "\n";
  }

  cow_String TableRow(cow_List<double>& values) {
    cow_String text;
    const auto columns = m_form.columns.Expand([&](const cow_String& parameter, long long absent) {
      const auto given = m_counts.find(parameter);
      return given == m_counts.end() ? absent : given->second;
    });
    for (std::size_t n = 0; n < columns.size(); ++n) {
      values.push_back(++m_number + 0.5);
      text += (text.empty() ? "" : n % 8 == 0 ? ",\n" : ", ") + std::to_string(m_number) + ".5";
    }
    return text + "\n";
  }

  cow_String Name(const eds_FormItem& item) const {
    return cow_String(eds_ModelReader::Info(m_form.kind)->name) + "." + item.name;
  }

  // By label and by the name of a set.
  cow_String Rows(const eds_FormItem* missing) {
    cow_String text;
    for (const bool byName : {false, true}) {
      cow_String line;
      int place = 0; // of a field; eight stand on a line
      for (const eds_FormItem& item : m_form.info->columnItems) {
        const bool isTarget = isByLabelOrSet(item);
        const cow_String name =
            isTarget ? targetOf(item.alternatives.back().referable->word) : cow_String();
        line += place++ == 0 ? "" : place > 8 && item.isRepeated ? ",\n" : ", ";
        line += (&item == missing      ? "NOWHERE"
                 : isTarget && !byName ? "1"
                 : isTarget            ? name
                                       : Value(item, {}, false, m_lost));
        if (item.perLine > 0) line += "\n" + Value(item, {}, false, m_lost); // two lines
      }
      text += (m_form.info->isGrouped ? "1\n" : "") + line + "\n";
    }
    return text;
  }

  // Of the item's first type.
  cow_String Value(const eds_FormItem& item, const cow_List<std::string_view>& words,
                   bool isMissing, cow_Map<int, cow_String>& values) {
    const eds_FormItem::Alternative& one = item.alternatives.front();
    cow_String& value = values[one.field];
    if (const auto sound = soundValues.find(Name(item)); sound != soundValues.end())
      return value = sound->second;
    switch (one.type) {
    case eds_FormType::Flag:
      value = "1";
      return {};
    case eds_FormType::Int:
      if (isByLabelOrSet(item) && item.alternatives.back().referable->word == "elset")
        return value = "1"; // an element's label
      [[fallthrough]];
    case eds_FormType::Node:
      m_counts[item.name] = item.name == "stack_direction" ? 2 : Number();
      return value = std::to_string(m_counts[item.name]);
    case eds_FormType::Element:
      return value = "1";
    case eds_FormType::Real:
      return value = std::to_string(Number()) + ".5";
    case eds_FormType::Reference:
      value = targetOf(one.referable->word);
      if (const auto own = m_sets.find(m_form.kind); own != m_sets.end() && item.name == "elset")
        value = own->second;
      return isMissing ? "NOWHERE" : value;
    default:
      break;
    }
    if (words.empty() && one.words.empty())
      return value = "W" + std::to_string(Number()) + (m_copy ? "-" + std::to_string(m_copy) : "");
    return value = words.empty() ? one.words.back() : cow_String(words.back());
  }

  // 1, 3, 6, 10 and so on: points of such numbers lie in no line.
  int Number() { return m_number += ++m_step; }

  const inpS_Form& m_form;
  const bool m_isLeast;
  const int m_copy;
  // What a row is for depends on the elements of its set.
  const cow_Map<eds_RecordKind, cow_String> m_sets = {{eds_FormKind::TrussSection, "BARS"},
                                                      {eds_FormKind::SolidSectionPlane, "PLATES"}};
  cow_Map<int, cow_String> m_lost;
  cow_Map<cow_String, long long> m_counts; // by parameter
  int m_number = 0;
  int m_step = 0;
};

cow_String textOf(const KvoSimDataRecord& record, int field, eds_FieldType type) {
  if (record.IsMemberNull(field)) return "nothing";
  switch (type) {
  case eds_FieldType::Bool:
    return record.GetBool(field) ? "1" : "0";
  case eds_FieldType::Int:
    return std::to_string(record.GetInt64(field));
  case eds_FieldType::Real: {
    const double value = record.GetDouble(field);
    return std::to_string(static_cast<long long>(value)) + (std::fmod(value, 1) == 0.5 ? ".5" : "");
  }
  case eds_FieldType::Ref:
  case eds_FieldType::AnyRef:
    return record.GetReference(field).Name();
  default:
    return record.ReturnString(field);
  }
}

cow_List<const inpS_Form*> walkedForms() {
  cow_List<const inpS_Form*> forms;
  for (const eds_FormKeyword& row : eds_formKeywords()) {
    const inpS_Form* form = inpS_FormTable::Instance().Find(row.kind);
    const bool isMade = form->info->repeat != eds_FormRepeat::Past;
    if (form->keyword != inp_NullKeyword && isMade && !inpS_isBehavior(form->keyword))
      forms.push_back(form);
  }
  return forms;
}

bool isOfSteps(const inpS_Form& form) {
  const inp_KeywordRow& row = *inp_KeywordTable::Instance().Row(form.keyword);
  constexpr int heading = 1; // outside of steps nothing of its block is converted
  return form.kind != eds_FormKind::Step && row.levels != inp_LevelsSub &&
         (inpS_block(row.block).member == eds_Member::Steps || row.levels == inp_LevelsStep ||
          row.block == heading);
}

// What must stand before a keyword that is another's sub-option, or of a step.
cow_String parentOf(const inpS_Form& form, int copy = 0) {
  const inp_KeywordRow& row = *inp_KeywordTable::Instance().Row(form.keyword);
  if (isOfSteps(form))
    return row.role == inp_KeywordRole::Procedure ? "*STEP\n" : "*STEP\n*STATIC\n";
  if (row.levels != inp_LevelsSub) return {};
  const inpS_FormTable& forms = inpS_FormTable::Instance();
  const auto knows = [&](inp_KeywordEnm keyword) { return forms.Knows(keyword); };
  const auto known = std::ranges::find_if(row.parents, knows);
  const inp_KeywordEnm parent =
      form.parent != inp_NullKeyword || known == row.parents.end() ? form.parent : *known;
  if (!forms.Knows(parent)) return {};
  const inpS_Form& above = *forms.Find(forms.KindsOf(parent).back());
  return parentOf(above, copy) + FormDeck(above, false, copy).Keyword(nullptr).text;
}

// What closes what parentOf has opened.
cow_String endOf(const inpS_Form& form) {
  if (form.kind == eds_FormKind::LoadCase) return "*END LOAD CASE\n*END STEP\n";
  if (isOfSteps(form)) return "*END STEP\n";
  const cow_String parent = parentOf(form);
  return parent.starts_with("*STEP") ? "*END STEP\n" : "";
}

class FormWalk : public ProgramTest {
protected:
  cow_String Name(const inpS_Form& form) const {
    return cow_String(eds_ModelReader::Info(form.kind)->name);
  }
  void Check(const inpS_Form& form, const Given& given, const char* file) const {
    const KvoObjDocument document = KvoObjDocument::Open(File(file), KvoAccess::ReadOnly);
    const auto records = document.Context().GetRecords(form.kind);
    ASSERT_FALSE(records.empty()) << "nothing makes a record of " << Name(form);
    const KvoSimDataRecord record = records.back().DataRecord();
    const eds_RecordInfo& info = *eds_ModelReader::Info(form.kind);
    for (const auto& [field, value] : given.values) {
      const eds_FieldInfo& column = info.fields[static_cast<std::size_t>(field)];
      if (column.type == eds_FieldType::Symbol) continue; // its word is checked by the way back
      EXPECT_EQ(textOf(record, field, column.type), value) << Name(form) << "." << column.name;
    }
    if (form.HasTable() && !form.columns.IsEmpty()) {
      EXPECT_EQ(records.back().GetFTable().Values(), given.row) << Name(form);
    }
    if (form.info->data == eds_FormData::Columns) {
      EXPECT_EQ(record.GetInt(form.info->rowsField), 2) << Name(form);
    }
    if (form.info->data == eds_FormData::Records) {
      EXPECT_EQ(records.back().GetVector(eds_Member::Lines).size(), 2u) << Name(form);
    }
  }
};

} // namespace

TEST_F(FormWalk, EveryFormGoesBothWays) {
  for (const inpS_Form* form : walkedForms()) {
    const Given given = FormDeck(*form).Keyword(nullptr);
    const ProgramRun first({"convert",
                            Deck("a.inp", model + parentOf(*form) + given.text + endOf(*form)),
                            "-o", File("a.sim"), "--force", "--strict"});
    EXPECT_EQ(first.exitCode, 0) << first.err;
    Check(*form, given, "a.sim");
    ProgramRun({"write", File("a.sim"), "-o", File("b.inp"), "--force"});
    ProgramRun({"convert", File("b.inp"), "-o", File("b.sim"), "--force"});
    Check(*form, given, "b.sim");
    ProgramRun({"write", File("b.sim"), "-o", File("c.inp"), "--force"});
    EXPECT_EQ(readFile(File("b.inp")), readFile(File("c.inp")));
    EXPECT_NE(readFile(File("b.inp")).find(given.text.substr(0, given.text.find(','))),
              cow_String::npos)
        << "nobody prints " << Name(*form);
  }
}

// Whatever parameter the vocabulary has for the keyword is in the deck that is written, and stays.
TEST_F(FormWalk, EveryParameterComesBack) {
  for (const inpS_Form* form : walkedForms()) {
    const bool isAlone = form->info->repeat != eds_FormRepeat::Many && parentOf(*form).empty();
    const cow_String least = FormDeck(*form, true).Keyword(nullptr).text;
    const auto parameters = furtherParameters(form->keyword, least.substr(0, least.find('\n')));
    cow_String deck = model;
    for (std::size_t n = 0; n < parameters.size(); ++n) {
      const int copy = static_cast<int>(n) + 1;
      cow_String text = FormDeck(*form, true, copy).Keyword(nullptr).text;
      text.insert(text.find('\n'), parameters[n].Text());
      deck += parentOf(*form, copy) + text + endOf(*form);
      if (!isAlone) continue;
      expectKept(Deck("a.inp", deck), form->keyword, std::span(&parameters[n], 1), Name(*form));
      deck = model;
    }
    if (!isAlone) expectKept(Deck("a.inp", deck), form->keyword, parameters, Name(*form));
  }
}

// A name of what is not there is told by the text of what it would be, and nothing is lost.
TEST_F(FormWalk, WhatIsMissingIsTold) {
  cow_Map<cow_String, bool> told;
  for (const eds_Referable& referable : eds_referables()) told[cow_String(referable.word)];
  const auto check = [&](const inpS_Form& form, const eds_FormItem& item) {
    const auto isItem = [&](const eds_FormItem& column) { return &column == &item; };
    const bool isColumn = std::ranges::any_of(form.info->columnItems, isItem);
    const eds_Referable* referable =
        (isColumn ? item.alternatives.back() : item.alternatives.front()).referable;
    if (!referable || (item.alternatives.size() > 1 && !isColumn)) return;
    const Given given = FormDeck(form).Keyword(&item);
    const ProgramRun run({"convert",
                          Deck("a.inp", model + parentOf(form) + given.text + endOf(form)), "-o",
                          File("a.sim"), "--force"});
    cow_String text(referable->missing);
    const std::size_t at = text.find("%s");
    ASSERT_NE(at, cow_String::npos) << referable->word << " names nothing";
    const auto own = ownTexts.find(referable->word);
    EXPECT_TRUE(run.Says(text.replace(at, 2, "NOWHERE")) ||
                (own != ownTexts.end() && run.Says(own->second)))
        << Name(form) << ": " << run.err;
    const ProgramRun written({"write", File("a.sim"), "-o", "-"});
    EXPECT_NE(written.out.find("NOWHERE"), cow_String::npos) << Name(form) << "." << item.name;
    told[cow_String(referable->word)] = true;
  };
  for (const inpS_Form* form : walkedForms()) {
    for (const eds_FormItem* item : form->items) check(*form, *item);
    for (const auto& line : form->info->lines)
      for (const eds_FormItem& item : line) check(*form, item);
    for (const eds_FormItem& item : form->info->columnItems) check(*form, item);
    if (form->info->data != eds_FormData::Records) continue;
    for (const auto& line : eds_formOf(form->info->record)->lines)
      for (const eds_FormItem& item : line) check(*form, item);
  }
  for (const char* word : {"time_points", "spectrum", "psd", "mesh_controls"})
    told.erase(word); // steps keep their names as words: decks/steps/names
  for (const auto& [word, isTold] : told) EXPECT_TRUE(isTold) << "no form refers to " << word;
}

cow_String twoLines(const cow_String& value, int perLine) {
  cow_String line = value;
  for (int n = 1; n < perLine; ++n) line += ", " + value;
  return line + ",\n" + line;
}

// More lines than a piece has: columns become arrays, whatever they began as.
TEST_F(FormWalk, LinesBeyondAPiece) {
  constexpr int lines = 20000;
  std::set<cow_String> shapes;
  for (const inpS_Form* form : walkedForms()) {
    if (form->info->data != eds_FormData::Columns) continue;
    cow_String shape; // what is read and printed alike is tried once
    for (const eds_FormItem& item : form->info->columnItems)
      for (const eds_FormItem::Alternative& one : item.alternatives)
        shape += std::to_string(static_cast<int>(one.type) + 100 * item.perLine) +
                 (item.isRequired ? "! " : " ");
    if (!shapes.insert(shape).second) continue;
    Given given = FormDeck(*form).Keyword(nullptr);
    given.text.resize(given.text.find('\n') + 1);
    for (int line = 0; line < lines; ++line) {
      const cow_String number = std::to_string(line);
      cow_String text;
      for (const eds_FormItem& item : form->info->columnItems) {
        const bool isTarget = isByLabelOrSet(item);
        const eds_FormItem::Alternative& one = item.alternatives.front();
        const bool isReal = one.type == eds_FormType::Real;
        text +=
            (text.empty() ? "" : ", ") + (isTarget && line % 10000 == 9999
                                              ? targetOf(item.alternatives.back().referable->word)
                                          : isTarget      ? cow_String("1")
                                          : one.referable ? targetOf(one.referable->word)
                                          : one.type == eds_FormType::Text ? cow_String("P1")
                                          : item.perLine > 0 ? twoLines(number + ".5", item.perLine)
                                          : isReal           ? number + ".5"
                                                             : std::to_string(line < 9000 ? 7 : 8));
      }
      given.text += (form->info->isGrouped ? "1\n" : "") + text + "\n";
    }
    const cow_String deck = Deck("a.inp", model + parentOf(*form) + given.text + endOf(*form));
    ProgramRun({"convert", deck, "-o", File("a.sim"), "--force"});
    ProgramRun({"write", File("a.sim"), "-o", File("b.inp"), "--force"});
    const cow_String rows = given.text.substr(given.text.find('\n'));
    EXPECT_NE(readFile(File("b.inp")).find(rows), cow_String::npos) << Name(*form);
  }
}

// In a written deck all rows take two lines then, and the one that says so stands far behind.
TEST_F(FormWalk, OneRowOfManyGoesOn) {
  constexpr int rows = 3000;
  cow_String deck = "*NODE\n1, 0., 0., 0.\n*STEP\n*STATIC\n*TEMPERATURE\n";
  for (int row = 1; row < rows; ++row) deck += "1, 1.\n";
  deck += "1, 1., 2., 3., 4., 5., 6., 7.\n8.5\n*END STEP\n";
  ProgramRun({"convert", Deck("a.inp", deck), "-o", File("a.sim")});
  ProgramRun({"write", File("a.sim"), "-o", File("b.inp")});
  const ProgramRun again({"convert", File("b.inp"), "-o", File("b.sim")});
  EXPECT_EQ(again.exitCode, 0) << again.err;
  EXPECT_EQ(ProgramRun({"diff", File("a.sim"), File("b.sim")}).exitCode, 0);
}

// A parameter that the vocabulary does not have would never be read, a block without a member hold
// nothing, and a text without its name help nobody.
TEST_F(FormWalk, RowsAreWhole) {
  for (const eds_Referable& referable : eds_referables())
    EXPECT_NE(referable.missing.find("%s"), std::string_view::npos)
        << "the text of a missing " << referable.word << " does not name it";
  const inp_KeywordTable& keywords = inp_KeywordTable::Instance();
  for (const eds_FormKeyword& row : eds_formKeywords()) {
    try {
      eds_formOf(row.kind);
    } catch (const std::exception& fault) { // what its notation refers to is not there
      ADD_FAILURE() << "the row of " << row.keyword << ", kind " << static_cast<int>(row.kind)
                    << ", cannot be read: " << fault.what();
      return;
    }
    const inpS_Form& form = *inpS_FormTable::Instance().Find(row.kind);
    if (form.keyword == inp_NullKeyword) {
      EXPECT_EQ(row.keyword, "None") << Name(form) << " is of no keyword of the vocabulary";
      continue;
    }
    const inp_KeywordRow& keyword = *keywords.Row(form.keyword);
    for (const inpS_ParameterBinding& one : form.parameters)
      EXPECT_NE(std::ranges::find(keyword.parameters, one.key), keyword.parameters.end())
          << Name(form) << ": *" << keyword.name << " has no parameter " << one.name;
    if (inpS_isBehavior(form.keyword)) continue; // held by their material
    if (isOfSteps(form)) continue;               // held by their step
    EXPECT_NE(inpS_block(keyword.block).member, eds_Member::Mesh)
        << Name(form) << ": block " << inpS_block(keyword.block).name << " holds no forms";
  }
}
