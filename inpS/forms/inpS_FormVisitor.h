#pragma once

#include "inpS/forms/inpS_Blocks.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/framework/inpS_Ledger.h"

// Converts the keywords whose form says all of them: each becomes a record that its owner (model,
// part, instance, assembly) holds in the member of the writer's block. What a form cannot say is an
// operation of the subject's visitor, which derives from this one.
class inpS_FormVisitor : public inpS_SetVisitor {
public:
  // Those of the phase's blocks.
  inpS_FormVisitor(inpS_Phase phase, KvoObjLabeler& nodes, KvoObjLabeler& elements,
                   const inpS_Inventory& inventory, inpS_Ledger& ledger);

  void Visit(const inp_Keyword& keyword) override;

private:
  void Convert(const inp_Keyword& keyword, eds_Member member);
  // Whether the keyword can be this form's record; what stands against it is told.
  bool MayBe(const inp_Keyword& keyword, const inpS_Form& form, const KvoSimPosition& owner,
             eds_Member member);
  bool CheckReferences(const inp_Keyword& keyword, const inpS_Form& form);
  void ReadParameters(const inp_Keyword& keyword, const inpS_Form& form, KvoSimDataRecord record);
  // Whether all that the lines say is in the record.
  bool ReadData(const inp_Keyword& keyword, const eds_FormInfo& form, const KvoSimPosition& record);
  bool ReadRecords(const inp_Keyword& keyword, eds_RecordKind kind, const KvoSimPosition& record);
  enum class Line : unsigned char { Whole, Partly, Nothing };
  Line ReadLine(const inp_Keyword& keyword, long long row, const cow_List<eds_FormItem>& items,
                const KvoSimPosition& record);

  inpS_Phase m_phase;
  inpS_Ledger& m_ledger;
  inpS_FormNames m_names;
};
