#include "inpS/keywords/inpS_RecordParameters.h"
#include "database/eds_ModelReader.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

inpS_Codec codecOf(eds_FieldType type, bool hasWords) {
  switch (type) {
  case eds_FieldType::Int:
    return inpS_Codec::Int;
  case eds_FieldType::Real:
    return inpS_Codec::Real;
  case eds_FieldType::Bool:
    return inpS_Codec::Flag;
  case eds_FieldType::Symbol:
    return inpS_Codec::Word;
  default:
    return hasWords ? inpS_Codec::Choice : inpS_Codec::Name;
  }
}

} // namespace

inpS_ParameterBinding inpS_bindParameter(inp_KeywordEnm keyword, const eds_FieldInfo& field,
                                         int number) {
  inpS_ParameterBinding binding;
  binding.field = number;
  for (const char c : field.column) {
    if (c != '_') binding.key += c;
    binding.name += c == '_' ? ' ' : static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  }
  // Begin and end of what is read from a file: decks have these in one word.
  for (const char* one : {"B STEP", "B INC", "E STEP", "E INC"})
    if (binding.name == one) binding.name.erase(1, 1);
  const auto words = inp_KeywordTable::Instance().WordsOf(keyword, binding.key);
  binding.words.assign(words.begin(), words.end());
  binding.codec = codecOf(field.type, !binding.words.empty());
  return binding;
}

inpS_ParameterBindings inpS_bindParameters(inp_KeywordEnm keyword, eds_RecordKind kind) {
  inpS_ParameterBindings bindings;
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword);
  const eds_RecordInfo* info = eds_ModelReader::Info(kind);
  if (!row || !info) return bindings;
  for (std::size_t n = 0; n < info->fields.size(); ++n) {
    inpS_ParameterBinding binding =
        inpS_bindParameter(keyword, info->fields[n], static_cast<int>(n));
    const std::string_view key = binding.key;
    if (std::ranges::find(row->parameters, key) != row->parameters.end())
      bindings.push_back(std::move(binding));
  }
  return bindings;
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
