#include "inpS/keywords/inpS_componentUtilities.h"
#include "base/utl_Assert.h"
#include "database/KvoSimCollection.h"
#include "database/eds_ModelReader.h"
#include <algorithm>
#include <array>

namespace {

constexpr std::array<std::string_view, 6> dofTypes = {"DISPLACEMENT_1",   "DISPLACEMENT_2",
                                                      "DISPLACEMENT_3",   "ROTATION_ANGLE_1",
                                                      "ROTATION_ANGLE_2", "ROTATION_ANGLE_3"};

int numberOf(std::string_view dofType) {
  const auto found = std::find(dofTypes.begin(), dofTypes.end(), dofType);
  if (found == dofTypes.end()) utl_assertionFailed("\"unknown dof symbol position\" == 0");
  return static_cast<int>(found - dofTypes.begin()) + 1;
}

bool allDiffer(std::vector<int32_t> members) {
  std::sort(members.begin(), members.end());
  return std::adjacent_find(members.begin(), members.end()) == members.end();
}

} // namespace

KvoSimPosition inpS_getComponentAsDofType(const KvoObjDocument& document, int number) {
  if (number < 1 || number > static_cast<int>(dofTypes.size()))
    utl_assertionFailed("\"invalid component type specified for connector behavior option\" == 0");
  return inpS_getComponentAsDofType(document,
                                    cow_String(dofTypes[static_cast<std::size_t>(number - 1)]));
}

KvoSimPosition inpS_getComponentAsDofType(const KvoObjDocument& document,
                                          const cow_String& symbolName) {
  if (symbolName.empty()) utl_assertionFailed("symbolName.Length() > 0");
  return document.GetSymbol(symbolName);
}

KvoSimCSetID inpS_getComponentsAsCSet(const KvoObjDocument& document,
                                      const cow_List<int>& components, bool stored) {
  const std::size_t numComps = components.size();
  utl_ASSERT(numComps < 7);
  std::vector<int32_t> members;
  KvoSimCollection types = document.GetDofTypeCollection();
  for (const int component : components)
    members.push_back(
        document.GetCMemberIndex(types, inpS_getComponentAsDofType(document, component)));
  if (!allDiffer(members)) utl_assertionFailed("ld == numComps"); // a set has no repeats
  return (stored ? types.CreateOrderedCSet(members) : types.CreateTempOrderedCSet(members)).ID();
}

int inpS_getComponentAsInt(const KvoSimPosition& dofType) {
  return numberOf(dofType.GetSymbolName());
}

cow_List<int> inpS_getComponentsAsListInt(const KvoSimPosition& componentSet) {
  utl_ASSERT(componentSet.IsA(eds_RecordKind::CSet));
  return inpS_getComponentsAsListInt(KvoSimCSetID(componentSet.Store(), componentSet.ID()));
}

cow_List<int> inpS_getComponentsAsListInt(const KvoSimCSetID& componentSet) {
  const KvoSimCSet set(componentSet);
  cow_List<int> numbers;
  for (const int32_t member : set.OrderedMembers()) {
    const int comp = numberOf(eds_ModelReader::SymbolName(eds_Vocabulary::DofType, member));
    utl_ASSERT(comp > 0);
    numbers.push_back(comp);
  }
  return numbers;
}

KvoSimCSetID inpS_getNamedComponentCSet(const KvoObjDocument& document, const cow_String& prefix,
                                        int count) {
  KvoSimCollection components = document.GetComponentCollection();
  std::vector<int32_t> members;
  for (int number = 1; number <= count; ++number)
    members.push_back(
        document.GetCMemberIndex(components, document.GetSymbol(prefix + std::to_string(number))));
  return components.CreateOrderedCSet(members).ID();
}

KvoSimCSetID inpS_get2DVectorComponentCSet(const KvoObjDocument& document) {
  return inpS_getNamedComponentCSet(document, "C_", 2);
}

KvoSimCSetID inpS_get3DVectorComponentCSet(const KvoObjDocument& document) {
  return inpS_getNamedComponentCSet(document, "C_", 3);
}

KvoSimCSetID inpS_getQuaternionComponentCSet(const KvoObjDocument& document) {
  return inpS_getNamedComponentCSet(document, "C_QUAT", 4);
}
