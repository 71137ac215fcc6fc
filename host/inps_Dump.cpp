#include "host/inps_Commands.h"

#include "base/utl_Stream.h"
#include "host/inps_Arguments.h"
#include "host/inps_Conversion.h"
#include "host/inps_Fields.h"
#include "host/inps_Input.h"
#include "host/inps_ModelWalk.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include "host/inps_SetLabels.h"
#include <algorithm>
#include <cstring>
#include <unordered_set>

namespace {

// The whole model as lines of text that depend on the model alone: records by kind in the order of
// their creation, fields that nobody set left out (one set to its default is shown: it was
// given), arrays and component sets where they are
// first referred to.
class Dump {
public:
  Dump(const KvoObjDocument& document, utl_Stream& out)
      : m_model(document), m_labels(document), m_out(out) {}

  void Print() {
    for (const eds_RecordInfo* kind : inps_walkedKinds(m_model))
      for (const int64_t id : m_model.RecordIDs(kind->kind)) PrintRecord(*kind, id);
    // What nothing refers to is in the file all the same.
    for (const int64_t id : m_model.RecordIDs(eds_RecordKind::Array))
      if (!m_shown.contains(id)) PrintArray("array without a reference", id);
  }

private:
  void PrintRecord(const eds_RecordInfo& kind, int64_t id) {
    m_out << m_model.Describe({kind.kind, id}) << '\n';
    for (std::size_t field = 0; field < kind.fields.size(); ++field) {
      const eds_FieldInfo& info = kind.fields[field];
      const eds_FieldValue value = m_model.Value(kind.kind, id, static_cast<int>(field));
      if (inps_isUnset(value)) continue;
      if (info.type == eds_FieldType::Bytes && kind.kind == eds_RecordKind::PropertyTable)
        PrintRows(std::get<std::string_view>(value), id);
      else if (info.type == eds_FieldType::Bytes)
        PrintColumn(info, std::get<std::string_view>(value));
      else
        PrintField(info, value);
    }
    PrintLabels(m_labels.Runs(m_model, {kind.kind, id}));
    if (const std::string_view text = m_model.Annotation(kind.kind, id); !text.empty())
      PrintText("annotation", text);
    for (const eds_LinkInfo& link : inps_shownLinks(m_model, {kind.kind, id}))
      m_out << "  " << inps_linkText(link) << " -> " << m_model.Describe(link.target) << '\n';
  }

  void PrintLabels(const cow_List<cow_String>& runs) {
    constexpr std::size_t perLine = 12;
    for (std::size_t i = 0; i < runs.size(); ++i)
      m_out << (i == 0 ? "  labels: " : i % perLine ? ", " : ",\n    ") << runs[i];
    if (!runs.empty()) m_out << '\n';
  }

  void PrintField(const eds_FieldInfo& info, const eds_FieldValue& value) {
    const auto* object = std::get_if<eds_ObjectID>(&value);
    const auto* text = std::get_if<std::string_view>(&value);
    if (object && object->RecordKind() == eds_RecordKind::Array)
      return PrintArray(info.column, object->id);
    if (object && object->RecordKind() == eds_RecordKind::CSet)
      return PrintCSet(info.column, object->id);
    if (text) return PrintText(info.column, *text);
    m_out << "  " << info.column << ": " << inps_valueText(m_model, info, value) << '\n';
  }

  // A text of one line in quotes, a longer one as lines behind a bar.
  void PrintText(std::string_view name, std::string_view text) {
    m_out << "  " << name << ':';
    const bool lines = text.find('\n') != std::string_view::npos;
    if (!lines) {
      m_out << ' ' << inps_quoted(text) << '\n';
      return;
    }
    m_out << '\n';
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t lineEnd = std::min(text.find('\n', at), text.size());
      m_out << "    | " << text.substr(at, lineEnd - at) << '\n';
      at = lineEnd + 1;
    }
  }

  void PrintCSet(std::string_view name, int64_t id) {
    const eds_MemberSet members = m_model.CSet(id);
    const eds_ObjectID collection = inps_refOf(m_model, eds_CSet_Collection, id);
    m_out << "  " << name << ": " << inps_counted(members.Size(), "member") << " of "
          << m_model.Describe(collection);
    if (members.IsStrided() && members.Size() > 0) {
      m_out << ": " << members.First() << " to " << members[members.Size() - 1];
      if (members.Size() > 1 && members.Stride() != 1) m_out << " step " << members.Stride();
    } else {
      for (int64_t i = 0; i < members.Size(); ++i) m_out << (i % 16 ? " " : "\n    ") << members[i];
    }
    m_out << '\n';
  }

  // The values that a property table holds itself.
  void PrintRows(std::string_view bytes, int64_t table) {
    const int64_t columns =
        std::max<int64_t>(1, inps_intOf(m_model, eds_PropertyTable_Columns, table));
    const auto size = static_cast<std::size_t>(columns) * sizeof(double);
    m_out << "  values:\n";
    for (std::size_t row = 0; (row + 1) * size <= bytes.size(); ++row) {
      m_out << "    " << row << ':';
      for (std::size_t at = row * size; at < (row + 1) * size; at += sizeof(double)) {
        double value = 0;
        std::memcpy(&value, bytes.data() + at, sizeof value);
        m_out << ' ' << inps_realText(value);
      }
      m_out << '\n';
    }
  }

  void PrintColumn(const eds_FieldInfo& info, std::string_view bytes) {
    const auto size = static_cast<std::size_t>(eds_sizeOf(info.valueType));
    m_out << "  " << info.column << ':';
    for (std::size_t at = 0; at + size <= bytes.size(); at += size)
      m_out << ' '
            << inps_itemValueText(info.valueType,
                                  reinterpret_cast<const std::byte*>(bytes.data() + at));
    m_out << '\n';
  }

  // Rows of an array are its items; an array of single values has ten to a row.
  void PrintArray(std::string_view name, int64_t id) {
    eds_ArrayReader array = m_model.Array(id);
    const eds_ValueType type = array.ValueType();
    m_out << "  " << name << ": array " << id << ", " << array.Count() << " x " << array.Width()
          << ' ' << inps_valueTypeName(type);
    if (!m_shown.insert(id).second) {
      m_out << ", shown above\n";
      return;
    }
    m_out << '\n';
    const int64_t perRow = array.Width() == 1 ? 10 : array.Width();
    const int64_t size = eds_sizeOf(type);
    int64_t count = 0; // values
    inps_forPieces(array, [&](int64_t, std::span<const std::byte> bytes) {
      for (std::size_t at = 0; at < bytes.size(); at += static_cast<std::size_t>(size), ++count) {
        if (count % perRow == 0)
          m_out << (count ? "\n    " : "    ") << count / array.Width() << ':';
        m_out << ' ' << inps_itemValueText(type, bytes.data() + at);
      }
      return true;
    });
    if (count > 0) m_out << '\n';
  }

  eds_ModelReader m_model;
  inps_SetLabels m_labels;
  utl_Stream& m_out;
  std::unordered_set<int64_t> m_shown; // arrays
};

} // namespace

int inps_dump(inps_Session& session, const inps_Arguments& arguments) {
  inps_Run run(session, arguments);
  return run.Do([&]() -> int {
    const inps_Input input(arguments.Operands()[0], session);
    const KvoObjDocument document = inps_openModelOrDeck(input, run);
    if (document.IsNull()) return inps_ExitFaults;
    utl_Stream out(session.out);
    Dump(document, out).Print();
    out.Close();
    return run.Reporter().Errors() > 0 ? inps_ExitFaults : inps_ExitDone;
  });
}
