#pragma once

#include "inpS/forms/inpS_LineCheck.h"
#include "inpS/history/inpS_LoadLabels.h"
#include "inpS/history/inpS_LoadedElements.h"
#include "parser/inp_Keyword.h"

// The lines of a keyword whose second field is a label of inpS_loadLabels.def: it must be one of
// the keyword's, what it needs must follow it, and the elements must be such that can be loaded so.
// A label that all elements of the mesh take, and that needs nothing, is looked at once, whatever
// the lines.
class inpS_LoadLines : public inpS_LineCheck {
public:
  inpS_LoadLines(const inp_Keyword& keyword, const KvoSimPosition& record, int dimensions,
                 inpS_LoadedElements& elements);

  bool IsSound(const inp_ColumnPiece& piece, Words words) override;
  std::optional<inpS_LineFault> FaultOf(const inpS_LineView& line) override;
  bool IsErrorToRefuse() const override { return true; }

private:
  using Type = inpS_LoadedElements::Type;
  struct Label {
    cow_String text;
    inpS_FoundLabel found;
    bool needsValues = false;
    bool needsTypes = false; // some element of the mesh does not take it
    int most = kAnyNumber;   // values that it can have
    cow_List<char> takes;    // by the mesh's types
    cow_Map<int, Type> sets; // by place: the type that does not take it; null: all do
    bool IsCarefree() const { return !found.rows.empty() && !needsValues && !needsTypes; }
  };
  static constexpr int kAnyNumber = 1000;
  // What a surface has to be loaded: none has one of nodes, or of no mesh at all.
  enum class Faces : char { Unknown, None, Any, Sides, Edges };
  Label MakeLabel(const cow_String& text) const;
  int MostValues(const Label& label) const;
  // Whether some row has more values than the label with the fewest.
  bool MayHaveSurplus(const inp_ColumnPiece& piece) const;
  Label& LabelAt(int slot, Words words);
  // The value that is asked for and not given; null: there is none.
  template <class Value>
  const inpS_LoadLabel::Value* MissingOf(const Label& label, const Value& valueAt) const;
  // The first value beyond those that the label can have; -1: there is none.
  template <class Value> int SurplusOf(const Label& label, const Value& valueAt) const;
  bool Takes(const Label& label, Type type) const;
  Type TypeAgainst(Label& label, int target); // null: none
  Faces FacesOf(int target);
  // Of a surface against the label; empty: none.
  cow_String FaultOfSurface(int target, int label);
  // What the line ought to give and does not; empty: nothing.
  cow_String LackOf(const Label& label, const inpS_LineView& line) const;
  cow_String TextOf(const Label& label, const inpS_LoadLabel::Value& missing,
                    bool isHeightGiven) const;

  const inp_Keyword& m_keyword;
  KvoSimPosition m_record;
  bool m_isInSpace; // three dimensions
  bool m_isOfSurfaces;
  bool m_needsLabel;
  int m_valueColumn; // of what makes a line act; -1: it may be left out, or a routine gives it
  inpS_LoadedElements& m_elements;
  cow_List<Faces> m_faces;  // of surfaces, by place
  cow_List<Label> m_labels; // as the column's words
};
