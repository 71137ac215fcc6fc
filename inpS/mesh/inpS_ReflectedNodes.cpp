#include "inpS/mesh/inpS_ReflectedNodes.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_ShapeReflection.h"
#include <algorithm>
#include <numeric>

namespace {

bool boundsInPlane(const inp_ElementInfo& info) {
  constexpr unsigned surfaces =
      inp_ElemShell | inp_ElemMembrane | inp_ElemRigid | inp_ElemContact | inp_ElemInfinite;
  if (info.space != 2) return false;
  const bool isPipeFlow = info.Is(inp_ElemTruss) || info.name.starts_with("FP");
  return (info.flags & surfaces) != 0 || (info.Is(inp_ElemFluid) && !isPipeFlow);
}

bool hasFourierPlanes(const inp_ElementInfo& info) {
  return info.name.substr(1).starts_with("AXA");
}

} // namespace

cow_List<int> inpS_reflectedPlaces(const cow_String& type, int nodes) {
  cow_List<int> places(static_cast<std::size_t>(nodes));
  std::iota(places.begin(), places.end(), 0);
  const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(type);
  if (!info) return places;
  const inp_Shape& shape = inp_shape(info->shape);
  if (shape.dimension < 2 && !(shape.dimension == 1 && boundsInPlane(*info))) return places;
  const auto order = inp_reflectedOrder(info->shape, std::min(nodes, shape.nodes));
  if (order.empty()) return places; // too few nodes, which was told
  const auto plane = static_cast<int>(order.size());
  const int end = hasFourierPlanes(*info) ? nodes / plane * plane : plane;
  for (int n = 0; n < end; ++n)
    places[static_cast<std::size_t>(n)] =
        n / plane * plane + order[static_cast<std::size_t>(n % plane)] - 1;
  return places;
}

bool inpS_isReflectable(const cow_String& type, int nodes) {
  const inp_ElementInfo* info = inp_KeywordTable::Instance().FindElement(type);
  if (!info || info->shape == inp_ShapeKind::None) return nodes < 2;
  return nodes <= inp_shape(info->shape).nodes || !info->Is(inp_ElemGasket);
}
