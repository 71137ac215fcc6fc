#include "base/utl_Assert.h"
#include "database/engine/eds_Store.h"
#include <algorithm>
#include <cstring>
#include <limits>

// Component sets in the store: ranges as three numbers, short lists inside their record, long ones
// as arrays that are read when asked for.

namespace {

enum class Form { All, Strided, AscendingList, OrderedList };

constexpr size_t mostInline = 1024; // members of a list kept inside its record

std::string_view bytesOf(std::span<const int32_t> list) {
  return {reinterpret_cast<const char*>(list.data()), list.size_bytes()};
}

} // namespace

int64_t eds_Store::StoreWholeCSet(int64_t collection) {
  eds_RowTable& rows = Rows(eds_RecordKind::CSet);
  const int64_t id = rows.Create();
  rows.SetReference(id, eds_CSet_Collection, {eds_RecordKind::Collection, collection});
  rows.SetInt(id, eds_CSet_Form, static_cast<int64_t>(Form::All));
  return id;
}

int64_t eds_Store::StoreCSet(int64_t collection, const eds_MemberSet& members) {
  eds_RowTable& rows = Rows(eds_RecordKind::CSet);
  const int64_t id = rows.Create();
  rows.SetReference(id, eds_CSet_Collection, {eds_RecordKind::Collection, collection});
  rows.SetInt(id, eds_CSet_Count, members.Size());
  if (members.IsStrided()) {
    rows.SetInt(id, eds_CSet_Form, static_cast<int64_t>(Form::Strided));
    rows.SetInt(id, eds_CSet_First, members.First());
    rows.SetInt(id, eds_CSet_Stride, members.Stride());
    return id;
  }
  const Form form = members.IsAscending() ? Form::AscendingList : Form::OrderedList;
  rows.SetInt(id, eds_CSet_Form, static_cast<int64_t>(form));
  const std::span<const int32_t> list = members.List();
  if (list.size() <= mostInline) {
    rows.SetText(id, eds_CSet_Members, bytesOf(list));
    return id;
  }
  eds_ArrayWriter writer(this, eds_ValueType::Int32, 1);
  writer.Append(list);
  rows.SetReference(id, eds_CSet_Array, {eds_RecordKind::Array, writer.Finish().id});
  return id;
}

int64_t eds_Store::KeepTempCSet(int64_t collection, std::shared_ptr<const eds_MemberSet> members) {
  m_tempCSets.push_back({collection, std::move(members)});
  return -static_cast<int64_t>(m_tempCSets.size());
}

int64_t eds_Store::CSetCollection(int64_t number) {
  if (number < 0) return m_tempCSets.at(static_cast<size_t>(-number - 1)).collection;
  return Rows(eds_RecordKind::CSet).Reference(number, eds_CSet_Collection).id;
}

int64_t eds_Store::CSetSize(int64_t number) {
  eds_RowTable& rows = Rows(eds_RecordKind::CSet);
  const eds_ObjectID collection = rows.Reference(number, eds_CSet_Collection);
  const bool whole = rows.Int(number, eds_CSet_Form) == static_cast<int64_t>(Form::All);
  if (!whole) return rows.Int(number, eds_CSet_Count);
  return Exists(collection) ? Space(collection.id) : 0;
}

std::shared_ptr<const eds_MemberSet> eds_Store::CSet(int64_t number) {
  if (number < 0) return m_tempCSets.at(static_cast<size_t>(-number - 1)).members;
  std::weak_ptr<const eds_MemberSet>& known = m_csets[number];
  if (std::shared_ptr<const eds_MemberSet> members = known.lock()) return members;
  std::shared_ptr<const eds_MemberSet> members = DecodeCSet(number);
  known = members;
  return members;
}

std::shared_ptr<const eds_MemberSet> eds_Store::DecodeCSet(int64_t number) {
  eds_RowTable& rows = Rows(eds_RecordKind::CSet);
  const eds_ObjectID collection = rows.Reference(number, eds_CSet_Collection);
  const cow_String name = "component set " + std::to_string(number);
  if (!Exists(collection)) Damaged(name + ": no collection");
  const int64_t space = Space(collection.id);
  const int64_t count = rows.Int(number, eds_CSet_Count);
  if (space < 0 || space > std::numeric_limits<int32_t>::max()) Damaged(name + ": space");
  if (count < 0) Damaged(name + ": count");

  const auto form = static_cast<Form>(rows.Int(number, eds_CSet_Form));
  if (form == Form::All) return std::make_shared<eds_MemberSet>(eds_MemberSet::Strided(0, space));
  if (form == Form::Strided) {
    const int64_t first = rows.Int(number, eds_CSet_First);
    const int64_t stride = rows.Int(number, eds_CSet_Stride);
    if (count > 0) {
      const bool inSpace = first >= 0 && first < space && count <= space && stride > -space &&
                           stride < space + 1 && first + (count - 1) * stride >= 0 &&
                           first + (count - 1) * stride < space;
      if (!inSpace || (stride == 0 && count > 1)) Damaged(name + ": members out of range");
    }
    return std::make_shared<eds_MemberSet>(
        eds_MemberSet::Strided(static_cast<int32_t>(first), count, static_cast<int32_t>(stride)));
  }
  if (form != Form::AscendingList && form != Form::OrderedList) Damaged(name + ": unknown form");
  std::vector<int32_t> list;
  const eds_ObjectID array = rows.Reference(number, eds_CSet_Array);
  if (!array.IsNull()) {
    eds_ArrayReader reader(eds_ArrayID{this, array.id});
    if (reader.Count() != count || reader.Width() != 1 ||
        reader.ValueType() != eds_ValueType::Int32)
      Damaged(name + ": its array does not fit");
    list.resize(static_cast<size_t>(count));
    reader.ReadPiece(0, std::span(list));
  } else {
    const std::string_view bytes = rows.Text(number, eds_CSet_Members);
    if (bytes.size() != static_cast<size_t>(count) * sizeof(int32_t)) Damaged(name + ": length");
    list.resize(static_cast<size_t>(count));
    if (count > 0) std::memcpy(list.data(), bytes.data(), bytes.size());
  }
  for (int32_t member : list)
    if (member < 0 || member >= space) Damaged(name + ": members out of range");
  if (form == Form::OrderedList)
    return std::make_shared<eds_MemberSet>(eds_MemberSet::Ordered(std::move(list)));
  if (!std::is_sorted(list.begin(), list.end())) Damaged(name + ": not ascending");
  return std::make_shared<eds_MemberSet>(eds_MemberSet::Ascending(std::move(list)));
}
