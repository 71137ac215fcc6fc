#pragma once

#include "database/KvoSimDataRecord.h"

class KvoSrvFsmFTable;

// A handle to one object of the store: a record, a collection, a data set, a distribution, a
// symbol. Positions are followed along members (members.def) and fields. Light; null when it names
// nothing.
class KvoSimPosition {
public:
  KvoSimPosition() = default;
  explicit KvoSimPosition(const KvoSimContext& context); // the model
  KvoSimPosition(eds_Store* store, eds_ObjectID object) : m_store(store), m_object(object) {}

  bool IsNull() const { return m_store == nullptr || m_object.IsNull(); }
  int64_t ID() const { return m_object.id; }
  eds_ObjectID Object() const { return m_object; }
  eds_Store* Store() const { return m_store; }
  KvoSimContext Context() const { return KvoSimContext(KvoSimContextID{m_store}); }
  eds_TypeID TypePosition() const; // the type of the object itself
  bool IsA(eds_TypeID type) const;
  // The key under which the parent holds this, else the text of its field "name".
  cow_String Name() const;
  KvoSimPosition Parent() const; // the first object that holds this by a member
  std::vector<KvoSimPosition> ReferrersSet() const;
  friend bool operator==(const KvoSimPosition&, const KvoSimPosition&) = default;

  // New objects; they belong to nothing until they are attached.
  KvoSimPosition CreateDataRecord(eds_TypeID kind) const;
  KvoSimPosition CreateTypedCollection(eds_TypeID kind, const cow_String& name = {}) const;
  KvoSimPosition CreateTypedDistribution(eds_TypeID type, const KvoSimGrid& grid,
                                         const KvoSimRangeType& range) const;
  KvoSrvFsmFTable CreateFTable(eds_TypeID kind) const; // of this property

  // Members of shape One: set, taken away, read.
  void SetPosition(eds_TypeID member, const KvoSimPosition& target) const;
  void UnsetPosition(eds_TypeID member) const;
  KvoSimPosition GetPosition(eds_TypeID member) const { return Follow(member); }
  KvoSimPosition Follow(eds_TypeID member) const;

  // Members of the other shapes. Entering a key again replaces what it held.
  void Associate(eds_TypeID member, const KvoSimPosition& target) const; // Set, List
  void Associate(eds_TypeID member, int64_t key, const KvoSimPosition& target) const;
  void AssociateStringKey(eds_TypeID member, std::string_view key,
                          const KvoSimPosition& target) const;
  void Dissociate(eds_TypeID member, const KvoSimPosition& target) const;
  KvoSimPosition FollowIntKey(eds_TypeID member, int64_t key) const;
  KvoSimPosition FollowStringKey(eds_TypeID member, std::string_view key) const;
  KvoSimPosition FollowList(eds_TypeID member, int64_t index) const; // from 0
  std::vector<KvoSimPosition> FollowMap(eds_TypeID member) const;    // all, in order of entering
  std::vector<KvoSimPosition> FollowSet(eds_TypeID member) const { return FollowMap(member); }
  cow_Map<cow_String, KvoSimPosition> GetMap(eds_TypeID member) const;
  std::vector<KvoSimPosition> GetSet(eds_TypeID member) const { return FollowMap(member); }
  std::vector<KvoSimPosition> GetVector(eds_TypeID member) const { return FollowMap(member); }
  std::vector<int64_t> GetIntKeys(eds_TypeID member) const;
  std::vector<cow_String> GetStringKeys(eds_TypeID member) const; // in order of entering
  int64_t MemberCount(eds_TypeID member) const;

  // This object seen as what it is.
  KvoSimDataRecord DataRecord() const { return {m_store, m_object}; }
  KvoSimDataRecord GetDataRecord(eds_TypeID member) const { return Follow(member).DataRecord(); }
  KvoSimCollection GetCollection(eds_TypeID member) const;
  KvoSimDSet GetDSet(eds_TypeID member) const;
  KvoSimDistribution GetDistribution(eds_TypeID member) const;
  KvoSimCSet GetCSet(int field) const; // a field of this record
  KvoSrvFsmFTable GetFTable() const;   // the table of this property, null when it has none
  KvoSimCollection AsCollection() const;
  KvoSimDistribution AsDistribution() const;

  void SetAnnotation(std::string_view text) const;
  cow_String GetAnnotation() const;
  bool HasAnnotation() const;

  // Symbols.
  KvoSimPosition GetSymbolPosition(std::string_view name) const; // null when there is none
  cow_String GetSymbolName() const;                              // of this symbol
  int GetSymbol() const;                                         // its number in its vocabulary

  // Removes the object and every link to and from it.
  void Remove() const;

private:
  eds_Store* m_store = nullptr;
  eds_ObjectID m_object;
};
