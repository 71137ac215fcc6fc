#include "host/inps_ModelDiff.h"

#include "base/utl_Number.h"
#include "host/inps_Fields.h"
#include "host/inps_Matching.h"
#include "host/inps_MeshCut.h"
#include "host/inps_ModelWalk.h"
#include "host/inps_Reporter.h"
#include "host/inps_Tolerance.h"
#include <algorithm>
#include <cstring>
#include <ostream>
#include <unordered_map>
#include <unordered_set>

namespace {

// One of the two models, and the keys by which its records are found again in the other.
class Side {
public:
  explicit Side(const KvoObjDocument& document) : m_model(document) {
    for (const eds_RecordInfo* kind : m_model.Kinds())
      for (const int64_t id : m_model.RecordIDs(kind->kind)) FindOwned(*kind, id);
  }
  const eds_ModelReader& Model() const { return m_model; }

  // What is the same in the other model, cut otherwise, is not compared.
  void PassOver(std::unordered_set<uint64_t> records) { m_passedOver = std::move(records); }
  std::vector<int64_t> IDsOf(const eds_RecordInfo& kind) const {
    std::vector<int64_t> ids = m_model.RecordIDs(kind.kind);
    if (!m_passedOver.empty())
      std::erase_if(ids, [&](int64_t id) { return IsPassedOver({kind.kind, id}); });
    return ids;
  }
  std::vector<eds_LinkInfo> LinksOf(eds_ObjectID owner) const {
    std::vector<eds_LinkInfo> links = inps_shownLinks(m_model, owner);
    if (!m_passedOver.empty())
      std::erase_if(links, [&](const eds_LinkInfo& link) { return IsPassedOver(link.target); });
    return links;
  }

  // Names of what a record is and whose it is, without numbers.
  const cow_String& KeyOf(eds_ObjectID object, int depth = 0) {
    const auto [entry, isNew] = m_keys.try_emplace(object.Packed());
    if (!isNew) return entry->second;
    cow_String key = MakeKey(object, depth);
    return m_keys[object.Packed()] = std::move(key);
  }

private:
  bool IsPassedOver(eds_ObjectID object) const { return m_passedOver.contains(object.Packed()); }

  // Collections of nodes and of elements may have one name.
  static bool IsPartOfKey(const eds_RecordInfo& kind, const eds_FieldInfo& field) {
    static constexpr std::string_view names[] = {"Name",  "Owner",        "Keyword", "Spec",
                                                 "Block", "Distribution", "Section", "Property",
                                                 "Table", "Given",        "Behind"};
    return std::ranges::find(names, field.name) != std::end(names) ||
           (kind.kind == eds_RecordKind::Collection && field.name == "Type");
  }

  // Drawers of one distribution are told apart by those who hold them.
  bool IsNamed(eds_ObjectID object) const {
    const eds_RecordInfo* info = eds_ModelReader::Info(object.RecordKind());
    if (!info) return true;
    for (std::size_t i = 0; i < info->fields.size(); ++i) {
      if (!IsPartOfKey(*info, info->fields[i])) continue;
      const eds_FieldValue value = m_model.Value(info->kind, object.id, static_cast<int>(i));
      const auto* text = std::get_if<std::string_view>(&value);
      const auto* owner = std::get_if<eds_ObjectID>(&value);
      if (text ? !text->empty() : owner && !owner->IsNull())
        return object.RecordKind() != eds_RecordKind::Drawer;
    }
    return false;
  }

  void Hold(eds_ObjectID target, eds_ObjectID holder, std::string_view as) {
    if (!target.IsNull() && target.kind != eds_ObjectID::SymbolKind && !IsNamed(target))
      m_owners.try_emplace(target.Packed(), holder, as);
  }

  // What says nothing of itself is known by the first that holds it.
  void FindOwned(const eds_RecordInfo& kind, int64_t id) {
    const eds_ObjectID holder(kind.kind, id);
    for (std::size_t i = 0; i < kind.fields.size(); ++i) {
      if (kind.fields[i].target != eds_RecordKind::Drawer) continue;
      const eds_FieldValue value = m_model.Value(kind.kind, id, static_cast<int>(i));
      if (const auto* target = std::get_if<eds_ObjectID>(&value))
        Hold(*target, holder, kind.fields[i].name);
    }
    for (const eds_LinkInfo& link : inps_shownLinks(m_model, holder))
      Hold(link.target, holder, link.memberName);
  }

  cow_String MakeKey(eds_ObjectID object, int depth) {
    constexpr int deepest = 5; // owners of owners; a damaged file may have circles
    const eds_RecordInfo* info = eds_ModelReader::Info(object.RecordKind());
    if (!info || depth > deepest) return m_model.Describe(object);
    cow_String key(info->name);
    if (const auto held = m_owners.find(object.Packed()); held != m_owners.end())
      key.append("/").append(held->second.second) +=
          "(" + KeyOf(held->second.first, depth + 1) + ")";
    for (std::size_t i = 0; i < info->fields.size(); ++i) {
      if (!IsPartOfKey(*info, info->fields[i])) continue;
      const eds_FieldValue value = m_model.Value(info->kind, object.id, static_cast<int>(i));
      if (const auto* text = std::get_if<std::string_view>(&value)) key.append("/").append(*text);
      if (const auto* number = std::get_if<int64_t>(&value)) key += "/" + std::to_string(*number);
      const auto* owner = std::get_if<eds_ObjectID>(&value);
      if (owner && !owner->IsNull()) key += "(" + KeyOf(*owner, depth + 1) + ")";
    }
    return key;
  }

  eds_ModelReader m_model;
  std::unordered_set<uint64_t> m_passedOver;
  std::unordered_map<uint64_t, cow_String> m_keys;
  std::unordered_map<uint64_t, std::pair<eds_ObjectID, std::string_view>> m_owners;
};

class Diff {
public:
  Diff(const KvoObjDocument& a, const KvoObjDocument& b, aio_ostream& out,
       const inps_Tolerance& tolerance)
      : m_a(a), m_b(b), m_out(out), m_tolerance(tolerance) {}

  long long Run() {
    inps_MeshCut cut = inps_compareMeshCut(m_a.Model(), m_b.Model(), m_tolerance);
    m_a.PassOver(std::move(cut.a));
    m_b.PassOver(std::move(cut.b));
    const cow_List<const eds_RecordInfo*> kinds = Kinds();
    cow_List<inps_Matching> matchings;
    for (const eds_RecordInfo* kind : kinds) matchings.push_back(Match(*kind));
    for (std::size_t i = 0; i < kinds.size(); ++i) Compare(*kinds[i], matchings[i]);
    return m_differences;
  }

private:
  using IDs = std::vector<int64_t>;

  cow_List<const eds_RecordInfo*> Kinds() const {
    cow_Map<int, const eds_RecordInfo*> byNumber;
    for (const Side* side : {&m_a, &m_b})
      for (const eds_RecordInfo* kind : inps_walkedKinds(side->Model()))
        byNumber[static_cast<int>(kind->kind)] = kind;
    cow_List<const eds_RecordInfo*> kinds;
    for (const auto& entry : byNumber) kinds.push_back(entry.second);
    return kinds;
  }

  static cow_List<cow_String> KeysOf(Side& side, const eds_RecordInfo& kind, const IDs& ids) {
    cow_List<cow_String> keys;
    for (const int64_t id : ids) keys.push_back(side.KeyOf({kind.kind, id}));
    return keys;
  }

  inps_Matching Match(const eds_RecordInfo& kind) {
    const IDs a = m_a.IDsOf(kind);
    const IDs b = m_b.IDsOf(kind);
    inps_Matching matching(KeysOf(m_a, kind, a), KeysOf(m_b, kind, b));
    for (const auto& [inA, inB] : matching.both)
      m_partner[eds_ObjectID(kind.kind, a[inA]).Packed()] = b[inB];
    return matching;
  }

  void Compare(const eds_RecordInfo& kind, const inps_Matching& matching) {
    const IDs a = m_a.IDsOf(kind);
    const IDs b = m_b.IDsOf(kind);
    for (const auto& [inA, inB] : matching.both) CompareRecord(kind, a[inA], b[inB]);
    for (const std::size_t i : matching.onlyA) Only("A", m_a, {kind.kind, a[i]});
    for (const std::size_t i : matching.onlyB) Only("B", m_b, {kind.kind, b[i]});
  }

  void Only(const char* where, const Side& side, eds_ObjectID object) {
    ++m_differences;
    m_out << "only in " << where << ": " << side.Model().Describe(object) << '\n';
  }

  void CompareRecord(const eds_RecordInfo& kind, int64_t a, int64_t b) {
    m_record = m_a.Model().Describe({kind.kind, a});
    for (std::size_t i = 0; i < kind.fields.size(); ++i) {
      const int field = static_cast<int>(i);
      CompareField(kind.fields[i], m_a.Model().Value(kind.kind, a, field),
                   m_b.Model().Value(kind.kind, b, field));
    }
    const std::string_view textA = m_a.Model().Annotation(kind.kind, a);
    const std::string_view textB = m_b.Model().Annotation(kind.kind, b);
    if (textA != textB) Differ("annotation", inps_quoted(textA), inps_quoted(textB));
    CompareLinks(m_a.LinksOf({kind.kind, a}), m_b.LinksOf({kind.kind, b}));
  }

  // The head of a record stands above its first difference.
  void Differ(std::string_view what, const cow_String& a, const cow_String& b) {
    ++m_differences;
    if (!m_record.empty()) m_out << m_record << '\n';
    m_record.clear();
    m_out << "  " << what << ": " << a << " | " << b << '\n';
  }

  bool SameObject(eds_ObjectID a, eds_ObjectID b) const {
    if (a == b && (a.IsNull() || a.kind == eds_ObjectID::SymbolKind)) return true;
    if (a.kind != b.kind) return false;
    const auto partner = m_partner.find(a.Packed());
    return partner != m_partner.end() && partner->second == b.id;
  }

  void CompareField(const eds_FieldInfo& info, const eds_FieldValue& a, const eds_FieldValue& b) {
    const auto* objectA = std::get_if<eds_ObjectID>(&a);
    const auto* objectB = std::get_if<eds_ObjectID>(&b);
    if (objectA && objectB && objectA->kind == objectB->kind && !objectA->IsNull()) {
      if (objectA->RecordKind() == eds_RecordKind::Array)
        return CompareArrays(info.column, objectA->id, objectB->id);
      if (objectA->RecordKind() == eds_RecordKind::CSet)
        return CompareCSets(info.column, objectA->id, objectB->id);
      if (SameObject(*objectA, *objectB)) return;
    } else if (a == b || (inps_isDefault(info, a) && inps_isDefault(info, b))) {
      return;
    } else if (m_tolerance.IsGiven() && std::holds_alternative<double>(a) &&
               std::holds_alternative<double>(b) &&
               m_tolerance.Allows(std::get<double>(a), std::get<double>(b))) {
      return;
    }
    if (info.name == "Grid" && SameGrid(a, b)) return;
    if (info.type == eds_FieldType::Bytes) return CompareRows(info, a, b);
    Differ(info.column, inps_valueText(m_a.Model(), info, a), inps_valueText(m_b.Model(), info, b));
  }

  bool SameNumber(eds_ValueType type, const void* a, const void* b) const {
    if (std::memcmp(a, b, static_cast<std::size_t>(eds_sizeOf(type))) == 0) return true;
    if (type != eds_ValueType::Double) return false;
    double values[2];
    std::memcpy(&values[0], a, sizeof(double));
    std::memcpy(&values[1], b, sizeof(double));
    return m_tolerance.IsGiven() && m_tolerance.Allows(values[0], values[1]);
  }

  // The values that a record holds itself: the first that differs.
  void CompareRows(const eds_FieldInfo& info, const eds_FieldValue& a, const eds_FieldValue& b) {
    const auto size = static_cast<std::size_t>(eds_sizeOf(info.valueType));
    const auto* rowsA = std::get_if<std::string_view>(&a);
    const auto* rowsB = std::get_if<std::string_view>(&b);
    const std::string_view bytesA = rowsA ? *rowsA : std::string_view();
    const std::string_view bytesB = rowsB ? *rowsB : std::string_view();
    std::size_t at = 0;
    while (at + size <= std::min(bytesA.size(), bytesB.size()) &&
           SameNumber(info.valueType, bytesA.data() + at, bytesB.data() + at))
      at += size;
    if (at == bytesA.size() && at == bytesB.size()) return; // within the tolerance
    const auto text = [&](std::string_view bytes) {
      const auto count = static_cast<int64_t>(bytes.size() / size);
      cow_String line = inps_counted(count, "value");
      if (at + size <= bytes.size())
        line += ", at " + std::to_string(at / size) + " " +
                inps_itemValueText(info.valueType,
                                   reinterpret_cast<const std::byte*>(bytes.data() + at));
      return line;
    };
    Differ(info.column, text(bytesA), text(bytesB));
  }

  // A grid names its collections by number, and those differ between files.
  bool SameGrid(const eds_FieldValue& a, const eds_FieldValue& b) const {
    const auto* textA = std::get_if<std::string_view>(&a);
    const auto* textB = std::get_if<std::string_view>(&b);
    if (!textA || !textB) return false;
    const IDs idsA = Numbers(*textA);
    const IDs idsB = Numbers(*textB);
    return std::ranges::equal(idsA, idsB, [this](int64_t x, int64_t y) {
      return SameObject({eds_RecordKind::Collection, x}, {eds_RecordKind::Collection, y});
    });
  }

  static IDs Numbers(std::string_view text) {
    IDs numbers;
    int64_t value = 0;
    const char* const end = text.data() + text.size();
    const char* p = text.data();
    while ((p = utl_readInt(p, end, value))) numbers.push_back(value);
    return numbers;
  }

  void CompareCSets(std::string_view what, int64_t a, int64_t b) {
    const eds_MemberSet membersA = m_a.Model().CSet(a);
    const eds_MemberSet membersB = m_b.Model().CSet(b);
    const eds_ObjectID overA = inps_refOf(m_a.Model(), eds_CSet_Collection, a);
    const eds_ObjectID overB = inps_refOf(m_b.Model(), eds_CSet_Collection, b);
    if (!SameObject(overA, overB))
      Differ(what, "members of " + m_a.Model().Describe(overA),
             "members of " + m_b.Model().Describe(overB));
    if (membersA.SameSet(membersB)) return;
    const int64_t common = std::min(membersA.Size(), membersB.Size());
    int64_t first = 0;
    while (first < common && membersA[first] == membersB[first]) ++first;
    const auto text = [first](const eds_MemberSet& members) {
      cow_String line = inps_counted(members.Size(), "member");
      if (first < members.Size())
        line += ", at " + std::to_string(first) + " " + std::to_string(members[first]);
      return line;
    };
    Differ(what, text(membersA), text(membersB));
  }

  void CompareArrays(std::string_view what, int64_t a, int64_t b);
  void CompareLinks(const std::vector<eds_LinkInfo>& a, const std::vector<eds_LinkInfo>& b);

  Side m_a;
  Side m_b;
  aio_ostream& m_out;
  const inps_Tolerance& m_tolerance;
  std::unordered_map<uint64_t, int64_t> m_partner; // of A's records in B
  std::unordered_set<uint64_t> m_sameArrays;       // those found equal before, by both numbers
  cow_String m_record;                             // its head is still to be printed
  long long m_differences = 0;
};

cow_String shapeText(const eds_ArrayReader& array) {
  return std::to_string(array.Count()) + " x " + std::to_string(array.Width()) + " " +
         cow_String(inps_valueTypeName(array.ValueType()));
}

// The items of two arrays of one type and width that are not the same: bit by bit, or real numbers
// within a tolerance.
struct ItemDifferences {
  int64_t count = 0;
  int64_t first = -1;
  cow_String inA;
  cow_String inB;

  ItemDifferences(eds_ArrayReader& a, eds_ArrayReader& b, const inps_Tolerance& tolerance)
      : m_tolerance(tolerance), m_type(a.ValueType()),
        m_itemSize(static_cast<std::size_t>(eds_sizeOf(m_type) * a.Width())) {
    const int64_t common = std::min(a.Count(), b.Count());
    cow_List<std::byte> other;
    inps_forPieces(a, [&](int64_t firstItem, std::span<const std::byte> bytes) {
      const auto rest = static_cast<std::size_t>(std::max<int64_t>(0, common - firstItem));
      bytes = bytes.first(std::min(bytes.size(), rest * m_itemSize));
      if (bytes.empty()) return false;
      other.resize(bytes.size());
      b.ReadItems(firstItem, other);
      if (std::memcmp(other.data(), bytes.data(), bytes.size()) != 0)
        ComparePiece(firstItem, bytes, other);
      return true;
    });
  }

private:
  void ComparePiece(int64_t firstItem, std::span<const std::byte> a, std::span<const std::byte> b) {
    for (std::size_t at = 0; at < a.size(); at += m_itemSize) {
      if (SameItem(&a[at], &b[at]) || count++ > 0) continue;
      first = firstItem + static_cast<int64_t>(at / m_itemSize);
      inA = Text(&a[at]);
      inB = Text(&b[at]);
    }
  }

  bool SameItem(const std::byte* a, const std::byte* b) const {
    if (std::memcmp(a, b, m_itemSize) == 0) return true;
    if (m_type != eds_ValueType::Double || !m_tolerance.IsGiven()) return false;
    for (std::size_t at = 0; at < m_itemSize; at += sizeof(double)) {
      double values[2];
      std::memcpy(&values[0], a + at, sizeof(double));
      std::memcpy(&values[1], b + at, sizeof(double));
      if (!m_tolerance.Allows(values[0], values[1])) return false;
    }
    return true;
  }

  cow_String Text(const std::byte* item) const {
    cow_String values;
    for (std::size_t at = 0; at < m_itemSize; at += static_cast<std::size_t>(eds_sizeOf(m_type)))
      values += (at ? " " : "") + inps_itemValueText(m_type, item + at);
    return values;
  }

  const inps_Tolerance& m_tolerance;
  eds_ValueType m_type;
  std::size_t m_itemSize;
};

void Diff::CompareArrays(std::string_view what, int64_t a, int64_t b) {
  const uint64_t pair = (static_cast<uint64_t>(a) << 32) ^ static_cast<uint64_t>(b);
  if (m_sameArrays.contains(pair)) return; // instances share the arrays of their parts
  eds_ArrayReader arrayA = m_a.Model().Array(a);
  eds_ArrayReader arrayB = m_b.Model().Array(b);
  const bool sameItems =
      arrayA.ValueType() == arrayB.ValueType() && arrayA.Width() == arrayB.Width();
  const bool sameShape = sameItems && arrayA.Count() == arrayB.Count();
  if (!sameShape) Differ(what, shapeText(arrayA), shapeText(arrayB));
  if (!sameItems) return;
  const ItemDifferences items(arrayA, arrayB, m_tolerance);
  if (items.count > 0)
    Differ(cow_String(what) + ", " + inps_counted(items.count, "item differs", "items differ") +
               ", first item " + std::to_string(items.first),
           items.inA, items.inB);
  else if (sameShape)
    m_sameArrays.insert(pair);
}

// What is held by a name is found by it, whatever its order; the rest is matched in its order.
void Diff::CompareLinks(const std::vector<eds_LinkInfo>& a, const std::vector<eds_LinkInfo>& b) {
  const auto keys = [](const eds_ModelReader& model, const std::vector<eds_LinkInfo>& links) {
    cow_List<cow_String> texts;
    for (const eds_LinkInfo& link : links) {
      texts.push_back(inps_linkText(link));
      if (!link.target.IsNull() && link.target.RecordKind() == eds_RecordKind::Collection)
        texts.back() +=
            " of type " + std::to_string(inps_intOf(model, eds_Collection_Type, link.target.id));
    }
    return texts;
  };
  const cow_List<cow_String> keysA = keys(m_a.Model(), a);
  const inps_Matching matching(keysA, keys(m_b.Model(), b));
  for (const auto& [inA, inB] : matching.both)
    if (!SameObject(a[inA].target, b[inB].target))
      Differ(keysA[inA], m_a.Model().Describe(a[inA].target), m_b.Model().Describe(b[inB].target));
  for (const std::size_t i : matching.onlyA)
    Differ(keysA[i], m_a.Model().Describe(a[i].target), "none");
  for (const std::size_t i : matching.onlyB)
    Differ(inps_linkText(b[i]), "none", m_b.Model().Describe(b[i].target));
}

} // namespace

long long inps_diffModels(const KvoObjDocument& a, const KvoObjDocument& b, aio_ostream& out,
                          const inps_Tolerance& tolerance) {
  return Diff(a, b, out, tolerance).Run();
}
