#pragma once

#include "base/cow_Value.h"

class KvoSimPosition;

// For who finds a model's content at odds with itself: throws eds_DamagedFileException with the
// name of the object's file.
[[noreturn]] void eds_tellDamaged(const KvoSimPosition& object, const cow_String& what);
