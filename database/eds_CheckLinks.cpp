#include "database/eds_CheckLinks.h"
#include "database/engine/eds_Store.h"
#include <unordered_map>

namespace {

using Kind = eds_RecordKind;
using Tell = std::function<void(const cow_String&)>;

class LinkChecker {
public:
  LinkChecker(eds_Store& store, const Tell& tell)
      : m_store(store), m_links(store.Rows(Kind::Link)), m_tell(tell) {}

  void Run() {
    for (int64_t id = 1; id <= m_links.LastID(); ++id)
      if (m_links.Has(id)) Check(id);
    for (const auto& [held, holder] : m_holderOf) CheckDepth(held);
  }

private:
  void Fault(int64_t id, const cow_String& what) {
    m_tell("link " + std::to_string(id) + ": " + what);
  }

  void Check(int64_t id) {
    const int64_t member = m_links.Int(id, eds_Link_Member);
    const eds_MemberInfo* info =
        member > 0 && member < 0xffff ? eds_schemaMember(static_cast<eds_Member>(member)) : nullptr;
    if (info == nullptr) return Fault(id, "unknown member " + std::to_string(member));
    const eds_ObjectID owner = m_links.Reference(id, eds_Link_Owner);
    const eds_ObjectID target = m_links.Reference(id, eds_Link_Target);
    if (owner.IsNull()) return Fault(id, "no owner");
    if (target.IsNull()) return Fault(id, "leads nowhere");
    if (target.kind < info->firstTarget || target.kind > info->lastTarget)
      return Fault(id, "a record of kind " + std::to_string(target.kind) + " among " +
                           cow_String(info->name));
    if (!IsOfOwner(target, owner)) Fault(id, "its target names another owner");
    if (info->isAlone && !m_holderOf.emplace(target.Packed(), owner.Packed()).second)
      Fault(id, "its target is held twice");
  }

  // The field in which a record names its owner, beside the link by which that holds it; -1: none.
  int OwnerField(Kind kind) {
    const auto [field, isNew] = m_ownerFields.try_emplace(kind, -1);
    const eds_RecordInfo* info = isNew ? eds_schemaRecord(kind) : nullptr;
    for (std::size_t n = 0; info && n < info->fields.size(); ++n)
      if (info->fields[n].column == "owner") field->second = static_cast<int>(n);
    return field->second;
  }

  // A set of the whole mesh names none.
  bool IsOfOwner(eds_ObjectID target, eds_ObjectID owner) {
    const int field = OwnerField(target.RecordKind());
    if (field < 0 || !m_store.Exists(target)) return true;
    const eds_ObjectID named = m_store.RowsOf(target).Reference(target.id, field);
    return named.IsNull() ? owner.RecordKind() == Kind::Mesh : named == owner;
  }

  // Each has one holder, so this goes up, or around.
  void CheckDepth(uint64_t held) {
    constexpr int deepest = 32; // decks nest properties three deep
    int depth = 0;
    for (auto at = m_holderOf.find(held); at != m_holderOf.end();
         at = m_holderOf.find(at->second)) {
      if (++depth < deepest) continue;
      const eds_ObjectID object = eds_ObjectID::Unpacked(held);
      m_tell("record " + std::to_string(object.id) + " of kind " + std::to_string(object.kind) +
             ": is held too deep");
      return;
    }
  }

  eds_Store& m_store;
  const eds_RowTable& m_links;
  const Tell& m_tell;
  std::unordered_map<uint64_t, uint64_t> m_holderOf;
  std::unordered_map<Kind, int> m_ownerFields;
};

} // namespace

void eds_checkLinks(eds_Store& store, const Tell& tell) {
  LinkChecker(store, tell).Run();
}
