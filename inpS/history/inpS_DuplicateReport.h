#pragma once

#include "inpS/history/inpS_Excitations.h"
#include "parser/inp_Keyword.h"
#include <unordered_map>

// Tells of degrees that one keyword prescribes twice with different values, at its place: what
// holds follows from the model alone, and the model knows no places.
class inpS_DuplicateReport {
public:
  // refused: its data lines that are no rows of the record, in order.
  void Add(const KvoSimPosition& record, const inp_Keyword& keyword, cow_List<long long> refused) {
    m_keywords.emplace(record.Object().Packed(), Given{&keyword, std::move(refused)});
  }
  // False: there are some. Those of records from before a restart are its base's, and were told.
  bool Report(const cow_List<inpS_DuplicateCondition>& duplicates) const;

private:
  struct Given {
    const inp_Keyword* keyword;
    cow_List<long long> refused;
  };
  static cow_List<long long> LinesOf(const Given& given, const KvoSimPosition& record);

  std::unordered_map<unsigned long long, Given> m_keywords; // by record
};
