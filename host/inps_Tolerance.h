#pragma once

#include "base/cow_Value.h"
#include <algorithm>
#include <cmath>

// How far two real numbers may be apart and still count as the same.
struct inps_Tolerance {
  double absolute = 0;
  double relative = 0; // of the larger one

  // Without one numbers are compared bit by bit.
  bool IsGiven() const { return absolute > 0 || relative > 0; }
  bool Allows(double a, double b) const {
    return a == b ||
           std::abs(a - b) <= std::max(absolute, relative * std::max(std::abs(a), std::abs(b)));
  }
};

// "1e-9" or "1e-12,1e-6". A usage fault in words, empty when all is well.
cow_String inps_readTolerance(const cow_String& text, inps_Tolerance& tolerance);
