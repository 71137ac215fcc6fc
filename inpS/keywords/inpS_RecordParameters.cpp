#include "inpS/keywords/inpS_RecordParameters.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "database/eds_ModelReader.h"
#include "inpS/keywords/inpS_QuotedName.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

struct Vocabulary {
  std::string_view column;
  std::initializer_list<std::string_view> words;
};

#define INPS_WORDS(column, ...) {#column, {__VA_ARGS__}},
const Vocabulary vocabularies[] = {
#include "inpS/keywords/inpS_words.def"
};

bool readWord(const inpS_ParameterBinding& binding, const inp_Item& item, cow_String& value) {
  value = item.AsString();
  if (binding.words.empty()) return true;
  const cow_String bare = inpS_bareWord(value);
  const auto word = std::ranges::find_if(
      binding.words, [&](std::string_view known) { return inpS_bareWord(known) == bare; });
  if (word == binding.words.end()) return false;
  value = *word;
  return true;
}

bool readFlag(const inp_Item& item, bool& value) {
  const cow_String& word = item.AsString();
  value = item.IsFlag() || word == "YES" || word == "ON";
  return value || word == "NO" || word == "OFF";
}

bool readValue(const inpS_ParameterBinding& binding, const inp_Item& item,
               KvoSimDataRecord& record) {
  cow_String text;
  bool flag = false;
  switch (binding.type) {
  case eds_FieldType::Int:
    if (item.GetKind() != inp_Item::Kind::Integer) return false;
    record.SetInt(binding.field, item.AsInt());
    return true;
  case eds_FieldType::Real:
    if (!item.IsNumber()) return false;
    record.SetDouble(binding.field, item.AsDouble());
    return true;
  case eds_FieldType::Bool:
    if (!readFlag(item, flag)) return false;
    record.SetBool(binding.field, flag);
    return true;
  case eds_FieldType::Symbol: {
    if (!readWord(binding, item, text)) return false;
    const auto word = std::ranges::find(binding.words, std::string_view(text));
    record.SetSymb(binding.field, static_cast<int>(word - binding.words.begin()));
    return true;
  }
  default:
    if (!readWord(binding, item, text)) return false;
    record.SetString(binding.field, text);
    return true;
  }
}

} // namespace

cow_String inpS_bareWord(std::string_view text) {
  cow_String bare;
  for (const char c : text)
    if (c != ' ' && c != '_') bare += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return bare;
}

int inpS_flagField(eds_RecordKind kind, inp_KeywordEnm suboption) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(suboption);
  const eds_RecordInfo* info = eds_ModelReader::Info(kind);
  if (!row || !info) return -1;
  const cow_String name = inpS_bareWord(row->name);
  for (std::size_t n = 0; n < info->fields.size(); ++n)
    if (info->fields[n].type == eds_FieldType::Bool &&
        inpS_bareWord(info->fields[n].column) == name)
      return static_cast<int>(n);
  return -1;
}

inpS_ParameterBindings inpS_bindParameters(inp_KeywordEnm keyword, eds_RecordKind kind) {
  inpS_ParameterBindings bindings;
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword);
  const eds_RecordInfo* info = eds_ModelReader::Info(kind);
  if (!row || !info) return bindings;
  for (std::size_t n = 0; n < info->fields.size(); ++n) {
    const eds_FieldInfo& field = info->fields[n];
    inpS_ParameterBinding binding{static_cast<int>(n), field.type, {}, {}, {}};
    for (const char c : field.column) {
      if (c != '_') binding.key += c;
      binding.name += c == '_' ? ' ' : static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    }
    if (std::ranges::find(row->parameters, std::string_view(binding.key)) == row->parameters.end())
      continue;
    for (const Vocabulary& vocabulary : vocabularies)
      if (vocabulary.column == field.column)
        binding.words.assign(vocabulary.words.begin(), vocabulary.words.end());
    bindings.push_back(std::move(binding));
  }
  return bindings;
}

void inpS_readParameters(const inp_Keyword& keyword, const inpS_ParameterBindings& bindings,
                         KvoSimDataRecord record, inp_Visitor& messages) {
  if (keyword.Parameters().empty()) return;
  for (const inpS_ParameterBinding& binding : bindings) {
    const inp_Item* item = keyword.Find(binding.key);
    if (!item || readValue(binding, *item, record)) continue;
    messages.AddError(inp_Utils::MessageAtParameter(
        keyword, binding.key,
        inpS_messageText(inpS_app_InvalidParameterValue, {binding.name}) + " It is left out."));
  }
}

void inpS_printParameters(utl_Stream& out, const inpS_ParameterBindings& bindings,
                          const KvoSimDataRecord& record) {
  for (const inpS_ParameterBinding& binding : bindings) {
    if (record.IsMemberNull(binding.field)) continue;
    out << ", " << binding.name;
    switch (binding.type) {
    case eds_FieldType::Int:
      out << '=' << record.GetInt64(binding.field);
      break;
    case eds_FieldType::Real:
      out << '=' << record.GetDouble(binding.field);
      break;
    case eds_FieldType::Bool:
      if (!record.GetBool(binding.field)) out << "=NO";
      break;
    case eds_FieldType::Symbol:
      out << '=' << binding.words[static_cast<std::size_t>(record.GetSymb(binding.field))];
      break;
    default:
      // Empty: given as a bare name.
      if (record.GetString(binding.field).empty()) break;
      out << '=';
      if (binding.words.empty())
        out << inpS_quoted(record.ReturnString(binding.field));
      else
        out << record.GetString(binding.field);
    }
  }
}
