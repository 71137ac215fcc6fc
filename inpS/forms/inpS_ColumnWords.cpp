#include "inpS/forms/inpS_ColumnWords.h"
#include "base/utl_Controls.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "parser/inp_Utils.h"

void inpS_ColumnWords::TranslateNames(const inp_ColumnPiece& piece, std::span<int> slots) {
  m_codes.Translate(piece, slots, [this](std::string_view word) { return Of(word); });
}

int inpS_ColumnWords::Of(std::string_view word) {
  if (utl_findControl(word) != std::string_view::npos) return inpS_noTarget;
  const auto [known, isNew] =
      m_places.try_emplace(inp_Utils::Fold(word), -1 - static_cast<int>(m_words.size()));
  if (isNew) m_words.push_back(known->first);
  return known->second;
}

// A word of the deck has no comma unless it is quoted, and then it is kept in quotes.
void inpS_ColumnWords::Store(KvoSimDataRecord record, int field) const {
  cow_String text;
  for (const cow_String& word : m_words) {
    const bool isQuoted = word.find(',') != cow_String::npos;
    text += (text.empty() ? "" : ",") + (isQuoted ? "\"" + word + "\"" : word);
  }
  if (!text.empty()) record.SetString(field, text);
}

cow_List<cow_String> inpS_ColumnWords::Stored(const KvoSimDataRecord& record, int field) {
  cow_List<cow_String> words;
  const std::string_view text = record.GetString(field);
  bool isQuoted = false;
  cow_String word;
  for (const char c : text) {
    if (c == '"') {
      isQuoted = !isQuoted;
    } else if (c == ',' && !isQuoted) {
      words.push_back(std::move(word));
      word.clear();
    } else {
      word += c;
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
