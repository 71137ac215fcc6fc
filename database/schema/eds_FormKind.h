#pragma once

#include "database/eds_Type.h"

// The record kinds of forms by name, for the few units that treat one of them specially. They stand
// apart from eds_RecordKind so that a new one does not compile everything anew.
namespace eds_FormKind {
#define EDS_KIND(kind, number) inline constexpr auto kind = static_cast<eds_RecordKind>(number);
#include "database/schema/kinds.def"
} // namespace eds_FormKind
