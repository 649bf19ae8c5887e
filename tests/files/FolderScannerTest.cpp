// The folder scanner over real folders and real archives.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <string>
#include <vector>

#include <kestrel/files/PeruseDir.h>
#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/search/myMasks.h>

#include "support/TestSupport.h"
#include "support/ZipWriter.h"

namespace kestrel {
namespace {

using test::TempDir;
using test::WriteZip;
using Lines = std::vector<std::string>;

constexpr int32_t kAnyFile = 0x3F;

// Records every event of a scanner as one line; the folder shows as "~/".
struct Recorder {
  std::string root;
  Lines lines;
  std::function<void(const TMySearchRec &)> onFile; // extra work per plain file

  Recorder(TPeruseDir &p, const std::string &folder) : root(folder + "/") {
    p.OnZipStartReading = TZipStartReadingEvent::Bind<&Recorder::ZipStart>(this);
    p.OnListingZipFile = TListingFileEvent::Bind<&Recorder::Member>(this);
    p.OnListingFile = TListingFileEvent::Bind<&Recorder::File>(this);
    p.OnZipDoneReading = TZipDoneReadingEvent::Bind<&Recorder::ZipDone>(this);
    p.OnFoundDir = TFoundDirEvent::Bind<&Recorder::Dir>(this);
  }
  std::string Short(std::string name) const {
    return name.rfind(root, 0) == 0 ? "~/" + name.substr(root.size()) : name;
  }
  void ZipStart(const std::string &name) { lines.push_back("start " + Short(name)); }
  void Member(TMySearchRec &sr) {
    lines.push_back("member " + Short(sr.Name) + " #" + std::to_string(sr.ZipNumber));
  }
  void File(TMySearchRec &sr) {
    lines.push_back("file " + sr.Name);
    if (onFile) onFile(sr);
  }
  void ZipDone(int32_t n) { lines.push_back("done " + std::to_string(n)); }
  void Dir(const std::string &name) { lines.push_back("dir " + Short(name)); }
};

// a.txt, e.doc, b.zip (x.dat, sub/c.txt) and a damaged archive.
struct Corpus {
  TempDir dir;
  Corpus() {
    dir.WriteFile("a.txt", "alpha text");
    dir.WriteFile("e.doc", "doc");
    WriteZip(dir / "b.zip", {{"x.dat", "refused by the member masks"}, {"sub/c.txt", "gamma"}});
    dir.WriteFile("d-damaged.zip", "PK\x03\x04 this is not really an archive at all");
  }
};

TEST(PeruseDir, MaskStringsAndCounts) {
  TPeruseDir p("", "*;x*", "*.txt;*.htm;", true, false, kAnyFile);
  EXPECT_EQ(p.fFileMaskCount, 1); // an empty string still gives one mask
  EXPECT_EQ(p.fFileMask[0]->MaskText, "");
  EXPECT_EQ(p.fDirMaskCount, 2);
  EXPECT_EQ(p.fZipMaskCount, 3); // the trailing ";" adds an empty one
  EXPECT_EQ(p.fZipExtension, ".zip");
  EXPECT_THROW(TPeruseDir("a;b;c;d;e;f;g;h;i;j;k", "*", "*", true, false, 0), Exception);
  EXPECT_EQ(TPeruseDir("a;b;c;d;e;f;g;h;i;j", "*", "*", true, false, 0).fFileMaskCount, 10);
  EXPECT_FALSE(p.fIsAZipfile(".zip"));
  EXPECT_TRUE(p.fIsAZipfile("A.ZIP"));
  EXPECT_FALSE(p.fIsAZipfile("a.zipx"));
  EXPECT_EQ(p.fMatchesfZipMask("dir.txt/core.htm"), 2); // the folder is not tested
  EXPECT_EQ(p.fMatchesfZipMask("a/b.txt"), 1);
  EXPECT_EQ(p.fMatchesfZipMask("other"), 0);
}

TEST(PeruseDir, ScansMembersFirstThenPlainFiles) {
  const struct {
    const char *files, *members;
    bool lookInZips, zipsAsFiles;
    Lines lines;
  } rows[] = {
      {"*.txt",
       "*.txt",
       true,
       false,
       {"start ~/b.zip", "member ~/b.zip/sub/c.txt #2", "done 1", "start ~/d-damaged.zip",
        "file a.txt"}},
      // The archives looked into follow the first file mask's name.
      {"b*.txt;*.doc",
       "*",
       true,
       false,
       {"start ~/b.zip", "member ~/b.zip/x.dat #1", "member ~/b.zip/sub/c.txt #2", "done 1",
        "file e.doc"}},
      {"z.txt", "*", true, false, {}},
      {"*.*", "*", false, true, {"file a.txt", "file b.zip", "file d-damaged.zip", "file e.doc"}},
      {"*.*", "*", false, false, {"file a.txt", "file e.doc"}},
      // Masks are not merged, and a trailing ";" finds nothing more.
      {"*.txt;a*;", "*", false, false, {"file a.txt", "file a.txt"}},
  };
  Corpus c;
  for (const auto &r : rows) {
    SCOPED_TRACE(r.files);
    TPeruseDir p(r.files, "*", r.members, r.lookInZips, r.zipsAsFiles, kAnyFile);
    Recorder rec(p, c.dir.Path());
    ASSERT_TRUE(p.HandleAllFilesIn(c.dir.Path()));
    EXPECT_EQ(rec.lines, r.lines);
  }
}

TEST(PeruseDir, NoScanWithoutItsEventsOrItsFolder) {
  Corpus c;
  TPeruseDir p("*.txt", "*", "*", true, false, kAnyFile);
  Recorder rec(p, c.dir.Path());
  EXPECT_TRUE(p.HandleAllFilesIn(c.dir / "no-such-folder"));
  p.OnZipDoneReading = nullptr;
  EXPECT_FALSE(p.HandleAllFilesIn(c.dir.Path()));
  EXPECT_TRUE(rec.lines.empty());
  EXPECT_EQ(p.fZipsRead, 0);
}

TEST(PeruseDir, ListHoldsMembersThenFilesWithTheirDetails) {
  Corpus c;
  WriteZip(c.dir / "odd.zip", {{"../escape.txt", "e"}, {"deep/er/f.txt", "f"}, {"folder/", ""}});
  TPeruseDir p("*.txt", "*", "*.txt", true, false, kAnyFile);
  std::unique_ptr<TMySearchRecList> list(p.ListofAllFilesIn(c.dir.Path()));
  ASSERT_NE(list, nullptr);
  const std::string root = c.dir.Path() + "/";
  Lines names;
  for (int32_t i = 0; i < list->Count(); ++i)
    names.push_back(list->GetAMySearchRec(i).Name + " #" +
                    std::to_string(list->GetAMySearchRec(i).ZipNumber));
  // Stored paths are kept as they stand, and nothing is written by listing.
  EXPECT_EQ(names, (Lines{root + "b.zip/sub/c.txt #2", root + "odd.zip/../escape.txt #1",
                          root + "odd.zip/deep/er/f.txt #2", "a.txt #0"}));
  EXPECT_FALSE(FileExists(c.dir / "escape.txt"));
  EXPECT_EQ(list->GetAMySearchRec(0).Size, 5); // the member's uncompressed size
  EXPECT_EQ(list->GetAMySearchRec(3).Size, 10);
  EXPECT_GT(list->GetAMySearchRec(3).Date, 40000.0); // a real date of this century
  EXPECT_EQ(p.fZipsRead, 2);
  EXPECT_EQ(p.fZipMembersFound, 3);
}

TEST(PeruseDir, CarryOnStopsEachMaskAfterItsMatchButNotAnOpenArchive) {
  TempDir dir;
  for (const char *n : {"a1.txt", "a2.txt", "b1.doc", "b2.doc"})
    dir.WriteFile(n, n);
  WriteZip(dir / "a.zip", {{"1.txt", "1"}, {"2.txt", "2"}, {"3.txt", "3"}});
  WriteZip(dir / "b.zip", {{"4.txt", "4"}});
  TPeruseDir p("*.txt;*.doc", "*", "*", true, false, kAnyFile);
  Recorder rec(p, dir.Path());
  int members = 0;
  auto stop = [&](TMySearchRec &) {
    ++members;
    p.fCarryOn = false;
  };
  p.OnListingZipFile = TListingFileEvent::Of(&stop);
  rec.onFile = [&](const TMySearchRec &) { p.fCarryOn = false; };
  ASSERT_TRUE(p.HandleAllFilesIn(dir.Path()));
  EXPECT_EQ(members, 3); // an archive once opened is listed to its end
  EXPECT_EQ(p.fZipsRead, 1);
  EXPECT_EQ(rec.lines, (Lines{"start ~/a.zip", "done 1", "file a1.txt", "file b1.doc"}));
}

TEST(PeruseDir, AnExceptionFromAnEventFailsTheScanOrSkipsTheArchive) {
  Corpus c;
  TPeruseDir p("*.txt", "*", "*", true, false, kAnyFile);
  Recorder rec(p, c.dir.Path());
  auto fail = [](TMySearchRec &) { throw EInOutError("no"); };
  p.OnListingZipFile = TListingFileEvent::Of(&fail);
  ASSERT_TRUE(p.HandleAllFilesIn(c.dir.Path()));
  EXPECT_EQ(rec.lines, (Lines{"start ~/b.zip", "start ~/d-damaged.zip", "file a.txt"}));
  rec.onFile = [](const TMySearchRec &) { throw EInOutError("the tool gave up"); };
  EXPECT_FALSE(p.HandleAllFilesIn(c.dir.Path()));
}

TEST(PeruseDir, AFileWithoutADateStampListsAsTheFirstOf1970) {
  TempDir dir;
  dir.WriteFile("old.txt", "from before stamps");
  dir.WriteFile("new.txt", "today");
  struct timespec times[2] = {{157766400, 0}, {157766400, 0}}; // 1975: no stamp for it
  ASSERT_EQ(utimensat(AT_FDCWD, (dir / "old.txt").c_str(), times, 0), 0);
  TPeruseDir p("*.txt", "*", "*", false, false, kAnyFile);
  TFolderful f(dir.Path());
  f.FillList(&p);
  ASSERT_EQ(f.fGetTotalFiles(), 2);
  f.fSetSort(TMySearchRecSort::by_date); // newest first
  EXPECT_EQ(f.fGetASearchRec(1).Name, "old.txt");
  EXPECT_EQ(f.fGetASearchRec(1).Date, EncodeDateDay(1970, 1));
  // The events' pass takes the stamp as it is, and the host refuses it.
  Recorder rec(p, dir.Path());
  EXPECT_FALSE(p.HandleAllFilesIn(dir.Path()));
}

// Folders: a/ a/deep/ a/deep/er/ b.d/ c/ .dot/ .dot/inside/ and a file.
struct Tree {
  TempDir dir;
  Tree() {
    for (const char *d : {"a", "a/deep", "a/deep/er", "b.d", ".dot", ".dot/inside", "c"})
      EXPECT_TRUE(CreateDir(dir / d));
    dir.WriteFile("file-not-folder", "x");
  }
};

TEST(PeruseDir, FoldersDepthFirstByEachMask) {
  const struct {
    const char *masks;
    Lines lines;
  } rows[] = {
      {"*", {"dir ~/a", "dir ~/a/deep", "dir ~/a/deep/er", "dir ~/b.d", "dir ~/c"}},
      // A mask applies at every level; "c" needs a dot that a folder without
      // one only gets for the test, so it takes nothing.
      {"a*;*.d;c", {"dir ~/a", "dir ~/b.d"}},
      {"", {}},
  };
  Tree t;
  for (const auto &r : rows) {
    TPeruseDir p("*.txt", r.masks, "*", false, false, kAnyFile);
    Recorder rec(p, t.dir.Path());
    p.ProcessAllSubDirectories(t.dir.Path());
    EXPECT_EQ(rec.lines, r.lines) << r.masks;
  }
  TPeruseDir twice("*.txt", "*;*.", "*", false, false, kAnyFile);
  twice.ProcessAllSubDirectories(t.dir.Path());
  EXPECT_EQ(twice.fDirsFound, 5 + 4); // "*." takes the folders without a dot

  // A stop ends the walk; every step yields.
  TPeruseDir q("*.txt", "*", "*", false, false, kAnyFile);
  int seen = 0, yields = 0;
  auto stop = [&](const std::string &) {
    ++seen;
    q.fCarryOn = false;
  };
  auto yield = [&] { ++yields; };
  q.OnFoundDir = TFoundDirEvent::Of(&stop);
  AYieldProcessProc = TYieldProcessProc::Of(&yield);
  q.ProcessAllSubDirectories(t.dir.Path());
  EXPECT_EQ(seen, 1);
  q.fCarryOn = true;
  q.OnFoundDir = nullptr;
  q.ProcessAllSubDirectories(t.dir.Path());
  AYieldProcessProc = nullptr;
  EXPECT_GE(yields, 5);
}

// A caller that lists another folder from OnFoundDir must not lead the walk astray (the
// walk may take the reading of the folder it announced for the step below).
TEST(PeruseDir, ListingAnotherFolderFromOnFoundDirLeavesTheWalkAsItWas) {
  TempDir t;
  for (const char *name : {"a/1.txt", "a/deep/2.txt", "b/3.txt", "b/x/y/4.txt", "c.txt"})
    t.WriteFile(name, "x");
  const std::string root = t.Path();
  TPeruseDir p("*.txt", "*", "*", false, false, kAnyFile);
  Lines seen;
  auto found = [&](const std::string &folder) {
    seen.push_back(folder.substr(root.size()));
    std::unique_ptr<TMySearchRecList> files(p.ListofAllFilesIn(root));
    EXPECT_EQ(files->Count(), 1);
  };
  p.OnFoundDir = TFoundDirEvent::Of(&found);
  p.ProcessAllSubDirectories(root);
  EXPECT_EQ(seen, (Lines{"/a", "/a/deep", "/b", "/b/x", "/b/x/y"}));
}

} // namespace
} // namespace kestrel
