#pragma once

#include "base/cow_Value.h"
#include "parser/inp_ElementInfo.h"
#include "parser/inp_KeywordEnm.h"
#include <span>
#include <string_view>

// Where a keyword may stand of itself, as bits.
enum inp_Levels : unsigned {
  inp_LevelsSub = 0, // only as a sub-option
  inp_LevelsModel = 1u << 0,
  inp_LevelsPart = 1u << 1,
  inp_LevelsInstance = 1u << 2,
  inp_LevelsAssembly = 1u << 3,
  inp_LevelsStep = 1u << 4,
  inp_LevelsModelStep = inp_LevelsModel | inp_LevelsStep,
  inp_LevelsMesh = inp_LevelsModel | inp_LevelsPart | inp_LevelsInstance | inp_LevelsAssembly,
  inp_LevelsAny = inp_LevelsMesh | inp_LevelsStep,
};

enum class inp_KeywordRole : unsigned char {
  Plain,
  Open,      // opens a scope
  Close,     // closes the scope whose keyword it names behind END
  Procedure, // says what a step computes
  Variant,   // has the deck name of another keyword; assigned by the organiser, never spelt
};

enum class inp_DataKind : unsigned char {
  None,
  Numbers,
  Labels,   // node or element labels and set names
  Names,    // words
  Verbatim, // text taken as it stands
  Mixed,    // names or labels, and numbers
};

// One row of the vocabulary.
struct inp_KeywordRow {
  inp_KeywordEnm kind;
  std::string_view name;   // upper case, single blanks
  std::string_view suffix; // of the visitor's operation
  unsigned levels;         // inp_Levels
  inp_KeywordRole role;
  inp_DataKind data;
  int block;                                    // of the deck writer, 1 to 29
  std::span<const std::string_view> parameters; // sorted, lower case without blanks
  bool openParameters;                          // the list of parameters is not complete
  std::span<const inp_KeywordEnm> parents;      // whose sub-option it may be
  std::span<const inp_KeywordEnm> children;     // its sub-options
};

// What a spelt parameter name means for a keyword.
struct inp_ParameterMatch {
  enum class Kind : unsigned char {
    Exact,
    Abbreviated, // the unique parameter that begins so
    Ambiguous,   // several begin so: candidates
    Unknown,
  };
  Kind kind = Kind::Unknown;
  std::string_view name; // canonical; empty unless Exact or Abbreviated
  std::span<const std::string_view> candidates;
};

// What a value means for a parameter whose values are words of the language.
struct inp_WordMatch {
  enum class Kind : unsigned char {
    Any,       // the parameter takes any value
    Known,     // one of the words, or the only one that begins so
    Ambiguous, // several begin so
    Unknown,
  };
  Kind kind = Kind::Any;
  std::string_view word{};                    // as it is written; empty unless Known
  cow_List<std::string_view> candidates = {}; // several that begin so; when unknown all there are
};

class inp_Vocabulary;

// The deck language's vocabulary: keywords, their parameters, and the element types. It never
// changes; look-ups allocate nothing. Names given may be in any case and hold blanks anywhere.
class inp_KeywordTable {
public:
  static const inp_KeywordTable& Instance(); // of this thread

  // The keyword of that name (without the asterisk); inp_UnknownKeyword when there is none.
  inp_KeywordEnm Find(std::string_view name) const;

  // The row of a keyword; null for the null and the unknown keyword.
  const inp_KeywordRow* Row(inp_KeywordEnm kind) const;
  std::span<const inp_KeywordRow> Rows() const; // in table order

  bool IsSuboptionOf(inp_KeywordEnm child, inp_KeywordEnm parent) const;
  bool MayStandAt(inp_KeywordEnm kind, inp_Levels level) const;

  // The keyword that closes the scope another one opens; inp_NullKeyword for any other.
  inp_KeywordEnm CloserOf(inp_KeywordEnm opener) const;

  inp_ParameterMatch ResolveParameter(inp_KeywordEnm kind, std::string_view text) const;

  // The words that a parameter may have for its value, in the order of the row; none: any value.
  std::span<const std::string_view> WordsOf(inp_KeywordEnm kind, std::string_view parameter) const;
  inp_WordMatch ResolveWord(inp_KeywordEnm kind, std::string_view parameter,
                            std::string_view value) const;
  // How values are compared: in upper case, without blanks and underscores.
  static cow_String BareWord(std::string_view text);

  // The known name closest to a misspelt one; empty when none is close.
  std::string_view NearestKeyword(std::string_view name) const;
  std::string_view NearestParameter(inp_KeywordEnm kind, std::string_view name) const;
  std::string_view NearestElement(std::string_view name) const;

  // The facts of an element type, in any case; null for a name that is not in the table.
  const inp_ElementInfo* FindElement(std::string_view type) const;
  std::span<const inp_ElementInfo> Elements() const; // in table order

private:
  inp_KeywordTable();

  const inp_Vocabulary& m_vocabulary;
};
