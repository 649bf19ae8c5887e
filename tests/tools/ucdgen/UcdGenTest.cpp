// The table generator on small and bad inputs; on the published data when it is at hand.
#include <gtest/gtest.h>

#include <sstream>

#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>
#include <tools/ucdgen/UcdGen.h>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrel::ucdgen;

// The SHA-256 digest of some bytes, by the system's sha256sum.
std::string Sha256Hex(const std::string &bytes) {
  kestrel::test::TempDir dir;
  dir.WriteFile("in", bytes);
  return kestrel::test::RunShell("sha256sum " + dir / "in").out.substr(0, 64);
}

// Little-endian reads of a generated table.
uint16_t U16(const std::string &b, size_t at) {
  return uint16_t(uint8_t(b.at(at)) | uint8_t(b.at(at + 1)) << 8);
}
uint32_t U32(const std::string &b, size_t at) {
  return uint32_t(U16(b, at)) | uint32_t(U16(b, at + 2)) << 16;
}

// The ranges of one property of a generated "TYPE" table.
std::vector<std::pair<uint32_t, uint32_t>> PropertyRanges(const std::string &type, int n) {
  uint16_t count = U16(type, 2);
  auto offset = [&](int i) { return U16(type, 8 + 2 * i); };
  size_t rangesAt = 8 + (count + 2) / 2 * 4;
  std::vector<std::pair<uint32_t, uint32_t>> ranges;
  if (offset(n) == 0xFFFF) return ranges;
  int k = n + 1;
  while (k < count && offset(k) == 0xFFFF)
    ++k;
  for (uint32_t i = offset(n); i + 1 < offset(k); i += 2)
    ranges.emplace_back(U32(type, rangesAt + 4 * i), U32(type, rangesAt + 4 * i + 4));
  return ranges;
}

GeneratedTables Generate(const std::string &text) {
  std::istringstream in(text);
  return GenerateTables(in);
}

const char *const kSmallData =
    "0030;DIGIT ZERO;Nd;0;EN;;0;0;0;N;;;;;\n"
    "0031;DIGIT ONE;Nd;0;EN;;1;1;1;N;;;;;\n"
    "0041;LATIN CAPITAL LETTER A;Lu;0;L;;;;;N;;;;0061;\n"
    "0042;LATIN CAPITAL LETTER B;Lu;0;L;;;;;N;;;;0062;\n"
    "0061;LATIN SMALL LETTER A;Ll;0;L;;;;;N;;;0041;;0041\n"
    "00BD;VULGAR FRACTION ONE HALF;No;0;ON;<fraction> 0031 2044 0032;;;1/2;N;;;;;\n"
    "00C0;LATIN CAPITAL LETTER A WITH GRAVE;Lu;0;L;0041 0300;;;;N;;;;00E0;\n"
    "00C2;LATIN CAPITAL LETTER A WITH CIRCUMFLEX;Lu;0;L;0041 0302;;;;N;;;;00E2;\n"
    "01C5;LATIN CAPITAL LETTER D WITH SMALL LETTER Z WITH CARON;Lt;0;L;<compat> 0044 017E;;;;N;;;"
    "01C4;01C6;\n"
    "0300;COMBINING GRAVE ACCENT;Mn;230;NSM;;;;;N;;;;;\n"
    "0301;COMBINING ACUTE ACCENT;Mn;230;NSM;;;;;N;;;;;\n"
    "0340;COMBINING GRAVE TONE MARK;Mn;230;NSM;0300;;;;N;;;;;\n"
    "1EA6;LATIN CAPITAL LETTER A WITH CIRCUMFLEX AND GRAVE;Lu;0;L;00C2 0300;;;;N;;;;1EA7;\n";

TEST(UcdGenTest, RejectsInputThatIsNotTheDataFile) {
  const char *bad[] = {
      "",                                                     // nothing
      "0041;LATIN CAPITAL LETTER A;Lu;0;L;;;;;N;;\n",         // too few fields
      "00G1;X;Lu;0;L;;;;;N;;;;;\n",                           // not hex
      "110000;X;Lu;0;L;;;;;N;;;;;\n",                         // above the code space
      "0042;B;Lu;0;L;;;;;N;;;;;\n0041;A;Lu;0;L;;;;;N;;;;;\n", // not ascending
      "0041;A;Xx;0;L;;;;;N;;;;;\n",                           // unknown category
      "0041;A;Lu;0;QQ;;;;;N;;;;;\n",                          // unknown direction
      "0041;A;Lu;x;L;;;;;N;;;;;\n",                           // bad class
      "0041;A;No;0;L;;;;-1/2;N;;;;;\n",                       // a number we cannot store
      "0041;A;No;0;L;;;;70000;N;;;;;\n",                      // a number above 16 bits
  };
  for (const char *text : bad)
    EXPECT_THROW(Generate(text), UcdError) << text;
}

// The rules on a small input; the full data is checked against the published
// digests and the committed tables below.
TEST(UcdGenTest, SmallInputBuildsEachTable) {
  GeneratedTables t = Generate(kSmallData);
  for (const std::string *table : {&t.type, &t.caseMap, &t.decompose, &t.combine, &t.numbers}) {
    ASSERT_GE(table->size(), 8u);
    EXPECT_EQ(U16(*table, 0), 0xFEFF); // the mark FF FE
  }
  // TYPE: 49 properties; the surrogates are the supplementary code points.
  EXPECT_EQ(U16(t.type, 2), 49);
  EXPECT_EQ(U32(t.type, 4), t.type.size() - 8);
  using R = std::vector<std::pair<uint32_t, uint32_t>>;
  EXPECT_EQ(PropertyRanges(t.type, 14),
            (R{{0x41, 0x42}, {0xC0, 0xC0}, {0xC2, 0xC2}, {0x1EA6, 0x1EA6}}));
  EXPECT_EQ(PropertyRanges(t.type, 39).at(2), (std::pair<uint32_t, uint32_t>{0x1EA6, 0x1EA6}));
  EXPECT_EQ(PropertyRanges(t.type, 13), R{});
  EXPECT_EQ(PropertyRanges(t.type, 11), (R{{0x10000, 0x10FFFF}}));
  // CASE: five upper rows, one lower, one title; a lower row without a title
  // mapping takes its upper one.
  EXPECT_EQ(U16(t.caseMap, 2), 7);
  EXPECT_EQ(U16(t.caseMap, 4), 5);
  EXPECT_EQ(U32(t.caseMap, 8 + 5 * 12 + 8), 0x41u);
  EXPECT_EQ(U32(t.caseMap, 8 + 6 * 12 + 8), 0x1C6u);
  // DECOMPOSE: 00C0, 00C2, 1EA6 expanded through 00C2 with a 0 closing each
  // mapping, then the 45 private-use rows; 0340 has one element and no row.
  const uint16_t rows = U16(t.decompose, 2);
  EXPECT_EQ(rows, 3 + 45);
  std::vector<uint32_t> run;
  for (uint32_t k = U32(t.decompose, 28); k < U32(t.decompose, 36); ++k)
    run.push_back(U32(t.decompose, 8 + 4 * (2 * size_t(rows) + 1) + 4 * k));
  EXPECT_EQ(run, (std::vector<uint32_t>{0x41, 0x302, 0, 0x300, 0}));
  // COMBINE: 0300 to 0301 folded, 0340 apart; NUMBERS: pairs in order of use.
  EXPECT_EQ(U16(t.combine, 2), 4);
  EXPECT_EQ(U32(t.combine, 12), 0x301u);
  EXPECT_EQ(U16(t.numbers, 2), 6);
  EXPECT_EQ(U16(t.numbers, 8 + 24 + 10), 2);
}

// The published data, when it is beside the repository.
class UcdGenFullTest : public ::testing::Test {
protected:
  static void SetUpTestSuite() {
    std::string shared = kestrel::test::SharedDataDir();
    if (shared.empty()) return;
    dir_ = shared + "/ucd-3.0.0";
    input_ = kestrel::test::ReadFileBytes(dir_ + "/UnicodeData.txt");
    tables_ = Generate(input_);
  }
  void SetUp() override {
    if (dir_.empty()) GTEST_SKIP() << "the Unicode data is not beside the repository";
  }
  static inline std::string dir_, input_;
  static inline GeneratedTables tables_;
};

const std::pair<std::string, std::string GeneratedTables::*> kTables[] = {
    {"TYPE", &GeneratedTables::type},
    {"CASE", &GeneratedTables::caseMap},
    {"DECOMPOSE", &GeneratedTables::decompose},
    {"COMBINE", &GeneratedTables::combine},
    {"NUMBERS", &GeneratedTables::numbers}};

TEST_F(UcdGenFullTest, InputAndTablesMatchThePublishedDigests) {
  EXPECT_EQ(Sha256Hex(input_), "f41d967bc458ee106f0c3948bfad71cd0860d96c49304e3fd02eaf2bbae4b6d9");
  const std::string readme = kestrel::test::ReadFileBytes(dir_ + "/README.md");
  for (const auto &[name, table] : kTables) {
    if (name == "DECOMPOSE") continue;                  // the data publishes no digest for it
    const size_t at = readme.find("\n| " + name + " "); // | name | size | digest |
    ASSERT_NE(at, std::string::npos) << name << ": the README's digest table was not found";
    const std::string digest = Sha256Hex(tables_.*table);
    ASSERT_EQ(digest.size(), 64u) << "sha256sum did not run";
    const std::string row = readme.substr(at, readme.find('\n', at + 1) - at);
    EXPECT_NE(row.find(" " + digest + " |"), std::string::npos) << row;
  }
}

TEST_F(UcdGenFullTest, CommittedAndEmbeddedTablesAreTheGeneratedOnes) {
  for (const auto &[name, table] : kTables) {
    const std::string committed = kestrel::test::ReadFileBytes(
        std::string(KESTREL_SOURCE_DIR) + "/kestrel/unicode/data/" + name + ".bin");
    const kestrel::ResourceBlob *b =
        kestrel::FindResourceBlob(kestrel::KestrelModuleHandle(), name, "UNICODE");
    EXPECT_TRUE(committed == tables_.*table) << name << " differs from a fresh generation";
    ASSERT_NE(b, nullptr) << name;
    EXPECT_TRUE(std::string(reinterpret_cast<const char *>(b->data), b->size) == tables_.*table)
        << name << " embedded differs";
  }
}

} // namespace
