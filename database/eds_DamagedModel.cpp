#include "database/eds_DamagedModel.h"
#include "base/utl_File.h"
#include "database/KvoSimPosition.h"
#include "database/eds_Exception.h"
#include "database/engine/eds_Store.h"

void eds_tellDamaged(const KvoSimPosition& object, const cow_String& what) {
  throw eds_DamagedFileException("\"" + utl_pathText(object.Store()->Path()) +
                                 "\" is damaged: " + what);
}
