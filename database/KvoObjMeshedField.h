#pragma once

#include "database/KvoObjField.h"

// A field over the mesh: its data lie over the nodes or the elements.
class KvoObjMeshedField : public KvoObjField {
public:
  using KvoObjField::KvoObjField;
  void Register(const KvoSimContext& context, const cow_String& name, const cow_String& quantity,
                KvoGridType type);
};
