#include "host/inps_ModelSummary.h"

#include "database/KvoObjModel.h"
#include "host/inps_Fields.h"
#include "host/inps_Reporter.h"
#include <unordered_map>

namespace {

using Kind = eds_RecordKind;

class Counter {
public:
  explicit Counter(inps_ModelSummary::Counts& counts) : m_counts(counts) {}
  void Add(const cow_String& name, int64_t count) {
    const auto [entry, isNew] = m_index.try_emplace(name, m_counts.size());
    if (isNew) m_counts.emplace_back(name, 0);
    m_counts[entry->second].second += count;
  }

private:
  inps_ModelSummary::Counts& m_counts;
  std::unordered_map<cow_String, std::size_t> m_index;
};

void addMesh(const eds_ModelReader& model, inps_ModelSummary& summary) {
  for (const int64_t id : model.RecordIDs(Kind::NodeBlock))
    if (inps_intOf(model, eds_NodeBlock_FlatFirst, id) >= 0)
      summary.nodes += inps_intOf(model, eds_NodeBlock_Count, id);

  Counter types(summary.elementTypes);
  for (const int64_t id : model.RecordIDs(Kind::ElementBlock)) {
    if (inps_intOf(model, eds_ElementBlock_FlatFirst, id) < 0) continue;
    const int64_t count = inps_intOf(model, eds_ElementBlock_Count, id);
    const eds_ObjectID spec = inps_refOf(model, eds_ElementBlock_Spec, id);
    summary.elements += count;
    types.Add(spec.IsNull() ? "?" : inps_textOf(model, eds_ElementSpec_Name, spec.id), count);
  }
}

void addParts(const eds_ModelReader& model, inps_ModelSummary& summary) {
  for (const int64_t id : model.RecordIDs(Kind::Part))
    summary.parts.push_back({inps_textOf(model, eds_Part_Name, id),
                             {},
                             inps_intOf(model, eds_Part_NodeCount, id),
                             inps_intOf(model, eds_Part_ElementCount, id)});
  for (const int64_t id : model.RecordIDs(Kind::Instance)) {
    const eds_ObjectID part = inps_refOf(model, eds_Instance_Part, id);
    summary.instances.push_back(
        {inps_textOf(model, eds_Instance_Name, id),
         part.IsNull() ? cow_String() : inps_textOf(model, eds_Part_Name, part.id),
         inps_intOf(model, eds_Instance_NodeCount, id),
         inps_intOf(model, eds_Instance_ElementCount, id)});
  }
}

} // namespace

inps_ModelSummary inps_summarize(const KvoObjDocument& document) {
  const eds_ModelReader model(document);
  inps_ModelSummary summary;
  summary.outcome = inps_outcomeOf(document);
  for (const int64_t id : model.RecordIDs(Kind::Model)) {
    summary.heading = cow_String(model.Annotation(Kind::Model, id));
    while (summary.heading.ends_with('\n')) summary.heading.pop_back();
    summary.dimensions = inps_intOf(model, eds_Model_Dimensions, id);
  }
  addMesh(model, summary);
  addParts(model, summary);
  const KvoSimPosition root = document.GetModel().Position();
  if (!root.IsNull()) { // else cut short at its very start
    summary.materials = root.MemberCount(eds_Member::Materials);
    summary.amplitudes = root.MemberCount(eds_Member::Amplitudes);
  }
  // The mesh's own sets of everything have no name.
  for (const int64_t id : model.RecordIDs(Kind::NodeSet))
    summary.nodeSets += !inps_boolOf(model, eds_NodeSet_Internal, id) &&
                        !inps_textOf(model, eds_NodeSet_Name, id).empty();
  for (const int64_t id : model.RecordIDs(Kind::ElementSet))
    summary.elementSets += !inps_boolOf(model, eds_ElementSet_Internal, id) &&
                           !inps_textOf(model, eds_ElementSet_Name, id).empty();
  for (const int64_t id : model.RecordIDs(Kind::Surface))
    summary.surfaces += !inps_boolOf(model, eds_Surface_Internal, id);
  Counter kept(summary.keptAsText);
  for (const int64_t id : model.RecordIDs(Kind::VerbatimKeyword))
    kept.Add(inps_textOf(model, eds_VerbatimKeyword_Keyword, id), 1);
  for (const eds_RecordInfo* kind : model.Kinds())
    summary.records.emplace_back(kind->table, model.RecordCount(kind->kind));
  return summary;
}

cow_String inps_summaryLine(const inps_ModelSummary& summary) {
  cow_String text = inps_counted(summary.nodes, "node") + ", ";
  text += inps_counted(summary.elements, "element");
  cow_String types;
  for (const auto& [name, count] : summary.elementTypes)
    types += (types.empty() ? "" : ", ") + name + " " + std::to_string(count);
  if (!types.empty()) text += " (" + types + ")";
  if (summary.outcome.IsMeshLeftOut()) // nodes that there are come from a restart
    text += summary.nodes > 0 ? " (the mesh of its base is left out because of its errors)"
                              : " (the mesh is left out because of its errors)";
  if (summary.outcome.IsRestartMeshLeftOut())
    text += " (what its restart adds to the mesh is left out because of its errors)";
  text += ", " + inps_counted(summary.nodeSets, "node set");
  text += ", " + inps_counted(summary.elementSets, "element set");
  if (summary.surfaces > 0) text += ", " + inps_counted(summary.surfaces, "surface");
  if (!summary.parts.empty())
    text += ", " + inps_counted(static_cast<long long>(summary.parts.size()), "part") + ", " +
            inps_counted(static_cast<long long>(summary.instances.size()), "instance");
  return text;
}
