#include "database/KvoObjLabeler.h"
#include "database/KvoSimPosition.h"
#include "database/eds_LabelMap.h"
#include "tests/database/TemporaryFolder.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <numeric>
#include <random>

namespace {

// How labels come in decks: kinds of numbering, with redefinitions among them.
using Numbering = std::vector<int32_t> (*)(std::mt19937&);

std::vector<int32_t> inOrder(std::mt19937&) {
  std::vector<int32_t> labels(5000);
  std::iota(labels.begin(), labels.end(), 1);
  return labels;
}
std::vector<int32_t> withStep(std::mt19937&) {
  std::vector<int32_t> labels;
  for (int32_t i = 0; i < 3000; ++i) labels.push_back(-500 + 10 * i);
  return labels;
}
std::vector<int32_t> falling(std::mt19937&) {
  std::vector<int32_t> labels;
  for (int32_t i = 0; i < 3000; ++i) labels.push_back(999999999 - 7 * i);
  return labels;
}
std::vector<int32_t> shuffled(std::mt19937& random) {
  std::vector<int32_t> labels = inOrder(random);
  std::shuffle(labels.begin(), labels.end(), random);
  return labels;
}
std::vector<int32_t> sparse(std::mt19937& random) {
  std::vector<int32_t> labels(20000);
  for (int32_t& label : labels) label = static_cast<int32_t>(random() % 1999999999) - 999999999;
  return labels;
}
std::vector<int32_t> withGapsBothWays(std::mt19937& random) {
  std::vector<int32_t> labels;
  for (int32_t i = 0; i < 4000; ++i)
    labels.push_back((i % 2 == 0 ? 1 : -1) * (i * 3 + static_cast<int32_t>(random() % 3)));
  return labels;
}
std::vector<int32_t> orderedThenFarAway(std::mt19937& random) {
  std::vector<int32_t> labels = inOrder(random);
  for (int32_t i = 0; i < 3000; ++i) labels.push_back(900000000 + i * i);
  labels.push_back(-2147483647);
  labels.push_back(2147483647);
  return labels;
}
std::vector<int32_t> redefined(std::mt19937& random) {
  std::vector<int32_t> labels = shuffled(random);
  for (int32_t i = 0; i < 2000; ++i) labels.push_back(static_cast<int32_t>(random() % 6000));
  return labels;
}

void compare(const std::vector<int32_t>& labels, size_t block, bool reserve) {
  eds_LabelMap map;
  std::map<int32_t, int32_t> expected;
  if (reserve) map.Reserve(static_cast<int64_t>(labels.size()));
  std::vector<int32_t> ordinals;
  for (size_t at = 0; at < labels.size(); at += block) {
    const auto piece = std::span(labels).subspan(at, std::min(block, labels.size() - at));
    ordinals.resize(piece.size());
    const int64_t before = map.Size();
    const int64_t added = map.Add(piece, ordinals);
    for (size_t i = 0; i < piece.size(); ++i) {
      const auto next = static_cast<int32_t>(expected.size());
      ASSERT_EQ(ordinals[i], expected.emplace(piece[i], next).first->second) << piece[i];
    }
    ASSERT_EQ(before + added, static_cast<int64_t>(expected.size()));
  }
  std::vector<int32_t> asked;
  for (const auto& [label, ordinal] : expected) {
    ASSERT_EQ(map.Label(ordinal), label);
    asked.insert(asked.end(), {label, label < 2147483647 ? label + 1 : 0});
  }
  ordinals.resize(asked.size());
  int64_t missing = 0;
  map.Ordinals(asked, ordinals);
  for (size_t i = 0; i < asked.size(); ++i) {
    auto found = expected.find(asked[i]);
    ASSERT_EQ(ordinals[i], found != expected.end() ? found->second : -1) << asked[i];
    ASSERT_EQ(map.Ordinal(asked[i]), ordinals[i]);
    missing += ordinals[i] < 0;
  }
  ASSERT_EQ(map.Ordinals(asked, ordinals), missing);
  ASSERT_EQ(map.Copy().Ordinals(asked, ordinals), missing);
}

} // namespace

class LabelNumberings : public testing::TestWithParam<Numbering> {};

TEST_P(LabelNumberings, AgreeWithStdMap) {
  std::mt19937 random(11);
  const std::vector<int32_t> labels = GetParam()(random);
  for (size_t block : {size_t{1}, size_t{17}, size_t{1000}, labels.size()}) {
    compare(labels, block, false);
    compare(labels, block, true);
  }
}

INSTANTIATE_TEST_SUITE_P(All, LabelNumberings,
                         testing::Values(inOrder, withStep, falling, shuffled, sparse,
                                         withGapsBothWays, orderedThenFarAway, redefined));

TEST(LabelMap, RangesAreAddedAsRanges) {
  eds_LabelMap map;
  EXPECT_TRUE(map.AddStrided(1, 1'000'000'000, 1));
  EXPECT_TRUE(map.IsStrided());
  EXPECT_EQ(map.Ordinal(1'000'000'000), 999'999'999);
  EXPECT_FALSE(map.AddStrided(5, 3, 10)); // 5 is known
  EXPECT_EQ(map.Size(), 1'000'000'000);
}

// A part shared by two instances, of which one gets a node of its own; saved in two goes.
TEST(Labeler, KeepsSpacesAcrossReopening) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "labels.sim";
  {
    const KvoObjDocument document = KvoObjDocument::Create(file);
    KvoSimTransaction transaction(document.ContextID());
    const KvoSimPosition part = document.CreateDataRecord(eds_RecordKind::Part);
    const KvoSimPosition first = document.CreateDataRecord(eds_RecordKind::Instance);
    const KvoSimPosition second = document.CreateDataRecord(eds_RecordKind::Instance);
    KvoObjLabeler labeler(document, 0);
    const int ofPart = labeler.OpenOccurrence(part);
    std::vector<int32_t> ordinals(4);
    labeler.AddInstanceLabels(ofPart, std::vector<int32_t>{0, -7, 999999999, 5}, ordinals);
    const int ofFirst = labeler.OpenSharedOccurrence(first, ofPart);
    const int ofSecond = labeler.OpenSharedOccurrence(second, ofPart);
    labeler.SetFlatFirst(ofFirst, 0);
    labeler.SetFlatFirst(ofSecond, 4);
    labeler.Save(transaction);
    ordinals.resize(1);
    labeler.AddInstanceLabels(ofSecond, std::vector<int32_t>{6}, ordinals);
    EXPECT_EQ(ordinals[0], 4);
    labeler.Save(transaction);
    transaction.Commit();
  }
  const KvoObjDocument document = KvoObjDocument::Open(file, KvoAccess::ReadOnly);
  KvoObjLabeler labeler(document, 0);
  labeler.Read();
  ASSERT_EQ(labeler.OccurrenceCount(), 3);
  EXPECT_EQ(labeler.Size(0), 4);
  EXPECT_EQ(labeler.Size(1), 4);
  EXPECT_EQ(labeler.Size(2), 5);
  EXPECT_EQ(labeler.ConvertInstanceLabel(1, 999999999), 2);
  EXPECT_EQ(labeler.ConvertInstanceLabel(1, 6), -1);
  EXPECT_EQ(labeler.GetInstanceLabel(2, 4), 6);
  int64_t ordinal = -1;
  EXPECT_EQ(labeler.OccurrenceOfFlat(8, ordinal), 2);
  EXPECT_EQ(ordinal, 4);
  EXPECT_EQ(labeler.OccurrenceOfFlat(9, ordinal), -1);
  std::vector<int32_t> labels, sortedOrdinals;
  labeler.GetInstanceLabelsAndOrdinals(2, labels, sortedOrdinals);
  EXPECT_EQ(labels, (std::vector<int32_t>{-7, 0, 5, 6, 999999999}));
  EXPECT_EQ(sortedOrdinals, (std::vector<int32_t>{1, 0, 3, 4, 2}));
  EXPECT_EQ(KvoObjLabeler(document, 1).OccurrenceCount(), 0);
}

// The part gets another node after its instances were placed: they keep what they had.
TEST(Labeler, SharersOfAChangedSpaceKeepTheirLabels) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  KvoSimTransaction transaction(document.ContextID());
  KvoObjLabeler labeler(document, 0);
  for (int i = 0; i < 3; ++i) {
    const KvoSimPosition owner = document.CreateDataRecord(eds_RecordKind::Instance);
    if (i > 0) labeler.OpenSharedOccurrence(owner, 0);
    std::vector<int32_t> ordinals(3);
    if (i == 0)
      labeler.AddInstanceLabels(labeler.OpenOccurrence(owner), std::vector<int32_t>{8, 3, 5},
                                ordinals);
  }
  for (bool saved : {false, true}) {
    if (saved) labeler.Save(transaction);
    std::vector<int32_t> ordinals(1);
    labeler.AddInstanceLabels(0, std::vector<int32_t>{saved ? 7 : 6}, ordinals);
  }
  labeler.Save(transaction);
  transaction.Commit();
  KvoObjLabeler again(document, 0);
  again.Read();
  ASSERT_EQ(again.OccurrenceCount(), 3);
  EXPECT_EQ(again.Size(0), 5);
  for (int i : {1, 2}) {
    EXPECT_EQ(again.Size(i), 3);
    EXPECT_EQ(again.ConvertInstanceLabel(i, 5), 2);
    EXPECT_EQ(again.ConvertInstanceLabel(i, 6), -1);
  }
}

// A space saved as a range and then given labels that break it.
TEST(Labeler, SavedRangeCanBecomeList) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "labels.sim";
  const KvoObjDocument document = KvoObjDocument::Create(file);
  const std::vector<std::vector<int32_t>> goes{{1, 2, 3}, {10, 20}, {4, 2, 30}};
  for (const std::vector<int32_t>& labels : goes) {
    KvoSimTransaction transaction(document.ContextID());
    KvoObjLabeler labeler(document, 1);
    labeler.Read();
    std::vector<int32_t> ordinals(labels.size());
    labeler.AddInstanceLabels(labeler.OpenOccurrence(document.Focus()), labels, ordinals);
    labeler.Save(transaction);
    transaction.Commit();
  }
  KvoObjLabeler labeler(document, 1);
  labeler.Read();
  EXPECT_EQ(labeler.GetInstanceSetLabels(0, eds_MemberSet::Strided(0, 7)),
            (std::vector<int32_t>{1, 2, 3, 10, 20, 4, 30}));
}
