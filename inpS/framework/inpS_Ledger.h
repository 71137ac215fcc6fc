#pragma once

#include "inpS/framework/inpS_TextKeywords.h"
#include "parser/inp_Keyword.h"
#include <unordered_map>

// The account that phases give of keywords: taken, with the record that it became, or left to be
// kept as text at a place. What stands behind a record in its block, and is kept as text, is put
// back behind that record.
class inpS_Ledger {
public:
  void Take(const inp_Keyword& keyword, const KvoSimPosition& record);
  void KeepAsText(const inp_Keyword& keyword, const inpS_TextPlace& place = {});
  void Add(const inpS_TextKeywords& keywords);
  void Clear() { m_entries.clear(); }

  // Null: it is not the keyword's fate, or nobody spoke of it.
  const KvoSimPosition* RecordOf(const inp_Keyword& keyword) const;
  const inpS_TextPlace* TextOf(const inp_Keyword& keyword) const;

private:
  struct Entry {
    bool isTaken = false;
    KvoSimPosition record;
    inpS_TextPlace place;
  };
  const Entry* Find(const inp_Keyword& keyword) const;

  std::unordered_map<const inp_KeywordBody*, Entry> m_entries;
};
