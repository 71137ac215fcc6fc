#pragma once

#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_Form.h"
#include "inpS/sets/inpS_SetVisitor.h"

class utl_Stream;

// A value as decks have it and the fields of a record that keep it: both ways, by the item of the
// form that describes it.

// What a deck gives: a parameter's value, or a field of a data line.
struct inpS_FormValue {
  inp_FieldType type = inp_FieldType::None;
  cow_String text; // as written
  double real = 0;
  long long integer = 0;

  static inpS_FormValue Of(const inp_Item& parameter);
  static inpS_FormValue Of(const inp_DataArray& data, long long row, int col);
};

// The labels of the owner that is open; null: it has none.
struct inpS_LabelSpaceView {
  const eds_LabelMap* labels = nullptr;
  long long offset = 0; // of its ordinals
};

// Looks names up from where the walk of a visitor stands.
class inpS_FormNames {
public:
  explicit inpS_FormNames(const inpS_SetVisitor& place) : m_place(place) {}
  inpS_SetVisitor::Found Find(const eds_Referable& referable, const cow_String& asWritten) const;
  // It knows what is kept as text.
  void SetInventory(const inpS_Inventory& inventory) { m_inventory = &inventory; }

  // What a deck is told that names something that is not there: the referable's text, or the
  // visitor's own.
  cow_String TextOfMissing(const eds_Referable& referable, const cow_String& name) const;
  void SetTextOfMissing(std::string_view word, std::string_view text) { m_texts[word] = text; }
  // The same of a label, and of a node's, as it is written; empty: as of any.
  cow_String TextOfMissing(eds_FormType type, const cow_String& asWritten) const;
  using TextOfNode = cow_String (*)(const cow_String& asWritten);
  void SetTextOfMissingNode(TextOfNode text) { m_textOfNode = text; }

  // Of an item that takes labels of nodes or elements.
  inpS_LabelSpaceView Labels(const eds_FormItem& item) const;
  // Of "instance.label"; false when the text is no such thing. -1: there is none of that label.
  bool FindLabel(const eds_FormItem& item, const cow_String& asWritten, long long& ordinal) const;

  // A node's or element's, alone or as "instance.label".
  struct Label {
    bool isKnown = false;
    bool isNumber = false; // alone or behind an instance
    int number = 0;
    KvoSimPosition instance; // that the label was scoped by
  };
  Label FindLabel(eds_FormType type, const cow_String& asWritten) const;

private:
  // The name last found of each kind: a keyword's names are looked for to check them, and again
  // to take them.
  struct Last {
    cow_String name;
    KvoSimPosition from; // what the walk stands in
    inpS_SetVisitor::Found found;
  };
  inpS_SetVisitor::Found Search(const eds_Referable& referable, const cow_String& asWritten) const;
  inpS_SetVisitor::Found FindNear(const eds_Referable& referable,
                                  const cow_String& asWritten) const;

  const inpS_SetVisitor& m_place;
  const inpS_Inventory* m_inventory = nullptr;
  cow_Map<std::string_view, std::string_view> m_texts; // by referable
  TextOfNode m_textOfNode = nullptr;
  mutable cow_List<Last> m_last; // by referable
};

// The value goes to the first alternative that takes it. What is wrong with it; empty when it has
// been taken.
cow_String inpS_takeValue(const eds_FormItem& item, const inpS_FormValue& value,
                          const inpS_FormNames& names, KvoSimDataRecord record);
// What is wrong with a name, or with the label that may stand in its place; empty: it is there.
cow_String inpS_faultOfName(const eds_FormItem& item, const inpS_FormValue& value,
                            const inpS_FormNames& names);
// Whether it may be a node, an element or what has a name; and whether that is of the mesh.
bool inpS_mayName(const eds_FormItem& item);
bool inpS_namesMesh(const eds_FormItem& item);
// Whether some field holds it.
bool inpS_hasValue(const eds_FormItem& item, const KvoSimDataRecord& record);
// As a deck has it; nothing for one that is not given.
void inpS_printValue(utl_Stream& out, const eds_FormItem& item, const KvoSimDataRecord& record);
