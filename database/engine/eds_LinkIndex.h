#pragma once

#include "database/engine/eds_RowTable.h"
#include <bitset>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

// The links of all objects, found by owner and member. The links themselves are rows; this is the
// way to them. Built when first asked for.
class eds_LinkIndex {
public:
  struct TextHash { // looked up without a copy of the text
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };
  using KeyMap = std::unordered_map<std::string, int64_t, TextHash, std::equal_to<>>;
  struct List {
    std::vector<int64_t> links; // row ids, in order of entering, which is their own
    // Key (text, 8 bytes of a number, 8 bytes of a target) to row id; kept for lists that have
    // been long, unless a key may come twice. Most lists are one link long, and there are many.
    std::unique_ptr<KeyMap> byKey;
    // Removed links stand negative in their places until the list is asked for.
    size_t removed = 0;
  };

  void Build(eds_RowTable& rows);
  void Forget();
  bool IsBuilt() const { return m_rows != nullptr; }

  // Valid until a link is entered or removed.
  const List* Find(eds_ObjectID owner, eds_Member member);
  int64_t FindKey(eds_ObjectID owner, eds_Member member, std::string_view key) const; // 0: none
  // Adds a link; one that has the key already is given the new target instead.
  void Enter(eds_ObjectID owner, eds_Member member, std::string_view textKey, int64_t intKey,
             eds_ObjectID target);
  void Remove(int64_t link);
  std::vector<int64_t> LinksTo(eds_ObjectID target);
  std::vector<int64_t> LinksFrom(eds_ObjectID owner);

private:
  struct Key {
    uint64_t owner;
    uint64_t member;
    bool operator==(const Key&) const = default;
  };
  struct Hash {
    size_t operator()(const Key& key) const {
      return static_cast<size_t>((key.owner * 0x9e3779b97f4a7c15ULL) ^ (key.member << 7) ^
                                 (key.owner >> 29));
    }
  };

  using MemberBits = std::bitset<128>; // all members that a schema has fit
  static size_t BitOf(eds_Member member);
  void Append(List& list, int64_t link);
  void RemoveIn(List& list, int64_t link);
  void ForgetTarget(int64_t link);
  bool HasUniqueKeys(int64_t link) const;
  std::string KeyOf(int64_t link) const;
  int64_t FindIn(const List& list, std::string_view key) const;

  eds_RowTable* m_rows = nullptr;
  std::unordered_map<Key, List, Hash> m_lists;
  std::unordered_multimap<uint64_t, int64_t> m_byTarget;
  bool m_hasTargets = false;
  // The members each owner has or had links of; a walk over a model asks for all of every record.
  std::unordered_map<uint64_t, MemberBits> m_membersOf;
  bool m_hasMembers = false;
};

// A number as the key of a link.
std::string eds_linkKey(uint64_t number);
