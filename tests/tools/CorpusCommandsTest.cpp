// kestrel scan, kestrel identify and kestrel search over folders and
// archives, end to end through the built program.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>

#include "TestSupport.h"
#include "ZipWriter.h"
#include <kestrel/vocabulary/WdefStoredFiles.h>

namespace {

using kestrel::test::TempDir;
using kestrel::test::WriteZip;

struct Result {
  int status;
  std::string out;
};

Result RunKestrel(const std::string &args) {
  const std::string cmd = std::string(KESTREL_BINARY_DIR) + "/tools/kestrel " + args + " 2>&1";
  Result r{-1, {}};
  FILE *p = ::popen(cmd.c_str(), "r");
  if (!p) return r;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0)
    r.out.append(buf, n);
  const int status = ::pclose(p);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}

bool Has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

// A corpus: a.txt, sub/b.txt, and c.zip whose third member is d/e.txt in
// UTF-16 with its mark.
struct Corpus {
  TempDir dir;
  Corpus() {
    dir.WriteFile("a.txt", "the kestrel hovers\n");
    EXPECT_EQ(::mkdir((dir / "sub").c_str(), 0755), 0);
    dir.WriteFile("sub/b.txt", "a kestrel in the sub-folder\n");
    std::string utf16 = "\xFF\xFE";
    for (char c : std::string("one kestrel in a member\n"))
      utf16 += std::string{c, '\0'};
    WriteZip(dir / "c.zip", {{"readme.doc", "no text"}, {"d/", ""}, {"d/e.txt", utf16}});
  }
};

TEST(ScanCommand, ListsFilesAndMembersWithTheirNumbers) {
  Corpus c;
  Result r = RunKestrel("scan --json " + c.dir.Path());
  ASSERT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, "\"name\":\"" + c.dir.Path() + "/c.zip/d/e.txt\"")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"zip_number\":3")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"name\":\"" + c.dir.Path() + "/a.txt\"")) << r.out;
  EXPECT_FALSE(Has(r.out, "sub/b.txt")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"zips_read\":1")) << r.out;

  r = RunKestrel("scan --recursive --members '*.txt' " + c.dir.Path());
  ASSERT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, c.dir.Path() + "/sub/b.txt")) << r.out;
  EXPECT_FALSE(Has(r.out, "readme.doc")) << r.out;
  EXPECT_TRUE(Has(r.out, "#3")) << r.out;

  r = RunKestrel("scan --no-zips " + c.dir.Path());
  EXPECT_FALSE(Has(r.out, "d/e.txt")) << r.out;
  EXPECT_FALSE(Has(r.out, "c.zip")) << r.out; // not opened, and not a file either
}

TEST(ScanCommand, Errors) {
  EXPECT_EQ(RunKestrel("scan /no/such/folder").status, 1);
  EXPECT_EQ(RunKestrel("scan").status, 2);
  EXPECT_EQ(RunKestrel("scan /tmp --bogus").status, 2);
  EXPECT_EQ(RunKestrel("scan /tmp --files 'a;b;c;d;e;f;g;h;i;j;k'").status, 1);
}

std::string Head32(int32_t number, const char *signature) {
  kestrel::TCheckSignature h{};
  h.signature_number = number;
  h.signature = signature;
  return std::string(reinterpret_cast<const char *>(&h), sizeof h) + "data";
}

TEST(IdentifyCommand, SaysKindToolExtensionAndFormat) {
  TempDir dir;
  dir.WriteFile("w.lst", Head32(37, "Word List32"));
  dir.WriteFile("k.kws", Head32(36, "Key Word List32"));
  dir.WriteFile("plain.txt", "just words");
  WriteZip(dir / "b.zip", {{"one.cnc", "x"}}, "Marlow Batch file .cnc");
  Result r = RunKestrel("identify " + dir / "w.lst" + " " + dir / "k.kws" + " " +
                        dir / "plain.txt" + " " + dir / "b.zip");
  ASSERT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, "w.lst: current 32-bit file, Word list (word_list), tool Tallyman, "
                         "extension .lst, format 37"))
      << r.out;
  EXPECT_TRUE(Has(r.out, "k.kws: older 32-bit file, Keyword list")) << r.out;
  EXPECT_TRUE(Has(r.out, "plain.txt: not a stored list of the suite")) << r.out;
  EXPECT_TRUE(Has(r.out, "b.zip: batch archive holding 1 list, Concordance list")) << r.out;

  r = RunKestrel("identify --json --tool lineups " + dir / "w.lst");
  ASSERT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, "\"status\":\"unrecognised\"")) << r.out; // 37 is past Lineups' 36
  r = RunKestrel("identify --json " + dir / "k.kws");
  EXPECT_TRUE(Has(r.out, "\"status\":\"older32\",\"list_type\":\"keyword_list\"")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"tool\":\"salients\"")) << r.out;
}

TEST(IdentifyCommand, Errors) {
  TempDir dir;
  EXPECT_EQ(RunKestrel("identify " + dir / "missing").status, 1);
  EXPECT_EQ(RunKestrel("identify --tool nobody " + dir.Path()).status, 2);
  EXPECT_EQ(RunKestrel("identify").status, 2);
}

TEST(SearchOverCorpus, FoldersArchivesAndMembersAsTexts) {
  Corpus c;
  Result r = RunKestrel("search kestrel " + c.dir.Path());
  ASSERT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, c.dir.Path() + "/c.zip/d/e.txt")) << r.out; // UTF-16 member
  EXPECT_TRUE(Has(r.out, "2 matches in 2 of 2 files")) << r.out;
  r = RunKestrel("search --recursive kestrel " + c.dir.Path());
  EXPECT_TRUE(Has(r.out, "3 matches in 3 of 3 files")) << r.out;
  r = RunKestrel("search --files '*.doc' text " + c.dir.Path());
  EXPECT_TRUE(Has(r.out, "readme.doc")) << r.out;
  r = RunKestrel("search --json kestrel " + c.dir / "c.zip");
  ASSERT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, "\"start\": 4, \"stop\": 11")) << r.out;
}

TEST(ScanCommand, AttributesAreUnsigned) {
  // The members of the sample archive carry Unix modes in their upper bits.
  const Result r = RunKestrel("scan --json " + std::string(KESTREL_SOURCE_DIR) + "/corpus");
  ASSERT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, "\"attr\":2175008768")) << r.out;
  EXPECT_FALSE(Has(r.out, "\"attr\":-")) << r.out;
}

TEST(IdentifyCommand, AFolderStandsForItsFiles) {
  TempDir dir;
  dir.WriteFile("w.lst", Head32(37, "Word List32"));
  dir.WriteFile("plain.txt", "just words");
  const Result r = RunKestrel("identify " + dir.Path());
  ASSERT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, dir.Path() + "/plain.txt: not a stored list")) << r.out;
  EXPECT_TRUE(Has(r.out, dir.Path() + "/w.lst: current 32-bit file")) << r.out;
  EXPECT_LT(r.out.find("plain.txt"), r.out.find("w.lst")) << r.out; // in name order
}

TEST(SearchOverCorpus, AFolderWhoseFilesTheMaskMissesIsNamed) {
  TempDir dir;
  dir.WriteFile("notes.md", "a kestrel");
  dir.WriteFile("more.md", "kestrels");
  Result r = RunKestrel("search kestrel " + dir.Path());
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.out, dir.Path() + ": none of its 2 files matches --files \"*.txt\"")) << r.out;
  r = RunKestrel("search --files '*.md' kestrel " + dir.Path());
  EXPECT_EQ(r.status, 0) << r.out;
  EXPECT_FALSE(Has(r.out, "none of its")) << r.out;
}

TEST(SearchOverCorpus, StandardInputIsADash) {
  const Result r =
      RunKestrel("search --json --report kestrel - < /dev/null; printf 'a kestrel' | " +
                 std::string(KESTREL_BINARY_DIR) + "/tools/kestrel search --json kestrel -");
  EXPECT_TRUE(Has(r.out, "{\"file\": \"(standard input)\", \"encoding\": \"UTF-8\"")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"file\": \"(standard input)\", \"start\": 2, \"stop\": 9")) << r.out;
}

TEST(CommandLine, BadOptionsGiveOneLine) {
  TempDir dir;
  dir.WriteFile("t.txt", "-x and text");
  struct Bad {
    std::string args, line;
  };
  for (const Bad &b :
       {Bad{"search --bogus word t", "kestrel search: unknown option --bogus (see kestrel search "
                                     "--help)\n"},
        Bad{"search -i word t", "kestrel search: unknown option -i (options take two dashes; put "
                                "-- before an argument that starts with -) (see kestrel search "
                                "--help)\n"},
        Bad{"scan -r /tmp", "kestrel scan: unknown option -r (options take two dashes; put -- "
                            "before an argument that starts with -) (see kestrel scan --help)\n"},
        Bad{"identify --bogus x", "kestrel identify: unknown option --bogus (see kestrel identify "
                                  "--help)\n"}}) {
    const Result r = RunKestrel(b.args);
    EXPECT_EQ(r.status, 2) << b.args;
    EXPECT_EQ(r.out, b.line);
  }
  // After --, a dash starts a pattern.
  const Result r = RunKestrel("search -- -x " + dir / "t.txt");
  EXPECT_EQ(r.status, 0) << r.out;
}

TEST(SearchOverCorpus, DamagedArchiveIsAnError) {
  TempDir dir;
  dir.WriteFile("bad.zip", std::string("PK\x03\x04", 4) + "not an archive");
  const Result r = RunKestrel("search kestrel " + dir / "bad.zip");
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.out, "not a readable ZIP archive")) << r.out;
}

} // namespace
