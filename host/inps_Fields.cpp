#include "host/inps_Fields.h"

#include "base/utl_Number.h"

namespace {

template <class T>
T valueOf(const eds_ModelReader& model, eds_FieldID field, int64_t id, T absent) {
  const eds_FieldValue value = model.Value(field.record, id, field.number);
  const T* held = std::get_if<T>(&value);
  return held ? *held : absent;
}

const eds_FieldInfo& infoOf(eds_FieldID field) {
  return eds_ModelReader::Info(field.record)->fields[static_cast<std::size_t>(field.number)];
}

} // namespace

cow_String inps_textOf(const eds_ModelReader& model, eds_FieldID field, int64_t id) {
  return cow_String(valueOf<std::string_view>(model, field, id, infoOf(field).textDefault));
}

int64_t inps_intOf(const eds_ModelReader& model, eds_FieldID field, int64_t id) {
  return valueOf<int64_t>(model, field, id, infoOf(field).intDefault);
}

bool inps_boolOf(const eds_ModelReader& model, eds_FieldID field, int64_t id) {
  return valueOf<bool>(model, field, id, infoOf(field).intDefault != 0);
}

eds_ObjectID inps_refOf(const eds_ModelReader& model, eds_FieldID field, int64_t id) {
  return valueOf<eds_ObjectID>(model, field, id, {});
}

bool inps_isDefault(const eds_FieldInfo& field, const eds_FieldValue& value) {
  if (std::holds_alternative<std::monostate>(value)) return true;
  if (const auto* number = std::get_if<int64_t>(&value)) return *number == field.intDefault;
  if (const auto* real = std::get_if<double>(&value)) return *real == field.realDefault;
  if (const auto* flag = std::get_if<bool>(&value)) return *flag == (field.intDefault != 0);
  if (const auto* text = std::get_if<std::string_view>(&value)) return *text == field.textDefault;
  return std::get<eds_ObjectID>(value).IsNull();
}

bool inps_isUnset(const eds_FieldValue& value) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return text->empty();
  if (const auto* object = std::get_if<eds_ObjectID>(&value)) return object->IsNull();
  return std::holds_alternative<std::monostate>(value);
}

cow_String inps_quoted(std::string_view text) {
  static constexpr char hex[] = "0123456789abcdef";
  cow_String out = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (byte < 0x20 || byte == 0x7f) {
      out += {'\\', 'x', hex[byte >> 4], hex[byte & 15]};
    } else {
      out += c;
    }
  }
  return out + '"';
}

cow_String inps_realText(double value) {
  if (!std::isfinite(value)) return std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
  char text[utl_doubleTextRoom];
  return {text, utl_printDouble(text, value)};
}

cow_String inps_valueText(const eds_ModelReader& model, const eds_FieldInfo& field,
                          const eds_FieldValue& value) {
  if (const auto* number = std::get_if<int64_t>(&value)) {
    const bool symbol = field.type == eds_FieldType::Symbol;
    const std::string_view name =
        symbol ? eds_ModelReader::SymbolName(field.vocabulary, *number) : std::string_view();
    return name.empty() ? std::to_string(*number) : cow_String(name);
  }
  if (const auto* real = std::get_if<double>(&value)) return inps_realText(*real);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "yes" : "no";
  if (const auto* text = std::get_if<std::string_view>(&value)) return inps_quoted(*text);
  if (const auto* object = std::get_if<eds_ObjectID>(&value))
    return object->IsNull() ? "none" : model.Describe(*object);
  return "not set";
}
