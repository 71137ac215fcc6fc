#include "inpS/properties/inpS_OrientationVisitor.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/forms/inpS_LackOfLines.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

bool isName(const inp_Keyword& keyword, long long row, int col) {
  const inp_DataArray& lines = keyword.Data();
  return row < lines.Rows() && col < lines.Cols(row) && lines.HasValue(row, col) &&
         !lines.IsNumber(row, col);
}

constexpr const char* kNoLength = "The normal has no length.";

bool hasLength(const double normal[3]) {
  return normal[0] != 0.0 || normal[1] != 0.0 || normal[2] != 0.0;
}

// Lines of *NORMAL: an element, a node and three components.
class NormalLines : public inpS_LineCheck {
public:
  bool IsSound(const inp_ColumnPiece& piece, Words) override {
    bool isFault = false;
    for (std::size_t n = 0; n < piece.count; ++n) {
      double normal[3];
      for (std::size_t i = 0; i < 3; ++i) {
        const double given = piece.columns[kFirst + i].reals[n];
        normal[i] = inp_isBlankReal(given) ? 0.0 : given;
      }
      isFault |= !hasLength(normal);
    }
    return !isFault;
  }
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override {
    constexpr int first = static_cast<int>(kFirst);
    const double normal[3] = {line.Real(first), line.Real(first + 1), line.Real(first + 2)};
    if (hasLength(normal)) return {};
    return inpS_LineFault{first, kNoLength, false, true};
  }

private:
  static constexpr std::size_t kFirst = 2;
};

// Lines of *NODAL THICKNESS: a negative one is told, and taken.
class ThicknessLines : public inpS_LineCheck {
public:
  explicit ThicknessLines(std::size_t column) : m_column(column) {}

  bool IsSound(const inp_ColumnPiece& piece, Words) override {
    return std::ranges::none_of(piece.columns[m_column].reals.first(piece.count),
                                [](double given) { return given < 0; });
  }
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override {
    const int col = static_cast<int>(m_column);
    if (!(line.Real(col) < 0)) return {};
    return inpS_LineFault{col, "A thickness is not negative; it is taken as it stands.", false,
                          false};
  }

private:
  std::size_t m_column;
};

} // namespace

// A name in the place of the first coordinate: of a distribution, which gives the points.
const inpS_Form* inpS_OrientationVisitor::Choose(const inp_Keyword& keyword,
                                                 const inp_Keyword* parent) {
  const inpS_Form* form = inpS_FormVisitor::Choose(keyword, parent);
  if (!form || form->kind != eds_FormKind::Orientation || !isName(keyword, 0, 0)) return form;
  inpS_OrientationData data;
  inpS_OrientationData::Read(keyword, *form, data);
  if (!data.IsRectangular()) return form;
  return inpS_FormTable::Instance().Find(eds_FormKind::OrientationByDistribution);
}

bool inpS_OrientationVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form& form) {
  if (keyword.Kind() != inp_KwOrientation) return true;
  inpS_OrientationData data;
  cow_String fault = inpS_OrientationData::Read(keyword, form, data);
  if (!fault.empty() && data.definition == inpS_OrientationData::Definition::Nodes &&
      !(data.nodes[0].isGiven && data.nodes[1].isGiven))
    Error(keyword,
          "The first data line under *ORIENTATION, DEFINITION=NODES is unrecognizable as a "
          "pair of node numbers for points A and B. ");
  if (fault.empty()) fault = m_systems.FaultOf(data, Holder());
  if (fault.empty())
    return (form.kind != eds_FormKind::OrientationByDistribution ||
            HasDistribution(keyword, 0, 0)) &&
           HasDistribution(keyword, 1, 1);
  Error(keyword, inp_Utils::Format("Unable to create orientation %s due to invalid or null content",
                                   keyword.StringOf("name", "").c_str()) +
                     ": " + fault + ".");
  return false;
}

bool inpS_OrientationVisitor::HasDistribution(const inp_Keyword& keyword, long long row, int col) {
  if (!isName(keyword, row, col)) return true;
  const cow_String name = keyword.Data().AsStringVerbatim(row, col);
  const inpS_FormTable& table = inpS_FormTable::Instance();
  const eds_Referable& distribution = *table.Named(inp_KwDistribution);
  if (!Names().Find(distribution, name).set.IsNull()) return true;
  const cow_String folded = inp_Utils::Fold(name);
  AddWarning(inp_Utils::MessageAtField(
      keyword, row, col,
      Inventory().NamesFor(keyword, inp_KwDistribution, folded)
          ? "*DISTRIBUTION \"" + folded +
                "\" is kept as text; so is this keyword, which refers to it."
          : inp_Utils::Format(cow_String(distribution.missing).c_str(), folded.c_str()) +
                " The keyword is kept as text."));
  return false;
}

void inpS_OrientationVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                        const KvoSimPosition& record) {
  const bool isTransform = keyword.Kind() == inp_KwTransform;
  const bool isOfNodes = keyword.Kind() == inp_KwNormal || keyword.Kind() == inp_KwNodalThickness;
  if (isOfNodes && inpS_isWithoutLines(keyword))
    Warning(keyword, "*" + keyword.Name() + " has no data lines: it gives no values.");
  if (keyword.Kind() != inp_KwOrientation && !isTransform) return;
  if (form.kind != eds_FormKind::OrientationUser && !isTransform) CheckLocalDirections(keyword);
  if (!isTransform && !CheckAngles(keyword, record)) return;
  if (!isTransform) NoteDistributions(keyword, record);
  if (form.kind == eds_FormKind::OrientationByDistribution) return; // in the second pass
  const cow_String fault = m_systems.Derive(record, Holder());
  if (!fault.empty())
    Warning(keyword, "No local axes can be made of *" + keyword.Name() + " " +
                         (isTransform ? "" : "in an instance of the part ") + "(" + fault +
                         "); what the deck says is kept.");
}

// Without its angles it has no axes: those that it turns would be wrong ones.
bool inpS_OrientationVisitor::CheckAngles(const inp_Keyword& keyword,
                                          const KvoSimPosition& record) {
  const cow_String fault = inpS_OrientationData::FaultOfAngles(record);
  if (fault.empty()) return true;
  AddError(inp_Utils::MessageAtField(keyword, 1, 1,
                                     "Orientation " + record.Name() + " " + fault +
                                         "; what the deck says is kept, and no local axes are made "
                                         "of it."));
  return false;
}

bool inpS_OrientationVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                          const KvoSimPosition& record) {
  if (keyword.Kind() == inp_KwNodalThickness) {
    ThicknessLines lines(form.columnItems.size() - 1);
    return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  }
  if (keyword.Kind() != inp_KwNormal) return inpS_FormVisitor::ReadColumns(keyword, form, record);
  NormalLines lines;
  return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
}

cow_String inpS_OrientationVisitor::FaultOfLine(const KvoSimPosition& line) {
  if (!line.IsA(eds_FormKind::ContactNormal)) return {};
  const KvoSimDataRecord record = line.DataRecord();
  const auto at = [&](const char* field) {
    return record.GetDouble(eds_formField(eds_FormKind::ContactNormal, field));
  };
  const double normal[3] = {at("x"), at("y"), at("z")};
  return hasLength(normal) ? "" : kNoLength;
}

void inpS_OrientationVisitor::NoteDistributions(const inp_Keyword& keyword,
                                                const KvoSimPosition& record) {
  for (const KvoSimPosition& distribution :
       {inpS_OrientationData::PointsOf(record), inpS_OrientationData::AnglesOf(record)})
    if (!distribution.IsNull())
      m_ori2DistName.try_emplace(keyword.StringOf("name", ""), distribution.Name());
  if (record.IsA(eds_FormKind::OrientationByOffset))
    m_ori2DistName.try_emplace(keyword.StringOf("name", ""));
}

// Lines behind the second one; LOCAL DIRECTIONS tells how many there are.
void inpS_OrientationVisitor::CheckLocalDirections(const inp_Keyword& keyword) {
  const inp_DataArray& lines = keyword.Data();
  const inp_Item* told = keyword.Find("localdirections");
  long long given = 0;
  for (long long row = 2; row < lines.Rows(); ++row) {
    if (inpS_KeywordReader::IsBlankRow(lines, row)) continue;
    ++given;
    bool isZero = true;
    for (int col = 0; col < std::min(3, lines.Cols(row)); ++col)
      isZero = isZero && lines.AsDouble(row, col) == 0.0;
    if (isZero)
      AddWarning(inp_Utils::MessageAtRow(keyword, row, "The local direction has no length."));
  }
  const long long expected = told ? told->AsInt() : 0;
  if (given != expected)
    Warning(keyword, "*ORIENTATION has " + std::to_string(given) +
                         " local directions behind its second data line, and LOCAL DIRECTIONS " +
                         (told ? "tells " + std::to_string(expected) + "." : "is not given."));
}
