#include "inpS/model/inpS_RestartDefinitions.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "parser/inp_Parser.h"

namespace {

constexpr int kHistoryBlock = 29;

bool isNamed(inp_KeywordEnm kind) {
  return kind == inp_KwMaterial || kind == inp_KwGasketBehavior;
}

// Physical constants have no name: there is one set of them.
cow_String nameOf(const inp_Keyword& keyword) {
  return isNamed(keyword.Kind()) ? keyword.StringOf("name", {}) : cow_String();
}

} // namespace

inpS_RestartDefinitions::inpS_RestartDefinitions(const KvoObjDocument& document) {
  const KvoSimPosition model = document.GetModel().Position();
  for (const cow_String& name : model.GetStringKeys(eds_Member::Materials))
    m_names.emplace(inp_KwMaterial, name);
  for (const cow_String& name : model.GetStringKeys(eds_Member::GasketBehaviors))
    m_names.emplace(inp_KwGasketBehavior, name);
  if (!model.Follow(eds_Member::PhysicalConstants).IsNull())
    m_names.emplace(inp_KwPhysicalConstants, "");
  AddKept(document);
}

// Those that an earlier restart kept as text.
void inpS_RestartDefinitions::AddKept(const KvoObjDocument& document) {
  for (const KvoSimPosition& kept :
       document.Context().GetRecords(eds_RecordKind::VerbatimKeyword)) {
    const KvoSimDataRecord record = kept.DataRecord();
    const std::string_view name = record.GetString(eds_VerbatimKeyword_Keyword);
    if (name != "MATERIAL" && name != "GASKET BEHAVIOR" && name != "PHYSICAL CONSTANTS") continue;
    if (record.GetInt(eds_VerbatimKeyword_Block) == kHistoryBlock) continue; // the step's own
    inp_Parser parser(cow_String(record.GetString(eds_VerbatimKeyword_Text)), "", {}, "", true,
                      true, false);
    for (const inp_Keyword& keyword : parser.Parse(false))
      m_names.emplace(keyword.Kind(), nameOf(keyword));
  }
}

cow_String inpS_RestartDefinitions::Conflict(const inp_Keyword& keyword) {
  const inp_KeywordEnm kind = keyword.Kind();
  const bool named = isNamed(kind);
  if (!named && kind != inp_KwPhysicalConstants) {
    m_refused = false; // what is refused has come to its end
    return {};
  }
  const cow_String name = nameOf(keyword);
  m_refused = !(named && name.empty()) && !m_names.emplace(kind, name).second;
  if (!m_refused) return {};
  if (!named) return "The model that is restarted has physical constants; these are left out.";
  return cow_String(kind == inp_KwMaterial ? "Material" : "Gasket behavior") + " with name \"" +
         name + "\" has already been defined; this one is left out with all that belongs to it.";
}

bool inpS_RestartDefinitions::IsOfRefused(const inp_Keyword& keyword) const {
  return m_refused &&
         (keyword.ParentKind() != inp_NullKeyword || keyword.Kind() == inp_UnknownKeyword);
}
