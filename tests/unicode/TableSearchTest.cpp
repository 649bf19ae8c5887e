// The property search answers for every code as the plain bisection of the
// stored tables does, and the batched string conversions as the code by code ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {
namespace {

// The stored bisection over a property's pairs, step by step as designed.
bool PlainProperty(const TTypeTable &t, UCS4 code, int n) {
  const auto &offsets = t.PropertyOffsets;
  int64_t l = offsets[size_t(n)];
  if (l == 0xFFFF) return false;
  size_t k = size_t(n) + 1;
  while (offsets[k] == 0xFFFF && k < t.Count)
    ++k;
  int64_t r = int64_t(offsets[k]) - 1;
  while (l <= r) {
    int64_t m = (l + r) >> 1;
    m -= m & 1;
    if (code > t.PropertyRanges[size_t(m) + 1])
      l = m + 2;
    else if (code < t.PropertyRanges[size_t(m)])
      r = m - 2;
    else
      return true;
  }
  return false;
}

} // namespace

TEST(TableSearch, EveryPropertyAnswersAsThePlainBisection) {
  const TTypeTable &t = TypeTable();
  ASSERT_EQ(t.Count, upPropertyCount);
  std::vector<UCS4> codes = {0x10000u, 0x1D400u, 0x10FFFFu, 0x110000u, 0x7FFFFFFFu, 0xFFFFFFFFu};
  for (UCS4 c = 0; c <= 0xFFFF; ++c)
    codes.push_back(c);
  for (int n = 0; n < upPropertyCount; ++n) {
    int differing = 0;
    for (UCS4 c : codes)
      differing += UnicodeLookupProperty(c, n) != PlainProperty(t, c, n);
    EXPECT_EQ(differing, 0) << UnicodePropertyLabels[n];
  }
}

// Strings of every unit shuffled and cut at odd lengths gather the mappable
// units into batches of every make-up; with the vector walk and without.
class StringConversions : public testing::TestWithParam<bool> {
protected:
  void SetUp() override {
    saved_ = chartables::VectorSearches;
    if (GetParam() && !saved_) GTEST_SKIP() << "the processor has no AVX2";
    chartables::VectorSearches = GetParam();
  }
  void TearDown() override { chartables::VectorSearches = saved_; }
  bool saved_ = false;
};

INSTANTIATE_TEST_SUITE_P(TableSearch, StringConversions, testing::Bool());

TEST_P(StringConversions, AnswerAsOneCodeAtATime) {
  std::u16string all;
  for (UCS4 c = 0; c <= 0xFFFF; ++c)
    all.push_back(char16_t(c));
  std::mt19937 rng(41);
  std::shuffle(all.begin(), all.end(), rng);
  struct Whole {
    UCS4 (*one)(UCS4);
    std::u16string (*map)(std::u16string_view);
  };
  for (Whole w : {Whole{UnicodeToUpper, WideUpperCase}, Whole{UnicodeToLower, WideLowerCase},
                  Whole{UnicodeToTitle, WideTitleCaseString}}) {
    for (size_t length : {all.size(), size_t(1), size_t(7), size_t(8), size_t(9), size_t(100)}) {
      const std::u16string_view part(all.data(), length);
      const std::u16string mapped = w.map(part);
      ASSERT_EQ(mapped.size(), length);
      int differing = 0;
      for (size_t i = 0; i < length; ++i)
        differing += mapped[i] != char16_t(w.one(part[i]));
      EXPECT_EQ(differing, 0) << length;
    }
  }
}

TEST(TableSearch, EytzingerLayoutFindsTheLastKeyNotAbove) {
  for (uint32_t count = 0; count < 40; ++count) {
    std::vector<uint32_t> keys, values, treeKeys{7}, treeValues{7};
    for (uint32_t i = 0; i < count; ++i) {
      keys.push_back(10 * i + 5);
      values.push_back(100 + i);
    }
    uint32_t depth = 0;
    TEytzingerTop top;
    BuildEytzinger(keys.data(), 1, values.data(), 1, count, treeKeys, treeValues, depth, top);
    ASSERT_EQ(treeKeys.size(), 1 + (size_t(1) << depth)) << "appended after what was there";
    ASSERT_LT(count, 1u << depth);
    for (uint32_t code : {0u, 4u, 5u, 6u, 15u, 10 * count + 4, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
      const uint32_t k = EytzingerPredecessor({treeKeys.data() + 1, depth, &top}, code);
      const auto above = std::upper_bound(keys.begin(), keys.end(), code);
      if (above == keys.begin()) {
        EXPECT_EQ(k, 0u) << count << " " << code;
      } else {
        ASSERT_NE(k, 0u) << count << " " << code;
        EXPECT_EQ(treeValues[1 + k], values[size_t(above - keys.begin()) - 1]) << count;
      }
    }
  }
}

} // namespace kestrel
