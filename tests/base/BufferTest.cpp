#include "base/utl_Buffer.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

void expectCounting(const utl_Buffer<std::uint64_t>& buffer, std::size_t size) {
  ASSERT_EQ(buffer.Size(), size);
  for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(buffer[i], i);
}

} // namespace

// From a few bytes over the size at which blocks become mappings, and back.
TEST(Buffer, KeepsItsContentWhateverItsSize) {
  utl_Buffer<std::uint64_t> buffer;
  std::size_t filled = 0;
  for (std::size_t size : {1u, 100u, 524287u, 524288u, 524289u, 3000000u, 3000001u, 9000000u}) {
    buffer.Resize(size);
    for (; filled < size; ++filled) buffer[filled] = filled;
    expectCounting(buffer, size);
  }
  for (std::size_t size : {8000000u, 600000u, 524288u, 1000u, 1u}) {
    buffer.Resize(size);
    buffer.ShrinkToFit();
    EXPECT_EQ(buffer.Capacity(), size);
    expectCounting(buffer, size);
  }
  buffer.Clear();
  buffer.ShrinkToFit();
  EXPECT_EQ(buffer.Data(), nullptr);
}

TEST(Buffer, BigBlocksBeginAtHugePagesEvenAfterTheyMoved) {
  utl_Buffer<double> first, second; // grown in turns, so that neither finds room behind it
  for (std::size_t size = 1 << 20; size <= 8 << 20; size += 1 << 20) {
    for (utl_Buffer<double>* buffer : {&first, &second}) {
      buffer->Resize(size);
      (*buffer)[size - 1] = 1;
#ifdef __linux__
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer->Data()) % (2 << 20), 0u);
#endif
    }
  }
}

TEST(Buffer, AppendsAndCopies) {
  utl_Buffer<std::uint64_t> buffer;
  for (std::uint64_t i = 0; i < 1000; ++i) buffer.Append(i);
  const std::vector<std::uint64_t> more{1000, 1001, 1002};
  buffer.Append(std::span(more));
  buffer.Append(std::span<const std::uint64_t>());
  *buffer.AppendSpace(1) = 1003;
  utl_Buffer<std::uint64_t> copy = buffer.Copy();
  copy[0] = 7;
  expectCounting(buffer, 1004);
  utl_Buffer<std::uint64_t> moved = std::move(buffer);
  expectCounting(moved, 1004);
  EXPECT_EQ(buffer.Size(), 0u);
  moved = std::move(copy);
  EXPECT_EQ(moved[0], 7u);
  const std::span<const std::uint64_t> view = moved;
  EXPECT_EQ(view.back(), 1003u);
}

TEST(Buffer, WhatCannotBeHadThrowsAndLeavesTheRest) {
  utl_Buffer<std::uint64_t> buffer(3);
  for (std::size_t i = 0; i < 3; ++i) buffer[i] = i;
  EXPECT_THROW(buffer.Resize(SIZE_MAX / 8), std::bad_alloc);
  EXPECT_THROW(buffer.Resize(SIZE_MAX), std::bad_alloc);
  EXPECT_THROW(buffer.AppendSpace(SIZE_MAX), std::bad_alloc);
  expectCounting(buffer, 3);
  buffer.Resize(1 << 20);
  EXPECT_THROW(buffer.Resize(std::size_t{1} << 58), std::bad_alloc);
  EXPECT_EQ(buffer[2], 2u);
}
