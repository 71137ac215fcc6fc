#include "host/inps_MeshCut.h"

#include "host/inps_Fields.h"
#include <algorithm>
#include <cstring>
#include <map>
#include <span>
#include <tuple>
#include <unordered_map>

namespace {

using Kind = eds_RecordKind;

// Blocks that follow one another as if they were one.
struct Run {
  cow_String key; // what they are, without what tells one from the next
  int64_t first = 0;
  int64_t flatFirst = 0;
  int64_t count = 0;
  bool isOpen = true; // the next block may go on with it
  std::vector<int64_t> blocks;
  std::vector<int64_t> arrays;
  std::vector<int64_t> counts;

  std::tuple<std::string_view, int64_t, int64_t, int64_t> Whole() const {
    return {key, first, flatFirst, count};
  }
  bool Continues(const Run& next) const {
    return isOpen && next.isOpen && key == next.key && first + count == next.first &&
           flatFirst + count == next.flatFirst;
  }
};

bool isNull(const eds_ModelReader& model, eds_FieldID field, int64_t id) {
  return inps_refOf(model, field, id).IsNull();
}

Run nodesOf(const eds_ModelReader& model, int64_t id) {
  Run run;
  run.key = std::to_string(inps_intOf(model, eds_NodeBlock_CoordinateCount, id));
  run.first = inps_intOf(model, eds_NodeBlock_First, id);
  run.flatFirst = inps_intOf(model, eds_NodeBlock_FlatFirst, id);
  run.count = inps_intOf(model, eds_NodeBlock_Count, id);
  run.isOpen = inps_intOf(model, eds_NodeBlock_Generated, id) == 0 &&
               isNull(model, eds_NodeBlock_NormalOrdinals, id) &&
               isNull(model, eds_NodeBlock_LocalCoordinates, id) &&
               isNull(model, eds_NodeBlock_LocalNormals, id);
  run.arrays = {inps_refOf(model, eds_NodeBlock_Coordinates, id).id};
  return run;
}

Run elementsOf(const eds_ModelReader& model, int64_t id) {
  const eds_ObjectID spec = inps_refOf(model, eds_ElementBlock_Spec, id);
  Run run;
  run.key = spec.IsNull() ? cow_String() : inps_textOf(model, eds_ElementSpec_Name, spec.id);
  for (const eds_FieldID field :
       {eds_ElementBlock_Width, eds_ElementBlock_NodeBase, eds_ElementBlock_Offset})
    run.key += ' ' + std::to_string(inps_intOf(model, field, id));
  run.key += ' ' + inps_textOf(model, eds_ElementBlock_Source, id);
  run.first = inps_intOf(model, eds_ElementBlock_First, id);
  run.flatFirst = inps_intOf(model, eds_ElementBlock_FlatFirst, id);
  run.count = inps_intOf(model, eds_ElementBlock_Count, id);
  run.arrays = {inps_refOf(model, eds_ElementBlock_Connectivity, id).id};
  return run;
}

// Those of the model or its assembly, of which there is one: no restart adds to others.
std::vector<Run> runsOf(const eds_ModelReader& model, Kind kind) {
  std::vector<Run> runs;
  for (const int64_t id : model.RecordIDs(kind)) {
    const bool nodes = kind == Kind::NodeBlock;
    const eds_ObjectID owner =
        inps_refOf(model, nodes ? eds_NodeBlock_Owner : eds_ElementBlock_Owner, id);
    if (owner.IsNull() ||
        (owner.RecordKind() != Kind::Model && owner.RecordKind() != Kind::Assembly))
      continue;
    Run run = nodes ? nodesOf(model, id) : elementsOf(model, id);
    run.key += owner.RecordKind() == Kind::Model ? " model" : " assembly";
    run.blocks = {id};
    run.counts = {run.count};
    if (run.arrays.front() == 0) continue; // a damaged file
    if (runs.empty() || !runs.back().Continues(run)) {
      runs.push_back(std::move(run));
      continue;
    }
    Run& last = runs.back();
    last.count += run.count;
    last.blocks.push_back(id);
    last.arrays.push_back(run.arrays.front());
    last.counts.push_back(run.count);
  }
  return runs;
}

// The items of several arrays, one after the other.
class Items {
public:
  Items(const eds_ModelReader& model, std::span<const int64_t> arrays) {
    for (const int64_t id : arrays) m_arrays.push_back(model.Array(id));
  }
  bool IsLike(const Items& other) const {
    const auto isLike = [&](const eds_ArrayReader& array) {
      return array.Width() == other.m_arrays.front().Width() &&
             array.ValueType() == other.m_arrays.front().ValueType();
    };
    return std::ranges::all_of(m_arrays, isLike);
  }
  int64_t Left() { // in the array at hand; 0: at the end of all
    while (m_at < m_arrays.size() && m_item == m_arrays[m_at].Count()) {
      ++m_at;
      m_item = 0;
    }
    return m_at == m_arrays.size() ? 0 : m_arrays[m_at].Count() - m_item;
  }
  void Read(int64_t count, std::vector<std::byte>& bytes) {
    eds_ArrayReader& array = m_arrays[m_at];
    const auto size = static_cast<std::size_t>(eds_sizeOf(array.ValueType()) * array.Width());
    bytes.resize(static_cast<std::size_t>(count) * size);
    array.ReadItems(m_item, bytes);
    m_item += count;
  }
  bool IsReal() const { return m_arrays.front().ValueType() == eds_ValueType::Double; }

private:
  std::vector<eds_ArrayReader> m_arrays;
  std::size_t m_at = 0;
  int64_t m_item = 0;
};

bool isSame(std::span<const std::byte> a, std::span<const std::byte> b, bool isReal,
            const inps_Tolerance& tolerance) {
  if (std::memcmp(a.data(), b.data(), a.size()) == 0) return true;
  if (!isReal || !tolerance.IsGiven()) return false;
  for (std::size_t at = 0; at < a.size(); at += sizeof(double)) {
    double values[2];
    std::memcpy(&values[0], &a[at], sizeof(double));
    std::memcpy(&values[1], &b[at], sizeof(double));
    if (!tolerance.Allows(values[0], values[1])) return false;
  }
  return true;
}

bool isSame(Items a, Items b, const inps_Tolerance& tolerance) {
  constexpr int64_t most = 16384;
  if (!a.IsLike(a) || !b.IsLike(a)) return false;
  std::vector<std::byte> inA, inB;
  for (;;) {
    const int64_t count = std::min({a.Left(), b.Left(), most});
    if (count == 0) return a.Left() == b.Left();
    a.Read(count, inA);
    b.Read(count, inB);
    if (!isSame(inA, inB, a.IsReal(), tolerance)) return false;
  }
}

using DrawersOfArray = std::unordered_multimap<int64_t, int64_t>;

DrawersOfArray drawersOf(const eds_ModelReader& model) {
  DrawersOfArray drawers;
  for (const int64_t id : model.RecordIDs(Kind::Drawer))
    drawers.emplace(inps_refOf(model, eds_Drawer_Array, id).id, id);
  return drawers;
}

void take(const DrawersOfArray& drawers, Kind kind, const Run& run,
          std::unordered_set<uint64_t>& cut) {
  for (const int64_t id : run.blocks) cut.insert(eds_ObjectID(kind, id).Packed());
  for (const int64_t array : run.arrays)
    for (auto [drawer, end] = drawers.equal_range(array); drawer != end; ++drawer)
      cut.insert(eds_ObjectID(Kind::Drawer, drawer->second).Packed());
}

} // namespace

inps_MeshCut inps_compareMeshCut(const eds_ModelReader& a, const eds_ModelReader& b,
                                 const inps_Tolerance& tolerance) {
  inps_MeshCut cut;
  const DrawersOfArray drawersOfA = drawersOf(a);
  const DrawersOfArray drawersOfB = drawersOf(b);
  for (const Kind kind : {Kind::NodeBlock, Kind::ElementBlock}) {
    const std::vector<Run> inB = runsOf(b, kind);
    std::map<decltype(inB.front().Whole()), const Run*> byWhole;
    for (const Run& run : inB) byWhole.try_emplace(run.Whole(), &run);
    for (const Run& run : runsOf(a, kind)) {
      const auto found = byWhole.find(run.Whole());
      if (found == byWhole.end()) continue;
      const Run& other = *found->second;
      if (other.counts == run.counts) continue;
      if (!isSame({a, run.arrays}, {b, other.arrays}, tolerance)) continue;
      take(drawersOfA, kind, run, cut.a);
      take(drawersOfB, kind, other, cut.b);
    }
  }
  return cut;
}
