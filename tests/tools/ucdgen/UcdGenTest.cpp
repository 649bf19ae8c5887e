// The table generator: small inputs and bad input always; when the Unicode
// data is beside the repository, a full regeneration compared with the
// published digests, the committed files and the embedded resources.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>
#include <tools/ucdgen/UcdGen.h>

#include "TestSupport.h"

namespace {

using namespace kestrel::ucdgen;

// SHA-256 (FIPS 180-4), enough for comparing table digests.
std::string Sha256Hex(const std::string &message) {
  static const uint32_t k[64] = {
      0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4,
      0xab1c5ed5, 0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe,
      0x9bdc06a7, 0xc19bf174, 0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f,
      0x4a7484aa, 0x5cb0a9dc, 0x76f988da, 0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7,
      0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967, 0x27b70a85, 0x2e1b2138, 0x4d2c6dfc,
      0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85, 0xa2bfe8a1, 0xa81a664b,
      0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070, 0x19a4c116,
      0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
      0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7,
      0xc67178f2};
  uint32_t h[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                   0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  auto rotr = [](uint32_t x, int n) { return (x >> n) | (x << (32 - n)); };
  std::string padded = message;
  padded.push_back(char(0x80));
  while (padded.size() % 64 != 56)
    padded.push_back(0);
  uint64_t bits = uint64_t(message.size()) * 8;
  for (int i = 7; i >= 0; --i)
    padded.push_back(char((bits >> (8 * i)) & 0xFF));
  for (size_t block = 0; block < padded.size(); block += 64) {
    uint32_t w[64];
    for (int i = 0; i < 16; ++i) {
      const auto *p = reinterpret_cast<const unsigned char *>(&padded[block + 4 * i]);
      w[i] = uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
    }
    for (int i = 16; i < 64; ++i) {
      uint32_t s0 = rotr(w[i - 15], 7) ^ rotr(w[i - 15], 18) ^ (w[i - 15] >> 3);
      uint32_t s1 = rotr(w[i - 2], 17) ^ rotr(w[i - 2], 19) ^ (w[i - 2] >> 10);
      w[i] = w[i - 16] + s0 + w[i - 7] + s1;
    }
    uint32_t a = h[0], b = h[1], c = h[2], d = h[3], e = h[4], f = h[5], g = h[6], hh = h[7];
    for (int i = 0; i < 64; ++i) {
      uint32_t t1 =
          hh + (rotr(e, 6) ^ rotr(e, 11) ^ rotr(e, 25)) + ((e & f) ^ (~e & g)) + k[i] + w[i];
      uint32_t t2 = (rotr(a, 2) ^ rotr(a, 13) ^ rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
      hh = g;
      g = f;
      f = e;
      e = d + t1;
      d = c;
      c = b;
      b = a;
      a = t1 + t2;
    }
    uint32_t add[8] = {a, b, c, d, e, f, g, hh};
    for (int i = 0; i < 8; ++i)
      h[i] += add[i];
  }
  static const char *hex = "0123456789abcdef";
  std::string out;
  for (uint32_t v : h)
    for (int i = 28; i >= 0; i -= 4)
      out.push_back(hex[(v >> i) & 0xF]);
  return out;
}

TEST(UcdGenTest, Sha256KnownAnswers) {
  EXPECT_EQ(Sha256Hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(Sha256Hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(Sha256Hex(std::string(1000000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
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

TEST(UcdGenTest, SmallInputBuildsEachTable) {
  GeneratedTables t = Generate(kSmallData);

  for (const std::string *table : {&t.type, &t.caseMap, &t.decompose, &t.combine, &t.numbers}) {
    ASSERT_GE(table->size(), 8u);
    EXPECT_EQ(uint8_t((*table)[0]), 0xFF);
    EXPECT_EQ(uint8_t((*table)[1]), 0xFE);
  }
  // TYPE: 49 properties, the size field counts what follows the header.
  EXPECT_EQ(U16(t.type, 2), 49);
  EXPECT_EQ(U32(t.type, 4), t.type.size() - 8);
  using R = std::vector<std::pair<uint32_t, uint32_t>>;
  EXPECT_EQ(PropertyRanges(t.type, 14),
            (R{{0x41, 0x42}, {0xC0, 0xC0}, {0xC2, 0xC2}, {0x1EA6, 0x1EA6}}));
  EXPECT_EQ(PropertyRanges(t.type, 3), (R{{0x30, 0x31}}));
  R composite = PropertyRanges(t.type, 39); // then the private-use rows
  ASSERT_GE(composite.size(), 4u);
  EXPECT_EQ(R(composite.begin(), composite.begin() + 3),
            (R{{0xC0, 0xC0}, {0xC2, 0xC2}, {0x1EA6, 0x1EA6}}));
  EXPECT_EQ(composite[3].first, 0xE900u);
  EXPECT_EQ(PropertyRanges(t.type, 13), R{});
  EXPECT_EQ(PropertyRanges(t.type, 11), (R{{0x10000, 0x10FFFF}}));
  EXPECT_EQ(PropertyRanges(t.type, 12), (R{{0xE000, 0xF8FF}}));

  // CASE: upper 0041, 0042, 00C0, 00C2, 1EA6; lower 0061; title 01C5.
  EXPECT_EQ(U16(t.caseMap, 2), 7);
  EXPECT_EQ(U16(t.caseMap, 4), 5);
  EXPECT_EQ(U16(t.caseMap, 6), 1);
  ASSERT_EQ(t.caseMap.size(), 8u + 7 * 12);
  EXPECT_EQ(U32(t.caseMap, 8), 0x41u);
  EXPECT_EQ(U32(t.caseMap, 12), 0x61u);
  EXPECT_EQ(U32(t.caseMap, 16), 0x41u); // no title case: the character itself
  EXPECT_EQ(U32(t.caseMap, 8 + 5 * 12), 0x61u);
  EXPECT_EQ(U32(t.caseMap, 8 + 5 * 12 + 4), 0x41u);
  EXPECT_EQ(U32(t.caseMap, 8 + 6 * 12), 0x1C5u);
  EXPECT_EQ(U32(t.caseMap, 8 + 6 * 12 + 4), 0x1C4u);
  EXPECT_EQ(U32(t.caseMap, 8 + 6 * 12 + 8), 0x1C6u);

  // DECOMPOSE: 00C0, 00C2, 1EA6 (expanded through 00C2), then the 45
  // private-use rows; 0340 has one element and no row.
  uint16_t rows = U16(t.decompose, 2);
  EXPECT_EQ(rows, 3 + 45);
  size_t dataAt = 8 + 4 * (2 * size_t(rows) + 1);
  EXPECT_EQ(U32(t.decompose, 4), t.decompose.size() - 8);
  EXPECT_EQ(U32(t.decompose, 8), 0xC0u);
  EXPECT_EQ(U32(t.decompose, 16), 0xC2u);
  EXPECT_EQ(U32(t.decompose, 24), 0x1EA6u);
  std::vector<uint32_t> run, bare;
  for (uint32_t k = U32(t.decompose, 28); k < U32(t.decompose, 36); ++k)
    run.push_back(U32(t.decompose, dataAt + 4 * k));
  ASSERT_FALSE(run.empty());
  EXPECT_EQ(run.back(), 0u);
  for (uint32_t e : run)
    if (e != 0) bare.push_back(e);
  EXPECT_EQ(bare, (std::vector<uint32_t>{0x41, 0x302, 0x300}));

  // COMBINE: 0300 to 0301 folded (0340 too, but it is not next to them),
  // then the private-use marks.
  EXPECT_EQ(U16(t.combine, 2), 4);
  EXPECT_EQ(U32(t.combine, 8), 0x300u);
  EXPECT_EQ(U32(t.combine, 12), 0x301u);
  EXPECT_EQ(U32(t.combine, 16), 230u);
  EXPECT_EQ(U32(t.combine, 20), 0x340u);

  // NUMBERS: 0030 (0,0), 0031 (1,1), 00BD (1,2); pairs in order of first use.
  EXPECT_EQ(U16(t.numbers, 2), 6);
  EXPECT_EQ(U32(t.numbers, 4), 6u * 4 + 3 * 4);
  EXPECT_EQ(U32(t.numbers, 8 + 4 * 4), 0xBDu);
  EXPECT_EQ(U32(t.numbers, 8 + 5 * 4), 4u);
  EXPECT_EQ(U16(t.numbers, 8 + 24 + 8), 1);
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
  // table name -> (size, digest) from the data's README.
  std::map<std::string, std::pair<size_t, std::string>> PublishedDigests() const {
    std::map<std::string, std::pair<size_t, std::string>> out;
    std::ifstream in(dir_ + "/README.md");
    std::string line;
    std::regex row(R"(^\|\s*([A-Z]+)\s*\|\s*([0-9,]+)\s*\|\s*([0-9a-f]{64})\s*\|)");
    while (std::getline(in, line)) {
      std::smatch m;
      if (std::regex_search(line, m, row)) {
        std::string size = m[2];
        size.erase(std::remove(size.begin(), size.end(), ','), size.end());
        out[m[1]] = {std::stoul(size), m[3]};
      }
    }
    return out;
  }
  static std::string Committed(const std::string &name) {
    return kestrel::test::ReadFileBytes(std::string(KESTREL_SOURCE_DIR) + "/kestrel/unicode/data/" +
                                        name + ".bin");
  }
  static std::string EmbeddedBlob(const std::string &name) {
    const kestrel::ResourceBlob *b =
        kestrel::FindResourceBlob(kestrel::KestrelModuleHandle(), name, "UNICODE");
    return b ? std::string(reinterpret_cast<const char *>(b->data), b->size) : "";
  }
  const std::string &Table(const std::string &name) const {
    static const std::map<std::string, std::string GeneratedTables::*> members = {
        {"TYPE", &GeneratedTables::type},
        {"CASE", &GeneratedTables::caseMap},
        {"DECOMPOSE", &GeneratedTables::decompose},
        {"COMBINE", &GeneratedTables::combine},
        {"NUMBERS", &GeneratedTables::numbers}};
    return tables_.*members.at(name);
  }

  static inline std::string dir_, input_;
  static inline GeneratedTables tables_;
};

TEST_F(UcdGenFullTest, InputIsThePublishedFile) {
  EXPECT_EQ(Sha256Hex(input_), "f41d967bc458ee106f0c3948bfad71cd0860d96c49304e3fd02eaf2bbae4b6d9");
}

TEST_F(UcdGenFullTest, FourTablesMatchThePublishedDigests) {
  auto published = PublishedDigests();
  ASSERT_EQ(published.size(), 4u) << "the README's digest table was not found";
  for (const char *name : {"TYPE", "CASE", "COMBINE", "NUMBERS"}) {
    ASSERT_TRUE(published.count(name)) << name;
    EXPECT_EQ(Table(name).size(), published[name].first) << name;
    EXPECT_EQ(Sha256Hex(Table(name)), published[name].second) << name;
  }
}

TEST_F(UcdGenFullTest, CommittedAndEmbeddedTablesAreTheGeneratedOnes) {
  for (const char *name : {"TYPE", "CASE", "DECOMPOSE", "COMBINE", "NUMBERS"}) {
    EXPECT_TRUE(Committed(name) == Table(name)) << name << " differs from a fresh generation";
    EXPECT_TRUE(EmbeddedBlob(name) == Table(name)) << name << " embedded differs";
  }
}

TEST_F(UcdGenFullTest, DecompositionRowsAreTheCompositesWithTheirFullRuns) {
  const std::string &d = Table("DECOMPOSE");
  uint16_t rows = U16(d, 2);
  ASSERT_EQ(rows, 1033);
  size_t nodesAt = 8, dataAt = 8 + 4 * (2 * size_t(rows) + 1);
  uint32_t total = U32(d, nodesAt + 8 * rows);
  ASSERT_EQ(U32(d, 4), d.size() - 8);
  ASSERT_EQ(d.size(), dataAt + 4 * size_t(total));

  // The rows are exactly the Composite property of TYPE.
  std::set<uint32_t> composite;
  for (auto [a, b] : PropertyRanges(Table("TYPE"), 39))
    for (uint32_t c = a; c <= b; ++c)
      composite.insert(c);
  ASSERT_EQ(composite.size(), 1033u);

  // The full canonical decompositions, computed here from the data file.
  std::map<uint32_t, std::vector<uint32_t>> canonical;
  {
    std::istringstream in(input_);
    for (const UcdRecord &r : ReadUnicodeData(in))
      if (!r.decomposition.empty() && r.decomposition[0] != '<') {
        std::istringstream parts(r.decomposition);
        std::string hex;
        while (parts >> hex)
          canonical[r.code].push_back(uint32_t(std::stoul(hex, nullptr, 16)));
      }
  }
  std::function<void(uint32_t, std::vector<uint32_t> &)> expand = [&](uint32_t c, auto &out) {
    auto it = canonical.find(c);
    if (it == canonical.end())
      out.push_back(c);
    else
      for (uint32_t e : it->second)
        expand(e, out);
  };

  uint32_t previous = 0;
  size_t published = 0;
  for (uint16_t i = 0; i < rows; ++i) {
    uint32_t code = U32(d, nodesAt + 8 * i), start = U32(d, nodesAt + 8 * i + 4);
    // The next row's offset, or the closing number after the last row.
    uint32_t end = i + 1 < rows ? U32(d, nodesAt + 8 * (i + 1) + 4) : total;
    ASSERT_TRUE(i == 0 || code > previous) << "rows not ascending at " << code;
    previous = code;
    ASSERT_TRUE(composite.count(code)) << std::hex << code;
    ASSERT_LT(start, end) << std::hex << code;
    ASSERT_LE(end, total);
    std::vector<uint32_t> run;
    for (uint32_t k = start; k < end; ++k) {
      uint32_t e = U32(d, dataAt + 4 * k);
      ASSERT_LE(e, 0xFFFFu);
      if (e != 0) run.push_back(e);
    }
    ASSERT_EQ(U32(d, dataAt + 4 * (end - 1)), 0u) << "run of " << std::hex << code;
    if (code >= 0xE000 && code <= 0xF8FF) continue; // the private-use rows are checked below
    ++published;
    std::vector<uint32_t> expected;
    expand(code, expected);
    ASSERT_EQ(run, expected) << std::hex << code;
    ASSERT_LE(run.size(), 4u);
  }
  EXPECT_EQ(published, 1033u - 45u);
}

TEST_F(UcdGenFullTest, PrivateUseRowsStandInEveryTable) {
  const std::string &type = Table("TYPE");
  using R = std::vector<std::pair<uint32_t, uint32_t>>;
  auto within = [](const R &ranges, uint32_t c) {
    for (auto [a, b] : ranges)
      if (a <= c && c <= b) return true;
    return false;
  };
  R lo = PropertyRanges(type, 18), mn = PropertyRanges(type, 0), def = PropertyRanges(type, 46);
  for (uint32_t c = 0xE000; c <= 0xF8FF; ++c) {
    bool letter = (c >= 0xE900 && c <= 0xE90F) || (c >= 0xE915 && c <= 0xE939) ||
                  (c >= 0xE940 && c <= 0xE95A) || (c >= 0xE970 && c <= 0xE976) || c == 0xE97C ||
                  c == 0xE97D;
    bool mark = c == 0xE97B || c == 0xE97E || c == 0xE97F;
    ASSERT_EQ(within(lo, c), letter) << std::hex << c;
    ASSERT_EQ(within(mn, c), mark) << std::hex << c;
    ASSERT_EQ(within(def, c), letter || mark) << std::hex << c;
  }
  const std::string &combine = Table("COMBINE");
  bool e97b = false;
  for (uint16_t i = 0; i < U16(combine, 2); ++i)
    if (U32(combine, 8 + 12 * i) == 0xE97B) e97b = U32(combine, 8 + 12 * i + 8) == 36;
  EXPECT_TRUE(e97b);
}

} // namespace
