#pragma once

#include "database/KvoObjDocument.h"
#include "database/eds_LabelMap.h"
#include "database/eds_MemberSet.h"
#include <memory>
#include <span>

// The map between the deck's labels and the store's ordinals, for nodes (kind 0) or elements (kind
// 1). Each occurrence (a part, an instance, the assembly, the model of a flat deck) has a label
// space of its own, with ordinals from 0 in order of first definition. An instance of an unchanged
// part shares its part's space. In the flat mesh the ordinals of a space follow its flat first
// ordinal.
class KvoObjLabeler {
public:
  KvoObjLabeler(const KvoObjDocument& document, int kind);
  KvoObjLabeler(KvoObjLabeler&&) noexcept;
  KvoObjLabeler& operator=(KvoObjLabeler&&) noexcept;
  ~KvoObjLabeler();

  void Read();                               // what the database holds
  void Save(KvoSimTransaction& transaction); // what is new since Read or the last Save
  int Kind() const;

  // Spaces are numbered from 0 in the order they were opened; -1 = none.
  int FindOccurrence(const KvoSimPosition& owner) const;
  int OpenOccurrence(const KvoSimPosition& owner); // finds or makes
  // A space that reads another one's labels until labels of its own are added to it.
  int OpenSharedOccurrence(const KvoSimPosition& owner, int source);
  int OccurrenceCount() const;
  std::vector<KvoSimPosition> Occurrences() const; // the owners
  bool IsInstanceValid(int occurrence) const {
    return occurrence >= 0 && occurrence < OccurrenceCount();
  }
  int64_t Size(int occurrence) const;
  const eds_LabelMap& Labels(int occurrence) const;
  void Reserve(int occurrence, int64_t labels);

  // Ordinals within the occurrence; new labels are appended. Returns how many were new.
  int64_t AddInstanceLabels(int occurrence, std::span<const int32_t> labels,
                            std::span<int32_t> ordinals);

  bool HasInstanceLabel(int occurrence, int32_t label) const;
  int32_t ConvertInstanceLabel(int occurrence, int32_t label) const; // -1 when unknown
  // Bulk; -1 for unknown labels, whose number is returned.
  int64_t ConvertInstanceLabels(int occurrence, std::span<const int32_t> labels,
                                std::span<int32_t> ordinals) const;
  int32_t GetInstanceLabel(int occurrence, int64_t ordinal) const;
  // All labels with their ordinals, by ascending label.
  void GetInstanceLabelsAndOrdinals(int occurrence, std::vector<int32_t>& labels,
                                    std::vector<int32_t>& ordinals) const;
  // The labels of a set of the occurrence's ordinals, in the set's order.
  std::vector<int32_t> GetInstanceSetLabels(int occurrence, const eds_MemberSet& ordinals) const;

  // Where the occurrence lies in the flat mesh; -1 = nowhere (a part).
  int64_t FlatFirst(int occurrence) const;
  void SetFlatFirst(int occurrence, int64_t first);
  // The occurrence that holds a flat ordinal, -1 when none does; `ordinal` becomes the one within
  // it.
  int OccurrenceOfFlat(int64_t flat, int64_t& ordinal) const;
  // The flat ordinals of the occurrence's members in order; the span has the occurrence's size.
  void FillFlatMeshOrdinalArray(int occurrence, std::span<int32_t> flat) const;

private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
