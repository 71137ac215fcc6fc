#include "inpS/properties/inpS_ConnectorTypes.h"
#include <algorithm>
#include <iterator>

bool inpS_isConnectorType(std::string_view word) {
  static constexpr std::string_view types[] = {
      // of positions
      "ACCELEROMETER", "AXIAL", "CARTESIAN", "JOIN", "LINK", "PROJECTIONCARTESIAN", "RADIAL-THRUST",
      "RADIALTHRUST", "RETRACTOR", "SLIDE-PLANE", "SLIDEPLANE", "SLIPRING", "SLOT",
      // of rotations
      "ALIGN", "CARDAN", "CONSTANTVELOCITY", "EULER", "FLEXION-TORSION", "FLEXIONTORSION",
      "FLOW-CONVERTER", "FLOWCONVERTER", "PROJECTIONFLEXION-TORSION", "PROJECTIONFLEXIONTORSION",
      "REVOLUTE", "ROTATION", "ROTATION-ACCELEROMETER", "ROTATIONACCELEROMETER", "UNIVERSAL",
      // of both
      "BEAM", "BUSHING", "CVJOINT", "CYLINDRICAL", "HINGE", "PLANAR", "TRANSLATOR", "UJOINT",
      "WELD"};
  return std::ranges::find(types, word) != std::end(types);
}
