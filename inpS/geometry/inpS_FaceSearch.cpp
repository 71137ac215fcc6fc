#include "inpS/geometry/inpS_FaceSearch.h"
#include "base/utl_Assert.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Threads.h"
#include <algorithm>
#include <cstring>
#include <limits>

// Faces are parted by their least node into partitions that fit the cache: each piece of the
// elements counts how many of its faces go where, then writes them there, so that the pieces need
// no lock and the order does not depend on the threads. Within a partition a hash table of 32-bit
// fingerprints finds candidates, and the corners themselves decide. Partitions are worked on in a
// few rounds that share their memory; in a mesh in some order a piece takes part in one or two of
// them.

namespace {

constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();
constexpr uint64_t kFacesOfPartition = 1u << 15; // 256 KiB of entries, as much of table
constexpr int64_t kLeastPiece = 1 << 13;         // elements
constexpr int64_t kMostPieces = 128;
constexpr uint64_t kLeastRound = 1u << 16; // faces
constexpr uint64_t kMostRounds = 4;

} // namespace

// The corners ascending, each once, kNone behind them.
struct inpS_FaceSearch::Key {
  uint32_t node[4];

  bool operator==(const Key& other) const { return std::memcmp(node, other.node, 16) == 0; }
  uint32_t Hash() const {
    uint64_t hash = (node[0] | static_cast<uint64_t>(node[1]) << 32) * 0x9E3779B97F4A7C15u;
    hash ^= hash >> 32;
    hash += (node[2] | static_cast<uint64_t>(node[3]) << 32) * 0xC2B2AE3D27D4EB4Fu;
    hash *= 0x165667B19E3779F9u;
    return static_cast<uint32_t>(hash >> 32);
  }
};

class inpS_FaceSearch::Table {
public:
  // Empty, for this many entries.
  void Clear(std::size_t entries) {
    std::size_t size = 16;
    while (size < 2 * entries) size *= 2;
    m_mask = size - 1;
    m_cells.assign(size, kNone);
    m_shared.assign(entries, 0);
  }
  std::size_t Home(uint32_t hash) const { return hash & m_mask; }
  std::size_t Next(std::size_t cell) const { return (cell + 1) & m_mask; }
  uint32_t& At(std::size_t cell) { return m_cells[cell]; }
  unsigned char& IsShared(std::size_t entry) { return m_shared[entry]; }

private:
  std::vector<uint32_t> m_cells; // number of the entry in its partition
  std::vector<unsigned char> m_shared;
  std::size_t m_mask = 0;
};

void inpS_FaceSearch::Add(const inp_Shape& shape, std::span<const inp_ShapeList> lists,
                          std::span<const int32_t> corners, int64_t nodeBase) {
  Block block;
  block.width = shape.corners;
  block.corners = corners;
  block.elements = static_cast<int64_t>(corners.size()) / shape.corners;
  block.nodeBase = nodeBase;
  for (const inp_ShapeList& list : lists) {
    Face face;
    face.count = list.corners;
    for (int n = 0; n < face.count; ++n) {
      face.column[n] = list.nodes[static_cast<std::size_t>(n)] - 1;
      utl_ASSERT(face.column[n] < shape.corners);
    }
    block.faces.push_back(face);
  }
  block.firstElement = m_elements;
  m_elements += block.elements;
  block.firstSlot = static_cast<uint32_t>(m_slots);
  m_slots += block.faces.size() * static_cast<uint64_t>(block.elements);
  utl_ASSERT(m_slots < kNone); // 700 million bricks
  m_blocks.push_back(std::move(block));
}

std::span<const unsigned char> inpS_FaceSearch::Free(std::size_t n) const {
  const Block& block = m_blocks[n];
  return {m_free.Data() + block.firstSlot,
          block.faces.size() * static_cast<std::size_t>(block.elements)};
}

void inpS_FaceSearch::Run() {
  m_free.Resize(m_slots);
  if (m_slots > 0) std::memset(m_free.Data(), 0, m_slots);
  Cut();
  ChoosePartitions();
  utl_parallelFor(m_pieces.size(), [&](std::size_t n) { Count(m_pieces[n]); });
  std::vector<Table> tables(utl_slotCount());
  for (std::size_t first = 0; first < m_partitionEnds.size();) {
    const Round round = Place(first);
    utl_parallelFor(m_pieces.size(), [&](std::size_t n) { Scatter(m_pieces[n], round); });
    utl_orderedBlocks(
        round.end - round.first,
        [&](std::size_t n, std::size_t slot) { Match(round.first + n, round, tables[slot]); },
        [](std::size_t, std::size_t) {});
    first = round.end;
  }
  m_entries = {};
}

void inpS_FaceSearch::Cut() {
  const int64_t size = std::max(utl_blockSize(kLeastPiece), m_elements / kMostPieces + 1);
  for (int64_t first = 0; first < m_elements; first += size)
    m_pieces.push_back({first, std::min(first + size, m_elements), {}});
}

// use(block, first, end) for each block's part of a piece, elements counted within the block.
template <class Use> void inpS_FaceSearch::ForEachBlock(const Piece& piece, Use use) const {
  auto block =
      std::upper_bound(m_blocks.begin(), m_blocks.end(), piece.first,
                       [](int64_t element, const Block& b) { return element < b.firstElement; });
  for (--block; block != m_blocks.end() && block->firstElement < piece.end; ++block)
    use(*block, std::max<int64_t>(0, piece.first - block->firstElement),
        std::min(block->elements, piece.end - block->firstElement));
}

void inpS_FaceSearch::ChoosePartitions() {
  struct Range {
    uint32_t least = kNone;
    uint32_t most = 0;
  };
  std::vector<Range> ranges(m_pieces.size());
  utl_parallelFor(m_pieces.size(), [&](std::size_t n) {
    ForEachBlock(m_pieces[n], [&](const Block& block, int64_t first, int64_t end) {
      int32_t least = std::numeric_limits<int32_t>::max(), most = -1;
      for (int32_t node :
           block.corners.subspan(static_cast<std::size_t>(first * block.width),
                                 static_cast<std::size_t>((end - first) * block.width))) {
        least = std::min(least, node < 0 ? std::numeric_limits<int32_t>::max() : node);
        most = std::max(most, node);
      }
      if (most < 0) return;
      Range& range = ranges[n];
      range.least = std::min(range.least, static_cast<uint32_t>(least + block.nodeBase));
      range.most = std::max(range.most, static_cast<uint32_t>(most + block.nodeBase));
    });
  });
  Range all;
  for (const Range& range : ranges) {
    all.least = std::min(all.least, range.least);
    all.most = std::max(all.most, range.most);
  }
  m_least = all.least;
  const uint64_t nodes = all.most < all.least ? 1 : uint64_t{all.most} - all.least + 1;
  const uint64_t wanted = m_slots / kFacesOfPartition + 1;
  m_shift = 0;
  while ((nodes - 1) >> m_shift >= wanted) ++m_shift;
  m_partitionEnds.assign(((nodes - 1) >> m_shift) + 1, 0);
}

namespace {

inline void order(uint32_t& a, uint32_t& b) {
  const uint32_t least = std::min(a, b);
  b = std::max(a, b);
  a = least;
}

} // namespace

// False when the face is none.
inline bool inpS_FaceSearch::Read(const Block& block, const int32_t* corners, const Face& face,
                                  Key& key) {
  bool absent = false;
  for (int n = 0; n < 4; ++n) {
    if (n < face.count) {
      const int32_t node = corners[face.column[n]];
      absent |= node < 0;
      key.node[n] = static_cast<uint32_t>(node + block.nodeBase);
    } else {
      key.node[n] = kNone;
    }
  }
  if (absent) return false;
  order(key.node[0], key.node[1]);
  order(key.node[2], key.node[3]);
  order(key.node[0], key.node[2]);
  order(key.node[1], key.node[3]);
  order(key.node[1], key.node[2]);
  const bool repeats =
      (key.node[0] == key.node[1]) | (key.node[1] == key.node[2]) | (key.node[2] == key.node[3]);
  if (!repeats) return true;
  uint32_t* const end = std::unique(key.node, key.node + 4);
  std::fill(end, key.node + 4, kNone);
  const auto isNode = [](uint32_t node) { return node != kNone; };
  return std::count_if(key.node, key.node + 4, isNode) >= std::min(face.count, 3);
}

inpS_FaceSearch::Key inpS_FaceSearch::KeyOf(uint32_t slot) const {
  auto at = std::upper_bound(m_blocks.begin(), m_blocks.end(), slot,
                             [](uint32_t s, const Block& block) { return s < block.firstSlot; });
  const Block& block = *--at;
  const uint32_t inBlock = slot - block.firstSlot;
  const auto faces = static_cast<uint32_t>(block.faces.size());
  Key key;
  Read(block, block.corners.data() + static_cast<int64_t>(inBlock / faces) * block.width,
       block.faces[inBlock % faces], key);
  return key;
}

void inpS_FaceSearch::Count(Piece& piece) const {
  piece.places.assign(m_partitionEnds.size(), 0);
  ForEachBlock(piece, [&](const Block& block, int64_t first, int64_t end) {
    Key key;
    for (int64_t n = first; n < end; ++n)
      for (const Face& face : block.faces)
        if (Read(block, block.corners.data() + n * block.width, face, key))
          ++piece.places[PartitionOf(key.node[0])];
  });
}

// The partitions from `first` on that make a round, and the places of their entries.
inpS_FaceSearch::Round inpS_FaceSearch::Place(std::size_t first) {
  const uint64_t enough = std::max(kLeastRound, m_slots / kMostRounds);
  for (Piece& piece : m_pieces) piece.isInRound = false;
  uint32_t at = 0;
  std::size_t partition = first;
  while (partition < m_partitionEnds.size() && at < enough) {
    for (Piece& piece : m_pieces) {
      const uint32_t count = piece.places[partition];
      piece.isInRound |= count > 0;
      piece.places[partition] = at;
      at += count;
    }
    m_partitionEnds[partition++] = at;
  }
  if (m_entries.Size() < at) {
    m_entries = {}; // nothing in it is kept
    m_entries.Resize(at);
  }
  return {first, partition};
}

void inpS_FaceSearch::Scatter(Piece& piece, const Round& round) {
  if (!piece.isInRound) return;
  ForEachBlock(piece, [&](const Block& block, int64_t first, int64_t end) {
    auto slot =
        block.firstSlot + static_cast<uint32_t>(static_cast<uint64_t>(first) * block.faces.size());
    Key key;
    for (int64_t n = first; n < end; ++n)
      for (const Face& face : block.faces) {
        if (Read(block, block.corners.data() + n * block.width, face, key)) {
          const std::size_t partition = PartitionOf(key.node[0]);
          if (partition >= round.first && partition < round.end)
            m_entries[piece.places[partition]++] = {slot, key.Hash()};
        }
        ++slot;
      }
  });
}

void inpS_FaceSearch::Match(std::size_t partition, const Round& round, Table& table) {
  const std::size_t first = partition == round.first ? 0 : m_partitionEnds[partition - 1];
  const std::span<const Entry> entries(m_entries.Data() + first,
                                       m_partitionEnds[partition] - first);
  table.Clear(entries.size());
  for (std::size_t n = 0; n < entries.size(); ++n) {
    std::size_t cell = table.Home(entries[n].hash);
    while (table.At(cell) != kNone) {
      const uint32_t other = table.At(cell);
      if (entries[other].hash == entries[n].hash &&
          KeyOf(entries[other].slot) == KeyOf(entries[n].slot)) {
        table.IsShared(other) = table.IsShared(n) = 1;
        break;
      }
      cell = table.Next(cell);
    }
    if (table.At(cell) == kNone) table.At(cell) = static_cast<uint32_t>(n);
  }
  for (std::size_t n = 0; n < entries.size(); ++n)
    if (!table.IsShared(n)) m_free[entries[n].slot] = 1;
}
