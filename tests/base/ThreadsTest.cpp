#include "base/utl_Threads.h"

#include <atomic>
#include <gtest/gtest.h>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

class Threads : public ::testing::TestWithParam<int> {
protected:
  void SetUp() override { utl_setThreadCount(GetParam()); }
  void TearDown() override { utl_setThreadCount(0); }
};

template <class Action> std::string errorOf(Action action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

// Uneven work, so that blocks end in another order than they begin.
void dawdle(std::size_t i) {
  volatile std::size_t sink = 0;
  for (std::size_t k = 0; k < (i * 7919) % 5000; ++k) sink = sink + k;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Counts, Threads, ::testing::Values(1, 2, 3, 8));

TEST_P(Threads, EveryIndexOnce) {
  for (std::size_t n : {0, 1, 2, 1000}) {
    std::vector<std::atomic<int>> calls(n);
    utl_parallelFor(n, [&](std::size_t i) { ++calls[i]; });
    for (const auto& count : calls) ASSERT_EQ(count.load(), 1);
  }
}

TEST_P(Threads, TheExceptionOfTheLowestIndexReachesTheCaller) {
  for (int round = 0; round < 50; ++round) {
    std::vector<std::atomic<int>> calls(200);
    EXPECT_EQ(errorOf([&] {
                utl_parallelFor(200, [&](std::size_t i) {
                  dawdle(i);
                  ++calls[i];
                  if (i % 10 == 7) throw std::runtime_error(std::to_string(i));
                });
              }),
              "7");
    for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(calls[i].load(), 1);
  }
}

TEST_P(Threads, BlocksArePublishedInOrderAndSlotsAreTheirOwn) {
  for (std::size_t n : {0, 1, 3, 500}) {
    std::vector<std::size_t> slots(utl_slotCount()), published;
    utl_orderedBlocks(
        n,
        [&](std::size_t i, std::size_t slot) {
          slots.at(slot) = i;
          dawdle(i);
        },
        [&](std::size_t i, std::size_t slot) {
          EXPECT_EQ(slots.at(slot), i);
          published.push_back(i);
        });
    ASSERT_EQ(published.size(), n);
    for (std::size_t i = 0; i < n; ++i) ASSERT_EQ(published[i], i);
  }
}

TEST_P(Threads, AFailedBlockEndsThePublishingBeforeIt) {
  for (bool whilePublishing : {false, true}) {
    for (int round = 0; round < 50; ++round) {
      const auto failAt = [](std::size_t i) {
        if (i == 40 || i == 43) throw std::runtime_error(std::to_string(i));
      };
      std::size_t published = 0;
      EXPECT_EQ(errorOf([&] {
                  utl_orderedBlocks(
                      100,
                      [&](std::size_t i, std::size_t) {
                        dawdle(i + 3);
                        if (!whilePublishing) failAt(i);
                      },
                      [&](std::size_t i, std::size_t) {
                        if (whilePublishing) failAt(i);
                        ++published;
                      });
                }),
                "40");
      EXPECT_EQ(published, 40u);
    }
  }
}

TEST_P(Threads, WorkMayCallForWorkAndSeveralCallersMayMeet) {
  std::atomic<int> calls{0};
  const auto nested = [&] {
    utl_parallelFor(20, [&](std::size_t) { utl_parallelFor(5, [&](std::size_t) { ++calls; }); });
  };
  std::thread other([&] {
    for (int i = 0; i < 100; ++i) nested();
  });
  for (int i = 0; i < 100; ++i) nested();
  other.join();
  EXPECT_EQ(calls.load(), 2 * 100 * 20 * 5);
}

TEST(ThreadCount, OneThreadMakesNone) {
  utl_releaseThreads();
  utl_setThreadCount(1);
  std::set<std::thread::id> ids;
  utl_parallelFor(100, [&](std::size_t) { ids.insert(std::this_thread::get_id()); });
  EXPECT_EQ(ids, std::set{std::this_thread::get_id()});
  utl_setThreadCount(0);
  EXPECT_GE(utl_threadCount(), 1);
}

TEST(ThreadCount, ReleasedThreadsAreMadeAgain) {
  utl_setThreadCount(3);
  for (int round = 0; round < 20; ++round) {
    std::atomic<int> calls{0};
    utl_parallelFor(50, [&](std::size_t) { ++calls; });
    EXPECT_EQ(calls.load(), 50);
    utl_releaseThreads();
  }
  utl_setThreadCount(0);
}
