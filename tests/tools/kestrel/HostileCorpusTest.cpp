// kestrel over a hostile corpus: each run ends, names what it passed by or could not read,
// keeps every other result, exits 2 and leaves nothing in the temporary folder.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"
#include "support/ZipWriter.h"

namespace {

using kestrel::test::KestrelRun;
using kestrel::test::ReadFileBytes;
using kestrel::test::TempDir;
using kestrel::test::WriteZip;
namespace fs = std::filesystem;

// kestrel with TMPDIR at tmp, as "nobody" under root (so that permissions hold), killed
// after `seconds`, sent SIGTERM after signalAfterMs and bounded to addressSpaceMiB if > 0.
KestrelRun Kestrel(const std::vector<std::string> &args, const std::string &tmp, int seconds = 60,
                   int signalAfterMs = 0, int addressSpaceMiB = 0) {
  TempDir outputs;
  std::string line = "(";
  if (addressSpaceMiB > 0) line += "ulimit -v " + std::to_string(addressSpaceMiB << 10) + "; ";
  line += "TMPDIR='" + tmp + "' timeout -s KILL " + std::to_string(seconds) + " ";
  if (signalAfterMs > 0) line += "timeout " + std::to_string(signalAfterMs / 1000.0) + " ";
  if (::geteuid() == 0) line += "setpriv --reuid=65534 --regid=65534 --clear-groups ";
  line += std::string(KESTREL_BINARY_DIR) + "/tools/kestrel";
  for (const std::string &a : args)
    line += " '" + a + "'";
  line += " </dev/null >" + outputs / "out" + " 2>" + outputs / "err" + ")";
  const kestrel::test::ShellRun run = kestrel::test::RunShell(line);
  if (run.status == 128 + SIGKILL)
    ADD_FAILURE() << "kestrel did not end within " << seconds << " s";
  return {run.status > 123 ? -1 : run.status, ReadFileBytes(outputs / "out"),
          ReadFileBytes(outputs / "err")};
}

bool Has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

std::vector<std::string> Left(const std::string &folder) {
  std::vector<std::string> names;
  for (const auto &e : fs::directory_iterator(folder))
    names.push_back(e.path().filename());
  return names;
}

// A temporary folder that everyone may read.
struct ReadableDir : TempDir {
  ReadableDir() { ::chmod(Path().c_str(), 0755); }
};

// Link loops, a FIFO, a device, an unreadable file, damaged archives and members, a folder
// named like an archive, a line break in a member's name, a member that inflates.
struct Hostile {
  ReadableDir dir;
  TempDir tmp;
  std::string c = dir / "c";
  Hostile() {
    ::chmod(tmp.Path().c_str(), 0777);
    dir.WriteFile("c/a.txt", "a kestrel in a plain file\n");
    dir.WriteFile("c/sub/b.txt", "a kestrel in a sub-folder\n");
    fs::create_directory_symlink("..", c + "/sub/up");         // a loop
    fs::create_directory_symlink(c + "/sub", c + "/sub/here"); // another
    ::mkfifo((c + "/pipe.txt").c_str(), 0644);
    fs::create_symlink("/dev/zero", c + "/zero.txt");
    dir.WriteFile("c/closed.txt", "a kestrel nobody may read\n");
    ::chmod((c + "/closed.txt").c_str(), 0);
    dir.WriteFile("c/bad.zip", "PK\x03\x04 but no archive");
    // A member whose data no longer fits its CRC.
    const std::string payload(400, 'k');
    WriteZip(c + "/crc.zip", {{"crc.txt", payload, 0, true}, {"fine.txt", "kestrel fine"}});
    std::string bytes = ReadFileBytes(c + "/crc.zip");
    bytes[bytes.find(payload) + 10] = 'X';
    dir.WriteFile("c/crc.zip", bytes);
    // A folder named like an archive, beside an archive of that name.
    fs::create_directories(c + "/corpus.zipped");
    WriteZip(c + "/corpus.zip", {{"inner.txt", "kestrel of corpus.zip\n"}});
    WriteZip(c + "/corpus.zipped/inner.zip", {{"inner.txt", "kestrel of inner.zip\n"}});
    // A line break in a member's name, and a member far larger than its archive.
    WriteZip(c + "/names.zip",
             {{"two\nlines.txt", "kestrel\n"}, {"bomb.txt", std::string(4 << 20, 'k')}});
  }
};

TEST(HostileCorpus, ScanSearchAndWordsReportEachProblemAndKeepTheRest) {
  Hostile h;
  const KestrelRun r = Kestrel({"scan", "--recursive", h.c}, h.tmp.Path());
  EXPECT_EQ(r.status, 2) << r.err;
  for (const char *name : {"/a.txt", "/sub/b.txt", "/crc.zip/fine.txt", "/corpus.zip/inner.txt",
                           "/corpus.zipped/inner.zip/inner.txt", "/names.zip/two\\nlines.txt"})
    EXPECT_TRUE(Has(r.out, h.c + name)) << name << "\n" << r.out;
  EXPECT_FALSE(Has(r.out, "two\nlines")) << r.out; // no raw line break to fake a line
  EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 10) << r.out; // 9 entries, summary
  EXPECT_TRUE(Has(r.err, h.c + "/bad.zip: Not a zip archive")) << r.err;
  EXPECT_TRUE(Has(r.err, "note: " + h.c + "/pipe.txt: a FIFO (named pipe), not read")) << r.err;
  EXPECT_TRUE(Has(r.err, "note: " + h.c + "/zero.txt: a device, not read")) << r.err;
  EXPECT_TRUE(Has(r.err, "note: " + h.c + "/sub/up: a link to a folder, not followed")) << r.err;
  EXPECT_TRUE(Has(r.out, "1 file could not be read (Not a zip archive: 1)")) << r.out;

  const KestrelRun followed = Kestrel({"scan", "--recursive", "--follow-links", h.c}, h.tmp.Path());
  EXPECT_EQ(followed.status, 2) << followed.err;
  EXPECT_TRUE(Has(followed.err, h.c + "/sub/up: a folder walked already")) << followed.err;
  EXPECT_EQ(std::count(followed.out.begin(), followed.out.end(), '\n'), 10) << followed.out;

  const KestrelRun s = Kestrel(
      {"search", "--recursive", "--files", "*.txt", "--max-file-size", "1M", "kestrel", h.c},
      h.tmp.Path());
  EXPECT_EQ(s.status, 2) << s.err;
  // Each member labelled with its own archive and read from it.
  EXPECT_TRUE(Has(s.out, h.c + "/corpus.zipped/inner.zip/inner.txt")) << s.out;
  EXPECT_TRUE(Has(s.out, "kestrel   of inner.zip")) << s.out;
  EXPECT_EQ(std::count(s.out.begin(), s.out.end(), '\n'), 7) << s.out;
  EXPECT_TRUE(Has(s.out, "6 matches in 6 of 9 files; 3 files could not be read (CRC error: 1, "
                         "Not a zip archive: 1, Permission denied: 1)"))
      << s.out;
  EXPECT_TRUE(Has(s.out, h.c + "/names.zip/two\\nlines.txt")) << s.out;
  // Each problem named with its reason.
  for (const std::string &line :
       {h.c + "/bad.zip: Not a zip archive", h.c + "/closed.txt: Permission denied",
        h.c + "/crc.zip/crc.txt: CRC error",
        "note: " + h.c + "/names.zip/bomb.txt: larger than --max-file-size (4.0 MiB > 1.0 MiB)",
        "note: " + h.c + "/pipe.txt: a FIFO (named pipe), not read"})
    EXPECT_TRUE(Has(s.err, line)) << line << "\n" << s.err;
  const KestrelRun w = Kestrel(
      {"words", "--recursive", "--files", "*.txt", "--max-file-size", "1M", "--format", "tsv", h.c},
      h.tmp.Path());
  EXPECT_EQ(w.status, 2) << w.err;
  // The six readable texts that hold it, each member read from its own archive.
  EXPECT_TRUE(Has(w.out, "\tkestrel\t6\t")) << w.out;
  EXPECT_TRUE(Has(w.out, "\tzip\t2\t")) << w.out; // "of inner.zip", "of corpus.zip"
  for (const std::string &line :
       {"kestrel words: " + h.c + "/bad.zip: Not a zip archive",
        "kestrel words: " + h.c + "/closed.txt: Permission denied",
        "kestrel words: " + h.c + "/crc.zip/crc.txt: CRC error",
        "note: " + h.c + "/names.zip/bomb.txt: larger than --max-file-size (4.0 MiB > 1.0 MiB)",
        "note: " + h.c + "/pipe.txt: a FIFO (named pipe), not read",
        std::string("3 files could not be read (CRC error: 1, Not a zip archive: 1, "
                    "Permission denied: 1)")})
    EXPECT_TRUE(Has(w.err, line)) << line << "\n" << w.err;
  EXPECT_TRUE(Left(h.tmp.Path()).empty());
}

// A text larger than the memory the run may take is one failure named with
// its file (the bare "std::bad_alloc" named none), and the run goes on.
TEST(HostileCorpus, ATextBeyondTheMemoryIsOneFailureNamed) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "a bound on the address space does not go with AddressSanitizer";
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
  GTEST_SKIP() << "a bound on the address space does not go with AddressSanitizer";
#endif
#endif
  ReadableDir dir;
  dir.WriteFile("a.txt", "a kestrel\n");
  const std::string big = dir / "big.txt";
  const int fd = ::open(big.c_str(), O_WRONLY | O_CREAT, 0644);
  ASSERT_EQ(::ftruncate(fd, int64_t(768) << 20), 0); // sparse: no disk taken
  ::close(fd);
  for (const char *command : {"search", "words"}) {
    std::vector<std::string> args{command, dir / "a.txt", big};
    if (args[0] == "search") args.insert(args.begin() + 1, "kestrel");
    const KestrelRun r = Kestrel(args, dir.Path(), 60, 0, 512);
    EXPECT_EQ(r.status, 2) << command << "\n" << r.err;
    EXPECT_TRUE(Has(r.err, big + ": out of memory")) << command << "\n" << r.err;
    EXPECT_TRUE(Has(r.out, "kestrel")) << command << "\n" << r.out;
  }
}

TEST(HostileCorpus, IdentifyJudgesEveryFileItCanRead) {
  Hostile h;
  const KestrelRun r = Kestrel({"identify", h.c + "/pipe.txt", h.c + "/closed.txt",
                                h.c + "/zero.txt", h.c + "/gone.txt", h.c + "/a.txt"},
                               h.tmp.Path(), 20);
  EXPECT_EQ(r.status, 2) << r.err;
  EXPECT_TRUE(Has(r.out, h.c + "/a.txt: not a stored list")) << r.out;
  for (const std::string &line :
       {h.c + "/pipe.txt: a FIFO (named pipe), not a file", h.c + "/closed.txt: Permission denied",
        h.c + "/zero.txt: a device, not a file", h.c + "/gone.txt: No such file or directory",
        std::string("4 files could not be read")})
    EXPECT_TRUE(Has(r.err, line)) << line << "\n" << r.err;
}

TEST(HostileCorpus, SizesPast2GiBAreNotNegative) {
  ReadableDir dir;
  const std::string big = dir / "big.txt";
  const int fd = ::open(big.c_str(), O_WRONLY | O_CREAT, 0644);
  ASSERT_EQ(::ftruncate(fd, int64_t(3) << 30), 0); // sparse: no disk taken
  ::close(fd);
  const KestrelRun r = Kestrel({"scan", dir.Path()}, dir.Path());
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(r.out, "3221225472  ")) << r.out;
  const KestrelRun json = Kestrel({"scan", "--json", dir.Path()}, dir.Path());
  EXPECT_TRUE(Has(json.out, "\"size\":3221225472,")) << json.out;
  // And a search passes it by under the default limit of 1 GiB.
  const KestrelRun search = Kestrel({"search", "kestrel", big}, dir.Path());
  EXPECT_EQ(search.status, 1) << search.err; // nothing found, nothing failed
  EXPECT_TRUE(Has(search.err, "larger than --max-file-size (3.0 GiB > 1.0 GiB)")) << search.err;
}

TEST(HostileCorpus, TerminatedSearchLeavesNoTemporaryFiles) {
  Hostile h;
  // A member that takes a while to search, so that the signal comes mid-run.
  std::string text;
  for (int i = 0; i < 400000; ++i)
    text += "kestrel ";
  WriteZip(h.dir / "slow.zip", {{"slow.txt", text}});
  ::chmod((h.dir / "slow.zip").c_str(), 0644);
  const KestrelRun r =
      Kestrel({"search", "--regex", "k[a-z]*l", h.dir / "slow.zip"}, h.tmp.Path(), 60, 300);
  EXPECT_NE(r.status, 0);
  EXPECT_TRUE(Left(h.tmp.Path()).empty());
}

TEST(HostileCorpus, ResultsPerTextAreBounded) {
  ReadableDir dir;
  dir.WriteFile("a.txt", std::string(50000, 'a') + "\n");
  const std::string a = dir / "a.txt";
  struct Row {
    const char *options; // of search, before the file
    int status;
    const char *out, *err;
  } rows[] = {
      {"--max-count 3 a", 0, "3 matches in 1 of 1 file", ""},
      {"--regex --max-count 2 a+|b", 0, "1 match in 1 of 1 file", ""},
      {"--regex --single-pass --max-count 4 a", 0, "4 matches", ""},
      {"--regex q*", 1, "0 matches", "more than 10000 empty matches"},
      {"--regex --single-pass ^", 1, "0 matches", "more than 10000 empty matches"},
      {"--max-file-size 12Q a", 2, "", "--max-file-size needs a size"},
      // The limit holds for texts read whole (here: marks ignored), not for UTF-8 read by blocks.
      {"--max-file-size 10K --ignore-marks a", 1, "0 matches",
       "larger than --max-file-size (48.8 KiB > 10.0 KiB)"},
      {"--max-file-size 10K --max-count 5 a", 0, "5 matches", ""},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.options);
    std::vector<std::string> args{"search"};
    std::istringstream options(r.options);
    for (std::string option; options >> option;)
      args.push_back(option);
    args.push_back(a);
    const KestrelRun run = Kestrel(args, dir.Path(), 30);
    EXPECT_EQ(run.status, r.status) << run.err;
    EXPECT_TRUE(Has(run.out, r.out)) << run.out;
    EXPECT_TRUE(Has(run.err, r.err)) << run.err;
  }
}

TEST(HostileCorpus, HostilePatternsAreRefusedQuicklyAndBriefly) {
  ReadableDir dir;
  dir.WriteFile("a.txt", "aaaaaaaaaaaa\n");
  dir.WriteFile("long.txt", std::string(500000, '(') + "a");
  for (const char *engine : {"--regex", "--single-pass"}) {
    for (const char *pattern : {"a{12}", "a{4294967297}", "a{1,99999999999}"}) {
      SCOPED_TRACE(std::string(engine) + " " + pattern);
      std::vector<std::string> args{"search", "--regex", pattern, dir / "a.txt"};
      if (std::string(engine) == "--single-pass") args.insert(args.begin() + 1, engine);
      const KestrelRun r = Kestrel(args, dir.Path(), 20);
      EXPECT_NE(r.status, -1);
      EXPECT_FALSE(Has(r.err, "not a valid integer")) << r.err;
      EXPECT_EQ(Has(r.err, "too large"), std::string(pattern) != "a{12}") << r.err;
    }
  }
  const KestrelRun r =
      Kestrel({"search", "--regex", "--pattern-file", dir / "long.txt", dir / "a.txt"}, dir.Path());
  EXPECT_TRUE(Has(r.err, "(500001 units): Unbalanced group")) << r.err.substr(0, 300);
  EXPECT_LT(r.err.size(), 300u);
}

TEST(HostileCorpus, AnArchiveIsReadOnceForAllItsMembers) {
  // Reading each member from a fresh reading of the archive took minutes
  // for a few thousand members; once for all, well under a second.
  ReadableDir dir;
  std::vector<kestrel::test::ZipEntry> members;
  for (int i = 0; i < 4000; ++i)
    members.push_back({"m" + std::to_string(i) + ".txt", "kestrel " + std::to_string(i) + "\n"});
  WriteZip(dir / "many.zip", members);
  ::chmod((dir / "many.zip").c_str(), 0644);
  const KestrelRun r = Kestrel({"search", "kestrel", dir / "many.zip"}, dir.Path(), 30);
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(Has(r.out, "4000 matches in 4000 of 4000 files")) << r.out.substr(0, 300);
}

} // namespace
