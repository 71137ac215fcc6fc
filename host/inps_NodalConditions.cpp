#include "host/inps_NodalConditions.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <limits>

namespace {

struct Row {
  std::string_view keyword;
  std::string_view type;
  int firstDegree;
  int lastDegree;
  const char* array;
  bool isVector; // else an array for each degree, numbered from the second on
  bool isAdded;  // several on a node are added up
};
constexpr Row rows[] = {
    {"CLOAD", "", 1, 3, "Force", true, true},
    {"CLOAD", "", 4, 6, "Moment", true, true},
    {"CFLUX", "", 11, 30, "HeatFlux", false, true},
    {"BOUNDARY", "", 1, 3, "Displacement", true, false},
    {"BOUNDARY", "", 4, 6, "Rotation", true, false},
    {"BOUNDARY", "DISPLACEMENT", 1, 3, "Displacement", true, false},
    {"BOUNDARY", "DISPLACEMENT", 4, 6, "Rotation", true, false},
    {"BOUNDARY", "VELOCITY", 1, 3, "Velocity", true, false},
    {"BOUNDARY", "VELOCITY", 4, 6, "AngularVelocity", true, false},
    {"BOUNDARY", "ACCELERATION", 1, 3, "Acceleration", true, false},
    {"BOUNDARY", "ACCELERATION", 4, 6, "AngularAcceleration", true, false},
    {"BOUNDARY", "", 7, 7, "Warping", false, false},
    {"BOUNDARY", "", 8, 8, "Pressure", false, false},
    {"BOUNDARY", "", 9, 9, "ElectricPotential", false, false},
    {"BOUNDARY", "", 11, 30, "Temperature", false, false},
    {"TEMPERATURE", "", 1, 1, "Temperature", false, false},
    {"FIELD", "", 1, 1, "Field", false, false},
};

// Beyond the sixth degree the type says nothing.
const Row* rowOf(const inps_NodalConditions::Kind& kind, int degree) {
  const std::string_view type = degree > 6 ? std::string_view() : kind.type;
  for (const Row& row : rows)
    if (row.keyword == kind.keyword && row.type == type && degree >= row.firstDegree &&
        degree <= row.lastDegree)
      return &row;
  return nullptr;
}

} // namespace

template <class Take>
void inps_NodalConditions::ForNodes(const eds_MemberSet& nodes, Take take) const {
  for (int64_t n = 0; n < nodes.Size(); ++n)
    if (nodes[n] >= 0 && nodes[n] < m_mesh.NodeCount()) take(nodes[n]);
}

double& inps_NodalConditions::ValueOf(Channel& channel, int32_t node, std::size_t component) const {
  const std::size_t width = channel.isVector ? 3 : 1;
  channel.places.resize(static_cast<std::size_t>(m_mesh.NodeCount()), -1);
  int32_t& place = channel.places[static_cast<std::size_t>(node)];
  if (place < 0) {
    place = static_cast<int32_t>(channel.values.size() / width);
    channel.values.resize(channel.values.size() + width, 0.0);
  }
  return channel.values[static_cast<std::size_t>(place) * width + component];
}

bool inps_NodalConditions::Add(const Kind& kind, uint64_t degrees, const eds_MemberSet& nodes,
                               double value) {
  for (uint64_t left = degrees; left != 0; left &= left - 1)
    if (!rowOf(kind, std::countr_zero(left) + 1)) return false;
  for (uint64_t left = degrees; left != 0; left &= left - 1) {
    const int degree = std::countr_zero(left) + 1;
    const Row& row = *rowOf(kind, degree);
    const int component = degree - row.firstDegree;
    const int64_t number = component + kind.variable;
    cow_String name = row.array;
    if (!row.isVector && (number > 1 || kind.keyword == "FIELD")) name += std::to_string(number);
    if (kind.place > 1) name += "_" + std::to_string(kind.place);
    Channel& channel = m_channels[name];
    channel.isVector = row.isVector;
    ForNodes(nodes, [&](int32_t node) {
      double& there =
          ValueOf(channel, node, row.isVector ? static_cast<std::size_t>(component) : 0);
      there = row.isAdded ? there + value : value;
    });
  }
  if (kind.keyword == "BOUNDARY") Hold(degrees, nodes, kind.type);
  return true;
}

void inps_NodalConditions::Hold(uint64_t degrees, const eds_MemberSet& nodes,
                                std::string_view type) {
  const auto mark = [&](const char* name) {
    const auto bits = static_cast<int32_t>(degrees & 0x3fffffff); // of 1 to 30
    std::vector<int32_t>& mask = m_masks[name];
    mask.resize(static_cast<std::size_t>(m_mesh.NodeCount()), 0);
    ForNodes(nodes, [&](int32_t node) { mask[static_cast<std::size_t>(node)] |= bits; });
  };
  mark("FixedDofs");
  if (type == "VELOCITY") mark("VelocityDofs");
  if (type == "ACCELERATION") mark("AccelerationDofs");
}

void inps_NodalConditions::Finish() {
  for (auto& [name, channel] : m_channels) {
    if (!channel.isVector) continue;
    for (std::size_t node = 0; node < channel.places.size(); ++node) {
      if (channel.places[node] < 0) continue;
      double* const vector =
          channel.values.data() + 3 * static_cast<std::size_t>(channel.places[node]);
      m_axes.MakeGlobal(static_cast<int32_t>(node), std::span<double, 3>(vector, 3));
    }
  }
}

void inps_NodalConditions::MarkNodes(inps_NodeSelection& selection) const {
  for (const auto& [name, channel] : m_channels)
    for (std::size_t node = 0; node < channel.places.size(); ++node)
      if (channel.places[node] >= 0) selection.Add(static_cast<int32_t>(node));
  for (const auto& [name, mask] : m_masks)
    for (std::size_t node = 0; node < mask.size(); ++node)
      if (mask[node] != 0) selection.Add(static_cast<int32_t>(node));
}

// A vector is zero where nothing acts; a number is none there.
void inps_NodalConditions::AddTo(inps_VtuGrid& grid, const inps_NodeSelection& nodes) const {
  for (const auto& [name, held] : m_channels) {
    if (held.places.empty()) continue;
    const Channel* channel = &held;
    const std::size_t width = held.isVector ? 3 : 1;
    const double fill = held.isVector ? 0.0 : std::numeric_limits<double>::quiet_NaN();
    grid.pointData.push_back(inps_vtuArray<double>(
        name, "Float64", nodes.Count(),
        [channel, &nodes, width, fill](int64_t first, std::span<double> out) {
          thread_local std::vector<int32_t> flat;
          flat.resize(out.size() / width);
          nodes.Copy(first, flat);
          std::ranges::fill(out, fill);
          for (std::size_t n = 0; n < flat.size(); ++n) {
            const int32_t place = channel->places[static_cast<std::size_t>(flat[n])];
            if (place >= 0)
              std::copy_n(channel->values.data() + static_cast<std::size_t>(place) * width, width,
                          out.data() + n * width);
          }
        },
        static_cast<int>(width)));
  }
  for (const auto& [name, held] : m_masks) {
    const std::vector<int32_t>* mask = &held;
    grid.pointData.push_back(inps_vtuArray<int32_t>(
        name, "Int32", nodes.Count(), [mask, &nodes](int64_t first, std::span<int32_t> out) {
          nodes.Copy(first, out);
          for (int32_t& node : out) node = (*mask)[static_cast<std::size_t>(node)];
        }));
  }
}
