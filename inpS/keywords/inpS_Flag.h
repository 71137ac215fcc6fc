#pragma once

#include <optional>
#include <string_view>

class inp_Item;
class inp_Keyword;
class inp_Visitor;

// YES, ON, NO and OFF in upper case, each as short as it fits one only; nothing for another word.
std::optional<bool> inpS_yesOrNo(std::string_view word);
// Of a parameter, which says yes by being there; nothing for a value that is no such word.
std::optional<bool> inpS_flagValue(const inp_Item& item);
// Whether the parameter is given and says yes; a value that is no such word says nothing, as in the
// record. To ask is not to read: the parameter stays as unread as it was.
bool inpS_saysYes(const inp_Keyword& keyword, std::string_view name);

// Whether a parameter that says yes by being there is given and not taken back by NO or OFF. A
// value that is none of these words is told and counts as yes. Kept: such a parameter stays unread,
// for whoever keeps what is left.
enum class inpS_OddFlag : bool { Dropped, Kept };
bool inpS_readFlag(const inp_Keyword& keyword, std::string_view name, inp_Visitor& messages,
                   inpS_OddFlag odd = inpS_OddFlag::Dropped);
