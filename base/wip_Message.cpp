#include "base/wip_Message.h"

cow_String wip_Message::AsText() const {
  if (keyword.empty()) return text;
  cow_String out = "in keyword *" + keyword;
  if (!place.file.empty()) out += ", file \"" + place.file + "\"";
  if (place.line > 0) out += ", line " + std::to_string(place.line);
  return out + ": " + text;
}
