#include "host/inps_ExportCells.h"

#include <algorithm>

int64_t inps_countBelow(const eds_MemberSet& set, int64_t bound) {
  int64_t low = 0;
  for (int64_t high = set.Size(); low < high;) {
    const int64_t middle = low + (high - low) / 2;
    set[middle] < bound ? low = middle + 1 : high = middle;
  }
  return low;
}

eds_MemberSet inps_shifted(const eds_MemberSet& set, int64_t by) {
  const auto shift = static_cast<int32_t>(by);
  if (shift == 0) return set;
  if (set.IsStrided()) return eds_MemberSet::Strided(set.First() + shift, set.Size(), set.Stride());
  std::vector<int32_t> members = set.Members();
  for (int32_t& member : members) member += shift;
  return eds_MemberSet::Ascending(std::move(members));
}

namespace {

constexpr int64_t entriesPerWindow = 16 << 10; // of the connectivity, read at once

// Stands for the recipe of an element that fits none: as many points as it has nodes.
constexpr int pointsKey = 1000;

eds_MemberSet sliceOf(const eds_MemberSet& set, int64_t first, int64_t count) {
  if (first == 0 && count == set.Size()) return set;
  if (set.IsStrided()) return eds_MemberSet::Strided(set[first], count, set.Stride());
  std::vector<int32_t> members(static_cast<std::size_t>(count));
  set.Copy(first, members);
  return eds_MemberSet::Ascending(std::move(members));
}

bool fits(const inps_CellRecipe& recipe, const int32_t* nodes, int width) {
  return std::ranges::all_of(recipe.Nodes(),
                             [&](int node) { return node < width && nodes[node] >= 0; });
}

int presentOf(const int32_t* nodes, int count) {
  return static_cast<int>(std::count_if(nodes, nodes + count, [](int32_t n) { return n >= 0; }));
}

} // namespace

// Calls take(nodes, cell of the run) for the cells [from, to) of a run: elements that lie close
// together are read together.
template <class Take>
void inps_ExportCells::ForNodes(const Run& run, int64_t from, int64_t to, Take take) const {
  const int width = m_mesh.ElementBlocks()[run.block].block.width;
  const int64_t span = std::max<int64_t>(1, entriesPerWindow / std::max(1, width));
  thread_local std::vector<int32_t> nodes;
  for (int64_t begin = from; begin < to;) {
    const int32_t first = run.elements[begin];
    int64_t end = begin + 1;
    if (run.elements.IsStrided() && run.elements.Stride() == 1)
      end = std::min(to, begin + span);
    else
      while (end < to && run.elements[end] - first < span) ++end;
    const int32_t last = run.elements[end - 1];
    nodes.resize(static_cast<std::size_t>((last - first + 1) * width));
    m_mesh.ReadConnectivity(run.block, first, nodes);
    for (int64_t cell = begin; cell < end; ++cell)
      take(nodes.data() + int64_t{run.elements[cell] - first} * width, cell);
    begin = end;
  }
}

// Calls take(run, from, to, done so far) for a stretch of cells.
template <class Take>
void inps_ExportCells::ForCells(int64_t first, int64_t count, Take take) const {
  if (count == 0) return;
  auto run = std::ranges::upper_bound(m_runs, first, {}, &Run::firstCell) - 1;
  for (int64_t done = 0; done < count; ++run) {
    const int64_t from = first + done - run->firstCell;
    const int64_t to = std::min(run->elements.Size(), from + count - done);
    take(*run, from, to, done);
    done += to - from;
  }
}

// ---- planning

void inps_ExportCells::AddAllElements() {
  AddElements(eds_MemberSet::Strided(0, m_mesh.ElementCount()));
}

void inps_ExportCells::AddElements(const eds_MemberSet& flat) {
  Add(
      flat, [](const inps_FlatMesh::Elements& of) { return inps_cellRecipes(of.shape); }, true);
}

void inps_ExportCells::AddFaces(const eds_MemberSet& flat, eds_SurfaceFace face) {
  Add(
      flat, [face](const inps_FlatMesh::Elements& of) { return inps_faceRecipes(of.shape, face); },
      false);
}

void inps_ExportCells::Add(const eds_MemberSet& flat, const RecipesOf& recipesOf,
                           bool areElements) {
  const auto& blocks = m_mesh.ElementBlocks();
  for (int64_t at = inps_countBelow(flat, 0);
       at < flat.Size() && flat[at] < m_mesh.ElementCount();) {
    const std::size_t number = m_mesh.ElementBlockOf(flat[at]);
    const KvoMeshElementBlock& block = blocks[number].block;
    const int64_t end = inps_countBelow(flat, block.flatFirst + block.count);
    AddOfBlock(number, inps_shifted(sliceOf(flat, at, end - at), -block.flatFirst),
               recipesOf(blocks[number]), areElements);
    at = end;
  }
}

void inps_ExportCells::AddOfBlock(std::size_t block, const eds_MemberSet& elements,
                                  std::span<const inps_CellRecipe> recipes, bool areElements) {
  const inps_FlatMesh::Elements& of = m_mesh.ElementBlocks()[block];
  const int width = of.block.width;
  inps_CellRecipe points;
  const auto recipeOf = [&](int key) -> const inps_CellRecipe& {
    if (key < pointsKey) return recipes[static_cast<std::size_t>(key)];
    return points = inps_pointsRecipe(key - pointsKey);
  };
  // Elements of one key that follow one another make a run.
  int runKey = -1;
  int64_t runFirst = 0;
  const auto endRun = [&](int64_t end) {
    if (runKey == pointsKey && !areElements)
      m_withoutFace += end - runFirst;
    else if (end > runFirst)
      AddRun(block, sliceOf(elements, runFirst, end - runFirst), recipeOf(runKey));
    runFirst = end;
  };
  Run all;
  all.block = block;
  all.elements = elements;
  ForNodes(all, 0, elements.Size(), [&](const int32_t* nodes, int64_t cell) {
    const int present = presentOf(nodes, of.physicalNodes);
    int key = 0;
    const int count = static_cast<int>(recipes.size());
    while (key < count && !fits(recipes[static_cast<std::size_t>(key)], nodes, width)) ++key;
    if (key == count) key = areElements ? pointsKey + present : pointsKey;
    if (key != runKey) endRun(cell);
    runKey = key;
    const inps_CellRecipe& taken = recipeOf(key);
    if (areElements && (taken.size < present || taken.type == inps_VtkPolyVertex))
      CountLoss(of.type, taken.type, 1);
  });
  endRun(elements.Size());
}

void inps_ExportCells::AddRun(std::size_t block, eds_MemberSet elements,
                              const inps_CellRecipe& recipe) {
  Run run{block, std::move(elements), recipe, m_cells, m_values};
  m_cells += run.elements.Size();
  m_values += run.elements.Size() * recipe.size;
  m_runs.push_back(std::move(run));
}

void inps_ExportCells::CountLoss(int type, uint8_t cell, int64_t count) {
  for (Loss& loss : m_losses)
    if (loss.type == type && loss.cell == cell) {
      loss.count += count;
      return;
    }
  m_losses.push_back({type, cell, count});
}

// ---- filling in

namespace {

// The flat nodes of one cell in VTK's order.
void takeNodes(const inps_CellRecipe& recipe, const int32_t* nodes, int width, int32_t* out) {
  if (!recipe.anyPresent) {
    for (const uint8_t node : recipe.Nodes()) *out++ = nodes[node];
    return;
  }
  int left = recipe.size;
  for (int n = 0; n < width && left > 0; ++n)
    if (nodes[n] >= 0) {
      *out++ = nodes[n];
      --left;
    }
}

} // namespace

void inps_ExportCells::MarkNodes(inps_NodeSelection& selection) const {
  std::vector<int32_t> cellNodes;
  for (const Run& run : m_runs) {
    const int width = m_mesh.ElementBlocks()[run.block].block.width;
    cellNodes.resize(static_cast<std::size_t>(run.recipe.size));
    ForNodes(run, 0, run.elements.Size(), [&](const int32_t* nodes, int64_t) {
      takeNodes(run.recipe, nodes, width, cellNodes.data());
      for (const int32_t node : cellNodes) selection.Add(node);
    });
  }
}

void inps_ExportCells::FillConnectivity(const inps_NodeSelection& selection, int64_t first,
                                        std::span<int32_t> out) const {
  const int64_t end = first + static_cast<int64_t>(out.size());
  if (first == end) return;
  thread_local std::vector<int32_t> cellNodes;
  auto run = std::ranges::upper_bound(m_runs, first, {}, &Run::firstValue) - 1;
  for (; run != m_runs.end() && run->firstValue < end; ++run) {
    const int64_t size = run->recipe.size;
    if (size == 0) continue;
    const int width = m_mesh.ElementBlocks()[run->block].block.width;
    const int64_t from = std::max<int64_t>(0, first - run->firstValue) / size;
    const int64_t to = std::min(run->elements.Size(), (end - run->firstValue + size - 1) / size);
    cellNodes.resize(static_cast<std::size_t>(size));
    ForNodes(*run, from, to, [&](const int32_t* nodes, int64_t cell) {
      takeNodes(run->recipe, nodes, width, cellNodes.data());
      const int64_t at = run->firstValue + cell * size; // a block may begin and end within a cell
      const int64_t begin = std::max<int64_t>(0, first - at);
      const int64_t stop = std::min(size, end - at);
      for (int64_t i = begin; i < stop; ++i)
        out[static_cast<std::size_t>(at + i - first)] =
            selection.Index(cellNodes[static_cast<std::size_t>(i)]);
    });
  }
}

void inps_ExportCells::FillOffsets(int64_t first, std::span<int64_t> out) const {
  ForCells(first, static_cast<int64_t>(out.size()),
           [&](const Run& run, int64_t from, int64_t to, int64_t done) {
             for (int64_t cell = from; cell < to; ++cell)
               out[static_cast<std::size_t>(done + cell - from)] =
                   run.firstValue + (cell + 1) * run.recipe.size;
           });
}

void inps_ExportCells::FillTypes(int64_t first, std::span<uint8_t> out) const {
  ForCells(first, static_cast<int64_t>(out.size()),
           [&](const Run& run, int64_t from, int64_t to, int64_t done) {
             std::fill_n(out.begin() + done, to - from, run.recipe.type);
           });
}

void inps_ExportCells::FillElements(int64_t first, std::span<int32_t> out) const {
  ForCells(first, static_cast<int64_t>(out.size()),
           [&](const Run& run, int64_t from, int64_t to, int64_t done) {
             const auto base =
                 static_cast<int32_t>(m_mesh.ElementBlocks()[run.block].block.flatFirst);
             run.elements.Copy(from, out.subspan(static_cast<std::size_t>(done),
                                                 static_cast<std::size_t>(to - from)));
             for (int64_t i = 0; i < to - from; ++i)
               out[static_cast<std::size_t>(done + i)] += base;
           });
}
