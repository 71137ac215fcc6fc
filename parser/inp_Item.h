#pragma once

#include "base/cow_Value.h"

// One tagged value: an integer, a flag (a parameter written without a value), a double or a string.
class inp_Item {
public:
  enum class Kind : unsigned char { None, Integer, Flag, Double, String };

  inp_Item() = default;
  explicit inp_Item(int value);
  explicit inp_Item(bool flag);
  explicit inp_Item(double value);
  explicit inp_Item(cow_String value);
  explicit inp_Item(const char* value) : inp_Item(cow_String(value)) {} // else it would be a flag
  // As the parser makes it: the kind follows from the text.
  static inp_Item FromText(cow_String folded, cow_String verbatim);

  Kind GetKind() const { return m_kind; }
  bool IsFlag() const { return m_kind == Kind::Flag; }
  bool IsNumber() const { return m_kind == Kind::Integer || m_kind == Kind::Double; }
  bool IsWhole() const; // an integer, or a number without a fraction ("3.") that an int holds
  bool IsString() const { return m_kind == Kind::String; }

  int AsInt() const;                  // 0 for what is no number
  double AsDouble() const;            // 0 for what is no number
  const cow_String& AsString() const; // folded text, of numbers too; empty for a flag
  const cow_String& Verbatim() const; // as written, quotes kept

private:
  Kind m_kind = Kind::None;
  double m_number = 0;
  cow_String m_text;
  cow_String m_verbatim;
};
