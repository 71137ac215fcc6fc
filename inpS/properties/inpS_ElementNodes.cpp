#include "inpS/properties/inpS_ElementNodes.h"
#include <cmath>

namespace {

template <class Block> const Block* blockOf(const cow_List<Block>& blocks, int64_t ordinal) {
  const auto next = std::ranges::upper_bound(blocks, ordinal, {}, &Block::flatFirst);
  if (next == blocks.begin()) return nullptr;
  const Block& block = *std::prev(next);
  return ordinal < block.flatFirst + block.count ? &block : nullptr;
}

} // namespace

void inpS_ElementNodes::ReadBlocks() {
  if (m_isRead) return;
  m_isRead = true;
  for (const KvoMeshElementBlock& block : m_mesh.ElementBlocks())
    if (block.flatFirst >= 0) m_elements.push_back(block);
  for (const KvoMeshNodeBlock& block : m_mesh.NodeBlocks())
    if (block.flatFirst >= 0) m_nodes.push_back(block);
  std::ranges::sort(m_elements, {}, &KvoMeshElementBlock::flatFirst);
  std::ranges::sort(m_nodes, {}, &KvoMeshNodeBlock::flatFirst);
}

const KvoMeshElementBlock* inpS_ElementNodes::BlockOf(int64_t element) {
  ReadBlocks();
  if (!m_block || element < m_block->flatFirst || element >= m_block->flatFirst + m_block->count)
    m_block = blockOf(m_elements, element);
  return m_block;
}

bool inpS_ElementNodes::ReadPoint(int64_t node, double point[3]) {
  if (!m_nodeBlock || node < m_nodeBlock->flatFirst ||
      node >= m_nodeBlock->flatFirst + m_nodeBlock->count)
    m_nodeBlock = blockOf(m_nodes, node);
  if (!m_nodeBlock) return false;
  std::copy_n(m_coordinates.Item(m_nodeBlock->coordinates, node - m_nodeBlock->flatFirst), 3,
              point);
  return true;
}

bool inpS_ElementNodes::ReadNode(int64_t element, long long number, double point[3]) {
  const KvoMeshElementBlock* block = BlockOf(element);
  if (!block || number < 1 || number > block->width) return false;
  const int32_t node =
      m_connectivity.Item(block->connectivity, element - block->flatFirst)[number - 1];
  return node >= 0 && ReadPoint(node + block->nodeBase, point);
}

bool inpS_ElementNodes::ReadMiddle(int64_t element, double point[3], double& magnitude) {
  const KvoMeshElementBlock* block = BlockOf(element);
  if (!block) return false;
  double sum[3] = {};
  magnitude = 0;
  int count = 0;
  for (int number = 1; number <= block->width; ++number) {
    double at[3];
    if (!ReadNode(element, number, at)) continue;
    for (int i = 0; i < 3; ++i) {
      sum[i] += at[i];
      magnitude = std::max(magnitude, std::abs(at[i]));
    }
    ++count;
  }
  if (count == 0) return false;
  for (int i = 0; i < 3; ++i) point[i] = sum[i] / count;
  return true;
}
