// The folder search looks at links without following them for the walk's
// sake, names special files by kind, and keeps the reason of a failure.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/host/SysUtils.h>

#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::TempDir;
namespace fs = std::filesystem;

namespace {

TSearchRec FindOne(const std::string &path) {
  TSearchRec sr;
  EXPECT_EQ(FindFirst(path, faAnyFile, sr), 0) << path;
  FindClose(sr);
  return sr;
}

} // namespace

TEST(FindFileLinks, LinksCarryTheirTargetsKindAndTheLinkBit) {
  TempDir t;
  t.WriteFile("file.txt", "abc");
  fs::create_directory(t / "folder");
  ASSERT_EQ(::mkfifo((t / "fifo").c_str(), 0644), 0);
  fs::create_symlink(t / "folder", t / "to-folder");
  fs::create_symlink(t / "file.txt", t / "to-file");
  fs::create_symlink(t / "fifo", t / "to-fifo");
  fs::create_symlink("/dev/zero", t / "to-zero");
  fs::create_symlink(t / "gone", t / "broken");
  struct Row {
    const char *name;
    int32_t attr;
    TFileKind kind;
    int64_t size;
  } rows[] = {
      {"file.txt", faArchive, TFileKind::Regular, 3},
      {"folder", faDirectory, TFileKind::Folder, 0},
      {"fifo", faSysFile, TFileKind::Fifo, 0},
      {"to-folder", faDirectory | faSymLink, TFileKind::Folder, 0},
      {"to-file", faArchive | faSymLink, TFileKind::Regular, 3},
      {"to-fifo", faSysFile | faSymLink, TFileKind::Fifo, 0},
      {"to-zero", faSysFile | faSymLink, TFileKind::CharDevice, 0},
      {"broken", faSysFile | faSymLink, TFileKind::BrokenLink, 0},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.name);
    TSearchRec sr = FindOne(t / r.name);
    EXPECT_EQ(sr.Attr & ~faReadOnly, r.attr);
    EXPECT_EQ(sr.Kind, r.kind);
    EXPECT_EQ(sr.Size, r.size);
    TFileKind kind;
    TFileIdentity id;
    ASSERT_TRUE(FileKindOf(t / r.name, kind, id));
    EXPECT_EQ(kind, r.kind);
    if (r.kind != TFileKind::BrokenLink) {
      EXPECT_EQ(id, sr.Identity);
    }
  }
  // A link and its target are one folder by identity.
  EXPECT_EQ(FindOne(t / "to-folder").Identity, FindOne(t / "folder").Identity);
  EXPECT_NE(FindOne(t / "to-file").Identity, FindOne(t / "folder").Identity);
  TFileKind kind;
  TFileIdentity id;
  EXPECT_FALSE(FileKindOf(t / "none", kind, id));
  EXPECT_EQ(GetLastOSError(), ENOENT);
}

// The kinds the folder listing gives spare the search a look at entries it
// leaves out; a link's kind is its target's, which only a look can tell.
TEST(FindFileLinks, TheAttributesLeaveOutByTheKindOfWhatANameLeadsTo) {
  TempDir t;
  t.WriteFile("file.txt", "abc");
  t.WriteFile(".hidden", "abc");
  fs::create_directory(t / "folder");
  ASSERT_EQ(::mkfifo((t / "fifo").c_str(), 0644), 0);
  fs::create_symlink(t / "folder", t / "to-folder");
  fs::create_symlink(t / "file.txt", t / "to-file");
  fs::create_symlink("/dev/zero", t / "to-zero");
  fs::create_symlink(t / "gone", t / "broken");
  using V = std::vector<std::string>;
  const struct {
    int32_t attr;
    V names;
  } rows[] = {
      {0, {"file.txt", "to-file"}},
      {faReadOnly | faArchive, {"file.txt", "to-file"}},
      {faHidden, {".hidden", "file.txt", "to-file"}},
      {faDirectory, {".", "..", "file.txt", "folder", "to-file", "to-folder"}},
      {faSysFile, {"broken", "fifo", "file.txt", "to-file", "to-zero"}},
      {faAnyFile,
       {".", "..", ".hidden", "broken", "fifo", "file.txt", "folder", "to-file", "to-folder",
        "to-zero"}},
  };
  for (const auto &r : rows) {
    V names;
    TSearchRec sr;
    for (int32_t code = FindFirst(t / "*", r.attr, sr); code == 0; code = FindNext(sr))
      names.push_back(sr.Name);
    FindClose(sr);
    EXPECT_EQ(names, r.names) << "attributes " << r.attr;
  }
}

TEST(FindFileLinks, FailuresKeepTheSystemsReason) {
  TempDir t;
  TSearchRec sr;
  EXPECT_EQ(FindFirst(t / "none/*", faAnyFile, sr), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(GetLastOSError(), ENOENT);
  EXPECT_EQ(FindFirst(t / "*.none", faAnyFile, sr), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(GetLastOSError(), ENOENT);
  EXPECT_EQ(FindFirst(t / std::string(5000, 'a') + "/*", faAnyFile, sr),
            ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(GetLastOSError(), ENAMETOOLONG);

  // A folder that may not be read: as another user when the tests run as
  // the superuser, whom permissions don't stop.
  fs::create_directory(t / "closed");
  ::chmod(t.Path().c_str(), 0755);
  ::chmod((t / "closed").c_str(), 0);
  const bool root = ::geteuid() == 0;
  if (root) ::setfsuid(65534);
  const int32_t code = FindFirst(t / "closed/*", faAnyFile, sr);
  const int32_t error = GetLastOSError();
  if (root) ::setfsuid(0);
  ::chmod((t / "closed").c_str(), 0755);
  EXPECT_EQ(code, ERROR_ACCESS_DENIED);
  EXPECT_EQ(error, EACCES);
}
