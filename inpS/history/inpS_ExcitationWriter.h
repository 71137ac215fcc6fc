#pragma once

#include "database/KvoObjDocument.h"
#include "database/KvoObjLabeler.h"
#include "inpS/history/inpS_InForce.h"

// Stores what is in force as excitations and relays.
class inpS_ExcitationWriter {
public:
  inpS_ExcitationWriter(const KvoObjDocument& document, inpS_InForce& inForce);
  void Write();

private:
  // What an excitation is about among those of its record.
  struct GroupKey {
    int field = 0; // its first degree
    uint64_t degrees = 1;
    int restraint = -1;
    int label = -1;
    int transform = -1;
    auto operator<=>(const GroupKey&) const = default;
  };
  struct Group {
    KvoSimPosition excitation;
    long long rows = 0;
    // Rows that are in force together and share a relay.
    long long runFirst = -1;
    long long runRows = 0;
    inpS_ConditionRow first; // of the run
  };
  // The groups of the rows of one look.
  using Groups = cow_List<std::pair<const GroupKey*, Group*>>;
  // The record whose rows are being stored.
  struct Current {
    std::size_t place;
    const inpS_InForce::Source& source;
    inpS_ConditionRows& rows;
    inpS_ConditionTargets targets;
    bool isSmall;   // each row has a relay
    long long sets; // rows of sets so far
    cow_Map<GroupKey, Group> groups;
    cow_Map<std::pair<int, int>, Groups> looks; // by transform and look
    cow_List<Groups*> plain;                    // without a transform, by look
  };
  struct Transform {
    KvoSimPosition record;
    eds_MemberSet nodes;
  };

  long long NumberOfOthers() const;
  void ReadTransforms();
  // Whom of a row a transform is about: all, or some members of its set. -1: none is.
  struct Part {
    int transform = -1;
    std::optional<eds_MemberSet> members{};
  };
  cow_List<Part> PartsOf(const inpS_ConditionRow& row, Current& current) const;
  void WriteSource(std::size_t place);
  bool AreRowsAlike(const Current& current);
  void WriteLooks(Current& current);
  void WriteRow(Current& current, long long n, const inpS_ConditionRow& row,
                const cow_List<inpS_InForce::Piece>* pieces);
  void WriteGroup(Current& current, long long n, const inpS_ConditionRow& row,
                  const cow_List<inpS_InForce::Piece>* pieces, const Part& part,
                  const GroupKey& key, Group& group, bool isAlone);
  void WritePiece(Current& current, long long n, const inpS_ConditionRow& row,
                  const inpS_InForce::Piece& piece, const Part& part, const GroupKey& key,
                  const Group& group);
  const Groups& GroupsOf(Current& current, const inpS_ConditionRow& row, int transform);
  Groups MakeGroups(Current& current, const inpS_ConditionRow& row, int transform);
  std::pair<const GroupKey*, Group*> GroupOf(Current& current, const GroupKey& key,
                                             cow_String field);
  static void TellOrigin(KvoSimDataRecord record, const inpS_ExcitationKind& kind,
                         const KvoSimDataRecord& given);
  void EndRun(Current& current, Group& group);
  KvoSimDataRecord AddRelay(const Group& group, int firstStep, int lastStep, long long row);
  void TellRow(KvoSimDataRecord relay, Current& current, const inpS_ConditionRow& row);
  static cow_String FieldOf(const Current& current, const inpS_ConditionRow& row);

  const KvoObjDocument& m_document;
  KvoSimPosition m_model;
  inpS_ConditionRows m_rows; // of the current record
  inpS_InForce& m_inForce;
  inpS_InForce::Pieces m_pieces;
  long long m_number; // of the next excitation; others stand already
  cow_List<Transform> m_transforms;
  std::optional<KvoObjLabeler> m_nodes, m_elements; // read when a label is first asked for
  cow_List<KvoSimPosition> m_nodeOwners, m_elementOwners;
};
