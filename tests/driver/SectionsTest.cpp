#include "base/utl_Stream.h"
#include "base/wip_WIPBase.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSrvBulkShellLayers.h"
#include "database/eds_ModelReader.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include "inpS/properties/inpS_SectionAssignments.h"
#include "inpS/properties/inpS_SectionFields.h"
#include "inpS/writer/inpS_Sim2Inp.h"
#include "tests/base/TemporaryFolder.h"
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

// Defined while it lives, whatever the value.
class BulkMode {
public:
  BulkMode() { Set("0"); }
  ~BulkMode() { Set(nullptr); }

private:
  static void Set(const char* value) {
#ifdef _WIN32
    _putenv_s("TRL_BULK_SHELL_SECTIONS", value ? value : "");
#else
    value ? setenv("TRL_BULK_SHELL_SECTIONS", value, 1) : unsetenv("TRL_BULK_SHELL_SECTIONS");
#endif
  }
};

class Reporter : public wip_WIPBase {
public:
  void Error(const wip_Message& message, int) override { ADD_FAILURE() << message.text; }
  void ErrorList(const cow_List<wip_Message>& messages, int level) override {
    for (const wip_Message& message : messages) Error(message, level);
  }
  void Warning(const wip_Message& message) override { ADD_FAILURE() << message.text; }
  void WarningList(const cow_List<wip_Message>& messages) override {
    for (const wip_Message& message : messages) Warning(message);
  }
};

KvoObjDocument convert(const cow_String& deck) {
  const TemporaryFolder folder;
  Reporter reporter;
  const wip_ReporterScope reporting(reporter);
  const cow_String path = (folder.Path() / "deck.inp").string();
  writeFile(folder / "deck.inp", deck);
  inpS_Inp2Sim driver(path, folder.Path().string());
  EXPECT_TRUE(driver.Parse() && driver.CheckUtf8Compliance() && driver.Expand() &&
              driver.Reorganize() && driver.BuildInventory());
  KvoObjDocument document = KvoObjDocument::InMemory();
  EXPECT_TRUE(driver.Convert(document));
  return document;
}

cow_String written(const KvoObjDocument& document) {
  cow_String text;
  utl_Stream out(&text);
  std::ostringstream diagnostics;
  inpS_Sim2Inp(document, 1, false, "", nullptr, diagnostics).Print(out);
  out.Flush();
  return text;
}

// All records but those of some kinds, field by field.
cow_List<eds_FieldValue> contentOf(const KvoObjDocument& document,
                                   const cow_List<eds_RecordKind>& without,
                                   cow_List<cow_String>& names) {
  const eds_ModelReader model(document);
  cow_List<eds_FieldValue> content;
  for (const eds_RecordInfo* kind : model.Kinds()) {
    if (std::ranges::find(without, kind->kind) != without.end()) continue;
    for (const int64_t id : model.RecordIDs(kind->kind)) {
      names.push_back(model.Describe({kind->kind, id}));
      for (std::size_t n = 0; n < kind->fields.size(); ++n)
        content.push_back(model.Value(kind->kind, id, static_cast<int>(n)));
    }
  }
  return content;
}

const char* const kShells =
    "*NODE, NSET=ALL\n1, 0., 0., 0.\n2, 1., 0., 0.\n3, 1., 1., 0.\n4, 0., 1., 0.\n"
    "*ELEMENT, TYPE=S4, ELSET=A\n1, 1, 2, 3, 4\n2, 1, 2, 3, 4\n"
    "*ELEMENT, TYPE=S4, ELSET=B\n3, 1, 2, 3, 4\n*ELEMENT, TYPE=M3D4, ELSET=C\n4, 1, 2, 3, 4\n"
    "*ELEMENT, TYPE=S4, ELSET=D\n5, 1, 2, 3, 4\n"
    "*MATERIAL, NAME=STEEL\n*DENSITY\n7.8,\n*MATERIAL, NAME=FOAM\n*DENSITY\n0.1,\n"
    "*DISTRIBUTION TABLE, NAME=T\nLENGTH\n"
    "*DISTRIBUTION, NAME=VARIES, LOCATION=ELEMENT, TABLE=T\n, 1.\n2, 2.\n"
    "*DISTRIBUTION TABLE, NAME=G\nANGLE\n"
    "*DISTRIBUTION, NAME=TURNS, LOCATION=ELEMENT, TABLE=G\n1, 10.\n2, 20.\n"
    "*NODAL THICKNESS\nALL, 0.5\n"
    "*SHELL SECTION, ELSET=A, COMPOSITE, SYMMETRIC, SECTION INTEGRATION=GAUSS\n"
    "0.25, 0, STEEL, 45., ONE\nVARIES, 3, FOAM, TURNS, TWO\n"
    "*SHELL SECTION, ELSET=B, MATERIAL=STEEL, NODAL THICKNESS\n2.5\n"
    "*MEMBRANE SECTION, ELSET=C, MATERIAL=FOAM\n0.125,\n"
    "*SHELL GENERAL SECTION, ELSET=D, MATERIAL=STEEL\n0.75,\n";

} // namespace

TEST(Sections, BulkModeAddsLayersAndChangesNothingElse) {
  const KvoObjDocument plain = convert(kShells);
  const BulkMode mode;
  const KvoObjDocument bulk = convert(kShells);
  EXPECT_EQ(written(bulk), written(plain));
  // Links and arrays are more, and number on.
  const cow_List<eds_RecordKind> more = {eds_RecordKind::ShellSection,
                                         eds_RecordKind::BulkShellLayers, eds_RecordKind::Array};
  cow_List<cow_String> names[2];
  EXPECT_TRUE(contentOf(plain, more, names[0]) == contentOf(bulk, more, names[1]));
  EXPECT_EQ(names[0], names[1]);

  const auto sections = bulk.Context().GetRecords(eds_RecordKind::ShellSection);
  const auto layers = bulk.Context().GetRecords(eds_RecordKind::BulkShellLayers);
  ASSERT_EQ(sections.size(), 4u);
  ASSERT_EQ(layers.size(), 4u);
  const KvoSrvShellSection first(sections[0]);
  EXPECT_TRUE(first.IsComposite() && first.IsSymmetric());
  EXPECT_EQ(first.Integration(), KvoSectionIntegration::Gauss);
  struct Layer {
    std::size_t section;
    double thickness;
    int points; // 0 of a layer by Gauss: two; a shell of one layer by Simpson: five
    double angle;
    const char* material;
  };
  const Layer wanted[] = {{0, 0.25, 2, 45., "STEEL"},
                          {0, 0., 3, 0., "FOAM"}, // the fields tell
                          {1, 2.5, 5, 0., "STEEL"},
                          {2, 0.125, 1, 0., "FOAM"},
                          {3, 0.75, 1, 0., "STEEL"}};
  std::size_t place = 0;
  for (std::size_t n = 0; n < layers.size(); ++n)
    for (const KvoShellPly& layer : KvoSrvBulkShellLayers(layers[n]).Plies()) {
      ASSERT_LT(place, std::size(wanted));
      const Layer& as = wanted[place++];
      EXPECT_EQ(as.section, n);
      EXPECT_EQ(layer.thickness, as.thickness);
      EXPECT_EQ(layer.integrationPoints, as.points);
      EXPECT_EQ(layer.angle, as.angle);
      EXPECT_EQ(layer.material.Name(), as.material);
    }
  EXPECT_EQ(place, std::size(wanted));
}

TEST(Sections, BulkLayersOfInstancesAndTheAssemblyAreToldApart) {
  std::ifstream file(std::filesystem::path(INPS_TESTS_DIR) / "decks/sections/instances.inp");
  std::stringstream deck;
  deck << file.rdbuf();
  const BulkMode mode;
  const KvoObjDocument document = convert(deck.str());
  cow_List<cow_String> told;
  for (const KvoSimPosition& record :
       document.Context().GetRecords(eds_RecordKind::BulkShellLayers)) {
    const KvoSimPosition section = record.DataRecord().GetReference(eds_BulkShellLayers_Section);
    std::ostringstream line;
    line << section.Name() << (KvoSrvShellSection(section).IsSymmetric() ? ", symmetric" : "");
    for (const KvoShellPly& ply : KvoSrvBulkShellLayers(record).Plies())
      line << "; " << ply.thickness << " x " << ply.integrationPoints << ' ' << ply.material.Name()
           << " at " << ply.angle;
    told.push_back(line.str());
  }
  // A thickness by distribution is told by the field, an orientation by the ply's own record.
  const cow_List<cow_String> wanted = {
      "Section-SHEET-OTHER; 0.5 x 3 STEEL at 15",
      "Section-HERE.SHELL; 0 x 7 STEEL at 0",
      "Section-THERE.OWN; 2 x 3 FOAM at 30",
      "Section-THERE.SHELL, symmetric; 0.125 x 3 FOAM at 0; 0.5 x 5 STEEL at 45",
      "Section-SHELL; 0.75 x 3 FOAM at 0", // one layer by Gauss
      "Section-HERE.SKIN; 0.1 x 1 STEEL at 0",
      "Section-THERE.SKIN; 0.2 x 1 FOAM at 0"};
  EXPECT_EQ(told, wanted);
}

TEST(Sections, WhatIsDerivedIsTheSameTheNextTime) {
  const KvoObjDocument document = convert(kShells);
  const auto told = [&] {
    cow_List<cow_String> lines;
    for (const KvoSimPosition& field : document.Context().GetRecords(eds_RecordKind::Field)) {
      cow_String line = field.Name() + " of " +
                        std::to_string(field.DataRecord().GetReference(eds_Field_Owner).ID());
      for (const KvoSimPosition& data : field.GetVector(eds_Member::Data))
        for (const KvoSimPosition& drawer : data.GetVector(eds_Member::Drawers)) {
          const KvoSimPosition array = drawer.DataRecord().GetReference(eds_Drawer_Array);
          eds_ArrayReader reader(eds_ArrayID{array.Store(), array.ID()});
          std::vector<double> values(static_cast<std::size_t>(reader.Count()));
          reader.ReadPiece(0, std::span(values));
          for (const double value : values) line += " " + std::to_string(value).substr(0, 4);
        }
      lines.push_back(line);
    }
    return lines;
  };
  const cow_List<cow_String> wanted = {"thickness of 2 1.00 2.00",
                                       "orientationAngle of 2 10.0 20.0",
                                       "thickness of 1 0.50 0.50 0.50 0.50"};
  EXPECT_EQ(told(), wanted);
  const auto counts = [&] {
    cow_List<std::size_t> all;
    for (const eds_RecordKind kind :
         {eds_RecordKind::Field, eds_RecordKind::Distribution, eds_RecordKind::Drawer,
          eds_RecordKind::Array, eds_RecordKind::SectionAssignment, eds_RecordKind::ElementRange})
      all.push_back(document.Context().GetRecords(kind).size());
    return all;
  };
  const cow_List<std::size_t> before = counts();
  inpS_deriveSectionAssignments(document);
  inpS_deriveSectionFields(document);
  EXPECT_EQ(told(), wanted);
  EXPECT_EQ(counts(), before);
}
