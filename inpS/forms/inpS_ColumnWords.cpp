#include "inpS/forms/inpS_ColumnWords.h"
#include "base/utl_Controls.h"
#include "base/utl_Number.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "parser/inp_Utils.h"

void inpS_ColumnWords::TranslateNames(const inp_ColumnPiece& piece, std::span<int> slots) {
  m_codes.Translate(piece, slots, [this](std::string_view word) { return Of(word); });
}

int inpS_ColumnWords::Of(std::string_view word) {
  if (utl_findControl(word) != std::string_view::npos) return inpS_noTarget;
  if (m_passesOver && IsNumber(word)) {
    m_hasPassedOver = true;
    return inp_blankInt;
  }
  const auto [known, isNew] =
      m_places.try_emplace(inp_Utils::Fold(word), -1 - static_cast<int>(m_words.size()));
  if (isNew) m_words.push_back(known->first);
  return known->second;
}

bool inpS_ColumnWords::IsNumber(std::string_view word) {
  const utl_FieldKind kind = utl_classifyField(word).kind;
  return kind == utl_FieldKind::Integer || kind == utl_FieldKind::Double;
}

// Words with commas between; in quotes, and with its own ones doubled, what holds one or the other.
void inpS_ColumnWords::Store(KvoSimDataRecord record, int field) const {
  cow_String text;
  for (const cow_String& word : m_words) {
    if (!text.empty()) text += ',';
    if (word.find_first_of(",\"") == cow_String::npos) {
      text += word;
      continue;
    }
    text += '"';
    for (const char c : word) text.append(c == '"' ? 2 : 1, c);
    text += '"';
  }
  if (!text.empty()) record.SetString(field, text);
}

cow_List<cow_String> inpS_ColumnWords::Stored(const KvoSimDataRecord& record, int field) {
  cow_List<cow_String> words;
  const std::string_view text = record.GetString(field);
  bool isQuoted = false;
  cow_String word;
  for (std::size_t n = 0; n < text.size(); ++n) {
    const char c = text[n];
    const bool isDoubled = isQuoted && c == '"' && n + 1 < text.size() && text[n + 1] == '"';
    if (c == '"' && !isDoubled) {
      isQuoted = !isQuoted;
    } else if (c == ',' && !isQuoted) {
      words.push_back(std::move(word));
      word.clear();
    } else {
      word += c;
      n += isDoubled;
    }
  }
  if (!text.empty()) words.push_back(std::move(word));
  return words;
}

bool inpS_endsInTexts(const cow_List<eds_FormItem>& columns) {
  const auto typeOf = [&](std::size_t fromEnd) {
    return columns[columns.size() - fromEnd].alternatives.front().type;
  };
  return columns.size() > 2 && typeOf(1) == eds_FormType::Text && typeOf(2) == eds_FormType::Real;
}
