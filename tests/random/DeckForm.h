#pragma once

#include "base/cow_Value.h"
#include "tests/random/Random.h"

// Writes keywords and data lines of one file, each in one of the many forms a deck may give them:
// case, blanks, tabs, comments, blank lines, continued keyword lines, line ends.
class DeckForm {
public:
  explicit DeckForm(Random& random) : m_random(random), m_feed(random.OneIn(3) ? "\r\n" : "\n") {}

  // Words like "NSET=A"; the first is the keyword's name.
  void Keyword(const cow_List<cow_String>& words);
  // One record; it may go on over several lines when `splits`. `openEnd`: a comma may stand behind
  // the last field.
  void Record(const cow_List<cow_String>& fields, bool splits, bool openEnd);
  // A record whose first line holds so many fields, and that goes on.
  void RecordCutAt(const cow_List<cow_String>& fields, std::size_t first);
  void Line(const cow_String& text) { m_text += text + m_feed; }
  void Text(const cow_String& text) { m_text += text; }
  void Noise(); // perhaps a comment or a blank line

  const cow_String& Written() const { return m_text; }
  cow_String Number(double value, double& read);

private:
  cow_String Cased(const cow_String& word);
  cow_String Blanks();
  void Comment();

  Random& m_random;
  cow_String m_feed;
  cow_String m_text;
};
