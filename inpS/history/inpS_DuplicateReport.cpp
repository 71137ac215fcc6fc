#include "inpS/history/inpS_DuplicateReport.h"
#include "database/schema/eds_Form.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

// The line of a row, when every line of the keyword is one; -1: that is not so.
long long lineOf(const inp_Keyword& keyword, const inpS_DuplicateCondition& duplicate) {
  const KvoSimDataRecord record = duplicate.record.DataRecord();
  const eds_FormInfo* form = eds_formOf(duplicate.record.Object().RecordKind());
  const inp_DataArray& data = keyword.Data();
  long long rows = 0;
  long long line = -1;
  for (long long n = 0; n < data.Rows(); ++n) {
    if (inpS_KeywordReader::IsBlankRow(data, n)) continue;
    if (rows++ == duplicate.row) line = n;
  }
  return form && rows == record.GetInt64(form->rowsField) ? line : -1;
}

} // namespace

bool inpS_DuplicateReport::Report(const cow_List<inpS_DuplicateCondition>& duplicates) const {
  inp_Visitor messages;
  for (const inpS_DuplicateCondition& duplicate : duplicates) {
    const auto keyword = m_keywords.find(duplicate.record.ID());
    if (keyword == m_keywords.end()) continue;
    cow_String labels;
    for (const int label : duplicate.labels)
      labels += (labels.empty() ? "" : ", ") + std::to_string(label);
    const cow_String text = "Duplicate Boundary condition specified for " + labels + ".";
    const long long line = lineOf(*keyword->second, duplicate);
    messages.AddError(line < 0 ? inp_Utils::MessageInKeyword(*keyword->second, text)
                               : inp_Utils::MessageAtRow(*keyword->second, line, text));
  }
  messages.Report();
  return !messages.IsError();
}
