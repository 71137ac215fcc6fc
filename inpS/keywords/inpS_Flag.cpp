#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

std::optional<bool> inpS_yesOrNo(std::string_view word) {
  const auto begins = [word](std::string_view whole, std::size_t least) {
    return word.size() >= least && whole.starts_with(word);
  };
  if (begins("YES", 1) || word == "ON") return true;
  if (begins("NO", 1) || begins("OFF", 2)) return false;
  return std::nullopt;
}

std::optional<bool> inpS_flagValue(const inp_Item& item) {
  if (item.IsFlag() || item.AsString().empty()) return true;
  return inpS_yesOrNo(item.AsString());
}

bool inpS_saysYes(const inp_Keyword& keyword, std::string_view name) {
  const auto& all = keyword.Parameters();
  const auto found = std::ranges::find(all, name, &inp_Parameter::name);
  return found != all.end() && inpS_flagValue(found->value).value_or(false);
}

bool inpS_readFlag(const inp_Keyword& keyword, std::string_view name, inp_Visitor& messages,
                   inpS_OddFlag odd) {
  const inp_Item* item = keyword.Find(name);
  if (!item) return false;
  if (const auto value = inpS_flagValue(*item)) return *value;
  const bool isKept = odd == inpS_OddFlag::Kept;
  if (!isKept || keyword.LeaveUnread(name))
    messages.AddWarning(inp_Utils::MessageAtParameter(
        keyword, name,
        "Parameter \"" + cow_String(name) + "\" takes no value but YES or NO; \"" +
            inp_Utils::RemoveQuotes(item->Verbatim()) +
            (isKept ? "\" counts as YES." : "\" is not used.")));
  return true;
}
