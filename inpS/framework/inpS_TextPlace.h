#pragma once

#include "base/cow_Value.h"
#include "database/KvoSimPosition.h"

// Where a keyword that is kept as text belongs.
struct inpS_TextPlace {
  KvoSimPosition owner;  // null: what its scope belongs to
  KvoSimPosition behind; // of what the owner holds; the owner itself: before all; null: behind all
  // Why it is kept: "has no data lines"; or that is told, and nobody needs to say it again. With
  // neither the first keyword of its name speaks for all.
  cow_String reason{};
  bool isTold = false;
  cow_String text{}; // what is kept, where that is not the whole keyword
};
