#include "inpS/sets/inpS_FreeFaces.h"
#include "base/utl_Assert.h"
#include "base/utl_Buffer.h"
#include "base/utl_Threads.h"
#include "inpS/geometry/inpS_FaceSearch.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <list>

namespace {

using Run = inpS_SurfaceElements::Run;
using Lists = std::span<const inp_ShapeList>;

// The faces of a type that are looked at; none: its elements are passed over.
using ListsOf = Lists (*)(const inp_ElementInfo& info);

Lists facesOf(const inp_ElementInfo& info) {
  return inpS_hasFreeFaces(info) ? inp_shape(info.shape).faces : Lists();
}

Lists edgesOf(const inp_ElementInfo& info) {
  return info.dimension == 2 ? inp_shape(info.shape).edges : Lists();
}

// The members of a set that lie in one run.
struct Selected {
  const Run* run = nullptr;
  const inp_Shape* shape = nullptr;
  Lists lists;
  int64_t first = 0; // of the set's members
  int64_t count = 0;
  bool isWhole = false;     // all of the run
  bool isAscending = false; // one after the other
};

cow_List<Selected> select(const cow_List<Run>& runs, const eds_MemberSet& elements,
                          ListsOf listsOf) {
  cow_List<Selected> all;
  const int64_t size = elements.Size();
  for (int64_t at = 0; at < size;) {
    const Run* run = inpS_SurfaceElements::RunAt(runs, elements[at]);
    utl_ASSERT(run != nullptr);
    Selected selected;
    selected.run = run;
    selected.first = at;
    // The first member behind the run, by halving: the set ascends.
    int64_t low = at, high = std::min<int64_t>(size, at + run->count);
    while (low < high) {
      const int64_t middle = (low + high) / 2;
      if (elements[middle] < run->first + run->count)
        low = middle + 1;
      else
        high = middle;
    }
    selected.count = low - at;
    selected.isWhole = selected.count == run->count;
    selected.isAscending = elements[low - 1] - elements[at] == selected.count - 1;
    at = low;
    const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(run->type);
    if (!info) continue;
    selected.shape = &inp_shape(info->shape);
    selected.lists = listsOf(*info);
    if (!selected.lists.empty()) all.push_back(selected);
  }
  return all;
}

// The corners of elements, read once for all instances that share a part's array.
class Corners {
public:
  explicit Corners(const eds_MemberSet& elements) : m_elements(elements) {}

  std::span<const int32_t> Of(const Selected& selected) {
    const int64_t array = selected.run->block->connectivity.id;
    if (selected.isWhole)
      if (const auto known = m_shared.find(array); known != m_shared.end())
        return {known->second->Data(), known->second->Size()};
    utl_Buffer<int32_t>& corners = m_all.emplace_back();
    Read(selected, corners);
    if (selected.isWhole) m_shared[array] = &corners;
    return {corners.Data(), corners.Size()};
  }

private:
  void Read(const Selected& selected, utl_Buffer<int32_t>& corners) const {
    eds_ArrayReader array(selected.run->block->connectivity);
    const auto width = static_cast<std::size_t>(array.Width());
    const auto used = static_cast<std::size_t>(selected.shape->corners);
    const auto count = static_cast<std::size_t>(selected.count);
    utl_ASSERT(used <= width);
    corners.Resize(count * used);
    const int64_t first = m_elements[selected.first] - selected.run->first;
    if (selected.isAscending && used == width) {
      array.ReadPiece<int32_t>(first, corners);
      return;
    }
    int32_t* out = corners.Data();
    int64_t chunkNumber = -1;
    std::span<const int32_t> chunk;
    for (int64_t n = 0; n < selected.count; ++n) {
      const int64_t item = m_elements[selected.first + n] - selected.run->first;
      if (item / array.ItemsPerChunk() != chunkNumber) {
        chunkNumber = item / array.ItemsPerChunk();
        chunk = array.Chunk<int32_t>(chunkNumber);
      }
      const std::size_t at = static_cast<std::size_t>(item % array.ItemsPerChunk()) * width;
      out = std::copy_n(chunk.data() + at, used, out);
    }
  }

  const eds_MemberSet& m_elements; // ascending
  std::list<utl_Buffer<int32_t>> m_all;
  cow_Map<int64_t, utl_Buffer<int32_t>*> m_shared;
};

// Appends the elements of which one list is free.
void append(const eds_MemberSet& elements, const Selected& selected,
            std::span<const unsigned char> free, std::size_t list, std::vector<int32_t>& found) {
  const std::size_t lists = selected.lists.size();
  const auto count = static_cast<std::size_t>(selected.count);
  for (std::size_t n = 0; n < count; ++n)
    if (free[n * lists + list]) found.push_back(elements[selected.first + static_cast<int64_t>(n)]);
}

cow_List<inpS_FaceSet> find(const cow_List<Run>& runs, const eds_MemberSet& members,
                            ListsOf listsOf) {
  const eds_MemberSet elements = members.AscendingSet();
  const cow_List<Selected> all = select(runs, elements, listsOf);
  Corners corners(elements);
  inpS_FaceSearch search;
  std::size_t most = 0;
  for (const Selected& selected : all) {
    search.Add(*selected.shape, selected.lists, corners.Of(selected),
               selected.run->block->nodeBase);
    most = std::max(most, selected.lists.size());
  }
  search.Run();
  cow_List<inpS_FaceSet> sets(most);
  utl_parallelFor(most, [&](std::size_t list) {
    std::vector<int32_t> found;
    for (std::size_t n = 0; n < all.size(); ++n)
      if (list < all[n].lists.size()) append(elements, all[n], search.Free(n), list, found);
    sets[list] = {static_cast<int>(list) + 1, eds_MemberSet::Ordered(std::move(found))};
  });
  std::erase_if(sets, [](const inpS_FaceSet& set) { return set.elements.IsEmpty(); });
  return sets;
}

} // namespace

cow_List<inpS_FaceSet> inpS_freeFaces(const cow_List<Run>& runs, const eds_MemberSet& elements) {
  return find(runs, elements, facesOf);
}

cow_List<inpS_FaceSet> inpS_freeEdges(const cow_List<Run>& runs, const eds_MemberSet& elements) {
  return find(runs, elements, edgesOf);
}
