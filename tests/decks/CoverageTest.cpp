// What the decks of this tree, together, must reach: every field that code writes by hand, every
// member by which something is held, every text of the dictionaries, and every keyword that is told
// to be modelled. Forms are walked elsewhere (tests/forms, tests/materials).

#include "base/wip_WIPBase.h"
#include "database/KvoObjDocument.h"
#include "database/eds_ModelReader.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_Schema.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include "parser/inp_KeywordTable.h"
#include "tests/host/ProgramRun.h"
#include <nlohmann/json.hpp>
#include <set>

namespace {

using nlohmann::json;

struct Reached {
  std::set<cow_String> fields; // "Part.Name"
  std::set<eds_Member> members;
  cow_String messages;
};

class DeckCoverage : public ProgramTest {
protected:
  static cow_List<std::filesystem::path> Decks() {
    cow_List<std::filesystem::path> decks;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(
             std::filesystem::path(INPS_TESTS_DIR) / "decks"))
      if (entry.path().extension() == ".inp") decks.push_back(entry.path());
    return decks;
  }
  void Convert(const std::filesystem::path& deck, Reached& reached) const {
    constexpr std::string_view options = "** options: ";
    cow_List<cow_String> words = {"convert",     utl_pathText(deck), "-o",
                                  File("m.sim"), "--force",          "--json"};
    const cow_String text = readFile(utl_pathText(deck));
    if (text.starts_with(options)) {
      std::istringstream line(text.substr(options.size(), text.find('\n') - options.size()));
      for (cow_String word; line >> word;) words.push_back(word);
    }
    const ProgramRun run(words);
    const json said = json::parse(run.out, nullptr, false);
    if (said.is_discarded()) return;
    for (const json& message : said["messages"])
      reached.messages += message["text"].get<cow_String>() + "\n";
    if (!Exists("m.sim")) return;
    const KvoObjDocument document = KvoObjDocument::Open(File("m.sim"), KvoAccess::ReadOnly);
    const eds_ModelReader model(document);
    for (const eds_RecordInfo& record : eds_schemaRecords())
      for (const int64_t id : model.RecordIDs(record.kind)) Look(model, record, id, reached);
    for (const eds_RecordInfo* owner : model.Kinds())
      for (const int64_t id : model.RecordIDs(owner->kind))
        for (const eds_LinkInfo& link : model.Links(owner->kind, id))
          reached.members.insert(link.member);
  }

private:
  static void Look(const eds_ModelReader& model, const eds_RecordInfo& record, int64_t id,
                   Reached& reached) {
    for (std::size_t n = 0; n < record.fields.size(); ++n)
      if (!std::holds_alternative<std::monostate>(
              model.Value(record.kind, id, static_cast<int>(n))))
        reached.fields.insert(cow_String(record.name) + "." + cow_String(record.fields[n].name));
  }
};

// What no small deck reaches: kinds and fields.
const std::set<cow_String> elsewhere = {
    // the store's services make these for other programs (tests/database)
    "Region", "ShellSection", "ShellPly", "BulkShellLayers", "DSet",
    // large ones alone (tests/materials, tests/driver)
    "PropertyTable.Values", "CSet.Array", "SectionAssignment.Scattered",
    // the program that converts gives it
    "Model.ModelString",
    // of instances of another model, which stay errors
    "Instance.Library", "Instance.SourceInstance",
    // nobody writes them
    "Mesh.NodeCount", "Mesh.ElementCount", "MeshDefaults.SolidElementNumbering",
    "Surface.UserDefined"};

// Members that nothing of a deck fills.
const std::set<std::string_view> unfilled = {
    // of the store's services for other programs (tests/database)
    "Regions", "RegionCollection", "GridCollection", "Plies",
    // of keywords that are kept as text yet, and of what is held in another way
    "CouplingConstraintCollection", "CyclicSymmetry", "IrsDragchainRefNodes", "ElementNormals",
    "ElementSpecAssignment"};

// Texts that no deck can provoke.
const std::set<std::string_view> unprovoked = {
    // of a service that no phase asks for these
    "RequiredExclusiveParameters", "UnsupportedParameters", "UnsupportedParameterValues",
    // of keywords that are kept as text yet
    "PartNotCreated", "ConnectivityMissing", "PartsFromInstances", "EmptyPartInstances",
    "OrientationPointsEqual", "OrientationPointAtOrigin", "OrientationPointsInLine",
    "OrientationUnknown", "LayerAngleWithOrientation", "BlankTableRows", "FourierTermsMismatch",
    "PlyNameRepeated", "InstanceWithoutRigidSurface", "AssemblyWithoutRigidSurface",
    "PartWithoutRigidSurface",
    // other words tell of the same
    "OneRigidSurfacePerPart"};

const std::pair<std::string_view, std::string_view> texts[] = {
#define INPS_MESSAGE(name, text) {#name, text},
#include "inpS/messages/inpS_appMessages.def"
#define INPS_MESSAGE(name, text) {#name, text},
#include "inpS/messages/inpS_meshMessages.def"
#define INPS_MESSAGE(name, text) {#name, text},
#include "inpS/messages/inpS_modelMessages.def"
};

// Those that the walk over forms does not try: all of a record that is no form's, and what
// operations put into one that is.
cow_List<int> fieldsOfOperations(const eds_RecordInfo& record) {
  cow_List<int> fields;
  if (const eds_FormInfo* form = eds_formOf(record.kind)) {
    for (const eds_FormItem& item : form->parameters)
      if (const int field = item.alternatives.front().field;
          !item.isParameter && field != form->othersField) // that one is written for all in one way
        fields.push_back(field);
    return fields;
  }
  for (std::size_t n = 0; n < record.fields.size(); ++n) fields.push_back(static_cast<int>(n));
  return fields;
}

// The longest part of a text between its arguments.
cow_String longestPart(std::string_view text) {
  std::string_view longest;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find_first_of("%\"\n", begin), text.size());
    if (end - begin > longest.size()) longest = text.substr(begin, end - begin);
    begin = end + 1;
    while (end < text.size() && text[end] == '%' && begin < text.size() &&
           std::string_view("1234$s").find(text[begin]) != std::string_view::npos)
      ++begin;
  }
  return cow_String(longest);
}

} // namespace

TEST_F(DeckCoverage, EveryFieldIsWrittenAndEveryTextProvoked) {
  Reached reached;
  for (const std::filesystem::path& deck : Decks()) Convert(deck, reached);
  for (const eds_RecordInfo& record : eds_schemaRecords()) {
    if (elsewhere.contains(cow_String(record.name))) continue;
    for (const int field : fieldsOfOperations(record)) {
      const cow_String name = cow_String(record.name) + "." +
                              cow_String(record.fields[static_cast<std::size_t>(field)].name);
      EXPECT_NE(reached.fields.contains(name), elsewhere.contains(name))
          << name
          << (elsewhere.contains(name) ? " is written by a deck" : " is written by no deck");
    }
  }
  for (const eds_MemberInfo& member : eds_schemaMembers())
    EXPECT_NE(reached.members.contains(member.member), unfilled.contains(member.name))
        << "member " << member.name
        << (unfilled.contains(member.name) ? " is filled by a deck" : " is filled by no deck");
  for (const auto& [name, text] : texts) {
    const bool isProvoked = reached.messages.find(longestPart(text)) != cow_String::npos;
    EXPECT_NE(isProvoked, unprovoked.contains(name))
        << (isProvoked ? "a deck provokes " : "no deck provokes ") << name << ": "
        << longestPart(text);
  }
}

// What `inps keywords` tells of and what phases enter in the ledger are the same. A keyword whose
// phase forgets to take it is kept as text beside what became of it; one that is not listed would
// be told to be text.
TEST_F(DeckCoverage, EveryKeywordThatIsListedIsTakenAndNoOther) {
  struct : wip_WIPBase {
    void Error(const wip_Message&, int) override {}
    void ErrorList(const cow_List<wip_Message>&, int) override {}
    void Warning(const wip_Message&) override {}
    void WarningList(const cow_List<wip_Message>&) override {}
  } silence;
  const wip_ReporterScope reporting(silence);
  inpS_Ledger::Kinds taken;
  for (const std::filesystem::path& deck : Decks()) {
    inpS_Inp2Sim driver(utl_pathText(deck), utl_pathText(deck.parent_path()));
    if (!(driver.Parse() && driver.CheckUtf8Compliance() && driver.Expand() &&
          driver.Reorganize() && driver.BuildInventory()))
      continue;
    driver.Convert(KvoObjDocument::InMemory());
    inpS_Inp2Sim::ReportGathered();
    taken |= driver.TakenKinds();
  }
  inpS_Ledger::Kinds listed;
  for (const inp_KeywordEnm kind : inpS_Inp2Sim::CoveredKinds())
    if (kind != inp_KwInclude && kind != inp_KwParameter) // taken before there is a list
      listed.set(static_cast<std::size_t>(kind));
  for (const inp_KeywordRow& row : inp_KeywordTable::Instance().Rows()) {
    const auto kind = static_cast<std::size_t>(row.kind);
    EXPECT_EQ(taken[kind], listed[kind])
        << '*' << row.name
        << (listed[kind] ? " is listed, and nobody takes it" : " is taken, and not listed");
  }
}
