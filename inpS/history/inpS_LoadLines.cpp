#include "inpS/history/inpS_LoadLines.h"
#include "database/KvoObjSurface.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_BulkColumns.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

constexpr int targetColumn = 0;
constexpr int labelColumn = 1;
constexpr int firstValue = 2;
constexpr int heightColumn = 4; // of hydrostatic pressures, behind the height of none
// A property's name may stand among the values.
constexpr inp_KeywordEnm kindsWithProperty[] = {inp_KwFilm, inp_KwSfilm, inp_KwImpedance};

bool isOfSurfaces(inp_KeywordEnm keyword) {
  return std::ranges::any_of(inpS_loadLabels(), [&](const inpS_LoadLabel& row) {
    return row.keyword == keyword && row.families == 0;
  });
}

// Its stresses come from the global model: the surface is all that there is to say.
bool isOfSubmodel(const inp_Keyword& keyword) {
  return keyword.Kind() == inp_KwDsload && inpS_saysYes(keyword, "submodel");
}

// The magnitude of forces and fluxes, the coefficient of films, flows and radiation, which stands
// behind what is beyond; impedances have properties.
int valueColumnOf(const inp_Keyword& keyword) {
  if (inpS_saysYes(keyword, "user") || isOfSubmodel(keyword)) return -1;
  switch (keyword.Kind()) {
  case inp_KwImpedance:
    return -1;
  case inp_KwFilm:
  case inp_KwSfilm:
  case inp_KwRadiate:
  case inp_KwSradiate:
  case inp_KwFlow:
  case inp_KwSflow:
    return firstValue + 1;
  default:
    return firstValue;
  }
}

cow_String textOfSurplus(const cow_String& label, int most) {
  return label + " takes " + std::to_string(most) + (most == 1 ? " value" : " values") +
         "; what follows is kept, and means nothing.";
}

bool isEdge(eds_SurfaceFace face) {
  return (face >= eds_SurfaceFace::E1 && face <= eds_SurfaceFace::E4) ||
         face == eds_SurfaceFace::Edge;
}

// "zero_height" is a word of the table.
cow_String spoken(std::string_view name) {
  cow_String text(name);
  std::ranges::replace(text, '_', ' ');
  return text;
}

} // namespace

inpS_LoadLines::inpS_LoadLines(const inp_Keyword& keyword, const KvoSimPosition& record,
                               int dimensions, inpS_LoadedElements& elements)
    : m_keyword(keyword), m_record(record), m_isInSpace(dimensions == 3),
      m_isOfSurfaces(isOfSurfaces(keyword.Kind())), m_needsLabel(!isOfSubmodel(keyword)),
      m_valueColumn(valueColumnOf(keyword)), m_elements(elements) {}

bool inpS_LoadLines::Takes(const Label& label, Type type) const {
  return !type || std::ranges::any_of(label.found.rows, [&](const inpS_LoadLabel* row) {
    return row->Takes(*type, label.found.number);
  });
}

inpS_LoadLines::Label inpS_LoadLines::MakeLabel(const cow_String& text) const {
  Label label;
  label.text = text;
  label.found = inpS_findLoadLabel(m_keyword.Kind(), text);
  if (label.found.rows.empty()) return label;
  label.needsValues = std::ranges::any_of(label.found.rows.front()->values,
                                          [](const auto& value) { return value.isRequired; });
  label.most = MostValues(label);
  for (const Type type : m_elements.Types()) label.takes.push_back(Takes(label, type));
  label.needsTypes = std::ranges::find(label.takes, 0) != label.takes.end();
  return label;
}

// Decided here: what a routine of the user or an element of users takes is theirs to say, and so is
// what follows the drag and the wind on slender elements, where further factors may stand.
int inpS_LoadLines::MostValues(const Label& label) const {
  const bool isOfUser =
      inpS_saysYes(m_keyword, "user") || label.text.ends_with("NU") || label.text.starts_with("U");
  const bool hasWords =
      std::ranges::find(kindsWithProperty, m_keyword.Kind()) != std::end(kindsWithProperty);
  if (isOfUser || hasWords) return kAnyNumber;
  int most = 0;
  for (const inpS_LoadLabel* row : label.found.rows) {
    if (row->valuesText.starts_with("factor")) return kAnyNumber;
    int values = 0;
    for (const inpS_LoadLabel::Value& value : row->values) values += value.components;
    most = std::max(most, values);
  }
  return most;
}

bool inpS_LoadLines::MayHaveSurplus(const inp_ColumnPiece& piece) const {
  const int least = std::ranges::min(m_labels, {}, &Label::most).most;
  const auto behind = static_cast<std::size_t>(firstValue + std::min(least, kAnyNumber));
  for (std::size_t c = behind; c < piece.given; ++c)
    if (std::ranges::any_of(
            piece.columns[c].reals.first(std::min(piece.count, piece.columns[c].reals.size())),
            [](double value) { return !inp_isBlankReal(value); }))
      return true;
  return false;
}

inpS_LoadLines::Label& inpS_LoadLines::LabelAt(int slot, Words words) {
  const auto place = static_cast<std::size_t>(-1 - slot);
  const cow_List<cow_String>& all = words[labelColumn]->All();
  while (m_labels.size() < all.size()) m_labels.push_back(MakeLabel(all[m_labels.size()]));
  return m_labels[place];
}

// Vectors are asked for one component that is not zero, axes where there is a choice of them.
template <class Value>
const inpS_LoadLabel::Value* inpS_LoadLines::MissingOf(const Label& label,
                                                       const Value& valueAt) const {
  int col = firstValue;
  for (const inpS_LoadLabel::Value& value : label.found.rows.front()->values) {
    bool isGiven = !value.isRequired || (value.IsAxis() && !m_isInSpace);
    for (int n = 0; n < value.components; ++n, ++col) {
      const double given = isGiven ? 0 : valueAt(col);
      isGiven = isGiven || (!inp_isBlankReal(given) && (value.components == 1 || given != 0));
    }
    if (!isGiven) return &value;
    // Between equal heights no pressure can grow.
    if (value.name == "height" && value.isRequired && valueAt(col - 1) == valueAt(col - 2))
      return &value;
  }
  return nullptr;
}

template <class Value>
int inpS_LoadLines::SurplusOf(const Label& label, const Value& valueAt) const {
  constexpr int behind = 9; // the last column
  for (int col = firstValue + label.most; col < behind; ++col)
    if (!inp_isBlankReal(valueAt(col))) return col;
  return -1;
}

inpS_LoadLines::Type inpS_LoadLines::TypeAgainst(Label& label, int target) {
  if (!label.needsTypes || target == inp_blankInt || target == inpS_noTarget) return nullptr;
  if (target >= 0) {
    const int type = m_elements.TypeOf(target);
    const auto place = static_cast<std::size_t>(type);
    return type < 0 || label.takes[place] ? nullptr : m_elements.Types()[place];
  }
  const auto [known, isNew] = label.sets.try_emplace(target, nullptr);
  if (!isNew) return known->second;
  const cow_List<Type>& types = m_elements.TypesOf(m_record, static_cast<std::size_t>(-1 - target));
  const auto takes = [&](Type type) { return Takes(label, type); };
  const bool isOfBody = label.found.rows.front()->part == inpS_LoadedPart::Body;
  if (isOfBody && std::ranges::any_of(types, takes)) return nullptr;
  const auto against = std::ranges::find_if_not(types, takes);
  return known->second = against == types.end() ? nullptr : *against;
}

inpS_LoadLines::Faces inpS_LoadLines::FacesOf(int target) {
  const auto place = static_cast<std::size_t>(-1 - target);
  if (place >= m_faces.size()) m_faces.resize(place + 1);
  Faces& faces = m_faces[place];
  if (faces != Faces::Unknown) return faces;
  const KvoObjSurface surface(
      m_record.GetVector(eds_Member::Targets)[place].DataRecord().GetReference(eds_Target_Set));
  if (surface.Type() != eds_SurfaceType::Element) return faces = Faces::None;
  bool hasEdges = false, hasOthers = false;
  for (const KvoSurfaceFaces& one : surface.Faces())
    (isEdge(one.face) ? hasEdges : hasOthers) = true;
  return faces = hasEdges == hasOthers ? Faces::Any : hasEdges ? Faces::Edges : Faces::Sides;
}

// label: its slot, or blank
cow_String inpS_LoadLines::FaultOfSurface(int target, int label) {
  if (target >= 0 || target == inp_blankInt || target == inpS_noTarget) return {};
  const Faces faces = FacesOf(target);
  if (faces == Faces::None) return "The surface has no faces of elements to be loaded.";
  const auto place = static_cast<std::size_t>(-1 - label);
  if (faces == Faces::Any || label >= 0 || label == inp_blankInt || place >= m_labels.size())
    return {};
  const bool isOfEdges = m_labels[place].text.starts_with("ED");
  if (isOfEdges == (faces == Faces::Edges)) return {};
  return isOfEdges ? m_labels[place].text + " is for edges; the surface has faces alone."
                   : m_labels[place].text + " is for faces; the surface has edges alone.";
}

bool inpS_LoadLines::IsSound(const inp_ColumnPiece& piece, Words words) {
  const bool hasLabels = !words[labelColumn]->All().empty();
  if (hasLabels) LabelAt(-1, words);
  const auto codes = piece.columns[labelColumn].ints.first(piece.count);
  if (m_isOfSurfaces && m_needsLabel && std::ranges::find(codes, inp_blankInt) != codes.end())
    return false;
  if (m_isOfSurfaces)
    for (std::size_t n = 0; n < piece.count; ++n)
      if (const int target = piece.columns[targetColumn].ints[n];
          !FaultOfSurface(target, codes[n]).empty())
        return false;
  if (!hasLabels) return true;
  if (m_valueColumn >= 0) {
    const auto column = static_cast<std::size_t>(m_valueColumn);
    if (inp_hasBlank(piece.columns[column].reals.first(piece.count))) return false;
  }
  const bool maySurplus = MayHaveSurplus(piece);
  if (!maySurplus && std::ranges::all_of(m_labels, &Label::IsCarefree)) return true;
  for (std::size_t n = 0; n < piece.count; ++n) {
    const int slot = piece.columns[labelColumn].ints[n];
    if (slot >= 0 || slot == inp_blankInt || slot == inpS_noTarget) continue; // told by its type
    Label& label = LabelAt(slot, words);
    if (!maySurplus && label.IsCarefree()) continue;
    const auto valueAt = [&](int col) {
      const auto c = static_cast<std::size_t>(col);
      return c < piece.columns.size() && n < piece.columns[c].reals.size()
                 ? piece.columns[c].reals[n]
                 : inp_blankReal;
    };
    if (maySurplus && SurplusOf(label, valueAt) >= 0) return false;
    if (label.found.rows.empty() || (label.needsValues && MissingOf(label, valueAt)) ||
        TypeAgainst(label, piece.columns[targetColumn].ints[n]))
      return false;
  }
  return true;
}

std::optional<inpS_LineFault> inpS_LoadLines::FaultOf(const inpS_LineView& line) {
  const int slot = line.slots[labelColumn];
  if (slot == inp_blankInt && m_needsLabel)
    return inpS_LineFault{labelColumn, "The line does not tell its label."};
  const auto doubtOfSurface = [&]() -> std::optional<inpS_LineFault> {
    cow_String text = m_isOfSurfaces ? FaultOfSurface(line.slots[targetColumn], slot) : "";
    if (text.empty()) return {};
    return inpS_LineFault{targetColumn, std::move(text), false, false};
  };
  if (slot == inp_blankInt) return doubtOfSurface();
  if (slot >= 0 || static_cast<std::size_t>(-1 - slot) >= m_labels.size()) return {};
  Label& label = m_labels[static_cast<std::size_t>(-1 - slot)];
  if (label.found.rows.empty())
    return inpS_LineFault{labelColumn,
                          inp_Utils::Format("Unsupported load type: %s", label.text.c_str())};
  // What stands behind the columns is told of any line.
  const auto cols = static_cast<int>(line.slots.size());
  const auto valueAt = [&](int col) {
    return col < cols && line.Has(col) ? line.Real(col) : inp_blankReal;
  };
  if (const inpS_LoadLabel::Value* missing = MissingOf(label, valueAt))
    return inpS_LineFault{-1, TextOf(label, *missing, line.Has(heightColumn))};
  if (cow_String lack = LackOf(label, line); !lack.empty())
    return inpS_LineFault{-1, "The line gives no " + lack + ", which is 0.", false, false};
  if (const Type type = TypeAgainst(label, line.slots[targetColumn]))
    return inpS_LineFault{labelColumn, inpS_faultOfLoad(label.found, label.text, *type), false,
                          false};
  if (auto doubt = doubtOfSurface()) return doubt;
  if (const int surplus = SurplusOf(label, valueAt); surplus >= 0)
    return inpS_LineFault{surplus, textOfSurplus(label.text, label.most), false, false};
  return {};
}

// A film may have a property in the place of its coefficient, or behind it.
cow_String inpS_LoadLines::LackOf(const Label& label, const inpS_LineView& line) const {
  const auto& values = label.found.rows.front()->values;
  if (m_valueColumn < 0 || values.empty() || label.text.ends_with("NU")) return {};
  if (m_valueColumn == firstValue || values.size() == 1)
    return line.Has(firstValue) ? "" : "magnitude";
  const bool hasProperty =
      std::ranges::find(kindsWithProperty, m_keyword.Kind()) != std::end(kindsWithProperty);
  const auto behind = static_cast<std::size_t>(m_valueColumn) + 1;
  if (line.Has(m_valueColumn) || (hasProperty && line.slots[behind] != inp_blankInt)) return {};
  return spoken(values[static_cast<std::size_t>(m_valueColumn - firstValue)].name);
}

cow_String inpS_LoadLines::TextOf(const Label& label, const inpS_LoadLabel::Value& missing,
                                  bool isHeightGiven) const {
  if (m_keyword.Kind() == inp_KwDsload && missing.components > 1)
    return "*DSLOAD traction load vector is null";
  if (missing.name == "height" && isHeightGiven) return label.text + ": its heights are the same.";
  return label.text + ": its " + spoken(missing.name) +
         (missing.components > 1 ? " is not given, or zero." : " is not given.");
}
