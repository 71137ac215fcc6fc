#pragma once

#include "inpS/forms/inpS_LineCheck.h"
#include "parser/inp_Keyword.h"

class inp_Visitor;
class inpS_FormNames;
struct eds_FormInfo;

// What the lines of conditions and loads of nodes have in common: labels of nodes that are not
// there are told in one message for the keyword, whose text users know.
class inpS_NodalLines : public inpS_LineCheck {
public:
  // ofInstance: before labels of one instance, whose name it takes; empty: as any other labels.
  inpS_NodalLines(const inp_Keyword& keyword, std::string_view missing,
                  std::string_view ofInstance = {});

  bool TakeMissing(bool isLabel, const cow_String& asWritten) override;
  bool IsErrorToRefuse() const override { return true; }
  // Reads the lines and tells what is wrong with them; false when not all of them are in the
  // record.
  bool Read(const eds_FormInfo& form, const KvoSimPosition& record, const inpS_FormNames& names,
            inp_Visitor& messages);
  // The data lines that are no rows, in order.
  cow_List<long long> TakeRefused() { return std::move(m_refused); }

private:
  const inp_Keyword& m_keyword;
  cow_List<long long> m_refused;
  void Tell(inp_Visitor& messages) const;

  cow_String m_missing;
  cow_String m_ofInstance;
  cow_Map<cow_String, cow_List<cow_String>> m_labels; // by instance; none: ""
};

// *BOUNDARY: the degree of freedom is from 1 to 30, or a word that tells all.
class inpS_BoundaryLines : public inpS_NodalLines {
public:
  inpS_BoundaryLines(const inp_Keyword& keyword, bool isFluidStep);

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;
  cow_String TextOfMissing(const cow_String& name) const override;

private:
  bool IsWord(const cow_String& text) const;

  bool m_isFluidStep;
  bool m_isFixed;
  cow_String m_rate;            // "velocity", "acceleration"; empty: displacements are prescribed
  bool m_needsDegree;           // what another analysis gives may tell its own
  std::size_t m_knownWords = 0; // of those seen, and whether all were of the list
  bool m_areWordsKnown = true;
};

// *CLOAD, within and without steps of fluid dynamics.
//
// Decided here: forces act on degrees 1 to 3, moments on 4 to 6, a bimoment on 7 and the
// acceleration of an acoustic volume on 8. Degrees 9 to 30 are taken, for elements of users may
// give them a meaning, but told: charges and fluxes have keywords of their own. In the place of a
// degree the words of drag, inertia, buoyancy and wind upon the end of an element may stand. A flow
// has no displacements: its loads are given by FX, FY and FZ.
class inpS_ConcentratedLines : public inpS_NodalLines {
public:
  inpS_ConcentratedLines(const inp_Keyword& keyword, bool isFluidStep);

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;

private:
  bool m_isFluidStep;
  bool m_isOfUser;
  bool m_isElsewhere; // a routine or another analysis has the magnitudes
};
