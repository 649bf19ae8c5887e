// Loading the character tables: byte order, missing and damaged resources,
// and the first question asked by many threads at once.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <latch>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>
#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {
namespace {

std::string Embedded(const char *name) {
  const ResourceBlob *blob = FindResourceBlob(KestrelModuleHandle(), name, "UNICODE");
  return blob ? std::string(reinterpret_cast<const char *>(blob->data), blob->size) : "";
}

// Puts other bytes in place of a table for the life of the object; the
// tables are freed on both sides so that the next question reads anew.
class SubstitutedTable {
public:
  SubstitutedTable(const char *name, std::string bytes, bool present = true)
      : name_(name), bytes_(std::move(bytes)) {
    ResourceBlob blob{present ? reinterpret_cast<const unsigned char *>(bytes_.data()) : nullptr,
                      bytes_.size()};
    previous_ = ReplaceResourceBlob(name_, "UNICODE", blob);
    FreeCharacterDatabase();
  }
  ~SubstitutedTable() {
    ReplaceResourceBlob(name_, "UNICODE", previous_);
    FreeCharacterDatabase();
  }

private:
  std::string name_, bytes_;
  ResourceBlob previous_;
};

// Reverses the bytes of each 16-bit or 32-bit value of a stored table. The
// layout is given as the widths of the values in order; the last width
// repeats to the end.
std::string Swapped(const std::string &bytes, const std::vector<std::pair<int, size_t>> &layout) {
  std::string out = bytes;
  size_t at = 0;
  for (const auto &[width, count] : layout)
    for (size_t i = 0; i < count && at + width <= out.size(); ++i, at += width)
      std::reverse(out.begin() + at, out.begin() + at + width);
  return out;
}

uint16_t Le16(const std::string &b, size_t at) {
  return uint16_t(uint8_t(b[at]) | uint8_t(b[at + 1]) << 8);
}

// Each table swapped as a big-endian writer would store it.
std::string SwappedTable(const char *name) {
  std::string b = Embedded(name);
  const size_t all = b.size();
  std::string n = name;
  if (n == "TYPE") {
    size_t count = Le16(b, 2), words = (count + 2) / 2 * 2;
    return Swapped(b, {{2, 2}, {4, 1}, {2, words}, {4, all}});
  }
  if (n == "CASE") return Swapped(b, {{2, 4}, {4, all}});
  if (n == "NUMBERS") return Swapped(b, {{2, 2}, {4, 1}, {4, Le16(b, 2)}, {2, all}});
  return Swapped(b, {{2, 2}, {4, all}}); // DECOMPOSE, COMBINE
}

// Copies of every stored part of the five tables.
auto Contents() {
  const TTypeTable &t = TypeTable();
  const TCaseTable &c = CaseTable();
  const TDecompositionTable &d = DecompositionTable();
  const TCombiningTable &m = CombiningTable();
  const TNumberTable &n = NumberTable();
  return std::make_tuple(t.Count, t.PropertyOffsets, t.PropertyRanges, c.CaseMap, c.CaseLength,
                         c.UpperLength, c.LowerLength, d.Rows, d.DecompositionNodes,
                         d.DecompositionData, m.Rows, m.CombiningNodes, n.Count, n.NumberNodes,
                         n.NumberValues);
}

TEST(CharTables, ByteSwappedTablesLoadTheSameValues) {
  const auto plain = Contents();
  const char *names[] = {"TYPE", "CASE", "DECOMPOSE", "COMBINE", "NUMBERS"};
  std::vector<std::unique_ptr<SubstitutedTable>> swapped;
  for (const char *name : names) {
    std::string bytes = SwappedTable(name);
    ASSERT_EQ(uint8_t(bytes[0]), 0xFE) << name; // the mark now reads 0xFFFE
    ASSERT_NE(bytes, Embedded(name)) << name;
    swapped.push_back(std::make_unique<SubstitutedTable>(name, bytes));
  }
  EXPECT_TRUE(Contents() == plain);
}

TEST(CharTables, AnyOtherMarkReadsAsLittleEndian) {
  std::string bytes = Embedded("NUMBERS");
  bytes[0] = 0x12;
  bytes[1] = 0x34;
  SubstitutedTable numbers("NUMBERS", bytes);
  EXPECT_EQ(UnicodeGetDigit(0x0037), 7);
  EXPECT_EQ(UnicodeGetNumber(0x00BD).Denominator, 2);
}

TEST(CharTables, MissingResourceRaisesInstallsNothingAndRetries) {
  {
    SubstitutedTable missing("TYPE", "", false);
    EXPECT_THROW(UnicodeIsAlpha(0x0041), EResNotFound);
    EXPECT_EQ(chartables::TypeTable.load(), nullptr);
    EXPECT_THROW(UnicodeIsDefined(0x0041), EResNotFound); // tried again, failed again
    // The lock was left: another thread can load a different table.
    std::thread other([] { EXPECT_EQ(UnicodeGetDigit(0x0035), 5); });
    other.join();
  }
  EXPECT_TRUE(UnicodeIsAlpha(0x0041)); // the resource is back: the next call loads it
  EXPECT_NE(chartables::TypeTable.load(), nullptr);
}

TEST(CharTables, ShortResourceLeavesZerosAndNeverReadsPast) {
  for (size_t keep : {size_t(0), size_t(1), size_t(8), size_t(50), size_t(109), size_t(2000)}) {
    SubstitutedTable type("TYPE", Embedded("TYPE").substr(0, keep));
    SubstitutedTable numbers("NUMBERS", Embedded("NUMBERS").substr(0, keep));
    for (UCS4 c : {0x0000u, 0x0041u, 0x00E9u, 0x4E00u, 0x10000u, 0xFFFFFFFFu}) {
      for (int n = 0; n < 49; ++n)
        UnicodeLookupProperty(c, n);
      UnicodeTestProperties(c, ~0u, ~0u);
      UnicodeGetNumber(c);
    }
    const TTypeTable &t = TypeTable();
    EXPECT_EQ(t.PropertyOffsets.size(), size_t(t.Count) + 1);
    EXPECT_EQ(t.PropertyRanges.size(), t.PropertyOffsets[t.Count]);
  }
  // A header alone: every count reads 0, so nothing holds.
  SubstitutedTable type("TYPE", Embedded("TYPE").substr(0, 2));
  EXPECT_FALSE(UnicodeIsAlpha(0x0041));
  EXPECT_FALSE(UnicodeTestProperties(0x0041, ~0u, ~0u));
}

TEST(CharTables, HostileCountsAllocateNoMoreThanTheResourceHolds) {
  // Sizes of 4 GiB and indexes far past the values.
  std::string numbers = Embedded("NUMBERS");
  std::memset(&numbers[4], 0xFF, 4);
  std::memset(&numbers[8 + 4], 0xFF, 4); // the index of the first row (U+0030)
  SubstitutedTable n("NUMBERS", numbers);
  EXPECT_EQ(NumberTable().NumberValues.size(), 96u);
  TUnicodeNumber zero = UnicodeGetNumber(0x0030);
  EXPECT_EQ(zero.Numerator, 0);
  EXPECT_EQ(zero.Denominator, 0);
  EXPECT_EQ(UnicodeGetDigit(0x0037), 7);

  std::string decompose = Embedded("DECOMPOSE");
  std::memset(&decompose[4], 0xFF, 4);
  SubstitutedTable d("DECOMPOSE", decompose);
  EXPECT_LE(DecompositionTable().DecompositionData.size() * 4, decompose.size());

  // Offsets that run past the ranges and go backwards.
  std::string type = Embedded("TYPE");
  for (int i = 0; i < 50; i += 3) {
    type[8 + 2 * i] = char(0xF0);
    type[8 + 2 * i + 1] = char(0x7F);
  }
  SubstitutedTable t("TYPE", type);
  for (UCS4 c = 0; c < 0x3000; c += 3)
    UnicodeTestProperties(c, ~0u, ~0u);
}

TEST(CharTables, ManyThreadsAskingFirstLoadEachTableOnce) {
  FreeCharacterDatabase();
  uint32_t before = chartables::ResourceReads.load();
  constexpr int kThreads = 16;
  std::latch start(kThreads);
  std::atomic<int> right{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      bool ok = i % 2 == 0 ? UnicodeIsAlpha(0x00E9) && !UnicodeIsAlpha(0x0031)
                           : UnicodeGetDigit(0x0039) == 9 && UnicodeIsDigit(0x0039);
      right += ok ? 1 : 0;
    });
  for (std::thread &t : threads)
    t.join();
  EXPECT_EQ(right.load(), kThreads);
  EXPECT_EQ(chartables::ResourceReads.load() - before, 2u); // TYPE and NUMBERS, once each
}

TEST(CharTables, TablesAreReadOnlyOnFirstNeed) {
  FreeCharacterDatabase();
  uint32_t before = chartables::ResourceReads.load();
  EXPECT_TRUE(UnicodeIsHan(0x4E00)); // fixed ranges read no table
  EXPECT_TRUE(UnicodeIsHangul(0xAC00));
  EXPECT_FALSE(UnicodeTestProperties(0x0041, 0, 0));
  EXPECT_EQ(chartables::ResourceReads.load(), before);
  EXPECT_EQ(chartables::TypeTable.load(), nullptr);
  UnicodeIsAlpha(0x0041);
  UnicodeIsAlpha(0x0042);
  EXPECT_EQ(chartables::ResourceReads.load(), before + 1);
  EXPECT_EQ(chartables::NumberTable.load(), nullptr);
}

} // namespace
} // namespace kestrel
