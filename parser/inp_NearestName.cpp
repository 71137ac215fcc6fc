#include "parser/inp_NearestName.h"

#include "parser/inp_NameIndex.h"
#include <algorithm>
#include <array>
#include <numeric>

inp_NearestName::inp_NearestName(std::string_view misspelt) : m_sought(Fold(misspelt)) {
  if (m_sought.length == 0) return;
  m_bound = std::clamp<std::size_t>(m_sought.length / 3, 1, 3) + 1;
}

inp_NearestName::Letters inp_NearestName::Fold(std::string_view text) {
  const inp_FoldedName folded(text);
  Letters letters;
  letters.length = folded.Text().copy(letters.text, limit);
  return letters;
}

void inp_NearestName::Offer(std::string_view name) {
  if (m_bound == 0) return;
  const Letters letters = Fold(name);
  const std::size_t distance = Distance(m_sought, letters, m_bound);
  if (distance >= m_bound) return;
  m_bound = distance;
  m_best = name;
}

// Optimal string alignment over three rolling rows; gives up where no row can stay below the bound.
std::size_t inp_NearestName::Distance(const Letters& a, const Letters& b, std::size_t bound) {
  const std::size_t gap = a.length > b.length ? a.length - b.length : b.length - a.length;
  if (gap >= bound) return bound;
  std::array<std::size_t, limit + 1> before{}, last{}, now{};
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.length; ++i) {
    now[0] = i;
    std::size_t least = i;
    for (std::size_t j = 1; j <= b.length; ++j) {
      const bool same = a.text[i - 1] == b.text[j - 1];
      now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
      const bool swapped =
          i > 1 && j > 1 && a.text[i - 1] == b.text[j - 2] && a.text[i - 2] == b.text[j - 1];
      if (swapped) now[j] = std::min(now[j], before[j - 2] + 1);
      least = std::min(least, now[j]);
    }
    // A swap reaches back two rows, so one row beyond the bound proves nothing for the next.
    if (least > bound) return bound;
    before = last;
    last = now;
  }
  return last[b.length];
}
