#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

bool inpS_readFlag(const inp_Keyword& keyword, std::string_view name, inp_Visitor& messages) {
  const inp_Item* item = keyword.Find(name);
  if (!item) return false;
  const cow_String& word = item->AsString();
  if (item->IsFlag() || word.empty() || word == "YES" || word == "ON") return true;
  if (word == "NO" || word == "OFF") return false;
  messages.AddWarning(inp_Utils::MessageAtParameter(
      keyword, name,
      "Parameter \"" + cow_String(name) + "\" takes no value but YES or NO; \"" +
          inp_Utils::RemoveQuotes(item->Verbatim()) + "\" is not used."));
  return true;
}
