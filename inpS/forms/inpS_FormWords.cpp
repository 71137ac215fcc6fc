#include "inpS/forms/inpS_FormWords.h"
#include "base/utl_Stream.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

constexpr std::string_view kSeparator = ", ";

cow_String joined(const cow_List<cow_String>& words) {
  cow_String text;
  for (const cow_String& word : words) text += (text.empty() ? "" : cow_String(kSeparator)) + word;
  return text;
}

} // namespace

cow_String inpS_readWords(const inp_Keyword& keyword, const eds_FormItem& item,
                          inp_Visitor& messages) {
  const cow_List<cow_String>& list = item.alternatives.front().words;
  const inp_DataArray& data = keyword.Data();
  cow_List<cow_String> words;
  bool isSound = true;
  for (long long row = 0; row < data.Rows(); ++row) {
    for (int col = 0; col < data.Cols(row); ++col) {
      if (!data.HasValue(row, col)) continue;
      const cow_String bare = inpS_bareWord(inp_Utils::Fold(data.AsStringVerbatim(row, col)));
      const auto known = std::ranges::find_if(
          list, [&](const cow_String& word) { return inpS_bareWord(word) == bare; });
      if (known != list.end()) {
        words.push_back(*known);
        continue;
      }
      isSound = false;
      messages.AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                                    "\"" + data.AsStringVerbatim(row, col) +
                                                        "\" is none of " + joined(list) +
                                                        ". The keyword is kept as text."));
    }
  }
  if (words.empty() && isSound)
    messages.AddWarning(inp_Utils::MessageInKeyword(
        keyword, "*" + keyword.Name() + " has no data lines; it is kept as text."));
  return isSound ? joined(words) : cow_String();
}

cow_String inpS_textOfLack(const eds_FormItem& item, int col) {
  const auto digits = item.name.find_last_not_of("0123456789") + 1;
  const std::string_view word = std::string_view(item.name).substr(0, digits);
  if (digits < item.name.size() && (word == "v" || word == "value_"))
    return "The line has no value in its place " + std::to_string(col + 1) + ".";
  return "The line does not tell its " + item.name + ".";
}

cow_List<cow_String> inpS_splitWords(std::string_view words) {
  cow_List<cow_String> list;
  while (!words.empty()) {
    const std::size_t end = std::min(words.find(kSeparator), words.size());
    list.emplace_back(words.substr(0, end));
    words.remove_prefix(std::min(end + kSeparator.size(), words.size()));
  }
  return list;
}

void inpS_printWords(utl_Stream& out, std::string_view words) {
  constexpr std::size_t perLine = 8;
  const cow_List<cow_String> list = inpS_splitWords(words);
  for (std::size_t n = 0; n < list.size(); ++n) {
    out << list[n];
    const bool isLast = n + 1 == list.size();
    out << (isLast ? "\n" : n % perLine == perLine - 1 ? ",\n" : ", ");
  }
}
