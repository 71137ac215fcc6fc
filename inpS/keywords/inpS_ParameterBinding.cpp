#include "inpS/keywords/inpS_ParameterBinding.h"
#include "database/KvoSimDataRecord.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

cow_List<cow_String> wordsOf(const inpS_ParameterRow& row) {
  cow_List<cow_String> words(1);
  for (const char* p = row.words; *p; ++p)
    if (*p == '|')
      words.emplace_back();
    else
      words.back() += *p;
  return words;
}

// What is wrong with the value; empty when it has been taken.
cow_String take(const inpS_ParameterRow& row, const inp_Item& item, KvoSimDataRecord& record) {
  if (row.codec == inpS_Codec::Flag) {
    const cow_String& word = item.AsString();
    if (!item.IsFlag() && word != "YES" && word != "ON" && word != "NO" && word != "OFF")
      return "is neither YES nor NO";
    if (word != "NO" && word != "OFF") record.SetBool(row.field, true);
    return {};
  }
  if (item.IsFlag()) return "has no value";
  switch (row.codec) {
  case inpS_Codec::Flag:
    break;
  case inpS_Codec::Real:
    if (!item.IsNumber()) return "is no number";
    record.SetDouble(row.field, item.AsDouble());
    break;
  case inpS_Codec::Word:
  case inpS_Codec::Choice: {
    const int place = inpS_wordPlace(row, item.AsString());
    if (place < 0) return "is none of " + inpS_wordList(row);
    if (row.codec == inpS_Codec::Word)
      record.SetSymb(row.field, place);
    else
      record.SetString(row.field, inpS_wordAt(row, place));
    break;
  }
  case inpS_Codec::Name:
    record.SetString(row.field, item.AsString());
    break;
  }
  return {};
}

} // namespace

bool inpS_readParameters(const inp_Keyword& keyword, std::span<const inpS_ParameterRow> rows,
                         KvoSimDataRecord record, inp_Visitor& messages) {
  bool good = true;
  for (const inpS_ParameterRow& row : rows) {
    const inp_Item* item = keyword.Find(row.name);
    if (!item) continue;
    const cow_String fault = take(row, *item, record);
    if (fault.empty()) continue;
    good = false;
    const cow_String value = item->IsFlag() ? cow_String() : "=" + item->Verbatim();
    messages.AddError(
        inp_Utils::MessageAtParameter(keyword, row.name, row.deckName + value + " " + fault + "."));
  }
  return good;
}

int inpS_wordPlace(const inpS_ParameterRow& row, const cow_String& word) {
  if (word.empty()) return -1;
  int place = 0;
  for (const cow_String& known : wordsOf(row)) {
    if (inp_Utils::Fold(known) == word) return place;
    ++place;
  }
  return -1;
}

cow_String inpS_wordAt(const inpS_ParameterRow& row, int place) {
  const cow_List<cow_String> words = wordsOf(row);
  return place < static_cast<int>(words.size()) ? words[static_cast<std::size_t>(place)]
                                                : cow_String();
}

cow_String inpS_wordList(const inpS_ParameterRow& row) {
  cow_String text;
  for (const cow_String& word : wordsOf(row))
    if (!word.empty()) text += (text.empty() ? "" : ", ") + word;
  return text;
}
