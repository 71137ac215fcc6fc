#include "host/inps_DuplicateNodes.h"
#include "base/utl_BlockSize.h"

#include "base/utl_Threads.h"
#include "host/inps_FlatMesh.h"
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

// Space is cut into cells far greater than the tolerance and far smaller than any element. Nodes
// get the hash of their cell; those near a border get that of the neighbours too. Equal hashes make
// groups, within which places are compared.

namespace {

constexpr int64_t nodesPerBlock = 32 << 10;
constexpr int64_t nodesPerPass = 4 << 20;
constexpr int64_t nodesLookedAt = 1 << 16; // for the size of the model
constexpr double cellSize = 1e-7;          // of the model
constexpr double gridShift = 0.381966;     // of a cell: round coordinates do not lie on borders
constexpr std::size_t partitionCount = 256;

using Place = std::array<double, 3>;
using Entry = uint64_t;           // hash of the cell, then the node
using Groups = cow_List<int32_t>; // node ordinals, -1 behind every group

int32_t nodeOf(Entry entry) {
  return static_cast<int32_t>(entry & 0xffffffffu);
}

uint32_t hashOf(const Place& cell) {
  uint64_t hash = 0x9e3779b97f4a7c15u;
  for (const double part : cell) {
    hash = (hash ^ std::bit_cast<uint64_t>(part + 0.0)) * 0xbf58476d1ce4e5b9u; // no -0
    hash ^= hash >> 29;
  }
  return static_cast<uint32_t>(hash >> 32);
}

// Calls take(first, coordinates) for blocks of nodes on all threads.
template <class Make, class Take> void forPlaces(const inps_FlatMesh& mesh, Make make, Take take) {
  const int64_t perBlock = utl_blockSize(nodesPerBlock);
  const auto blocks = static_cast<std::size_t>((mesh.NodeCount() + perBlock - 1) / perBlock);
  using Result = decltype(make(int64_t{}, std::span<const double>{}));
  cow_List<Result> results(utl_slotCount());
  utl_orderedBlocks(
      blocks,
      [&](std::size_t block, std::size_t slot) {
        const int64_t first = static_cast<int64_t>(block) * perBlock;
        const int64_t count = std::min(perBlock, mesh.NodeCount() - first);
        thread_local std::vector<double> places;
        places.resize(static_cast<std::size_t>(3 * count));
        mesh.ReadCoordinates(first, places);
        results[slot] = make(first, std::span<const double>(places));
      },
      [&](std::size_t, std::size_t slot) { take(results[slot]); });
}

// Twice the median distance from the origin of the nodes that do not stand there: a few nodes far
// away change nothing. Of many nodes a part is looked at, evenly spread.
double sizeOf(const inps_FlatMesh& mesh) {
  const int64_t step = mesh.NodeCount() / nodesLookedAt + 1;
  cow_List<double> distances;
  forPlaces(
      mesh,
      [step](int64_t first, std::span<const double> places) {
        cow_List<double> some;
        for (std::size_t i = 0; 3 * i < places.size(); ++i) {
          if ((first + static_cast<int64_t>(i)) % step != 0) continue;
          const double* const at = places.data() + 3 * i;
          some.push_back(std::max({std::abs(at[0]), std::abs(at[1]), std::abs(at[2])}));
        }
        std::erase(some, 0.0);
        return some;
      },
      [&](const cow_List<double>& some) {
        distances.insert(distances.end(), some.begin(), some.end());
      });
  if (distances.empty()) return 0;
  const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
  std::nth_element(distances.begin(), middle, distances.end());
  return 2 * *middle;
}

// The entries of one node: its cell, and the cells that the tolerance around it touches.
class CellGrid {
public:
  explicit CellGrid(double size)
      : m_scale(1 / (cellSize * size)), m_margin(inps_samePlace / cellSize) {}

  template <class Add> void ForHashes(const double* place, Add add) const {
    // As doubles, which hold any number of cells: far away neighbours fall together.
    Place low{}, high{};
    bool isInside = true;
    for (std::size_t k = 0; k < 3; ++k) {
      const double at = place[k] * m_scale + gridShift;
      low[k] = std::floor(at - m_margin);
      high[k] = std::floor(at + m_margin);
      isInside &= low[k] == high[k];
    }
    if (isInside) return add(hashOf(low));
    Place cell{};
    for (cell[0] = low[0]; cell[0] <= high[0]; ++cell[0])
      for (cell[1] = low[1]; cell[1] <= high[1]; ++cell[1])
        for (cell[2] = low[2]; cell[2] <= high[2]; ++cell[2]) add(hashOf(cell));
  }

private:
  double m_scale;
  double m_margin;
};

using Partitions = cow_List<cow_List<Entry>>;

// The nodes whose hash falls to this pass.
Partitions entriesOf(const inps_FlatMesh& mesh, const CellGrid& grid, uint32_t pass,
                     uint32_t passes) {
  Partitions partitions(partitionCount);
  forPlaces(
      mesh,
      [&](int64_t first, std::span<const double> places) {
        cow_List<Entry> entries;
        entries.reserve(places.size() / 3 / passes * 9 / 8 + 16);
        for (std::size_t i = 0; 3 * i < places.size(); ++i)
          grid.ForHashes(places.data() + 3 * i, [&](uint32_t hash) {
            if (hash % passes == pass)
              entries.push_back(uint64_t{hash} << 32 |
                                static_cast<uint32_t>(first + static_cast<int64_t>(i)));
          });
        return entries;
      },
      [&](const cow_List<Entry>& entries) {
        for (const Entry entry : entries) partitions[entry >> 56].push_back(entry);
      });
  return partitions;
}

void addGroups(cow_List<Entry>& entries, Groups& groups) {
  std::ranges::sort(entries);
  for (std::size_t begin = 0; begin < entries.size();) {
    std::size_t end = begin + 1;
    while (end < entries.size() && entries[end] >> 32 == entries[begin] >> 32) ++end;
    if (end - begin > 1) {
      for (std::size_t i = begin; i < end; ++i) groups.push_back(nodeOf(entries[i]));
      groups.push_back(-1);
    }
    begin = end;
  }
}

// The places of some nodes, read in their order.
class Places {
public:
  Places(const inps_FlatMesh& mesh, const Groups& groups) : m_nodes(groups) {
    std::ranges::sort(m_nodes);
    m_nodes.erase(std::unique(m_nodes.begin(), m_nodes.end()), m_nodes.end());
    std::erase(m_nodes, -1);
    m_places.resize(m_nodes.size());
    std::vector<double> window;
    for (std::size_t begin = 0; begin < m_nodes.size();) {
      std::size_t end = begin + 1;
      while (end < m_nodes.size() && m_nodes[end] - m_nodes[begin] < utl_blockSize(nodesPerBlock))
        ++end;
      window.resize(3 * static_cast<std::size_t>(m_nodes[end - 1] - m_nodes[begin] + 1));
      mesh.ReadCoordinates(m_nodes[begin], window);
      for (std::size_t i = begin; i < end; ++i)
        std::copy_n(window.begin() + 3 * std::ptrdiff_t{m_nodes[i] - m_nodes[begin]}, 3,
                    m_places[i].begin());
      begin = end;
    }
  }

  const Place& Of(int32_t node) const {
    return m_places[static_cast<std::size_t>(std::ranges::lower_bound(m_nodes, node) -
                                             m_nodes.begin())];
  }

private:
  cow_List<int32_t> m_nodes;
  cow_List<Place> m_places;
};

bool isSame(const Place& a, const Place& b, double tolerance) {
  return std::abs(a[0] - b[0]) <= tolerance && std::abs(a[1] - b[1]) <= tolerance &&
         std::abs(a[2] - b[2]) <= tolerance;
}

using Pairs = cow_List<std::pair<int32_t, int32_t>>;

// Of every node of a group the first one before it at its place. Different places in one group are
// few: each is held once, and nodes are compared with those.
void addPairs(const Groups& groups, const Places& places, double tolerance, Pairs& pairs) {
  cow_List<int32_t> distinct;
  for (const int32_t node : groups) {
    if (node < 0) {
      distinct.clear();
      continue;
    }
    const Place& place = places.Of(node);
    const auto before = std::ranges::find_if(
        distinct, [&](int32_t other) { return isSame(places.Of(other), place, tolerance); });
    if (before == distinct.end())
      distinct.push_back(node);
    else if (*before != node)
      pairs.emplace_back(node, *before);
  }
}

} // namespace

inps_DuplicateNodes inps_findDuplicateNodes(const inps_FlatMesh& mesh, std::size_t mostNamed) {
  inps_DuplicateNodes found;
  if (mesh.NodeCount() < 2) return found;
  const double size = std::max(sizeOf(mesh), 1e-300);
  const CellGrid grid(size);
  const auto passes = static_cast<uint32_t>((mesh.NodeCount() + nodesPerPass - 1) / nodesPerPass);
  Pairs pairs;
  for (uint32_t pass = 0; pass < passes; ++pass) {
    Partitions partitions = entriesOf(mesh, grid, pass, passes);
    cow_List<Groups> groups(partitionCount);
    utl_parallelFor(partitionCount, [&](std::size_t i) { addGroups(partitions[i], groups[i]); });
    Groups all;
    for (const Groups& some : groups) all.insert(all.end(), some.begin(), some.end());
    addPairs(all, Places(mesh, all), inps_samePlace * size, pairs);
  }
  // A node near a border may have been found in several cells.
  std::ranges::sort(pairs);
  const auto sameNode = [](const auto& a, const auto& b) { return a.first == b.first; };
  pairs.erase(std::unique(pairs.begin(), pairs.end(), sameNode), pairs.end());
  found.count = static_cast<int64_t>(pairs.size());
  pairs.resize(std::min(pairs.size(), mostNamed));
  found.first = std::move(pairs);
  return found;
}
