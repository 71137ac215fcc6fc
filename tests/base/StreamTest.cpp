#include "base/utl_Assert.h"
#include "base/utl_Stream.h"
#include "base/utl_Threads.h"
#include "tests/base/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

TEST(Stream, EveryKindOfValue) {
  cow_String text;
  utl_Stream stream(&text);
  stream << "*NODE, NSET=" << cow_String("N1") << endl
         << 1 << ',' << ' ' << -2147483648LL << ", " << 4000000000u << ", " << 0.5 << ", " << 1.0
         << std::string_view(", x") << endl;
  EXPECT_EQ(text, "");
  stream.Flush();
  EXPECT_EQ(text, "*NODE, NSET=N1\n1, -2147483648, 4000000000, 0.5, 1., x\n");
}

// Pieces of every length up to beyond the buffer, so that each edge falls in each kind of write.
TEST(Stream, NothingIsLostOrDoubledAtBufferEdges) {
  cow_String text, expected;
  utl_Stream stream(&text);
  for (std::size_t length = 0; length < 9000; length += 1 + length / 7) {
    const cow_String piece(length, static_cast<char>('a' + length % 26));
    stream << piece << static_cast<int>(length) << endl;
    expected += piece + std::to_string(length) + "\n";
    char* room = stream.Reserve(length + 1);
    stream.Commit(std::fill_n(room, length, '#'));
    expected.append(length, '#');
  }
  stream.Close();
  EXPECT_EQ(text, expected);
}

TEST(Stream, FilesAndStandardStreams) {
  const TemporaryFolder folder;
  {
    utl_Stream stream(folder / "deck.inp");
    for (int i = 0; i < 100000; ++i) stream << i << '\n';
  }
  const cow_String content = readFile(folder / "deck.inp");
  EXPECT_EQ(content.size(), 588890u); // 10*2 + 90*3 + 900*4 + 9000*5 + 90000*6
  EXPECT_EQ(content.substr(content.size() - 12), "99998\n99999\n");

  std::ostringstream out;
  utl_Stream stream(out);
  stream << "x";
  stream.Flush();
  EXPECT_EQ(out.str(), "x");
  out.setstate(std::ios::badbit);
  stream << "y";
  EXPECT_THROW(stream.Flush(), utl_FileException);
}

#ifndef _WIN32
TEST(Stream, AFullDiskReachesTheCaller) {
  if (!utl_exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  utl_Stream stream(std::filesystem::path("/dev/full"));
  stream << "*HEADING" << endl;
  EXPECT_THROW(stream.Close(), utl_FileException);
}
#endif

TEST(Stream, NothingIsWrittenAfterClose) {
  cow_String text;
  utl_Stream stream(&text);
  stream << 1;
  stream.Close();
  stream.Close();
  EXPECT_THROW(stream << 2, utl_Assertion);
  EXPECT_THROW(stream << "two", utl_Assertion);
  EXPECT_EQ(text, "1");
}

TEST(Stream, BlocksComeInOrderWhateverTheThreads) {
  constexpr std::size_t lines = 1000;
  cow_String expected = "start\n";
  for (std::size_t i = 0; i < 50 * lines; ++i) expected += std::to_string(i) + "\n";
  expected += "end\n";
  for (int threads : {1, 2, 7}) {
    utl_setThreadCount(threads);
    cow_String text;
    utl_Stream stream(&text);
    stream << "start" << endl;
    utl_printBlocks(stream, 50, lines * utl_intTextRoom, [&](std::size_t block, char* out) {
      for (std::size_t i = block * lines; i < (block + 1) * lines; ++i) {
        out = utl_printUnsigned(out, i);
        *out++ = '\n';
      }
      return out;
    });
    stream << "end" << endl;
    stream.Close();
    EXPECT_EQ(text, expected) << threads;
  }
  utl_setThreadCount(0);
}
