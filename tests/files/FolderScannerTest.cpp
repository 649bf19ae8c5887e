// The folder scanner over real folders and real archives.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "TestSupport.h"
#include "frame/ZipTestSupport.h"
#include <kestrel/files/PeruseDir.h>
#include <kestrel/frame/host/Host.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/search/myMasks.h>

namespace kestrel {
namespace {

using test::TempDir;
using test::WriteZip;

constexpr int32_t kAnyFile = 0x3F;

// Records every event of a scanner as one line.
struct Recorder {
  std::vector<std::string> lines;
  std::vector<TMySearchRec> recs;
  std::function<void(const TMySearchRec &)> onFile; // extra work per plain file

  void Attach(TPeruseDir &p) {
    p.OnZipStartReading = TZipStartReadingEvent::Bind<&Recorder::ZipStart>(this);
    p.OnListingZipFile = TListingFileEvent::Bind<&Recorder::Member>(this);
    p.OnListingFile = TListingFileEvent::Bind<&Recorder::File>(this);
    p.OnZipDoneReading = TZipDoneReadingEvent::Bind<&Recorder::ZipDone>(this);
    p.OnFoundDir = TFoundDirEvent::Bind<&Recorder::Dir>(this);
  }
  void ZipStart(const std::string &name) { lines.push_back("start " + name); }
  void Member(TMySearchRec &sr) {
    lines.push_back("member " + sr.Name + " #" + std::to_string(sr.ZipNumber));
    recs.push_back(sr);
  }
  void File(TMySearchRec &sr) {
    lines.push_back("file " + sr.Name + " #" + std::to_string(sr.ZipNumber));
    recs.push_back(sr);
    if (onFile) onFile(sr);
  }
  void ZipDone(int32_t n) { lines.push_back("done " + std::to_string(n)); }
  void Dir(const std::string &name) { lines.push_back("dir " + name); }
};

using Lines = std::vector<std::string>;

// A folder holding a.txt and b.zip, whose second member is sub/c.txt.
struct SmallCorpus {
  TempDir dir;
  std::string root = IncludeTrailingPathDelimiter(dir.Path());
  SmallCorpus() {
    dir.WriteFile("a.txt", "alpha text");
    WriteZip(dir / "b.zip", {{"x.dat", "refused by the member masks"}, {"sub/c.txt", "gamma"}});
  }
};

TEST(PeruseDirCreate, MaskStringsAndCounts) {
  TPeruseDir p("", "*;x*", "*.txt;*.htm;", true, false, kAnyFile);
  EXPECT_EQ(p.fFileMaskCount, 1); // an empty string still gives one mask
  EXPECT_EQ(p.fFileMask[0]->MaskText, "");
  EXPECT_EQ(p.fDirMaskCount, 2);
  EXPECT_EQ(p.fZipMaskCount, 3); // the trailing ";" adds an empty one
  EXPECT_EQ(p.fZipMask[2]->MaskText, "");
  EXPECT_EQ(p.fZipExtension, ".zip");
  EXPECT_TRUE(p.fCarryOn);
  EXPECT_TRUE(p.fLookInZips);
  EXPECT_FALSE(p.fZipsAsFiles);
  EXPECT_EQ(p.fAttributes, kAnyFile);
}

TEST(PeruseDirCreate, MoreThanTenMasksIsRefused) {
  EXPECT_THROW(TPeruseDir("a;b;c;d;e;f;g;h;i;j;k", "*", "*", true, false, 0), Exception);
  TPeruseDir ten("a;b;c;d;e;f;g;h;i;j", "*", "*", true, false, 0);
  EXPECT_EQ(ten.fFileMaskCount, 10);
}

TEST(PeruseDirNames, ZipFileTestAndMemberMasks) {
  TPeruseDir p("*.*", "*", "*.txt;c*;*", true, false, kAnyFile);
  EXPECT_FALSE(p.fIsAZipfile(".zip"));
  EXPECT_TRUE(p.fIsAZipfile("a.zip"));
  EXPECT_TRUE(p.fIsAZipfile("A.ZIP"));
  EXPECT_FALSE(p.fIsAZipfile("a.zipx"));
  EXPECT_EQ(p.fMatchesfZipMask("dir/c.txt"), 1);
  EXPECT_EQ(p.fMatchesfZipMask("dir.txt/core.dat"), 2); // the folder is not tested
  EXPECT_EQ(p.fMatchesfZipMask("other"), 3);
  TPeruseDir none("*.*", "*", "*.txt", true, false, kAnyFile);
  EXPECT_EQ(none.fMatchesfZipMask("a.doc"), 0);
}

TEST(PeruseDirScan, MembersFirstThenPlainFiles) {
  SmallCorpus c;
  TPeruseDir p("*.txt", "*", "*.txt", true, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  ASSERT_TRUE(p.HandleAllFilesIn(c.dir.Path()));
  EXPECT_EQ(r.lines, (Lines{"start " + c.root + "b.zip", "member " + c.root + "b.zip/sub/c.txt #2",
                            "done 1", "file a.txt #0"}));
  EXPECT_EQ(p.fZipsRead, 1);
  EXPECT_EQ(p.fZipMembersFound, 1);
  ASSERT_EQ(r.recs.size(), 2u);
  EXPECT_EQ(r.recs[0].Size, 5); // uncompressed size of the member
  EXPECT_EQ(r.recs[1].Size, 10);
  EXPECT_GT(r.recs[1].Date, 40000.0); // a real date of this century
}

TEST(PeruseDirScan, MissingEventScansNothing) {
  SmallCorpus c;
  TPeruseDir p("*.txt", "*", "*.txt", true, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  p.OnZipDoneReading = nullptr;
  EXPECT_FALSE(p.HandleAllFilesIn(c.dir.Path()));
  EXPECT_TRUE(r.lines.empty());
  EXPECT_EQ(p.fZipsRead, 0);
}

TEST(PeruseDirScan, EmptyFolderAndMissingFolder) {
  TempDir dir;
  TPeruseDir p("*.txt", "*", "*", true, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  EXPECT_TRUE(p.HandleAllFilesIn(dir.Path()));
  EXPECT_TRUE(p.HandleAllFilesIn(dir / "no-such-folder"));
  EXPECT_TRUE(r.lines.empty());
}

TEST(PeruseDirScan, ZipsAsFilesAndNoLookingInside) {
  SmallCorpus c;
  TPeruseDir p("*.*", "*", "*", false, true, kAnyFile);
  Recorder r;
  r.Attach(p);
  ASSERT_TRUE(p.HandleAllFilesIn(c.dir.Path()));
  EXPECT_EQ(r.lines, (Lines{"file a.txt #0", "file b.zip #0"}));
  TPeruseDir q("*.*", "*", "*", false, false, kAnyFile);
  Recorder s;
  s.Attach(q);
  ASSERT_TRUE(q.HandleAllFilesIn(c.dir.Path()));
  EXPECT_EQ(s.lines, (Lines{"file a.txt #0"}));
}

TEST(PeruseDirScan, MasksAreNotMergedAndTrailingSemicolonFindsNothingMore) {
  SmallCorpus c;
  TPeruseDir p("*.txt;a*;", "*", "*", false, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  ASSERT_TRUE(p.HandleAllFilesIn(c.dir.Path()));
  EXPECT_EQ(r.lines, (Lines{"file a.txt #0", "file a.txt #0"}));
}

TEST(PeruseDirScan, ZipSearchPatternFollowsTheFileMasks) {
  TempDir dir;
  WriteZip(dir / "alpha.zip", {{"m.txt", "m"}});
  WriteZip(dir / "beta.zip", {{"m.txt", "m"}});
  struct Case {
    const char *fileMasks;
    int32_t zipsRead;
  };
  for (const Case &c :
       {Case{"*.txt", 2}, Case{"b*.txt;*.doc", 1}, Case{"plain", 2}, Case{"z.txt", 0}}) {
    SCOPED_TRACE(c.fileMasks);
    TPeruseDir p(c.fileMasks, "*", "*", true, false, kAnyFile);
    Recorder r;
    r.Attach(p);
    ASSERT_TRUE(p.HandleAllFilesIn(dir.Path()));
    EXPECT_EQ(p.fZipsRead, c.zipsRead);
  }
}

TEST(PeruseDirScan, DamagedArchiveIsSkippedAndTheScanGoesOn) {
  TempDir dir;
  dir.WriteFile("a-damaged.zip", "PK\x03\x04 this is not really an archive at all");
  WriteZip(dir / "b-good.zip", {{"m.txt", "m"}});
  dir.WriteFile("c.txt", "c");
  TPeruseDir p("*.txt", "*", "*", true, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  ASSERT_TRUE(p.HandleAllFilesIn(dir.Path()));
  const std::string root = IncludeTrailingPathDelimiter(dir.Path());
  EXPECT_EQ(r.lines, (Lines{"start " + root + "a-damaged.zip", "start " + root + "b-good.zip",
                            "member " + root + "b-good.zip/m.txt #1", "done 1", "file c.txt #0"}));
  EXPECT_EQ(p.fZipsRead, 1);
}

TEST(PeruseDirScan, StoredPathsAreKeptAsTheyStand) {
  TempDir dir;
  WriteZip(dir / "odd.zip", {{"../escape.txt", "e"}, {"deep/er/f.txt", "f"}, {"folder/", ""}});
  TPeruseDir p("*.txt", "*", "*", true, false, kAnyFile);
  std::unique_ptr<TMySearchRecList> list(p.ListofAllFilesIn(dir.Path()));
  ASSERT_NE(list, nullptr);
  const std::string zip = IncludeTrailingPathDelimiter(dir.Path()) + "odd.zip/";
  ASSERT_EQ(list->Count(), 2); // the folder entry has no file name
  EXPECT_EQ(list->GetAMySearchRec(0).Name, zip + "../escape.txt");
  EXPECT_EQ(list->GetAMySearchRec(1).Name, zip + "deep/er/f.txt");
  EXPECT_EQ(list->GetAMySearchRec(1).ZipNumber, 2);
  // Nothing was written anywhere by listing.
  EXPECT_FALSE(FileExists(dir / "escape.txt"));
}

TEST(PeruseDirScan, CarryOnStopsEachMaskAfterItsCurrentMatch) {
  TempDir dir;
  for (const char *n : {"a1.txt", "a2.txt", "a3.txt", "b1.doc", "b2.doc"})
    dir.WriteFile(n, n);
  TPeruseDir p("*.txt;*.doc", "*", "*", false, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  r.onFile = [&](const TMySearchRec &) { p.fCarryOn = false; };
  ASSERT_TRUE(p.HandleAllFilesIn(dir.Path()));
  EXPECT_EQ(r.lines, (Lines{"file a1.txt #0", "file b1.doc #0"}));
}

TEST(PeruseDirScan, AnArchiveOnceOpenedIsListedToItsEnd) {
  TempDir dir;
  WriteZip(dir / "a.zip", {{"1.txt", "1"}, {"2.txt", "2"}, {"3.txt", "3"}});
  WriteZip(dir / "b.zip", {{"4.txt", "4"}});
  TPeruseDir p("*.txt", "*", "*", true, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  int members = 0;
  auto stop = [&](TMySearchRec &) {
    ++members;
    p.fCarryOn = false;
  };
  p.OnListingZipFile = TListingFileEvent::Of(&stop);
  ASSERT_TRUE(p.HandleAllFilesIn(dir.Path()));
  EXPECT_EQ(members, 3);
  EXPECT_EQ(p.fZipsRead, 1);
}

TEST(PeruseDirScan, ExceptionFromAnEventFailsTheScan) {
  SmallCorpus c;
  TPeruseDir p("*.txt", "*", "*", false, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  r.onFile = [](const TMySearchRec &) { throw EInOutError("the tool gave up"); };
  EXPECT_FALSE(p.HandleAllFilesIn(c.dir.Path()));
}

TEST(PeruseDirScan, ExceptionFromAnEventInsideAnArchiveSkipsTheArchive) {
  SmallCorpus c;
  TPeruseDir p("*.txt", "*", "*", true, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  auto fail = [](TMySearchRec &) { throw EInOutError("no"); };
  p.OnListingZipFile = TListingFileEvent::Of(&fail);
  ASSERT_TRUE(p.HandleAllFilesIn(c.dir.Path()));
  EXPECT_EQ(r.lines, (Lines{"start " + c.root + "b.zip", "file a.txt #0"}));
}

TEST(PeruseDirList, ListHoldsMembersThenFiles) {
  SmallCorpus c;
  TPeruseDir p("*.txt", "*", "*.txt", true, false, kAnyFile);
  std::unique_ptr<TMySearchRecList> list(p.ListofAllFilesIn(c.dir.Path()));
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->Count(), 2);
  EXPECT_EQ(list->GetAMySearchRec(0).Name, c.root + "b.zip/sub/c.txt");
  EXPECT_EQ(list->GetAMySearchRec(0).ZipNumber, 2);
  EXPECT_EQ(list->GetAMySearchRec(1).Name, "a.txt");
  EXPECT_EQ(list->GetAMySearchRec(1).ZipNumber, 0);
}

TEST(PeruseDirList, FolderfulFillsFromTheScanner) {
  SmallCorpus c;
  TPeruseDir p("*.txt", "*", "*.txt", true, false, kAnyFile);
  TFolderful f(c.dir.Path());
  f.FillList(&p);
  ASSERT_EQ(f.fGetTotalFiles(), 2);
  EXPECT_TRUE(f.fGetIsZipfile(0));
  EXPECT_EQ(f.fGetAFullname(0), c.root + "b.zip/sub/c.txt");
  EXPECT_EQ(f.fGetAFullname(1), c.root + "a.txt");
  f.fSetSort(TMySearchRecSort::by_size); // a.txt holds 10 bytes, the member 5
  EXPECT_EQ(f.fGetASearchRec(0).Name, "a.txt");
  EXPECT_FALSE(f.fGetIsZipfile(0));
}

TEST(PeruseDirList, AFileWithoutADateStampListsAsTheFirstOf1970) {
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
  EXPECT_EQ(f.fGetASearchRec(0).Name, "new.txt");
  EXPECT_EQ(f.fGetASearchRec(1).Name, "old.txt");
  EXPECT_EQ(f.fGetASearchRec(1).Date, EncodeDateDay(1970, 1));
  // The events' pass takes the stamp as it is, and the host refuses it.
  Recorder r;
  r.Attach(p);
  EXPECT_FALSE(p.HandleAllFilesIn(dir.Path()));
}

// Folders: a/ a/deep/ b.d/ .dot/ and a file named like a folder.
struct Tree {
  TempDir dir;
  std::string root = IncludeTrailingPathDelimiter(dir.Path());
  Tree() {
    for (const char *d : {"a", "a/deep", "a/deep/er", "b.d", ".dot", ".dot/inside", "c"})
      EXPECT_TRUE(CreateDir(dir / d));
    dir.WriteFile("file-not-folder", "x");
    dir.WriteFile("a/deep/f.txt", "x");
  }
};

TEST(PeruseDirFolders, DepthFirstParentsBeforeChildren) {
  Tree t;
  TPeruseDir p("*.txt", "*", "*", false, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  p.ProcessAllSubDirectories(t.dir.Path());
  EXPECT_EQ(r.lines,
            (Lines{"dir " + t.root + "a", "dir " + t.root + "a/deep", "dir " + t.root + "a/deep/er",
                   "dir " + t.root + "b.d", "dir " + t.root + "c"}));
  EXPECT_EQ(p.fDirsFound, 5);
}

TEST(PeruseDirFolders, MaskAppliesAtEveryLevelAndEachMaskWalksOnce) {
  Tree t;
  // "a*" takes a/ but not deep/ below it; "*.d" takes b.d/; "c" needs a dot
  // that a folder without one only gets for the test, so "c" takes nothing.
  TPeruseDir p("*.txt", "a*;*.d;c", "*", false, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  p.ProcessAllSubDirectories(t.dir.Path());
  EXPECT_EQ(r.lines, (Lines{"dir " + t.root + "a", "dir " + t.root + "b.d"}));
  TPeruseDir twice("*.txt", "*;*.", "*", false, false, kAnyFile);
  Recorder s;
  s.Attach(twice);
  twice.ProcessAllSubDirectories(t.dir.Path());
  EXPECT_EQ(twice.fDirsFound, 5 + 4); // "*." takes the folders without a dot
}

TEST(PeruseDirFolders, EmptyMaskFindsNothingAndCarryOnStops) {
  Tree t;
  TPeruseDir p("*.txt", "", "*", false, false, kAnyFile);
  Recorder r;
  r.Attach(p);
  p.ProcessAllSubDirectories(t.dir.Path());
  EXPECT_TRUE(r.lines.empty());
  TPeruseDir q("*.txt", "*", "*", false, false, kAnyFile);
  int seen = 0;
  auto stop = [&](const std::string &) {
    ++seen;
    q.fCarryOn = false;
  };
  q.OnFoundDir = TFoundDirEvent::Of(&stop);
  q.ProcessAllSubDirectories(t.dir.Path());
  EXPECT_EQ(seen, 1);
}

TEST(PeruseDirFolders, YieldIsCalledPerStep) {
  Tree t;
  struct Counter {
    int n = 0;
    void Tick() { ++n; }
  } counter;
  AYieldProcessProc = TYieldProcessProc::Bind<&Counter::Tick>(&counter);
  TPeruseDir p("*.txt", "*", "*", false, false, kAnyFile);
  p.ProcessAllSubDirectories(t.dir.Path());
  AYieldProcessProc = nullptr;
  EXPECT_GE(counter.n, 5);
}

} // namespace
} // namespace kestrel
