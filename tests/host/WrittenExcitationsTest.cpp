// Conditions and loads that another program made as excitations alone: written as keywords of the
// steps, and read again they act as before.

#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/eds_Array.h"
#include "database/schema/eds_FormKind.h"
#include "tests/host/ProgramRun.h"
#include <nlohmann/json.hpp>
#include <optional>

namespace {

using nlohmann::json;

struct Own {
  const char* kind;
  const char* field;
  const char* components;
  int first;
  int last; // 0: to the end
  const char* region;
  int label = 0;
  std::optional<double> magnitude = {};
  const char* load = nullptr;
  const char* restraint = nullptr;
  bool hasAmplitude = false;
};

class WrittenExcitations : public ProgramTest {
protected:
  static cow_String DeckOf(const cow_List<cow_String>& steps) {
    cow_String deck = cow_String(oneBrick) +
                      "*NSET, NSET=BASE\n1, 2, 3, 4\n*NSET, NSET=TOP\n5, 6, 7, 8\n"
                      "*SURFACE, NAME=S\nSOLID, S2\n*AMPLITUDE, NAME=RAMP\n0., 0., 1., 1.\n";
    for (const cow_String& step : steps) deck += step + "*END STEP\n";
    return deck;
  }

  // The model of the deck with excitations of its own.
  KvoObjDocument Open(const cow_String& deck) const {
    EXPECT_EQ(
        ProgramRun({"convert", Deck("a.inp", deck), "-o", File("a.sim"), "--force", "-q"}).err, "");
    return KvoObjDocument::Open(m_folder / "a.sim", KvoAccess::ReadWrite);
  }
  static KvoSimPosition Named(const KvoObjDocument& model, const cow_String& name) {
    for (const eds_RecordKind kind :
         {eds_RecordKind::NodeSet, eds_RecordKind::ElementSet, eds_RecordKind::Surface})
      for (const KvoSimPosition& one : model.Context().GetRecords(kind))
        if (one.Name() == name) return one;
    return {};
  }
  static KvoSimDataRecord Add(const KvoObjDocument& model, const Own& own) {
    const KvoSimPosition made = model.CreateDataRecord(eds_RecordKind::Excitation);
    KvoSimDataRecord record = made.DataRecord();
    record.SetString(eds_Excitation_Name, "Own_" + std::to_string(made.ID()));
    record.SetSymb(eds_Excitation_Kind, own.kind);
    if (own.field) record.SetString(eds_Excitation_Field, own.field);
    if (own.components) record.SetString(eds_Excitation_Components, own.components);
    if (own.load) record.SetString(eds_Excitation_Label, own.load);
    if (own.restraint) record.SetSymb(eds_Excitation_Restraint, own.restraint);
    record.SetInt(eds_Excitation_Step, own.first);
    if (own.magnitude) record.SetDouble(eds_Excitation_Magnitude, *own.magnitude);
    if (own.hasAmplitude)
      record.SetReference(eds_Excitation_Amplitude,
                          model.Context().GetRecords(eds_FormKind::AmplitudeTabular).front());
    KvoSimDataRecord relay = model.CreateDataRecord(eds_RecordKind::Relay).DataRecord();
    relay.SetReference(eds_Relay_Excitation, made);
    relay.SetInt(eds_Relay_FirstStep, own.first);
    if (own.last > 0) relay.SetInt(eds_Relay_LastStep, own.last);
    if (own.region) relay.SetReference(eds_Relay_Region, Named(model, own.region));
    if (own.label > 0) relay.SetInt(eds_Relay_Label, own.label);
    return relay;
  }
  static void Finish(KvoObjDocument& model) {
    model.Finish();
    model.Close();
  }

  // The deck written from the model, from its last block before the steps on, and what its own
  // conversion writes again.
  cow_String Written() const {
    EXPECT_EQ(ProgramRun({"write", File("a.sim"), "-o", File("w.inp"), "--force"}).err, "");
    EXPECT_EQ(ProgramRun({"convert", File("w.inp"), "-o", File("w.sim"), "--force", "-q"}).err, "");
    EXPECT_EQ(ProgramRun({"write", File("w.sim"), "-o", File("v.inp"), "--force"}).err, "");
    const cow_String deck = readFile(m_folder / "w.inp");
    EXPECT_EQ(deck, readFile(m_folder / "v.inp"));
    const std::size_t amplitude = deck.find("*AMPLITUDE");
    return deck.substr(deck.find('*', amplitude + 1));
  }
  // By step: "CLOAD TOP CF_D C_3 -5" and so on, sorted; nodes one by one, degree by degree.
  cow_List<cow_List<cow_String>> Acting(const char* name) const {
    cow_List<cow_List<cow_String>> steps;
    const ProgramRun run({"info", File(name), "--history", "--json"});
    const json told = json::parse(run.out);
    for (const json& step : told["history"]) {
      cow_List<cow_String>& acts = steps.emplace_back();
      for (const json& one : step["acting"]) {
        std::istringstream components(
            one["components"].is_null() ? "-" : one["components"].get<cow_String>());
        for (cow_String component; components >> component;) {
          cow_String text = one["keyword"].get<cow_String>() + " " + component;
          for (const char* what : {"region", "target", "members", "field", "load", "restraint",
                                   "magnitude", "base", "user", "submodel", "scale", "property"})
            if (!one[what].is_null() && one[what] != false) text += " " + one[what].dump();
          acts.push_back(text);
        }
      }
      std::ranges::sort(acts);
    }
    return steps;
  }
};

} // namespace

TEST_F(WrittenExcitations, ActAsBefore) {
  KvoObjDocument model = Open(DeckOf({"*STEP, NAME=A\n*STATIC\n", "*STEP, NAME=B\n*STATIC\n",
                                      "*STEP, PERTURBATION\n*FREQUENCY\n3\n",
                                      "*STEP, NAME=D\n*STATIC\n", "*STEP, NAME=E\n*STATIC\n"}));
  for (const Own& own : {
           Own{"BOUNDARY", nullptr, nullptr, 0, 0, "BASE", 0, {}, nullptr, "PINNED"},
           {"CLOAD", "CF_D", "C_1 C_3", 1, 1, "TOP", 0, 4.},
           {"CLOAD", "CF_D", "C_2", 1, 0, nullptr, 8, 1., nullptr, nullptr, true},
           {"DSLOAD", "P", nullptr, 1, 2, "S", 0, 3., "P"},
           {"DSLOAD", "P", nullptr, 4, 0, "S", 0, 6., "P"}, // in the place of the one before
           {"BOUNDARY", "U_R", "C_1 C_2", 2, 4, nullptr, 7, .5},
           {"TEMPERATURE", "NT", nullptr, 2, 2, "ALL", 0, 300.},
           {"TEMPERATURE", "NT", nullptr, 4, 0, "ALL", 0, 400.},
           {"FIELD", "FV3", nullptr, 1, 1, "TOP", 0, 2.},
           {"DLOAD", "P1", nullptr, 4, 4, "SOLID", 0, 9., "P1"},
           {"BOUNDARY", "NT", "0 2", 5, 0, nullptr, 5, 20.},
       })
    Add(model, own);
  Finish(model);
  const auto before = Acting("a.sim");
  EXPECT_EQ(
      Written(),
      "*BOUNDARY\nBASE, PINNED\n"
      "*STEP, NAME=A\n*STATIC\n*CLOAD\nTOP, 1, 4.\nTOP, 3, 4.\n*CLOAD, AMPLITUDE=RAMP\n8, 2, 1.\n"
      "*DSLOAD\nS, P, 3.\n*FIELD, VARIABLE=3\nTOP, 2.\n*END STEP\n"
      "*STEP, NAME=B\n*STATIC\n*BOUNDARY\n7, 4, 5, 0.5\n*CLOAD, OP=NEW\n8, 2, 1.\n"
      "*TEMPERATURE\nALL, 300.\n*FIELD, OP=NEW, VARIABLE=3\n*END STEP\n"
      "*STEP, PERTURBATION\n*FREQUENCY\n3\n*TEMPERATURE, OP=NEW\n*END STEP\n"
      "*STEP, NAME=D\n*STATIC\n*DSLOAD\nS, P, 6.\n*TEMPERATURE\nALL, 400.\n"
      "*DLOAD\nSOLID, P1, 9.\n*END STEP\n"
      "*STEP, NAME=E\n*STATIC\n*BOUNDARY, OP=NEW\nBASE, PINNED\n5, 11, 11, 20.\n"
      "5, 13, 13, 20.\n*DLOAD, OP=NEW\n*END STEP\n");
  EXPECT_EQ(Acting("w.sim"), before);
}

// What keywords gave before stays in force behind an OP=NEW that takes back another's: as much of
// it as later keywords have left.
TEST_F(WrittenExcitations, GivenOnesAreRepeated) {
  KvoObjDocument model =
      Open(DeckOf({"*STEP\n*STATIC\n*CLOAD, AMPLITUDE=RAMP\nTOP, 3, -5.\n1, 1, 2.\n"
                   "*DLOAD\nSOLID, GRAV, 9.8, 0., 0., -1.\n*BOUNDARY\nBASE, ENCASTRE\n5, 1, 6\n",
                   "*STEP\n*STATIC\n*CLOAD\n6, 3, -7.\n*BOUNDARY\n2, 3, 3, 0.25\n5, 2, 3, 1.\n",
                   "*STEP\n*STATIC\n*CLOAD\n7, 3, 1.\n"}));
  for (const Own& own : {Own{"CLOAD", "CF_D", "C_1", 2, 2, nullptr, 8, 4.},
                         {"DLOAD", "P1", nullptr, 1, 2, "SOLID", 0, 3., "P1"},
                         {"BOUNDARY", "U_D", "C_1", 1, 2, nullptr, 8}})
    Add(model, own);
  Finish(model);
  const cow_String deck = Written();
  EXPECT_EQ(deck.substr(deck.rfind("*STEP")),
            "*STEP\n*STATIC\n*CLOAD, OP=NEW\n5, 3, -5.\n8, 3, -5.\n1, 1, 2.\n"
            "*CLOAD, OP=NEW\n6, 3, -7.\n"
            "*DLOAD, OP=NEW\nSOLID, GRAV, 9.8, 0., 0., -1.\n"
            "*BOUNDARY, OP=NEW\nBASE, 1, 2\nBASE, 4, 6\n1, 3, 3\n3, 3, 3\n4, 3, 3\n"
            "5, 1, 1\n5, 4, 6\n*BOUNDARY, OP=NEW\n2, 3, 3, 0.25\n5, 2, 3, 1.\n"
            "*CLOAD\n7, 3, 1.\n*END STEP\n");
}

// Other forms of the keyword, too: values that go on over lines, what a file maps, what a parameter
// chooses.
TEST_F(WrittenExcitations, GivenOnesOfOtherFormsAreRepeated) {
  const cow_String values = "1., 2., 3., 4., 5., 6., 7.,\n8.\n";
  KvoObjDocument model =
      Open(DeckOf({"*STEP\n*STATIC\n*TEMPERATURE, FILE=before, DRIVING ELSETS\nSOLID\n"
                   "*TEMPERATURE\nTOP, " +
                       values +
                       "*MOTION, TRANSLATION\n1, 1, 2, 3.\n"
                       "*MOTION, ROTATION, TYPE=VELOCITY\nTOP, 3., 0., 0., 0., 0., 0., 1.\n"
                       "*FIELD\n1, 5.\n2, 6.\n",
                   "*STEP\n*STATIC\n*TEMPERATURE\n8, 5.\n*FIELD\n1, 7.\n", "*STEP\n*STATIC\n"}));
  for (const Own& own : {Own{"TEMPERATURE", "NT", nullptr, 1, 2, nullptr, 1, 4.},
                         {"MOTION", "U_D", "C_3", 1, 2, nullptr, 8, 4.},
                         {"FIELD", "FV1", nullptr, 1, 2, nullptr, 3, 4.}})
    Add(model, own);
  Finish(model);
  const cow_String deck = Written();
  EXPECT_EQ(deck.substr(deck.rfind("*STEP")),
            "*STEP\n*STATIC\n*TEMPERATURE, OP=NEW, FILE=\"before\", DRIVING ELSETS\nSOLID\n"
            "*TEMPERATURE, OP=NEW\n5, " +
                values + "6, " + values + "7, " + values +
                "*TEMPERATURE, OP=NEW\n8, 5.\n"
                "*MOTION, OP=NEW, TRANSLATION\n1, 1, 2, 3.\n"
                "*MOTION, OP=NEW, TYPE=VELOCITY, ROTATION\nTOP, 3., 0., 0., 0., 0., 0., 1.\n"
                "*FIELD, OP=NEW\n2, 6.\n*FIELD, OP=NEW\n1, 7.\n*END STEP\n");
}

// A keyword of the step takes back another program's, too, and those that go on are given again.
TEST_F(WrittenExcitations, GoOnBehindANewKeyword) {
  KvoObjDocument model =
      Open(DeckOf({"*STEP\n*STATIC\n", "*STEP\n*STATIC\n*CLOAD, OP=NEW\n1, 1, 2.\n",
                   "*STEP\n*STATIC, DIRECT\n"}));
  Add(model, {"CLOAD", "CF_R", "C_2", 1, 0, nullptr, 8, 4., nullptr, nullptr, true});
  Add(model, {"CLOAD", "CF_D", nullptr, 1, 1, nullptr, 7, 4.});
  // The same under another relay, after a step without it.
  KvoSimDataRecord again = Add(model, {"DSLOAD", "P", nullptr, 1, 1, "S", 0, 3., "P"});
  KvoSimDataRecord relay = model.CreateDataRecord(eds_RecordKind::Relay).DataRecord();
  relay.SetReference(eds_Relay_Excitation, again.GetReference(eds_Relay_Excitation));
  relay.SetReference(eds_Relay_Region, again.GetReference(eds_Relay_Region));
  relay.SetInt(eds_Relay_FirstStep, 2);
  Finish(model);
  EXPECT_EQ(
      Written(),
      "*STEP\n*STATIC\n*CLOAD, AMPLITUDE=RAMP\n8, 5, 4.\n*CLOAD\n7, 1, 4.\n7, 2, 4.\n7, 3, 4.\n"
      "*DSLOAD\nS, P, 3.\n*END STEP\n*STEP\n*STATIC\n*CLOAD\n8, 5, 4.\n*CLOAD, OP=NEW\n"
      "1, 1, 2.\n*END STEP\n*STEP\n*STATIC, DIRECT\n*END STEP\n");
}

// One value for each node of a set, or for those that are left of it; a load case; a part's set.
TEST_F(WrittenExcitations, RegionsOfManyKinds) {
  KvoObjDocument model =
      Open(cow_String("*PART, NAME=P\n") + oneBrick +
           "*NSET, NSET=ENDS\n1, 8\n*END PART\n*ASSEMBLY, NAME=A\n"
           "*INSTANCE, NAME=P-1, PART=P\n*END INSTANCE\n*INSTANCE, NAME=P-2, PART=P\n2., 0., "
           "0.\n*END INSTANCE\n"
           "*END ASSEMBLY\n*AMPLITUDE, NAME=RAMP\n0., 0., 1., 1.\n*STEP, PERTURBATION\n*STATIC\n"
           "*LOAD CASE, NAME=L\n*END LOAD CASE\n*END STEP\n*STEP\n*STATIC\n*END STEP\n");
  const KvoSimPosition second = model.GetModel().Occurences()[1];
  const auto excitationOf = [](const KvoSimDataRecord& relay) {
    return relay.GetReference(eds_Relay_Excitation).DataRecord();
  };
  eds_ArrayWriter values(model.Focus(), eds_ValueType::Double, 1);
  values.Append(std::span<const double>(std::initializer_list<double>{10., 20.}));
  KvoSimDataRecord one = Add(model, {"BOUNDARY", "NT", nullptr, 2, 0, "ENDS"});
  one.SetReference(eds_Relay_Instance, second);
  excitationOf(one).SetReference(eds_Excitation_Magnitudes, values.Finish().Position());
  one = Add(model, {"CLOAD", "CF_D", "C_3", 1, 1, "ENDS", 0, 5.});
  excitationOf(one).SetReference(eds_Excitation_LoadCase,
                                 model.Context().GetRecords(eds_FormKind::LoadCase).front());
  one = Add(model, {"BOUNDARY", "V_R", "C_2", 2, 0, "ALL", 0, 1.});
  one.SetSet(eds_Relay_Members, KvoSimCSet(model.GetMesh().GetNodeCollection(), 7, 2).NewID());
  one = Add(model, {"DLOAD", "BX", nullptr, 2, 0, nullptr, 0, 9.8, "BX"});
  Finish(model);
  EXPECT_EQ(
      Written(),
      "*STEP, PERTURBATION\n*STATIC\n*LOAD CASE, NAME=L\n*CLOAD\nP-1.ENDS, 3, 5.\nP-2.ENDS, 3, 5.\n"
      "*END LOAD CASE\n*END STEP\n*STEP\n*STATIC\n*BOUNDARY\nP-2.1, 11, 11, 10.\nP-2.8, 11, 11, "
      "20.\n"
      "*BOUNDARY, TYPE=VELOCITY\nP-1.8, 5, 5, 1.\nP-2.1, 5, 5, 1.\n*DLOAD\n, BX, 9.8\n*END "
      "STEP\n");
}

// What keywords say beside their lines; what is left of a restraint.
TEST_F(WrittenExcitations, ParametersOfManyKinds) {
  KvoObjDocument model = Open(DeckOf(
      {"*ELEMENT, TYPE=CONN3D2, ELSET=LINK\n50, 1, 7\n*STEP\n*STATIC\n", "*STEP\n*STATIC\n"}));
  Add(model, {"FLUID BOUNDARY", "VELX", nullptr, 1, 0, "BASE", 0, 2., "VELX"});
  Add(model, {"FLUID BOUNDARY", "P", nullptr, 1, 0, "S", 0, 3., "P"});
  Add(model, {"FLUID BOUNDARY", "VELX2", nullptr, 1, 0, nullptr, 1, 3., "VELX2"});
  Add(model, {"CLOAD", "CF_D", "C_1", 1, 0, "TOP", 0, 4.})
      .GetReference(eds_Relay_Excitation)
      .DataRecord()
      .SetInt(eds_Excitation_LoadCaseNumber, 2);
  Add(model, {"MOTION", "V_D", "C_3", 1, 0, "TOP", 0, 5.});
  Add(model, {"CONNECTOR MOTION", "CA_R", "C_1", 1, 0, "LINK", 0, 6.});
  Add(model, {"BOUNDARY", nullptr, "C_3 C_5", 1, 0, "BASE", 0, {}, nullptr, "YASYMM"});
  Add(model, {"BASE MOTION", "BASE_R", "C_2", 1, 1, nullptr, 0, {}, nullptr, nullptr, true});
  Finish(model);
  EXPECT_EQ(Written(),
            "*STEP\n*STATIC\n*FLUID BOUNDARY, TYPE=NODE\nBASE, VELX, 2.\n"
            "*FLUID BOUNDARY, TYPE=SURFACE\nS, P, 3.\n*FLUID BOUNDARY, TYPE=ELEMENT\n1, VELX2, 3.\n"
            "*CLOAD, LOAD CASE=2\nTOP, 1, 4.\n*MOTION, TRANSLATION, TYPE=VELOCITY\nTOP, 3, 3, 5.\n"
            "*CONNECTOR MOTION, TYPE=ACCELERATION\nLINK, 4, 6.\n*BOUNDARY\nBASE, 3, 3\nBASE, 5, 5\n"
            "*BASE MOTION, AMPLITUDE=RAMP, DOF=5\n*END STEP\n*STEP\n*STATIC\n*END STEP\n");
}

// Routines, global analyses and properties have what no line says; conditions make the base that a
// motion moves.
TEST_F(WrittenExcitations, ValuesFromElsewhere) {
  KvoObjDocument model =
      Open(DeckOf({"*IMPEDANCE PROPERTY, NAME=LINING\n1e-9, 2e-9\n"
                   "*INCIDENT WAVE PROPERTY, NAME=BLAST\n0., 0., 9.\n0., 0., 99.\n*STEP\n*STATIC\n",
                   "*STEP\n*STATIC\n"}));
  const auto add = [&](const Own& own) {
    return Add(model, own).GetReference(eds_Relay_Excitation).DataRecord();
  };
  const auto property = [&](KvoSimDataRecord excitation, eds_RecordKind kind) {
    excitation.SetReference(eds_Excitation_Property, model.Context().GetRecords(kind).front());
  };
  add({"BOUNDARY", "U_D", "C_1 C_2 C_3", 1, 0, nullptr, 1, 0.})
      .SetString(eds_Excitation_Base, "Floor");
  add({"BOUNDARY", "U_R", "C_1", 1, 0, "TOP"}).SetBool(eds_Excitation_User, true);
  add({"TEMPERATURE", "NT", nullptr, 1, 0, nullptr}).SetBool(eds_Excitation_User, true);
  KvoSimDataRecord one = add({"BOUNDARY", "U_D", "C_2", 1, 0, "TOP"});
  one.SetBool(eds_Excitation_Submodel, true);
  one.SetInt(eds_Excitation_GlobalStep, 3);
  one.SetBool(eds_Excitation_TimeScale, true);
  one.SetDouble(eds_Excitation_Scale, 2.5);
  one = add({"DSLOAD", nullptr, nullptr, 1, 0, "S"});
  one.SetBool(eds_Excitation_Submodel, true);
  one.SetInt(eds_Excitation_GlobalStep, 1);
  one.SetInt(eds_Excitation_GlobalIncrement, 7);
  add({"FILM", "F1NU", nullptr, 1, 0, "SOLID", 0, {}, "F1NU"});
  property(add({"SIMPEDANCE", nullptr, nullptr, 1, 0, "S"}), eds_FormKind::AdmittanceTable);
  property(
      add({"INCIDENT WAVE", "ACCELERATION", nullptr, 1, 1, "S", 0, 4., nullptr, nullptr, true}),
      eds_FormKind::IncidentWaveProperty);
  one = add({"BASE MOTION", "BASE_V_R", "C_2", 1, 1, nullptr, 0, {}, nullptr, nullptr, true});
  one.SetString(eds_Excitation_Base, "Floor");
  one.SetDouble(eds_Excitation_Scale, 9.5);
  add({"BOUNDARY", nullptr, nullptr, 1, 0, nullptr, 2}).SetBool(eds_Excitation_Submodel, true);
  Finish(model);
  const auto before = Acting("a.sim");
  const cow_String deck = Written();
  EXPECT_EQ(deck.substr(deck.find("*STEP")),
            "*STEP\n*STATIC\n*BOUNDARY, BASE NAME=\"Floor\"\n1, 1, 3, 0.\n*BOUNDARY, USER\n"
            "TOP, 4, 4\n*BOUNDARY, SUBMODEL, STEP=3, SCALE=2.5, TIME SCALE\nTOP, 2, "
            "2\n*BOUNDARY, SUBMODEL\n2\n"
            "*TEMPERATURE, USER\n*DSLOAD, INC=7, STEP=1, SUBMODEL\nS\n*FILM\nSOLID, F1NU\n"
            "*SIMPEDANCE, PROPERTY=LINING\nS\n"
            "*INCIDENT WAVE, ACCELERATION AMPLITUDE=RAMP, PROPERTY=BLAST\nS, 4.\n"
            "*BASE MOTION, AMPLITUDE=RAMP, DOF=5, SCALE=9.5, TYPE=VELOCITY, BASE NAME=\"Floor\"\n"
            "*END STEP\n*STEP\n*STATIC\n*INCIDENT WAVE, PROPERTY=BLAST, OP=NEW\n*END STEP\n");
  EXPECT_EQ(Acting("w.sim"), before);
}

// It takes back what stands before it, so what begins in its step stands behind it.
TEST_F(WrittenExcitations, ReliefBehindItsRemoval) {
  KvoObjDocument model =
      Open(DeckOf({"*STEP\n*STATIC\n*INERTIA RELIEF\n2\n", "*STEP\n*STATIC\n", "*STEP\n*STATIC\n",
                   "*STEP\n*STATIC\n*INERTIA RELIEF, REMOVE\n*DLOAD\nSOLID, P1, 1.\n",
                   "*STEP\n*STATIC\n", "*STEP\n*STATIC\n"}));
  Add(model, {"INERTIA RELIEF", nullptr, "C_3", 2, 2, nullptr});
  Add(model, {"INERTIA RELIEF", nullptr, "C_1 C_ROT3", 4, 5, nullptr});
  Finish(model);
  EXPECT_EQ(Written(), "*STEP\n*STATIC\n*INERTIA RELIEF\n2\n*END STEP\n"
                       "*STEP\n*STATIC\n*INERTIA RELIEF\n3\n*END STEP\n"
                       "*STEP\n*STATIC\n*INERTIA RELIEF\n2\n*END STEP\n"
                       "*STEP\n*STATIC\n*INERTIA RELIEF, REMOVE\n*INERTIA RELIEF\n1, 6\n"
                       "*DLOAD\nSOLID, P1, 1.\n*END STEP\n"
                       "*STEP\n*STATIC\n*END STEP\n"
                       "*STEP\n*STATIC\n*INERTIA RELIEF, REMOVE\n*END STEP\n");
  const auto acting = Acting("w.sim");
  EXPECT_EQ(acting[3], (cow_List<cow_String>{"DLOAD - \"SOLID\" \"P1\" \"P1\" 1.0",
                                             "INERTIA RELIEF C_1", "INERTIA RELIEF C_ROT3"}));
  EXPECT_EQ(acting[4], acting[3]);
  EXPECT_EQ(acting[5].size(), 1U);
}

TEST_F(WrittenExcitations, LoadCasesOfSubstructures) {
  const cow_String step =
      "*STEP\n*SUBSTRUCTURE GENERATE, TYPE=Z1\n*RETAINED NODAL DOFS\nBASE, 1, 3\n"
      "*SUBSTRUCTURE LOAD CASE, NAME=L\n";
  KvoObjDocument model = Open(DeckOf({step}));
  Add(model, {"CLOAD", "CF_D", "C_1", 1, 1, "TOP", 0, 4.})
      .GetReference(eds_Relay_Excitation)
      .DataRecord()
      .SetReference(eds_Excitation_LoadCase,
                    model.Context().GetRecords(eds_FormKind::SubstructureLoadCase).front());
  Finish(model);
  EXPECT_EQ(Written(), step + "*CLOAD\nTOP, 1, 4.\n*END STEP\n");
}

TEST_F(WrittenExcitations, WhatNoLineSaysIsTold) {
  KvoObjDocument model = Open(DeckOf({"*STEP\n*STATIC\n"}));
  Add(model, {"BASE MOTION", "BASE", nullptr, 1, 1, nullptr});
  Add(model, {"DLOAD", "GRAV", nullptr, 1, 1, nullptr, 0, 9.8, "GRAV"}); // whose direction?
  Add(model, {"FILM", "F1", nullptr, 1, 1, nullptr, 1, 20., "F1"});      // which coefficient?
  Add(model, {"TEMPERATURE", "NT", nullptr, 1, 1, nullptr, 0, 5.});      // of which nodes?
  Finish(model);
  const ProgramRun run({"write", File("a.sim")});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_TRUE(run.Says("Own_1 (BASE MOTION) has no keyword behind it")) << run.err;
  EXPECT_TRUE(run.Says("Own_2 (DLOAD) has no keyword behind it")) << run.err;
  EXPECT_TRUE(run.Says("Own_3 (FILM) has no keyword behind it")) << run.err;
  EXPECT_TRUE(run.Says("Own_4 (TEMPERATURE) has no keyword behind it")) << run.err;
}

// Nothing in the place of a target would be the whole model.
TEST_F(WrittenExcitations, RegionsOfNothingAreDamage) {
  for (const bool hasMembers : {false, true}) {
    KvoObjDocument model = Open(DeckOf({"*STEP\n*STATIC\n"}));
    KvoSimDataRecord relay = Add(model, {"DLOAD", "P1", nullptr, 1, 1, nullptr, 0, 3., "P1"});
    if (hasMembers)
      relay.SetSet(eds_Relay_Members,
                   KvoSimCSet(model.GetMesh().GetElementCollection(), 7, 2).NewID());
    else
      relay.SetReference(eds_Relay_Region, model.Focus());
    Finish(model);
    const ProgramRun run({"write", File("a.sim")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(run.Says("is damaged")) << run.err;
    const ProgramRun info({"info", File("a.sim"), "--history"});
    EXPECT_FALSE(info.Says("internal error")) << info.err;
  }
}
