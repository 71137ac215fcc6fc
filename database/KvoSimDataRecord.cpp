#include "database/KvoSimDataRecord.h"
#include "base/utl_Assert.h"
#include "base/utl_File.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimPosition.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Store.h"

namespace {

int symbolNumber(eds_Vocabulary vocabulary, std::string_view name) {
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols(vocabulary))
    if (symbol.name == name) return symbol.number;
  return -1;
}

} // namespace

KvoSimPosition KvoSimDataRecord::Pos() const {
  return {m_store, m_object};
}

bool KvoSimDataRecord::IsA(eds_TypeID kind) const {
  return !IsNull() && eds_TypeID(m_object.RecordKind()) == kind;
}

bool KvoSimDataRecord::IsMemberNull(int field) const {
  eds_RowTable& rows = m_store->RowsOf(m_object);
  rows.Field(field);
  utl_ASSERT(rows.Has(m_object.id));
  return rows.IsNull(m_object.id, field);
}

int64_t KvoSimDataRecord::GetInt64(int field) const {
  return m_store->RowsOf(m_object).Int(m_object.id, field);
}

int KvoSimDataRecord::GetInt(int field) const {
  const int64_t value = GetInt64(field);
  if (value == static_cast<int>(value)) return static_cast<int>(value);
  const eds_FieldInfo& info = m_store->RowsOf(m_object).Field(field);
  throw eds_DamagedFileException("\"" + utl_pathText(m_store->Path()) + "\" is damaged: column " +
                                 cow_String(info.column) + ": " + std::to_string(value));
}

double KvoSimDataRecord::GetDouble(int field) const {
  return m_store->RowsOf(m_object).Real(m_object.id, field);
}

bool KvoSimDataRecord::GetBool(int field) const {
  return GetInt64(field) != 0;
}

std::string_view KvoSimDataRecord::GetString(int field) const {
  return m_store->RowsOf(m_object).Text(m_object.id, field);
}

cow_String KvoSimDataRecord::ReturnString(int field) const {
  return cow_String(GetString(field));
}

int KvoSimDataRecord::GetSymb(int field) const {
  return GetInt(field);
}

KvoSimPosition KvoSimDataRecord::GetReference(int field) const {
  return {m_store, m_store->RowsOf(m_object).Reference(m_object.id, field)};
}

KvoSimCSet KvoSimDataRecord::GetSet(int field) const {
  const eds_ObjectID target = m_store->RowsOf(m_object).Reference(m_object.id, field);
  if (target.IsNull()) return {};
  utl_ASSERT(target.RecordKind() == eds_RecordKind::CSet);
  return KvoSimCSet(KvoSimCSetID(m_store, target.id));
}

void KvoSimDataRecord::SetInt(int field, int64_t value) {
  eds_RowTable& rows = m_store->RowsOf(m_object);
  utl_ASSERT(rows.Field(field).type == eds_FieldType::Int);
  rows.SetInt(m_object.id, field, value);
}

void KvoSimDataRecord::SetDouble(int field, double value) {
  m_store->RowsOf(m_object).SetReal(m_object.id, field, value);
}

void KvoSimDataRecord::SetBool(int field, bool value) {
  eds_RowTable& rows = m_store->RowsOf(m_object);
  utl_ASSERT(rows.Field(field).type == eds_FieldType::Bool);
  rows.SetInt(m_object.id, field, value ? 1 : 0);
}

void KvoSimDataRecord::SetString(int field, std::string_view value) {
  m_store->RowsOf(m_object).SetText(m_object.id, field, value);
}

void KvoSimDataRecord::SetSymb(int field, int symbol) {
  eds_RowTable& rows = m_store->RowsOf(m_object);
  const eds_FieldInfo& info = rows.Field(field);
  utl_ASSERT(info.type == eds_FieldType::Symbol);
  utl_ASSERT(symbol >= 0 &&
             static_cast<size_t>(symbol) < eds_schemaSymbols(info.vocabulary).size());
  rows.SetInt(m_object.id, field, symbol);
}

void KvoSimDataRecord::SetSymb(int field, std::string_view symbolName) {
  SetSymb(field, symbolNumber(m_store->RowsOf(m_object).Field(field).vocabulary, symbolName));
}

void KvoSimDataRecord::SetReference(int field, const KvoSimPosition& target) {
  m_store->RowsOf(m_object).SetReference(m_object.id, field, target.Object());
}

void KvoSimDataRecord::SetSet(int field, const KvoSimCSetID& cset) {
  utl_ASSERT(cset.Number() >= 0); // a temporary set cannot be kept
  m_store->RowsOf(m_object).SetReference(m_object.id, field, {eds_RecordKind::CSet, cset.Number()});
}

void KvoSimDataRecord::UnsetMember(int field) {
  m_store->RowsOf(m_object).Unset(m_object.id, field);
}
