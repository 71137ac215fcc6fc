#include "inpS/history/inpS_LoadLabels.h"
#include "inpS/sets/inpS_SurfaceElements.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

constexpr unsigned Any = 0; // loads of surfaces
constexpr unsigned Shell = inp_ElemShell;
constexpr unsigned Beam = inp_ElemBeam;
constexpr unsigned Lines = inp_ElemBeam | inp_ElemTruss;
constexpr unsigned Sheets = inp_ElemShell | inp_ElemMembrane | inp_ElemRigid;
// Of what has faces with numbers; plane elements have their edges for them.
constexpr unsigned Volumes = inp_ElemSolid | inp_ElemShell | inp_ElemCohesive | inp_ElemGasket |
                             inp_ElemAcoustic | inp_ElemFluid | inp_ElemElectromagnetic;
constexpr unsigned Faced = Volumes | inp_ElemTruss;
constexpr unsigned Plates = inp_ElemShell | inp_ElemMembrane;
constexpr unsigned Axisymmetric = inp_ElemAxisymmetric;
constexpr unsigned Bodies = Volumes | Sheets | Lines | inp_ElemInfinite;
constexpr unsigned Masses = Bodies | inp_ElemMass;
constexpr unsigned User = 1u << 31; // elements of users, which the table of types does not have
constexpr unsigned Flows = inp_ElemFluid | inp_ElemSolid;
// Further ones: pipes and elbows, which the table of types has among the beams, and limits.
constexpr unsigned Pipe = 1u << 30;
constexpr unsigned NotPlanar = 1u << 29;
constexpr unsigned NotRadial = 1u << 28;
constexpr unsigned limits = NotPlanar | NotRadial;

// What tells a type's family; user elements have none of these, and take any load.
constexpr unsigned allFamilies = Masses | inp_ElemConnector | inp_ElemSpring | inp_ElemContact |
                                 inp_ElemCoupling | inp_ElemMeshOnly;

struct Row {
  const char* labels;
  const char* keyword;
  inp_KeywordEnm kind;
  unsigned families;
  inpS_LoadedPart part;
  const char* values;
  const char* units;
};
constexpr Row tableRows[] = {
#define INPS_LOAD_LABEL(labels, Keyword, Families, Part, values, units)                            \
  {labels, #Keyword, inp_Kw##Keyword, Families, inpS_LoadedPart::Part, values, units},
#include "inpS/history/inpS_loadLabels.def"
};

template <class Use> void forWords(std::string_view text, const Use& use) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    use(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

inpS_LoadLabel::Value readValue(std::string_view word) {
  inpS_LoadLabel::Value value;
  value.isRequired = word.ends_with('!');
  if (value.isRequired) word.remove_suffix(1);
  if (word.ends_with("*3")) {
    value.components = 3;
    word.remove_suffix(2);
  }
  value.name = word;
  return value;
}

// The number that stands in the place of "#"; 0 where there is none, -1 for another label.
int numberIn(std::string_view label, std::string_view pattern) {
  const std::size_t place = pattern.find('#');
  if (place == std::string_view::npos) return label == pattern ? 0 : -1;
  const std::string_view behind = pattern.substr(place + 1);
  if (label.size() < pattern.size() || !label.starts_with(pattern.substr(0, place)) ||
      !label.ends_with(behind))
    return -1;
  const std::string_view digits = label.substr(place, label.size() - behind.size() - place);
  const bool isNumber = digits.size() <= 2 && digits.front() != '0' &&
                        digits.find_first_not_of("0123456789") == std::string_view::npos;
  return isNumber ? std::stoi(cow_String(digits)) : -1;
}

} // namespace

std::span<const inpS_LoadLabel> inpS_loadLabels() {
  static const cow_List<inpS_LoadLabel> all = [] {
    cow_List<inpS_LoadLabel> rows;
    for (const Row& row : tableRows) {
      inpS_LoadLabel label;
      label.labels = row.labels;
      label.keyword = row.kind;
      label.keywordName = inp_KeywordTable::Instance().Row(row.kind)->name;
      label.families = row.families;
      label.part = row.part;
      label.valuesText = row.values;
      label.units = row.units;
      forWords(row.values, [&](std::string_view word) { label.values.push_back(readValue(word)); });
      rows.push_back(std::move(label));
    }
    return rows;
  }();
  return all;
}

bool inpS_hasLoadLabels(inp_KeywordEnm keyword) {
  return std::ranges::find(tableRows, keyword, &Row::kind) != std::end(tableRows);
}

inpS_FoundLabel inpS_findLoadLabel(inp_KeywordEnm keyword, std::string_view label) {
  inpS_FoundLabel found;
  for (const inpS_LoadLabel& row : inpS_loadLabels()) {
    if (row.keyword != keyword) continue;
    forWords(row.labels, [&](std::string_view pattern) {
      const int number = numberIn(label, pattern);
      if (number < 0) return;
      found.rows.push_back(&row);
      found.number = std::max(found.number, number);
    });
  }
  return found;
}

// A continuum shell has the faces of a solid, and neither sides nor edges.
bool inpS_LoadLabel::IsOfFamily(const inp_ElementInfo& type) const {
  unsigned own = type.flags;
  const bool isPipe = type.name.starts_with("PIPE") || type.name.starts_with("ELBOW");
  if (isPipe && type.Is(inp_ElemBeam)) own |= Pipe;
  const bool hasFaces = part == inpS_LoadedPart::Face || part == inpS_LoadedPart::Body;
  if (type.Is(inp_ElemShell) && type.dimension == 3 && !hasFaces) own &= ~Shell;
  return (own & families) != 0;
}

// Those that are axisymmetric but for what they do have both directions of the cross-section.
std::string_view inpS_LoadLabel::NoDirectionOf(const inp_ElementInfo& type) const {
  const bool isRadial = type.Is(inp_ElemAxisymmetric) && type.name.find("AXA") == type.name.npos;
  if ((families & NotRadial) != 0 && isRadial) return "they are axisymmetric";
  if ((families & NotPlanar) != 0 && type.space == 2 && !type.Is(inp_ElemAxisymmetric))
    return "they lie in the plane";
  return {};
}

// What an element must have for the loads of a keyword. Flows have velocities and temperatures, and
// types with pore pressure a P behind the number of their nodes.
std::string_view inpS_LoadLabel::LackOf(const inp_ElementInfo& type) const {
  const bool isFlow = type.Is(inp_ElemFluid) && !type.Is(inp_ElemThermal);
  const std::string_view suffix = type.name.substr(type.name.find_last_of("0123456789") + 1);
  constexpr unsigned fields = inp_ElemDisplacement | inp_ElemThermal | inp_ElemAcoustic |
                              inp_ElemElectromagnetic | inp_ElemFluid;
  if ((type.flags & fields) == 0) return {}; // nobody knows what it has
  switch (keyword) {
  case inp_KwDload:
  case inp_KwDsload:
  case inp_KwFoundation:
    return type.Is(inp_ElemDisplacement) || isFlow ? "" : "displacements";
  case inp_KwDflux:
  case inp_KwDsflux:
  case inp_KwFilm:
  case inp_KwSfilm:
  case inp_KwRadiate:
  case inp_KwSradiate:
    return type.Is(inp_ElemThermal) || isFlow ? "" : "temperatures";
  case inp_KwDflow:
  case inp_KwDsflow:
  case inp_KwFlow:
  case inp_KwSflow:
    return suffix.find('P') != suffix.npos ? "" : "pore pressure";
  case inp_KwDecharge:
  case inp_KwDsecharge:
  case inp_KwDecurrent:
  case inp_KwDsecurrent:
    return type.Is(inp_ElemElectromagnetic) ? "" : "electric potential";
  case inp_KwImpedance:
    return type.Is(inp_ElemAcoustic) ? "" : "acoustic pressure";
  default:
    return {};
  }
}

bool inpS_LoadLabel::Takes(const inp_ElementInfo& type, int number) const {
  if ((type.flags & allFamilies) == 0) return true;
  if (!LackOf(type).empty()) return false;
  if (families == Any) return true;
  if (!IsOfFamily(type) || !NoDirectionOf(type).empty()) return false;
  if (part != inpS_LoadedPart::Face && part != inpS_LoadedPart::Edge) return true;
  const bool hasEnds = type.Is(inp_ElemTruss) || type.Is(inp_ElemAcoustic);
  if (part == inpS_LoadedPart::Face && type.dimension == 1 && hasEnds && !type.Is(inp_ElemInfinite))
    return number == 1 || number == 2;
  const auto first = part == inpS_LoadedPart::Face ? eds_SurfaceFace::S1 : eds_SurfaceFace::E1;
  const int most = part == inpS_LoadedPart::Face ? 8 : 4;
  return number >= 1 && number <= most &&
         (inpS_facesOf(type) >> (static_cast<int>(first) + number - 1) & 1) != 0;
}

cow_String inpS_familiesText(unsigned families) {
  struct Family {
    unsigned flags;
    std::string_view name;
  };
  static constexpr Family names[] = {{Masses, "all that has mass"},
                                     {Bodies, "all that has a body"},
                                     {Volumes, "solids, continuum shells"},
                                     {Faced, "solids, continuum shells, links"},
                                     {Plates, "conventional shells, membranes"},
                                     {Axisymmetric, "axisymmetric elements"},
                                     {Sheets, "conventional shells, membranes, rigid faces"},
                                     {Lines, "beams, pipes, trusses"},
                                     {Flows, "fluids, solids"},
                                     {User, "elements of users"},
                                     {Shell, "conventional shells"},
                                     {Pipe, "pipes, elbows"},
                                     {Beam, "beams, pipes"}};
  const auto known = std::ranges::find(names, families & ~limits, &Family::flags);
  if (known == std::end(names)) return "surfaces";
  return cow_String(known->name) + ((families & NotPlanar) != 0   ? ", not in the plane"
                                    : (families & NotRadial) != 0 ? ", not axisymmetric"
                                                                  : "");
}

cow_String inpS_faultOfLoad(const inpS_FoundLabel& found, const cow_String& label,
                            const inp_ElementInfo& type) {
  if (std::ranges::any_of(
          found.rows, [&](const inpS_LoadLabel* row) { return row->Takes(type, found.number); }))
    return {};
  const inpS_LoadLabel& row = *found.rows.front();
  const cow_String elements = "elements of type " + cow_String(type.name);
  const std::string_view lack = row.LackOf(type);
  const bool isOfFamily = row.families == Any || row.IsOfFamily(type);
  if (isOfFamily && !lack.empty())
    return label + " makes no sense on " + elements + ": they have no " + cow_String(lack) + ".";
  for (const inpS_LoadLabel* one : found.rows)
    if (const std::string_view reason = one->NoDirectionOf(type);
        one->IsOfFamily(type) && !reason.empty())
      return label + " makes no sense on " + elements + ": " + cow_String(reason) + ".";
  const bool isNumbered = row.part == inpS_LoadedPart::Face || row.part == inpS_LoadedPart::Edge;
  if (isNumbered && isOfFamily)
    return label + ": " + elements + " have no " +
           (row.part == inpS_LoadedPart::Face ? "face " : "edge ") + std::to_string(found.number) +
           ".";
  cow_String families;
  for (const inpS_LoadLabel* one : found.rows)
    families += (families.empty() ? "" : "; ") + inpS_familiesText(one->families);
  return label + " makes no sense on " + elements + ": it is for " + families + ".";
}
