#pragma once

#include <cstddef>

// A label that an element has already, among those of a piece.
struct inpS_KnownElement {
  std::size_t at; // its place
  int ordinal;    // of that element; -1: it is not this owner's own and stays what it is
};
