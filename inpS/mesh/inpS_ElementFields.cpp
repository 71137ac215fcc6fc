#include "inpS/mesh/inpS_ElementFields.h"
#include "inpS/mesh/inpS_ElementParameters.h"
#include "inpS/mesh/inpS_ElementSearch.h"
#include "inpS/messages/inpS_LocatedText.h"
#include "inpS/sets/inpS_ScopedField.h"
#include "parser/inp_BulkDecode.h"
#include "parser/inp_Keyword.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>
#include <cstdlib>

namespace {

constexpr long long kMaxLabel = 999999999;

bool readScoped(const inp_Keyword& keyword, long long row, int col, cow_List<int>& fields,
                cow_List<inpS_ScopedNode>& scoped, inp_Visitor& messages) {
  const inpS_ScopedField field = inpS_scopedField(keyword.Data().FieldText(row, col));
  if (!field.isLabel || std::llabs(field.Label()) > kMaxLabel) return false;
  inpS_reportDropped(keyword, row, col, field, messages);
  const int index = static_cast<int>(fields.size()) - 1;
  fields.push_back(static_cast<int>(field.Label()));
  scoped.push_back({0, index, field.instance, fields.back(), row, col});
  return true;
}

cow_String faultText(const inp_DataArray& data, long long row, int col,
                     const inpS_ElementParameters& type, bool isElement) {
  const inp_FieldType kind = data.Type(row, col);
  if (isElement && kind == inp_FieldType::None)
    return inp_Utils::Format(inpS_messageText(inpS_mesh_ElementNumberMissing).c_str(),
                             type.Name().c_str());
  if (isElement && data.IsInteger(row, col))
    return inpS_messageText(inpS_mesh_ElementNumberTooLarge);
  return "\"" + data.AsStringVerbatim(row, col) + "\" is no " + (isElement ? "element" : "node") +
         " label: an integer of at most 999999999 was expected; element ignored.";
}

int fewestNodes(const inpS_ElementParameters& type) {
  return std::max(1, type.MinNodesPerElement());
}

} // namespace

bool inpS_readElementFields(const inp_Keyword& keyword, const inp_ElementForm& form,
                            const inpS_ElementParameters& type, long long row,
                            cow_List<int>& fields, cow_List<inpS_ScopedNode>* scoped,
                            inp_Visitor& messages) {
  const inp_DataArray& data = keyword.Data();
  long long end = row;
  inp_elementFields(data, form, row, end);
  for (; row < end; ++row) {
    int cols = data.Cols(row);
    if (cols > 0 && data.IsNone(row, cols - 1)) --cols; // behind a trailing comma
    for (int col = 0; col < cols; ++col) {
      const inp_FieldType kind = data.Type(row, col);
      if (kind == inp_FieldType::None && type.IsConnectorElement() && !fields.empty()) {
        fields.push_back(0);
        continue;
      }
      if (data.IsInteger(row, col) && std::llabs(data.AsInt64(row, col)) <= kMaxLabel) {
        fields.push_back(data.AsInt(row, col));
        continue;
      }
      if (kind == inp_FieldType::String && scoped && !fields.empty() &&
          readScoped(keyword, row, col, fields, *scoped, messages))
        continue;
      messages.AddError(inp_Utils::MessageAtField(keyword, row, col,
                                                  faultText(data, row, col, type, fields.empty())));
      return false;
    }
  }
  return !fields.empty();
}

bool inpS_FaultyElements::Count(int label, long long nodes, const inpS_ElementParameters& type,
                                int extra) {
  const bool many = nodes > type.MaxNodesPerElement() + extra;
  const bool few = nodes < fewestNodes(type) + extra;
  if (many) m_tooMany.push_back(label);
  if (few) m_tooFew.push_back(label);
  return !many && !few;
}

bool inpS_FaultyElements::Has(int label) const {
  const auto holds = [label](const cow_List<int>& labels) {
    return std::find(labels.begin(), labels.end(), label) != labels.end();
  };
  return holds(m_tooMany) || holds(m_tooFew);
}

void inpS_FaultyElements::Report(const inp_Keyword& keyword, const inpS_ElementParameters& type,
                                 inp_Visitor& messages) const {
  const inp_ElementForm form = type.Form();
  const int extra = form.extraFields;
  const auto report = [&](const char* text, const cow_List<int>& labels) {
    if (labels.empty()) return;
    const long long row = inpS_ElementSearch(keyword, form)
                              .OfWrongCount(labels.front(), fewestNodes(type) + extra,
                                            type.MaxNodesPerElement() + extra)
                              .row;
    messages.AddError(inp_Utils::MessageAtRow(
        keyword, row,
        inp_Utils::MessageWithItems(inp_Utils::Format(text, type.Name().c_str()), labels)));
  };
  report("Too many nodes for element(s) of type \"%s\" ", m_tooMany);
  report("Too few nodes for element(s) of type \"%s\" ", m_tooFew);
  // Nothing is lost by reading them as they stand.
  if (!m_longFirstLine.empty())
    messages.AddWarning(inp_Utils::MessageInKeyword(
        keyword,
        inp_Utils::Format("With its midside nodes an element of type \"%s\" holds at most %d nodes "
                          "on its first line; read as they stand: ",
                          type.Name().c_str(), form.firstLineNodes),
        m_longFirstLine));
}
