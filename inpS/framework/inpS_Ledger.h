#pragma once

#include "inpS/framework/inpS_OwnKeywords.h"
#include "inpS/framework/inpS_TextPlace.h"
#include "parser/inp_Keyword.h"
#include <bitset>
#include <vector>

// The account of a deck's keywords, and the only place that tells what became of one. A phase takes
// it (with the record that it became, where it has one of its own), leaves it out with a message,
// or has it kept as text at a place, with the reason. What nobody spoke of is kept as text, so that
// no keyword is lost where a phase returns early.
//
// What is said first holds; but what is left out is so whatever was said before, with what it was
// part of. A decision costs 12 bytes: decks have millions of keywords.
class inpS_Ledger {
public:
  // An empty account, with room for so many keywords.
  void Open(std::size_t keywords);
  void Close(); // what kinds were taken can still be asked

  void Take(const inp_Keyword& keyword) { Enter(keyword, Fate::Taken); }
  void Take(const inp_Keyword& keyword, const KvoSimPosition& record);
  void LeaveOut(const inp_Keyword& keyword);
  void KeepAsText(const inp_Keyword& keyword, inpS_TextPlace place = {});

  // All that was said of a subject's keywords, which are walked once more.
  void Withdraw(inpS_Subject subject);
  // What was taken of them could not be stored.
  void LeaveOut(inpS_Subject subject);

  bool IsSettled(const inp_Keyword& keyword) const; // taken, or left out: there is nothing to keep
  // Null: it is not the keyword's fate, or nobody spoke of it.
  const KvoSimPosition* RecordOf(const inp_Keyword& keyword) const;
  const inpS_TextPlace* TextOf(const inp_Keyword& keyword) const;

  using Kinds = std::bitset<inp_KeywordEnd>;
  const Kinds& TakenKinds() const { return m_takenKinds; }

private:
  enum class Fate : unsigned char { Untold, Taken, LeftOut, Text };
  // In the low two bits the fate, above them the place among the records or texts, from 1; 0: none.
  using Entry = unsigned;
  static Fate FateOf(Entry entry) { return static_cast<Fate>(entry & 3U); }
  static Entry MakeEntry(Fate fate, std::size_t place) {
    return static_cast<Entry>(place << 2U) | static_cast<Entry>(fate);
  }
  bool Enter(const inp_Keyword& keyword, Fate fate, std::size_t place = 0);
  Entry Find(const inp_Keyword& keyword) const;
  std::size_t SlotOf(const inp_KeywordBody* body) const;
  void Grow(std::size_t slots);

  // A table with open addresses; its size is a power of 2.
  std::vector<const inp_KeywordBody*> m_bodies;
  std::vector<Entry> m_entries;
  std::size_t m_count = 0;
  std::vector<KvoSimPosition> m_records;
  std::vector<inpS_TextPlace> m_places;
  Kinds m_takenKinds;
};
