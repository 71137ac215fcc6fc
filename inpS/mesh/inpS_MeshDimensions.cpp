#include "inpS/mesh/inpS_MeshDimensions.h"
#include "base/utl_BlockSize.h"
#include "database/KvoObjMesh.h"
#include "database/KvoSimContext.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimPosition.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>
#include <span>
#include <vector>

namespace {

bool hasNonZeroZ(const KvoMeshNodeBlock& block) {
  constexpr long long kNodesPerPiece = 8 << 10;
  eds_ArrayReader reader(inpS_asListed(block.localCoordinates, block.coordinates));
  std::vector<double> points;
  for (long long first = 0, end = block.count - block.generated; first < end;) {
    const long long count = std::min(utl_blockSize(kNodesPerPiece), end - first);
    points.resize(static_cast<std::size_t>(3 * count));
    reader.ReadPiece(first, std::span<double>(points));
    for (std::size_t n = 2; n < points.size(); n += 3)
      if (points[n] != 0) return true;
    first += count;
  }
  return false;
}

} // namespace

const eds_ArrayID& inpS_asListed(const eds_ArrayID& local, const eds_ArrayID& placed) {
  return local.IsNull() ? placed : local;
}

bool inpS_tellsThreeDimensions(const KvoObjMesh& mesh) {
  const KvoSimContext context = mesh.Position().Context();
  for (const KvoSimPosition& spec : context.GetRecords(eds_RecordKind::ElementSpec)) {
    const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(
        spec.DataRecord().ReturnString(eds_ElementSpec_Name));
    if (info && info->Is(inp_ElemThreeD)) return true;
  }
  for (const KvoMeshNodeBlock& block : mesh.NodeBlocks()) {
    const bool tells =
        block.owner.IsA(eds_RecordKind::Part) || block.owner.IsA(eds_RecordKind::Model);
    if (tells && hasNonZeroZ(block)) return true;
  }
  return false;
}
