#include "inpS/writer/inpS_PropertyDescription.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSrvFsmFTable.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/writer/inpS_PropertyWords.h"
#include "parser/inp_KeywordTable.h"

namespace {

using Description = inpS_PropertyDescription;
using Role = inpS_TableColumns::Column::Role;

// Takes the next of the names that a table holds for its columns, when it is this one.
bool takeName(const cow_List<cow_String>& names, std::size_t& next, const cow_String& name) {
  if (next >= names.size() || names[next] != name) return false;
  ++next;
  return true;
}

// The row's columns but those that no line of the deck gave, for the table does not hold them. What
// the table holds beyond them, such as the rate of hardening rows, stands behind them.
cow_List<Description::Column> columnsOf(const inpS_Form& behavior, const KvoSimPosition& property) {
  cow_List<Description::Column> columns;
  const KvoSrvFsmFTable table = property.GetFTable();
  if (table.IsNull()) return columns;
  const cow_List<cow_String> dependent = table.DependentColumns();
  const cow_List<cow_String> independent = table.IndependentColumns();
  std::size_t dependents = 0;
  std::size_t independents = 0;
  for (const auto& column : behavior.columns.Expand(behavior.CountIn(property.DataRecord()))) {
    const bool isHeld =
        column.role == Role::Independent ? takeName(independent, independents, column.tableName)
        : column.role == Role::Dependent ? takeName(dependent, dependents, column.tableName)
                                         : true;
    // Many of one name are told apart by their number.
    if (isHeld) columns.push_back({column.name, column.role == Role::Independent});
  }
  for (; independents < independent.size(); ++independents)
    columns.push_back({independent[independents], true});
  const auto held = static_cast<std::size_t>(table.NumOfCols() - table.NumberFieldVariables() -
                                             (table.IsTemperatureDependent() ? 1 : 0));
  while (columns.size() < held) columns.push_back({"Value" + std::to_string(columns.size() + 1)});
  columns.resize(held);
  return columns;
}

// Reads the properties of one owner, with one buffer for all texts.
class Describer {
public:
  explicit Describer(const KvoSimPosition& owner) : m_owned(owner) {}

  cow_List<Description> Run() {
    for (const KvoSimPosition& property : m_owned.properties) Add(property, 0);
    return std::move(m_all);
  }

private:
  template <class Print> cow_String Text(Print print) {
    m_text.clear();
    print();
    m_out.Flush();
    return m_text;
  }

  void Add(const KvoSimPosition& property, int depth) {
    Description description{property, depth, {}, {}, {}};
    const inpS_Form* behavior = inpS_FormTable::Instance().Find(property.Object().RecordKind());
    if (!behavior) return; // of a newer version's kind: nothing is known of it
    description.variant = Text([&] { inpS_printVariant(m_out, *behavior); });
    description.parameters =
        Text([&] { inpS_printOtherParameters(m_out, *behavior, property.DataRecord()); });
    description.columns = columnsOf(*behavior, property);
    m_all.push_back(std::move(description));
    const inpS_PropertySuboptions suboptions = inpS_suboptionsOf(property, m_owned.potentials);
    for (const inp_KeywordEnm flag : suboptions.flags)
      m_all.push_back(
          {{}, depth + 1, "*" + cow_String(inp_KeywordTable::Instance().Row(flag)->name), {}, {}});
    for (const KvoSimPosition& suboption : suboptions.properties) Add(suboption, depth + 1);
  }

  inpS_OwnedProperties m_owned;
  cow_List<Description> m_all;
  cow_String m_text;
  utl_Stream m_out{&m_text};
};

} // namespace

cow_List<inpS_PropertyDescription> inpS_describeProperties(const KvoSimPosition& owner) {
  return Describer(owner).Run();
}
