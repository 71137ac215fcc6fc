#pragma once

#include "database/KvoObjNodeSet.h"

class KvoObjElementSet : public eds_MeshSet {
public:
  KvoObjElementSet() = default;
  explicit KvoObjElementSet(const KvoSimPosition& position)
      : eds_MeshSet(position, eds_RecordKind::ElementSet) {}
  KvoObjElementSet(const KvoSimContext& context, std::string_view name)
      : eds_MeshSet(context, name, eds_RecordKind::ElementSet) {}
};
