#include "inpS/model/inpS_VerbatimVisitor.h"
#include "database/KvoObjDocument.h"
#include "database/KvoObjMesh.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimTransaction.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_Blocks.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

constexpr int kHistoryBlock = 29;
constexpr int kFirstBlock = 1;
constexpr int kMaterials = 16;
constexpr int kGasketBehaviors = 17;

bool writesNodes(const KvoObjMesh& mesh, const KvoSimPosition& owner, long long ofPart) {
  return std::ranges::any_of(mesh.NodeBlocks(owner), [ofPart](const KvoMeshNodeBlock& block) {
    return block.first >= ofPart && block.generated < block.count;
  });
}

bool writesElements(const KvoObjMesh& mesh, const KvoSimPosition& owner, long long ofPart) {
  return std::ranges::any_of(mesh.ElementBlocks(owner), [ofPart](const KvoMeshElementBlock& block) {
    return block.first >= ofPart;
  });
}

// Whether the writer gives anything of what has been converted in this block of a scope: it writes
// what the model holds, not the keywords that brought it. Unknown keywords behind a material are
// the material's own.
bool writes(const KvoObjDocument& document, const KvoSimPosition& owner, int block) {
  const eds_Member member = inpS_block(block).member;
  if (block == kMaterials || block == kGasketBehaviors || inpS_block(block).HasForms() ||
      member == eds_Member::Mesh)
    return false;
  if (member == eds_Member::NodeBlocks || member == eds_Member::ElementBlocks) {
    const bool nodes = member == eds_Member::NodeBlocks;
    const KvoObjMesh mesh = document.GetMesh();
    const KvoSimPosition part = owner.IsA(eds_RecordKind::Instance)
                                    ? owner.DataRecord().GetReference(eds_Instance_Part)
                                    : KvoSimPosition();
    const int count = nodes ? eds_Part_NodeCount : eds_Part_ElementCount;
    const long long ofPart = part.IsNull() ? 0 : part.DataRecord().GetInt64(count);
    if (mesh.IsNull()) return false;
    return nodes ? writesNodes(mesh, owner, ofPart) : writesElements(mesh, owner, ofPart);
  }
  const auto& referables = eds_referables();
  const auto named = std::ranges::find(referables, member, &eds_Referable::member);
  if (named == referables.end()) return !owner.Follow(member).IsNull();
  return !owner.FollowMap(member).empty() || !owner.FollowMap(named->internalMember).empty();
}

const char* levelUnder(const KvoSimPosition& owner) {
  const bool container =
      owner.IsA(eds_RecordKind::Material) || owner.IsA(eds_FormKind::GasketBehavior);
  return container ? "LEVEL_MATERIAL" : "LEVEL_SUBOPTION";
}

// Texts are counted behind each record of a scope by themselves, for records may be written in
// another order than the deck had them in. Those among steps, and under a keyword, are counted
// through.
unsigned long long countedBehind(const KvoSimDataRecord& text) {
  const int block = text.GetInt(eds_VerbatimKeyword_Block);
  const KvoSimPosition owner = text.GetReference(eds_VerbatimKeyword_Owner);
  const bool isOfScope = owner.IsA(eds_RecordKind::Model) || owner.IsA(eds_RecordKind::Part) ||
                         owner.IsA(eds_RecordKind::Instance) || owner.IsA(eds_RecordKind::Assembly);
  const bool hasForms =
      block >= kFirstBlock && block < kHistoryBlock && inpS_block(block).HasForms();
  if (!isOfScope || !hasForms) return 0;
  return text.GetReference(eds_VerbatimKeyword_Behind).Object().Packed();
}

// What a keyword says beside the reading of a model, which is done; empty: nothing.
cow_String textBesideReading(const inp_Keyword& restart) {
  for (const char* parameter : {"read", "step", "inc", "interval", "iteration", "cycle", "endstep"})
    restart.Find(parameter);
  const cow_String others = inpS_takeOtherParameters(restart);
  return others.empty() ? others : '*' + restart.Name() + others + '\n';
}

} // namespace

void inpS_VerbatimVisitor::ContinuePositions() {
  m_isRestart = true;
  m_definitions.emplace(m_inventory.GetDocument());
  const KvoSimContext context = m_inventory.GetDocument().Context();
  for (const KvoSimPosition& kept : context.GetRecords(eds_RecordKind::VerbatimKeyword)) {
    const KvoSimDataRecord record = kept.DataRecord();
    const auto owner = record.GetReference(eds_VerbatimKeyword_Owner).Object().Packed();
    int& next =
        m_positions[{owner, {record.GetInt(eds_VerbatimKeyword_Block), countedBehind(record)}}];
    next = std::max(next, record.GetInt(eds_VerbatimKeyword_Position) + 1);
  }
}

void inpS_VerbatimVisitor::SettleSkeleton(const inp_KeywordList& keywords) {
  const KvoObjModel model = m_inventory.GetDocument().GetModel();
  std::ptrdiff_t baseSteps = std::ssize(model.Position().GetVector(eds_Member::Steps));
  for (const inp_Keyword& keyword : keywords)
    if (keyword.Kind() == inp_KwStep && m_ledger.RecordOf(keyword)) --baseSteps;
  for (const inp_Keyword& keyword : keywords) {
    if (const KvoSimPosition* record = m_ledger.RecordOf(keyword))
      m_added.insert(record->Object().Packed());
    const bool isTaken = inpS_checkRestart(keyword, model, baseSteps > 0, *this);
    if (!isTaken && inpS_subjectOf(keyword.Kind()) != inpS_Subject::Skeleton) {
      m_ledger.LeaveOut(keyword);
      inpS_takeOtherParameters(keyword); // they go with it
    }
    if (inpS_subjectOf(keyword.Kind()) != inpS_Subject::Skeleton || keyword.IsInstanceCopy() ||
        keyword.Scope().kind == inp_Scope::Kind::Step)
      continue;
    if (isTaken)
      m_ledger.Take(keyword);
    else
      m_ledger.LeaveOut(keyword);
  }
}

void inpS_VerbatimVisitor::Visit(const inp_Keyword& keyword) {
  if (keyword.Kind() == inp_NullKeyword || keyword.IsInstanceCopy()) return;
  if (keyword.Kind() == inp_KwStep) {
    const KvoSimPosition* step = m_ledger.RecordOf(keyword);
    m_step = step ? *step : KvoSimPosition();
  }
  if (keyword.ScopePtr().get() != m_scope || m_place.owner.IsNull()) {
    m_scopeHeld = keyword.ScopePtr();
    m_scope = m_scopeHeld.get();
    m_place = PlaceOf(keyword.Scope());
    // An unknown keyword at the head of a part, or right behind an instance, goes with nothing
    // else.
    if (keyword.Scope().kind != inp_Scope::Kind::Model) m_block = 0;
  }
  const int before = m_block;
  const Along* along = AlongOf(keyword);
  const int block = along ? along->block : BlockOf(keyword);
  if (const KvoSimPosition* record = RecordOfBlock(keyword, block);
      record && !keyword.IsSuboption())
    m_records.insert_or_assign({HolderOf(keyword).Object().Packed(), block}, *record);
  const inpS_TextPlace* told = m_ledger.TextOf(keyword);
  const bool isSettled = m_ledger.IsSettled(keyword);
  if (!isSettled && IsOfLackingOwner(keyword)) { // told at the owner
    m_block = before;
    return keyword.ReferAll();
  }
  const bool isExplained = told && (told->isTold || !told->reason.empty());
  const bool isMisplaced = !isExplained && keyword.Kind() != inp_KwBaselineCorrection && // told
                           m_places.Look(keyword, isSettled);
  if (!along && isSettled) return;
  // The model is whole now.
  const bool isRead =
      m_isRestart && keyword.Kind() == inp_KwRestart && keyword.HasParameter("read");
  const cow_String beside = isRead ? textBesideReading(keyword) : cow_String();
  keyword.ReferAll();
  if ((isRead && beside.empty()) || IsLeftOut(keyword) || IsTooLong(keyword)) {
    m_block = before; // it takes nothing along
    return;
  }
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
  if (!row || row->role != inp_KeywordRole::Close)
    Count(keyword, isMisplaced || (along && along->isTold)); // the opening one speaks for it

  Along at = along ? *along : AtOwn(keyword, block);
  at.text = beside;
  at.isTold = at.isTold || isMisplaced;
  Keep(keyword, at);
  for (const inp_Keyword& suboption : keyword.Suboptions())
    m_along.try_emplace(suboption.Body().get(), at);
}

// Of a part or an instance that the model of a restart does not have: elsewhere it would speak of
// other nodes. What is unknown stays, as its message says.
bool inpS_VerbatimVisitor::IsOfLackingOwner(const inp_Keyword& keyword) const {
  const inp_Scope::Kind scope = keyword.Scope().kind;
  return m_isRestart && keyword.Kind() != inp_UnknownKeyword &&
         (scope == inp_Scope::Kind::Part || scope == inp_Scope::Kind::Instance) &&
         m_place.owner == m_inventory.GetDocument().GetModel().Position();
}

// Behind which the texts of its block go: of what the block prints form by form. A keyword of which
// nothing is written in its own block stands in that of what is before it, but its record does not.
const KvoSimPosition* inpS_VerbatimVisitor::RecordOfBlock(const inp_Keyword& keyword,
                                                          int block) const {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
  const bool isOfHistory =
      keyword.Kind() == inp_KwStep || keyword.Scope().kind == inp_Scope::Kind::Step;
  const bool isOwn = (block == kHistoryBlock && isOfHistory) || (row && row->block == block);
  const bool hasForms = isOwn && inpS_block(block).HasForms() && keyword.Kind() != inp_KwAmplitude;
  return hasForms ? m_ledger.RecordOf(keyword) : nullptr;
}

// What holds the keyword's record: a step's is the model.
KvoSimPosition inpS_VerbatimVisitor::HolderOf(const inp_Keyword& keyword) const {
  return keyword.Kind() == inp_KwStep ? m_inventory.GetDocument().GetModel().Position()
                                      : m_place.owner;
}

// Of a sub-option whose keyword is kept as text: it stands where that one stands, whoever converts
// its kind elsewhere. Null for any other.
const inpS_VerbatimVisitor::Along* inpS_VerbatimVisitor::AlongOf(const inp_Keyword& keyword) const {
  if (!keyword.IsSuboption()) return nullptr;
  const auto known = m_along.find(keyword.Body().get());
  return known == m_along.end() ? nullptr : &known->second;
}

inpS_VerbatimVisitor::Along inpS_VerbatimVisitor::AtOwn(const inp_Keyword& keyword, int block) {
  const inpS_TextPlace* told = m_ledger.TextOf(keyword);
  Along at{m_place, block, told ? told->behind : KvoSimPosition()};
  if (told && !told->owner.IsNull()) at.place = {told->owner, levelUnder(told->owner)};
  // A name's second definition goes behind the first one, which must come first again. Within a
  // step that is kept as text it stays where it stands.
  const eds_Referable* named = inpS_FormTable::Instance().Named(keyword.Kind());
  const bool isOfTextStep = keyword.Scope().kind == inp_Scope::Kind::Step && m_step.IsNull();
  if (at.behind.IsNull() && named && !isOfTextStep && inpS_block(block).HasForms())
    at.behind = at.place.owner.FollowStringKey(named->member, keyword.StringOf("name", ""));
  if (at.behind.IsNull() && inpS_block(block).HasForms()) at.behind = LastOf(at.place.owner, block);
  // The texts of a step stand in its order, where another amplitude would take it over.
  const bool isStep = keyword.Scope().kind == inp_Scope::Kind::Step;
  if (isStep && block == kFirstBlock)
    at.place = {m_inventory.GetDocument().GetModel().Position(), "LEVEL_MODEL"};
  return at;
}

// The record of an owner's block behind which its texts go: the last one that phases spoke of, or
// that the base of a restart had already: what the restart added stands behind the text. The owner,
// which is before all: there is none.
KvoSimPosition inpS_VerbatimVisitor::LastOf(const KvoSimPosition& owner, int block) {
  const auto [known, isNew] = m_records.try_emplace({owner.Object().Packed(), block}, owner);
  if (!isNew || !m_isRestart) return known->second;
  for (const eds_Member member : inpS_membersOf(inpS_block(block)))
    for (const KvoSimPosition& record : owner.GetVector(member))
      if (!m_added.contains(record.Object().Packed())) known->second = record;
  return known->second;
}

void inpS_VerbatimVisitor::Keep(const inp_Keyword& keyword, const Along& at) {
  const Place& place = at.place;
  inpS_tellControls(keyword, *this);
  KvoSimTransaction transaction(m_inventory.GetDocument().ContextID());
  const KvoSimPosition kept = m_place.owner.CreateDataRecord(eds_RecordKind::VerbatimKeyword);
  KvoSimDataRecord record = kept.DataRecord();
  record.SetString(eds_VerbatimKeyword_Keyword, keyword.Name());
  record.SetSymb(eds_VerbatimKeyword_Level, place.level);
  record.SetReference(eds_VerbatimKeyword_Owner, place.owner);
  record.SetInt(eds_VerbatimKeyword_Block, at.block);
  const inpS_TextPlace* told = m_ledger.TextOf(keyword);
  const cow_String& text = told && at.text.empty() ? told->text : at.text;
  record.SetString(eds_VerbatimKeyword_Text, text.empty() ? keyword.Text() : text);
  if (!at.behind.IsNull()) record.SetReference(eds_VerbatimKeyword_Behind, at.behind);
  int& next = m_positions[{place.owner.Object().Packed(), {at.block, countedBehind(record)}}];
  record.SetInt(eds_VerbatimKeyword_Position, next++);
  transaction.Commit();
}

// Before its text is put together: that costs memory twice over.
bool inpS_VerbatimVisitor::IsTooLong(const inp_Keyword& keyword) {
  // The engine takes a thousand million bytes in a row of a table, other fields among them.
  constexpr long long longestText = 999'000'000;
  long long bytes = 0;
  for (const inp_DataSegment& segment : keyword.Data().Segments())
    bytes += segment.end - segment.begin;
  if (bytes <= longestText) return false;
  LeaveOut("keyword");
  Error(keyword, "Keyword *" + keyword.Name() + " is not converted, and its " +
                     std::to_string(bytes) +
                     " bytes are too many to be kept as text, which may "
                     "have " +
                     std::to_string(longestText) + "; it is left out.");
  return true;
}

// What the model that is restarted has already: told once, at the keyword that names it.
bool inpS_VerbatimVisitor::IsLeftOut(const inp_Keyword& keyword) {
  if (!m_definitions || keyword.Scope().kind == inp_Scope::Kind::Step) return false;
  if (m_definitions->IsOfRefused(keyword)) return true;
  cow_String conflict = m_definitions->Conflict(keyword);
  if (conflict.empty()) return false;
  Error(keyword, std::move(conflict));
  return true;
}

// What belongs to something else and stands under none of it: behind the others of its block it
// would be taken for the last one's, so it goes before all. Within a material it stays there.
bool inpS_VerbatimVisitor::IsStray(const inp_Keyword& keyword) const {
  const inpS_TextPlace* told = m_ledger.TextOf(keyword);
  if (told && !told->owner.IsNull()) return false;
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword.Kind());
  if (keyword.ParentKind() == inp_NullKeyword) {
    // Without elements of its own it would be that of a joint that is written before it.
    const bool isOfJoint =
        inp_KeywordTable::Instance().IsSuboptionOf(keyword.Kind(), inp_KwJoint) &&
        !keyword.HasParameter("elset");
    return isOfJoint || (row && row->levels == inp_LevelsSub);
  }
  // Of an amplitude without a name, of a material that could not be opened.
  const inp_KeywordRow* parent = inp_KeywordTable::Instance().Row(keyword.ParentKind());
  const auto isOfMaterials = [](const inp_KeywordRow* one) {
    return one && (one->block == kMaterials || one->block == kGasketBehaviors);
  };
  if (!told) return false;
  return keyword.Kind() == inp_KwBaselineCorrection ||
         (isOfMaterials(row) && isOfMaterials(parent));
}

// A sub-option goes where its keyword goes, an unknown keyword behind what is written before it:
// the written deck, read again, has it in the same block.
int inpS_VerbatimVisitor::BlockOf(const inp_Keyword& keyword) {
  const inpS_TextPlace* told = m_ledger.TextOf(keyword);
  if (keyword.Scope().kind == inp_Scope::Kind::Step) {
    m_block = kHistoryBlock;
    if (!told || keyword.Kind() != inp_KwBaselineCorrection) return m_block;
    if (told->owner.IsNull()) return kFirstBlock;
    return inp_KeywordTable::Instance().Row(inp_KwAmplitude)->block; // wherever it stands
  }
  const inp_KeywordEnm kind = keyword.Kind();
  if (kind == inp_KwPart || kind == inp_KwAssembly || kind == inp_KwInstance ||
      kind == inp_KwEndInstance) {
    m_block = 0;
    return kFirstBlock;
  }
  if (IsStray(keyword)) return kFirstBlock; // what follows goes on where it was
  const bool goesAlong = kind == inp_UnknownKeyword || keyword.IsSuboption();
  if (!goesAlong) m_ownBlock = std::max(kFirstBlock, inp_KeywordTable::Instance().Row(kind)->block);
  // One of a material that is open behind keywords of other subjects.
  const inp_KeywordRow* parent = inp_KeywordTable::Instance().Row(keyword.ParentKind());
  if (keyword.ParentKind() == inp_KwMaterial ||
      (parent && parent->block == kMaterials && m_ownBlock != kGasketBehaviors))
    m_ownBlock = kMaterials;
  if (keyword.ParentKind() == inp_KwGasketBehavior) m_ownBlock = kGasketBehaviors;
  if (told && !told->owner.IsNull()) {
    if (told->owner.IsA(eds_RecordKind::Material)) return kMaterials;
    if (told->owner.IsA(eds_FormKind::GasketBehavior)) return kGasketBehaviors;
    return m_ownBlock;
  }
  if (!goesAlong && IsWrittenHere(keyword)) m_block = m_ownBlock;
  return m_block = std::max(kFirstBlock, m_block);
}

// Whether the deck that is written has something of the keyword's block in its scope.
bool inpS_VerbatimVisitor::IsWrittenHere(const inp_Keyword& keyword) {
  if (!m_ledger.IsSettled(keyword)) return true;
  if (inp_KeywordTable::Instance().Row(keyword.Kind())->role == inp_KeywordRole::Close) return true;
  if (RecordOfBlock(keyword, m_ownBlock)) return true;
  const auto [known, isNew] =
      m_written.try_emplace({m_place.owner.Object().Packed(), m_ownBlock}, false);
  if (isNew) known->second = writes(m_inventory.GetDocument(), m_place.owner, m_ownBlock);
  return known->second;
}

inpS_VerbatimVisitor::Place inpS_VerbatimVisitor::PlaceOf(const inp_Scope& scope) {
  const KvoSimPosition model = m_inventory.GetDocument().GetModel().Position();
  KvoSimPosition owner;
  const char* level = "LEVEL_MODEL";
  switch (scope.kind) {
  case inp_Scope::Kind::Model:
    break;
  case inp_Scope::Kind::Step:
    owner = m_step;
    level = "LEVEL_STEP";
    break;
  case inp_Scope::Kind::Part:
    owner = model.FollowStringKey(eds_Member::Parts, scope.name);
    level = "LEVEL_PART";
    break;
  case inp_Scope::Kind::Instance:
    owner = model.FollowStringKey(eds_Member::Occurrences, scope.name);
    level = "LEVEL_INSTANCE";
    break;
  case inp_Scope::Kind::Assembly:
    owner = model.Follow(eds_Member::Assembly);
    level = "LEVEL_ASSEMBLY";
    break;
  }
  // The part or instance was refused: its keywords stay with the model rather than being lost.
  if (owner.IsNull())
    return {model, scope.kind == inp_Scope::Kind::Step ? "LEVEL_STEP" : "LEVEL_MODEL"};
  return {owner, level};
}

void inpS_VerbatimVisitor::Count(const inp_Keyword& keyword, bool isTold) {
  const auto [known, isNew] = m_byName.try_emplace(keyword.Name(), m_kept.size());
  if (isNew) {
    m_kept.push_back({keyword.Name(), 0, keyword.FileName(), keyword.Line(),
                      keyword.Kind() != inp_UnknownKeyword});
    m_untold.emplace_back();
  }
  ++m_kept[known->second].count;
  const inpS_TextPlace* place = m_ledger.TextOf(keyword);
  const cow_String reason = place && !place->reason.empty()
                                ? "*" + keyword.Name() + ' ' + place->reason + "; it is"
                                : cow_String();
  if (TellDoubts(keyword, reason.empty() ? "The keyword is" : reason)) return;
  if (isTold || (place && place->isTold)) return;
  if (!reason.empty()) return TellKept(keyword, reason);
  Untold& untold = m_untold[known->second];
  if (untold.count++ == 0) untold.first = keyword;
}

// Of parameters of which no one has said yet what is wrong with them.
bool inpS_VerbatimVisitor::TellDoubts(const inp_Keyword& keyword, const cow_String& text) {
  bool hasSome = false;
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    if (!parameter.doubted) continue;
    AddWarning(inp_Utils::MessageAtParameter(keyword, parameter.name, text + " kept as text."));
    hasSome = true;
  }
  return hasSome;
}

void inpS_VerbatimVisitor::TellKept(const inp_Keyword& keyword, const cow_String& text) {
  wip_Message message = inp_Utils::MessageInKeyword(keyword, text + " kept as text.");
  message.tellsKept = true;
  AddWarning(std::move(message));
}

void inpS_VerbatimVisitor::Report() {
  m_places.TellTo(*this);
  for (std::size_t n = 0; n < m_kept.size(); ++n) {
    const auto& [first, count] = m_untold[n];
    if (!m_kept[n].known || count == 0) continue; // reported where it was read
    TellKept(first, "Keyword *" + m_kept[n].keyword + " is not converted; " +
                        (count == 1 ? cow_String("it is")
                                    : "its " + std::to_string(count) + " occurrences are"));
  }
  inpS_Visitor::Report();
}
