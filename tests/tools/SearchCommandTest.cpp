// The search command end to end: the built kestrel program over files that
// the tests write in each encoding.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "TestSupport.h"

namespace {

struct Result {
  int status;
  std::string out;
};

std::string Quote(const std::string &s) {
  std::string q = "'";
  for (char c : s)
    q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

Result Kestrel(const std::string &args) {
  std::string cmd = std::string(KESTREL_BINARY_DIR) + "/tools/kestrel search " + args + " 2>&1";
  Result r{-1, {}};
  FILE *p = ::popen(cmd.c_str(), "r");
  if (!p) return r;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0)
    r.out.append(buf, n);
  int status = ::pclose(p);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}

std::string Utf16(const std::u16string &s, bool bigEndian, bool mark) {
  std::string out = mark ? (bigEndian ? "\xFE\xFF" : "\xFF\xFE") : "";
  for (char16_t c : s) {
    char hi = static_cast<char>(c >> 8), lo = static_cast<char>(c & 0xFF);
    out += bigEndian ? std::string{hi, lo} : std::string{lo, hi};
  }
  return out;
}

bool Has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

} // namespace

TEST(SearchCommand, EveryEncodingGivesTheSameOffsets) {
  kestrel::test::TempDir dir;
  const std::u16string text = u"x\u00E9\n  the Kestrel \U00010400 kestrel.";
  dir.WriteFile("le.txt", Utf16(text, false, true));
  dir.WriteFile("be.txt", Utf16(text, true, true));
  dir.WriteFile("u8.txt", "x\xC3\xA9\n  the Kestrel \xF0\x90\x90\x80 kestrel.");
  dir.WriteFile("u8bom.txt", "\xEF\xBB\xBFx\xC3\xA9\n  the Kestrel \xF0\x90\x90\x80 kestrel.");
  for (const char *name : {"le.txt", "be.txt", "u8.txt", "u8bom.txt"}) {
    Result r = Kestrel("--json kestrel " + Quote(dir / name));
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_TRUE(Has(r.out, "\"start\": 9, \"stop\": 16, \"line\": 2, \"column\": 7"))
        << name << r.out;
    // The pair before the second match counts two units but one column.
    EXPECT_TRUE(Has(r.out, "\"start\": 20, \"stop\": 27, \"line\": 2, \"column\": 17"))
        << name << r.out;
  }
}

TEST(SearchCommand, FlagsMapToTheEngine) {
  kestrel::test::TempDir dir;
  dir.WriteFile("t.txt", "Kestrel kestrels a  b cre\xCC\x81"
                         "cerelle\n");
  const std::string f = Quote(dir / "t.txt");
  EXPECT_TRUE(Has(Kestrel("--json kestrel " + f).out, "\"start\": 8"));
  EXPECT_FALSE(Has(Kestrel("--json --case-sensitive Kestrel " + f).out, "\"start\": 8"));
  EXPECT_FALSE(Has(Kestrel("--json --whole-word kestrel " + f).out, "\"start\": 8"));
  EXPECT_TRUE(
      Has(Kestrel("--json --compress-space 'a b' " + f).out, "\"start\": 17, \"stop\": 21"));
  EXPECT_FALSE(Has(Kestrel("--json 'a b' " + f).out, "\"start\": 17"));
  EXPECT_TRUE(Has(Kestrel("--json --ignore-marks crecerelle " + f).out, "\"stop\": 33"));
}

TEST(SearchCommand, ConcordanceLinesAlignOnTheMatch) {
  kestrel::test::TempDir dir;
  dir.WriteFile("a.txt", "one falcon\nand a long line before the falcon here\n");
  Result r = Kestrel("--width 10 falcon " + Quote(dir / "a.txt"));
  EXPECT_EQ(r.status, 0) << r.out;
  size_t first = r.out.find("falcon"), line2 = r.out.find('\n') + 1;
  size_t second = r.out.find("falcon", line2);
  ASSERT_NE(second, std::string::npos) << r.out;
  EXPECT_EQ(first, second - line2) << r.out;
  EXPECT_TRUE(Has(r.out, "2 matches in 1 of 1 file")) << r.out;
  EXPECT_TRUE(Has(r.out, "efore the   falcon   here")) << r.out;
  EXPECT_TRUE(Has(r.out, "falcon   and a lon")) << r.out; // the break shows as a blank
}

TEST(SearchCommand, PatternFileAndCodePages) {
  kestrel::test::TempDir dir;
  dir.WriteFile("pattern.txt", Utf16(u"\xD800z\r\n", false, true)); // a lone half
  dir.WriteFile("t.txt", Utf16(u"ab\xD800zc", false, true));
  Result r =
      Kestrel("--json --pattern-file " + Quote(dir / "pattern.txt") + " " + Quote(dir / "t.txt"));
  EXPECT_TRUE(Has(r.out, "\"start\": 2, \"stop\": 4")) << r.out;

  dir.WriteFile("latin.txt", "caf\xE9 au lait");
  r = Kestrel("--json --encoding 1252 'caf\xC3\xA9' " + Quote(dir / "latin.txt"));
  EXPECT_TRUE(Has(r.out, "\"start\": 0, \"stop\": 4")) << r.out;
  r = Kestrel("--encoding cp1252 caf " + Quote(dir / "latin.txt"));
  EXPECT_EQ(r.status, 0) << r.out;
}

TEST(SearchCommand, ClearErrors) {
  kestrel::test::TempDir dir;
  dir.WriteFile("t.txt", "text");
  Result r = Kestrel("word " + Quote(dir / "missing.txt") + " " + Quote(dir / "t.txt"));
  EXPECT_EQ(r.status, 2); // a file that can't be read, as grep has it
  EXPECT_TRUE(Has(r.out, "missing.txt: No such file or directory")) << r.out;
  EXPECT_TRUE(Has(r.out, "0 matches in 0 of 2 files; 1 file could not be read")) << r.out;
  r = Kestrel("--encoding nonsense word " + Quote(dir / "t.txt"));
  EXPECT_EQ(r.status, 2);
  EXPECT_TRUE(Has(r.out, "unknown encoding")) << r.out;
  EXPECT_EQ(Kestrel("word").status, 2);
  EXPECT_EQ(Kestrel("--bogus word " + Quote(dir / "t.txt")).status, 2);
  EXPECT_EQ(Kestrel("--width -3 word " + Quote(dir / "t.txt")).status, 2);
}
