#include "inpS/writer/inpS_PrintPrimitives.h"
#include "base/utl_Number.h"
#include "base/utl_Stream.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSrvFsmFTable.h"
#include <algorithm>

namespace {

constexpr int kLabelsPerLine = 16;

} // namespace

void inpS_printArray(utl_Stream& out, const double* values, int n) {
  for (int i = 0; i < n; ++i) {
    if (i > 0) out << ", ";
    out << values[i];
  }
}

void inpS_printVector(utl_Stream& out, const cow_List<double>& vector) {
  inpS_printArray(out, vector.data(), static_cast<int>(vector.size()));
}

void inpS_printSet(utl_Stream& out, long long n, const int* labels) {
  constexpr std::size_t kLineRoom = kLabelsPerLine * (utl_intTextRoom + 2) + 1;
  for (long long first = 0; first < n; first += kLabelsPerLine) {
    const long long last = std::min<long long>(n, first + kLabelsPerLine);
    char* p = out.Reserve(kLineRoom);
    for (long long i = first; i < last; ++i) {
      if (i > first) {
        *p++ = ',';
        *p++ = ' ';
      }
      p = utl_printInt(p, labels[i]);
    }
    *p++ = '\n';
    out.Commit(p);
  }
}

void inpS_printInpParamValueString(utl_Stream& out, const cow_String& value) {
  if (!value.empty()) out << '"' << value << '"';
}

void inpS_printComponentsOnDataline(cow_String& line, const KvoSimPosition& componentSet) {
  const KvoSimCSet set(KvoSimCSetID(componentSet.Store(), componentSet.ID()));
  for (long long n = 0; n < set.Size(); ++n) {
    if (!line.empty()) line += ", ";
    line += std::to_string(set.Set()[n] + 1);
  }
}

void inpS_printFTable(utl_Stream& out, const inpS_FTableOptions& options,
                      const KvoSrvFsmFTable& table) {
  const cow_List<double> values = table.Values();
  const int columns = table.NumOfCols();
  for (long long row = 0; row < table.NumOfRows(); ++row) {
    const double* at = values.data() + row * columns;
    for (int first = 0; first < columns; first += options.valuesPerLine) {
      const int n = std::min(columns - first, options.valuesPerLine);
      inpS_printArray(out, at + first, n);
      if (first + n < columns) out << ',';
      out << '\n';
    }
  }
}
