// The folder search: the host's mask rules, attributes, links looked at
// without being followed for the walk's sake, and the reasons of failures.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <kestrel/frame/host/Host.h>

#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::TempDir;
namespace fs = std::filesystem;

namespace {

using V = std::vector<std::string>;

// Every match of a search, in the order given.
V Search(const std::string &path, int32_t attr) {
  V names;
  TSearchRec sr;
  int32_t r = FindFirst(path, attr, sr);
  for (; r == 0; r = FindNext(sr))
    names.push_back(sr.Name);
  EXPECT_TRUE(r == ERROR_NO_MORE_FILES || r == ERROR_FILE_NOT_FOUND) << r;
  FindClose(sr);
  return names;
}

TSearchRec FindOne(const std::string &path) {
  TSearchRec sr;
  EXPECT_EQ(FindFirst(path, faAnyFile, sr), 0) << path;
  FindClose(sr);
  return sr;
}

// Files, hidden names, a folder, a FIFO and links of every kind.
struct Tree {
  TempDir t;
  Tree() {
    t.WriteFile("b.txt", "bb");
    t.WriteFile("a.TXT", "a");
    t.WriteFile("c.txt.bak", "c");
    t.WriteFile(".hidden", "h");
    fs::create_directory(t / "folder");
    fs::create_directory(t / ".git");
    ::mkfifo((t / "fifo").c_str(), 0644);
    fs::create_symlink(t / "folder", t / "to-folder");
    fs::create_symlink(t / "b.txt", t / "to-file");
    fs::create_symlink(t / "fifo", t / "to-fifo");
    fs::create_symlink("/dev/zero", t / "to-zero");
    fs::create_symlink(t / "gone", t / "broken");
  }
};

} // namespace

// The wildcards themselves are the mask matcher's (TMask); here what file masks add.
TEST(FindFile, MaskRulesOfTheHostSystem) {
  struct Row {
    const char *name, *mask;
    bool match;
  } rows[] = {{"a.txt", "*.txt", true}, {"a.txt.bak", "*.txt", false},
              {"README", "*.*", true},  {"README", "*", true},
              {".", "*.*", true},       {"abc", "a*.*", true},
              {"bcd", "a*.*", false},   {"README", "*.", true},
              {"a.txt", "*.", false},   {"abc", "abc.", true},
              {"[x]", "[x]", true},     {"x", "[x]", false},
              {"a.txt", "", false},     {"b.a", "*a.*", true},
              {"é.txt", "É.TXT", true}};
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.name) + " / " + r.mask);
    EXPECT_EQ(MatchesFileMask(r.name, r.mask), r.match);
  }
}

TEST(FindFile, ListsMatchesInNameOrderWithTheirDetails) {
  Tree t;
  EXPECT_EQ(Search(t.t / "*.txt", 0), (V{"a.TXT", "b.txt"}));
  TSearchRec sr; // name, size and attributes: the table of kinds below
  ASSERT_EQ(FindFirst(t.t / "b.txt", 0, sr), 0);
  struct stat st;
  ASSERT_EQ(::stat((t.t / "b.txt").c_str(), &st), 0);
  EXPECT_EQ(sr.Time, UnixTimeToFileDate(st.st_mtime));
  EXPECT_EQ(FindNext(sr), ERROR_NO_MORE_FILES);
  FindClose(sr);

  ::chmod((t.t / "a.TXT").c_str(), 0444);
  EXPECT_EQ(FileGetAttr(t.t / "a.TXT"), faReadOnly | faArchive);
  EXPECT_EQ(FileGetAttr(t.t / "folder/"), faDirectory);
  EXPECT_EQ(FileGetAttr(t.t / ".git"), faDirectory | faHidden);
  EXPECT_EQ(FileGetAttr(t.t / ".hidden"), faArchive | faHidden);
  EXPECT_EQ(FileGetAttr(t.t / "none"), -1);
}

TEST(FindFile, LinksCarryTheirTargetsKindAndTheLinkBit) {
  Tree t;
  struct Row {
    const char *name;
    int32_t attr;
    TFileKind kind;
    int64_t size;
  } rows[] = {
      {"b.txt", faArchive, TFileKind::Regular, 2},
      {"folder", faDirectory, TFileKind::Folder, 0},
      {"fifo", faSysFile, TFileKind::Fifo, 0},
      {"to-folder", faDirectory | faSymLink, TFileKind::Folder, 0},
      {"to-file", faArchive | faSymLink, TFileKind::Regular, 2},
      {"to-fifo", faSysFile | faSymLink, TFileKind::Fifo, 0},
      {"to-zero", faSysFile | faSymLink, TFileKind::CharDevice, 0},
      {"broken", faSysFile | faSymLink, TFileKind::BrokenLink, 0},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.name);
    TSearchRec sr = FindOne(t.t / r.name);
    EXPECT_EQ(sr.Attr & ~faReadOnly, r.attr);
    EXPECT_EQ(sr.Kind, r.kind);
    EXPECT_EQ(sr.Size, r.size);
    TFileKind kind;
    TFileIdentity id;
    ASSERT_TRUE(FileKindOf(t.t / r.name, kind, id));
    EXPECT_EQ(kind, r.kind);
    if (r.kind != TFileKind::BrokenLink) {
      EXPECT_EQ(id, sr.Identity);
    }
  }
  // A link and its target are one folder by identity.
  EXPECT_EQ(FindOne(t.t / "to-folder").Identity, FindOne(t.t / "folder").Identity);
  EXPECT_NE(FindOne(t.t / "to-file").Identity, FindOne(t.t / "folder").Identity);
  TFileKind kind;
  TFileIdentity id;
  EXPECT_FALSE(FileKindOf(t.t / "none", kind, id));
  EXPECT_EQ(GetLastOSError(), ENOENT);
}

// The kinds the folder listing gives spare the search a look at entries it
// leaves out; a link's kind is its target's, which only a look can tell.
TEST(FindFile, TheAttributesLeaveOutByTheKindOfWhatANameLeadsTo) {
  Tree t;
  const V files = {"a.TXT", "b.txt", "c.txt.bak"};
  auto with = [&](V more) {
    more.insert(more.end(), files.begin(), files.end());
    std::sort(more.begin(), more.end());
    return more;
  };
  const struct {
    int32_t attr;
    V names;
  } rows[] = {
      {0, with({"to-file"})},
      {faReadOnly | faArchive, with({"to-file"})},
      {faHidden, with({".hidden", "to-file"})},
      {faDirectory, with({".", "..", "folder", "to-file", "to-folder"})},
      {faSysFile, with({"broken", "fifo", "to-fifo", "to-file", "to-zero"})},
      {faAnyFile, with({".", "..", ".git", ".hidden", "broken", "fifo", "folder", "to-fifo",
                        "to-file", "to-folder", "to-zero"})},
  };
  for (const auto &r : rows)
    EXPECT_EQ(Search(t.t / "*", r.attr), r.names) << "attributes " << r.attr;
}

TEST(FindFile, FailuresKeepTheSystemsReason) {
  TempDir t;
  TSearchRec sr;
  const struct {
    std::string path;
    int32_t code, error;
  } rows[] = {{t / "none/*", ERROR_PATH_NOT_FOUND, ENOENT},
              {t / "*.none", ERROR_FILE_NOT_FOUND, ENOENT},
              {t / std::string(5000, 'a') + "/*", ERROR_FILENAME_EXCED_RANGE, ENAMETOOLONG},
              // A folder name with its delimiter alone holds no mask.
              {IncludeTrailingPathDelimiter(t.Path()), ERROR_FILE_NOT_FOUND, ENOENT}};
  for (const auto &r : rows) {
    EXPECT_EQ(FindFirst(r.path, faAnyFile, sr), r.code) << r.path.substr(0, 80);
    EXPECT_EQ(GetLastOSError(), r.error) << r.path.substr(0, 80);
  }
  EXPECT_EQ(FindNext(sr), ERROR_NO_MORE_FILES);
  FindClose(sr);
  FindClose(sr); // twice does no harm

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

TEST(FindFile, RelativeSearchUsesTheCurrentFolder) {
  Tree t;
  std::string saved = GetCurrentDir();
  ASSERT_TRUE(SetCurrentDir(t.t.Path()));
  V found = Search("*.txt", 0);
  V inSub = Search("folder/*", faAnyFile);
  SetCurrentDir(saved);
  EXPECT_EQ(found, (V{"a.TXT", "b.txt"}));
  EXPECT_EQ(inSub, (V{".", ".."}));
}

TEST(FindFile, ExpandFileName) {
  std::string cwd = GetCurrentDir();
  struct Row {
    std::string in, out;
  } rows[] = {
      {"/a/b/../c", "/a/c"},     {"/a/./b//c/", "/a/b/c/"}, {"/..", "/"},          {"/", "/"},
      {"x.txt", cwd + "/x.txt"}, {"./y/", cwd + "/y/"},     {"C:/p/../q", "C:/q"}, {"C:", "C:/"}};
  for (const Row &r : rows) {
    SCOPED_TRACE(r.in);
    EXPECT_EQ(ExpandFileName(r.in), r.out);
  }
}
