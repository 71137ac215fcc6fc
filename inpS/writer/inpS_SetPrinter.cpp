#include "inpS/writer/inpS_SetPrinter.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Stream.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/eds_DamagedModel.h"
#include "database/eds_LabelMap.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include "inpS/writer/inpS_SetNames.h"
#include <algorithm>

namespace {

constexpr long long kLinesOfPiece = 4096; // of sixteen labels each

// A file from anybody: members are looked at here for the first time.
[[noreturn]] void noSuchMember(const KvoObjMesh& mesh, long long member) {
  eds_tellDamaged(mesh.Position(),
                  "a set has member " + std::to_string(member) + ", which has no label");
}

} // namespace

void inpS_SetPrinter::Print(const inpS_DeckScope& scope, bool nodes) {
  cow_List<KvoSimPosition> sets;
  for (const bool internal : {false, true}) {
    const auto some = nodes ? m_labels.mesh.NodeSets(scope.owner, internal)
                            : m_labels.mesh.ElementSets(scope.owner, internal);
    sets.insert(sets.end(), some.begin(), some.end());
  }
  std::sort(sets.begin(), sets.end(),
            [](const KvoSimPosition& a, const KvoSimPosition& b) { return a.ID() < b.ID(); });
  for (const KvoSimPosition& set : sets) PrintSet(scope, set, nodes);
}

void inpS_SetPrinter::PrintSet(const inpS_DeckScope& scope, const KvoSimPosition& set, bool nodes) {
  const KvoSimDataRecord record = set.DataRecord();
  const KvoSimCSet membership =
      record.GetSet(nodes ? eds_NodeSet_Membership : eds_ElementSet_Membership);
  const eds_MemberSet members = membership.IsNull() ? eds_MemberSet() : membership.Set();
  cow_String start = nodes ? "*NSET, NSET=" : "*ELSET, ELSET=";
  start += inpS_quoted(SetName(set));
  const inpS_KeptPart& part = m_parts.FirstOf(set);
  if (record.GetBool(nodes ? eds_NodeSet_Internal : eds_ElementSet_Internal) &&
      !inpS_holdsParameter(part.parameters, "INTERNAL"))
    start += ", INTERNAL";
  const bool unsorted = record.GetBool(nodes ? eds_NodeSet_Unsorted : eds_ElementSet_Unsorted);
  if (unsorted && !inpS_holdsParameter(part.parameters, "UNSORTED")) start += ", UNSORTED";

  const KvoObjLabeler& labeler = nodes ? m_labels.nodes : m_labels.elements;
  const int own = nodes ? scope.nodes : scope.elements;
  if (scope.isPart || members.IsEmpty()) {
    m_out << start << part.parameters << '\n';
    PrintMembers(members, 0, members.Size(), nodes, own, 0, !unsorted);
    m_out << part.lines;
    return;
  }
  bool isOfOthers = false; // the keyword that is open
  for (long long begin = 0; begin < members.Size();) {
    int64_t local = 0;
    const int occurrence = labeler.OccurrenceOfFlat(members[begin], local);
    if (occurrence < 0) noSuchMember(m_labels.mesh, members[begin]);
    const long long low = members[begin] - local, high = low + labeler.Size(occurrence);
    long long end = begin + 1;
    if (members.IsStrided() && members[members.Size() - 1] >= low &&
        members[members.Size() - 1] < high)
      end = members.Size();
    while (end < members.Size() && members[end] >= low && members[end] < high) ++end;
    m_out << start;
    if (begin == 0) m_out << part.parameters;
    // Within an instance the language has no such parameter, and names others by their labels.
    const bool foreign = occurrence != own;
    const bool within = scope.owner.IsA(eds_RecordKind::Instance);
    isOfOthers = foreign && !within;
    if (isOfOthers) m_out << ", INSTANCE=" << m_labels.InstanceOf(nodes, occurrence);
    m_out << '\n';
    const cow_String prefix =
        foreign && within ? m_labels.InstanceOf(nodes, occurrence) + "." : cow_String();
    PrintMembers(members, begin, end - begin, nodes, occurrence, low, !unsorted, prefix);
    begin = end;
  }
  if (isOfOthers && !part.lines.empty()) m_out << start << '\n';
  m_out << part.lines;
}

void inpS_SetPrinter::PrintMembers(const eds_MemberSet& members, long long first, long long count,
                                   bool nodes, int occurrence, long long flatFirst, bool sorted,
                                   std::string_view prefix) {
  if (count == 0) return;
  if (occurrence < 0) noSuchMember(m_labels.mesh, members[first]);
  const eds_LabelMap& labels =
      nodes ? m_labels.nodes.Labels(occurrence) : m_labels.elements.Labels(occurrence);
  const bool rising = labels.IsStrided() && labels.Stride() > 0;
  const long long pieceSize =
      sorted && !rising ? count : std::min(count, 16 * utl_blockSize(kLinesOfPiece));
  cow_List<int> piece(static_cast<std::size_t>(pieceSize));
  for (long long done = 0; done < count; done += pieceSize) {
    const long long size = std::min(pieceSize, count - done);
    for (long long n = 0; n < size; ++n) {
      const long long member = members[first + done + n];
      if (member < flatFirst || member - flatFirst >= labels.Size())
        noSuchMember(m_labels.mesh, member);
      piece[static_cast<std::size_t>(n)] = labels.Label(member - flatFirst);
    }
    // Ordinals ascend in a sorted set; its labels need not, where nodes stand in another order.
    if (sorted && !rising) std::sort(piece.begin(), piece.end());
    if (prefix.empty()) {
      inpS_printSet(m_out, size, piece.data());
      continue;
    }
    for (long long n = 0; n < size; ++n)
      m_out << prefix << piece[static_cast<std::size_t>(n)] << '\n';
  }
}
