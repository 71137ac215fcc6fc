#pragma once

#include "base/wip_Message.h"
#include <utility>

// Messages on their way to the host. A deck with millions of faults must not cost its many times in
// memory, and nobody reads more than the first ones: what is beyond the limit is only counted.
class inp_MessageList {
public:
  static constexpr std::size_t limit = 100000;

  void Add(wip_Message message) {
    if (m_messages.size() < limit)
      m_messages.push_back(std::move(message));
    else
      ++m_more;
  }

  bool IsEmpty() const { return m_messages.empty(); }
  const cow_List<wip_Message>& Messages() const { return m_messages; }

  // Those added since the last call, and one that tells how many there are beyond the limit.
  cow_List<wip_Message> TakeNew() {
    cow_List<wip_Message> fresh(m_messages.begin() + static_cast<std::ptrdiff_t>(m_taken),
                                m_messages.end());
    m_taken = m_messages.size();
    if (m_more > 0) fresh.push_back(More(std::exchange(m_more, 0)));
    return fresh;
  }

  static wip_Message More(long long count) {
    wip_Message message("and " + std::to_string(count) +
                        " more like these, which are only counted");
    message.count = count;
    return message;
  }

private:
  cow_List<wip_Message> m_messages;
  std::size_t m_taken = 0;
  long long m_more = 0;
};
