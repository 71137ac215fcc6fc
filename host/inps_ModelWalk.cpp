#include "host/inps_ModelWalk.h"

#include "host/inps_Fields.h"
#include <cstring>

bool inps_isShownInline(eds_RecordKind kind) {
  return kind == eds_RecordKind::Array || kind == eds_RecordKind::CSet ||
         kind == eds_RecordKind::Link || kind == eds_RecordKind::Annotation;
}

std::vector<const eds_RecordInfo*> inps_walkedKinds(const eds_ModelReader& model) {
  std::vector<const eds_RecordInfo*> kinds = model.Kinds();
  std::erase_if(kinds, [](const eds_RecordInfo* kind) { return inps_isShownInline(kind->kind); });
  return kinds;
}

std::vector<eds_LinkInfo> inps_shownLinks(const eds_ModelReader& model, eds_ObjectID owner) {
  std::vector<eds_LinkInfo> links = model.Links(owner.RecordKind(), owner.id);
  std::erase_if(links,
                [](const eds_LinkInfo& link) { return link.member == eds_Member::Annotation; });
  return links;
}

cow_String inps_linkText(const eds_LinkInfo& link) {
  cow_String text(link.memberName);
  if (link.hasTextKey) return text + "[" + inps_quoted(link.textKey) + "]";
  if (link.hasIntKey) return text + "[" + std::to_string(link.intKey) + "]";
  return text;
}

std::string_view inps_valueTypeName(eds_ValueType type) {
  constexpr std::string_view names[] = {"int32", "int64", "double", "byte"};
  return names[static_cast<std::size_t>(type)];
}

cow_String inps_itemValueText(eds_ValueType type, const std::byte* at) {
  const auto read = [at](auto value) {
    std::memcpy(&value, at, sizeof value);
    return value;
  };
  switch (type) {
  case eds_ValueType::Int32:
    return std::to_string(read(int32_t{}));
  case eds_ValueType::Int64:
    return std::to_string(read(int64_t{}));
  case eds_ValueType::Double:
    return inps_realText(read(double{}));
  case eds_ValueType::Byte:
    return std::to_string(std::to_integer<int>(*at));
  }
  return {};
}
