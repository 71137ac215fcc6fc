#include "inpS/keywords/inpS_KeptParts.h"
#include "base/utl_Controls.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/keywords/inpS_BlankLine.h"
#include "inpS/keywords/inpS_ParameterBinding.h"
#include "parser/inp_DeckParameters.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

inpS_KeptParts::inpS_KeptParts(const KvoSimContext& context) {
  for (const KvoSimPosition& position : context.GetRecords(eds_RecordKind::KeptPart)) {
    const KvoSimDataRecord record = position.DataRecord();
    const auto owner = record.GetReference(eds_KeptPart_Owner).Object().Packed();
    m_byOwner[owner].push_back({record.GetInt64(eds_KeptPart_FirstRow),
                                record.ReturnString(eds_KeptPart_Parameters),
                                record.ReturnString(eds_KeptPart_Lines)});
    inpS_KeptPart& part = m_byOwner[owner].back(); // of another program
    if (utl_findControl(part.parameters) != cow_String::npos)
      part.parameters = utl_withoutControls(part.parameters);
    utl_dropControlsInLines(part.lines);
  }
  for (auto& [owner, parts] : m_byOwner)
    std::ranges::stable_sort(parts, {}, &inpS_KeptPart::firstRow);
}

std::span<const inpS_KeptPart> inpS_KeptParts::Of(const KvoSimPosition& owner) const {
  if (m_byOwner.empty()) return {};
  const auto known = m_byOwner.find(owner.Object().Packed());
  return known == m_byOwner.end() ? std::span<const inpS_KeptPart>() : known->second;
}

const inpS_KeptPart& inpS_KeptParts::FirstOf(const KvoSimPosition& owner) const {
  return At(owner, 0); // others may have rows of theirs where it has none
}

const inpS_KeptPart& inpS_KeptParts::At(const KvoSimPosition& owner, long long firstRow) const {
  static const inpS_KeptPart none;
  const auto parts = Of(owner);
  const auto found = std::ranges::find(parts, firstRow, &inpS_KeptPart::firstRow);
  return found == parts.end() ? none : *found;
}

KvoSimPosition inpS_keepPart(const KvoSimPosition& owner, const inpS_KeptPart& part) {
  const KvoSimPosition kept = owner.CreateDataRecord(eds_RecordKind::KeptPart);
  KvoSimDataRecord record = kept.DataRecord();
  record.SetReference(eds_KeptPart_Owner, owner);
  record.SetInt(eds_KeptPart_FirstRow, part.firstRow);
  if (!part.parameters.empty()) record.SetString(eds_KeptPart_Parameters, part.parameters);
  if (!part.lines.empty()) record.SetString(eds_KeptPart_Lines, part.lines);
  return kept;
}

cow_String inpS_spelledName(const inp_Parameter& parameter) {
  const std::string_view text(parameter.at, parameter.at ? parameter.width : 0);
  std::string_view spelled = text.substr(0, text.find('='));
  while (!spelled.empty() && (spelled.back() == ' ' || spelled.back() == '\t'))
    spelled.remove_suffix(1);
  // A name that a deck parameter gave, or a shortened one, stands otherwise in the text; and one
  // that goes on over a line is put on one.
  const bool isName = inpS_bareWord(spelled) == inpS_bareWord(parameter.name) &&
                      spelled.find('\n') == std::string_view::npos;
  if (isName) return cow_String(spelled);
  cow_String name;
  for (const char c : parameter.name)
    name += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return name;
}

namespace {

cow_String asGiven(const inp_Parameter& parameter) {
  cow_String text = ", " + inpS_spelledName(parameter);
  if (!parameter.value.IsFlag()) text += '=' + parameter.value.Verbatim();
  return utl_findControl(text) == cow_String::npos ? text : utl_withoutControls(text);
}

} // namespace

cow_String inpS_takeOtherParameters(const inp_Keyword& keyword) {
  cow_String others;
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    if (parameter.referred) continue;
    parameter.referred = true;
    others += asGiven(parameter);
  }
  return others;
}

void inpS_tellOtherParameters(const inp_Keyword& keyword, inp_Visitor& messages) {
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    if (parameter.referred || parameter.told) continue;
    if (!inp_findReference(parameter.name).empty()) continue; // told by the parser
    parameter.told = true;
    messages.AddWarning(inp_Utils::MessageAtParameter(
        keyword, parameter.name,
        "Parameter \"" + parameter.name + "\" is not used; it is kept as it stands."));
  }
}

void inpS_keepOthers(const inp_Keyword& keyword, const KvoSimPosition& owner,
                     inp_Visitor& messages) {
  inpS_tellOtherParameters(keyword, messages);
  const inpS_KeptPart part{0, inpS_takeOtherParameters(keyword)};
  if (!part.parameters.empty()) inpS_keepPart(owner, part);
}

bool inpS_holdsParameter(std::string_view kept, std::string_view name) {
  const cow_String wanted = inpS_bareWord(name);
  char quote = 0;
  for (std::size_t n = 0; n < kept.size(); ++n) {
    if (quote != 0 || kept[n] == '"' || kept[n] == '\'') {
      quote = quote == 0 ? kept[n] : quote == kept[n] ? '\0' : quote;
      continue;
    }
    if (kept[n] != ',') continue;
    const std::string_view rest = kept.substr(n + 1);
    if (inpS_bareWord(rest.substr(0, rest.find_first_of(",="))) == wanted) return true;
  }
  return false;
}

void inpS_dropRepeated(const inp_Keyword& keyword, std::string_view kept, inp_Visitor& messages) {
  if (kept.empty()) return;
  for (const inp_Parameter& parameter : keyword.Parameters()) {
    if (parameter.referred || !inpS_holdsParameter(kept, parameter.name)) continue;
    parameter.referred = true;
    const cow_String all = cow_String(kept) + ',';
    if (all.find(asGiven(parameter) + ',') != cow_String::npos) continue;
    inpS_tellRepeated(keyword, parameter.name, messages);
  }
}

void inpS_tellRepeated(const inp_Keyword& keyword, const cow_String& parameter,
                       inp_Visitor& messages) {
  messages.AddWarning(inp_Utils::MessageAtParameter(
      keyword, parameter,
      "Parameter \"" + parameter +
          "\" is given again with another value; the first one is kept, this one is left out."));
  messages.LeaveOut("parameter");
}

cow_String inpS_dataLines(const inp_Keyword& keyword, inp_Visitor& messages) {
  inpS_tellControls(keyword, messages);
  return keyword.Data().Text();
}

void inpS_tellControls(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row) {
    const std::string_view line = data.RowText(row);
    std::size_t at = utl_findControlInLines(line);
    while (at != line.npos && inp_isBlank(line[at])) at = utl_findControlInLines(line, at + 1);
    if (at == line.npos) continue;
    messages.AddWarning(inp_Utils::MessageAtRow(
        keyword, row, "Control characters in data lines that are kept become question marks."));
    return messages.LeaveOut("control character");
  }
}

cow_String inpS_takeUnusedLines(const inp_Keyword& keyword, inp_Visitor& messages) {
  const inp_DataArray& data = keyword.Data();
  long long row = 0;
  while (row < data.Rows() && inpS_isBlank(data, row)) ++row;
  if (row == data.Rows()) return {};
  messages.AddWarning(inp_Utils::MessageAtRow(
      keyword, row,
      "*" + keyword.Name() + " takes no data lines; from here on they are kept, but not used."));
  return inpS_dataLines(keyword, messages);
}

void inpS_keepUnused(const inp_Keyword& keyword, const KvoSimPosition& owner, inp_Visitor& messages,
                     long long row) {
  inpS_tellOtherParameters(keyword, messages);
  const inpS_KeptPart part{row, inpS_takeOtherParameters(keyword),
                           inpS_takeUnusedLines(keyword, messages)};
  if (!part.parameters.empty() || !part.lines.empty()) inpS_keepPart(owner, part);
}
