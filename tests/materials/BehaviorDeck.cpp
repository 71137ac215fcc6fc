#include "tests/materials/BehaviorDeck.h"
#include "database/schema/eds_FormKind.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

using Column = inpS_TableColumns::Column;
constexpr int kRepeats = 2; // of a group of columns
constexpr double kTemperature = 400;

// Whether rows of one state differ in the column.
bool isPoint(const Column& column) {
  return column.role == Column::Role::Independent || column.order != Column::Order::None;
}

bool hasPoints(const inpS_Form& behavior) {
  const auto once = [](const cow_String&, long long) { return 1; };
  return std::ranges::any_of(behavior.columns.Expand(once), isPoint);
}

class Maker {
public:
  Maker(const inpS_Form& behavior, BehaviorForm form, int& number)
      : m_behavior(behavior), m_form(form), m_number(number) {}

  BehaviorCase Make() {
    m_case.behavior = &m_behavior;
    m_case.name = "M" + std::to_string(++m_number);
    AddParents(m_behavior);
    m_case.keywords.push_back(KeywordText(m_behavior, m_form, &m_case));
    return std::move(m_case);
  }

  BehaviorCase MakeLeast() {
    m_case.behavior = &m_behavior;
    m_case.name = "M" + std::to_string(++m_number);
    AddParents(m_behavior);
    m_case.keywords.push_back(KeywordText(m_behavior, m_form, nullptr));
    return std::move(m_case);
  }

private:
  static const inp_KeywordRow& RowOf(inp_KeywordEnm keyword) {
    return *inp_KeywordTable::Instance().Row(keyword);
  }

  // The keywords that have to stand above this one, outermost first.
  void AddParents(const inpS_Form& behavior) {
    inp_KeywordEnm parent = behavior.parent;
    if (parent == inp_NullKeyword) {
      const auto parents = RowOf(behavior.keyword).parents;
      for (const inp_KeywordEnm outer : {inp_KwMaterial, inp_KwGasketBehavior}) {
        if (std::ranges::find(parents, outer) == parents.end()) continue;
        m_case.gasket = outer == inp_KwGasketBehavior;
        return;
      }
      parent = FirstConverted(parents);
    }
    for (const inpS_Form* row : inpS_behaviorForms()) {
      if (row->keyword != parent || !Serves(*row, behavior)) continue;
      AddParents(*row);
      m_case.keywords.push_back(KeywordText(*row, {1, false, 0}, nullptr));
      return;
    }
  }

  static inp_KeywordEnm FirstConverted(std::span<const inp_KeywordEnm> parents) {
    for (const inp_KeywordEnm parent : parents)
      if (inpS_isBehavior(parent)) return parent;
    return inp_NullKeyword;
  }

  static bool Serves(const inpS_Form& parent, const inpS_Form& child) {
    return std::ranges::all_of(child.parentSelectors, [&](const auto& wanted) {
      return std::ranges::any_of(parent.selectors, [&](const auto& has) {
        return has.key == wanted.key && has.word == wanted.word;
      });
    });
  }

  cow_String KeywordText(const inpS_Form& behavior, BehaviorForm form, BehaviorCase* expected) {
    cow_String text = "*" + cow_String(RowOf(behavior.keyword).name);
    for (const auto& selector : behavior.selectors) {
      if (selector.isField && expected) continue;
      text += ", " + selector.name;
      if (!selector.text.empty()) text += "=" + selector.text;
    }
    const cow_List<cow_String> counts = behavior.columns.Parameters();
    for (const inpS_ParameterBinding& binding : behavior.parameters) {
      const bool isCount = std::ranges::find(counts, binding.key) != counts.end();
      if (!isCount && !expected) continue;
      text += ParameterText(binding, isCount, expected);
    }
    if (form.variables > 0) text += ", DEPENDENCIES=" + std::to_string(form.variables);
    text += '\n';
    if (behavior.HasTable()) text += RowsText(behavior, form, expected);
    if (behavior.info->textField >= 0) text += "3\n";
    return text;
  }

  cow_String ParameterText(const inpS_ParameterBinding& binding, bool isCount,
                           BehaviorCase* expected) {
    const cow_String name = ", " + binding.name;
    if (isCount || binding.codec == inpS_Codec::Int) {
      const int value = isCount ? kRepeats : ++m_number;
      if (expected) expected->integers[binding.field] = value;
      return name + "=" + std::to_string(value);
    }
    if (binding.codec == inpS_Codec::Real) {
      const double value = Next();
      if (expected) expected->reals[binding.field] = value;
      return name + "=" + Text(value);
    }
    if (binding.codec == inpS_Codec::Flag) {
      if (expected) expected->integers[binding.field] = 1;
      return name;
    }
    return name + "=" +
           (binding.words.empty() ? "W" + std::to_string(++m_number)
                                  : cow_String(binding.words.back()));
  }

  static cow_String Text(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
  }

  double Next() { return 1.0 + 0.125 * ++m_number; }

  // A number that the column takes, unlike all others where its bounds leave room.
  double ValueOf(const Column& column, int row) {
    if (column.fromZero) return row;
    if (isPoint(column) && std::isfinite(column.low) && std::isfinite(column.high))
      return column.low + (column.high - column.low) / 64 * (row + 1 + 1.0 / (++m_number + 2));
    if (std::isfinite(column.low) && std::isfinite(column.high)) {
      const double part = 1.0 / 1024 * (++m_number % 1000 + 1);
      return column.low + (column.high - column.low) * part;
    }
    if (std::isfinite(column.high)) return column.high - Next();
    return (std::isfinite(column.low) ? column.low : 0) + Next();
  }

  cow_String RowsText(const inpS_Form& behavior, BehaviorForm form, BehaviorCase* expected) {
    const auto count = [](const cow_String& parameter, long long absent) {
      return parameter == "b" ? absent : kRepeats; // a group of fixed length
    };
    const cow_List<Column> columns = behavior.columns.Expand(count);
    const bool isotropic = behavior.kind == eds_FormKind::PlasticIsotropic;
    cow_String text;
    for (int row = 0; row < form.rows; ++row) {
      cow_List<double> given;
      for (const Column& column : columns) given.push_back(ValueOf(column, row));
      for (std::size_t n = 0; n < columns.size(); ++n)
        if (!columns[n].highColumn.empty())
          given[n] = given[PlaceOf(columns[n].highColumn, columns)] / 2;
      const int state = std::ranges::any_of(columns, isPoint) ? 0 : row;
      if (form.temperature) given.push_back(kTemperature + state);
      if (!form.temperature && form.variables > 0 && behavior.HasTemperature())
        given.push_back(0); // keeps its place
      for (int n = 0; n < form.variables; ++n) given.push_back(7 + n + state);
      AddLines(text, given);
      if (!expected) continue;
      if (!form.temperature && form.variables > 0 && behavior.HasTemperature())
        given.erase(given.begin() + static_cast<std::ptrdiff_t>(columns.size()));
      if (isotropic) given.insert(given.begin() + 2, 0.0); // the rate
      expected->values.insert(expected->values.end(), given.begin(), given.end());
    }
    return text;
  }

  static std::size_t PlaceOf(const cow_String& name, const cow_List<Column>& columns) {
    return static_cast<std::size_t>(std::ranges::find(columns, name, &Column::name) -
                                    columns.begin());
  }

  static void AddLines(cow_String& text, const cow_List<double>& values) {
    for (std::size_t n = 0; n < values.size(); ++n) {
      text += Text(values[n]);
      text += n + 1 == values.size() ? "\n" : n % 8 == 7 ? ",\n" : ", ";
    }
  }

  const inpS_Form& m_behavior;
  BehaviorForm m_form;
  int& m_number;
  BehaviorCase m_case;
};

} // namespace

cow_List<BehaviorCase> behaviorCases(const inpS_Form& behavior, int& number) {
  const inp_KeywordRow& row = *inp_KeywordTable::Instance().Row(behavior.keyword);
  const bool mayDepend = std::ranges::find(row.parameters, "dependencies") != row.parameters.end();
  cow_List<BehaviorCase> cases;
  for (const int rows : {1, 5}) {
    for (const bool temperature : {false, true}) {
      for (const int variables : {0, 2}) {
        if (temperature && !behavior.HasTemperature()) continue;
        if (variables > 0 && !(mayDepend && behavior.HasTable())) continue;
        if (rows > 1 && !behavior.HasTable()) continue;
        const bool oneState = !temperature && variables == 0 && behavior.HasTemperature();
        if (rows > 1 && oneState && !hasPoints(behavior)) continue; // a state is given once
        cases.push_back(Maker(behavior, {rows, temperature, variables}, number).Make());
      }
    }
  }
  return cases;
}

BehaviorCase leastCase(const inpS_Form& behavior, int& number) {
  return Maker(behavior, {}, number).MakeLeast();
}
