#include "inpS/history/inpS_FoundationCheck.h"
#include "inpS/history/inpS_LoadLabels.h"
#include "inpS/history/inpS_LoadedElements.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

constexpr int labelColumn = 1;

} // namespace

bool inpS_isFoundationLabel(std::string_view label) {
  return !inpS_findLoadLabel(inp_KwFoundation, label).rows.empty();
}

void inpS_checkFoundations(const inp_Keyword& keyword, const inpS_SetVisitor& place,
                           const KvoObjDocument& document, inp_Visitor& messages) {
  inpS_LoadedElements elements(document);
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row) {
    if (data.Cols(row) <= labelColumn || !data.HasValue(row, 0)) continue;
    const cow_String label = inp_Utils::Fold(data.AsStringVerbatim(row, labelColumn));
    const inpS_FoundLabel found = inpS_findLoadLabel(inp_KwFoundation, label);
    if (found.rows.empty()) continue; // told, and the line is none
    cow_List<inpS_LoadedElements::Type> types;
    if (data.IsInteger(row, 0)) {
      long long ordinal = 0;
      const bool isThere = place.GetElementOrdinal(data.AsInt(row, 0), ordinal);
      if (const int type = isThere ? elements.TypeOf(ordinal) : -1; type >= 0)
        types.push_back(elements.Types()[static_cast<std::size_t>(type)]);
    } else {
      const inpS_SetVisitor::Found set =
          place.FindField(inpS_SetVisitor::Kind::Elements, data.FieldText(row, 0));
      if (!set.set.IsNull()) types = elements.TypesOf(set.set.DataRecord(), set.offset);
    }
    for (const inpS_LoadedElements::Type type : types) {
      const cow_String fault = type ? inpS_faultOfLoad(found, label, *type) : cow_String();
      if (fault.empty()) continue;
      messages.AddWarning(inp_Utils::MessageAtField(keyword, row, labelColumn, fault));
      break;
    }
  }
}
