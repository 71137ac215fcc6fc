#include "database/eds_ModelReader.h"
#include "base/utl_Assert.h"
#include "database/engine/eds_Store.h"

eds_ModelReader::eds_ModelReader(const KvoObjDocument& document) : m_document(document) {}

namespace {

eds_Store& storeOf(const KvoObjDocument& document) {
  return *document.ContextID().store;
}

} // namespace

std::vector<const eds_RecordInfo*> eds_ModelReader::Kinds() const {
  std::vector<const eds_RecordInfo*> kinds;
  for (const eds_RecordKind kind : storeOf(m_document).Kinds())
    if (kind != eds_RecordKind::Link && RecordCount(kind) > 0)
      kinds.push_back(eds_schemaRecord(kind));
  return kinds;
}

const eds_RecordInfo* eds_ModelReader::Info(eds_RecordKind kind) {
  return eds_schemaRecord(kind);
}

int64_t eds_ModelReader::RecordCount(eds_RecordKind kind) const {
  return storeOf(m_document).Rows(kind).Count();
}

std::vector<int64_t> eds_ModelReader::RecordIDs(eds_RecordKind kind) const {
  const eds_RowTable& rows = storeOf(m_document).Rows(kind);
  std::vector<int64_t> ids;
  ids.reserve(static_cast<size_t>(rows.Count()));
  for (int64_t id = 1; id <= rows.LastID(); ++id)
    if (rows.Has(id)) ids.push_back(id);
  return ids;
}

eds_FieldValue eds_ModelReader::Value(eds_RecordKind kind, int64_t id, int field) const {
  const eds_RowTable& rows = storeOf(m_document).Rows(kind);
  utl_ASSERT(rows.Has(id));
  const eds_FieldInfo& info = rows.Field(field);
  if (rows.IsNull(id, field)) return {};
  switch (info.type) {
  case eds_FieldType::Int:
  case eds_FieldType::Symbol:
    return rows.Int(id, field);
  case eds_FieldType::Bool:
    return rows.Int(id, field) != 0;
  case eds_FieldType::Real:
    return rows.Real(id, field);
  case eds_FieldType::Text:
  case eds_FieldType::Bytes:
    return rows.Text(id, field);
  case eds_FieldType::Ref:
  case eds_FieldType::AnyRef:
    return rows.Reference(id, field);
  }
  return {};
}

std::string_view eds_ModelReader::SymbolName(eds_Vocabulary vocabulary, int64_t number) {
  const auto symbols = eds_schemaSymbols(vocabulary);
  const bool known = number >= 0 && number < static_cast<int64_t>(symbols.size());
  return known ? symbols[static_cast<size_t>(number)].name : std::string_view();
}

std::vector<eds_LinkInfo> eds_ModelReader::Links(eds_RecordKind kind, int64_t id) const {
  eds_Store& store = storeOf(m_document);
  const eds_RowTable& rows = store.Rows(eds_RecordKind::Link);
  std::vector<eds_LinkInfo> links;
  for (int64_t link : store.Links().LinksFrom({kind, id})) {
    eds_LinkInfo info;
    info.member = static_cast<eds_Member>(rows.Int(link, eds_Link_Member));
    info.memberName = eds_schemaMember(info.member)->name;
    info.position = rows.Int(link, eds_Link_Position);
    info.hasIntKey = !rows.IsNull(link, eds_Link_IntKey);
    info.intKey = rows.Int(link, eds_Link_IntKey);
    info.hasTextKey = !rows.IsNull(link, eds_Link_TextKey);
    info.textKey = rows.Text(link, eds_Link_TextKey);
    info.target = rows.Reference(link, eds_Link_Target);
    links.push_back(info);
  }
  return links;
}

std::string_view eds_ModelReader::Annotation(eds_RecordKind kind, int64_t id) const {
  eds_Store& store = storeOf(m_document);
  const KvoSimPosition note = KvoSimPosition(&store, {kind, id}).Follow(eds_Member::Annotation);
  if (note.IsNull()) return {};
  return store.Rows(eds_RecordKind::Annotation).Text(note.ID(), eds_Annotation_Text);
}

eds_ArrayReader eds_ModelReader::Array(int64_t id) const {
  return eds_ArrayReader(eds_ArrayID{&storeOf(m_document), id});
}

eds_MemberSet eds_ModelReader::CSet(int64_t id) const {
  return *storeOf(m_document).CSet(id);
}

cow_String eds_ModelReader::Describe(eds_ObjectID object) const {
  if (object.IsNull()) return "none";
  eds_Store& store = storeOf(m_document);
  if (object.kind == eds_ObjectID::SymbolKind)
    return store.Exists(object) ? KvoSimPosition(&store, object).GetSymbolName() : "unknown symbol";
  const eds_RecordInfo* info = eds_schemaRecord(object.RecordKind());
  cow_String text =
      info != nullptr ? cow_String(info->table) : "kind " + std::to_string(object.kind);
  text += " " + std::to_string(object.id);
  if (info == nullptr || !store.Exists(object)) return text + " (missing)";
  for (size_t i = 0; i < info->fields.size(); ++i) {
    if (info->fields[i].column != "name" || info->fields[i].type != eds_FieldType::Text) continue;
    const std::string_view name = store.RowsOf(object).Text(object.id, static_cast<int>(i));
    if (!name.empty()) text += " '" + cow_String(name) + "'";
  }
  return text;
}

std::vector<std::pair<cow_String, cow_String>> eds_ModelReader::Meta() const {
  const auto& meta = storeOf(m_document).AllMeta();
  return {meta.begin(), meta.end()};
}
