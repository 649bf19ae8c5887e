// Copying and replacing files whole.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "support/FileSizeLimit.h"
#include "support/TestSupport.h"
#include <kestrel/frame/platform/SafeFiles.h>

using namespace kestrel;
using kestrel::test::EntriesIn;
using kestrel::test::TempDir;

TEST(CopyFileA, CopiesBytesPermissionsAndDate) {
  TempDir dir;
  dir.WriteFile("a.txt", std::string("one\0two", 7));
  ::chmod((dir / "a.txt").c_str(), 0604);
  const struct timespec old[2] = {{1000000000, 0}, {1000000000, 0}};
  ::utimensat(AT_FDCWD, (dir / "a.txt").c_str(), old, 0);
  dir.WriteFile("b.txt", "an older copy, longer than the new one");
  ASSERT_TRUE(CopyFileA((dir / "a.txt").c_str(), (dir / "b.txt").c_str(), false));
  EXPECT_EQ(test::ReadFileBytes(dir / "b.txt"), std::string("one\0two", 7));
  struct stat st;
  ASSERT_EQ(::stat((dir / "b.txt").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 07777, 0604u);
  EXPECT_EQ(st.st_mtim.tv_sec, 1000000000);
}

TEST(CopyFileA, FailsWithoutHarm) {
  TempDir dir;
  dir.WriteFile("a.txt", "new");
  dir.WriteFile("b.txt", "old");
  ::mkdir((dir / "folder").c_str(), 0755);
  EXPECT_FALSE(CopyFileA((dir / "a.txt").c_str(), (dir / "b.txt").c_str(), true));
  EXPECT_FALSE(CopyFileA((dir / "none").c_str(), (dir / "c.txt").c_str(), false));
  EXPECT_FALSE(CopyFileA((dir / "folder").c_str(), (dir / "c.txt").c_str(), false));
  EXPECT_FALSE(CopyFileA((dir / "a.txt").c_str(), (dir / "no/such/c.txt").c_str(), false));
  EXPECT_FALSE(CopyFileA(nullptr, (dir / "c.txt").c_str(), false));
  EXPECT_TRUE(CopyFileA((dir / "a.txt").c_str(), (dir / "c.txt").c_str(), true));
  dir.WriteFile("big.txt", std::string(4096, 'x'));
  {
    test::FileSizeLimit disk(1024);
    EXPECT_FALSE(CopyFileA((dir / "big.txt").c_str(), (dir / "b.txt").c_str(), false));
  }
  EXPECT_EQ(test::ReadFileBytes(dir / "b.txt"), "old");
  EXPECT_EQ(EntriesIn(dir.Path()), 5u); // a, b, c, big and the folder: no temporary left
}

TEST(ReplaceFileWhole, CreatesOrReplacesKeepingPermissionsAndLinks) {
  TempDir dir;
  ASSERT_TRUE(ReplaceFileWhole(dir / "a.txt", "first"));
  ::chmod((dir / "a.txt").c_str(), 0640);
  ASSERT_EQ(::symlink("a.txt", (dir / "link").c_str()), 0);
  ASSERT_TRUE(ReplaceFileWhole(dir / "link", "second"));
  EXPECT_EQ(test::ReadFileBytes(dir / "a.txt"), "second");
  struct stat st;
  ASSERT_EQ(::lstat((dir / "link").c_str(), &st), 0);
  EXPECT_TRUE(S_ISLNK(st.st_mode));
  ASSERT_EQ(::stat((dir / "a.txt").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 07777, 0640u);
  ::unlink((dir / "link").c_str());
  EXPECT_FALSE(ReplaceFileWhole("", "x"));
  {
    test::FileSizeLimit disk(4);
    EXPECT_FALSE(ReplaceFileWhole(dir / "a.txt", "much longer than four bytes"));
  }
  EXPECT_EQ(test::ReadFileBytes(dir / "a.txt"), "second");
  EXPECT_EQ(EntriesIn(dir.Path()), 1u);
}
