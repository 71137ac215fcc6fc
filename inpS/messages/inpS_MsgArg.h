#pragma once

#include "base/cow_Value.h"

// One typed argument of a message. Its text is made at once: integers in decimal digits, flags as
// "true" or "false", reals with the fewest digits that read back to the same value.
class inpS_MsgArg {
public:
  enum Kind : int { None = 0, Int = 1, Bool = 2, Double = 3, String = 4 };

  inpS_MsgArg() = default;
  inpS_MsgArg(int value);
  inpS_MsgArg(bool value);
  inpS_MsgArg(double value);
  inpS_MsgArg(cow_String value);
  inpS_MsgArg(const char* value);                    // null: the empty text
  template <class T> inpS_MsgArg(const T*) = delete; // a pointer is no flag

  Kind GetKind() const { return m_kind; }
  const cow_String& AsString() const { return m_text; }

private:
  Kind m_kind = None;
  cow_String m_text;
};
