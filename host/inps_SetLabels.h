#pragma once

#include "database/KvoObjLabeler.h"
#include "host/inps_Fields.h"
#include <optional>

// The labels behind the members of node and element sets, as users know them.
class inps_SetLabels {
public:
  explicit inps_SetLabels(const KvoObjDocument& document) : m_document(document) {}

  // "1 to 8, 12, PLATE-1.3": runs of labels in the order of the members, labels of instances behind
  // the instance's name. Empty for a record that is no set.
  cow_List<cow_String> Runs(const eds_ModelReader& model, eds_ObjectID set);

private:
  struct Member {
    int occurrence = -1;
    int64_t label = 0;
  };

  struct Space {
    KvoObjLabeler labeler;
    cow_List<cow_String> scopes; // what stands before the labels of an occurrence
  };

  const Space& SpaceOf(eds_RecordKind setKind);
  static Member MemberOf(const Space& space, int part, int64_t ordinal);

  KvoObjDocument m_document;
  std::optional<Space> m_nodes;
  std::optional<Space> m_elements;
};
