// Decks made by chance: what they mean is in the model, and they come back as they went.
//
// INPS_RANDOM_DECKS=N runs N decks instead of a few; INPS_RANDOM_SEED=S begins with another seed;
// INPS_RANDOM_KEEP=FOLDER keeps the decks of the seeds that failed.

#include "tests/random/RandomDeck.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjLabeler.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "tests/host/ProgramRun.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

long long numberOf(const char* variable, long long otherwise) {
  const char* text = std::getenv(variable);
  return text && *text ? std::atoll(text) : otherwise;
}

// The model beside what the deck meant.
class MeantModel {
public:
  MeantModel(const RandomDeck& deck, const std::filesystem::path& file)
      : m_deck(deck), m_document(KvoObjDocument::Open(file, KvoAccess::ReadOnly)),
        m_mesh(m_document.GetMesh()), m_nodes(m_document, 0), m_elements(m_document, 1) {
    m_nodes.Read();
    m_elements.Read();
    for (const MeantScope& scope : deck.scopes) m_owners.push_back(OwnerOf(scope));
  }

  void Compare() {
    for (std::size_t n = 0; n < m_deck.scopes.size(); ++n) {
      m_scope = static_cast<int>(n);
      ASSERT_FALSE(m_owners[n].IsNull()) << m_deck.scopes[n].name;
      ComparePoints();
      CompareElements();
      CompareSets(true);
      CompareSets(false);
    }
  }

private:
  const MeantScope& Scope() const { return m_deck.scopes[static_cast<std::size_t>(m_scope)]; }
  const KvoSimPosition& Owner() const { return m_owners[static_cast<std::size_t>(m_scope)]; }

  KvoSimPosition OwnerOf(const MeantScope& scope) const {
    const KvoObjModel model = m_document.GetModel();
    if (scope.kind == MeantScope::Part) return model.GetPart(scope.name);
    if (scope.kind == MeantScope::Instance) return model.GetOccurence(scope.name);
    return model.GetAssembly().IsNull() ? model.Position() : model.GetAssembly();
  }

  std::size_t CountOf(const MeantScope& scope) const {
    std::size_t count = scope.points.size() + static_cast<std::size_t>(scope.middleNodes);
    for (const int label : scope.impliedNodes)
      if (!scope.points.contains(label)) ++count;
    return scope.part < 0 ? count
                          : count + CountOf(m_deck.scopes[static_cast<std::size_t>(scope.part)]);
  }

  void ComparePoints() {
    const int occurrence = m_nodes.FindOccurrence(Owner());
    std::size_t count = 0;
    for (const KvoMeshNodeBlock& block : m_mesh.NodeBlocks(Owner())) {
      cow_List<double> points(3 * static_cast<std::size_t>(block.count));
      eds_ArrayReader(block.coordinates).ReadPiece(0, std::span<double>(points));
      count += static_cast<std::size_t>(block.count);
      for (long long n = 0; n < block.count; ++n) {
        const Meant node{m_scope, m_nodes.GetInstanceLabel(occurrence, block.first + n)};
        if (!m_deck.IsGiven(node)) continue; // made by an element
        const std::array<double, 3> meant = m_deck.PointOf(node);
        for (std::size_t i = 0; i < 3; ++i)
          ASSERT_NEAR(points[3 * static_cast<std::size_t>(n) + i], meant[i], 1e-8)
              << Scope().name << " node " << node.label << " component " << i;
      }
    }
    EXPECT_EQ(count, CountOf(Scope())) << "nodes of " << Scope().name;
  }

  void CompareElements() {
    const int occurrence = m_elements.FindOccurrence(Owner());
    for (const KvoMeshElementBlock& block : m_mesh.ElementBlocks(Owner())) {
      cow_List<int> nodes(static_cast<std::size_t>(block.count * block.width));
      eds_ArrayReader(block.connectivity).ReadPiece(0, std::span<int>(nodes));
      const cow_String type = block.spec.DataRecord().ReturnString(eds_ElementSpec_Name);
      for (long long n = 0; n < block.count; ++n) {
        const int label = m_elements.GetInstanceLabel(occurrence, block.first + n);
        const MeantElement* meant = m_deck.ElementOf({m_scope, label});
        ASSERT_TRUE(meant) << Scope().name << " has an element " << label;
        EXPECT_EQ(type, meant->type) << "element " << label;
        CompareNodes(*meant, label,
                     std::span(nodes).subspan(static_cast<std::size_t>(n * block.width),
                                              static_cast<std::size_t>(block.width)));
      }
    }
    std::size_t count = Scope().elements.size();
    if (Scope().part >= 0)
      count += m_deck.scopes[static_cast<std::size_t>(Scope().part)].elements.size();
    const int64_t labels = occurrence < 0 ? 0 : m_elements.Size(occurrence);
    EXPECT_EQ(static_cast<std::size_t>(labels), count);
  }

  // In the scope of the element or, in an assembly, of the instances.
  Meant NodeOf(int entry) const {
    if (entry < 0) return {0, 0};
    const int own = m_nodes.FindOccurrence(Owner());
    if (entry < m_nodes.Size(own)) return {m_scope, m_nodes.GetInstanceLabel(own, entry)};
    int64_t local = 0;
    const int occurrence = m_nodes.OccurrenceOfFlat(entry, local);
    return {ScopeOf(m_nodes, occurrence), m_nodes.GetInstanceLabel(occurrence, local)};
  }

  int ScopeOf(const KvoObjLabeler& labeler, int occurrence) const {
    for (std::size_t n = 0; n < m_owners.size(); ++n)
      if (labeler.FindOccurrence(m_owners[n]) == occurrence) return static_cast<int>(n);
    return -1;
  }

  void CompareNodes(const MeantElement& meant, int label, std::span<const int> entries) const {
    cow_List<Meant> nodes = meant.nodes;
    const bool ofPart = Scope().part >= 0 && !Scope().elements.contains(label);
    for (Meant& node : nodes)
      if (ofPart) node.scope = m_scope;
    for (std::size_t n = 0; n < std::max(nodes.size(), entries.size()); ++n) {
      const Meant wanted = n < nodes.size() ? nodes[n] : Meant{m_scope, 0};
      const Meant found = n < entries.size() ? NodeOf(entries[n]) : Meant{m_scope, 0};
      const bool made = meant.type.starts_with("GK3D18") && n >= 16 && n >= nodes.size();
      if (made || (wanted.label == 0 && found.label == 0)) continue;
      EXPECT_EQ(wanted, found) << Scope().name << " element " << label << " node " << n + 1 << ": "
                               << wanted.label << ", not " << found.label;
    }
  }

  void CompareSets(bool nodes) {
    std::size_t count = 0;
    for (const bool internal : {false, true})
      for (const KvoSimPosition& position :
           nodes ? m_mesh.NodeSets(Owner(), internal) : m_mesh.ElementSets(Owner(), internal)) {
        const KvoSimDataRecord record = position.DataRecord();
        const cow_String name = record.ReturnString(nodes ? eds_NodeSet_Name : eds_ElementSet_Name);
        const auto meant = Scope().Sets(nodes).find(name);
        ASSERT_NE(meant, Scope().Sets(nodes).end()) << "a set \"" << name << '"';
        EXPECT_EQ(internal, meant->second.internal) << name;
        ++count;
        CompareMembers(name, meant->second,
                       record.GetSet(nodes ? eds_NodeSet_Membership : eds_ElementSet_Membership),
                       nodes);
      }
    EXPECT_EQ(count, Scope().Sets(nodes).size()) << "sets of " << Scope().name;
  }

  void CompareMembers(const cow_String& name, const MeantSet& set, const KvoSimCSet& membership,
                      bool nodes) const {
    const KvoObjLabeler& labeler = nodes ? m_nodes : m_elements;
    cow_List<Meant> found;
    for (long long n = 0; !membership.IsNull() && n < membership.Size(); ++n) {
      int64_t local = membership.Set()[n];
      int scope = m_scope;
      int occurrence = labeler.FindOccurrence(Owner());
      if (Scope().kind != MeantScope::Part) {
        occurrence = labeler.OccurrenceOfFlat(local, local);
        scope = ScopeOf(labeler, occurrence);
      }
      const Meant member{scope, labeler.GetInstanceLabel(occurrence, local)};
      if (m_deck.Has(member, nodes)) found.push_back(member);
    }
    cow_List<Meant> meant = m_deck.MembersOf(set, nodes);
    const auto named = [](const MeantSet::Entry& entry) { return !entry.name.empty(); };
    if (!set.unsorted || std::ranges::any_of(set.entries, named)) {
      for (cow_List<Meant>* list : {&meant, &found}) {
        std::ranges::sort(*list);
        if (set.unsorted || list == &meant)
          list->erase(std::unique(list->begin(), list->end()), list->end());
      }
    }
    EXPECT_EQ(found, meant) << Scope().name << (nodes ? " nset " : " elset ") << name;
  }

  const RandomDeck& m_deck;
  KvoObjDocument m_document;
  KvoObjMesh m_mesh;
  KvoObjLabeler m_nodes;
  KvoObjLabeler m_elements;
  cow_List<KvoSimPosition> m_owners;
  int m_scope = 0;
};

class RandomDecks : public testing::Test {
protected:
  void WriteFiles(const RandomDeck& deck) const {
    for (const auto& [name, text] : deck.files) writeFile(m_folder / name, text);
  }
  cow_String File(std::string_view name) const { return utl_pathText(m_folder / name); }

  ProgramRun Convert(std::string_view deck, std::string_view model) const {
    return ProgramRun({"convert", File(deck), "-o", File(model), "--force", "--quiet"});
  }

  void RoundTrip() const {
    const ProgramRun check({"check", File("a.sim")});
    ASSERT_EQ(check.exitCode, 0) << check.out << check.err;
    ASSERT_EQ(ProgramRun({"write", File("a.sim"), "-o", File("a.inp"), "--force"}).exitCode, 0);
    const ProgramRun again = Convert("a.inp", "b.sim");
    ASSERT_EQ(again.exitCode, 0) << again.err.substr(0, 3000);
    const ProgramRun diff({"diff", File("a.sim"), File("b.sim")});
    EXPECT_EQ(diff.exitCode, 0) << diff.out.substr(0, 3000);
    ASSERT_EQ(ProgramRun({"write", File("b.sim"), "-o", File("b.inp"), "--force"}).exitCode, 0);
    EXPECT_TRUE(readFile(m_folder / "a.inp") == readFile(m_folder / "b.inp"));
  }

  void Keep(std::uint64_t seed) const {
    const char* folder = std::getenv("INPS_RANDOM_KEEP");
    if (!folder || !HasFailure()) return;
    std::filesystem::copy(m_folder.Path(),
                          std::filesystem::path(folder) / ("seed" + std::to_string(seed)),
                          std::filesystem::copy_options::recursive |
                              std::filesystem::copy_options::overwrite_existing);
  }

  template <class Check> void ForSeeds(long long few, Check check) const {
    const long long first = numberOf("INPS_RANDOM_SEED", 1);
    const long long count = numberOf("INPS_RANDOM_DECKS", few);
    for (long long seed = first; seed < first + count && !HasFailure(); ++seed) {
      SCOPED_TRACE("seed " + std::to_string(seed));
      check(static_cast<std::uint64_t>(seed));
      Keep(static_cast<std::uint64_t>(seed));
    }
  }

  TemporaryFolder m_folder;
};

TEST_F(RandomDecks, MeanWhatTheySayAndComeBack) {
  ForSeeds(40, [&](std::uint64_t seed) {
    const RandomDeck deck(seed);
    WriteFiles(deck);
    const ProgramRun run = Convert("deck.inp", "a.sim");
    ASSERT_EQ(run.exitCode, 0) << run.err.substr(0, 3000);
    MeantModel(deck, m_folder / "a.sim").Compare();
    RoundTrip();
  });
}

// One fault: bytes replaced, a piece lost or doubled, the end cut off.
void spoil(cow_String& text, Random& random) {
  constexpr std::string_view bytes = "*,=\"\n\r\t .-+0189eEdD<>()\x80\xC3\xFF\0Az";
  if (text.empty()) return;
  const auto size = static_cast<long long>(text.size());
  const auto at = static_cast<std::size_t>(random.Below(size));
  const auto length =
      static_cast<std::size_t>(random.OneIn(3) ? random.Below(200) : random.Below(8));
  switch (random.Below(7)) {
  case 0:
    text.resize(at);
    break;
  case 1:
    text.erase(at, length);
    break;
  case 2:
    text.insert(static_cast<std::size_t>(random.Below(size)), text.substr(at, length));
    break;
  case 3: {
    const std::size_t line = text.find('\n', at);
    if (line != cow_String::npos) text.erase(line, text.find('\n', line + 1) - line);
    break;
  }
  case 4:
    text[at] = static_cast<char>(random.Below(256));
    break;
  default:
    text[at] = random.Of(bytes);
  }
}

TEST_F(RandomDecks, SpoiltOnesAreToldAndNeverCrash) {
  ForSeeds(60, [&](std::uint64_t seed) {
    RandomDeck deck(seed / 4);
    Random random(seed);
    for (long long times = random.From(1, 6); times > 0; --times) {
      auto file = deck.files.begin();
      if (random.OneIn(3))
        std::advance(file, random.Below(static_cast<long long>(deck.files.size())));
      else
        file = deck.files.find("deck.inp");
      spoil(file->second, random);
    }
    WriteFiles(deck);
    const ProgramRun run = Convert("deck.inp", "a.sim");
    ASSERT_TRUE(run.exitCode == 0 || run.exitCode == 1) << run.exitCode << run.err.substr(0, 3000);
    EXPECT_TRUE(run.exitCode == 0 || run.Says("error")) << run.err;
    if (run.exitCode == 0) RoundTrip();
    std::filesystem::remove(m_folder / "a.sim");
  });
}

} // namespace
