#include "inpS/properties/inpS_SectionVisitor.h"
#include "base/utl_Assert.h"
#include "database/KvoObjField.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/forms/inpS_LackOfLines.h"
#include "inpS/history/inpS_FoundationCheck.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "inpS/properties/inpS_BulkShellSections.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cstdlib>
#include <set>

namespace {

template <class... Kinds> bool isOneOf(const inpS_Form& form, Kinds... kinds) {
  return ((form.kind == kinds) || ...);
}

// The values that stand on lines up to one of them; a name counts as all that its line may hold.
int valuesOnLines(const inp_DataArray& data, long long lines) {
  int count = 0;
  for (long long row = 0; row < std::min(lines, data.Rows()); ++row)
    for (int col = 0; col < data.Cols(row); ++col) count += data.HasValue(row, col);
  return count;
}

} // namespace

inpS_SectionVisitor::inpS_SectionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                         const inpS_Inventory& inventory, inpS_Ledger& ledger)
    : inpS_FormVisitor(inpS_Phase::Sections, nodes, elements, inventory, ledger),
      m_values(*this, Names(), inventory.GetDocument()) {
  Names().SetTextOfMissing("material", "Material %s not found.");
}

KvoSimPosition inpS_SectionVisitor::GetMaterial(const cow_String& name) const {
  return Model().FollowStringKey(eds_Member::Materials, name);
}

KvoSimPosition inpS_SectionVisitor::GetOrientation(const cow_String& name) const {
  static const eds_Referable& orientations =
      *std::ranges::find(eds_referables(), "orientation", &eds_Referable::word);
  return inpS_FormNames(*this).Find(orientations, name).set;
}

KvoSimPosition inpS_SectionVisitor::GetRegionFromElset(const KvoSimPosition& elset) const {
  for (const KvoSimPosition& region :
       Inventory().GetDocument().Context().GetRecords(eds_RecordKind::SectionAssignment))
    if (region.DataRecord().GetReference(eds_SectionAssignment_ElementSet) == elset) return region;
  return {};
}

KvoSimPosition inpS_SectionVisitor::GetElsetFromRegion(const KvoSimPosition& region) const {
  const KvoSimPosition elsetPos =
      region.DataRecord().GetReference(eds_SectionAssignment_ElementSet);
  if (elsetPos.IsNull())
    utl_assertionFailed("!elsetPos.IsNull() && \"No elset associated with the region\"");
  return elsetPos;
}

KvoSimPosition inpS_SectionVisitor::FindOrCreateProperty(const KvoSimPosition& section,
                                                         eds_RecordKind kind) {
  if (section.IsNull()) utl_assertionFailed("!section.IsNull()");
  for (const KvoSimPosition& present : section.GetVector(eds_Member::Suboptions))
    if (present.IsA(kind)) return present;
  const KvoSimPosition made = section.CreateDataRecord(kind);
  section.Associate(eds_Member::Suboptions, made);
  return made;
}

void inpS_SectionVisitor::WriteBulkShellSectionDistributions() {
  if (std::getenv("TRL_BULK_SHELL_SECTIONS") != nullptr)
    inpS_writeBulkShellSections(Inventory().GetDocument());
}

// ---- which section

const inpS_Form* inpS_SectionVisitor::Choose(const inp_Keyword& keyword,
                                             const inp_Keyword* parent) {
  const bool isPlain = keyword.Kind() == inp_KwSolidSection && !keyword.HasParameter("composite");
  if (isPlain) return ChooseSolid(keyword);
  const inpS_Form* form = inpS_FormVisitor::Choose(keyword, parent);
  if (form && form->info->record == eds_FormKind::SectionPly && keyword.HasParameter("material") &&
      keyword.Kind() != inp_KwSolidSection)
    return ChooseOfOneLayer(keyword);
  if (form && form->kind == eds_FormKind::ConnectorSectionBehavior)
    return ChooseConnector(keyword, form);
  if (form && form->kind == eds_FormKind::JointElasticityGeneral) return ChooseJoint(keyword, form);
  return form ? ChooseTapered(keyword, form) : form;
}

// Between two profiles of given dimensions.
const inpS_Form* inpS_SectionVisitor::ChooseTapered(const inp_Keyword& keyword,
                                                    const inpS_Form* form) {
  const bool isGeneral = form->kind == eds_FormKind::BeamGeneralSectionTaperedProfile;
  if (!isGeneral && form->kind != eds_FormKind::BeamSectionTapered) return form;
  if (inpS_dimensionsOfProfile(keyword.StringOf("section", "")) == 0) return form;
  return inpS_FormTable::Instance().Find(isGeneral ? eds_FormKind::BeamGeneralSectionTaperedEnds
                                                   : eds_FormKind::BeamSectionTaperedEnds);
}

// One material outweighs plies.
const inpS_Form* inpS_SectionVisitor::ChooseOfOneLayer(const inp_Keyword& keyword) {
  if (keyword.LeaveUnread("composite"))
    AddWarning(inp_Utils::MessageAtParameter(keyword, "composite",
                                             "MATERIAL makes it a shell of one layer; COMPOSITE is "
                                             "kept as it stands, and means nothing."));
  return inpS_FormTable::Instance().Find(keyword.Kind() == inp_KwShellSection
                                             ? eds_FormKind::ShellSectionHomogeneous
                                             : eds_FormKind::ShellGeneralSectionMaterial);
}

// A connector is one by its type; of a behaviour that is not there the name alone is left.
const inpS_Form* inpS_SectionVisitor::ChooseConnector(const inp_Keyword& keyword,
                                                      const inpS_Form* form) {
  const eds_FormItem& item = *form->items[1];
  const inp_Item& behavior = *keyword.Find("behavior");
  const eds_Referable& referable = *item.alternatives.front().referable;
  const Found found = Names().Find(referable, behavior.Verbatim());
  const inp_Item* elset = keyword.Find("elset");
  const bool isForeign =
      !found.instance.IsNull() &&
      !(elset && FindField(Kind::Elements, elset->Verbatim()).instance == found.instance);
  if (!found.set.IsNull() && !isForeign) return form;
  const bool isText = Inventory().Names(inp_KwConnectorBehavior, behavior.AsString());
  const cow_String name = "*CONNECTOR BEHAVIOR \"" + behavior.AsString() + "\"";
  const cow_String text = isForeign ? name + " belongs to an instance, and the elements do not."
                          : isText  ? name + " is kept as text."
                                    : Names().TextOfMissing(referable, behavior.AsString());
  wip_Message message = inp_Utils::MessageAtParameter(
      keyword, "behavior", text + " The section has its name alone, and no behavior.");
  if (isText)
    AddWarning(std::move(message));
  else
    AddError(std::move(message));
  return inpS_FormTable::Instance().Find(eds_FormKind::ConnectorSection);
}

// The moduli of a joint in a plane stand on one line, those in space on three.
const inpS_Form* inpS_SectionVisitor::ChooseJoint(const inp_Keyword& keyword,
                                                  const inpS_Form* inSpace) {
  const inp_DataArray& data = keyword.Data();
  const bool isInPlane = data.Rows() < 3 || valuesOnLines(data, 1) < 8;
  return isInPlane ? inpS_FormTable::Instance().Find(eds_FormKind::JointElasticityPlane) : inSpace;
}

// The types of the elements of its set.
cow_List<KvoSimPosition> inpS_SectionVisitor::SpecsOf(const inp_Keyword& keyword, bool* isEmpty) {
  const inp_Item* elset = keyword.Find("elset");
  static const eds_Referable& sets =
      *std::ranges::find(eds_referables(), "elset", &eds_Referable::word);
  const Found found = elset ? Names().Find(sets, elset->Verbatim()) : Found();
  const eds_MemberSet members = inpS_SectionData::MembersOf(found.set);
  if (isEmpty) *isEmpty = members.IsEmpty();
  if (members.IsEmpty()) return {};
  const KvoSimPosition owner = found.set.DataRecord().GetReference(eds_ElementSet_Owner);
  return DataOf(owner.IsA(eds_RecordKind::Part) ? owner : Model()).FindElementSpecs(members);
}

// By the elements of the set: trusses, plane elements, solids, or what is not known.
const inpS_Form* inpS_SectionVisitor::ChooseSolid(const inp_Keyword& keyword) {
  const inpS_FormTable& forms = inpS_FormTable::Instance();
  bool isEmpty = true;
  const cow_List<KvoSimPosition> specs = SpecsOf(keyword, &isEmpty);
  if (isEmpty) return forms.Find(eds_FormKind::SolidSection);
  const inp_Item* elset = keyword.Find("elset");
  if (specs.empty()) Error(keyword, "No element type assignment for elset: " + elset->AsString());
  const unsigned dimensions = inpS_SectionData::SectionDimensions(specs);
  const auto only = [&](inp_SectionDimension one) {
    return dimensions == 1u << static_cast<unsigned>(one);
  };
  if (const auto families = inpS_SectionData::PlaneFamilies(specs); families.size() > 1)
    AddWarning(inp_Utils::MessageAtParameter(keyword, "elset",
                                             "The elset: " + elset->AsString() +
                                                 " has elements of " + families[0] + " and of " +
                                                 families[1] + "; one section is made of them."));
  if (only(inp_SectionDimension::Truss)) return forms.Find(eds_FormKind::TrussSection);
  if (only(inp_SectionDimension::Solid2D) || dimensions == inpS_SectionData::kAxisymmetric)
    return forms.Find(eds_FormKind::SolidSectionPlane);
  if ((dimensions & (dimensions - 1)) != 0)
    AddError(inp_Utils::MessageAtParameter(
        keyword, "elset",
        "The elset: " + elset->AsString() +
            " contains element specs of different dimensionality (3D, 2D, Axisym, Truss) and is "
            "used in the same section assignment."));
  return forms.Find(eds_FormKind::SolidSection);
}

const inpS_SectionData& inpS_SectionVisitor::DataOf(const KvoSimPosition& owner) {
  if (!m_data || !(m_data->Owner() == owner)) m_data.emplace(Inventory().GetDocument(), owner);
  return *m_data;
}

// ---- what must hold

bool inpS_SectionVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form& form) {
  namespace K = eds_FormKind;
  CheckStackDirection(keyword);
  if (isOneOf(form, K::SolidSectionComposite) && !CheckSolid(keyword)) return false;
  if (form.info->record == K::SectionPly) return CheckLayup(keyword);
  if (isOneOf(form, K::ShellGeneralSectionStiffness)) return CheckShellStiffness(keyword);
  if (isOneOf(form, K::PretensionSection, K::PretensionSectionElement))
    return CheckPretension(keyword, form);
  if (isOneOf(form, K::FluidSection)) return CheckFluid(keyword);
  if (!isOneOf(form, K::SpringLinear, K::SpringNonlinear, K::DashpotLinear, K::DashpotNonlinear))
    return true;
  // Under a joint they are about its elements.
  if (keyword.IsSuboption() || keyword.HasParameter("elset")) return true;
  TellRequired(keyword, "ELSET");
  return false;
}

bool inpS_SectionVisitor::CheckSolid(const inp_Keyword& keyword) {
  if (!keyword.HasParameter("material")) return true;
  AddError(inp_Utils::MessageAtParameter(
      keyword, "material",
      "MATERIAL and COMPOSITE parameters are mutually exclusive. The keyword is kept as text."));
  return false;
}

// Decided here: half a stack would be another structure, so that a ply whose material is not there
// keeps the whole layup as text, as it does a section of one layer.
bool inpS_SectionVisitor::CheckLayup(const inp_Keyword& keyword) {
  const cow_List<eds_FormItem>& items = eds_formOf(eds_FormKind::SectionPly)->lines.front();
  const auto material = std::ranges::find(items, "material", &eds_FormItem::name);
  const int col = static_cast<int>(material - items.begin());
  const eds_Referable& referable = *material->alternatives.front().referable;
  const inp_DataArray& data = keyword.Data();
  bool isSound = true;
  for (long long row = 0; row < data.Rows(); ++row) {
    if (col >= data.Cols(row) || !data.HasValue(row, col)) continue; // told with the line
    const cow_String name(data.FieldText(row, col));
    if (!Names().Find(referable, name).set.IsNull()) continue;
    const bool isText = Inventory().NamesFor(keyword, inp_KwMaterial, name);
    wip_Message message = inp_Utils::MessageAtField(
        keyword, row, col,
        isText
            ? "*MATERIAL \"" + name + "\" is kept as text; so is this keyword, which refers to it."
            : Names().TextOfMissing(referable, name) + " The keyword is kept as text.");
    if (isText)
      AddWarning(std::move(message));
    else
      AddError(std::move(message));
    isSound = false;
  }
  return isSound;
}

void inpS_SectionVisitor::CheckStackDirection(const inp_Keyword& keyword) {
  const inp_Item* direction = keyword.Find("stackdirection");
  if (!direction || !direction->IsInteger()) return;
  if (direction->AsInt() >= 1 && direction->AsInt() <= 3) return;
  AddError(inp_Utils::MessageAtParameter(
      keyword, "stackdirection",
      inp_Utils::Format("Stack direction %i not found.", static_cast<int>(direction->AsInt()))));
}

// The stiffness may be given by a distribution, whose name stands alone.
bool inpS_SectionVisitor::CheckShellStiffness(const inp_Keyword& keyword) {
  constexpr int onLine[] = {8, 8, 5};
  const inp_DataArray& data = keyword.Data();
  const bool isNamed =
      data.Rows() > 0 && data.Cols(0) > 0 && data.Type(0, 0) == inp_FieldType::String;
  int values = 0;
  for (long long row = 0; row < std::min(std::ssize(onLine) + 0LL, data.Rows()); ++row)
    for (int col = 0; col < std::min(onLine[row], data.Cols(row)); ++col)
      values += data.HasValue(row, col);
  if (!isNamed && values == 21) CheckThermalForces(keyword, std::ssize(onLine));
  if (isNamed || values == 21) return true;
  Error(keyword, "Shell stiffness matrix requires 21 elements. The keyword is kept as text.");
  return false;
}

void inpS_SectionVisitor::CheckThermalForces(const inp_Keyword& keyword, long long row) {
  constexpr int all = 6;
  const inp_DataArray& data = keyword.Data();
  if (row >= data.Rows()) return;
  int given = 0;
  for (int col = 0; col < std::min(all, data.Cols(row)); ++col) given += data.HasValue(row, col);
  if (given > 0 && given < all)
    AddWarning(inp_Utils::MessageAtRow(keyword, row,
                                       "The line has " + std::to_string(given) +
                                           " of six thermal forces and moments; the others count "
                                           "as 0."));
}

bool inpS_SectionVisitor::CheckPretension(const inp_Keyword& keyword, const inpS_Form& form) {
  const bool hasElement = keyword.HasParameter("element");
  if (hasElement != keyword.HasParameter("surface")) {
    if (IsMeshLeftOut()) return true;
    if (!IsThere(keyword, form, "node") || !IsThere(keyword, form, "element")) return false;
    CheckPretensionParts(keyword);
    return true;
  }
  Error(keyword, hasElement ? "A pre-tension section is one of an element or of a surface, not of "
                              "both. The keyword is kept as text."
                            : "A pre-tension section needs an element or a surface. The keyword is "
                              "kept as text.");
  return false;
}

// Decided here: sets of more, or of none, and a second one of the same are told; they stay as they
// are.
void inpS_SectionVisitor::CheckPretensionParts(const inp_Keyword& keyword) {
  const auto check = [&](const char* parameter, eds_FormType type, Kind kind, int membership) {
    const inp_Item* item = keyword.Find(parameter);
    if (!item || Names().FindLabel(type, item->Verbatim()).isNumber) return;
    const Found found = FindField(kind, item->Verbatim());
    if (found.set.IsNull()) return;
    const KvoSimCSet stored = found.set.DataRecord().GetSet(membership);
    const long long size = stored.IsNull() ? 0 : stored.Set().Size();
    if (size != 1)
      AddWarning(inp_Utils::MessageAtParameter(
          keyword, parameter,
          cow_String("A pre-tension section has one ") + parameter + ", and the set \"" +
              item->Verbatim() + "\" has " + std::to_string(size) + "; it is taken as it stands."));
  };
  check("node", eds_FormType::Node, Kind::Nodes, eds_NodeSet_Membership);
  check("element", eds_FormType::Element, Kind::Elements, eds_ElementSet_Membership);
  cow_String key = std::to_string(Holder().Object().Packed());
  for (const char* parameter : {"node", "element", "surface"})
    key += "," + inp_Utils::Fold(keyword.StringOf(parameter, ""));
  if (!m_pretensions.insert(key).second)
    Warning(keyword, "The same pre-tension section is given already; both stay.");
}

// What the bolt is cut at, and the node that pulls it: it is no such thing without one of them.
bool inpS_SectionVisitor::IsThere(const inp_Keyword& keyword, const inpS_Form& form,
                                  const char* parameter) {
  const inp_Item* item = keyword.Find(parameter);
  if (!item) return true;
  const auto found = std::ranges::find(form.info->parameters, parameter, &eds_FormItem::name);
  const cow_String fault = inpS_faultOfName(*found, inpS_FormValue::Of(*item), Names());
  if (fault.empty()) return true;
  const eds_FormType type =
      cow_String(parameter) == "node" ? eds_FormType::Node : eds_FormType::Element;
  wip_Message message =
      inp_Utils::MessageAtParameter(keyword, parameter, fault + " The keyword is kept as text.");
  // That an instance's label has no place here is no fault of the deck.
  if (Names().FindLabel(type, item->Verbatim()).isKnown)
    AddWarning(std::move(message));
  else
    AddError(std::move(message));
  return false;
}

bool inpS_SectionVisitor::CheckFluid(const inp_Keyword& keyword) {
  if (keyword.StringOf("type", "") != "POROUSMEDIA") return true;
  if (valuesOnLines(keyword.Data(), 1) >= 2) return true;
  Error(keyword, "Two materials must be specified for the porous media flow fluid section "
                 "definition. The keyword is kept as text.");
  return false;
}

cow_String inpS_SectionVisitor::ReasonOfNone(const inp_Keyword& keyword) const {
  const bool isBeam = keyword.Kind() == inp_KwBeamSection;
  return isBeam && !keyword.HasParameter("section") ? "lacks its SECTION" : "";
}

// A word that nobody knows, and a distribution that is not there, leave what else the section says;
// one that chooses the variant, or is of a type or geometry, says what the lines are.
bool inpS_SectionVisitor::MayLack(const inpS_Form& form, const eds_FormItem& item) const {
  const eds_Referable* referable = item.alternatives.front().referable;
  if (referable) return referable->word == "distribution";
  const bool hasLines = form.info->data != eds_FormData::None || !form.info->lines.empty();
  if (hasLines && (item.name == "type" || item.name == "geometry")) return false;
  return std::ranges::none_of(form.selectors, [&](const inpS_Form::Selector& one) {
    return inpS_bareWord(one.name) == inpS_bareWord(inp_Utils::Fold(item.name));
  });
}

bool inpS_SectionVisitor::IsErrorToLack(inp_KeywordEnm kind) const {
  return kind == inp_KwSolidSection || kind == inp_KwCohesiveSection || kind == inp_KwFoundation ||
         kind == inp_KwPreTensionSection || kind == inp_KwNonStructuralMass;
}

cow_String inpS_SectionVisitor::FaultOfLine(const KvoSimPosition& line) {
  if (!line.IsA(eds_FormKind::FoundationLine)) return {};
  static const int field = eds_formField(eds_FormKind::FoundationLine, "label");
  const cow_String label = line.DataRecord().ReturnString(field);
  return inpS_isFoundationLabel(inp_Utils::Fold(label))
             ? ""
             : "\"" + label + "\" is no label of a foundation.";
}

void inpS_SectionVisitor::TellRequired(const inp_Keyword& keyword, const cow_String& parameter) {
  const bool lacksAll = keyword.Kind() == inp_KwSolidSection && parameter == "MATERIAL" &&
                        !keyword.HasParameter("orientation");
  cow_String name = parameter;
  for (std::size_t n = 1; n < name.size(); ++n)
    name[n] = static_cast<char>(name[n] >= 'A' && name[n] <= 'Z' ? name[n] - 'A' + 'a' : name[n]);
  const cow_String text =
      lacksAll ? "At least one of the MATERIAL and ORIENTATION parameters must be provided."
               : name + " is a required parameter.";
  Tell(keyword, inp_Utils::MessageInKeyword(keyword, text + " The keyword is kept as text."));
}

void inpS_SectionVisitor::TellMissing(const inp_Keyword& keyword, const cow_String& parameter,
                                      const eds_Referable& referable, const cow_String& name) {
  if (referable.kind != eds_RecordKind::ElementSet)
    return inpS_FormVisitor::TellMissing(keyword, parameter, referable, name);
  AddWarning(inp_Utils::MessageAtParameter(
      keyword, parameter,
      "Element set " + name +
          " is not defined. This section definition will not be used in the analysis. The keyword "
          "is kept as text."));
}

// ---- matrices

namespace {

// Rows of *MATRIX INPUT: a node and a degree of freedom, twice, and the value.
class MatrixRows : public inpS_LineCheck {
public:
  explicit MatrixRows(const inpS_SetVisitor& place)
      : m_occurrence(place.SpaceOf(inpS_SetVisitor::Kind::Nodes).occurrence),
        m_labeler(place.LabelerOf(inpS_SetVisitor::Kind::Nodes)) {}

  bool IsSound(const inp_ColumnPiece& piece, Words) override {
    if (m_occurrence < 0) return true;
    for (const std::size_t column : {0, 2})
      for (const int node : piece.columns[column].ints.first(piece.count))
        if (node > 0 && node != m_last && node != inp_blankInt) Look(node);
    return true;
  }
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView&) override { return {}; }
  cow_List<int> Unknown() { // ascending, each once
    std::ranges::sort(m_unknown);
    m_unknown.erase(std::unique(m_unknown.begin(), m_unknown.end()), m_unknown.end());
    return m_unknown;
  }

private:
  void Look(int node) {
    m_last = node; // rows of one node follow one another
    if (!m_labeler.HasInstanceLabel(m_occurrence, node)) m_unknown.push_back(node);
  }

  int m_occurrence;
  const KvoObjLabeler& m_labeler;
  int m_last = 0;
  cow_List<int> m_unknown;
};

} // namespace

// Decided here: rows stand whatever their nodes, for a matrix may be made for nodes that another
// deck has; those with a label above 0 that are not there are told, where the model's nodes are in
// no instances, whose labels a row cannot name. Others are the matrix' own.
bool inpS_SectionVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                      const KvoSimPosition& record) {
  const bool hasInstances = !Inventory().GetDocument().GetModel().Occurences().empty();
  if (keyword.Kind() != inp_KwMatrixInput || IsMeshLeftOut() || hasInstances)
    return inpS_FormVisitor::ReadColumns(keyword, form, record);
  MatrixRows rows(*this);
  const bool isWhole = inpS_ColumnReader(keyword, form, record, Names(), *this, &rows).Read();
  if (const cow_List<int> unknown = rows.Unknown(); !unknown.empty())
    Warning(keyword, inp_Utils::MessageWithItems(
                         "Rows of the matrix name nodes that do not exist: ", unknown));
  return isWhole;
}
