#include "inpS/properties/inpS_DistributionTable.h"
#include "base/utl_Assert.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormWords.h"
#include <algorithm>

namespace {

constexpr std::pair<std::string_view, int> kSeveral[] = {
    {"COORD3D", 3}, {"SHELLSTIFF1", 6}, {"SHELLSTIFF2", 9}, {"SHELLSTIFF3", 6}};

const cow_List<cow_String>& names() {
  return eds_formOf(eds_FormKind::DistributionTable)->words.alternatives.front().words;
}

} // namespace

inpS_DistributionTable::inpS_DistributionTable(const cow_List<cow_String>& fieldTypes) {
  for (const cow_String& name : fieldTypes) {
    m_fieldTypes.push_back(FieldTypeNamed(name));
    if (m_fieldTypes.back() == -1) utl_assertionFailed("m_fieldTypes[i] != -1");
  }
}

inpS_DistributionTable::inpS_DistributionTable(const KvoSimPosition& record) {
  const int field = eds_formOf(eds_FormKind::DistributionTable)->words.alternatives.front().field;
  *this = inpS_DistributionTable(inpS_splitWords(record.DataRecord().GetString(field)));
}

inpS_DistributionTable inpS_DistributionTable::Of(const KvoSimPosition& distribution) {
  const int field = eds_formField(distribution.Object().RecordKind(), "table");
  return inpS_DistributionTable(distribution.DataRecord().GetReference(field));
}

int inpS_DistributionTable::Components(int fieldType) {
  const auto several = std::ranges::find(kSeveral, std::string_view(FieldTypeName(fieldType)),
                                         &std::pair<std::string_view, int>::first);
  return several == std::end(kSeveral) ? 1 : several->second;
}

const cow_String& inpS_DistributionTable::FieldTypeName(int fieldType) {
  return names().at(static_cast<std::size_t>(fieldType));
}

int inpS_DistributionTable::FieldTypeNamed(std::string_view name) {
  const auto known = std::ranges::find(names(), name);
  return known == names().end() ? -1 : static_cast<int>(known - names().begin());
}

int inpS_DistributionTable::FieldType(int column) const {
  return m_fieldTypes.at(static_cast<std::size_t>(column));
}

cow_String inpS_DistributionTable::ColumnName(int column) const {
  const int type = FieldType(column);
  const cow_String& name = FieldTypeName(type);
  if (std::ranges::count(m_fieldTypes, type) == 1) return name;
  const auto number = std::count(m_fieldTypes.begin(), m_fieldTypes.begin() + column + 1, type);
  return name + std::to_string(number);
}

int inpS_DistributionTable::FirstComponent(int column) const {
  int first = 0;
  for (int n = 0; n < column; ++n) first += Components(FieldType(n));
  return first;
}

int inpS_DistributionTable::FirstComponentOf(std::string_view fieldType) const {
  for (int column = 0; column < NumFieldTypes(); ++column)
    if (FieldTypeName(FieldType(column)) == fieldType) return FirstComponent(column);
  return -1;
}

int inpS_DistributionTable::TotalNumComponents() const {
  return FirstComponent(NumFieldTypes());
}

cow_List<cow_String> inpS_DistributionTable::GetAllComponents() const {
  cow_List<cow_String> components;
  for (int column = 0; column < NumFieldTypes(); ++column) {
    const cow_String name = ColumnName(column);
    const int count = Components(FieldType(column));
    for (int n = 1; n <= count; ++n)
      components.push_back(count == 1 ? name : name + "_" + std::to_string(n));
  }
  return components;
}
