#include "parser/inp_KeywordTable.h"
#include "tests/random/ScopeWriter.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace {

constexpr const char* raggedTypes[] = {
    "B31",     "B32H",    "PIPE31", "C3D27",   "C3D15V",  "CAXA41", "CAXA82", "SAXA24", "SAXA11",
    "CONN3D2", "CONN2D3", "GK3D18", "GK3D18N", "GK3D12M", "GKPE6",  "IRS21A", "DRAG3D", "FRAME3D"};

double cosine(double degrees) {
  return std::cos(degrees * std::numbers::pi / 180);
}
double sine(double degrees) {
  return std::sin(degrees * std::numbers::pi / 180);
}

} // namespace

// ---- nodes

// An origin, and the x axis in the x-y plane turned about z; or all back to the global one.
void ScopeWriter::System() {
  m_form->Keyword({"SYSTEM"});
  m_system = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
  if (m_random.OneIn(3)) return;
  const double degrees = static_cast<double>(m_random.From(-170, 170));
  const double c = cosine(degrees), s = sine(degrees);
  cow_List<cow_String> fields;
  for (std::size_t i = 0; i < 3; ++i)
    fields.push_back(m_form->Number(static_cast<double>(m_random.From(-9, 9)), m_system[9 + i]));
  const double along[3] = {m_system[9] + 7 * c, m_system[10] + 7 * s, m_system[11]};
  for (const double value : along) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    fields.emplace_back(text);
  }
  m_system[0] = c, m_system[1] = s, m_system[3] = -s, m_system[4] = c;
  m_form->RecordCutAt(fields, fields.size());
}

void ScopeWriter::NodeRecord(int label, char system, DeckForm& form) {
  std::array<double, 3> given = {};
  cow_List<cow_String> fields = {std::to_string(label)};
  for (long long n = 0, count = m_random.From(0, 3); n < count; ++n) {
    // An angle without a radius would make a plane model spatial by a number that is lost.
    const bool radius = system == 'S' && n == 0;
    const double value = radius              ? m_random.Real(1, 200)
                         : m_random.OneIn(4) ? 0
                                             : m_random.Real(-200, 200);
    fields.push_back(form.Number(value, given[static_cast<std::size_t>(n)]));
    if (!radius && m_random.OneIn(20)) {
      fields.back().clear();
      given[static_cast<std::size_t>(n)] = 0;
    }
  }
  if (fields.size() == 4 && m_random.OneIn(10)) {
    double ignored = 0;
    for (int n = 0; n < 3; ++n) fields.push_back(form.Number(m_random.Real(1, 2), ignored));
  }
  if (system == 'C') given = {given[0] * cosine(given[1]), given[0] * sine(given[1]), given[2]};
  if (system == 'S')
    given = {given[0] * cosine(given[2]) * cosine(given[1]),
             given[0] * cosine(given[2]) * sine(given[1]), given[0] * sine(given[2])};
  std::array<double, 3> at = {};
  for (std::size_t i = 0; i < 3; ++i)
    at[i] = m_system[i] * given[0] + m_system[3 + i] * given[1] + m_system[6 + i] * given[2] +
            m_system[9 + i];
  if (!Here().points.contains(label)) Here().nodeOrder.push_back(label);
  Here().points[label] = at;
  form.Record(fields, false, fields.size() < 7);
}

void ScopeWriter::Nodes(const cow_List<int>& labels) {
  if (m_random.OneIn(5)) System();
  cow_List<cow_String> words = {"NODE"};
  const char system = m_random.Of("RRRRRRCS");
  if (system == 'C' || system == 'S' || (system == 'R' && m_random.OneIn(5)))
    words.push_back(cow_String("SYSTEM=") + system);
  if (m_random.OneIn(3) && !m_setNames[1].empty()) {
    const SetName& name = m_random.Of(m_setNames[1]);
    words.push_back("NSET=" + name.text);
    MeantSet::Entry entry;
    for (const int label : labels) entry.members.push_back({m_scope, label});
    Here().nodeSets[name.name].entries.push_back(std::move(entry));
  }
  if (!m_random.OneIn(6)) {
    m_form->Keyword(words);
    for (const int label : labels) NodeRecord(label, system, *m_form);
    return;
  }
  const cow_String file = "Nodes_" + std::to_string(++m_files) + ".txt";
  words.push_back("INPUT=" + file);
  m_form->Keyword(words);
  DeckForm form(m_random);
  for (const int label : labels) NodeRecord(label, system, form);
  m_deck.files[file] = form.Written();
}

// ---- elements

void ScopeWriter::UserElement() {
  m_userNodes = static_cast<int>(m_random.From(1, 40));
  m_form->Keyword({"USER ELEMENT", "TYPE=U1", "NODES=" + std::to_string(m_userNodes),
                   "COORDINATES=3", "VARIABLES=4"});
  m_form->Line("1, 2, 3");
}

MeantElement ScopeWriter::Element(const cow_String& type, long long nodes,
                                  cow_List<cow_String>& fields) {
  MeantElement element{type, {}};
  for (long long n = 0; n < nodes; ++n) {
    Meant node{m_scope, m_random.Of(m_positive)};
    if (!m_instances.empty() && m_random.OneIn(3)) {
      const Meant other = AnyItem(true, m_random.Of(m_instances));
      if (other.label > 0) node = other;
    }
    // The last one stands, or the line would go on.
    if (type.starts_with("CONN") && n + 1 < nodes && m_random.OneIn(4)) node.label = 0;
    element.nodes.push_back(node);
    fields.push_back(node.label == 0 ? cow_String() : TextOf(node));
  }
  return element;
}

// The nodes of the further planes have the labels of the first plane, each time raised by OFFSET.
void ScopeWriter::ImplyNodes(MeantElement& element, long long plane, long long all, int offset) {
  for (long long n = plane; n < all; ++n) {
    const int label = element.nodes[static_cast<std::size_t>(n - plane)].label + offset;
    element.nodes.push_back({m_scope, label});
    Here().impliedNodes.insert(label);
  }
}

void ScopeWriter::Elements() {
  cow_String type = m_random.OneIn(2) ? cow_String(m_random.Of(raggedTypes))
                                      : cow_String(m_random.Of(inp_elementTable()).name);
  long long least = 1, most = 40;
  if (m_random.OneIn(8)) {
    type = m_random.OneIn(2) ? "U1" : "Z1";
    if (type == "U1") {
      if (m_userNodes == 0) UserElement();
      least = most = m_userNodes;
    }
  } else {
    const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(type);
    least = info->minNodes, most = info->maxNodes;
  }
  const bool planes = type.compare(1, 3, "AXA") == 0;
  const bool gasket = type.starts_with("GK3D18");
  if (planes && !m_instances.empty()) return; // labels of instances cannot be raised
  if (type == "IRS21A" || type == "IRS22A" || type == "DRAG3D") ++least, ++most;
  cow_List<cow_String> words = {"ELEMENT", "TYPE=" + type};
  int offset = 100000;
  if (planes && m_random.OneIn(2)) {
    offset = static_cast<int>(m_random.From(1, 1000000));
    words.push_back("OFFSET=" + std::to_string(offset));
  }
  MeantSet* set = nullptr;
  if (m_random.OneIn(2) && !m_setNames[0].empty()) {
    const SetName& name = m_random.Of(m_setNames[0]);
    words.push_back("ELSET=" + name.text);
    set = &Here().elementSets[name.name];
    set->entries.emplace_back();
  }
  m_form->Keyword(words);
  const long long uniform = m_random.From(least, most);
  const bool ragged = m_random.OneIn(2);
  for (long long n = m_random.OneIn(5) ? m_random.From(50, 400) : m_random.From(1, 6); n > 0; --n) {
    long long nodes = ragged ? m_random.From(least, most) : uniform;
    if (planes) nodes = (ragged ? nodes : uniform) * 2 > least + most ? most : least;
    if (gasket) nodes = nodes == most || !m_instances.empty() ? 18 : 16;
    const int label = m_nextElement;
    m_nextElement += static_cast<int>(m_random.OneIn(9) ? m_random.From(1, 100000) : 1);
    cow_List<cow_String> fields = {std::to_string(label)};
    MeantElement element = Element(type, nodes, fields);
    if (gasket && nodes == 18)
      m_form->RecordCutAt(fields, 10);
    else
      m_form->Record(fields, !gasket, nodes == most && type != "Z1");
    if (planes && nodes == least) ImplyNodes(element, least, most, offset);
    if (gasket && nodes == 16) Here().middleNodes += 2;
    Here().elements[label] = std::move(element);
    if (set) set->entries.back().members.push_back({m_scope, label});
  }
}
