#include "tests/base/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <thread>

#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace {

template <class Action> cow_String faultOf(Action action) {
  try {
    action();
  } catch (const utl_FileException& fault) {
    return fault.what();
  }
  return "no fault";
}

} // namespace

TEST(File, MapsWhatIsThere) {
  const TemporaryFolder folder;
  const auto path = folder / "Träger 1.inp";
  writeFile(path, "*NODE\n1, 0.\n");
  utl_MappedFile file(path);
  EXPECT_EQ(file.Text(), "*NODE\n1, 0.\n");
  EXPECT_TRUE(file.IsMapped());
  utl_MappedFile other(std::move(file));
  EXPECT_EQ(other.Text(), "*NODE\n1, 0.\n");
  EXPECT_EQ(file.Text(), "");
  file = std::move(other);
  EXPECT_EQ(file.Text(), "*NODE\n1, 0.\n");
}

TEST(File, AnEmptyFileIsEmptyAndNotNull) {
  const TemporaryFolder folder;
  writeFile(folder / "empty", "");
  const utl_MappedFile file(folder / "empty");
  EXPECT_EQ(file.Size(), 0u);
  EXPECT_NE(file.Data(), nullptr);
}

TEST(File, WhatCannotBeReadIsSaidInOneLine) {
  const TemporaryFolder folder;
  const cow_String name = utl_pathText(folder.Path());
  EXPECT_EQ(faultOf([&] { utl_MappedFile{folder.Path()}; }),
            "cannot read \"" + name + "\": it is a folder");
  EXPECT_EQ(faultOf([&] { utl_MappedFile{folder / "absent"}; }),
            "cannot read \"" + name + "/absent\": No such file or directory");
}

TEST(File, ReleasedPagesComeBack) {
  const TemporaryFolder folder;
  cow_String content;
  for (int i = 0; i < 40000; ++i) content += std::to_string(i) + "\n";
  writeFile(folder / "big", content);
  const utl_MappedFile file(folder / "big");
  ASSERT_EQ(file.Text(), content);
  file.Release(0, 50000);
  file.Release(5000, 1);
  file.Release(100000, SIZE_MAX);
  file.Release(file.Size() + 10, 10);
  EXPECT_EQ(file.Text(), content);
}

#ifndef _WIN32
TEST(File, APipeIsReadToItsEnd) {
  const TemporaryFolder folder;
  const auto pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const cow_String content(300000, 'x');
  std::thread writer([&] { writeFile(pipe, content); });
  const utl_MappedFile file(pipe);
  writer.join();
  EXPECT_FALSE(file.IsMapped());
  EXPECT_EQ(file.Text(), content);
  file.Release(0, 1000);
  EXPECT_EQ(file.Text(), content);
}

TEST(File, AFullDiskIsReported) {
  if (!utl_exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  utl_OutputFile file("/dev/full");
  EXPECT_EQ(faultOf([&] { file.Write("x", 1); }),
            "cannot write \"/dev/full\": No space left on device");
}
#endif

TEST(File, NewFilesAndReplacedOnes) {
  const TemporaryFolder folder;
  const auto path = folder / "model";
  writeFile(path, "old and long");
  EXPECT_NE(faultOf([&] { utl_OutputFile(path, utl_OutputFile::Mode::CreateNew); }), "no fault");
  EXPECT_EQ(readFile(path), "old and long");

  const auto temporary = utl_temporaryBeside(path);
  EXPECT_EQ(temporary.parent_path(), folder.Path());
  EXPECT_FALSE(utl_exists(temporary));
  writeFile(temporary, "new");
  EXPECT_NE(utl_temporaryBeside(path), temporary);

  EXPECT_NE(faultOf([&] { utl_renameFile(temporary, path, utl_IfExists::Refuse); }), "no fault");
  EXPECT_EQ(readFile(path), "old and long");
  EXPECT_TRUE(utl_exists(temporary));

  utl_syncFile(temporary);
  utl_renameFile(temporary, path, utl_IfExists::Replace);
  utl_syncFolderOf(path);
  EXPECT_EQ(readFile(path), "new");
  EXPECT_FALSE(utl_exists(temporary));

  utl_renameFile(path, folder / "fresh", utl_IfExists::Refuse);
  EXPECT_EQ(readFile(folder / "fresh"), "new");
  utl_removeFile(folder / "fresh");
  utl_removeFile(folder / "fresh");
  EXPECT_FALSE(utl_exists(folder / "fresh"));
}

#ifndef _WIN32
TEST(File, WhatHasNothingToSyncIsSynced) {
  utl_OutputFile device("/dev/null");
  device.Write("x", 1);
  EXPECT_EQ(faultOf([&] { device.Sync(); }), "no fault");
}
#endif

TEST(File, ATemporaryNameFitsBesideTheLongestName) {
  const TemporaryFolder folder;
  const auto path = folder / cow_String(255, 'n');
  const auto temporary = utl_temporaryBeside(path);
  writeFile(temporary, "content");
  utl_renameFile(temporary, path, utl_IfExists::Refuse);
  EXPECT_EQ(readFile(path), "content");
}

TEST(File, PeakMemoryGrowsWithWhatIsTouched) {
  const std::size_t before = utl_peakMemory();
  utl_Buffer<char> touched(std::size_t{64} << 20);
  std::fill(touched.begin(), touched.end(), 'x');
  EXPECT_GE(utl_peakMemory() + (8 << 20), std::max<std::size_t>(before, 64 << 20));
}
