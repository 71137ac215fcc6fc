#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"
#include "database/KvoSimTransfer.h"
#include "database/eds_Array.h"
#include <gtest/gtest.h>
#include <memory>
#include <numeric>

namespace {

constexpr int64_t perChunk = (1 << 20) / 24; // items of three doubles

std::vector<double> counting(int64_t items) {
  std::vector<double> values(static_cast<size_t>(items * 3));
  std::iota(values.begin(), values.end(), 0.5);
  return values;
}

std::vector<double> readAll(const eds_ArrayID& array) {
  eds_ArrayReader reader(array);
  std::vector<double> values(static_cast<size_t>(reader.Count() * reader.Width()));
  reader.ReadPiece(0, std::span(values));
  return values;
}

struct Sizes {
  int64_t items;
  int64_t block; // appended at a time
};

} // namespace

class ArraySizes : public testing::TestWithParam<Sizes> {};

TEST_P(ArraySizes, ComeBackByAnyPiece) {
  const auto [items, block] = GetParam();
  const KvoObjDocument document = KvoObjDocument::InMemory();
  const std::vector<double> values = counting(items);
  KvoSimTransaction transaction(document.ContextID());
  eds_ArrayWriter writer(document.Focus(), eds_ValueType::Double, 3);
  for (int64_t at = 0; at < items; at += block) {
    const auto count = static_cast<size_t>(std::min(block, items - at) * 3);
    writer.Append(std::span(values).subspan(static_cast<size_t>(at * 3), count));
  }
  const eds_ArrayID array = writer.Finish();
  transaction.Commit();
  EXPECT_EQ(readAll(array), values);
  eds_ArrayReader reader(array);
  for (int64_t piece : {int64_t{1}, perChunk - 1, perChunk, perChunk + 1}) {
    for (int64_t at : {int64_t{0}, perChunk - 1, perChunk, items - piece}) {
      if (at < 0 || at + piece > items) continue;
      std::vector<double> read(static_cast<size_t>(piece * 3));
      reader.ReadPiece(at, std::span(read));
      EXPECT_EQ(read.front(), 0.5 + static_cast<double>(at * 3));
      EXPECT_EQ(read.back(), 0.5 + static_cast<double>((at + piece) * 3 - 1));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Boundaries, ArraySizes,
                         testing::Values(Sizes{0, 1}, Sizes{1, 1}, Sizes{perChunk - 1, 1000},
                                         Sizes{perChunk, perChunk}, Sizes{perChunk + 1, 7001},
                                         Sizes{3 * perChunk, 3 * perChunk},
                                         Sizes{3 * perChunk + 5, 2 * perChunk + 1}));

TEST(Array, RedefinedItemsAreReplacedWhereverTheyAre) {
  const KvoObjDocument document = KvoObjDocument::InMemory();
  std::vector<double> values = counting(2 * perChunk + 10);
  KvoSimTransaction transaction(document.ContextID());
  eds_ArrayWriter writer(document.Focus(), eds_ValueType::Double, 3);
  writer.Append(std::span<const double>(values));
  const std::vector<double> replaced{-1, -2, -3, -4, -5, -6};
  for (int64_t item : {int64_t{0}, perChunk - 1, 2 * perChunk - 1, 2 * perChunk + 8, int64_t{3}}) {
    writer.Overwrite(item, std::span<const double>(replaced));
    std::copy(replaced.begin(), replaced.end(), values.begin() + item * 3);
  }
  const eds_ArrayID array = writer.Finish();
  transaction.Commit();
  EXPECT_EQ(readAll(array), values);

  KvoSimTransaction second(document.ContextID());
  eds_updateArray(array, 2 * perChunk + 9, std::as_bytes(std::span(replaced))); // and one appended
  second.Commit();
  values.resize(values.size() - 3);
  values.insert(values.end(), replaced.begin(), replaced.end());
  EXPECT_EQ(readAll(array), values);
}

namespace {

struct Layout {
  KvoSerialization order;
  int64_t padding;
  int64_t firstValue;
  int64_t values;
};

} // namespace

class TransferLayouts : public testing::TestWithParam<Layout> {};

// Writes a window of components through a layout, reads it back through the same and as it lies.
TEST_P(TransferLayouts, WriteAndReadTheSameValues) {
  const Layout layout = GetParam();
  KvoObjDocument document = KvoObjDocument::InMemory();
  KvoSimTransaction transaction(document.ContextID());
  KvoSimCollection nodes = document.CreateTypedCollection(eds_CollectionKind::Node).AsCollection();
  constexpr int64_t items = 5;
  nodes.ExtendSpace(items);
  KvoSimDistribution distribution = document.CreateTypedDistribution(
      eds_DataType::Coordinates, {nodes, document.GetComponentCollection()},
      {eds_ValueType::Double, 3});
  KvoSimTransfer make(distribution);
  make.SetMakeNewDrawer(nodes.CreateCSetStrided(0, items).ID());
  make.SetInitializationValue(9);
  const int64_t drawer = make.ExecMake();

  KvoSimTransfer transfer(distribution);
  transfer.SetDrawer(drawer);
  transfer.SetDim(1, layout.firstValue, layout.values);
  transfer.SetSerialization(layout.order);
  transfer.SetBufferPadding(layout.padding);
  const auto size = static_cast<size_t>(transfer.RequiredBufferSize()) / sizeof(double);
  const bool byItem = layout.order == KvoSerialization::ByItem;
  ASSERT_EQ(static_cast<int64_t>(size), byItem ? items * (layout.values + layout.padding)
                                               : layout.values * (items + layout.padding));
  std::vector<double> buffer(size);
  std::iota(buffer.begin(), buffer.end(), 100.0);
  transfer.SetBuffer(std::span(buffer));
  transfer.ExecWrite();
  std::vector<double> back(size, -1.0);
  transfer.SetBuffer(std::span(back));
  transfer.ExecRead();
  const std::vector<double> lying = readAll(distribution.DrawerArray(drawer));
  for (int64_t item = 0; item < items; ++item) {
    for (int64_t value = 0; value < 3; ++value) {
      const int64_t inWindow = value - layout.firstValue;
      const int64_t place = byItem ? item * (layout.values + layout.padding) + inWindow
                                   : inWindow * (items + layout.padding) + item;
      const bool written = inWindow >= 0 && inWindow < layout.values;
      EXPECT_EQ(lying[static_cast<size_t>(item * 3 + value)],
                written ? 100.0 + static_cast<double>(place) : 9.0);
      if (written) {
        EXPECT_EQ(back[static_cast<size_t>(place)], 100.0 + static_cast<double>(place));
      }
    }
  }
  transaction.Commit();
}

INSTANTIATE_TEST_SUITE_P(All, TransferLayouts,
                         testing::Values(Layout{KvoSerialization::ByItem, 0, 0, 3},
                                         Layout{KvoSerialization::ByItem, 2, 0, 3},
                                         Layout{KvoSerialization::ByItem, 0, 1, 2},
                                         Layout{KvoSerialization::ByComponent, 0, 0, 3},
                                         Layout{KvoSerialization::ByComponent, 1, 2, 1}));

TEST(Transfer, ChunkedDrawerGrowsByThePiece) {
  KvoObjDocument document = KvoObjDocument::InMemory();
  KvoSimTransaction transaction(document.ContextID());
  KvoSimCollection elements =
      document.CreateTypedCollection(eds_CollectionKind::Element).AsCollection();
  elements.ExtendSpace(7);
  KvoSimDistribution distribution =
      document.CreateDistribution({elements}, {eds_ValueType::Int32, 1});
  KvoSimTransfer transfer(distribution);
  transfer.SetMakeNewDrawerChunked(elements.BiggestCSetID(), 4);
  const int64_t drawer = transfer.ExecMake();
  std::vector<int32_t> first{1, 2, 3, 4}, second{5, 6, 7};
  transfer.SetBuffer(std::span(first));
  transfer.ExecWrite();
  transfer.SetBuffer(std::span(second));
  transfer.ExecWrite();
  transaction.Commit();
  std::vector<int32_t> read(7);
  eds_ArrayReader(distribution.DrawerArray(drawer)).ReadPiece(0, std::span(read));
  EXPECT_EQ(read, (std::vector<int32_t>{1, 2, 3, 4, 5, 6, 7}));
  KvoSimCSet some = elements.CreateCSetStrided(6, 1);
  EXPECT_EQ(distribution.QueryDrawers(some), std::vector<int64_t>{drawer});
}

// The engine has one memory for all models of a process, of which pages go from one to the other.
TEST(Arrays, OfSeveralModelsAtOnceStayApart) {
  struct Model {
    KvoObjDocument document = KvoObjDocument::InMemory();
    eds_ArrayID array;
    std::vector<double> values;
  };
  std::vector<std::unique_ptr<Model>> models(4);
  for (size_t round = 0; round < 12; ++round) {
    std::unique_ptr<Model>& model = models[round * 3 % models.size()];
    model = std::make_unique<Model>(); // the one that was there goes
    model->values = counting(static_cast<int64_t>(perChunk * (1 + round * 5 % 7)));
    for (double& value : model->values) value += static_cast<double>(round);
    KvoSimTransaction transaction(model->document.ContextID());
    eds_ArrayWriter writer(model->document.Focus(), eds_ValueType::Double, 3);
    writer.Append(std::span<const double>(model->values));
    model->array = writer.Finish();
    transaction.Commit();
    for (const auto& one : models) {
      if (one) {
        EXPECT_EQ(readAll(one->array), one->values) << round;
      }
    }
  }
}
