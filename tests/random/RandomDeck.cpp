#include "tests/random/RandomDeck.h"
#include "tests/random/ScopeWriter.h"
#include <cmath>
#include <numbers>

namespace {

using Point = std::array<double, 3>;

// Moved, then turned about the line through two points (the formula of Rodrigues).
Point placed(const std::array<double, 10>& by, Point at) {
  double axis[3], arm[3], length = 0, along = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    axis[i] = by[6 + i] - by[3 + i];
    length += axis[i] * axis[i];
    at[i] += by[i];
  }
  if (length < 1e-12) return at;
  for (std::size_t i = 0; i < 3; ++i) {
    axis[i] /= std::sqrt(length);
    arm[i] = at[i] - by[3 + i];
    along += axis[i] * arm[i];
  }
  const double angle = by[9] * std::numbers::pi / 180;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
    const double across = axis[j] * arm[k] - axis[k] * arm[j];
    at[i] = by[3 + i] + arm[i] * std::cos(angle) + across * std::sin(angle) +
            axis[i] * along * (1 - std::cos(angle));
  }
  return at;
}

// Writes the deck around the scopes.
class DeckWriter {
public:
  DeckWriter(std::uint64_t seed, RandomDeck& deck)
      : m_random(seed), m_deck(deck), m_form(m_random), m_scopes(m_random, deck, m_form) {}

  void Write() {
    m_deck.scopes.emplace_back();
    if (m_random.OneIn(2)) {
      m_form.Keyword({"HEADING"});
      m_form.Line("a deck made by chance");
    }
    if (m_random.OneIn(2))
      m_scopes.Write(0);
    else
      Assembly();
    for (long long steps = m_random.Below(3); steps > 0; --steps) m_scopes.KeptStep();
    m_deck.files["deck.inp"] = m_form.Written();
  }

private:
  int AddScope(MeantScope::Kind kind, const char* letter) {
    MeantScope& scope = m_deck.scopes.emplace_back();
    scope.kind = kind;
    const auto index = static_cast<int>(m_deck.scopes.size()) - 1;
    m_scopes.Name(letter + std::to_string(index), scope.name, scope.text);
    return index;
  }

  void Assembly() {
    const auto parts = static_cast<int>(m_random.From(1, 3));
    for (int n = 0; n < parts; ++n) {
      const int part = AddScope(MeantScope::Part, "P");
      m_form.Keyword({"PART", "NAME=" + m_deck.scopes[static_cast<std::size_t>(part)].text});
      m_scopes.Write(part);
      m_form.Keyword({"END PART"});
      if (m_random.OneIn(3)) m_scopes.Kept();
    }
    m_form.Keyword({"ASSEMBLY", "NAME=ALL"});
    for (long long n = m_random.From(1, 4); n > 0; --n)
      Instance(static_cast<int>(m_random.From(1, parts)));
    m_scopes.Write(0);
    m_form.Keyword({"END ASSEMBLY"});
    if (m_random.OneIn(2)) m_scopes.Kept();
  }

  void Instance(int part) {
    const int index = AddScope(MeantScope::Instance, "I");
    MeantScope& scope = m_deck.scopes[static_cast<std::size_t>(index)];
    scope.part = part;
    m_form.Keyword({"INSTANCE", "NAME=" + scope.text,
                    "PART=" + m_deck.scopes[static_cast<std::size_t>(part)].text});
    if (m_random.OneIn(2)) Numbers(scope, 0, 3);
    if (scope.placed && m_random.OneIn(2)) Numbers(scope, 3, 7);
    if (m_random.OneIn(3)) m_scopes.Write(index);
    m_form.Keyword({"END INSTANCE"});
  }

  void Numbers(MeantScope& scope, std::size_t first, std::size_t count) {
    scope.placed = true;
    cow_List<cow_String> fields;
    for (std::size_t n = first; n < first + count; ++n)
      fields.push_back(m_form.Number(m_random.Real(-9, 9), scope.placement[n]));
    m_form.RecordCutAt(fields, fields.size()); // a blank line would be one of its lines
  }

  Random m_random;
  RandomDeck& m_deck;
  DeckForm m_form;
  ScopeWriter m_scopes;
};

} // namespace

RandomDeck::RandomDeck(std::uint64_t seed) {
  scopes.reserve(20); // references into it are held while it grows
  DeckWriter(seed, *this).Write();
}

const MeantElement* RandomDeck::ElementOf(const Meant& element) const {
  const MeantScope& scope = scopes[static_cast<std::size_t>(element.scope)];
  if (const auto own = scope.elements.find(element.label); own != scope.elements.end())
    return &own->second;
  return scope.part < 0 ? nullptr : ElementOf({scope.part, element.label});
}

bool RandomDeck::Has(const Meant& item, bool nodes) const {
  if (!nodes) return ElementOf(item);
  const MeantScope& scope = scopes[static_cast<std::size_t>(item.scope)];
  return scope.points.contains(item.label) || scope.impliedNodes.contains(item.label) ||
         (scope.part >= 0 && Has({scope.part, item.label}, true));
}

bool RandomDeck::IsGiven(const Meant& node) const {
  const MeantScope& scope = scopes[static_cast<std::size_t>(node.scope)];
  return scope.points.contains(node.label) ||
         (scope.part >= 0 && IsGiven({scope.part, node.label}));
}

Point RandomDeck::PointOf(const Meant& node) const {
  const MeantScope& scope = scopes[static_cast<std::size_t>(node.scope)];
  if (const auto own = scope.points.find(node.label); own != scope.points.end())
    return scope.placed ? placed(scope.placement, own->second) : own->second;
  const Point ofPart = PointOf({scope.part, node.label});
  return scope.placed ? placed(scope.placement, ofPart) : ofPart;
}

cow_List<Meant> RandomDeck::MembersOf(int scope, const cow_String& name, bool nodes) const {
  const MeantScope& seen = scopes[static_cast<std::size_t>(scope)];
  const auto own = seen.Sets(nodes).find(name);
  if (own != seen.Sets(nodes).end()) return MembersOf(own->second, nodes);
  if (seen.part < 0) return {};
  cow_List<Meant> members = MembersOf(seen.part, name, nodes);
  for (Meant& member : members) member.scope = scope;
  return members;
}

cow_List<Meant> RandomDeck::MembersOf(const MeantSet& set, bool nodes) const {
  cow_List<Meant> members;
  for (const MeantSet::Entry& entry : set.entries) {
    if (entry.name.empty()) {
      for (const Meant& member : entry.members)
        if (Has(member, nodes)) members.push_back(member);
      continue;
    }
    const bool ofNodes = nodes && !entry.nodesOfElset;
    for (const Meant& member : MembersOf(entry.scope, entry.name, ofNodes)) {
      if (ofNodes == nodes) {
        members.push_back(member);
        continue;
      }
      const int elementScope = member.scope;
      for (Meant node : ElementOf(member)->nodes) {
        // The part's element stands in its instance, and so do its nodes.
        const bool own =
            scopes[static_cast<std::size_t>(elementScope)].elements.contains(member.label);
        if (!own) node.scope = elementScope;
        if (node.label != 0) members.push_back(node);
      }
    }
  }
  return members;
}
