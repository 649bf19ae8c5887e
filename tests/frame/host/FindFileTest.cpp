#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <kestrel/frame/host/DateUtils.h>
#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/host/SysUtils.h>

#include "TestSupport.h"

using namespace kestrel;
using kestrel::test::TempDir;
namespace fs = std::filesystem;

namespace {

// Every match of a search, in the order given.
std::vector<std::string> Search(const std::string &path, int32_t attr) {
  std::vector<std::string> names;
  TSearchRec sr;
  int32_t r = FindFirst(path, attr, sr);
  while (r == 0) {
    names.push_back(sr.Name);
    r = FindNext(sr);
  }
  EXPECT_TRUE(r == ERROR_NO_MORE_FILES || r == ERROR_FILE_NOT_FOUND) << r;
  FindClose(sr);
  return names;
}

using V = std::vector<std::string>;

struct Tree {
  TempDir dir;
  Tree() {
    dir.WriteFile("b.txt", "bb");
    dir.WriteFile("a.TXT", "a");
    dir.WriteFile("README", "r");
    dir.WriteFile("c.txt.bak", "c");
    dir.WriteFile("x.zip", "z");
    dir.WriteFile(".hidden.txt", "h");
    fs::create_directory(dir / "sub");
    fs::create_directory(dir / ".git");
  }
};

} // namespace

TEST(FindFile, MaskRulesOfTheHostSystem) {
  struct Row {
    const char *name, *mask;
    bool match;
  } rows[] = {
      {"a.txt", "*.txt", true},   {"A.TXT", "*.txt", true},    {"a.txt.bak", "*.txt", false},
      {"README", "*.*", true},    {"README", "*", true},       {".", "*.*", true},
      {"abc", "a*.*", true},      {"abc.d", "a*.*", true},     {"bcd", "a*.*", false},
      {"README", "*.", true},     {"a.txt", "*.", false},      {"abc", "abc.", true},
      {"[x]", "[x]", true},       {"x", "[x]", false},         {"a.txt", "?.txt", true},
      {"ab.txt", "?.txt", false}, {"a.txt", "", false},        {"b.zip", "*.zip", true},
      {"b.zip", "b*.zip", true},  {"cb.zip", "b*.zip", false}, {"x.ZIP", "*.zip", true},
      {"b.a", "*a.*", true},      {"é.txt", "É.TXT", true},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.name) + " / " + r.mask);
    EXPECT_EQ(MatchesFileMask(r.name, r.mask), r.match);
  }
}

TEST(FindFile, ListsMatchesInNameOrderWithTheirDetails) {
  Tree t;
  EXPECT_EQ(Search(t.dir / "*.txt", 0), (V{"a.TXT", "b.txt"}));
  EXPECT_EQ(Search(t.dir / "*.*", 0), (V{"README", "a.TXT", "b.txt", "c.txt.bak", "x.zip"}));
  EXPECT_EQ(Search(t.dir / "*.*", faDirectory),
            (V{".", "..", "README", "a.TXT", "b.txt", "c.txt.bak", "sub", "x.zip"}));
  EXPECT_EQ(Search(t.dir / "*", faAnyFile), (V{".", "..", ".git", ".hidden.txt", "README", "a.TXT",
                                               "b.txt", "c.txt.bak", "sub", "x.zip"}));
  EXPECT_EQ(Search(t.dir / "*.txt", faHidden), (V{".hidden.txt", "a.TXT", "b.txt"}));

  TSearchRec sr;
  ASSERT_EQ(FindFirst(t.dir / "b.txt", 0, sr), 0);
  EXPECT_EQ(sr.Name, "b.txt");
  EXPECT_EQ(sr.Size, 2);
  EXPECT_EQ(sr.Attr, faArchive);
  struct stat st;
  ASSERT_EQ(::stat((t.dir / "b.txt").c_str(), &st), 0);
  EXPECT_EQ(sr.Time, UnixTimeToFileDate(st.st_mtime));
  EXPECT_NO_THROW(FileDateToDateTime(sr.Time));
  EXPECT_EQ(FindNext(sr), ERROR_NO_MORE_FILES);
  FindClose(sr);
}

TEST(FindFile, AttributeBits) {
  Tree t;
  ::chmod((t.dir / "README").c_str(), 0444);
  EXPECT_EQ(FileGetAttr(t.dir / "README"), faReadOnly | faArchive);
  EXPECT_EQ(FileGetAttr(t.dir / "sub"), faDirectory);
  EXPECT_EQ(FileGetAttr(t.dir / "sub/"), faDirectory);
  EXPECT_EQ(FileGetAttr(t.dir / ".git"), faDirectory | faHidden);
  EXPECT_EQ(FileGetAttr(t.dir / ".hidden.txt"), faArchive | faHidden);
  EXPECT_EQ(FileGetAttr(t.dir / "none"), -1);

  // A socket is a system file: listed only when asked for.
  std::string sock = t.dir / "s.sock";
  int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  if (sock.size() < sizeof addr.sun_path) {
    std::strcpy(addr.sun_path, sock.c_str());
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
    EXPECT_EQ(Search(t.dir / "*.sock", 0), V{});
    EXPECT_EQ(Search(t.dir / "*.sock", faSysFile), V{"s.sock"});
  }
  ::close(fd);

  // A link is followed; a broken one is not listed.
  fs::create_symlink(t.dir / "sub", t.dir / "link");
  fs::create_symlink(t.dir / "gone", t.dir / "broken");
  EXPECT_EQ(Search(t.dir / "link", faDirectory), V{"link"});
  EXPECT_EQ(Search(t.dir / "broken", faAnyFile), V{});
}

TEST(FindFile, FailuresGiveCodes) {
  Tree t;
  TSearchRec sr;
  EXPECT_EQ(FindFirst(t.dir / "nothing/*.*", faAnyFile, sr), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(FindFirst(t.dir / "*.none", faAnyFile, sr), ERROR_FILE_NOT_FOUND);
  // A folder name with its delimiter alone holds no mask, and finds nothing.
  EXPECT_EQ(FindFirst(IncludeTrailingPathDelimiter(t.dir.Path()), faAnyFile, sr),
            ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(FindNext(sr), ERROR_NO_MORE_FILES);
  FindClose(sr);
  FindClose(sr); // twice does no harm
}

TEST(FindFile, RelativeSearchUsesTheCurrentFolder) {
  Tree t;
  std::string saved = GetCurrentDir();
  ASSERT_TRUE(SetCurrentDir(t.dir.Path()));
  V found = Search("*.txt", 0);
  V inSub = Search("sub/*", faAnyFile);
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
