#pragma once

#include "database/KvoSimPosition.h"
#include "inpS/framework/inpS_BaseReferences.h"
#include "inpS/framework/inpS_Inventory.h"
#include "inpS/framework/inpS_Ledger.h"
#include "inpS/framework/inpS_Visitor.h"
#include <optional>
#include <unordered_map>

struct inpS_AmplitudeForm;

// Converts *AMPLITUDE, wherever it stands: one record under its name in the model. Definitions that
// no record kind serves are kept as text.
class inpS_AmplitudeVisitor : public inpS_Visitor {
public:
  inpS_AmplitudeVisitor(const inpS_Inventory& inventory, inpS_Ledger& ledger)
      : m_inventory(inventory), m_ledger(ledger) {}

  void VisitList(inp_KeywordListRef keywords) override;
  void VisitAmplitude(const inp_Keyword& keyword) override;
  void VisitBaselineCorrection(const inp_Keyword& keyword) override;

private:
  const inpS_AmplitudeForm* FormOf(const inp_Keyword& keyword);
  void Create(const inp_Keyword& keyword, const inpS_AmplitudeForm& form, const cow_String& name);
  void ReadValues(const inp_Keyword& keyword, const inpS_AmplitudeForm& form,
                  const KvoSimPosition& amplitude, const cow_String& name);
  static bool HasKnown(const inp_Keyword& keyword, const char* parameter);
  void Remove(const KvoSimPosition& amplitude);
  void GatherFormerTexts();
  void CheckWidths(const inp_Keyword& keyword, const inpS_AmplitudeForm& form);
  void ReadFirstLine(const inp_Keyword& keyword, const inpS_AmplitudeForm& form,
                     KvoSimDataRecord record);
  long long TermsAt(const inp_Keyword& keyword, int col);
  void ReadSmoothing(const inp_Keyword& keyword, KvoSimDataRecord record);
  void CheckSpacing(const inp_Keyword& keyword);
  // The two readers of values, from a data line on; at most 8 fields of a line count.
  cow_List<double> ReadColumn(const inp_Keyword& keyword, long long firstLine);
  cow_List<double> ReadMagnitudes(const inp_Keyword& keyword, double begin, double interval);
  cow_List<double> ReadPairs(const inp_Keyword& keyword, long long firstLine); // one after another
  double ValueAt(const inp_Keyword& keyword, long long row, int col);
  void StoreTerms(const KvoSimPosition& amplitude, const cow_List<double>& pairs);
  void LeaveToLater(const inp_Keyword& keyword, const inp_Keyword& later, const cow_String& name);
  void LeaveWithOwner(const inp_Keyword& suboption);
  bool StandsInBase(const KvoSimPosition& amplitude, const cow_String& name);
  void LeaveToBase(const inp_Keyword& keyword, const cow_String& name);
  void Ignore(const inp_Keyword& keyword);
  void TellOfStray(const inp_Keyword& keyword, const char* why);
  void KeepAsText(const inp_Keyword& keyword);

  const inpS_Inventory& m_inventory;
  inpS_Ledger& m_ledger;
  // By amplitude: sub-options of this deck, and texts that an earlier conversion kept with it.
  std::unordered_multimap<unsigned long long, inp_Keyword> m_suboptions;
  cow_Map<cow_String, inp_Keyword> m_defined; // by name
  std::unordered_multimap<unsigned long long, KvoSimPosition> m_formerTexts;
  // What is kept of a keyword beside its record.
  std::unordered_map<unsigned long long, KvoSimPosition> m_parts;
  std::optional<inpS_BaseReferences> m_base; // of a restart
  bool m_hasFormerTexts = false;
  bool m_isWhole = true; // all that stands on the lines at hand has been taken
};
