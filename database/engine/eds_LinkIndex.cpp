#include "database/engine/eds_LinkIndex.h"
#include "base/utl_Assert.h"
#include <algorithm>
#include <cstring>

namespace {
constexpr size_t longList = 16; // from here on a list has a map by key
}

std::string eds_linkKey(uint64_t number) {
  std::string key(sizeof number, '\0');
  std::memcpy(key.data(), &number, sizeof number);
  return key;
}

void eds_LinkIndex::Forget() {
  m_rows = nullptr;
  m_lists.clear();
  m_byTarget.clear();
  m_hasTargets = false;
  m_membersOf.clear();
  m_hasMembers = false;
}

size_t eds_LinkIndex::BitOf(eds_Member member) {
  const auto bit = static_cast<size_t>(member);
  utl_ASSERT(bit < MemberBits().size());
  return bit;
}

void eds_LinkIndex::Build(eds_RowTable& rows) {
  Forget();
  m_rows = &rows;
  try {
    for (int64_t link = 1; link <= rows.LastID(); ++link) {
      if (!rows.Has(link)) continue;
      const eds_ObjectID owner = rows.Reference(link, eds_Link_Owner);
      const int64_t member = rows.Int(link, eds_Link_Member);
      Append(m_lists[{owner.Packed(), static_cast<uint64_t>(member)}], link);
    }
  } catch (...) {
    Forget(); // half an index is none
    throw;
  }
}

// Sets know their members by the target, maps by their key; the shape says which.
std::string eds_LinkIndex::KeyOf(int64_t link) const {
  const auto member = static_cast<eds_Member>(m_rows->Int(link, eds_Link_Member));
  const eds_MemberInfo* info = eds_schemaMember(member);
  switch (info != nullptr ? info->shape : eds_MemberShape::One) {
  case eds_MemberShape::TextMap:
    return std::string(m_rows->Text(link, eds_Link_TextKey));
  case eds_MemberShape::IntMap:
    return eds_linkKey(static_cast<uint64_t>(m_rows->Int(link, eds_Link_IntKey)));
  case eds_MemberShape::One:
    return {};
  default:
    return eds_linkKey(m_rows->Reference(link, eds_Link_Target).Packed());
  }
}

bool eds_LinkIndex::HasUniqueKeys(int64_t link) const {
  const auto member = static_cast<eds_Member>(m_rows->Int(link, eds_Link_Member));
  const eds_MemberInfo* info = eds_schemaMember(member);
  return info != nullptr && info->shape != eds_MemberShape::List;
}

void eds_LinkIndex::Append(List& list, int64_t link) {
  list.links.push_back(link);
  if (list.byKey) {
    list.byKey->emplace(KeyOf(link), link);
  } else if (list.links.size() >= longList && HasUniqueKeys(link)) {
    list.byKey = std::make_unique<KeyMap>();
    for (int64_t each : list.links)
      if (each > 0) list.byKey->emplace(KeyOf(each), each);
  }
}

// Many removals from a long list must not each cost its length.
void eds_LinkIndex::RemoveIn(List& list, int64_t link) {
  const auto at = std::lower_bound(
      list.links.begin(), list.links.end(), link,
      [](int64_t each, int64_t wanted) { return (each < 0 ? -each : each) < wanted; });
  utl_ASSERT(at != list.links.end() && *at == link);
  *at = -link;
  ++list.removed;
  if (list.byKey) {
    const auto key = list.byKey->find(KeyOf(link));
    if (key != list.byKey->end() && key->second == link) list.byKey->erase(key);
  }
  while (!list.links.empty() && list.links.back() < 0) {
    list.links.pop_back();
    --list.removed;
  }
}

int64_t eds_LinkIndex::FindIn(const List& list, std::string_view key) const {
  if (list.byKey) {
    const auto found = list.byKey->find(key);
    return found != list.byKey->end() ? found->second : 0;
  }
  for (int64_t link : list.links)
    if (link > 0 && KeyOf(link) == key) return link;
  return 0;
}

const eds_LinkIndex::List* eds_LinkIndex::Find(eds_ObjectID owner, eds_Member member) {
  auto found = m_lists.find({owner.Packed(), static_cast<uint64_t>(member)});
  if (found == m_lists.end()) return nullptr;
  List& list = found->second;
  if (list.removed > 0) std::erase_if(list.links, [](int64_t link) { return link < 0; });
  list.removed = 0;
  return &list;
}

int64_t eds_LinkIndex::FindKey(eds_ObjectID owner, eds_Member member, std::string_view key) const {
  const auto found = m_lists.find({owner.Packed(), static_cast<uint64_t>(member)});
  return found != m_lists.end() ? FindIn(found->second, key) : 0;
}

void eds_LinkIndex::Enter(eds_ObjectID owner, eds_Member member, std::string_view textKey,
                          int64_t intKey, eds_ObjectID target) {
  const eds_MemberShape shape = eds_schemaMember(member)->shape;
  List& list = m_lists[{owner.Packed(), static_cast<uint64_t>(member)}];
  int64_t link = 0;
  switch (shape) {
  case eds_MemberShape::One:
    link = list.links.empty() ? 0 : list.links.front();
    break;
  case eds_MemberShape::TextMap:
    link = FindIn(list, textKey);
    break;
  case eds_MemberShape::IntMap:
    link = FindIn(list, eds_linkKey(static_cast<uint64_t>(intKey)));
    break;
  case eds_MemberShape::Set:
    link = FindIn(list, eds_linkKey(target.Packed()));
    break;
  case eds_MemberShape::List:
    break;
  }
  const bool isNew = link == 0;
  if (isNew) {
    const int64_t position =
        list.links.empty() ? 0 : m_rows->Int(list.links.back(), eds_Link_Position) + 1;
    link = m_rows->Create();
    m_rows->SetReference(link, eds_Link_Owner, owner);
    m_rows->SetInt(link, eds_Link_Member, static_cast<int64_t>(member));
    m_rows->SetInt(link, eds_Link_Position, position);
    if (shape == eds_MemberShape::TextMap) m_rows->SetText(link, eds_Link_TextKey, textKey);
    if (shape == eds_MemberShape::IntMap) m_rows->SetInt(link, eds_Link_IntKey, intKey);
  } else {
    ForgetTarget(link);
  }
  m_rows->SetReference(link, eds_Link_Target, target);
  if (isNew) Append(list, link);
  if (m_hasTargets) m_byTarget.emplace(target.Packed(), link);
  if (m_hasMembers) m_membersOf[owner.Packed()].set(BitOf(member));
}

void eds_LinkIndex::ForgetTarget(int64_t link) {
  if (!m_hasTargets) return;
  auto [first, last] = m_byTarget.equal_range(m_rows->Reference(link, eds_Link_Target).Packed());
  while (first != last && first->second != link) ++first;
  if (first != last) m_byTarget.erase(first);
}

void eds_LinkIndex::Remove(int64_t link) {
  const eds_ObjectID owner = m_rows->Reference(link, eds_Link_Owner);
  const auto member = static_cast<uint64_t>(m_rows->Int(link, eds_Link_Member));
  const auto found = m_lists.find({owner.Packed(), member});
  utl_ASSERT(found != m_lists.end());
  RemoveIn(found->second, link);
  if (found->second.links.empty()) m_lists.erase(found);
  ForgetTarget(link);
  m_rows->Remove(link);
}

std::vector<int64_t> eds_LinkIndex::LinksTo(eds_ObjectID target) {
  if (!m_hasTargets) {
    m_byTarget.clear(); // of a try that failed
    for (int64_t link = 1; link <= m_rows->LastID(); ++link)
      if (m_rows->Has(link))
        m_byTarget.emplace(m_rows->Reference(link, eds_Link_Target).Packed(), link);
    m_hasTargets = true;
  }
  auto [first, last] = m_byTarget.equal_range(target.Packed());
  std::vector<int64_t> links;
  for (; first != last; ++first) links.push_back(first->second);
  std::sort(links.begin(), links.end());
  return links;
}

std::vector<int64_t> eds_LinkIndex::LinksFrom(eds_ObjectID owner) {
  if (!m_hasMembers) {
    for (const auto& entry : m_lists) {
      const auto member = static_cast<eds_Member>(entry.first.member);
      if (eds_schemaMember(member)) m_membersOf[entry.first.owner].set(BitOf(member));
    }
    m_hasMembers = true;
  }
  std::vector<int64_t> links;
  const auto members = m_membersOf.find(owner.Packed());
  if (members == m_membersOf.end()) return links;
  for (const eds_MemberInfo& member : eds_schemaMembers()) {
    if (!members->second.test(BitOf(member.member))) continue;
    const List* list = Find(owner, member.member);
    if (list != nullptr) links.insert(links.end(), list->links.begin(), list->links.end());
  }
  return links;
}
