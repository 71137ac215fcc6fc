#include "inpS/mesh/inpS_BaseSurfaces.h"
#include "database/KvoObjDocument.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/mesh/inpS_MeshScope.h"
#include "inpS/mesh/inpS_MeshStore.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

void inpS_tellOfBaseSurfaces(const KvoObjDocument& document, inpS_MeshScopes& scopes,
                             inp_Visitor& messages) {
  if (!scopes.Root().isStored) return;
  cow_Map<unsigned long long, cow_String> surfaces; // by the set they name
  const KvoSimContext context = document.Context();
  for (const KvoSimPosition& piece : context.GetRecords(eds_RecordKind::SurfacePiece)) {
    const KvoSimDataRecord record = piece.DataRecord();
    const KvoSimPosition source = record.GetReference(eds_SurfacePiece_Source);
    if (source.IsNull()) continue;
    const KvoSimPosition surface = record.GetReference(eds_SurfacePiece_Surface);
    surfaces.emplace(source.Object().Packed(), surface.DataRecord().ReturnString(eds_Surface_Name));
  }
  for (const inpS_MeshScope& scope : scopes.All())
    for (const inpS_SetDefinition& set : scope.sets.All()) {
      if (set.isStored || !scope.isStored || set.keywords.empty()) continue;
      const KvoSimPosition stored =
          scope.owner.FollowStringKey(inpS_MeshStore::MemberOf(set), set.name);
      const auto known = stored.IsNull() ? surfaces.end() : surfaces.find(stored.Object().Packed());
      if (known != surfaces.end())
        messages.AddWarning(inp_Utils::MessageInKeyword(
            set.keywords.back(), "Set \"" + set.name + "\" grows; surface \"" + known->second +
                                     "\" of the model that is restarted, which names it, "
                                     "keeps what it had."));
    }
}
