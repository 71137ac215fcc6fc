#include "tests/random/DeckForm.h"
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>

// Quoted text keeps its case and its blanks.
cow_String DeckForm::Cased(const cow_String& word) {
  const long long style = m_random.Below(4);
  cow_String cased;
  bool quoted = false;
  for (const char c : word) {
    if (c == '"') quoted = !quoted;
    const bool lower = style == 0 || (style == 1 && m_random.OneIn(2));
    const auto letter = static_cast<unsigned char>(c);
    cased += !quoted && lower && letter < 128 ? static_cast<char>(std::tolower(letter)) : c;
  }
  return cased;
}

cow_String DeckForm::Blanks() {
  if (!m_random.OneIn(3)) return {};
  return m_random.OneIn(4) ? "\t" : cow_String(static_cast<std::size_t>(m_random.From(1, 3)), ' ');
}

void DeckForm::Comment() {
  constexpr const char* texts[] = {"**", "** a comment, with = and , in it", "***NODE", "** \"open",
                                   "**\tB\xC3\xBCgel"};
  Line(m_random.Of(texts));
}

void DeckForm::Noise() {
  if (m_random.OneIn(20)) Comment();
  if (m_random.OneIn(40)) Line(Blanks());
}

void DeckForm::Keyword(const cow_List<cow_String>& words) {
  Noise();
  cow_String line = "*" + Blanks();
  for (std::size_t n = 0; n < words.size(); ++n) {
    if (n > 0) {
      line += Blanks() + ",";
      if (m_random.OneIn(8)) {
        Line(line);
        if (m_random.OneIn(8)) Comment();
        line.clear();
      }
      line += Blanks();
    }
    const std::size_t equals = words[n].find('=');
    line += Cased(words[n].substr(0, equals));
    if (equals == cow_String::npos) continue;
    line += Blanks() + "=" + Blanks();
    line += words[n].starts_with("INPUT") ? words[n].substr(equals + 1)
                                          : Cased(words[n].substr(equals + 1));
  }
  Line(line + Blanks());
}

void DeckForm::Record(const cow_List<cow_String>& fields, bool splits, bool openEnd) {
  Noise();
  cow_String line;
  const bool often = splits && m_random.OneIn(4);
  for (std::size_t n = 0; n < fields.size(); ++n) {
    if (n > 0) {
      line += ",";
      if (splits && (n % 16 == 0 || (often && n > 1 && m_random.OneIn(4)))) {
        Line(line);
        if (m_random.OneIn(20)) Comment();
        line.clear();
      }
    }
    line += Blanks() + fields[n] + Blanks();
  }
  Line(openEnd && m_random.OneIn(3) ? line + "," : line);
}

void DeckForm::RecordCutAt(const cow_List<cow_String>& fields, std::size_t first) {
  cow_String line;
  for (std::size_t n = 0; n < fields.size(); ++n) {
    if (n == first) {
      Line(line);
      line.clear();
    }
    line += fields[n];
    if (n + 1 < fields.size()) line += ", ";
  }
  Line(line);
}

cow_String DeckForm::Number(double value, double& read) {
  constexpr const char* formats[] = {"%.17g", "%.6f", "%.3e", "%+.9E", "%.0f.", "%.1f"};
  char text[400];
  std::snprintf(text, sizeof text, m_random.Of(formats), value);
  read = std::strtod(text, nullptr);
  cow_String number = text;
  if (m_random.OneIn(3))
    std::ranges::replace_if(
        number, [](char c) { return (c | 32) == 'e'; }, 'D');
  return number;
}
