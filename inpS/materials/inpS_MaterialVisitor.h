#pragma once

#include "database/KvoSimCollection.h"
#include "database/KvoSimTransaction.h"
#include "inpS/forms/inpS_DistributedProperty.h"
#include "inpS/forms/inpS_PropertyUtils.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Ledger.h"
#include "inpS/framework/inpS_Visitor.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/materials/inpS_Behaviors.h"

// Converts materials and gasket behaviours: every behaviour keyword becomes a property record of
// the material that is open, its sub-options records of that property. What a keyword holds stands
// in its form; only what a row cannot say has an operation of its own here.
class inpS_MaterialVisitor : public inpS_Visitor {
public:
  inpS_MaterialVisitor(const inpS_Inventory& inventory, inpS_Ledger& ledger);

  // What takes its values from distributions, which are read later.
  const cow_List<inpS_DistributedProperty>& Distributed() const { return m_distributed; }

  void VisitList(inp_KeywordListRef keywords) override;
  void Visit(const inp_Keyword& keyword) override;
  void VisitMaterial(const inp_Keyword& keyword) override;
  void VisitGasketBehavior(const inp_Keyword& keyword) override;
  void VisitPhysicalConstants(const inp_Keyword& keyword) override;
#define INPS_MATERIAL_KEYWORD(Suffix, Handler)                                                     \
  void Visit##Suffix(const inp_Keyword& keyword) override {                                        \
    Handler(keyword);                                                                              \
  }
#include "inpS/materials/inpS_materialKeywords.def"

  // A record of the property kind in the current material with the table of the keyword's rows;
  // null when it has none.
  KvoSimPosition CreateProperty(const inp_Keyword& keyword, eds_RecordKind property, int tableKind,
                                int values, int rowKind, bool temperature);
  // The first property of that kind in the current material; null when there is none.
  KvoSimPosition GetProperty(eds_RecordKind kind) const;
  // By its row: with parameters, table and sub-options. Null when the keyword has no rows. A value
  // that no row knows is an assertion here; visiting reports it instead.
  KvoSimPosition CreateBehavior(const inp_Keyword& keyword, const KvoSimPosition& owner,
                                const inp_Keyword* parent = nullptr);

  // The rows of *PLASTIC, HARDENING=ISOTROPIC, each with the keyword's rate behind its strain.
  KvoSimPosition CreateIsotropicHardeningPlastic(KvoSimTransaction& transaction,
                                                 const inp_Keyword& keyword);
  bool AppendIsotropicHardeningPlastic(KvoSimTransaction& transaction, const inp_Keyword& keyword,
                                       const KvoSimPosition& property);

private:
  // What rows say all of.
  void Behavior(const inp_Keyword& keyword) {
    Convert(keyword, m_owner);
  }
  void Elasticity(const inp_Keyword& keyword);
  void Plasticity(const inp_Keyword& keyword);
  void Expansion(const inp_Keyword& keyword);

  void Depvar(const inp_Keyword& keyword);
  bool MayConvert(const inp_Keyword& keyword, const KvoSimPosition& owner,
                  const inp_Keyword* parent);
  bool NamesDistribution(const inp_Keyword& keyword) const;
  bool IsDistributed(const inp_Keyword& keyword) const; // it names one, and nothing else
  cow_String UntoldReason(const inp_Keyword& keyword) const;
  bool IsSecond(const inp_Keyword& keyword, const inpS_Form& behavior, const KvoSimPosition& owner);
  void TellOfNoName(const inp_Keyword& keyword);
  void Settle(const inp_Keyword& keyword, const KvoSimPosition& opened); // null: left out
  void ReportChoice(const inp_Keyword& keyword);
  void TellConflicts(const inp_Keyword& keyword);
  void TellUnknown(const inp_Keyword& keyword);
  void TellOfStray(const inp_Keyword& keyword);
  void CreateMaterialRegularization(const inp_Keyword& keyword, const KvoSimPosition& material);
  KvoSimPosition Convert(const inp_Keyword& keyword, const KvoSimPosition& owner,
                         const inp_Keyword* parent = nullptr);
  KvoSimPosition Create(const inp_Keyword& keyword, const inpS_Form& behavior,
                        const KvoSimPosition& owner);
  void CreateSuboptions(const inp_Keyword& keyword, const KvoSimPosition& property);
  // The *POTENTIAL of a keyword belongs to the material and is made before the keyword's own
  // property; once that is there, it is told what it was given with, or kept as text behind it.
  struct Potential {
    KvoSimPosition made;
    cow_List<const inp_Keyword*> texts{};
  };
  Potential CreatePotential(const inp_Keyword& keyword);
  void PlacePotential(const Potential& potential, const KvoSimPosition& property);
  inpS_KeywordDataTable ReadIsotropicHardening(const inp_Keyword& keyword);
  // lines: kept as they stand. Null: nothing is kept.
  KvoSimPosition KeepOthers(const inp_Keyword& keyword, const inpS_Form& behavior,
                            const KvoSimPosition& property, cow_String lines);
  KvoSimPosition KeepParts(const inp_Keyword& keyword, const KvoSimPosition& owner,
                           inpS_KeptPart part, bool always = false);
  void KeepAsText(const inp_Keyword& keyword, const KvoSimPosition& owner, bool isTold = false,
                  cow_String reason = {});
  void KeepUnconverted(const inp_Keyword& keyword, const KvoSimPosition& owner);
  KvoSimPosition OpenNamed(const inp_Keyword& keyword, eds_RecordKind kind, eds_Member member);

  const inpS_Inventory& m_inventory;
  inpS_Ledger& m_ledger;
  KvoObjDocument m_document;
  KvoSimCollection m_rowCollection;
  KvoSimCollection m_fieldVariableCollection;
  KvoSimCollection m_componentCollection;
  KvoSimPosition m_material;
  cow_List<double> m_rates; // of its isotropic hardening so far
  KvoSimPosition m_gasket;
  KvoSimPosition m_owner; // of the keyword at hand
  KvoSimPosition m_open;  // to which an unknown keyword would belong
  KvoSimPosition m_last;  // opened, and where
  inp_ScopePtr m_lastScope;
  KvoSimPosition m_constantsPart; // the data lines of *PHYSICAL CONSTANTS
  cow_String m_constantsLines;
  cow_List<inpS_DistributedProperty> m_distributed;
};
