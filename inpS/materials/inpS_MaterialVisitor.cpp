#include "inpS/materials/inpS_MaterialVisitor.h"
#include "base/utl_Assert.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormRows.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "inpS/keywords/inpS_RecordParameters.h"
#include "inpS/keywords/inpS_UnreadField.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <cmath>

namespace {

bool isContainer(const KvoSimPosition& owner) {
  return owner.IsA(eds_RecordKind::Material) || owner.IsA(eds_FormKind::GasketBehavior);
}

eds_Member memberOf(const KvoSimPosition& owner) {
  return isContainer(owner) ? eds_Member::Properties : eds_Member::Suboptions;
}

// A behaviour of materials belongs to a container, any other to the behaviour it is part of.
bool mayOwn(const KvoSimPosition& owner, inp_KeywordEnm keyword) {
  if (owner.IsNull()) return false;
  const auto parents = inp_KeywordTable::Instance().Row(keyword)->parents;
  return isContainer(owner) || std::ranges::find(parents, inp_KwMaterial) == parents.end();
}

bool hasData(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row)
    if (!inpS_KeywordReader::IsBlankRow(data, row)) return true;
  return false;
}

// A word where the deck language allows the name of a distribution instead of numbers.
bool mayNameDistribution(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  return data.Rows() > 0 && data.Cols(0) > 0 && data.Type(0, 0) == inp_FieldType::String;
}

// And nothing else.
bool isOneWord(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row)
    for (int col = row == 0 ? 1 : 0; col < data.Cols(row); ++col)
      if (data.HasValue(row, col)) return false;
  return true;
}

// "*PLASTIC, *CREEP or *VISCOUS": the keywords that it may be a sub-option of.
cow_String namesOf(std::span<const inp_KeywordEnm> keywords) {
  cow_String names;
  for (std::size_t n = 0; n < keywords.size(); ++n) {
    if (n > 0) names += n + 1 < keywords.size() ? ", " : " or ";
    names += '*' + cow_String(inp_KeywordTable::Instance().Row(keywords[n])->name);
  }
  return names;
}

} // namespace

inpS_MaterialVisitor::inpS_MaterialVisitor(const inpS_Inventory& inventory, inpS_Ledger& ledger)
    : m_inventory(inventory), m_ledger(ledger), m_document(inventory.GetDocument()),
      m_rowCollection(m_document.GetPropertyTableRowCollection()),
      m_fieldVariableCollection(m_document.GetPropertyFieldVariableTypeCollection()),
      m_componentCollection(m_document.GetComponentCollection()) {}

void inpS_MaterialVisitor::VisitList(inp_KeywordListRef keywords) {
  inpS_Visitor::VisitList(keywords);
  cow_List<inp_KeywordEnm> ours = inpS_ownKeywords(inpS_Subject::Materials);
  const cow_List<inp_KeywordEnm>& behaviors = inpS_behaviorKeywords();
  ours.insert(ours.end(), behaviors.begin(), behaviors.end());
  ReportUnreferredParameters(keywords, ours);
}

// A keyword of ours may also stand under one of another subject, which knows nothing of it. A
// material is the whole model's: the copies of its part's instances add nothing, and what stands in
// a step stays there as text.
void inpS_MaterialVisitor::Visit(const inp_Keyword& keyword) {
  if (keyword.IsInstanceCopy()) return;
  const inp_KeywordEnm kind = keyword.Kind();
  const bool isOurs =
      inpS_isBehavior(kind) || kind == inp_KwNoCompression || kind == inp_KwNoTension;
  if (keyword.Scope().kind == inp_Scope::Kind::Step) {
    // Whoever reads another one marks what it takes.
    if (isOurs || kind == inp_KwMaterial || kind == inp_KwGasketBehavior) keyword.ReferAll();
    return;
  }
  if (kind == inp_UnknownKeyword) { // stays where it stands in its material
    if (!m_open.IsNull()) KeepAsText(keyword, m_open);
    return;
  }
  if (keyword.ParentKind() == inp_NullKeyword) {
    const bool isMisplaced = inp_KeywordTable::Instance().Row(kind)->levels == inp_LevelsSub;
    if (isMisplaced && (isOurs || !m_open.IsNull())) { // within a material it stays there
      if (isOurs) TellOfStray(keyword);
      // A keyword between (*NSET) closes no material.
      const bool isWithin = m_open.IsNull() && keyword.ScopePtr() == m_lastScope;
      const KvoSimPosition within = isWithin ? m_last : m_open;
      // Gasket behaviors are written behind the materials, whose last one would take it in.
      const bool isAdopted = within.IsA(eds_FormKind::GasketBehavior);
      return KeepAsText(keyword, isAdopted ? KvoSimPosition() : within, isOurs);
    }
    m_open = {};
  }
  if (!isOurs) {
    inpS_Visitor::Visit(keyword);
    if (kind != inp_KwMaterial && kind != inp_KwGasketBehavior) return;
    m_last = m_open = m_owner;
    m_lastScope = keyword.ScopePtr();
    return;
  }
  switch (keyword.ParentKind()) {
  case inp_KwMaterial:
    m_open = m_owner = m_material;
    break;
  case inp_KwGasketBehavior:
    m_open = m_owner = m_gasket;
    break;
  default: // dealt with where its own parent is converted, or kept with it
    if (!inpS_FormTable::Instance().Knows(keyword.ParentKind())) KeepAsText(keyword, {});
    return;
  }
  if (m_owner.IsNull()) TellOfStray(keyword);
  if (m_owner.IsNull()) return KeepAsText(keyword, m_owner, true);
  if (!inpS_isBehavior(kind)) return KeepUnconverted(keyword, m_owner);
  inpS_Visitor::Visit(keyword);
}

void inpS_MaterialVisitor::TellOfStray(const inp_Keyword& keyword) {
  const auto parents = inp_KeywordTable::Instance().Row(keyword.Kind())->parents;
  const bool ofContainers = std::ranges::any_of(parents, [](inp_KeywordEnm parent) {
    return parent == inp_KwMaterial || parent == inp_KwGasketBehavior;
  });
  Error(keyword, "*" + keyword.Name() +
                     (ofContainers ? " belongs to a material and stands outside of any"
                                   : " belongs to " + namesOf(parents) + " and stands under " +
                                         (parents.size() > 1 ? "none of them" : "none")) +
                     "; it is kept as text.");
}

// With all its sub-options: none of them can be converted without it. It stands behind what the
// owner holds by now, but for potentials, which are written under the keyword they were given with.
void inpS_MaterialVisitor::KeepAsText(const inp_Keyword& keyword, const KvoSimPosition& owner,
                                      bool isTold, cow_String reason) {
  keyword.ReferAll();
  KvoSimPosition behind = owner;
  if (!owner.IsNull())
    for (const KvoSimPosition& present : owner.GetVector(memberOf(owner)))
      if (!present.IsA(eds_FormKind::Potential)) behind = present;
  m_ledger.KeepAsText(keyword, {owner, behind, std::move(reason), isTold});
  for (const inp_Keyword& suboption : keyword.Suboptions()) KeepAsText(suboption, owner);
}

// What has been tried: where no message has said so, why it could not be converted.
void inpS_MaterialVisitor::KeepUnconverted(const inp_Keyword& keyword,
                                           const KvoSimPosition& owner) {
  cow_String reason = UntoldReason(keyword);
  // Of words that are none, and what was said then says nothing of the text.
  const bool isElastic = keyword.Kind() == inp_KwElastic;
  const bool isUntold =
      keyword.Kind() != inp_KwExpansion &&
      (inpS_hasUnknownWord(keyword) || (isElastic && !inpS_FormTable::Instance().Select(keyword)));
  const bool isTold = reason.empty() && !isUntold;
  KeepAsText(keyword, owner, isTold, std::move(reason));
}

// ---- behaviours

KvoSimPosition inpS_MaterialVisitor::CreateProperty(const inp_Keyword& keyword,
                                                    eds_RecordKind property, int tableKind,
                                                    int values, int rowKind, bool temperature) {
  inpS_KeywordDataTable table(keyword, values, 0, temperature);
  table.Read();
  table.RemoveTempColumnIfIndependent();
  if (table.NumRows() == 0) return {};
  KvoSimTransaction transaction(m_document.ContextID());
  const KvoSimPosition created = m_material.CreateDataRecord(property);
  m_material.Associate(eds_Member::Properties, created);
  inpS_PropertyUtils::CreateProperty(created, tableKind, rowKind, std::move(table), {}, {});
  transaction.Commit();
  return created;
}

KvoSimPosition inpS_MaterialVisitor::GetProperty(eds_RecordKind kind) const {
  if (m_material.IsNull()) return {};
  for (const KvoSimPosition& property : m_material.GetSet(eds_Member::Properties))
    if (property.IsA(kind)) return property;
  return {};
}

KvoSimPosition inpS_MaterialVisitor::CreateBehavior(const inp_Keyword& keyword,
                                                    const KvoSimPosition& owner,
                                                    const inp_Keyword* parent) {
  const inpS_FormTable& table = inpS_FormTable::Instance();
  const inpS_Form* behavior = table.Select(keyword, parent);
  const std::string_view assertion = inpS_valueAssertion(keyword.Kind());
  if (behavior && behavior->kind == eds_FormKind::Depvar && keyword.Data().Rows() == 0)
    utl_assertionFailed("numRows>= 1");
  if (!behavior && !assertion.empty()) utl_assertionFailed(cow_String(assertion).c_str());
  const std::string_view misplaced = inpS_ownerAssertion(keyword.Kind());
  if (!misplaced.empty() && !mayOwn(owner, keyword.Kind()))
    utl_assertionFailed(cow_String(misplaced).c_str());
  return behavior ? Create(keyword, *behavior, owner) : KvoSimPosition();
}

KvoSimPosition inpS_MaterialVisitor::Convert(const inp_Keyword& keyword,
                                             const KvoSimPosition& owner,
                                             const inp_Keyword* parent) {
  KvoSimPosition created;
  if (MayConvert(keyword, owner, parent)) created = CreateBehavior(keyword, owner, parent);
  if (created.IsNull()) KeepUnconverted(keyword, owner);
  return created;
}

// Whether a row takes the keyword here; what stands against it is reported.
bool inpS_MaterialVisitor::MayConvert(const inp_Keyword& keyword, const KvoSimPosition& owner,
                                      const inp_Keyword* parent) {
  const inpS_Form* behavior = inpS_FormTable::Instance().Select(keyword, parent);
  if (!behavior) {
    ReportChoice(keyword);
    return false;
  }
  if (inpS_hasUnknownWord(keyword)) return false; // told with the text
  if (behavior->HasTable() && NamesDistribution(keyword) && !isOneWord(keyword)) return false;
  if (behavior->info->repeat == eds_FormRepeat::Many) return true;
  return !IsSecond(keyword, *behavior, owner);
}

// Any other word is no number, and told like one wherever it stands.
bool inpS_MaterialVisitor::NamesDistribution(const inp_Keyword& keyword) const {
  return mayNameDistribution(keyword) &&
         m_inventory.Names(inp_KwDistribution, keyword.Data().AsString(0, 0));
}

bool inpS_MaterialVisitor::IsDistributed(const inp_Keyword& keyword) const {
  return NamesDistribution(keyword) && isOneWord(keyword);
}

// Why a keyword is not converted where nothing is wrong enough for a message of its own; empty for
// any other.
cow_String inpS_MaterialVisitor::UntoldReason(const inp_Keyword& keyword) const {
  if (inpS_hasUnknownWord(keyword)) return {};
  if (keyword.Kind() == inp_KwNoCompression || keyword.Kind() == inp_KwNoTension)
    return "stands under no *ELASTIC that is converted";
  for (const inp_Parameter& parameter : keyword.Parameters())
    if (parameter.value.IsFlag() &&
        !inp_KeywordTable::Instance().WordsOf(keyword.Kind(), parameter.name).empty())
      return "has \"" + inpS_spelledName(parameter) + "\" without a value";
  if (NamesDistribution(keyword)) return "takes its values from a distribution, and has others";
  if (!hasData(keyword)) return "has no data lines";
  return {};
}

bool inpS_MaterialVisitor::IsSecond(const inp_Keyword& keyword, const inpS_Form& behavior,
                                    const KvoSimPosition& owner) {
  for (const KvoSimPosition& present : owner.GetVector(memberOf(owner))) {
    const inpS_Form* other = inpS_FormTable::Instance().Find(present.Object().RecordKind());
    const bool same = behavior.info->repeat == eds_FormRepeat::Beside || !other
                          ? present.IsA(behavior.kind)
                          : other->keyword == keyword.Kind();
    if (!same) continue;
    Warning(keyword, "*" + keyword.Name() + " is given a second time for the same " +
                         (memberOf(owner) == eds_Member::Properties ? "material" : "behavior") +
                         "; the first one holds, this one is kept as text.");
    return true;
  }
  return false;
}

// A value that is no word of the language is told with the text that is kept, and what *ELASTIC
// does not know it leaves alone without a word of its own.
void inpS_MaterialVisitor::ReportChoice(const inp_Keyword& keyword) {
  const cow_String parameter = inpS_FormTable::Instance().UnknownChoice(keyword);
  if (keyword.Kind() == inp_KwExpansion && parameter == "TYPE") {
    wip_Message message = inp_Utils::MessageAtParameter(keyword, "type", "Unsupported type.");
    message.notes.push_back({"The keyword is kept as text.", {}});
    return AddWarning(std::move(message));
  }
  if (inpS_hasUnknownWord(keyword) || keyword.Kind() == inp_KwElastic) return;
  const bool says = std::ranges::any_of(inpS_behaviorForms(), [&](const inpS_Form* row) {
    return row->keyword == keyword.Kind() &&
           std::ranges::any_of(row->selectors,
                               [&](const auto& one) { return keyword.HasParameter(one.key); });
  });
  if (says)
    Warning(keyword,
            "*" + keyword.Name() + " is none of the kinds that are converted; it is kept as text.");
  else
    Error(keyword,
          "*" + keyword.Name() + " lacks a parameter that tells what it is; it is kept as text.");
}

// Bare parameters that choose different rows: the first row holds.
void inpS_MaterialVisitor::TellConflicts(const inp_Keyword& keyword) {
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    if (parameter.referred || parameter.told) continue;
    const auto chooses = [&](const inpS_Form* row) {
      return row->keyword == keyword.Kind() &&
             std::ranges::any_of(row->selectors, [&](const inpS_Form::Selector& selector) {
               return selector.key == parameter.name;
             });
    };
    if (std::ranges::none_of(inpS_behaviorForms(), chooses)) continue;
    parameter.told = true;
    AddWarning(inp_Utils::MessageAtParameter(
        keyword, parameter.name,
        "\"" + parameter.name +
            "\" does not go with the other parameters; it is kept, but not used."));
  }
}

// Of a record that has one field for the parameters without one of their own: those that the
// language does not know either.
void inpS_MaterialVisitor::TellUnknown(const inp_Keyword& keyword) {
  const auto known = inp_KeywordTable::Instance().Row(keyword.Kind())->parameters;
  for (const inp_Parameter& parameter : keyword.Parameters())
    if (!parameter.referred && std::ranges::binary_search(known, parameter.name))
      parameter.told = true;
  inpS_tellOtherParameters(keyword, *this);
}

KvoSimPosition inpS_MaterialVisitor::Create(const inp_Keyword& keyword, const inpS_Form& behavior,
                                            const KvoSimPosition& owner) {
  inpS_FormRows rows;
  const bool isDistributed = behavior.HasTable() && IsDistributed(keyword);
  if (behavior.HasTable() && !isDistributed && !rows.Read(keyword, behavior, *this)) return {};
  KvoSimTransaction transaction(m_document.ContextID());
  const Potential potential = CreatePotential(keyword);
  const KvoSimPosition property = owner.CreateDataRecord(behavior.kind);
  owner.Associate(memberOf(owner), property);
  m_ledger.Take(keyword, property);
  PlacePotential(potential, property);
  inpS_readParameters(keyword, behavior.parameters, property.DataRecord(), *this);
  behavior.LeaveForeign(keyword, rows.HasRows());
  behavior.LeaveOddChoices(keyword, *this);
  if (behavior.info->textField >= 0 && keyword.Data().Rows() > 0)
    property.DataRecord().SetString(behavior.info->textField, inpS_dataLines(keyword, *this));
  const bool isPartly = behavior.HasTable() && !isDistributed && !rows.Table().Unread().empty();
  const KvoSimPosition kept =
      KeepOthers(keyword, behavior, property,
                 isPartly || isDistributed ? inpS_dataLines(keyword, *this) : cow_String());
  if (isDistributed)
    m_distributed.push_back({property, kept, keyword});
  else
    rows.Store(property);
  CreateSuboptions(keyword, property);
  transaction.Commit();
  return property;
}

// What has no field and no column: parameters that nothing took, lines that hold more than rows.
KvoSimPosition inpS_MaterialVisitor::KeepOthers(const inp_Keyword& keyword,
                                                const inpS_Form& behavior,
                                                const KvoSimPosition& property, cow_String lines) {
  if (behavior.info->othersField >= 0) {
    TellUnknown(keyword);
    const cow_String others = inpS_takeOtherParameters(keyword);
    if (!others.empty()) property.DataRecord().SetString(behavior.info->othersField, others);
  }
  inpS_KeptPart part;
  part.lines = std::move(lines);
  if (behavior.info->data == eds_FormData::None && behavior.info->lines.empty())
    part.lines = inpS_takeUnusedLines(keyword, *this);
  return KeepParts(keyword, property, std::move(part));
}

KvoSimPosition inpS_MaterialVisitor::KeepParts(const inp_Keyword& keyword,
                                               const KvoSimPosition& owner, inpS_KeptPart part,
                                               bool always) {
  if (!keyword.Parameters().empty()) {
    TellConflicts(keyword);
    inpS_tellOtherParameters(keyword, *this);
    part.parameters = inpS_takeOtherParameters(keyword);
  }
  if (!always && part.parameters.empty() && part.lines.empty()) return {};
  return inpS_keepPart(owner, part);
}

// A sub-option is a record of its own; one without data may be a flag of the property, in the field
// of its name.
void inpS_MaterialVisitor::CreateSuboptions(const inp_Keyword& keyword,
                                            const KvoSimPosition& property) {
  for (const inp_Keyword& suboption : keyword.Suboptions()) {
    if (suboption.Kind() == inp_KwPotential) continue; // of the material, made beforehand
    if (inpS_isBehavior(suboption.Kind())) {
      Convert(suboption, property, &keyword);
      continue;
    }
    const int flag = inpS_flagField(property.Object().RecordKind(), suboption.Kind());
    if (flag >= 0 && (hasData(suboption) || !suboption.Parameters().empty())) {
      KeepAsText(suboption, property, false,
                 "takes neither parameters nor data lines, and has some");
      continue;
    }
    if (flag >= 0) {
      property.DataRecord().SetBool(flag, true);
      m_ledger.Take(suboption);
      continue;
    }
    const std::string_view assertion = inpS_suboptionAssertion(keyword.Kind());
    if (!assertion.empty()) utl_assertionFailed(cow_String(assertion).c_str());
    KeepAsText(suboption, property);
  }
}

// ---- what rows cannot say

void inpS_MaterialVisitor::Elasticity(const inp_Keyword& keyword) {
  const KvoSimPosition property = Convert(keyword, m_owner);
  if (property.IsNull() || keyword.StringOf("moduli", "LONGTERM") == "INSTANTANEOUS") return;
  KvoSimTransaction transaction(m_document.ContextID());
  property.DataRecord().UnsetMember(eds_formField(property.Object().RecordKind(), "moduli"));
  transaction.Commit();
}

// The material keeps the first potential that it is given; another, or one without rows, is text.
inpS_MaterialVisitor::Potential inpS_MaterialVisitor::CreatePotential(const inp_Keyword& keyword) {
  Potential potential;
  for (const inp_Keyword& suboption : keyword.Suboptions()) {
    if (suboption.Kind() != inp_KwPotential) continue;
    const auto present = m_owner.GetVector(eds_Member::Properties);
    const bool isSecond = std::ranges::any_of(present, [](const KvoSimPosition& property) {
      return property.IsA(eds_FormKind::Potential);
    });
    KvoSimPosition made;
    if (isSecond)
      Warning(suboption, "The material has a potential already; this one is kept as text.");
    else if (const auto* behavior = inpS_FormTable::Instance().Select(suboption))
      made = Create(suboption, *behavior, m_owner);
    if (made.IsNull())
      potential.texts.push_back(&suboption);
    else
      potential.made = made;
  }
  return potential;
}

void inpS_MaterialVisitor::PlacePotential(const Potential& potential,
                                          const KvoSimPosition& property) {
  for (const inp_Keyword* text : potential.texts) {
    text->ReferAll();
    cow_String reason = UntoldReason(*text);
    const bool isTold = reason.empty();
    m_ledger.KeepAsText(*text, {m_owner, property, std::move(reason), isTold});
  }
  if (!potential.made.IsNull())
    potential.made.DataRecord().SetReference(eds_formField(eds_FormKind::Potential, "given_with"),
                                             property);
}

void inpS_MaterialVisitor::Plasticity(const inp_Keyword& keyword) {
  if (keyword.StringOf("hardening", "ISOTROPIC") != "ISOTROPIC") return Behavior(keyword);
  if (inpS_hasUnknownWord(keyword)) return KeepAsText(keyword, m_owner);
  constexpr eds_RecordKind kind = eds_FormKind::PlasticIsotropic;
  KvoSimPosition property = GetProperty(kind);
  if (property.IsNull() && IsSecond(keyword, *inpS_FormTable::Instance().Find(kind), m_owner))
    return KeepAsText(keyword, m_owner, true); // beside another hardening
  if (!property.IsNull() && (IsDistributed(keyword) || property.GetFTable().IsNull())) {
    Warning(keyword, "A material whose *PLASTIC takes its values from a distribution has that one "
                     "alone; the keyword is kept as text.");
    return KeepAsText(keyword, m_owner, true);
  }
  KvoSimTransaction transaction(m_document.ContextID());
  if (property.IsNull() && IsDistributed(keyword)) {
    property = Create(keyword, *inpS_FormTable::Instance().Find(kind), m_owner);
  } else if (property.IsNull()) {
    property = CreateIsotropicHardeningPlastic(transaction, keyword);
  } else if (AppendIsotropicHardeningPlastic(transaction, keyword, property)) {
    CreateSuboptions(keyword, property);
    const Potential potential = CreatePotential(keyword);
    PlacePotential(potential, property);
    if (!potential.made.IsNull()) { // stands before it, as always
      m_owner.Dissociate(eds_Member::Properties, property);
      m_owner.Associate(eds_Member::Properties, property);
    }
  } else {
    property = {};
  }
  if (property.IsNull()) KeepUnconverted(keyword, m_owner);
  transaction.Commit();
}

// ---- what has a field beside its lines

// The number of solution-dependent variables stands alone on the first line; descriptions of single
// variables may follow.
void inpS_MaterialVisitor::Depvar(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  const bool isNumber =
      data.Rows() > 0 && data.Cols(0) > 0 &&
      (data.Type(0, 0) == inp_FieldType::Integer || data.Type(0, 0) == inp_FieldType::Double);
  const double count = isNumber ? data.AsDouble(0, 0) : -1;
  constexpr double most = 1e15; // beyond, doubles have no fractions
  if (!(count >= 0 && count <= most && count == std::trunc(count))) {
    Error(keyword, "*DEPVAR does not tell the number of variables; it is kept as text.");
    return KeepAsText(keyword, m_owner, true);
  }
  KvoSimTransaction transaction(m_document.ContextID());
  const KvoSimPosition property = Convert(keyword, m_owner);
  if (!property.IsNull()) {
    property.DataRecord().SetInt(eds_formField(eds_FormKind::Depvar, "count"),
                                 static_cast<long long>(count));
    int col = 1; // the lines are kept as they stand
    while (col < data.Cols(0) && !data.HasValue(0, col)) ++col;
    if (col < data.Cols(0)) inpS_reportUnreadFields(keyword, {{0, col, true}}, *this);
  }
  transaction.Commit();
}

void inpS_MaterialVisitor::Expansion(const inp_Keyword& keyword) {
  if (!keyword.HasParameter("zero") && m_inventory.IsCFD())
    Warning(keyword,
            "The reference temperature has been set to the default value of 0.0.  For "
            "buoyancy-driven flows, this default value may result in excessively large buoyancy "
            "forces.  Please check that the reference temperature correctly reflects the "
            "assumptions for the Boussinesq approximation for buoyancy-driven flows.");
  Convert(keyword, m_owner);
}
