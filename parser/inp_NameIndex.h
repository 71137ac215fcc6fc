#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

// A name as tables compare it: in one case, without blanks and tabs. Held in place, so that folding
// allocates nothing; a name longer than any in a table folds to nothing.
class inp_FoldedName {
public:
  enum class Case : unsigned char { Upper, Lower };
  explicit inp_FoldedName(std::string_view text, Case fold = Case::Upper);
  std::string_view Text() const { return {m_text, m_length}; }

private:
  static constexpr std::size_t limit = 64;
  char m_text[limit];
  std::size_t m_length = 0;
};

// From folded names to small numbers; filled once, then only read.
class inp_NameIndex {
public:
  explicit inp_NameIndex(std::size_t names);

  // The text must outlive the index. A name already there keeps its number.
  void Add(std::string_view folded, int number);
  int Find(std::string_view folded) const; // -1: unknown

private:
  struct Slot {
    std::string_view name;
    int number = -1;
  };
  std::size_t SlotOf(std::string_view folded) const;

  std::vector<Slot> m_slots; // a power of two, at most half full
};
