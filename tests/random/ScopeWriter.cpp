#include "tests/random/ScopeWriter.h"
#include "tests/random/KeptKeywords.h"
#include <algorithm>

void ScopeWriter::Name(const cow_String& letter, cow_String& name, cow_String& text) {
  constexpr const char* tails[] = {"", "-x", "_Of_A_Long_Name_0123456789_0123456789", "0"};
  constexpr const char* quoted[] = {" with blanks", ".dotted", " gr\xC3\xB6\xC3\x9F", "=;",
                                    "Mixed"};
  if (m_random.OneIn(3)) {
    name = letter + m_random.Of(quoted);
    text = '"' + name + '"';
    return;
  }
  name = text = letter + m_random.Of(tails);
  std::ranges::transform(name, name.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
  });
}

void ScopeWriter::Kept() {
  const cow_String text = m_random.Of(keptOfModel);
  const bool defines =
      text.find("NAME=") != cow_String::npos || text.find("name =") != cow_String::npos;
  if (defines && !m_defined.insert(text).second) return; // a name can be defined once
  m_form->Text(text);
}

void ScopeWriter::KeptStep() {
  m_form->Text(m_random.Of(keptSteps));
}

// ---- what is to be written

// Labels in a row, sparse, or as they come; some of them zero or negative.
void ScopeWriter::PlanLabels() {
  std::set<int> labels;
  long long count = m_random.From(0, 40);
  if (m_random.OneIn(4)) count = m_random.From(200, 3000);
  if (m_random.OneIn(60)) count = 40000; // read and written in several pieces
  const long long span = m_random.OneIn(2) ? count + 5 : 90000000;
  // An instance has the labels of its part besides.
  const int first = Here().kind == MeantScope::Instance ? 500000000 : 1;
  const bool inRow = m_random.OneIn(3);
  for (int n = 0; static_cast<long long>(labels.size()) < count; ++n)
    labels.insert(first + (inRow ? n : static_cast<int>(m_random.Below(span))));
  m_positive.assign(labels.begin(), labels.end());
  if (m_random.OneIn(3))
    for (long long n = m_random.From(1, 4); n > 0; --n)
      labels.insert(-static_cast<int>(m_random.OneIn(2) ? n - 1 : m_random.Below(999999999)));
  m_labels.assign(labels.begin(), labels.end());
  if (first != 1) std::erase_if(m_labels, [](int label) { return label <= 0; });
  if (!inRow || m_random.OneIn(3)) m_random.Shuffle(m_labels);
}

void ScopeWriter::Plan() {
  PlanLabels();
  m_system = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
  m_hasSystem = false;
  m_nextElement = Here().kind == MeantScope::Instance ? 700000000 : 1;
  m_instances.clear();
  for (std::size_t n = 0; m_scope == 0 && n < m_deck.scopes.size(); ++n)
    if (m_deck.scopes[n].kind == MeantScope::Instance) m_instances.push_back(static_cast<int>(n));
  for (const bool nodes : {false, true}) {
    cow_List<SetName>& names = m_setNames[nodes];
    names.clear();
    for (long long n = m_random.Below(7); n > 0; --n) {
      const cow_String letter = Here().kind == MeantScope::Instance ? "OWN" : "S";
      SetName& name = names.emplace_back();
      Name(letter + std::to_string(n), name.name, name.text);
    }
  }
}

void ScopeWriter::Write(int scope) {
  m_scope = scope;
  Plan();
  std::vector<Block> blocks;
  for (std::size_t first = 0; first < m_labels.size();) {
    const auto count = static_cast<std::size_t>(m_random.From(1, m_random.OneIn(2) ? 2000 : 50000));
    const std::size_t end = std::min(m_labels.size(), first + count);
    blocks.push_back([this, first, end] {
      const auto begin = m_labels.begin();
      cow_List<int> labels(begin + static_cast<long>(first), begin + static_cast<long>(end));
      while (m_random.OneIn(3)) labels.push_back(m_random.Of(m_labels)); // again, or too early
      Nodes(labels);
    });
    first = end;
  }
  if (!m_positive.empty())
    for (long long n = m_random.Below(7); n > 0; --n) blocks.push_back([this] { Elements(); });
  for (const bool nodes : {false, true})
    for (std::size_t n = 0; n < m_setNames[nodes].size(); ++n)
      for (long long times = m_random.From(1, 2); times > 0; --times)
        blocks.push_back([this, nodes, n] { Set(nodes, n); });
  for (long long n = m_random.Below(4); n > 0; --n)
    blocks.push_back([this] {
      if (m_scope == 0 && m_instances.empty())
        Kept();
      else
        m_form->Text(m_random.Of(keptOfParts));
    });
  m_random.Shuffle(blocks);
  Emit(blocks);
}

// Some of the blocks in a file that the deck includes.
void ScopeWriter::Emit(std::vector<Block>& blocks) {
  for (std::size_t n = 0; n < blocks.size();) {
    if (!m_random.OneIn(12)) {
      blocks[n++]();
      continue;
    }
    const cow_String name = "Part " + std::to_string(++m_files) + ".inc";
    m_form->Keyword({"INCLUDE", "INPUT=" + name});
    DeckForm file(m_random);
    DeckForm* outer = m_form;
    m_form = &file;
    for (const std::size_t end = std::min(blocks.size(), n + 3); n < end; ++n) blocks[n]();
    m_form = outer;
    m_deck.files[name] = file.Written();
  }
}

// ---- sets

MeantSet& ScopeWriter::SetOf(bool nodes, std::size_t name) {
  return Here().Sets(nodes)[m_setNames[nodes][name].name];
}

cow_String ScopeWriter::TextOf(const Meant& item) const {
  const cow_String label = std::to_string(item.label);
  return item.scope == m_scope
             ? label
             : m_deck.scopes[static_cast<std::size_t>(item.scope)].text + "." + label;
}

// Of this scope, or of the instance.
Meant ScopeWriter::AnyItem(bool nodes, int instance) {
  const int scope = instance < 0 ? m_scope : instance;
  const MeantScope& from = m_deck.scopes[static_cast<std::size_t>(scope)];
  const bool ofPart = from.part >= 0 && (nodes ? from.nodeOrder.empty() : from.elements.empty());
  const MeantScope& source = ofPart || (from.part >= 0 && m_random.OneIn(2))
                                 ? m_deck.scopes[static_cast<std::size_t>(from.part)]
                                 : from;
  if (nodes) {
    const cow_List<int>& labels = instance < 0 && &source == &from ? m_labels : source.nodeOrder;
    return labels.empty() ? Meant{scope, 0} : Meant{scope, m_random.Of(labels)};
  }
  if (source.elements.empty()) return {scope, 0};
  auto at = source.elements.begin();
  std::advance(at, m_random.Below(static_cast<long long>(source.elements.size())));
  return {scope, at->first};
}

void ScopeWriter::Set(bool nodes, std::size_t name) {
  MeantSet& set = SetOf(nodes, name);
  const cow_String word = nodes ? "NSET" : "ELSET";
  cow_List<cow_String> words = {word + "=" + m_setNames[nodes][name].text};
  int instance = -1;
  if (!m_instances.empty() && m_random.OneIn(3)) {
    instance = m_random.Of(m_instances);
    words.push_back("INSTANCE=" + m_deck.scopes[static_cast<std::size_t>(instance)].text);
  }
  if (m_random.OneIn(5)) {
    words.push_back("INTERNAL");
    set.internal = true;
  }
  if (nodes && m_random.OneIn(4)) {
    words.push_back("UNSORTED");
    set.unsorted = true;
  }
  if (nodes && instance < 0 && m_random.OneIn(4) && !m_setNames[0].empty()) {
    const SetName& elset = m_random.Of(m_setNames[0]);
    words.push_back("ELSET=" + elset.text);
    set.entries.push_back({{}, elset.name, m_scope, true});
  }
  const bool ofElset = words.back().starts_with("ELSET=") && nodes;
  const bool generates = !ofElset && m_random.OneIn(3);
  if (generates) words.emplace_back("GENERATE");
  m_random.Shuffle(words);
  words.insert(words.begin(), word);
  m_form->Keyword(words);
  if (ofElset) return;
  if (generates)
    GeneratedSet(nodes, set, instance);
  else
    ListedSet(nodes, name, set, instance);
}

void ScopeWriter::GeneratedSet(bool nodes, MeantSet& set, int instance) {
  for (long long lines = m_random.From(1, 3); lines > 0; --lines) {
    const Meant from = AnyItem(nodes, instance);
    const long long step = m_random.OneIn(3) ? -m_random.From(1, 3) : m_random.From(1, 3);
    const long long count = m_random.From(1, 30);
    cow_List<cow_String> fields = {std::to_string(from.label),
                                   std::to_string(from.label + step * (count - 1))};
    if (step != 1 || m_random.OneIn(2)) fields.push_back(std::to_string(step));
    m_form->Record(fields, false, true);
    MeantSet::Entry entry;
    for (long long n = 0; n < count; ++n)
      entry.members.push_back({from.scope, static_cast<int>(from.label + step * n)});
    set.entries.push_back(std::move(entry));
  }
}

// Labels, labels of instances, and names of sets behind this one, so that no circle closes.
void ScopeWriter::ListedSet(bool nodes, std::size_t name, MeantSet& set, int instance) {
  cow_List<cow_String> fields;
  for (long long n = m_random.Below(m_random.OneIn(5) ? 200 : 12); n > 0; --n) {
    if (instance < 0 && m_random.OneIn(10) && name + 1 < m_setNames[nodes].size()) {
      const SetName& other = m_setNames[nodes][static_cast<std::size_t>(m_random.From(
          static_cast<long long>(name) + 1, static_cast<long long>(m_setNames[nodes].size()) - 1))];
      fields.push_back(other.text);
      set.entries.push_back({{}, other.name, m_scope, false});
      continue;
    }
    const bool scoped = instance < 0 && !m_instances.empty() && m_random.OneIn(3);
    const Meant item = AnyItem(nodes, scoped ? m_random.Of(m_instances) : instance);
    if (item.label == 0) continue;
    fields.push_back(instance < 0 ? TextOf(item) : std::to_string(item.label));
    set.entries.push_back({{item}, {}, 0, false});
  }
  for (std::size_t at = 0; at < fields.size();) {
    const auto count = static_cast<std::size_t>(m_random.From(1, 16));
    const std::size_t end = std::min(fields.size(), at + count);
    m_form->Record(
        {fields.begin() + static_cast<long>(at), fields.begin() + static_cast<long>(end)}, false,
        true);
    at = end;
  }
}
