#pragma once

#include "inpS/framework/inpS_Ledger.h"
#include "inpS/mesh/inpS_MeshScope.h"
#include "parser/inp_Visitor.h"

class KvoObjLabeler;
class inpS_MeshSetReader;

// Keywords of elements that are kept as text: those of a type that nobody knows, and those that
// would make elements from theirs. It is an error of the deck and none of the mesh, which is stored
// without them; what names their elements is told here, once, and nowhere else.
class inpS_ElementsAsText {
public:
  inpS_ElementsAsText(inpS_MeshScopes& scopes, const KvoObjLabeler& elements,
                      inpS_MeshSetReader& sets, inpS_Ledger& ledger)
      : m_scopes(scopes), m_elements(elements), m_sets(sets), m_ledger(ledger) {}

  // *ELEMENT; the message says why.
  void Keep(const inp_Keyword& keyword, inpS_MeshScope& scope, wip_Message message);
  // *ELCOPY; false when it starts from no such element.
  bool KeepCopiedFromText(const inp_Keyword& keyword, inpS_MeshScope& scope);
  // *ELGEN: the lines that start from such elements, ascending. Only these are kept.
  cow_List<long long> KeepLinesFromText(const inp_Keyword& keyword, inpS_MeshScope& scope);

  // A set that a step defines, of a name that is taken.
  void KeepSet(const inp_Keyword& keyword);

  // A keyword that would make or move nodes, if its kind were known. Where the set that it names is
  // nobody's else, there is none of its nodes in it.
  void KeepGenerator(const inp_Keyword& keyword, inpS_MeshScope& scope);

  bool IsWhollyText(const inp_Keyword& keyword) const {
    const inpS_TextPlace* kept = m_ledger.TextOf(keyword);
    return kept && kept->text.empty();
  }

  // At the end of the walk: a set that such keywords alone name is there, and empty. It comes
  // behind all others, as in a deck written, which has texts before sets.
  void AddSets();

  const inp_Visitor& Messages() const { return m_messages; }
  void Report() { m_messages.Report(); }

private:
  void Keep(const inp_Keyword& keyword, inpS_MeshScope& scope, wip_Message message,
            std::string_view setParameter, const cow_List<int>& labels, cow_String text = {});
  cow_List<int> GeneratedLabels(const inp_DataArray& data, long long row,
                                const inpS_MeshScope& scope) const;
  cow_List<int> CopiedLabels(const inp_Keyword& keyword, const inpS_MeshScope& scope) const;

  inpS_MeshScopes& m_scopes;
  const KvoObjLabeler& m_elements;
  inpS_MeshSetReader& m_sets;
  inp_Visitor m_messages;
  inpS_Ledger& m_ledger;
  struct TextSet {
    inpS_MeshScope* scope;
    inpS_SetKind kind;
    cow_String name;
    inp_Keyword keyword;
    cow_List<int> labels; // that it has as text
  };
  cow_List<TextSet> m_textSets; // one for each keyword that names one
};
