#include "inpS/keywords/inpS_TinyNumber.h"
#include "base/utl_Number.h"
#include "base/utl_TinyNumber.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"

std::optional<wip_Message> inpS_tinyNumberMessage(const inp_Keyword& keyword, long long row,
                                                  int col) {
  const utl_Field field = utl_classifyField(keyword.Data().FieldText(row, col));
  if (field.kind != utl_FieldKind::Double || !utl_isTinyNumber(field.text, field.real)) return {};
  cow_String text = '"' + cow_String(field.text) + "\" is nearer to zero than a number can be held";
  if (field.real == 0) {
    text += "; 0 is used.";
  } else {
    char value[utl_doubleTextRoom];
    text.append(" with all its digits; ").append(value, utl_printDouble(value, field.real));
    text += " is used.";
  }
  return inp_Utils::MessageAtField(keyword, row, col, text);
}
