#include "parser/inp_Item.h"
#include "base/utl_Number.h"
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

inp_Item::inp_Item(int value) : m_kind(Kind::Integer), m_number(value) {
  m_text = m_verbatim = std::to_string(value);
}

inp_Item::inp_Item(bool flag) : m_kind(Kind::Flag), m_number(flag) {}

inp_Item::inp_Item(double value) : m_kind(Kind::Double), m_number(value) {
  char text[utl_doubleTextRoom];
  m_text.assign(text, utl_printDouble(text, value));
  m_verbatim = m_text;
}

inp_Item::inp_Item(cow_String value)
    : m_kind(Kind::String), m_text(std::move(value)), m_verbatim(m_text) {}

inp_Item inp_Item::FromText(cow_String folded, cow_String verbatim) {
  inp_Item item(std::move(folded));
  item.m_verbatim = std::move(verbatim);
  if (item.m_verbatim.find('"') != cow_String::npos) return item;
  const utl_Field field = utl_classifyField(item.m_text);
  switch (field.kind) {
  case utl_FieldKind::None:
    item.m_kind = Kind::None;
    break;
  case utl_FieldKind::Integer: {
    const bool fits = field.integer >= std::numeric_limits<int>::min() &&
                      field.integer <= std::numeric_limits<int>::max();
    item.m_kind = fits ? Kind::Integer : Kind::Double;
    break;
  }
  case utl_FieldKind::Double:
    item.m_kind = Kind::Double;
    break;
  case utl_FieldKind::String:
    break;
  }
  if (item.IsNumber()) item.m_number = field.real;
  return item;
}

bool inp_Item::IsWhole() const {
  constexpr double most = std::numeric_limits<int>::max();
  return m_kind == Kind::Integer ||
         (m_kind == Kind::Double && std::abs(m_number) <= most && m_number == std::trunc(m_number));
}

int inp_Item::AsInt() const {
  if (!IsNumber()) return 0;
  return static_cast<int>(std::clamp<double>(m_number, std::numeric_limits<int>::min(),
                                             std::numeric_limits<int>::max()));
}

double inp_Item::AsDouble() const {
  return IsNumber() ? m_number : 0;
}

const cow_String& inp_Item::AsString() const {
  return m_text;
}

const cow_String& inp_Item::Verbatim() const {
  return m_verbatim;
}
