#include "base/utl_Assert.h"

utl_Assertion::utl_Assertion(const char* condition, utl_SourcePlace where)
    : std::logic_error(condition), m_where(where) {}

void utl_assertionFailed(const char* condition, utl_SourcePlace where) {
  throw utl_Assertion(condition, where);
}
