#pragma once

#include "database/KvoSimContext.h"
#include <string_view>

class KvoSimCSet;

// A typed record with numbered fields. A light handle. Asking for a field that the kind does not
// have, or with the wrong type, is an assertion; a field never set reads as its default.
class KvoSimDataRecord {
public:
  KvoSimDataRecord() = default;
  KvoSimDataRecord(eds_Store* store, eds_ObjectID object) : m_store(store), m_object(object) {}

  bool IsNull() const { return m_object.IsNull(); }
  int64_t ID() const { return m_object.id; }
  eds_ObjectID Object() const { return m_object; }
  KvoSimPosition Pos() const;
  bool IsA(eds_TypeID kind) const;
  bool IsMemberNull(int field) const;

  int64_t GetInt64(int field) const;
  int GetInt(int field) const; // eds_DamagedFileException when the value does not fit
  double GetDouble(int field) const;
  bool GetBool(int field) const;
  std::string_view GetString(int field) const; // valid until the record's kind is next changed
  cow_String ReturnString(int field) const;
  int GetSymb(int field) const; // the symbol's number within the field's vocabulary
  KvoSimPosition GetReference(int field) const;
  KvoSimCSet GetSet(int field) const; // a reference to a component set, followed

  void SetInt(int field, int64_t value);
  void SetDouble(int field, double value);
  void SetBool(int field, bool value);
  void SetString(int field, std::string_view value);
  void SetSymb(int field, int symbol);
  void SetSymb(int field, std::string_view symbolName);
  void SetReference(int field, const KvoSimPosition& target);
  void SetSet(int field, const KvoSimCSetID& cset);
  void UnsetMember(int field);

private:
  eds_Store* m_store = nullptr;
  eds_ObjectID m_object;
};
