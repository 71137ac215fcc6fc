#pragma once

#include "base/cow_Value.h"
#include "database/eds_ModelReader.h"
#include <span>
#include <string_view>

// The forms of forms.def as data. A row's text is read when its form is first asked for: a model
// has few kinds, whatever the number of forms.

// What has a name by which others refer to it (referables.def).
struct eds_Referable {
  enum class Place : uint8_t {
    Scope, // of an owner (model, part, instance, assembly), and of instances by instance.name
    Near,  // of the owner it is defined in; of the model's all owners know
    Model  // of the whole model
  };
  std::string_view word;
  std::string_view keyword; // suffix in the vocabulary of what defines it by NAME; "None"
  eds_RecordKind kind;      // None: of several kinds
  Place place;
  bool IsScoped() const { return place == Place::Scope; }
  eds_Member member;
  eds_Member internalMember;
  std::string_view missing; // "%s" stands for the name
};
std::span<const eds_Referable> eds_referables();

enum class eds_FormType : uint8_t {
  Flag,
  Int,
  Real,
  Text,
  Choice,
  Symbol,
  Any,
  Reference,
  Node,    // by its label; in bulk columns by its ordinal
  Element, // likewise
};

// A value of a keyword: a parameter, or a field of a line; or what operations put into a field.
struct eds_FormItem {
  struct Alternative {
    eds_FormType type = eds_FormType::Text;
    cow_List<cow_String> words;               // Choice: as decks have them
    const eds_Referable* referable = nullptr; // Reference
    eds_Vocabulary vocabulary{};              // Symbol
    int field = -1;                           // of the record
    int instanceField = -1;                   // of a label, or of what may belong to an instance
    bool isLate = false;                      // its own fields stand behind those of all others
  };
  cow_String name;                    // as the field's column
  cow_List<Alternative> alternatives; // one at least
  double unset = 0;                   // what a number reads as that was never set
  bool isParameter = true;
  bool isRequired = false;
  bool isLate = false; // as of its types: all of its fields
  // Of a bulk column: short ones as bytes, others as an array; one that has the same value in all
  // rows has it in the field of its name.
  int fewField = -1;
  int wordsField = -1; // of a bulk column that holds words: which there are
  int arrayField = -1;
  bool isOptional = false; // no place is kept for it at the end of a line
  bool isRepeated = false; // of a bulk column: so many values for each row
  int perRowField = -1;    // how many
  int perLine = 0;         // of them on each line of the row; 0: eight fields to a line
};

// How often an owner may have one.
enum class eds_FormRepeat : uint8_t {
  Once,   // of this keyword, whatever its kind
  Beside, // of this kind, beside others of the keyword
  Many,
  Past, // in files of earlier versions: no keyword becomes one any more
};
// What the data lines hold, behind lines of items.
enum class eds_FormData : uint8_t {
  None,
  Text,    // lines as they stand
  Words,   // of a list, one after the other
  Records, // one for each line
  Pairs,   // of time and magnitude
  Columns, // a row for each line, in bulk
  Table,   // rows of values, then the temperature, then the field variables
  Plain,   // rows of values, then the field variables
};

struct eds_FormInfo {
  eds_RecordKind kind = eds_RecordKind::None;
  std::string_view keyword; // suffix in the vocabulary; "None": of another form's lines
  std::string_view selectors;
  eds_FormRepeat repeat = eds_FormRepeat::Many;
  cow_List<eds_FormItem> parameters;
  eds_FormData data = eds_FormData::None;
  bool mayLackRows = false;                     // of its table
  std::string_view columns;                     // of its table
  cow_List<cow_List<eds_FormItem>> lines;       // the first ones, of items
  eds_RecordKind record = eds_RecordKind::None; // Records
  int textField = -1;                           // Text
  cow_List<eds_FormItem> columnItems;           // Columns
  int rowsField = -1;                           // likewise: how many rows there are
  eds_FormItem words;                           // Words
  // Columns of rows that belong together, so many to a line: the number of each row's group.
  bool isGrouped = false;
  eds_FormItem group;
  // Columns whose target may be left out: the line without one, values for all others, and before
  // which row it stands.
  int defaultsField = -1;
  int defaultRowField = -1;
  int othersField = -1; // for the parameters that have no field of their own; -1: kept beside
};

// The kinds of all forms and the keyword of each, in the order of forms.def.
struct eds_FormKeyword {
  eds_RecordKind kind;
  std::string_view keyword;
};
std::span<const eds_FormKeyword> eds_formKeywords();
// Null for a kind that is no form's.
const eds_FormInfo* eds_formOf(eds_RecordKind kind);
const eds_RecordInfo* eds_formRecord(eds_RecordKind kind);
const eds_RecordInfo* eds_formRecord(std::string_view table);
// The number of a form's field, which there must be.
int eds_formField(eds_RecordKind kind, std::string_view column);
