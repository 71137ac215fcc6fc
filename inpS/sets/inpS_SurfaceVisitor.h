#pragma once

#include "database/KvoObjSurface.h"
#include "inpS/framework/inpS_Ledger.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include <memory>
#include <optional>

class inpS_SurfaceCombiner;
class inpS_SurfaceStore;

// The surfaces phase: *SURFACE in parts, instances, the assembly and the flat model. It lives until
// the surface nodal areas are written. A part's surfaces are stored once and seen through each of
// its instances. Surfaces made of others may name them before they are defined.
//
// A name stands for what one keyword defines: a second surface of that name is told and left out.
class inpS_SurfaceVisitor : public inpS_SetVisitor {
public:
  inpS_SurfaceVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                      const inpS_Inventory& inventory, inpS_Ledger& ledger);
  ~inpS_SurfaceVisitor() override;

  // The deck's surfaces are in the database already (the second look of a restart).
  void SkipConverted() { m_isConverted = true; }

  void VisitList(inp_KeywordListRef keywords) override;
  void VisitSurface(const inp_Keyword& keyword) override;

private:
  void TellKept(const inp_Keyword& keyword, eds_SurfaceType type, eds_SurfaceOperation operation);
  bool ReadOperation(const inp_Keyword& keyword, eds_SurfaceOperation& operation);
  bool IsFree(const inp_Keyword& keyword, const cow_String& name, bool internal);
  bool IsPlaced() const;
  bool IsSecondAnalytical(const inp_Keyword& keyword);
  bool LacksMesh();
  bool LacksAny(Kind kind);
  bool ReadData(const inp_Keyword& keyword, KvoObjSurface& surface);
  void Refuse(const inp_Keyword& keyword, cow_String text);
  void Settle(const inp_Keyword& keyword); // left out, and told
  bool ReadAnalytical(const inp_Keyword& keyword, cow_List<double>& points,
                      cow_List<double>& segments, bool& isWhole);

  inpS_Ledger& m_ledger;
  bool m_isConverted = false;
  std::optional<bool> m_lacksMesh; // once it is known
  long long m_withoutMesh = 0;     // surfaces left out since there is no mesh
  inp_Keyword m_firstWithoutMesh;
  std::unique_ptr<inpS_SurfaceStore> m_store;
  std::unique_ptr<inpS_SurfaceCombiner> m_combiner;
};
