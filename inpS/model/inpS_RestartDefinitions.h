#pragma once

#include "database/KvoObjDocument.h"
#include "parser/inp_KeywordEnm.h"
#include <set>
#include <unordered_set>

class KvoObjModel;
class inp_Keyword;
class inp_Visitor;
struct inp_KeywordBody;

// A restart goes on with the materials, gasket behaviours and physical constants of its model. It
// converts none, but keeps those of other names as text; one of the same name would stand twice in
// the deck that is written. What is unknown belongs to none of them.
class inpS_RestartDefinitions {
public:
  explicit inpS_RestartDefinitions(const KvoObjDocument& document);

  // What is wrong with the keyword; empty: nothing, and from now on its name is known.
  cow_String Conflict(const inp_Keyword& keyword);
  // Whether the keyword belongs to one that Conflict had words for.
  bool IsOfRefused(const inp_Keyword& keyword) const;

private:
  void AddKept(const KvoObjDocument& document);
  void AddRefused(const inp_Keyword& keyword);

  std::set<std::pair<inp_KeywordEnm, cow_String>> m_names;
  std::unordered_set<const inp_KeywordBody*> m_ofRefused; // wherever they stand
};

// A restart goes on with the assembly, parts and instances of its model, under its heading and
// behind all of its steps: tells of a part or an instance that the model does not have or that has
// no name, of another placement, name of the assembly or heading, of a step to begin from, and of
// conditions before steps that are there. False: the keyword is not taken.
bool inpS_checkRestart(const inp_Keyword& keyword, const KvoObjModel& model, bool hasSteps,
                       inp_Visitor& messages);
