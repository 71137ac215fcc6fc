#pragma once

#include "base/cow_Value.h"
#include <span>
#include <vector>

// Labels of elements that stand in keywords kept as text, by occurrence of the element labeler.
// What names them names something that the deck has and the model has not, which was told once
// where the text is kept.
class inpS_TextElements {
public:
  void Add(int occurrence, std::span<const int> labels);
  void Share(int instance, int part) {
    m_parts[instance] = part;
  } // an instance has its part's, too
  bool Has(int occurrence, int label) const;
  bool IsEmpty() const { return m_labels.empty(); }
  // Which of first, first + increment, … (count of them) are among them.
  std::vector<int> Among(int occurrence, long long first, long long count,
                         long long increment) const;

private:
  template <class Look> bool AnyOf(int occurrence, Look look) const;

  cow_Map<int, std::vector<int>> m_labels; // ascending, each once
  cow_Map<int, int> m_parts;
};
