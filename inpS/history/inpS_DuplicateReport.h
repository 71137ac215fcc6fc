#pragma once

#include "inpS/history/inpS_Excitations.h"
#include "parser/inp_Keyword.h"
#include <unordered_map>

// Tells of degrees that one keyword prescribes twice with different values, at its place: what
// holds follows from the model alone, and the model knows no places.
class inpS_DuplicateReport {
public:
  void Add(const KvoSimPosition& record, const inp_Keyword& keyword) {
    m_keywords.emplace(record.ID(), &keyword);
  }
  // False: there are some. Those of records from before a restart are its base's, and were told.
  bool Report(const cow_List<inpS_DuplicateCondition>& duplicates) const;

private:
  std::unordered_map<int64_t, const inp_Keyword*> m_keywords;
};
