#include "host/inps_ElementVolumes.h"
#include "base/utl_BlockSize.h"

#include "base/utl_Threads.h"
#include "host/inps_FlatMesh.h"
#include "inpS/geometry/inpS_ElementMeasure.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <cmath>
#include <mutex>

namespace {

using Elements = inps_FlatMesh::Elements;

constexpr int64_t entriesPerPiece = 256 << 10; // of the connectivity
constexpr int64_t nodesOfWindow = 1 << 20;     // read for one piece
constexpr unsigned withoutVolume = inp_ElemGasket | inp_ElemCohesive | inp_ElemConnector |
                                   inp_ElemSpring | inp_ElemContact | inp_ElemCoupling |
                                   inp_ElemMass;

// The coordinates that a piece needs: a window of them, or, where its nodes lie far apart, the
// whole mesh's, which are read once.
class Coordinates {
public:
  explicit Coordinates(const inps_FlatMesh& mesh) : m_mesh(mesh) {}

  // The place of node 0 in the coordinates is -first.
  std::span<const double> Of(int32_t first, int32_t last, std::vector<double>& window,
                             int64_t& begin) {
    if (last - first < utl_blockSize(nodesOfWindow)) {
      window.resize(3 * static_cast<std::size_t>(last - first + 1));
      m_mesh.ReadCoordinates(first, window);
      begin = first;
      return window;
    }
    std::call_once(m_read, [this] {
      m_all.Resize(3 * static_cast<std::size_t>(m_mesh.NodeCount()));
      m_mesh.ReadCoordinates(0, m_all);
    });
    begin = 0;
    return m_all;
  }

private:
  const inps_FlatMesh& m_mesh;
  std::once_flag m_read;
  utl_Buffer<double> m_all;
};

// What one block's elements are measured as; without nodes when they are not.
struct Measured {
  std::size_t block = 0;
  std::size_t nodes = 0; // of the shape
  inpS_Space space = inpS_Space::Space;
};

Measured measuredOf(const inps_FlatMesh& mesh, std::size_t number) {
  const Elements& of = mesh.ElementBlocks()[number];
  Measured measured{number};
  const inp_ElementInfo* info =
      inp_KeywordTable::Instance().FindElement(mesh.TypeNames()[static_cast<std::size_t>(of.type)]);
  if (!info || info->dimension == 0 || (info->flags & withoutVolume) != 0) return measured;
  measured.nodes = static_cast<std::size_t>(inp_shape(of.shape).nodes);
  if (info->space == 2) measured.space = inpS_Space::Plane;
  return measured;
}

struct Piece {
  Measured of;
  int64_t first = 0;
  int64_t count = 0;
};

cow_List<Piece> cutIntoPieces(const inps_FlatMesh& mesh) {
  cow_List<Piece> pieces;
  for (std::size_t b = 0; b < mesh.ElementBlocks().size(); ++b) {
    const Measured of = measuredOf(mesh, b);
    if (of.nodes == 0) continue;
    const KvoMeshElementBlock& block = mesh.ElementBlocks()[b].block;
    const int64_t perPiece =
        std::max<int64_t>(1, utl_blockSize(entriesPerPiece) / std::max(1, block.width));
    for (int64_t first = 0; first < block.count; first += perPiece)
      pieces.push_back({of, first, std::min(perPiece, block.count - first)});
  }
  return pieces;
}

// One thread's memory.
struct Slot {
  std::vector<int32_t> nodes;
  std::vector<int32_t> physical;
  std::vector<double> window;
  std::vector<double> measures;
  inps_ElementVolumes found;
};

// The nodes that make the shape; a block may have fewer or more for each element.
void takePhysical(const std::vector<int32_t>& nodes, int width, std::size_t used,
                  std::vector<int32_t>& physical) {
  const auto stride = static_cast<std::size_t>(width);
  const std::size_t elements = nodes.size() / stride;
  physical.assign(elements * used, -1);
  for (std::size_t e = 0; e < elements; ++e)
    std::copy_n(nodes.begin() + static_cast<std::ptrdiff_t>(e * stride), std::min(used, stride),
                physical.begin() + static_cast<std::ptrdiff_t>(e * used));
}

// The greatest extent of one element.
double extentOf(std::span<const int32_t> nodes, std::span<const double> places, int64_t begin) {
  double low[3] = {INFINITY, INFINITY, INFINITY};
  double high[3] = {-INFINITY, -INFINITY, -INFINITY};
  for (const int32_t node : nodes) {
    if (node < 0) continue;
    const double* place = places.data() + 3 * (node - begin);
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], place[k]);
      high[k] = std::max(high[k], place[k]);
    }
  }
  return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
}

void add(inps_ElementVolumes::Finding& finding, int64_t flat) {
  ++finding.count;
  finding.first.push_back(static_cast<int32_t>(flat));
}

void measurePiece(const inps_FlatMesh& mesh, const Piece& piece, Coordinates& coordinates,
                  Slot& slot) {
  const Elements& of = mesh.ElementBlocks()[piece.of.block];
  slot.found = {};
  slot.nodes.resize(static_cast<std::size_t>(piece.count * of.block.width));
  mesh.ReadConnectivity(piece.of.block, piece.first, slot.nodes);
  takePhysical(slot.nodes, of.block.width, piece.of.nodes, slot.physical);
  int32_t first = std::numeric_limits<int32_t>::max();
  int32_t last = -1;
  for (const int32_t node : slot.physical) {
    if (node >= 0) first = std::min(first, node);
    last = std::max(last, node);
  }
  if (last < 0) return;
  int64_t begin = 0;
  const std::span<const double> places = coordinates.Of(first, last, slot.window, begin);
  slot.measures.resize(static_cast<std::size_t>(piece.count));
  inpS_measureElements(of.shape, piece.of.space, slot.physical, piece.of.nodes, places, -begin,
                       slot.measures);
  const int dimension = inp_shape(of.shape).dimension;
  for (std::size_t e = 0; e < slot.measures.size(); ++e) {
    const double measure = slot.measures[e];
    const double extent = extentOf(
        std::span<const int32_t>(slot.physical).subspan(e * piece.of.nodes, piece.of.nodes), places,
        begin);
    const int64_t flat = of.block.flatFirst + piece.first + static_cast<int64_t>(e);
    if (std::abs(measure) <= inps_noVolume * std::pow(extent, dimension))
      add(slot.found.zero, flat);
    else if (measure < 0)
      add(slot.found.negative, flat);
  }
}

void merge(const inps_ElementVolumes::Finding& from, std::size_t mostNamed,
           inps_ElementVolumes::Finding& to) {
  to.count += from.count;
  for (const int32_t flat : from.first)
    if (to.first.size() < mostNamed) to.first.push_back(flat);
}

} // namespace

inps_ElementVolumes inps_findBadVolumes(const inps_FlatMesh& mesh, std::size_t mostNamed) {
  const cow_List<Piece> pieces = cutIntoPieces(mesh);
  Coordinates coordinates(mesh);
  cow_List<Slot> slots(utl_slotCount());
  inps_ElementVolumes found;
  utl_orderedBlocks(
      pieces.size(),
      [&](std::size_t i, std::size_t slot) {
        measurePiece(mesh, pieces[i], coordinates, slots[slot]);
      },
      [&](std::size_t, std::size_t slot) {
        merge(slots[slot].found.negative, mostNamed, found.negative);
        merge(slots[slot].found.zero, mostNamed, found.zero);
      });
  return found;
}
