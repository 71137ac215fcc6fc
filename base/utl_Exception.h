#pragma once

#include "base/cow_Value.h"
#include <stdexcept>

// The suite's exception with a text for people: the operation under way cannot go on.
class utl_Exception : public std::runtime_error {
public:
  explicit utl_Exception(const cow_String& text) : std::runtime_error(text) {}
  cow_String Text() const { return what(); }
};
