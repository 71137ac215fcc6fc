#include "inpS/keywords/inpS_TinyNumber.h"
#include "base/utl_Number.h"
#include "base/utl_TinyNumber.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

// Empty: it is held as it stands, or no number.
cow_String textFor(const utl_Field& field) {
  if (field.kind != utl_FieldKind::Double || !utl_isTinyNumber(field.text, field.real)) return {};
  cow_String text = '"' + cow_String(field.text) + "\" is nearer to zero than a number can be held";
  if (field.real == 0) return text + "; 0 is used.";
  char value[utl_doubleTextRoom];
  text.append(" with all its digits; ").append(value, utl_printDouble(value, field.real));
  return text + " is used.";
}

} // namespace

std::optional<wip_Message> inpS_tinyNumberMessage(const inp_Keyword& keyword, long long row,
                                                  int col) {
  const cow_String text = textFor(utl_classifyField(keyword.Data().FieldText(row, col)));
  if (text.empty()) return {};
  return inp_Utils::MessageAtField(keyword, row, col, text);
}

std::optional<wip_Message> inpS_tinyNumberMessage(const inp_Keyword& keyword,
                                                  std::string_view parameter) {
  const inp_Item* item = keyword.Find(parameter);
  if (!item || !item->IsNumber()) return {};
  const cow_String text = textFor(utl_classifyField(item->AsString()));
  if (text.empty()) return {};
  return inp_Utils::MessageAtParameter(keyword, parameter, text);
}

void inpS_reportTinyNumbers(const inp_Keyword& keyword, std::span<const int> fieldsOfLines,
                            inp_Visitor& messages) {
  const inp_DataArray& data = keyword.Data();
  const long long rows = std::min(data.Rows(), static_cast<long long>(fieldsOfLines.size()));
  for (long long row = 0; row < rows; ++row)
    for (int col = 0; col < std::min(data.Cols(row), fieldsOfLines[static_cast<std::size_t>(row)]);
         ++col)
      if (auto tiny = inpS_tinyNumberMessage(keyword, row, col))
        messages.AddWarning(std::move(*tiny));
}
