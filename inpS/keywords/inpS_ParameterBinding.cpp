#include "inpS/keywords/inpS_ParameterBinding.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_QuotedName.h"
#include "inpS/keywords/inpS_TinyNumber.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_KeywordReader.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

// What is wrong with the value; empty when it has been taken.
cow_String takeFlag(const inpS_ParameterBinding& row, const inp_Item& item,
                    KvoSimDataRecord& record) {
  const std::optional<bool> value = inpS_flagValue(item);
  if (!value) return "is none of YES, NO, ON, OFF";
  record.SetBool(row.field, *value);
  return {};
}

// What neither word of a yes or no says is left open; any other word that is none of the language's
// may be what all the rest depends on.
bool saysYesOrNo(const inpS_ParameterBinding& row) {
  const bool hasWords = row.words.size() == 2 && row.words[0] == "YES" && row.words[1] == "NO";
  return row.codec == inpS_Codec::Flag || (row.codec == inpS_Codec::Choice && hasWords);
}

// What has a name is found by it alone, and a file is opened by it: those are kept as they are.
bool isNameItself(const inpS_ParameterBinding& row) {
  return row.key == "name" || inp_KeywordReader::NamesFile(row.key);
}

constexpr std::string_view anyOther = "..."; // behind the words of a list that is open

bool isOpen(const inpS_ParameterBinding& row) {
  return !row.words.empty() && row.words.back() == anyOther;
}

cow_String takeWord(const inpS_ParameterBinding& row, const inp_Item& item,
                    KvoSimDataRecord& record) {
  int place = inpS_wordPlace(row, item.AsString()); // of a bare name -1
  if (saysYesOrNo(row))
    if (const auto yes = inpS_flagValue(item)) place = *yes ? 0 : 1; // bare, it says yes
  if (place < 0 && isOpen(row)) {
    record.SetString(row.field, inpS_textOf(item.Verbatim()));
    return {};
  }
  if (place < 0) return "is none of " + inpS_wordList(row);
  if (row.codec == inpS_Codec::Word)
    record.SetSymb(row.field, place);
  else
    record.SetString(row.field, row.words[static_cast<std::size_t>(place)]);
  return {};
}

cow_String take(const inpS_ParameterBinding& row, const inp_Item& item, KvoSimDataRecord& record) {
  if (row.codec == inpS_Codec::Flag) return takeFlag(row, item, record);
  const bool needsValue = row.codec != inpS_Codec::Name && !saysYesOrNo(row) && !isOpen(row);
  if (item.IsFlag() && needsValue) return "has no value";
  switch (row.codec) {
  case inpS_Codec::Int:
    if (!item.IsInteger()) return "is no integer";
    record.SetInt(row.field, item.AsInt());
    return {};
  case inpS_Codec::Real:
    if (!item.IsNumber()) return "is no number";
    record.SetDouble(row.field, item.AsDouble());
    return {};
  case inpS_Codec::Name:
    record.SetString(row.field, isNameItself(row) ? item.AsString() : inpS_textOf(item.Verbatim()));
    return {};
  default:
    return takeWord(row, item, record);
  }
}

void print(utl_Stream& out, const inpS_ParameterBinding& row, const KvoSimDataRecord& record) {
  switch (row.codec) {
  case inpS_Codec::Flag:
    out << ", " << row.name << (record.GetBool(row.field) ? "" : "=NO");
    break;
  case inpS_Codec::Int:
    out << ", " << row.name << '=' << record.GetInt64(row.field);
    break;
  case inpS_Codec::Real:
    out << ", " << row.name << '=' << record.GetDouble(row.field);
    break;
  case inpS_Codec::Word: {
    const auto place = static_cast<std::size_t>(record.GetSymb(row.field));
    if (place < row.words.size() && !row.words[place].empty())
      out << ", " << row.name << '=' << row.words[place];
    break;
  }
  case inpS_Codec::Choice: { // a word of ours has no comma; a stranger's must give no parameter
    const cow_String word = record.ReturnString(row.field);
    const bool isListed = std::ranges::find(row.words, std::string_view(word)) != row.words.end();
    const bool isPlain = word.find(',') == word.npos && (isListed || !isOpen(row));
    out << ", " << row.name;
    if (!word.empty() || !isOpen(row)) out << '=' << (isPlain ? word : inpS_textInDeck(word));
    break;
  }
  case inpS_Codec::Name:
    out << ", " << row.name;
    if (const cow_String text = record.ReturnString(row.field); !text.empty())
      out << '=' << (isNameItself(row) ? inpS_quoted(text) : inpS_textInDeck(text));
    break;
  case inpS_Codec::Item:
    break;
  }
}

} // namespace

bool inpS_readParameters(const inp_Keyword& keyword, std::span<const inpS_ParameterBinding> rows,
                         KvoSimDataRecord record, inp_Visitor& messages) {
  if (keyword.Parameters().empty()) return true;
  bool good = true;
  for (const inpS_ParameterBinding& row : rows) {
    if (row.codec == inpS_Codec::Item) continue;
    const inp_Item* item = keyword.Find(row.key);
    if (!item) continue;
    const cow_String fault = take(row, *item, record);
    if (fault.empty()) {
      if (row.codec == inpS_Codec::Real)
        if (auto tiny = inpS_tinyNumberMessage(keyword, row.key))
          messages.AddWarning(std::move(*tiny));
      continue;
    }
    good = false;
    const cow_String value = item->IsFlag() ? cow_String() : "=" + item->Verbatim();
    const bool isDoubted = keyword.IsDoubted(row.key);
    if (!keyword.LeaveUnread(row.key) && !isDoubted) continue;
    wip_Message message = inp_Utils::MessageAtParameter(
        keyword, row.key,
        isDoubted ? "It is kept as it stands."
                  : row.name + value + " " + fault + "; it is kept as it stands.");
    const bool isWord = row.codec == inpS_Codec::Word || row.codec == inpS_Codec::Choice;
    if ((isWord || saysYesOrNo(row)) && !item->IsFlag())
      messages.AddWarning(std::move(message));
    else
      messages.AddError(std::move(message));
  }
  return good;
}

cow_List<cow_String> inpS_unknownWords(const inp_Keyword& keyword) {
  using Kind = inp_WordMatch::Kind;
  const inp_KeywordTable& table = inp_KeywordTable::Instance();
  cow_List<cow_String> unknown;
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    if (!parameter.told || parameter.value.IsFlag()) continue;
    const Kind kind =
        table.ResolveWord(keyword.Kind(), parameter.name, parameter.value.AsString()).kind;
    if (kind == Kind::Unknown || kind == Kind::Ambiguous) unknown.push_back(parameter.name);
  }
  return unknown;
}

bool inpS_hasUnknownWord(const inp_Keyword& keyword) {
  return !inpS_unknownWords(keyword).empty();
}

void inpS_printParameters(utl_Stream& out, std::span<const inpS_ParameterBinding> rows,
                          const KvoSimDataRecord& record) {
  for (const inpS_ParameterBinding& row : rows)
    if (!row.readOnly && (row.always || !record.IsMemberNull(row.field))) print(out, row, record);
}

int inpS_wordPlace(const inpS_ParameterBinding& row, const cow_String& word) {
  const cow_String bare = inpS_bareWord(word);
  if (bare.empty()) return -1;
  int begins = -1;
  for (std::size_t place = 0; place < row.words.size(); ++place) {
    const cow_String known = inpS_bareWord(row.words[place]);
    if (row.words[place] == anyOther) return -1; // no word of such a list is shortened
    if (known == bare) return static_cast<int>(place);
    if (known.starts_with(bare)) begins = begins == -1 ? static_cast<int>(place) : -2;
  }
  return std::max(begins, -1);
}

cow_String inpS_wordList(const inpS_ParameterBinding& row) {
  cow_String text;
  for (const std::string_view word : row.words)
    if (!word.empty()) text += (text.empty() ? "" : ", ") + cow_String(word);
  return text;
}

cow_String inpS_bareWord(std::string_view text) {
  return inp_KeywordTable::BareWord(text);
}
