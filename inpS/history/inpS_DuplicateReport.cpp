#include "inpS/history/inpS_DuplicateReport.h"
#include "database/schema/eds_Form.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

// "face 3 " of a line about "P3" or "P3NU".
cow_String faceOf(const inp_DataArray& data, long long line) {
  constexpr int labelColumn = 1;
  constexpr std::string_view digits = "0123456789";
  cow_String label = data.AsStringVerbatim(line, labelColumn);
  const std::size_t end = label.find_last_of(digits) + 1;
  const std::size_t begin = label.find_last_not_of(digits, end - 1) + 1;
  return "face " + label.substr(begin, end - begin) + " ";
}

} // namespace

// The lines of a record's rows; none: the keyword's lines are not its rows, as after a restart.
cow_List<long long> inpS_DuplicateReport::LinesOf(const Given& given,
                                                  const KvoSimPosition& record) {
  const eds_FormInfo* form = eds_formOf(record.Object().RecordKind());
  const inp_DataArray& data = given.keyword->Data();
  auto refused = given.refused.begin();
  cow_List<long long> lines;
  for (long long n = 0; n < data.Rows(); ++n) {
    const bool isRefused = refused != given.refused.end() && *refused == n;
    if (isRefused) ++refused;
    if (!isRefused && !inpS_KeywordReader::IsBlankRow(data, n)) lines.push_back(n);
  }
  const bool areRows =
      form && static_cast<long long>(lines.size()) == record.DataRecord().GetInt64(form->rowsField);
  return areRows ? lines : cow_List<long long>();
}

bool inpS_DuplicateReport::Report(const cow_List<inpS_DuplicateCondition>& duplicates) const {
  inp_Visitor messages;
  KvoSimPosition record; // those of one stand together
  cow_List<long long> lines;
  for (const inpS_DuplicateCondition& duplicate : duplicates) {
    const auto given = m_keywords.find(duplicate.record.Object().Packed());
    if (given == m_keywords.end()) continue;
    const inp_Keyword& keyword = *given->second.keyword;
    cow_String labels;
    for (const int label : duplicate.labels)
      labels += (labels.empty() ? "" : ", ") + std::to_string(label);
    if (!(record == duplicate.record)) {
      record = duplicate.record;
      lines = LinesOf(given->second, record);
    }
    const auto row = static_cast<std::size_t>(duplicate.row);
    const long long line = row < lines.size() ? lines[row] : -1;
    const bool isOfFaces = duplicate.isOfElements;
    const cow_String face = isOfFaces && line >= 0 ? faceOf(keyword.Data(), line) : cow_String();
    const cow_String text = "Duplicate Boundary condition specified for " + face +
                            (isOfFaces ? "element " : "") + labels + ".";
    messages.AddError(line < 0 ? inp_Utils::MessageInKeyword(keyword, text)
                               : inp_Utils::MessageAtRow(keyword, line, text));
  }
  messages.Report();
  return !messages.IsError();
}
