#include "inpS/history/inpS_ConditionRows.h"
#include "base/utl_BlockSize.h"
#include "database/KvoSimCSet.h"
#include "database/schema/eds_FormKind.h"
#include "database/schema/eds_Schema.h"
#include "inpS/forms/inpS_ColumnWords.h"
#include "inpS/sets/inpS_SetVisitor.h"

namespace {

constexpr long long kPiece = 16 << 10;

const eds_FormItem& itemOf(const inpS_ExcitationKind& kind, int column) {
  return kind.info->columnItems[static_cast<std::size_t>(column)];
}

int restraintOf(std::string_view word) {
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols(eds_Vocabulary::RestraintType))
    if (symbol.name == word) return symbol.number;
  return -1;
}

} // namespace

void inpS_ConditionRows::Piece::Clear() {
  latest.fill({});
  placeOf.clear();
  known.clear();
  values.clear();
  for (cow_List<int>* column : {&targets, &looks, &first, &last, &label, &words}) column->clear();
}

void inpS_ConditionRows::Open(const KvoSimPosition& record, const inpS_ExcitationKind& kind) {
  m_record = record.DataRecord();
  m_kind = &kind;
  m_isNamed = kind.named != nullptr;
  m_count = m_next = m_loaded = 0;
  m_own.Clear();
  for (Ints* column : {&m_target, &m_first, &m_last, &m_label}) column->reset();
  m_value.reset();
  m_looks.clear();
  m_lookOf.clear();
  m_labels.clear();
  m_firstWords.clear();
  m_restraints.clear();
  if (kind.info->data != eds_FormData::Columns) {
    m_count = 1; // one that needs no rows
    if (kind.lineSurface >= 0)
      m_count = static_cast<long long>(record.GetVector(eds_Member::Lines).size());
    return;
  }
  m_count = m_record.GetInt64(kind.info->rowsField);
  if (m_count == 0 && kind.ActsWithoutRows(m_record))
    m_count = 1; // all of the model
  else
    OpenColumns();
}

void inpS_ConditionRows::OpenColumns() {
  const inpS_ExcitationKind& kind = *m_kind;
  const auto open = [&](Ints& ints, int column) {
    if (column < 0) return;
    const eds_FormItem& item = itemOf(kind, column);
    const int field = item.alternatives.front().field;
    ints.emplace(m_record, item, m_count, 1,
                 m_record.IsMemberNull(field) ? inp_blankInt : m_record.GetInt(field), *m_guard);
  };
  open(m_target, kind.target);
  open(m_first, kind.first);
  open(m_last, kind.last);
  open(m_label, kind.label);
  if (kind.value >= 0) {
    const eds_FormItem& item = itemOf(kind, kind.value);
    double one = inp_blankReal;
    HasOneValue(one);
    m_value.emplace(m_record, item, m_count, 1, one, *m_guard);
  }
  const auto wordsOf = [&](int column) {
    return column < 0 || itemOf(kind, column).wordsField < 0
               ? cow_List<cow_String>()
               : inpS_ColumnWords::Stored(m_record, itemOf(kind, column).wordsField);
  };
  m_labels = wordsOf(kind.label);
  m_firstWords = wordsOf(kind.first);
  if (kind.form != eds_FormKind::Boundary) return;
  for (const cow_String& word : m_firstWords) m_restraints.push_back(restraintOf(word));
}

bool inpS_ConditionRows::HasOneValue(double& value) const {
  if (m_kind->value < 0) return false;
  const eds_FormItem& item = itemOf(*m_kind, m_kind->value);
  const int field = item.alternatives.front().field;
  if (m_record.IsMemberNull(field)) return false;
  value = m_record.GetDouble(field);
  return true;
}

KvoSimPosition inpS_ConditionRows::Values() const {
  return m_kind->value < 0 ? KvoSimPosition()
                           : m_record.GetReference(itemOf(*m_kind, m_kind->value).arrayField);
}

cow_String inpS_ConditionRows::Label(int place) const {
  if (place < 0) return {};
  const auto at = static_cast<std::size_t>(place);
  if (at < m_labels.size()) return m_labels[at];
  const std::size_t word = at - m_labels.size(); // in the place of a degree
  return word < m_firstWords.size() ? m_firstWords[word] : cow_String();
}

void inpS_ConditionRows::Load() {
  ReadRows(m_next, std::min(m_count, m_next + utl_blockSize(kPiece)), m_own);
  ReadValues(m_own);
  m_loaded = m_next + static_cast<long long>(m_own.values.size());
  while (m_looks.size() < m_own.known.size()) LookOf(m_own.known[m_looks.size()]);
}

const inpS_ConditionRows::Piece* inpS_ConditionRows::Whole() {
  if (PieceCount() > 1) return nullptr;
  if (m_loaded < m_count) Load();
  return &m_own;
}

// What is loaded serves once more where it is all.
void inpS_ConditionRows::Rewind() {
  if (PieceCount() > 1) m_loaded = 0;
  m_next = 0;
}

std::size_t inpS_ConditionRows::PieceCount() const {
  const long long rows = utl_blockSize(kPiece);
  return static_cast<std::size_t>((m_count + rows - 1) / rows);
}

void inpS_ConditionRows::ReadLooks(std::size_t number, Piece& piece) {
  constexpr std::size_t mostKnown = 4096; // each costs whoever counts rows by look
  if (piece.known.size() > mostKnown) piece.Clear();
  const long long begin = static_cast<long long>(number) * utl_blockSize(kPiece);
  ReadRows(begin, std::min(m_count, begin + utl_blockSize(kPiece)), piece);
}

void inpS_ConditionRows::ReadRows(long long begin, long long end, Piece& piece) {
  const auto count = static_cast<std::size_t>(end - begin);
  const auto read = [&](Ints& column, cow_List<int>& values) {
    values.resize(count, inp_blankInt);
    if (column) column->Read(begin, values);
  };
  piece.firstRow = begin;
  read(m_target, m_isNamed ? piece.words : piece.targets);
  if (m_kind->lineSurface >= 0) // each names its own
    for (std::size_t n = 0; n < count; ++n)
      piece.targets[n] = static_cast<int>(-1 - begin - static_cast<long long>(n));
  read(m_first, piece.first);
  read(m_last, piece.last);
  read(m_label, piece.label);
  if (m_isNamed) {
    piece.targets.resize(count);
    for (std::size_t n = 0; n < count; ++n)
      piece.targets[n] = m_kind->named->Of(piece.words[n], piece.label[n]).target;
  }
  FindLooks(count, piece);
}

void inpS_ConditionRows::FindLooks(std::size_t count, Piece& piece) const {
  const auto packed = [](int high, int low) {
    return static_cast<uint64_t>(static_cast<unsigned>(high)) << 32 | static_cast<unsigned>(low);
  };
  const auto find = [&](const Codes& codes) {
    const auto [look, isNew] =
        piece.placeOf.try_emplace(codes, static_cast<int>(piece.known.size()));
    if (isNew) piece.known.push_back(codes);
    return look->second;
  };
  const auto varies = [](const Ints& column) { return column && !column->IsOne(); };
  if (count > 0 && !m_isNamed && !varies(m_first) && !varies(m_last) && !varies(m_label)) {
    piece.looks.assign(count, find({0, piece.first[0], piece.last[0], piece.label[0]}));
    return;
  }
  piece.looks.resize(count);
  for (std::size_t n = 0; n < count; ++n) {
    const int word = m_isNamed ? piece.words[n] : 0;
    const uint64_t degrees = packed(piece.first[n], piece.last[n]);
    const uint64_t words = packed(piece.label[n], word);
    const uint64_t mixed = degrees + 7 * words + (degrees >> 30) + (words >> 29);
    Piece::Latest& latest = piece.latest[mixed % piece.latest.size()];
    if (latest.place < 0 || latest.degrees != degrees || latest.words != words)
      latest = {degrees, words, find({word, piece.first[n], piece.last[n], piece.label[n]})};
    piece.looks[n] = latest.place;
  }
}

double inpS_ConditionRows::GivenOr0(double value) const {
  return inp_isBlankReal(value) && !m_kind->isValueOptional ? 0 : value;
}

// None given is 0, and so is that of a word which says all.
void inpS_ConditionRows::ReadValues(Piece& piece) {
  piece.values.resize(piece.looks.size());
  if (!m_value) return;
  m_value->Read(piece.firstRow, piece.values);
  for (double& value : piece.values) value = GivenOr0(value);
  if (m_restraints.empty()) return;
  for (std::size_t n = 0; n < piece.values.size(); ++n)
    if (RestraintOf(piece.first[n]) >= 0) piece.values[n] = 0;
}

double inpS_ConditionRows::ValueOf(long long row, const inpS_ConditionRow& look) {
  double value = 0;
  if (m_value && look.restraint < 0) m_value->Read(row, {&value, 1});
  return GivenOr0(value);
}

int inpS_ConditionRows::LookOf(const Codes& codes) {
  const auto [look, isNew] = m_lookOf.try_emplace(codes, static_cast<int>(m_looks.size()));
  if (isNew) {
    m_looks.push_back(MakeLook(codes));
    m_looks.back().look = look->second;
  }
  return look->second;
}

inpS_ConditionRow inpS_ConditionRows::MakeLook(const Codes& codes) {
  inpS_ConditionRow row;
  if (codes.label < 0 && codes.label != inp_blankInt) row.label = -1 - codes.label;
  if (m_isNamed && m_kind->named->Of(codes.target, codes.label).type != m_kind->namedType)
    row.degrees = 0; // one of another type
  if (m_first) SetDegrees(row, codes);
  return row;
}

// -1: it is no word, or none of a restraint.
int inpS_ConditionRows::RestraintOf(int code) const {
  if (code >= 0 || code == inp_blankInt) return -1;
  const auto word = static_cast<std::size_t>(-1 - code);
  return word < m_restraints.size() ? m_restraints[word] : -1;
}

void inpS_ConditionRows::SetDegrees(inpS_ConditionRow& row, const Codes& codes) const {
  row.degrees = 0;
  if (codes.first == inp_blankInt) {
    row.degrees = m_kind->BlankDegrees(m_record);
    row.isOfAll = row.degrees != 0 && m_kind->form == eds_FormKind::Boundary;
    return;
  }
  if (codes.first >= 0) {
    row.degrees =
        inpS_Degrees::Of(codes.first, codes.last == inp_blankInt ? codes.first : codes.last);
    return;
  }
  const auto word = static_cast<std::size_t>(-1 - codes.first);
  if (word >= m_firstWords.size()) return;
  row.restraint = RestraintOf(codes.first);
  if (row.restraint >= 0) {
    row.degrees = inpS_Degrees::OfRestraint(row.restraint);
  } else { // of flows: a name instead of a degree
    row.label = static_cast<int>(m_labels.size() + word);
    row.degrees = 1;
  }
}

// ---- targets

inpS_ConditionTargets::inpS_ConditionTargets(const KvoSimPosition& record,
                                             const inpS_ExcitationKind& kind)
    : m_record(record), m_lineSurface(kind.lineSurface), m_lineInstance(kind.lineInstance),
      m_named(kind.named), m_namedType(kind.namedType), m_isSurface(kind.NamesSurfaces()) {
  if (m_named)
    m_isNodes = kind.IsOfNodes();
  else if (kind.info->data == eds_FormData::Columns)
    m_isNodes = itemOf(kind, kind.target).alternatives.front().type == eds_FormType::Node;
}

void inpS_ConditionTargets::Read() {
  m_isRead = true;
  if (m_lineSurface >= 0)
    for (const KvoSimPosition& line : m_record.GetVector(eds_Member::Lines))
      m_regions.push_back({line.DataRecord().GetReference(m_lineSurface),
                           line.DataRecord().GetReference(m_lineInstance),
                           0,
                           {}});
  if (m_named) {
    for (std::size_t n = 0; n < m_named->Size(); ++n) {
      const auto& found = m_named->Region(m_namedType, n);
      AddRegion(found.set, found.instance);
    }
    AddRegion({}, {}); // of what is nowhere
  }
  for (const KvoSimPosition& target : m_record.GetVector(eds_Member::Targets))
    AddRegion(target.DataRecord().GetReference(eds_Target_Set),
              target.DataRecord().GetReference(eds_Target_Instance));
  m_members.resize(m_regions.size());
}

void inpS_ConditionTargets::AddRegion(const KvoSimPosition& named, const KvoSimPosition& instance) {
  Region& region = m_regions.emplace_back();
  region.set = named;
  region.instance = instance;
  if (region.set.IsNull() || m_isSurface) return;
  const KvoSimDataRecord set = region.set.DataRecord();
  const int owner = m_isNodes ? eds_NodeSet_Owner : eds_ElementSet_Owner;
  const bool ofPart =
      set.GetReference(owner).IsA(eds_RecordKind::Part) && !region.instance.IsNull();
  if (ofPart)
    region.offset = region.instance.DataRecord().GetInt64(m_isNodes ? eds_Instance_FirstNode
                                                                    : eds_Instance_FirstElement);
  region.membership =
      set.GetSet(m_isNodes ? eds_NodeSet_Membership : eds_ElementSet_Membership).ID();
}

const inpS_ConditionTargets::Region& inpS_ConditionTargets::At(int target) {
  if (!m_isRead) Read();
  const auto place = static_cast<std::size_t>(-1LL - target);
  if (place >= m_regions.size())
    eds_tellDamaged(m_record, "a column names " + std::to_string(target) + ", which is nothing");
  return m_regions[place];
}

const eds_MemberSet& inpS_ConditionTargets::Members(int target) {
  const Region& region = At(target);
  auto& members = m_members[static_cast<std::size_t>(-1LL - target)];
  if (!members)
    members = std::make_unique<eds_MemberSet>(
        region.membership.IsNull()
            ? eds_MemberSet()
            : inpS_SetVisitor::Moved(KvoSimCSet(region.membership).Set().AscendingSet(),
                                     region.offset));
  return *members;
}
