#pragma once

#include "inpS/forms/inpS_FormVisitor.h"
#include "inpS/properties/inpS_SectionValues.h"
#include <optional>
#include <set>

// How many dimensions a profile has that a word names; 0: it is given in some other way.
int inpS_dimensionsOfProfile(const cow_String& word);

// The sections phase: what gives the elements of sets their properties becomes records by its
// forms. What those cannot say: which solid section serves the elements of a set, and what must
// hold between the values of some.
class inpS_SectionVisitor : public inpS_FormVisitor {
public:
  inpS_SectionVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                      const inpS_Inventory& inventory, inpS_Ledger& ledger);

  // The record of that name, as the place at hand sees it; null: there is none.
  KvoSimPosition GetMaterial(const cow_String& name) const;
  KvoSimPosition GetOrientation(const cow_String& name) const;
  // The assignment that was derived of the set, and back.
  KvoSimPosition GetRegionFromElset(const KvoSimPosition& elset) const;
  KvoSimPosition GetElsetFromRegion(const KvoSimPosition& region) const;
  // The sub-option's record of that kind, made on first use.
  KvoSimPosition FindOrCreateProperty(const KvoSimPosition& section, eds_RecordKind kind);

  // Where the environment asks for shell sections in bulk (TRL_BULK_SHELL_SECTIONS is defined): the
  // plies of each shell section as columns, beside its records. Nothing otherwise.
  void WriteBulkShellSectionDistributions();

protected:
  const inpS_Form* Choose(const inp_Keyword& keyword, const inp_Keyword* parent) override;
  bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form) override;
  void TellMissing(const inp_Keyword& keyword, const cow_String& parameter,
                   const eds_Referable& referable, const cow_String& name) override;
  void TellRequired(const inp_Keyword& keyword, const cow_String& parameter) override;
  bool IsErrorToLack(inp_KeywordEnm kind) const override;
  cow_String ReasonOfNone(const inp_Keyword& keyword) const override;
  cow_String FaultOfLine(const KvoSimPosition& line) override;
  bool MayLack(const inpS_Form& form, const eds_FormItem& item) const override;
  void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                 const KvoSimPosition& record) override;
  bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                   const KvoSimPosition& record) override;

private:
  const inpS_Form* ChooseSolid(const inp_Keyword& keyword);
  const inpS_Form* ChooseOfOneLayer(const inp_Keyword& keyword);
  const inpS_Form* ChooseConnector(const inp_Keyword& keyword, const inpS_Form* form);
  const inpS_Form* ChooseJoint(const inp_Keyword& keyword, const inpS_Form* inSpace);
  static const inpS_Form* ChooseTapered(const inp_Keyword& keyword, const inpS_Form* form);
  cow_List<KvoSimPosition> SpecsOf(const inp_Keyword& keyword, bool* isEmpty = nullptr);
  const inpS_SectionData& DataOf(const KvoSimPosition& owner);
  bool CheckSolid(const inp_Keyword& keyword);
  bool CheckLayup(const inp_Keyword& keyword);
  bool CheckShellStiffness(const inp_Keyword& keyword);
  void CheckThermalForces(const inp_Keyword& keyword, long long row);
  bool CheckPretension(const inp_Keyword& keyword, const inpS_Form& form);
  void CheckPretensionParts(const inp_Keyword& keyword);
  bool IsThere(const inp_Keyword& keyword, const inpS_Form& form, const char* parameter);
  bool MayLackLines(const inp_Keyword& keyword, const inpS_Form& form) const;
  bool CheckFluid(const inp_Keyword& keyword);
  void CheckPlyNames(const inp_Keyword& keyword);
  void CheckThickness(const inp_Keyword& keyword, const eds_FormInfo& form, bool isElsewhere);
  void CheckProfile(const inp_Keyword& keyword, const inpS_Form& form);
  void CheckAxis(const inp_Keyword& keyword, long long row);
  void CheckFamilies(const inp_Keyword& keyword);
  void CheckModuli(const inp_Keyword& keyword, const inpS_Form& form);
  void CheckDensity(const inp_Keyword& keyword);
  void CheckNotNegative(const inp_Keyword& keyword, long long row, const inpS_Form& form,
                        const char* what);
  void CheckBars(const inp_Keyword& keyword);
  void CheckEnds(const inp_Keyword& keyword);
  void CheckJoint(const inp_Keyword& keyword, const cow_String& parameter, const cow_String& words);
  void CheckPoint(const inp_Keyword& keyword, const inpS_Form& form);
  void CheckTypes(const inp_Keyword& keyword);
  void CheckPipe(const inp_Keyword& keyword);
  void CheckPlies(const inp_Keyword& keyword, const KvoSimPosition& section);
  void CheckStackDirection(const inp_Keyword& keyword);
  void CheckRebar(const inp_Keyword& keyword, const KvoSimPosition& layer);
  void MarkDirection(const inp_Keyword& keyword, const KvoSimPosition& section);

  std::optional<inpS_SectionData> m_data; // of the owner at hand
  inpS_SectionValues m_values;
  std::set<cow_String> m_pretensions; // by whose they are and what they name
};
