#pragma once

#include "base/aio_ostream.h"
#include "base/wip_Message.h"
#include <string_view>

enum class inps_Severity : unsigned char { Error, Warning, Note };

// How a message meets people's eyes: "deck.inp:12:9: error: text", the line of the deck, a caret
// under the fault, the notes, the including lines.
class inps_MessageView {
public:
  // width: the columns source lines are cut to; 0 where there is no terminal.
  inps_MessageView(aio_ostream& out, bool colour, int width);

  void Show(inps_Severity severity, const wip_Message& message) const;
  void ShowLine(inps_Severity severity, std::string_view text) const; // without a place

  static std::string_view Name(inps_Severity severity);

private:
  void ShowParts(aio_ostream& out, inps_Severity severity, const wip_Message& message) const;
  void ShowHead(aio_ostream& out, inps_Severity severity, const wip_Place& place,
                std::string_view text) const;
  void ShowSource(aio_ostream& out, const wip_Place& place) const;
  void ShowText(aio_ostream& out, std::string_view text) const;

  aio_ostream& m_out;
  bool m_colour;
  int m_width;
};
