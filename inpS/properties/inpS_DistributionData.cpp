#include "inpS/properties/inpS_DistributionData.h"
#include "base/utl_Assert.h"
#include "inpS/properties/inpS_DistributionValues.h"
#include <algorithm>
#include <cmath>

inpS_DistributionData inpS_DistributionData::Of(const KvoSimPosition& distribution,
                                                const eds_MemberSet& members) {
  inpS_DistributionValues source(distribution);
  const auto width = static_cast<std::size_t>(source.Width());
  const auto count = static_cast<std::size_t>(members.Size());
  cow_List<double> rows(count * width);
  source.Read(members, rows);
  inpS_DistributionData data(source.Table());
  for (int column = 0; column < data.m_table.NumFieldTypes(); ++column) {
    const auto first = static_cast<std::ptrdiff_t>(data.m_table.FirstComponent(column));
    const int components = inpS_DistributionTable::Components(data.m_table.FieldType(column));
    cow_List<double> field;
    field.reserve(count * static_cast<std::size_t>(components));
    for (std::size_t n = 0; n < count; ++n) {
      const auto row = rows.begin() + static_cast<std::ptrdiff_t>(n * width) + first;
      field.insert(field.end(), row, row + components);
    }
    data.Add(std::move(field));
  }
  return data;
}

long long inpS_DistributionData::Count() const {
  if (m_fields.empty()) return 0;
  const auto components =
      static_cast<std::size_t>(inpS_DistributionTable::Components(m_table.FieldType(0)));
  return static_cast<long long>(m_fields.front().size() / components);
}

void inpS_DistributionData::Add(cow_List<double> field) {
  if (m_fields.size() >= static_cast<std::size_t>(m_table.NumFieldTypes()))
    utl_assertionFailed("index < m_fields.Size()");
  m_fields.push_back(std::move(field));
}

void inpS_DistributionData::SetDefaults(const cow_List<double>& components) {
  utl_ASSERT(components.size() == static_cast<std::size_t>(m_table.TotalNumComponents()));
  m_defaults = components;
}

void inpS_DistributionData::Values(int field, double* buffer, std::size_t bufferLength) const {
  if (field < 0 || static_cast<std::size_t>(field) >= m_fields.size())
    utl_assertionFailed("index < m_fields.Size()");
  const cow_List<double>& values = m_fields[static_cast<std::size_t>(field)];
  const std::size_t size = values.size() * sizeof(double);
  if (size != bufferLength * sizeof(double))
    utl_assertionFailed("size == bufferLength*sizeof(double)");
  std::ranges::copy(values, buffer);
  if (m_defaults.empty()) return;
  const auto first = static_cast<std::size_t>(m_table.FirstComponent(field));
  const auto components =
      static_cast<std::size_t>(inpS_DistributionTable::Components(m_table.FieldType(field)));
  for (std::size_t n = 0; n < bufferLength; ++n)
    if (std::isnan(buffer[n])) buffer[n] = m_defaults[first + n % components];
}
