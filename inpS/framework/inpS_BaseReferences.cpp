#include "inpS/framework/inpS_BaseReferences.h"
#include "database/eds_ModelReader.h"
#include <algorithm>

namespace {

using Use = inpS_BaseReferences::Use;

cow_String inCapitals(std::string_view text) {
  cow_String capitals(text);
  for (char& c : capitals)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return capitals;
}

bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool isOfName(char c) {
  return isLetter(c) || (c >= '0' && c <= '9') || c == '-';
}

bool isWord(std::string_view name) {
  return !name.empty() && isLetter(name.front()) && std::ranges::all_of(name, isOfName);
}

// What goes with a record when it goes, or keeps what it had of it.
bool isOwn(eds_RecordKind kind) {
  return kind == eds_RecordKind::KeptPart || kind == eds_RecordKind::VerbatimKeyword ||
         kind == eds_RecordKind::SurfacePiece || kind == eds_RecordKind::PropertyTable;
}

} // namespace

inpS_BaseReferences::inpS_BaseReferences(const KvoObjDocument& document) {
  const eds_ModelReader model(document);
  for (const eds_RecordInfo* info : model.Kinds()) {
    if (isOwn(info->kind)) continue;
    cow_List<int> references;
    for (std::size_t n = 0; n < info->fields.size(); ++n)
      if (info->fields[n].type == eds_FieldType::Ref ||
          info->fields[n].type == eds_FieldType::AnyRef)
        references.push_back(static_cast<int>(n));
    if (references.empty()) continue;
    const bool acts = info->kind == eds_RecordKind::Target || info->kind == eds_RecordKind::Relay;
    for (const int64_t id : model.RecordIDs(info->kind))
      for (const int field : references) {
        const eds_FieldValue value = model.Value(info->kind, id, field);
        const auto* object = std::get_if<eds_ObjectID>(&value);
        if (!object || object->IsNull()) continue;
        Use& use = m_uses[object->Packed()];
        use = std::max(use, acts ? Use::Acted : Use::Described);
      }
  }
  for (const KvoSimPosition& text :
       document.Context().GetRecords(eds_RecordKind::VerbatimKeyword)) {
    m_texts.push_back(text);
    AddWords(text.DataRecord().GetString(eds_VerbatimKeyword_Text));
  }
}

// No numbers: a text may be one of millions of elements.
void inpS_BaseReferences::AddWords(std::string_view text) {
  for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1) {
    for (end = begin; end < text.size() && isOfName(text[end]);) ++end;
    const std::string_view word = text.substr(begin, end - begin);
    if (isWord(word)) m_words.insert(inCapitals(word));
  }
}

Use inpS_BaseReferences::Of(const KvoSimPosition& record, const cow_String& name) const {
  const auto known = m_uses.find(record.Object().Packed());
  if (known != m_uses.end()) return known->second;
  const cow_String wanted = inCapitals(name);
  const auto isIn = [&](const KvoSimPosition& text) {
    return inCapitals(text.DataRecord().GetString(eds_VerbatimKeyword_Text)).find(wanted) !=
           cow_String::npos;
  };
  // A name of figures, or with blanks or signs in it, is no such word.
  const bool isNamed = isWord(name) ? m_words.contains(wanted) : std::ranges::any_of(m_texts, isIn);
  return isNamed ? Use::Described : Use::None;
}
