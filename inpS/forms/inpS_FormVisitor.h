#pragma once

#include "inpS/forms/inpS_Blocks.h"
#include "inpS/forms/inpS_FormRows.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/forms/inpS_FormValue.h"
#include "inpS/framework/inpS_Ledger.h"
#include "parser/inp_KeywordTable.h"

// Converts the keywords whose form says all of them: each becomes a record that its owner (model,
// part, instance, assembly) holds in the member of the writer's block, and its sub-options records
// that it holds itself. What a form cannot say is an operation of the subject's visitor, which
// derives from this one.
class inpS_FormVisitor : public inpS_SetVisitor {
public:
  // Those of the phase's blocks.
  inpS_FormVisitor(inpS_Phase phase, KvoObjLabeler& nodes, KvoObjLabeler& elements,
                   const inpS_Inventory& inventory, inpS_Ledger& ledger);

  void VisitList(inp_KeywordListRef keywords) override;
  void Report() override;
  // The mesh could not be stored: that sets and surfaces are not there is told once, not at each
  // keyword that names them.
  void SetMeshLeftOut(bool isLeftOut) { m_isMeshLeftOut = isLeftOut; }
  void Visit(const inp_Keyword& keyword) override;

protected:
  // The form of the keyword; null: none, and it is kept as text. parent: what it is a sub-option
  // of, or null.
  // Whether this phase converts the keyword where it stands within a step.
  virtual bool IsOfPhase(const inp_Keyword& keyword) const;
  virtual const inpS_Form* Choose(const inp_Keyword& keyword, const inp_Keyword* parent);
  // Whether the keyword can be made a record, beside what every form asks for; what stands against
  // it is told.
  virtual bool MayConvert(const inp_Keyword& keyword, const inpS_Form& form);
  // Of a parameter that names something: there is none of that name.
  virtual void TellMissing(const inp_Keyword& keyword, const cow_String& parameter,
                           const eds_Referable& referable, const cow_String& name);
  virtual void TellRequired(const inp_Keyword& keyword, const cow_String& parameter);
  // Whether a keyword of the kind that lacks something, or names what is not there, is an error.
  virtual bool IsErrorToLack(inp_KeywordEnm kind) const;
  void Tell(const inp_Keyword& keyword, wip_Message message); // an error, or a warning
  // Whether the keyword is what it is without a parameter of the form, the word of which is none of
  // the language's.
  virtual bool MayLack(const inpS_Form& form, const eds_FormItem& item) const;
  // Why a keyword has no form, as "lacks its TYPE"; empty: that is told, or of no use.
  virtual cow_String ReasonOfNone(const inp_Keyword&) const { return {}; }
  // Whether words that nobody knows leave nothing of the keyword.
  bool IsLostByWords(const inp_Keyword& keyword, const inp_Keyword* parent) const;
  // Behind all that the row says, within the keyword's transaction.
  virtual void Converted(const inp_Keyword& keyword, const inpS_Form& form,
                         const KvoSimPosition& record);
  // Of bulk columns: whether all that the lines say is in the record.
  virtual bool ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                           const KvoSimPosition& record);
  // What is wrong with a line that has become a record, beside what its fields ask for; empty:
  // nothing. It costs the line.
  virtual cow_String FaultOfLine(const KvoSimPosition& line);
  // Of a table whose columns neither the row nor the keyword can tell; none: they can.
  virtual cow_List<inpS_TableColumns::Column> ColumnsOf(const inp_Keyword& keyword,
                                                        const inpS_Form& form);
  inpS_FormNames& Names() { return m_names; }
  bool IsMeshLeftOut() const { return m_isMeshLeftOut; }
  inpS_Ledger& Ledger() { return m_ledger; }

  // The record that the keyword becomes, held by the owner; null: it is kept as text. parent: as of
  // Choose.
  KvoSimPosition Convert(const inp_Keyword& keyword, const KvoSimPosition& owner, eds_Member member,
                         const inp_Keyword* parent);
  void SetToldOfNone() { m_isToldOfNone = true; } // in Choose: why there is no form
  bool IsNaming() const { return m_isNaming; }    // of the two walks the first one

  // The record of the step that is open; null: none is, or it is kept as text.
  const KvoSimPosition& OpenStep() const { return m_step; }

private:
  // What goes with a parameter whose word nobody knows, or whose name nothing has.
  enum class Loss : unsigned char { Parameter, Lines, Keyword };
  Loss LossOf(const inpS_Form& form, const cow_String& parameter) const;
  // Of the words of a keyword that are none of the language's; what becomes of it is told.
  Loss LossOfWords(const inp_Keyword& keyword, const inp_Keyword* parent);
  void TellLost(const inp_Keyword& keyword, const cow_String& parameter, const cow_String& fault,
                Loss loss, bool isDoubt);

  void VisitWithinStep(const inp_Keyword& keyword);
  void Hold(const KvoSimPosition& owner, eds_Member member, const KvoSimPosition& record) const;
  void KeepAsText(const inp_Keyword& keyword, const KvoSimPosition& owner,
                  const inp_Keyword* parent, bool isTold, const cow_String& reason = {});
  void ConvertSuboptions(const inp_Keyword& keyword, const KvoSimPosition& record);
  void TellWithoutMesh();
  // Whether the keyword can be this form's record; what stands against it is told.
  bool MayBe(const inp_Keyword& keyword, const inpS_Form& form, const KvoSimPosition& owner,
             eds_Member member, Loss& loss);
  KvoSimPosition NamesIn(const KvoSimPosition& owner) const;
  bool IsNameFree(const inp_Keyword& keyword, const KvoSimPosition& owner);
  bool CheckReferences(const inp_Keyword& keyword, const inpS_Form& form, Loss& loss);
  void ReadParameters(const inp_Keyword& keyword, const inpS_Form& form, KvoSimDataRecord record);
  void ReadItem(const inp_Keyword& keyword, const inpS_ParameterBinding& parameter,
                const eds_FormItem& item, const inp_Item& value, KvoSimDataRecord record);
  // Whether all that the lines say is in the record.
  bool ReadData(const inp_Keyword& keyword, const eds_FormInfo& form, const KvoSimPosition& record);
  bool ReadSurplus(const inp_Keyword& keyword, long long lines);
  bool ReadRecords(const inp_Keyword& keyword, long long first, eds_RecordKind kind,
                   const KvoSimPosition& record);
  enum class Line : unsigned char { Whole, Partly, Nothing };
  Line ReadLine(const inp_Keyword& keyword, long long row, const cow_List<eds_FormItem>& items,
                const KvoSimPosition& record);

  inpS_Phase m_phase;
  const inp_KeywordTable& m_keywords; // of this thread: asked for each keyword
  inpS_Ledger& m_ledger;
  inpS_FormNames m_names;
  KvoSimPosition m_step;
  long long m_stepPlace = 0; // of the keyword at hand within its step
  bool m_hasSteps = false;   // the walk has met one
  bool m_isToldOfNone = false;
  bool m_isMeshLeftOut = false;
  cow_List<inp_Keyword> m_withoutMesh; // that name what the mesh would have
  bool m_isNaming = false;             // the walk is for what others refer to by its name
};
