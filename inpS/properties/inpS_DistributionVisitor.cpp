#include "inpS/properties/inpS_DistributionVisitor.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/properties/inpS_Distribution.h"
#include "inpS/properties/inpS_DistributionReader.h"
#include "parser/inp_Utils.h"

void inpS_DistributionVisitor::Visit(const inp_Keyword& keyword) {
  if (keyword.Kind() == inp_KwDistributionTable)
    inpS_SetVisitor::Visit(keyword);
  else
    inpS_FormVisitor::Visit(keyword);
}

// Without one of the three it says nothing.
const inpS_Form* inpS_DistributionVisitor::Choose(const inp_Keyword& keyword,
                                                  const inp_Keyword* parent) {
  constexpr std::pair<const char*, const char*> required[] = {
      {"name", "The NAME parameter is required."},
      {"table", "The TABLE parameter is required."},
      {"location", "The LOCATION parameter is required."}};
  bool isWhole = true;
  for (const auto& [parameter, text] : required) {
    const inp_Item* item = keyword.Find(parameter);
    if (item && !item->AsString().empty()) continue;
    Error(keyword, text);
    isWhole = false;
  }
  return isWhole ? inpS_FormVisitor::Choose(keyword, parent) : nullptr;
}

bool inpS_DistributionVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                           const KvoSimPosition& record) {
  inpS_DistributionReader reader(keyword, form, record, Names(), inpS_DistributionTable::Of(record),
                                 *this);
  reader.SetInstance(CurrentInstance());
  return reader.Read();
}

void inpS_DistributionVisitor::Converted(const inp_Keyword& keyword, const inpS_Form&,
                                         const KvoSimPosition& record) {
  if (keyword.Data().Rows() == 0)
    Warning(keyword, "The distribution has no data lines: it gives no values.");
  inpS_Distribution::Of(record);
}

// What a distribution of no mesh gives: all columns of its table.
cow_List<inpS_TableColumns::Column> inpS_DistributionVisitor::ColumnsOf(const inp_Keyword& keyword,
                                                                        const inpS_Form& form) {
  cow_List<inpS_TableColumns::Column> columns;
  const eds_FormItem& item = *form.items.back();
  const KvoSimPosition table =
      Names().Find(*item.alternatives.front().referable, keyword.Find("table")->Verbatim()).set;
  for (const cow_String& name : inpS_DistributionTable(table).GetAllComponents()) {
    inpS_TableColumns::Column column;
    column.name = column.tableName = name;
    column.role = inpS_TableColumns::Column::Role::Dependent;
    columns.push_back(column);
  }
  return columns;
}
