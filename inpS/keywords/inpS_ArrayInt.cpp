#include "inpS/keywords/inpS_ArrayInt.h"
#include "database/KvoSimCSet.h"

inpS_ArrayInt::inpS_ArrayInt(int size, int fill) {
  utl_ASSERT(size >= 0);
  m_values.assign(static_cast<std::size_t>(size), fill);
}

inpS_ArrayInt::inpS_ArrayInt(const int* values, int count) {
  utl_ASSERT(count >= 0);
  m_values.assign(values, values + count);
}

inpS_ArrayInt::inpS_ArrayInt(const KvoSimCSet& set, int count) {
  utl_ASSERT(count >= 0 && count <= set.Size());
  m_values.resize(static_cast<std::size_t>(count));
  set.Set().Copy(0, m_values);
}

void inpS_ArrayInt::Resize(int size) {
  utl_ASSERT(size >= 0);
  m_values.resize(static_cast<std::size_t>(size), 0);
}
