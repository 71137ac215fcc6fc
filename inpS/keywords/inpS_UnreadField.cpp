#include "inpS/keywords/inpS_UnreadField.h"
#include "base/utl_Number.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

cow_String textFor(const inp_Keyword& keyword, const inpS_UnreadField& field,
                   const char* leftOver) {
  if (field.surplus)
    return cow_String("More values than belong on this line; from here on they are ") + leftOver +
           ".";
  const cow_String word = keyword.Data().AsStringVerbatim(field.row, field.col);
  if (utl_classifyField(word).IsOutOfRange())
    return "\"" + word + "\" is larger than any number that can be held; 0 is used.";
  return "A number is expected instead of \"" + inp_Utils::RemoveQuotes(word) + "\"; 0 is used.";
}

} // namespace

long long inpS_countGiven(const inp_Keyword& keyword, long long row, int col) {
  const inp_DataArray& data = keyword.Data();
  long long count = 0;
  for (const int cols = data.Cols(row); col < cols; ++col) count += data.HasValue(row, col);
  return count;
}

void inpS_reportUnreadFields(const inp_Keyword& keyword, const cow_List<inpS_UnreadField>& fields,
                             inp_Visitor& messages, const char* leftOver) {
  for (const inpS_UnreadField& field : fields) {
    wip_Message message =
        inp_Utils::MessageAtField(keyword, field.row, field.col, textFor(keyword, field, leftOver));
    if (field.surplus)
      messages.AddWarning(std::move(message));
    else
      messages.AddError(std::move(message));
  }
}
