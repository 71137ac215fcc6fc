#include "inpS/framework/inpS_Ledger.h"

void inpS_Ledger::Take(const inp_Keyword& keyword, const KvoSimPosition& record) {
  m_entries.try_emplace(keyword.Body().get(), Entry{true, record, {}});
}

void inpS_Ledger::KeepAsText(const inp_Keyword& keyword, const inpS_TextPlace& place) {
  m_entries.try_emplace(keyword.Body().get(), Entry{false, {}, place});
}

void inpS_Ledger::Add(const inpS_TextKeywords& keywords) {
  for (const auto& [body, place] : keywords) m_entries.try_emplace(body, Entry{false, {}, place});
}

const inpS_Ledger::Entry* inpS_Ledger::Find(const inp_Keyword& keyword) const {
  const auto entry = m_entries.find(keyword.Body().get());
  return entry == m_entries.end() ? nullptr : &entry->second;
}

const KvoSimPosition* inpS_Ledger::RecordOf(const inp_Keyword& keyword) const {
  const Entry* entry = Find(keyword);
  return entry && entry->isTaken ? &entry->record : nullptr;
}

const inpS_TextPlace* inpS_Ledger::TextOf(const inp_Keyword& keyword) const {
  const Entry* entry = Find(keyword);
  return entry && !entry->isTaken ? &entry->place : nullptr;
}
