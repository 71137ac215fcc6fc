#pragma once

#include "database/eds_MemberSet.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/writer/inpS_DeckScope.h"
#include <string_view>

class utl_Stream;

// The node or element sets of one owner, in the order in which they were made. A set of the
// assembly that reaches into instances is written as one keyword for each instance.
class inpS_SetPrinter {
public:
  inpS_SetPrinter(const inpS_DeckLabels& labels, const inpS_KeptParts& parts, utl_Stream& out)
      : m_labels(labels), m_parts(parts), m_out(out) {}

  void PrintNsets(const inpS_DeckScope& scope) { Print(scope, true); }
  void PrintElsets(const inpS_DeckScope& scope) { Print(scope, false); }

private:
  void Print(const inpS_DeckScope& scope, bool nodes);
  void PrintSet(const inpS_DeckScope& scope, const KvoSimPosition& set, bool nodes);
  void PrintMembers(const eds_MemberSet& members, long long first, long long count, bool nodes,
                    int occurrence, long long flatFirst, bool sorted, std::string_view prefix = {});

  const inpS_DeckLabels& m_labels;
  const inpS_KeptParts& m_parts;
  utl_Stream& m_out;
};
