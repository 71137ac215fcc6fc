#include "inpS/interactions/inpS_ConnectorBehaviorVisitor.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_LackOfLines.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

constexpr long long mostComponents = 6; // relative motions of two nodes

// How many components a line names.
int componentsOn(const inp_DataArray& data, long long row) {
  int count = 0;
  for (int col = 0; row < data.Rows() && col < data.Cols(row); ++col)
    count += data.HasValue(row, col);
  return count;
}

// Each value of its lines may be blank, but not all.
bool boundsAnything(inp_KeywordEnm kind) {
  return kind == inp_KwConnectorStop || kind == inp_KwConnectorLock ||
         kind == inp_KwConnectorFailure || kind == inp_KwConnectorDamageInitiation ||
         kind == inp_KwConnectorConstitutiveReference || kind == inp_KwConnectorDerivedComponent;
}

bool isComponent(long long number) {
  return number >= 1 && number <= mostComponents;
}

} // namespace

void inpS_ConnectorBehaviorVisitor::VisitList(inp_KeywordListRef keywords) {
  const auto isOne = [](const inp_Keyword& one) { return one.Kind() == inp_KwConnectorBehavior; };
  if (std::ranges::any_of(keywords, isOne)) inpS_FormVisitor::VisitList(keywords);
}

// A value for what the keyword is about, then the position or motion of each independent component;
// of a derived component a factor for each component that it is made of.
cow_List<inpS_TableColumns::Column>
inpS_ConnectorBehaviorVisitor::ColumnsOf(const inp_Keyword& keyword, const inpS_Form& form) {
  if (!form.HasTable() || !form.columns.IsEmpty()) return {};
  cow_List<inpS_TableColumns::Column> columns;
  const auto lines = static_cast<long long>(form.info->lines.size());
  const bool isDerived = keyword.Kind() == inp_KwConnectorDerivedComponent;
  const bool isDependent = !isDerived || lines > 1;
  const auto add = [&](const cow_String& name, int number) {
    inpS_TableColumns::Column column;
    column.name = column.tableName = number > 0 ? name + std::to_string(number) : name;
    if (isDependent) column.order = inpS_TableColumns::Column::Order::Any; // a grid of points
    columns.push_back(column);
  };
  if (isDerived)
    for (int n = 1; n <= componentsOn(keyword.Data(), 0); ++n) add("factor_", n);
  else
    add("value", 0);
  if (isDependent)
    for (int n = 1; n <= componentsOn(keyword.Data(), lines - 1); ++n) add("independent_", n);
  return columns;
}

// A term of a potential is of a component, or of a derived one by its name.
cow_String inpS_ConnectorBehaviorVisitor::FaultOfLine(const KvoSimPosition& line) {
  if (!line.IsA(eds_FormKind::ConnectorPotentialTerm)) return {};
  static const int field = eds_formField(eds_FormKind::ConnectorPotentialTerm, "component");
  const KvoSimDataRecord record = line.DataRecord();
  if (record.IsMemberNull(field) || isComponent(record.GetInt64(field))) return {};
  return "Components are numbered from 1 to 6.";
}

// What acts on no component does nothing; it is told and stands as it is.
void inpS_ConnectorBehaviorVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                              const KvoSimPosition& record) {
  const bool isWithoutBounds = boundsAnything(keyword.Kind()) && inpS_isWithoutLines(keyword);
  if (isWithoutBounds || inpS_lacksLines(keyword, *form.info))
    Warning(keyword, "*" + keyword.Name() + " has no data lines: it gives no values.");
  const inp_Item* component = keyword.Find("component");
  if (component && component->IsInteger() && !isComponent(component->AsInt()))
    AddWarning(inp_Utils::MessageAtParameter(
        keyword, "component", "Components are numbered from 1 to 6; this one acts on nothing."));
  for (const auto& line : form.info->lines)
    for (const eds_FormItem& item : line) {
      const int field = item.alternatives.front().field;
      const bool names =
          item.name.starts_with("component_") || item.name.starts_with("independent_");
      if (!names || record.DataRecord().IsMemberNull(field) ||
          isComponent(record.DataRecord().GetInt64(field)))
        continue;
      return Warning(keyword, "Components are numbered from 1 to 6; the line names component " +
                                  std::to_string(record.DataRecord().GetInt64(field)) + ".");
    }
}
