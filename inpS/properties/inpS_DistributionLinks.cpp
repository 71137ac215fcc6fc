#include "inpS/properties/inpS_DistributionLinks.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimTransaction.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

namespace {

cow_List<KvoSimPosition> ownersOf(const KvoObjModel& model) {
  cow_List<KvoSimPosition> owners = model.Parts();
  for (const KvoSimPosition& instance : model.Occurences()) owners.push_back(instance);
  if (const KvoSimPosition assembly = model.GetAssembly(); !assembly.IsNull())
    owners.push_back(assembly);
  return owners;
}

cow_List<KvoSimPosition> distributionsNamed(const cow_String& name, const KvoObjModel& model,
                                            const cow_List<KvoSimPosition>& others) {
  constexpr eds_Member member = eds_Member::NamedDistributions;
  const KvoSimPosition known = model.Position().FollowStringKey(member, name);
  if (!known.IsNull()) return {known};
  cow_List<KvoSimPosition> found;
  for (const KvoSimPosition& owner : others)
    if (const KvoSimPosition one = owner.FollowStringKey(member, name); !one.IsNull())
      found.push_back(one);
  return found;
}

void dropLines(const KvoSimPosition& kept) {
  if (kept.DataRecord().IsMemberNull(eds_KeptPart_Parameters))
    kept.Remove();
  else
    kept.DataRecord().UnsetMember(eds_KeptPart_Lines);
}

} // namespace

void inpS_linkDistributions(const cow_List<inpS_DistributedProperty>& properties,
                            const KvoObjDocument& document, inp_Visitor& messages) {
  if (properties.empty()) return;
  KvoSimTransaction transaction(document.ContextID());
  const KvoObjModel model = document.GetModel();
  const cow_List<KvoSimPosition> owners = ownersOf(model);
  for (const inpS_DistributedProperty& one : properties) {
    const cow_String name = inp_Utils::Fold(one.keyword.Data().AsStringVerbatim(0, 0));
    const cow_List<KvoSimPosition> found = distributionsNamed(name, model, owners);
    if (found.size() == 1) {
      one.property.SetPosition(eds_Member::ValuesFrom, found.front());
      dropLines(one.kept);
      continue;
    }
    messages.AddWarning(inp_Utils::MessageInKeyword(
        one.keyword, "*" + one.keyword.Name() + " takes its values from distribution \"" + name +
                         "\", which is " +
                         (found.empty() ? "kept as text" : "defined in several places") +
                         "; its line is kept as it stands, and no values are made of it."));
  }
  transaction.Commit();
}
