#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_LackOfLines.h"
#include "inpS/history/inpS_FoundationCheck.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "inpS/properties/inpS_ConnectorTypes.h"
#include "inpS/properties/inpS_SectionVisitor.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <set>

// What is told of a section that is a record: what its values lack, or say oddly.

namespace {

template <class... Kinds> bool isOneOf(const inpS_Form& form, Kinds... kinds) {
  return ((form.kind == kinds) || ...);
}

bool isNumber(const inp_DataArray& data, long long row, int col) {
  return row < data.Rows() && col < data.Cols(row) && data.HasValue(row, col) &&
         data.IsNumber(row, col);
}

bool hasValue(const inp_DataArray& data, long long row, int col) {
  return row < data.Rows() && col < data.Cols(row) && data.HasValue(row, col);
}

} // namespace

void inpS_SectionVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                    const KvoSimPosition& record) {
  namespace K = eds_FormKind;
  if (form.info->record == K::SectionPly && keyword.Data().Rows() == 0)
    Warning(keyword, "The layup has no plies: its elements have no material.");
  else if (inpS_lacksLines(keyword, *form.info) && !MayLackLines(keyword, form))
    Tell(keyword, inp_Utils::MessageInKeyword(
                      keyword, "*" + keyword.Name() + " has no data lines: it gives no values."));
  if (keyword.HasParameter("elset") && !IsMeshLeftOut()) m_values.Check(keyword, form);
  if (form.info->record == K::SectionPly) CheckPlyNames(keyword);
  if (isOneOf(form, K::Foundation) && !IsMeshLeftOut())
    inpS_checkFoundations(keyword, *this, Inventory().GetDocument(), *this);
  CheckThickness(keyword, *form.info, MayLackLines(keyword, form));
  CheckProfile(keyword, form);
  CheckFamilies(keyword);
  CheckModuli(keyword, form);
  CheckDensity(keyword);
  if (isOneOf(form, K::BeamSectionTaperedEnds, K::BeamGeneralSectionTaperedEnds))
    CheckEnds(keyword);
  if (isOneOf(form, K::Centroid, K::ShearCenter) ||
      (isOneOf(form, K::BeamSectionOffset) && isNumber(keyword.Data(), 0, 0)))
    CheckPoint(keyword, form);
  if (isOneOf(form, K::JointElasticity)) CheckJoint(keyword, "moduli", "GENERAL, SPUD CAN");
  if (isOneOf(form, K::JointPlasticity)) CheckJoint(keyword, "type", "MEMBER, CLAY, SAND");
  if (isOneOf(form, K::ConnectorSection, K::ConnectorSectionBehavior)) CheckTypes(keyword);
  if (isOneOf(form, K::BeamSectionPipe, K::BeamSectionThickPipe, K::BeamGeneralSectionPipe,
              K::BeamGeneralSectionThickPipe, K::FrameSectionPipe))
    CheckPipe(keyword);
  if (isOneOf(form, K::SolidSectionComposite)) return CheckPlies(keyword, record);
  if (isOneOf(form, K::RebarLayer, K::RebarLayerAngular, K::RebarLayerLiftEquation))
    return CheckRebar(keyword, record);
  if (isOneOf(form, K::BeamSectionArbitrary, K::BeamGeneralSectionArbitrary))
    return MarkDirection(keyword, record);
}

// Neither has a beam that integrals or a profile give any stiffness without them, nor a frame.
void inpS_SectionVisitor::CheckModuli(const inp_Keyword& keyword, const inpS_Form& form) {
  namespace K = eds_FormKind;
  const bool isBeam =
      form.keyword == inp_KwBeamGeneralSection || form.keyword == inp_KwFrameSection;
  if (!isBeam || !form.HasTable() || keyword.HasParameter("material") ||
      isOneOf(form, K::BeamGeneralSectionNonlinear))
    return;
  if (inpS_isWithoutLines(keyword, static_cast<long long>(form.info->lines.size())))
    Warning(keyword, "*" + keyword.Name() +
                         " has no line of moduli behind the direction of the first axis: its "
                         "elements have no stiffness.");
}

void inpS_SectionVisitor::CheckDensity(const inp_Keyword& keyword) {
  const inp_Item* density = keyword.Find("density");
  if (density && density->IsNumber() && density->AsDouble() < 0)
    AddWarning(inp_Utils::MessageAtParameter(
        keyword, "density", "A density is not negative; it is taken as it stands."));
}

// Of a line's values those that are lengths or areas; where a profile begins, and products of
// inertia, may lie on either side.
void inpS_SectionVisitor::CheckNotNegative(const inp_Keyword& keyword, long long row,
                                           const inpS_Form& form, const char* what) {
  namespace K = eds_FormKind;
  const inp_DataArray& data = keyword.Data();
  const auto& items = form.info->lines.front();
  const bool isTrapezoid = isOneOf(form, K::BeamSectionTrapezoid, K::BeamGeneralSectionTrapezoid);
  for (int col = 0; col < static_cast<int>(items.size()); ++col) {
    const cow_String& name = items[static_cast<std::size_t>(col)].name;
    if (name == "l" || (isTrapezoid && name == "d")) continue;
    if (isNumber(data, row, col) && data.AsDouble(row, col) < 0)
      AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                           cow_String("A ") + what +
                                               " is not negative; it is taken as it stands."));
  }
}

// Decided here: the section stands, and is told of, for the elements may be the slip.
void inpS_SectionVisitor::CheckFamilies(const inp_Keyword& keyword) {
  const cow_List<cow_String> others =
      inpS_SectionData::NotServedBy(keyword.Kind(), SpecsOf(keyword));
  if (others.empty()) return;
  AddWarning(inp_Utils::MessageAtParameter(
      keyword, "elset",
      inp_Utils::MessageWithItems("*" + keyword.Name() +
                                      " is for elements of other types than these, which the set "
                                      "has: ",
                                  others)));
}

// A thickness may come from elsewhere; user elements may have no properties, substructures stand
// where they were made, pipes in soil and joints have theirs below, matrices from a file.
bool inpS_SectionVisitor::MayLackLines(const inp_Keyword& keyword, const inpS_Form& form) const {
  namespace K = eds_FormKind;
  for (const char* parameter : {"nodalthickness", "shellthickness", "membranethickness", "input"})
    if (keyword.HasParameter(parameter)) return true;
  return isOneOf(form, K::UelProperty, K::SubstructureProperty, K::PipeSoilInteraction,
                 K::ElasticPlasticJoint, K::MatrixCheck);
}

void inpS_SectionVisitor::CheckPlies(const inp_Keyword& keyword, const KvoSimPosition& section) {
  static const int points = eds_formField(eds_FormKind::SectionPly, "points");
  for (const KvoSimPosition& ply : section.GetVector(eds_Member::Lines)) {
    const KvoSimDataRecord record = ply.DataRecord();
    if (record.IsMemberNull(points) || record.GetInt64(points) > 0) continue;
    return Error(keyword, "The number of integration points must be a positive integer.");
  }
}

// Decided here: output goes by the names of plies, so two that share one are told, and both stay.
void inpS_SectionVisitor::CheckPlyNames(const inp_Keyword& keyword) {
  const cow_List<eds_FormItem>& items = eds_formOf(eds_FormKind::SectionPly)->lines.front();
  const auto name = std::ranges::find(items, "name", &eds_FormItem::name);
  const int col = static_cast<int>(name - items.begin());
  const inp_DataArray& data = keyword.Data();
  std::set<cow_String> known;
  for (long long row = 0; row < data.Rows(); ++row) {
    if (col >= data.Cols(row) || !data.HasValue(row, col)) continue;
    const cow_String ply = data.AsStringVerbatim(row, col);
    if (!known.insert(inp_Utils::Fold(ply)).second)
      AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                           "Another ply of the layup is named \"" + ply +
                                               "\" already; both keep the name."));
  }
}

// Of all that a line names so, of plies as well; behind the segments of a profile its axes stand.
void inpS_SectionVisitor::CheckThickness(const inp_Keyword& keyword, const eds_FormInfo& form,
                                         bool isElsewhere) {
  const inp_DataArray& data = keyword.Data();
  const auto check = [&](long long row, const cow_List<eds_FormItem>& items) {
    for (int col = 0; col < static_cast<int>(items.size()); ++col) {
      const eds_FormItem& item = items[static_cast<std::size_t>(col)];
      if (!item.name.ends_with("thickness")) continue;
      if (!hasValue(data, row, col) && item.name == "thickness" && !item.isOptional && !isElsewhere)
        AddWarning(
            inp_Utils::MessageAtRow(keyword, row, "The line tells no thickness; it counts as 0."));
      if (!isNumber(data, row, col) || data.AsDouble(row, col) >= 0) continue;
      AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                           "A thickness is not negative; it is taken as it "
                                           "stands."));
    }
  };
  const auto own = static_cast<long long>(form.lines.size());
  for (long long row = 0; row < std::min(own, data.Rows()); ++row)
    check(row, form.lines[static_cast<std::size_t>(row)]);
  if (form.data != eds_FormData::Records || form.record != eds_FormKind::SectionPly) return;
  const auto& lines = eds_formOf(form.record)->lines;
  for (long long row = own; row < data.Rows(); ++row)
    check(row, lines[static_cast<std::size_t>(row - own) % lines.size()]);
}

// The radius and behind it the thickness of the wall; a bar of the same radius is no fault.
void inpS_SectionVisitor::CheckPipe(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  if (!isNumber(data, 0, 0) || !isNumber(data, 0, 1) || data.AsDouble(0, 1) <= data.AsDouble(0, 0))
    return;
  AddWarning(inp_Utils::MessageAtField(
      keyword, 0, 1, "The wall is thicker than the radius of the pipe; it is taken as it stands."));
}

namespace {

// The dimensions of a profile stand on its first line, and are told where they are missing: a wall
// of no thickness is mostly a slip. Of integrals and arbitrary profiles blanks are 0.
bool hasProfile(const inpS_Form& form) {
  namespace K = eds_FormKind;
  const bool isBeam = form.keyword == inp_KwBeamSection ||
                      form.keyword == inp_KwBeamGeneralSection ||
                      form.keyword == inp_KwFrameSection;
  return isBeam && !form.info->lines.empty() &&
         !isOneOf(form, K::BeamSectionArbitrary, K::BeamGeneralSectionArbitrary,
                  K::BeamGeneralSectionGeneral, K::BeamGeneralSectionNonlinear,
                  K::BeamGeneralSectionTapered, K::BeamSectionTaperedEnds,
                  K::BeamGeneralSectionTaperedEnds, K::FrameSectionGeneral);
}

} // namespace

void inpS_SectionVisitor::CheckProfile(const inp_Keyword& keyword, const inpS_Form& form) {
  const inp_DataArray& data = keyword.Data();
  if (hasProfile(form) && data.Rows() > 0) {
    const auto& items = form.info->lines.front();
    for (int col = 0; col < static_cast<int>(items.size()); ++col)
      if (!hasValue(data, 0, col))
        AddWarning(inp_Utils::MessageAtRow(keyword, 0,
                                           "The line does not tell the profile's " +
                                               items[static_cast<std::size_t>(col)].name +
                                               "; it counts as 0."));
    CheckNotNegative(keyword, 0, form, "dimension of a profile");
  }
  for (std::size_t n = 1; n < form.info->lines.size(); ++n)
    if (form.info->lines[n].front().name == "n1_x") CheckAxis(keyword, static_cast<long long>(n));
}

// The line may be blank: the axis is then the usual one. Decided here: three values are a direction
// whatever they are; fewer are taken as one as well, but may be what stands behind it.
void inpS_SectionVisitor::CheckAxis(const inp_Keyword& keyword, long long row) {
  const inp_DataArray& data = keyword.Data();
  int given = 0;
  bool isZero = true;
  for (int col = 0; col < 3; ++col) {
    if (!hasValue(data, row, col)) continue;
    isZero = isZero && isNumber(data, row, col) && data.AsDouble(row, col) == 0;
    ++given;
  }
  if (given == 0) return;
  if (isZero)
    AddWarning(inp_Utils::MessageAtRow(
        keyword, row, "The direction of the first axis has no length; it is taken as it stands."));
  else if (given < 3)
    AddWarning(inp_Utils::MessageAtRow(
        keyword, row,
        "The direction of the first axis stands here, and has three values; those not given count "
        "as 0."));
}

int inpS_dimensionsOfProfile(const cow_String& word) {
  constexpr std::pair<std::string_view, int> profiles[] = {
      {"BOX", 6},  {"CIRC", 1}, {"CIRCULAR", 1},    {"HEX", 2},       {"I", 7},        {"L", 4},
      {"PIPE", 2}, {"RECT", 2}, {"RECTANGULAR", 2}, {"THICKPIPE", 2}, {"TRAPEZOID", 4}};
  const cow_String bare = inpS_bareWord(word);
  for (const auto& [name, count] : profiles)
    if (name == bare) return count;
  return 0;
}

// Of both ends all dimensions of the profile.
void inpS_SectionVisitor::CheckEnds(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  const int dimensions = inpS_dimensionsOfProfile(keyword.StringOf("section", ""));
  for (long long row = 0; row < std::min(2LL, data.Rows()); ++row) {
    int given = 0;
    for (int col = 0; col < data.Cols(row); ++col) given += data.HasValue(row, col);
    if (given == dimensions) continue;
    AddWarning(inp_Utils::MessageAtRow(
        keyword, row,
        cow_String("The profile of the ") + (row == 0 ? "first" : "second") + " end has " +
            std::to_string(dimensions) + (dimensions == 1 ? " dimension" : " dimensions") +
            ", and the line " + std::to_string(given) + "; it is taken as it stands."));
  }
}

void inpS_SectionVisitor::CheckPoint(const inp_Keyword& keyword, const inpS_Form& form) {
  const inp_DataArray& data = keyword.Data();
  const auto& items = form.info->lines.front();
  for (int col = 0; data.Rows() > 0 && col < static_cast<int>(items.size()); ++col)
    if (!hasValue(data, 0, col))
      AddWarning(inp_Utils::MessageAtRow(keyword, 0,
                                         "The line does not tell " +
                                             items[static_cast<std::size_t>(col)].name +
                                             "; it counts as 0."));
}

// The row of words that nobody knows; without the word nobody knows what the lines are, either.
void inpS_SectionVisitor::CheckJoint(const inp_Keyword& keyword, const cow_String& parameter,
                                     const cow_String& words) {
  constexpr const char* kept = "; its lines are kept as they stand.";
  const cow_String of = " of *" + keyword.Name();
  const inp_Item* word = keyword.Find(parameter);
  if (!word)
    Warning(keyword, "*" + keyword.Name() + " does not tell which of " + words + " it is" + kept);
  else if (("," + inpS_bareWord(words) + ",").find("," + inpS_bareWord(word->AsString()) + ",") ==
           cow_String::npos)
    AddWarning(inp_Utils::MessageAtParameter(
        keyword, parameter, "\"" + word->Verbatim() + "\"" + of + " is none of " + words + kept));
}

void inpS_SectionVisitor::CheckTypes(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  for (const int col : {0, 1})
    if (hasValue(data, 0, col) && !inpS_isConnectorType(inpS_bareWord(data.AsString(0, col))))
      AddWarning(inp_Utils::MessageAtField(
          keyword, 0, col,
          "\"" + data.AsStringVerbatim(0, col) +
              "\" is no type of connections that is known; it is taken as it stands."));
}

// The area of a bar and its spacing stand behind its name, and are never nothing.
void inpS_SectionVisitor::CheckBars(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row)
    for (const int col : {1, 2}) {
      if (!hasValue(data, row, 0) || (hasValue(data, row, col) && !isNumber(data, row, col)))
        continue;
      if (hasValue(data, row, col) && data.AsDouble(row, col) > 0) continue;
      const cow_String what = col == 1 ? "area" : "spacing";
      AddWarning(inp_Utils::MessageAtRow(
          keyword, row, "The " + what + " of bars is above 0; the line is taken as it stands."));
    }
}

// A bar lies along one of the two directions of the shell's surface.
void inpS_SectionVisitor::CheckRebar(const inp_Keyword& keyword, const KvoSimPosition& layer) {
  CheckBars(keyword);
  for (const KvoSimPosition& line : layer.GetVector(eds_Member::Lines)) {
    KvoSimDataRecord record = line.DataRecord();
    const int direction = eds_formField(line.Object().RecordKind(), "direction");
    if (record.IsMemberNull(direction)) continue;
    const long long value = record.GetInt64(direction);
    if (value == 1 || value == 2) continue;
    Warning(keyword, "Invalid isoparametic direction value.. Default value of 1 will be used.");
    record.SetInt(direction, 1);
  }
}

// Behind the points of an arbitrary profile, one for each segment but the first, stands the
// direction of the first axis.
void inpS_SectionVisitor::MarkDirection(const inp_Keyword& keyword, const KvoSimPosition& section) {
  static const int flag = eds_formField(eds_FormKind::ArbitrarySegment, "is_direction");
  const int segments = eds_formField(section.Object().RecordKind(), "segments");
  const auto lines = section.GetVector(eds_Member::Lines);
  const auto points = section.DataRecord().GetInt64(segments) - 1;
  if (points >= 0 && static_cast<long long>(lines.size()) == points + 1)
    lines.back().DataRecord().SetBool(flag, true);
  else if (points >= 0 && std::ssize(lines) != points)
    Warning(keyword, "The profile has " + std::to_string(points + 1) + " segments, of which its " +
                         "lines give " + std::to_string(lines.size() + 1) + ".");
}
