#include "inpS/forms/inpS_FormPrinter.h"
#include "base/utl_Controls.h"
#include "base/utl_Stream.h"
#include "database/KvoSrvFsmFTable.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/forms/inpS_FormWords.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

namespace {

// Of several types the flag: YES goes without saying.
bool isBare(const eds_FormItem& item, const KvoSimDataRecord& record) {
  for (const eds_FormItem::Alternative& one : item.alternatives)
    if (!record.IsMemberNull(one.field))
      return one.type == eds_FormType::Flag && record.GetBool(one.field);
  return false;
}

void printParameter(utl_Stream& out, const inpS_Form& form, std::size_t n,
                    const KvoSimDataRecord& record) {
  const inpS_ParameterBinding& parameter = form.parameters[n];
  if (parameter.codec != inpS_Codec::Item) {
    inpS_printParameters(out, std::span(&parameter, 1), record);
  } else if (inpS_hasValue(*form.items[n], record)) {
    out << ", " << parameter.name;
    if (isBare(*form.items[n], record)) return;
    out << '=';
    inpS_printValue(out, *form.items[n], record);
  }
}

void printSelectors(utl_Stream& out, const inpS_Form& form, const inpS_KeptPart& beside) {
  for (const inpS_Form::Selector& selector : form.selectors) {
    if (!selector.IsPrinted(beside.parameters)) continue;
    out << ", " << selector.name;
    if (!selector.text.empty()) out << '=' << selector.text;
  }
}

void printKeyword(utl_Stream& out, const inpS_Form& form, const KvoSimDataRecord& record,
                  const inpS_KeptPart& beside, const KvoSrvFsmFTable& table) {
  out << '*' << inp_KeywordTable::Instance().Row(form.keyword)->name;
  for (std::size_t n = 0; n < form.parameters.size(); ++n) printParameter(out, form, n, record);
  printSelectors(out, form, beside);
  if (!table.IsNull() && table.NumberFieldVariables() > 0)
    out << ", DEPENDENCIES=" << table.NumberFieldVariables();
  out << beside.parameters << '\n';
}

// Up to the last value that is given, or that always has its place.
std::size_t widthOf(const cow_List<eds_FormItem>& items, const KvoSimDataRecord& record) {
  std::size_t count = items.size();
  while (count > 0 && items[count - 1].isOptional && !inpS_hasValue(items[count - 1], record))
    --count;
  return count;
}

void printLine(utl_Stream& out, const cow_List<eds_FormItem>& items, const KvoSimDataRecord& record,
               bool evenBlank = false) {
  const std::size_t count = widthOf(items, record);
  for (std::size_t n = 0; n < count; ++n) {
    if (n > 0) out << ", ";
    inpS_printValue(out, items[n], record);
  }
  if (count > 0 || evenBlank) out << '\n';
}

// A line without a value has its place where another stands behind it.
void printFirstLines(utl_Stream& out, const inpS_Form& form, const KvoSimDataRecord& record,
                     bool hasMore) {
  const auto& lines = form.info->lines;
  std::size_t count = lines.size();
  const auto isBlank = [&](const cow_List<eds_FormItem>& line) {
    return std::ranges::none_of(
        line, [&](const eds_FormItem& item) { return inpS_hasValue(item, record); });
  };
  while (!hasMore && count > 0 && isBlank(lines[count - 1])) --count;
  for (std::size_t n = 0; n < count; ++n) printLine(out, lines[n], record, true);
}

void printLines(utl_Stream& out, const inpS_Form& form, const KvoSimPosition& position,
                const inpS_FormPrinting& printing) {
  const KvoSimDataRecord record = position.DataRecord();
  const cow_String& kept = printing.parts.FirstOf(position).lines;
  if (!kept.empty()) {
    out << kept;
    return;
  }
  const bool hasRows = form.HasTable() && !position.GetFTable().IsNull();
  const bool hasMore = hasRows || (form.info->data == eds_FormData::Records &&
                                   !position.GetVector(eds_Member::Lines).empty());
  printFirstLines(out, form, record, hasMore);
  switch (form.info->data) {
  case eds_FormData::Columns:
    return printing.columns(form, position);
  case eds_FormData::Text:
    utl_printLines(out, record.GetString(form.info->textField));
    return;
  case eds_FormData::Words:
    return inpS_printWords(out, record.GetString(form.info->words.alternatives.front().field));
  case eds_FormData::Records:
    for (const KvoSimPosition& line : position.GetVector(eds_Member::Lines))
      for (const auto& items : eds_formOf(form.info->record)->lines)
        printLine(out, items, line.DataRecord(), true);
    return;
  case eds_FormData::Table:
  case eds_FormData::Plain:
    if (hasRows) printing.table(form, position);
    return;
  case eds_FormData::None:
  case eds_FormData::Pairs: // of an operation's own
    return;
  }
}

} // namespace

void inpS_printDataLines(utl_Stream& out, const KvoSimPosition& position,
                         const inpS_KeptParts& parts) {
  printLines(out, *inpS_FormTable::Instance().Find(position.Object().RecordKind()), position,
             {parts, {}, {}, {}});
}

void inpS_printFormLines(utl_Stream& out, const KvoSimPosition& position,
                         const inpS_FormPrinting& printing) {
  const inpS_Form* form = inpS_FormTable::Instance().Find(position.Object().RecordKind());
  if (!form) return; // of a newer version's kind: nothing is known of it
  printKeyword(out, *form, position.DataRecord(), printing.parts.FirstOf(position),
               form->HasTable() ? position.GetFTable() : KvoSrvFsmFTable());
  printLines(out, *form, position, printing);
}

void inpS_printForm(utl_Stream& out, const KvoSimPosition& position,
                    const inpS_FormPrinting& printing) {
  inpS_printFormLines(out, position, printing);
  inpS_printSuboptions(out, position, printing);
}

void inpS_printSuboptions(utl_Stream& out, const KvoSimPosition& position,
                          const inpS_FormPrinting& printing) {
  const auto suboptions = position.GetVector(eds_Member::Suboptions);
  printing.texts(position, position);
  for (const KvoSimPosition& suboption : suboptions) {
    inpS_printForm(out, suboption, printing);
    printing.texts(position, suboption);
  }
  printing.texts(position, {});
}

void inpS_printKeywordWith(utl_Stream& out, const inpS_Form& form, const KvoSimPosition& record,
                           const inpS_KeptParts& parts, const inpS_ParameterTexts& changed) {
  out << '*' << inp_KeywordTable::Instance().Row(form.keyword)->name;
  for (std::size_t n = 0; n < form.parameters.size(); ++n) {
    const auto text = changed.find(cow_String(form.parameters[n].name));
    if (text == changed.end()) {
      if (!record.IsNull()) printParameter(out, form, n, record.DataRecord());
    } else if (text->second) {
      out << ", " << form.parameters[n].name;
      if (!text->second->empty()) out << '=' << *text->second;
    }
  }
  printSelectors(out, form, record.IsNull() ? inpS_KeptPart() : parts.FirstOf(record));
  if (!record.IsNull()) out << parts.FirstOf(record).parameters;
  out << '\n';
}
