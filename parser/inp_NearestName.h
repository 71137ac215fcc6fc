#pragma once

#include <cstddef>
#include <string_view>

// Seeks, among names offered one by one, the one closest to a misspelt name: the fewest letters
// dropped, added, changed or swapped with their neighbour. Case and blanks do not count. A name is
// close when at most a third of the letters differ, and never more than three.
class inp_NearestName {
public:
  explicit inp_NearestName(std::string_view misspelt);

  void Offer(std::string_view name);
  std::string_view Best() const { return m_best; } // empty: none is close

private:
  static constexpr std::size_t limit = 64;
  struct Letters {
    char text[limit];
    std::size_t length = 0;
  };
  static Letters Fold(std::string_view text);
  static std::size_t Distance(const Letters& a, const Letters& b, std::size_t bound);

  Letters m_sought;
  std::size_t m_bound = 0; // only what is closer than this is taken
  std::string_view m_best;
};
