#include "inpS/forms/inpS_FormPrinter.h"
#include "base/utl_Stream.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

void printKeyword(utl_Stream& out, const inpS_Form& form, const KvoSimDataRecord& record,
                  const inpS_KeptPart& beside) {
  out << '*' << inp_KeywordTable::Instance().Row(form.keyword)->name;
  for (std::size_t n = 0; n < form.parameters.size(); ++n) {
    const inpS_ParameterBinding& parameter = form.parameters[n];
    if (parameter.codec != inpS_Codec::Reference) {
      inpS_printParameters(out, std::span(&parameter, 1), record);
    } else if (inpS_hasValue(*form.items[n], record)) {
      out << ", " << parameter.name << '=';
      inpS_printValue(out, *form.items[n], record);
    }
  }
  for (const inpS_Form::Selector& selector : form.selectors) {
    if (!selector.IsPrinted(beside.parameters)) continue;
    out << ", " << selector.name;
    if (!selector.text.empty()) out << '=' << selector.text;
  }
  out << beside.parameters << '\n';
}

// Up to the last value that is given, or that always has its place.
void printLine(utl_Stream& out, const cow_List<eds_FormItem>& items,
               const KvoSimDataRecord& record) {
  std::size_t count = items.size();
  while (count > 0 && items[count - 1].isOptional && !inpS_hasValue(items[count - 1], record))
    --count;
  for (std::size_t n = 0; n < count; ++n) {
    if (n > 0) out << ", ";
    inpS_printValue(out, items[n], record);
  }
  if (count > 0) out << '\n';
}

} // namespace

void inpS_printForm(utl_Stream& out, const KvoSimPosition& position, const inpS_KeptPart& beside,
                    const inpS_PrintColumns& printColumns) {
  const inpS_Form* form = inpS_FormTable::Instance().Find(position.Object().RecordKind());
  if (!form) return; // of a newer version's kind: nothing is known of it
  const KvoSimDataRecord record = position.DataRecord();
  printKeyword(out, *form, record, beside);
  if (!beside.lines.empty()) {
    out << beside.lines;
    return;
  }
  for (const cow_List<eds_FormItem>& line : form->info->lines) printLine(out, line, record);
  if (form->info->data == eds_FormData::Columns) printColumns(*form->info, position);
  if (form->info->data == eds_FormData::Text) out << record.GetString(form->info->textField);
  if (form->info->data == eds_FormData::Records)
    for (const KvoSimPosition& line : position.GetVector(eds_Member::Lines))
      printLine(out, eds_formOf(form->info->record)->lines.front(), line.DataRecord());
}
