// The folder scanner over hostile folders: it lists what it can, says what it passed by, ends.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <sys/fsuid.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "support/TestSupport.h"
#include "support/ZipWriter.h"
#include <kestrel/files/PeruseDir.h>
#include <kestrel/frame/host/Host.h>

namespace kestrel {
namespace {

using test::TempDir;
using test::WriteZip;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// Lists every folder a walk reaches and what the scanner passes by; stops a runaway loop.
struct Walk {
  TPeruseDir scanner{"*", "*", "*", true, false, faAnyFile};
  Lines found, skipped;
  std::string root;

  explicit Walk(const std::string &folder, bool followLinks = false) : root(folder + "/") {
    scanner.fFollowLinks = followLinks;
    scanner.OnFoundDir = TFoundDirEvent::Bind<&Walk::List>(this);
    scanner.OnSkipped = TSkippedEvent::Bind<&Walk::Skipped>(this);
    List(folder);
    scanner.ProcessAllSubDirectories(folder);
    std::sort(found.begin(), found.end());
    std::sort(skipped.begin(), skipped.end());
  }
  std::string Short(const std::string &name) const {
    return name.rfind(root, 0) == 0 ? name.substr(root.size()) : name;
  }
  void List(const std::string &folder) {
    if (found.size() > 500) scanner.fCarryOn = false;
    std::unique_ptr<TMySearchRecList> list(scanner.ListofAllFilesIn(folder));
    ASSERT_NE(list, nullptr);
    const std::string dir = IncludeTrailingPathDelimiter(folder);
    for (int32_t i = 0; i < list->Count(); ++i) {
      const TMySearchRec rec = list->GetAMySearchRec(i);
      found.push_back(Short(rec.ZipNumber ? rec.Name : dir + rec.Name));
    }
  }
  void Skipped(const std::string &name, TSkipReason why, const std::string &detail) {
    static const char *kWhy[] = {"not a file", "link",       "walked",
                                 "left out",   "bad folder", "bad archive"};
    skipped.push_back(Short(name) + ": " + kWhy[size_t(why)] + ": " + detail);
  }
};

TEST(FolderScannerHostile, SpecialFilesAreNotedAndNotListed) {
  TempDir t;
  t.WriteFile("a.txt", "a");
  ASSERT_EQ(::mkfifo((t / "fifo.txt").c_str(), 0644), 0);
  ASSERT_EQ(::mkfifo((t / "pipe.zip").c_str(), 0644), 0);
  fs::create_symlink("/dev/zero", t / "zero.txt");
  fs::create_symlink(t / "gone", t / "broken.txt");
  fs::create_symlink(t / "a.txt", t / "same.txt");
  Walk w(t.Path());
  EXPECT_EQ(w.found, (Lines{"a.txt", "same.txt"}));
  EXPECT_EQ(
      w.skipped,
      (Lines{"broken.txt: not a file: a broken link", "fifo.txt: not a file: a FIFO (named pipe)",
             "pipe.zip: not a file: a FIFO (named pipe)", "zero.txt: not a file: a device"}));
}

// a.txt, sub/b.txt, sub/up -> root, sub/side -> other/ (c.txt, back -> sub).
struct Loops {
  TempDir t, other;
  Loops() {
    t.WriteFile("a.txt", "a");
    t.WriteFile("sub/b.txt", "b");
    other.WriteFile("c.txt", "c");
    fs::create_directory_symlink(t.Path(), t / "sub/up");
    fs::create_directory_symlink(other.Path(), t / "sub/side");
    fs::create_directory_symlink(t / "sub", other / "back");
  }
};

TEST(FolderScannerHostile, LinksToFoldersAreNotFollowedByDefault) {
  Loops l;
  Walk w(l.t.Path());
  EXPECT_EQ(w.found, (Lines{"a.txt", "sub/b.txt"}));
  EXPECT_EQ(w.skipped,
            (Lines{"sub/side: link: a link to a folder", "sub/up: link: a link to a folder"}));
  EXPECT_EQ(w.scanner.fDirsFound, 1);
}

TEST(FolderScannerHostile, FollowedLinksWalkEachFolderOnce) {
  Loops l;
  Walk w(l.t.Path(), true);
  EXPECT_EQ(w.found, (Lines{"a.txt", "sub/b.txt", "sub/side/c.txt"}));
  EXPECT_EQ(w.skipped, (Lines{"sub/side/back: walked: a folder walked already (a link loop?)",
                              "sub/up: walked: a folder walked already (a link loop?)"}));
  EXPECT_EQ(w.scanner.fDirsFound, 2);
  // Each mask walks the tree once, as before.
  TPeruseDir twice("*", "*;s*", "*", false, false, faAnyFile);
  twice.fFollowLinks = true;
  twice.ProcessAllSubDirectories(l.t.Path());
  EXPECT_EQ(twice.fDirsFound, 4);
}

TEST(FolderScannerHostile, DamagedArchivesAreReportedAndTheScanGoesOn) {
  TempDir t;
  t.WriteFile("a.zip", "PK\x03\x04 not really an archive");
  t.WriteFile("b.zip", "");
  WriteZip(t / "c.zip", {{"c.txt", "sea"}});
  t.WriteFile("d.txt", "d");
  Walk w(t.Path());
  EXPECT_EQ(w.found, (Lines{"c.zip/c.txt", "d.txt"}));
  EXPECT_EQ(w.skipped, (Lines{"a.zip: bad archive: Not a zip archive",
                              "b.zip: bad archive: Not a zip archive"}));
}

TEST(FolderScannerHostile, FoldersThatCantBeReadAreReportedOnce) {
  TempDir t;
  t.WriteFile("a.txt", "a");
  t.WriteFile("closed/b.txt", "b");
  // A tree past the path limit, built one folder at a time.
  int fd = ::open(t.Path().c_str(), O_RDONLY | O_DIRECTORY);
  const std::string part(200, 'd');
  for (int i = 0; i < 25 && fd >= 0; ++i) {
    ::mkdirat(fd, part.c_str(), 0755);
    int next = ::openat(fd, part.c_str(), O_RDONLY | O_DIRECTORY);
    ::close(fd);
    fd = next;
  }
  ASSERT_GE(fd, 0);
  ::close(fd);
  ::chmod(t.Path().c_str(), 0755);
  ::chmod((t / "closed").c_str(), 0);
  const bool root = ::geteuid() == 0; // permissions stop the superuser only as another user
  if (root) ::setfsuid(65534);
  Walk w(t.Path());
  if (root) ::setfsuid(0);
  ::chmod((t / "closed").c_str(), 0755);
  EXPECT_EQ(w.found, Lines{"a.txt"});
  ASSERT_EQ(w.skipped.size(), 2u);
  EXPECT_EQ(w.skipped[0], "closed: bad folder: Permission denied");
  EXPECT_NE(w.skipped[1].find(": bad folder: File name too long"), std::string::npos)
      << w.skipped[1];
  // The deep tree is past what a removal by full names can reach.
  EXPECT_EQ(std::system(("rm -rf " + t / part).c_str()), 0);
}

// The walk holds no folder open while it is below it: few descriptors will do.
TEST(FolderScannerHostile, ADeepTreeWalksWithFewDescriptors) {
  TempDir t;
  std::string deepest;
  for (int level = 0; level < 120; ++level)
    deepest += "d/";
  t.WriteFile(deepest + "bottom.txt", "x");
  struct rlimit saved;
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &saved), 0);
  struct rlimit few = saved;
  few.rlim_cur = 48;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
  Walk w(t.Path());
  ::setrlimit(RLIMIT_NOFILE, &saved);
  EXPECT_EQ(w.skipped, Lines{});
  EXPECT_EQ(w.scanner.fDirsFound, 120);
  ASSERT_EQ(w.found.size(), 1u);
  EXPECT_EQ(w.found[0].size(), 120 * 2 + std::string("bottom.txt").size());
}

} // namespace
} // namespace kestrel
