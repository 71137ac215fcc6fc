#pragma once

#include "base/wip_Message.h"
#include <optional>
#include <span>
#include <string_view>

class inp_Keyword;
class inp_Visitor;

// A warning when the number of a field is so near to zero that the model holds it with fewer digits
// or as 0 (1e-400). For the roads that read field by field.
std::optional<wip_Message> inpS_tinyNumberMessage(const inp_Keyword& keyword, long long row,
                                                  int col);

// The same of a parameter's value, where it is read as a number.
std::optional<wip_Message> inpS_tinyNumberMessage(const inp_Keyword& keyword,
                                                  std::string_view parameter);

// The same of every field that is read: so many of each of the first lines. For keywords that are
// read with inpS_KeywordDataReader, some of them by several phases, of which one tells.
void inpS_reportTinyNumbers(const inp_Keyword& keyword, std::span<const int> fieldsOfLines,
                            inp_Visitor& messages);
