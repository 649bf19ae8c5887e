// kestrel search over a folder of texts in mixed encodings: each file read
// in its own, shown per file; search and convert take the same names.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

#include "TestSupport.h"

namespace {

using namespace std::string_literals;

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

std::string Utf16(const std::u16string &s, bool bigEndian) {
  std::string out;
  for (char16_t c : s) {
    const char hi = static_cast<char>(c >> 8), lo = static_cast<char>(c & 0xFF);
    out += bigEndian ? std::string{hi, lo} : std::string{lo, hi};
  }
  return out;
}

// "дом" (house) in five encodings, one file each.
class MixedFolder : public ::testing::Test {
protected:
  void SetUp() override {
    dir.WriteFile("utf8.txt", "\xD0\xB4\xD0\xBE\xD0\xBC \xD0\xB8 \xD1\x81\xD0\xB0\xD0\xB4\n");
    dir.WriteFile("le.txt", Utf16(u"\u0434\u043e\u043c \u0438 \u0441\u0430\u0434\n", false));
    dir.WriteFile("be.txt", "\xFE\xFF"s + Utf16(u"\u0434\u043e\u043c\n", true));
    dir.WriteFile("cp1251.txt", "\xE4\xEE\xEC \xE8 \xF1\xE0\xE4\n");
    dir.WriteFile("koi8.txt", "\xC4\xCF\xCD \xC9 \xD3\xC1\xC4\n");
  }
  kestrel::test::TempDir dir;
};

TEST_F(MixedFolder, EveryFileIsReadInItsOwnEncoding) {
  Result r =
      Kestrel("search --json --encoding 1251 '\xD0\xB4\xD0\xBE\xD0\xBC' " + Quote(dir.Path()));
  EXPECT_EQ(r.status, 0) << r.out;
  for (const char *seen : {"utf8.txt\", \"start\": 0, \"stop\": 3, \"line\": 1, \"column\": 1, "
                           "\"match\": \"\xD0\xB4\xD0\xBE\xD0\xBC\", \"encoding\": \"UTF-8\"",
                           "le.txt\", \"start\": 0, \"stop\": 3, \"line\": 1, \"column\": 1, "
                           "\"match\": \"\xD0\xB4\xD0\xBE\xD0\xBC\", \"encoding\": \"UTF-16LE\"",
                           "be.txt\", \"start\": 0, \"stop\": 3, \"line\": 1, \"column\": 1, "
                           "\"match\": \"\xD0\xB4\xD0\xBE\xD0\xBC\", \"encoding\": \"UTF-16BE\"",
                           "\"encoding\": \"windows-1251\""})
    EXPECT_TRUE(Has(r.out, seen)) << seen << "\n" << r.out;
  // The KOI8-R file shows no encoding and is read as 1251: no match there.
  EXPECT_FALSE(Has(r.out, "koi8.txt\", \"start\"")) << r.out;
}

TEST_F(MixedFolder, TheReportSaysHowEachFileWasRead) {
  Result r = Kestrel("search --report '\xD0\xB4\xD0\xBE\xD0\xBC' " + Quote(dir.Path()));
  EXPECT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, "utf8.txt: 1 match, UTF-8 (valid UTF-8)")) << r.out;
  EXPECT_TRUE(Has(r.out, "le.txt: 1 match, UTF-16LE (UTF-16 byte pattern)")) << r.out;
  EXPECT_TRUE(Has(r.out, "be.txt: 1 match, UTF-16BE (byte-order mark)")) << r.out;
  EXPECT_TRUE(Has(r.out, "cp1251.txt: 0 matches, windows-1252 (assumed)")) << r.out;
  // The files read as assumed get a note, and the count covers all five.
  EXPECT_TRUE(Has(r.out, "cp1251.txt: neither UTF-8 nor UTF-16, read as windows-1252")) << r.out;
  EXPECT_TRUE(Has(r.out, "3 matches in 3 of 5 files")) << r.out;

  r = Kestrel("search --json --report --encoding koi8-r '\xD0\xB4\xD0\xBE\xD0\xBC' " +
              Quote(dir / "koi8.txt"));
  EXPECT_TRUE(Has(r.out, "\"files\": [\n  {\"file\": ")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"encoding\": \"KOI8-R\", \"evidence\": \"as given\", \"matches\": 1}"))
      << r.out;
  EXPECT_FALSE(Has(r.out, "neither UTF-8")) << r.out; // asked for, so no note
}

TEST(SearchEncodings, SearchAndConvertTakeTheSameNames) {
  kestrel::test::TempDir dir;
  dir.WriteFile("u.txt", "\xC5\xBE\xC3\xA1\xC4\x89k \xD0\xB4\n"); // ž á ĉ д
  for (const char *name : {"latin1", "koi8-r", "shift_jis", "iso-8859-3", "cp1250",
                           "x-mac-cyrillic", "windows-1251", "utf-16be"}) {
    Result c = Kestrel("convert --from utf-8 --to " + std::string(name) + " " +
                       Quote(dir / "u.txt") + " " + Quote(dir / "out.txt"));
    EXPECT_EQ(c.status, 0) << name << c.out;
    Result s = Kestrel("search --encoding " + std::string(name) + " k " + Quote(dir / "out.txt"));
    EXPECT_EQ(s.status, 0) << name << s.out;
  }
  // ĉ is in ISO-8859-3 only: read back in it, it is still there.
  Kestrel("convert --from utf-8 --to iso-8859-3 " + Quote(dir / "u.txt") + " " +
          Quote(dir / "out.txt"));
  Result s = Kestrel("search --json --encoding iso-8859-3 '\xC4\x89k' " + Quote(dir / "out.txt"));
  EXPECT_TRUE(Has(s.out, "\"encoding\": \"ISO-8859-3\"")) << s.out;
  EXPECT_EQ(Kestrel("search --encoding klingon k " + Quote(dir / "u.txt")).status, 2);
}

} // namespace
