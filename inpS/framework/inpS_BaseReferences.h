#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"
#include <unordered_map>
#include <unordered_set>

// What of the model that is restarted stands on one of its amplitudes and sets: what a restart says
// anew of these would change steps that are there. Looked for once, while nothing of the restart is
// stored that refers to any of them.
class inpS_BaseReferences {
public:
  enum class Use {
    None,
    Described, // a section, a constraint, a text that names it: what is there has it
    Acted      // a condition, a load, a transform names it: a line about all of its members
  };

  explicit inpS_BaseReferences(const KvoObjDocument& document);
  Use Of(const KvoSimPosition& record, const cow_String& name) const;

private:
  std::unordered_map<unsigned long long, Use> m_uses;
  void AddWords(std::string_view text);

  cow_List<KvoSimPosition> m_texts;
  std::unordered_set<cow_String> m_words; // of the texts, in capitals
};
