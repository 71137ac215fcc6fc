#pragma once

#include "base/wip_Message.h"
#include <optional>

class inp_Keyword;

// A warning when the number of a field is so near to zero that the model holds it with fewer digits
// or as 0 (1e-400). For the roads that read field by field.
std::optional<wip_Message> inpS_tinyNumberMessage(const inp_Keyword& keyword, long long row,
                                                  int col);
