#include "inpS/forms/inpS_FormVisitor.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_Schema.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/forms/inpS_FormWords.h"
#include "inpS/forms/inpS_LackOfLines.h"
#include "inpS/forms/inpS_WrappedRows.h"
#include "inpS/keywords/inpS_BlankLine.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

constexpr auto isBlankLine = inpS_KeywordReader::IsBlankRow;

constexpr bool convertsWithinSteps(inpS_Phase phase) {
#define INPS_STEP_PHASE(keyword, name)                                                             \
  if (phase == inpS_Phase::name) return true;
#include "inpS/forms/inpS_stepPhases.def"
  return phase == inpS_Phase::Steps;
}

cow_String nameOf(inp_KeywordEnm keyword) {
  return "*" + cow_String(inp_KeywordTable::Instance().Row(keyword)->name);
}

// Whether some of the keywords is of the phase's blocks and has a name that others refer to.
bool namesAny(inpS_Phase phase, inp_KeywordListRef keywords) {
  const inpS_FormTable& forms = inpS_FormTable::Instance();
  cow_List<inp_KeywordEnm> definers;
  for (const eds_Referable& one : eds_referables()) {
    const inp_KeywordEnm definer = forms.DefinerOf(one);
    if (definer != inp_NullKeyword && forms.Knows(definer) &&
        inpS_block(inp_KeywordTable::Instance().Row(definer)->block).phase == phase)
      definers.push_back(definer);
  }
  if (definers.empty()) return false;
  return std::ranges::any_of(keywords, [&](const inp_Keyword& keyword) {
    return std::ranges::find(definers, keyword.Kind()) != definers.end();
  });
}

} // namespace

inpS_FormVisitor::inpS_FormVisitor(inpS_Phase phase, KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                   const inpS_Inventory& inventory, inpS_Ledger& ledger)
    : inpS_SetVisitor(nodes, elements, inventory), m_phase(phase),
      m_keywords(inp_KeywordTable::Instance()), m_ledger(ledger), m_names(*this) {
  m_names.SetInventory(inventory);
}

void inpS_FormVisitor::Report() {
  if (!m_withoutMesh.empty()) TellWithoutMesh();
  m_withoutMesh.clear();
  inpS_SetVisitor::Report();
}

// At the first one.
void inpS_FormVisitor::TellWithoutMesh() {
  cow_List<cow_String> names;
  for (const inp_Keyword& keyword : m_withoutMesh)
    if (std::ranges::find(names, keyword.Name()) == names.end()) names.push_back(keyword.Name());
  cow_String list;
  for (const cow_String& name : names) list += (list.empty() ? "*" : ", *") + name;
  Warning(m_withoutMesh.front(),
          "The mesh could not be converted; keywords that stand on its sets and surfaces (" +
              std::to_string(m_withoutMesh.size()) + ": " + list + ") are kept as text.");
}

// What has a name may stand behind what refers to it.
void inpS_FormVisitor::VisitList(inp_KeywordListRef keywords) {
  for (const bool isNaming : {true, false}) {
    if (isNaming && !namesAny(m_phase, keywords)) continue;
    m_isNaming = isNaming;
    m_step = {};
    m_hasSteps = false;
    inpS_SetVisitor::VisitList(keywords);
  }
}

// What a part says is said once, for all its instances.
void inpS_FormVisitor::Visit(const inp_Keyword& keyword) {
  inpS_SetVisitor::Visit(keyword);
  if (!inpS_FormTable::Instance().Knows(keyword.Kind())) return;
  const inp_KeywordRow& row = *m_keywords.Row(keyword.Kind());
  const inpS_Block& block = inpS_block(row.block);
  m_hasSteps = m_hasSteps || (keyword.Kind() == inp_KwStep && convertsWithinSteps(m_phase));
  // Before the first step, and in phases that have nothing to do in steps, those of other phases go
  // by their kind alone: to look into a keyword is what costs in a walk over many.
  if (!m_hasSteps && block.phase != m_phase) return;
  if (keyword.IsInstanceCopy() || keyword.IsSuboption()) return;
  if (keyword.Scope().kind == inp_Scope::Kind::Step || keyword.Kind() == inp_KwStep)
    return VisitWithinStep(keyword);
  // What stands where it may not is told of elsewhere, and stays text.
  const bool isStray = row.levels == inp_LevelsSub;
  if (block.phase != m_phase || isStray || block.member == eds_Member::Steps) return;
  if ((inpS_FormTable::Instance().Named(keyword.Kind()) != nullptr) != m_isNaming) return;
  Convert(keyword, Holder(), inpS_memberOf(block, keyword.Kind()), nullptr);
}

// A step holds its keywords by their place in it, whatever the phase that converts them.
void inpS_FormVisitor::VisitWithinStep(const inp_Keyword& keyword) {
  if (keyword.Kind() == inp_KwStep) {
    if (IsOfPhase(keyword) && !m_isNaming)
      m_step = Convert(keyword, Model(), eds_Member::Steps, nullptr);
    else if (const KvoSimPosition* step = m_ledger.RecordOf(keyword))
      m_step = *step;
    else
      m_step = {};
    m_stepPlace = 0;
    return;
  }
  // What is of the whole model, wherever it stands, goes back before the steps.
  if (inpS_stepPhaseOf(keyword.Kind()) != inpS_Phase::None || m_ledger.TextOf(keyword))
    ++m_stepPlace;
  if (m_step.IsNull() || !IsOfPhase(keyword)) return;
  // What strayed into the step stays text.
  if (!m_keywords.MayStandAt(keyword.Kind(), inp_LevelsStep)) return;
  // Steps are made in the walk that converts what stands in them: it takes what has a name, too.
  const bool isNamed = inpS_FormTable::Instance().Named(keyword.Kind()) != nullptr;
  if (m_phase == inpS_Phase::Steps || isNamed == m_isNaming)
    Convert(keyword, m_step, eds_Member::StepKeywords, nullptr);
}

bool inpS_FormVisitor::IsOfPhase(const inp_Keyword& keyword) const {
  return keyword.Kind() != inp_KwStep && inpS_stepPhaseOf(keyword.Kind()) == m_phase;
}

void inpS_FormVisitor::Hold(const KvoSimPosition& owner, eds_Member member,
                            const KvoSimPosition& record) const {
  if (member == eds_Member::StepKeywords)
    owner.Associate(member, m_stepPlace, record);
  else
    owner.Associate(member, record);
}

const inpS_Form* inpS_FormVisitor::Choose(const inp_Keyword& keyword, const inp_Keyword* parent) {
  const inpS_Form* form = inpS_FormTable::Instance().Select(keyword, parent);
  return form ? inpS_WrappedRows::FormOf(keyword, *form) : nullptr;
}

bool inpS_FormVisitor::MayConvert(const inp_Keyword&, const inpS_Form&) {
  return true;
}

void inpS_FormVisitor::Converted(const inp_Keyword&, const inpS_Form&, const KvoSimPosition&) {}

bool inpS_FormVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                   const KvoSimPosition& record) {
  if (form.columnItems.back().isRepeated) {
    inpS_WrappedRows rows(keyword, form, record, m_names, *this);
    rows.SetErrorToRefuse(IsErrorToLack(keyword.Kind()));
    return rows.Read();
  }
  inpS_ColumnReader reader(keyword, form, record, m_names, *this);
  reader.SetErrorToRefuse(IsErrorToLack(keyword.Kind()));
  return reader.Read();
}

cow_String inpS_FormVisitor::FaultOfLine(const KvoSimPosition&) {
  return {};
}

cow_List<inpS_TableColumns::Column> inpS_FormVisitor::ColumnsOf(const inp_Keyword&,
                                                                const inpS_Form&) {
  return {};
}

KvoSimPosition inpS_FormVisitor::Convert(const inp_Keyword& keyword, const KvoSimPosition& owner,
                                         eds_Member member, const inp_Keyword* parent) {
  Loss loss = owner.IsNull() ? Loss::Keyword : LossOfWords(keyword, parent);
  bool isTold = !owner.IsNull() && loss == Loss::Keyword;
  const inpS_Form* form = loss == Loss::Keyword ? nullptr : Choose(keyword, parent);
  isTold = std::exchange(m_isToldOfNone, false) || isTold;
  inpS_FormRows rows;
  const bool may = form && MayBe(keyword, *form, owner, member, loss) && MayConvert(keyword, *form);
  const bool hasRows =
      may && (!form->HasTable() || rows.Read(keyword, *form, *this, ColumnsOf(keyword, *form)));
  if (!hasRows) {
    // Of rows that are not there nobody has told yet.
    cow_String reason = may ? inpS_reasonWithoutRows(keyword, *form->info) : "";
    if (!form && !isTold && !owner.IsNull()) reason = ReasonOfNone(keyword);
    KeepAsText(keyword, owner, parent, reason.empty() && (form || isTold), reason);
    return {};
  }
  KvoSimTransaction transaction(Inventory().GetDocument().ContextID());
  const KvoSimPosition record = owner.CreateDataRecord(form->info->kind);
  Hold(owner, member, record);
  if (const eds_Referable* named = inpS_FormTable::Instance().Named(keyword.Kind()); named)
    NamesIn(owner).AssociateStringKey(named->member, keyword.StringOf("name", ""), record);
  ReadParameters(keyword, *form, record.DataRecord());
  bool whole = loss != Loss::Lines && ReadData(keyword, *form->info, record);
  form->LeaveForeign(keyword, rows.HasRows());
  if (form->HasTable()) {
    whole = whole && rows.Table().Unread().empty();
    rows.Store(record);
  }
  inpS_tellOtherParameters(keyword, *this);
  const inpS_KeptPart beside{0, inpS_takeOtherParameters(keyword),
                             whole ? cow_String() : inpS_dataLines(keyword, *this)};
  if (!beside.parameters.empty() || !beside.lines.empty()) inpS_keepPart(record, beside);
  m_ledger.Take(keyword, record);
  ConvertSuboptions(keyword, record);
  Converted(keyword, *form, record);
  transaction.Commit();
  return record;
}

// A sub-option stays behind those that its keyword's record holds by now; the others of its kind go
// with it.
void inpS_FormVisitor::KeepAsText(const inp_Keyword& keyword, const KvoSimPosition& owner,
                                  const inp_Keyword* parent, bool isTold,
                                  const cow_String& reason) {
  inpS_TextPlace place;
  place.isTold = isTold;
  place.reason = reason;
  if (parent && !owner.IsNull()) {
    place.owner = place.behind = owner;
    for (const KvoSimPosition& present : owner.GetVector(eds_Member::Suboptions))
      place.behind = present;
  }
  m_ledger.KeepAsText(keyword, place);
  if (parent)
    for (const inp_Keyword& suboption : keyword.Suboptions())
      KeepAsText(suboption, owner, &keyword, true);
}

void inpS_FormVisitor::ConvertSuboptions(const inp_Keyword& keyword, const KvoSimPosition& record) {
  for (const inp_Keyword& suboption : keyword.Suboptions())
    Convert(suboption, record, eds_Member::Suboptions, &keyword);
}

bool inpS_FormVisitor::MayBe(const inp_Keyword& keyword, const inpS_Form& form,
                             const KvoSimPosition& owner, eds_Member member, Loss& loss) {
  if (m_isMeshLeftOut && std::ranges::any_of(form.info->columnItems, inpS_namesMesh)) {
    m_withoutMesh.push_back(keyword);
    return false;
  }
  if (!CheckReferences(keyword, form, loss) || !IsNameFree(keyword, owner)) return false;
  if (form.info->data == eds_FormData::Words &&
      inpS_readWords(keyword, form.info->words, *this).empty())
    return false;
  if (form.info->repeat == eds_FormRepeat::Many) return true;
  for (const KvoSimPosition& present : owner.FollowMap(member)) {
    const inpS_Form* other = inpS_FormTable::Instance().Find(present.Object().RecordKind());
    const bool same = form.info->repeat == eds_FormRepeat::Beside || !other
                          ? present.IsA(form.info->kind)
                          : other->keyword == keyword.Kind();
    if (!same) continue;
    Warning(keyword, "*" + keyword.Name() +
                         " is given a second time; the first one holds, this one is kept as text.");
    return false;
  }
  return true;
}

// What has its name within a step has it in the whole model.
KvoSimPosition inpS_FormVisitor::NamesIn(const KvoSimPosition& owner) const {
  return owner == m_step ? Model() : owner;
}

// Of what others refer to by its name: the first definition holds.
bool inpS_FormVisitor::IsNameFree(const inp_Keyword& keyword, const KvoSimPosition& owner) {
  const eds_Referable* named = inpS_FormTable::Instance().Named(keyword.Kind());
  if (!named) return true;
  const inp_Item* name = keyword.Find("name");
  if (!name || name->AsString().empty()) {
    TellRequired(keyword, "NAME");
    return false;
  }
  const KvoSimPosition known = NamesIn(owner).FollowStringKey(named->member, name->AsString());
  if (known.IsNull()) return true;
  // What stands outside of the steps is read, and written, before them, wherever it stood.
  const bool isOutside = owner == m_step && known.Parent() == Model();
  Warning(keyword,
          "*" + keyword.Name() + " \"" + name->AsString() + "\" is defined " +
              (isOutside ? "outside of the steps, too; that one" : "a second time; the first one") +
              " holds, this one is kept as text.");
  return false;
}

void inpS_FormVisitor::TellRequired(const inp_Keyword& keyword, const cow_String& parameter) {
  Tell(keyword, inp_Utils::MessageInKeyword(
                    keyword, inpS_messageText(inpS_app_RequiredParameter, {parameter}) +
                                 " The keyword is kept as text."));
}

// What it names may be a keyword that is kept as text itself: no error.
void inpS_FormVisitor::TellMissing(const inp_Keyword& keyword, const cow_String& parameter,
                                   const eds_Referable& referable, const cow_String& name) {
  const cow_String fault =
      keyword.IsDoubted(parameter) ? cow_String() : m_names.TextOfMissing(referable, name);
  Tell(keyword,
       inp_Utils::MessageAtParameter(keyword, parameter, fault + " The keyword is kept as text."));
}

bool inpS_FormVisitor::IsErrorToLack(inp_KeywordEnm) const {
  return false;
}

void inpS_FormVisitor::Tell(const inp_Keyword& keyword, wip_Message message) {
  if (IsErrorToLack(keyword.Kind()))
    AddError(std::move(message));
  else
    AddWarning(std::move(message));
}

// Decided here: who misspells OP or REGION TYPE says nothing by it, and one whose amplitude is not
// there has none, as has one with an odd YES or NO, and a section whose orientation is not there
// has its material and thickness all the same; the rest means what it means without it. Without any
// other word (the TYPE of a *BOUNDARY, the axes of a traction) nothing true can be said of the
// lines of bulk columns: they are kept as they stand and nothing is made of them, but OP=NEW holds.
// All other keywords are no such thing without it.
inpS_FormVisitor::Loss inpS_FormVisitor::LossOf(const inpS_Form& form,
                                                const cow_String& parameter) const {
  const auto binding = std::ranges::find(form.parameters, parameter, &inpS_ParameterBinding::key);
  if (binding == form.parameters.end()) {
    // Without the word that tells its kind nobody knows what the lines of a procedure mean.
    if (m_keywords.Row(form.keyword)->role == inp_KeywordRole::Procedure)
      return form.IsChosenBy(parameter) ? Loss::Lines : Loss::Parameter;
    return inpS_FormTable::Instance().IsChoice(form.keyword, parameter) ? Loss::Keyword
                                                                        : Loss::Parameter;
  }
  const eds_FormItem& item =
      *form.items[static_cast<std::size_t>(binding - form.parameters.begin())];
  const eds_Referable* referable = item.alternatives.front().referable;
  const auto isAny = [&](std::initializer_list<std::string_view> words) {
    return referable && !item.isRequired &&
           std::ranges::find(words, referable->word) != words.end();
  };
  const bool isCondition = form.Binds("op") && form.info->data == eds_FormData::Columns;
  // What a section or a matrix may have beside what it is about.
  const bool isBeside = !isCondition && isAny({"orientation", "section_controls", "material",
                                               "gasket_behavior", "matrix"});
  const bool saysYesOrNo = binding->words.size() == 2 && binding->words.front() == "YES";
  if (parameter == "op" || parameter == "regiontype" || isAny({"amplitude"}) || isBeside ||
      saysYesOrNo)
    return Loss::Parameter;
  if (!item.isRequired && MayLack(form, item)) return Loss::Parameter;
  return isCondition ? Loss::Lines : Loss::Keyword;
}

bool inpS_FormVisitor::MayLack(const inpS_Form&, const eds_FormItem&) const {
  return false;
}

bool inpS_FormVisitor::IsLostByWords(const inp_Keyword& keyword, const inp_Keyword* parent) const {
  const cow_List<cow_String> unknown = inpS_unknownWords(keyword);
  if (unknown.empty()) return false;
  const inpS_Form* form = inpS_FormTable::Instance().Select(keyword, parent);
  return !form || std::ranges::any_of(unknown, [&](const cow_String& name) {
    return LossOf(*form, name) == Loss::Keyword;
  });
}

inpS_FormVisitor::Loss inpS_FormVisitor::LossOfWords(const inp_Keyword& keyword,
                                                     const inp_Keyword* parent) {
  const cow_List<cow_String> unknown = inpS_unknownWords(keyword);
  if (unknown.empty()) return Loss::Parameter;
  const inpS_Form* form = inpS_FormTable::Instance().Select(keyword, parent);
  Loss all = Loss::Parameter;
  for (const cow_String& name : unknown)
    all = std::max(all, form ? LossOf(*form, name) : Loss::Keyword);
  for (const cow_String& name : unknown)
    TellLost(keyword, name, "Its value is no word of the language.",
             form && all != Loss::Keyword ? LossOf(*form, name) : all, true);
  return all;
}

// Once for each parameter, whoever meets it next. A word that is none is a doubt, a name that is
// nowhere may be an error.
void inpS_FormVisitor::TellLost(const inp_Keyword& keyword, const cow_String& parameter,
                                const cow_String& fault, Loss loss, bool isDoubt) {
  constexpr const char* texts[] = {
      " The parameter counts as not given, and is kept as it stands.",
      " The parameter and the lines are kept as they stand, and nothing is made of them.",
      " The keyword is kept as text."};
  const cow_String own = keyword.IsDoubted(parameter) ? cow_String() : fault;
  wip_Message message =
      inp_Utils::MessageAtParameter(keyword, parameter, own + texts[static_cast<int>(loss)]);
  if (isDoubt)
    AddWarning(std::move(message));
  else
    Tell(keyword, std::move(message));
  keyword.LeaveUnread(parameter);
}

// What the keyword is about must be there: half of it would be a lie. It stays as text, so nothing
// is lost.
bool inpS_FormVisitor::CheckReferences(const inp_Keyword& keyword, const inpS_Form& form,
                                       Loss& loss) {
  struct Missing {
    cow_String parameter;
    cow_String fault;
    Loss loss;
    bool isDoubt; // it may be there
  };
  cow_List<Missing> missing; // told behind all: another one may cost the keyword
  bool good = true;
  for (std::size_t n = 0; n < form.parameters.size(); ++n) {
    const inpS_ParameterBinding& parameter = form.parameters[n];
    const inp_Item* item = keyword.Find(parameter.key);
    if (!item) {
      if (!form.items[n]->isRequired) continue;
      TellRequired(keyword, parameter.name);
      good = false;
      continue;
    }
    if (parameter.codec != inpS_Codec::Item || form.items[n]->alternatives.size() > 1) continue;
    const eds_Referable& referable = *form.items[n]->alternatives.front().referable;
    if (!m_names.Find(referable, item->Verbatim()).set.IsNull()) continue;
    const bool isOfMesh = m_isMeshLeftOut && referable.IsScoped();
    if (isOfMesh && m_keywords.Row(keyword.Kind())->role != inp_KeywordRole::Procedure) {
      m_withoutMesh.push_back(keyword);
      return false;
    }
    const inp_KeywordEnm definer = inpS_FormTable::Instance().DefinerOf(referable);
    const bool isText =
        definer != inp_NullKeyword && Inventory().NamesFor(keyword, definer, item->AsString());
    if (const Loss lost = LossOf(form, parameter.key); lost != Loss::Keyword) {
      cow_String fault = isText ? nameOf(definer) + " \"" + item->AsString() + "\" is kept as text."
                         : isOfMesh
                             ? cow_String("The mesh could not be converted, and its sets with it.")
                             : m_names.TextOfMissing(referable, item->AsString());
      missing.push_back({parameter.key, std::move(fault), lost, isText || isOfMesh});
      continue;
    }
    if (isText)
      AddWarning(inp_Utils::MessageAtParameter(
          keyword, parameter.key,
          nameOf(definer) + " \"" + item->AsString() +
              "\" is kept as text; so is this keyword, which refers to it."));
    else
      TellMissing(keyword, parameter.key, referable, item->AsString());
    good = false;
  }
  for (const Missing& one : missing) {
    const Loss lost = good ? one.loss : Loss::Keyword;
    TellLost(keyword, one.parameter, one.fault, lost, one.isDoubt);
    loss = std::max(loss, lost);
  }
  return good;
}

void inpS_FormVisitor::ReadParameters(const inp_Keyword& keyword, const inpS_Form& form,
                                      KvoSimDataRecord record) {
  inpS_readParameters(keyword, form.parameters, record, *this);
  for (std::size_t n = 0; n < form.parameters.size(); ++n)
    if (form.parameters[n].codec == inpS_Codec::Item)
      if (const inp_Item* item = keyword.Find(form.parameters[n].key))
        ReadItem(keyword, form.parameters[n], *form.items[n], *item, record);
  for (const inpS_Form::Selector& selector : form.selectors)
    if (!selector.isField) keyword.Find(selector.key);
  for (const cow_String& unknown : inpS_unknownWords(keyword))
    if (!form.Binds(unknown)) keyword.LeaveUnread(unknown);
  form.LeaveOddChoices(keyword, *this);
  keyword.Find("input"); // the parser has read that file's lines
}

// Of a parameter that names something, or has one of several types. What none of them takes is told
// and kept; a name or label that is nowhere is an error.
void inpS_FormVisitor::ReadItem(const inp_Keyword& keyword, const inpS_ParameterBinding& parameter,
                                const eds_FormItem& item, const inp_Item& value,
                                KvoSimDataRecord record) {
  const cow_String fault = inpS_takeValue(item, inpS_FormValue::Of(value), m_names, record);
  const bool isDoubted = keyword.IsDoubted(parameter.key);
  if (fault.empty() || (!keyword.LeaveUnread(parameter.key) && !isDoubted)) return;
  wip_Message message = inp_Utils::MessageAtParameter(
      keyword, parameter.key,
      (isDoubted ? "" : parameter.name + ": " + fault) + " It is kept as it stands.");
  const auto isText = [&](const eds_FormItem::Alternative& one) {
    const inp_KeywordEnm definer =
        one.referable ? inpS_FormTable::Instance().DefinerOf(*one.referable) : inp_NullKeyword;
    return definer != inp_NullKeyword && Inventory().NamesFor(keyword, definer, value.AsString());
  };
  const bool isElsewhere =
      fault.ends_with("kept as text.") || fault.find("belongs to an instance") != fault.npos ||
      (m_isMeshLeftOut && inpS_namesMesh(item)) || std::ranges::any_of(item.alternatives, isText);
  if (inpS_mayName(item) && !isElsewhere)
    AddError(std::move(message));
  else
    AddWarning(std::move(message));
}

// Whether the record holds all that the lines say.
bool inpS_FormVisitor::ReadData(const inp_Keyword& keyword, const eds_FormInfo& form,
                                const KvoSimPosition& record) {
  const inp_DataArray& data = keyword.Data();
  if (form.data == eds_FormData::Columns) return ReadColumns(keyword, form, record);
  if (form.data == eds_FormData::Words) {
    record.DataRecord().SetString(form.words.alternatives.front().field,
                                  inpS_readWords(keyword, form.words, *this));
    return true;
  }
  if (form.data == eds_FormData::Text) {
    if (data.Rows() > 0)
      record.DataRecord().SetString(form.textField, inpS_dataLines(keyword, *this));
    return true;
  }
  bool whole = true;
  const auto lines = static_cast<long long>(form.lines.size());
  for (long long row = 0; row < std::min(lines, data.Rows()); ++row)
    whole =
        ReadLine(keyword, row, form.lines[static_cast<std::size_t>(row)], record) == Line::Whole &&
        whole;
  if (form.data == eds_FormData::Records)
    return ReadRecords(keyword, lines, form.record, record) && whole;
  const bool hasRows = form.data == eds_FormData::Table || form.data == eds_FormData::Plain;
  return (hasRows || ReadSurplus(keyword, lines)) && whole;
}

bool inpS_FormVisitor::ReadSurplus(const inp_Keyword& keyword, long long lines) {
  for (long long row = lines; row < keyword.Data().Rows(); ++row) {
    if (isBlankLine(keyword.Data(), row)) continue;
    AddWarning(inp_Utils::MessageAtRow(
        keyword, row,
        lines == 0
            ? "The data lines of *" + keyword.Name() +
                  " mean nothing here; they are kept as they stand."
            : "*" + keyword.Name() + " takes " + std::to_string(lines) +
                  (lines == 1 ? " data line" : " data lines") + "; all are kept as they stand."));
    return false;
  }
  return true;
}

// A record for each line, or for as many as its kind has; one that lacks what it is about costs
// them. Where nothing must be given, a line without a value has its place before one with some.
bool inpS_FormVisitor::ReadRecords(const inp_Keyword& keyword, long long first, eds_RecordKind kind,
                                   const KvoSimPosition& record) {
  const auto& lines = eds_formOf(kind)->lines;
  const auto perRecord = static_cast<long long>(lines.size());
  const cow_List<eds_FormItem>& items = lines.front();
  const inp_DataArray& data = keyword.Data();
  const bool holdsPlaces = std::ranges::none_of(items, &eds_FormItem::isRequired);
  long long rows = data.Rows();
  while (holdsPlaces && rows > first && inpS_isBlank(data, rows - 1)) --rows;
  bool whole = true;
  for (long long row = first; row < rows; ++row) {
    if (!holdsPlaces && isBlankLine(data, row)) continue;
    const KvoSimPosition line = record.CreateDataRecord(kind);
    record.Associate(eds_Member::Lines, line); // names are seen from what it is a line of
    Line read = ReadLine(keyword, row, items, line);
    cow_String fault =
        row + perRecord > rows ? "The lines that must follow are missing." : cow_String();
    for (long long n = 1; n < perRecord && fault.empty(); ++n)
      read = std::max(read, ReadLine(keyword, row + n, lines[static_cast<std::size_t>(n)], line));
    if (fault.empty() && read != Line::Nothing) fault = FaultOfLine(line);
    if (!fault.empty()) {
      Tell(keyword,
           inp_Utils::MessageAtRow(
               keyword, row, fault + " The line is kept as it stands, and nothing is made of it."));
      read = Line::Nothing;
    }
    row += perRecord - 1;
    whole = whole && read == Line::Whole;
    if (read == Line::Nothing) line.Remove();
  }
  return whole;
}

// What cannot be taken is told.
inpS_FormVisitor::Line inpS_FormVisitor::ReadLine(const inp_Keyword& keyword, long long row,
                                                  const cow_List<eds_FormItem>& items,
                                                  const KvoSimPosition& record) {
  Line read = Line::Whole;
  const int cols = static_cast<int>(items.size());
  for (int col = 0; col < cols; ++col) {
    const eds_FormItem& item = items[static_cast<std::size_t>(col)];
    const inpS_FormValue value = inpS_FormValue::Of(keyword.Data(), row, col);
    const bool isBlank = value.type == inp_FieldType::None;
    if (isBlank && !item.isRequired) continue;
    const cow_String fault = isBlank ? inpS_textOfLack(item, col)
                                     : inpS_takeValue(item, value, m_names, record.DataRecord());
    if (fault.empty()) continue;
    if (read != Line::Nothing) read = item.isRequired ? Line::Nothing : Line::Partly;
    const cow_String text =
        fault + (item.isRequired ? " The line is kept as it stands, and nothing is made of it."
                                 : " It is kept as it stands.");
    Tell(keyword, col < keyword.Data().Cols(row)
                      ? inp_Utils::MessageAtField(keyword, row, col, text)
                      : inp_Utils::MessageAtRow(keyword, row, text));
  }
  for (int col = cols; col < keyword.Data().Cols(row); ++col) {
    if (!keyword.Data().HasValue(row, col)) continue;
    AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                         "The line has more values than it can have; it is kept "
                                         "as it stands."));
    return read == Line::Nothing ? read : Line::Partly;
  }
  return read;
}
