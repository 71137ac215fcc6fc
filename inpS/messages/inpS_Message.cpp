#include "inpS/messages/inpS_Message.h"
#include "inpS/messages/inpS_MessageText.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <limits>

inpS_Message::inpS_Message(MsgType type, int id) : m_type(type), m_id(id) {}

inpS_Message::inpS_Message(cow_String text) : m_text(std::move(text)) {}

inpS_Message::inpS_Message(const inp_Keyword& keyword, MsgType type, int id)
    : inpS_Message(type, id) {
  SetKeyword(keyword);
}

inpS_Message::inpS_Message(const inp_Keyword& keyword, cow_String text)
    : inpS_Message(std::move(text)) {
  SetKeyword(keyword);
}

void inpS_Message::SetKeyword(const inp_Keyword& keyword) {
  m_keywordId = static_cast<int>(keyword.Kind());
  m_keywordName = keyword.Name();
  m_fileName = keyword.FileName();
  m_line = static_cast<int>(std::min<long long>(
      keyword.Line(), std::numeric_limits<int>::max())); // shown, not counted on
  m_place = keyword.Place();
}

void inpS_Message::AppendArgList(const cow_List<inpS_MsgArg>& args) {
  m_args.insert(m_args.end(), args.begin(), args.end());
}

void inpS_Message::SubstituteArgs() {
  if (!m_args.empty()) m_text = inpS_substitutePlaceholders(m_text, m_args);
}

cow_String inpS_Message::KeywordName() const {
  const inp_KeywordRow* row =
      inp_KeywordTable::Instance().Row(static_cast<inp_KeywordEnm>(m_keywordId));
  return row ? cow_String(row->name) : m_keywordName;
}

wip_Place inpS_Message::Place() const {
  wip_Place place = m_place;
  if (place.file != m_fileName || place.line != m_line) { // set by hand
    place = {};
    place.file = m_fileName;
    place.line = std::max(m_line, 0);
  }
  if (m_lineOffset < 1 || place.line < 1) return place;
  place.line += m_lineOffset;
  place.column = place.width = 0;
  place.sourceLine.clear();
  return place;
}
