#include "inpS/properties/inpS_DistributionValues.h"
#include "database/eds_DamagedModel.h"
#include "database/schema/eds_Form.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/properties/inpS_Distribution.h"
#include <algorithm>
#include <cstring>
#include <limits>

inpS_DistributionValues::inpS_DistributionValues(const KvoSimPosition& distribution)
    : m_table(inpS_DistributionTable::Of(distribution)), m_width(m_table.TotalNumComponents()),
      m_isByNode(distribution.IsA(eds_FormKind::DistributionByNode)) {
  const KvoSimDataRecord record = distribution.DataRecord();
  const eds_FormInfo& form = *eds_formOf(distribution.Object().RecordKind());
  if (!record.IsMemberNull(form.defaultsField)) {
    const std::string_view bytes = record.GetString(form.defaultsField);
    m_defaults.resize(static_cast<std::size_t>(m_width));
    if (bytes.size() != m_defaults.size() * sizeof(double))
      eds_tellDamaged(distribution, "the default line does not fit its table");
    std::memcpy(m_defaults.data(), bytes.data(), bytes.size());
  }
  const inpS_Distribution stored = inpS_Distribution::Of(distribution);
  if (stored.IsNull() || stored.Over().IsNull()) return;
  m_members = stored.Over().Set();
  m_reader.emplace(stored.Get().DrawerArray(stored.Get().DrawerIDArray().front()));
  if (m_reader->Width() != m_width || m_reader->Count() != m_members.Size())
    eds_tellDamaged(distribution, "the values do not fit its table or its members");
  if (m_members.IsAscending()) return;
  m_items.resize(static_cast<std::size_t>(m_members.Size()));
  for (std::size_t n = 0; n < m_items.size(); ++n)
    m_items[n] = {m_members[static_cast<int64_t>(n)], static_cast<int32_t>(n)};
  std::ranges::sort(m_items);
}

// Where the member or the next one stands among the set's; it is ascending.
static int64_t lowerBound(const eds_MemberSet& members, long long member) {
  int64_t low = 0;
  int64_t high = members.Size();
  while (low < high) {
    const int64_t middle = low + (high - low) / 2;
    if (members[middle] < member)
      low = middle + 1;
    else
      high = middle;
  }
  return low;
}

void inpS_DistributionValues::Fill(long long first, std::span<double> values, std::span<char> has) {
  constexpr int64_t mostItems = 4096;
  const auto width = static_cast<std::size_t>(m_width);
  const auto place = [&](int64_t member, const double* item) {
    const auto n = static_cast<std::size_t>(member - first);
    std::copy_n(item, width, values.data() + n * width);
    has[n] = 1;
  };
  const long long end = first + static_cast<long long>(has.size());
  m_block.resize(static_cast<std::size_t>(mostItems) * width);
  if (!m_items.empty()) {
    auto at = std::ranges::lower_bound(m_items, std::pair<int32_t, int32_t>(first, 0));
    for (; at != m_items.end() && at->first < end; ++at) {
      m_reader->ReadPiece(at->second, std::span(m_block).first(width));
      place(at->first, m_block.data());
    }
    return;
  }
  const int64_t last = lowerBound(m_members, end);
  for (int64_t item = lowerBound(m_members, first); item < last; item += mostItems) {
    const int64_t count = std::min(mostItems, last - item);
    m_reader->ReadPiece(item, std::span(m_block).first(static_cast<std::size_t>(count) * width));
    for (int64_t n = 0; n < count; ++n)
      place(m_members[item + n], m_block.data() + static_cast<std::size_t>(n) * width);
  }
}

long long inpS_DistributionValues::Read(long long first, std::span<double> values) {
  const auto width = static_cast<std::size_t>(m_width);
  m_has.assign(values.size() / width, 0);
  if (m_reader) Fill(first, values, m_has);
  long long lacking = 0;
  for (std::size_t n = 0; n < m_has.size(); ++n) {
    if (m_has[n] != 0) continue;
    const std::span<double> row = values.subspan(n * width, width);
    if (m_defaults.empty())
      std::ranges::fill(row, std::numeric_limits<double>::quiet_NaN());
    else
      std::ranges::copy(m_defaults, row.begin());
    lacking += m_defaults.empty() ? 1 : 0;
  }
  return lacking;
}

// By runs of members that follow each other.
long long inpS_DistributionValues::Read(const eds_MemberSet& members, std::span<double> values) {
  const auto width = static_cast<std::size_t>(m_width);
  long long lacking = 0;
  for (int64_t begin = 0; begin < members.Size();) {
    int64_t end = begin + 1;
    if (members.IsStrided() && members.Stride() == 1) end = members.Size();
    while (end < members.Size() && members[end] == members[end - 1] + 1) ++end;
    lacking += Read(members[begin], values.subspan(static_cast<std::size_t>(begin) * width,
                                                   static_cast<std::size_t>(end - begin) * width));
    begin = end;
  }
  return lacking;
}
