#pragma once

#include "parser/inp_KeywordTable.h"
#include "parser/inp_NameIndex.h"
#include <string>
#include <utility>
#include <vector>

// The tables of keywords and element types, put together once for all threads and never changed.
class inp_Vocabulary {
public:
  static const inp_Vocabulary& Instance();

  std::span<const inp_KeywordRow> Rows() const { return m_rows; }
  const inp_NameIndex& KeywordIndex() const { return m_keywordIndex; } // to enumerators
  const inp_NameIndex& ElementIndex() const { return m_elementIndex; } // to places in the table
  inp_KeywordEnm CloserOf(const inp_KeywordRow& opener) const;
  // The words that a parameter may have for its value; none: any value.
  std::span<const std::string_view> WordsOf(inp_KeywordEnm keyword,
                                            std::string_view parameter) const;

  inp_Vocabulary(const inp_Vocabulary&) = delete;
  inp_Vocabulary& operator=(const inp_Vocabulary&) = delete;

private:
  inp_Vocabulary();
  void CutParameters();
  void LinkSuboptions();
  void IndexNames();
  void CutWords();

  // Gathers the second members of all relations with the same first into that keyword's list.
  using Relation = std::pair<inp_KeywordEnm, inp_KeywordEnm>;
  static void Group(std::vector<Relation>& relations, std::vector<inp_KeywordEnm>& seconds,
                    std::vector<inp_KeywordRow>& rows,
                    std::span<const inp_KeywordEnm> inp_KeywordRow::*list);

  struct Values {
    inp_KeywordEnm keyword;
    std::string_view parameter;
    std::span<const std::string_view> words;
  };

  std::vector<inp_KeywordRow> m_rows;
  std::vector<std::string_view> m_parameters;
  std::vector<inp_KeywordEnm> m_parents;
  std::vector<inp_KeywordEnm> m_children;
  std::vector<std::string_view> m_words;
  std::vector<Values> m_values; // by keyword, then parameter
  std::vector<std::string> m_foldedNames;
  inp_NameIndex m_keywordIndex;
  inp_NameIndex m_elementIndex;
};
