#include "inpS/keywords/inpS_ArrayDouble.h"

inpS_ArrayDouble::inpS_ArrayDouble(int size, double fill) {
  utl_ASSERT(size >= 0);
  m_values.assign(static_cast<std::size_t>(size), fill);
}

inpS_ArrayDouble::inpS_ArrayDouble(const double* values, int count) {
  utl_ASSERT(count >= 0);
  m_values.assign(values, values + count);
}

inpS_ArrayDouble inpS_ArrayDouble::Slice(int first, int count) const {
  utl_ASSERT(first >= 0 && count >= 0 && first <= Size() - count);
  return {m_values.data() + first, count};
}
