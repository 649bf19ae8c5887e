// Sorting a wide list on collation keys gives the order, ties included, that
// its quicksort gives through WideCompareText.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include <kestrel/unicode/CollationKeys.h>
#include <kestrel/unicode/Unicode.h>

using namespace kestrel;

namespace {

constexpr uint32_t kEnglishUS = 0x0409;
constexpr uint32_t kSwedish = 0x041D;
constexpr uint32_t kGerman = 0x0407;

// While alive, WideCompareText is a routine that compares as the platform's
// but is not it: keys do not stand in for it, so lists sort by comparing.
class CompareWithoutKeys {
public:
  CompareWithoutKeys() : saved_(WideCompareText) { WideCompareText = Through; }
  ~CompareWithoutKeys() { WideCompareText = saved_; }

private:
  static int32_t Through(std::u16string_view a, std::u16string_view b, uint32_t locale) {
    return WideCompareTextNT(a, b, locale);
  }
  TWideCompareText saved_;
};

// Words that tie under the list's order (case only), differ by accents only,
// share long prefixes, or repeat (one word in five is empty, one a single part).
std::vector<std::u16string> RandomWords(std::mt19937 &rng, size_t n) {
  static const char16_t *parts[] = {
      u"a", u"A",    u"\u00E4", u"\u00C4", u"e",  u"\u00E9", u"z",
      u"Z", u"stra", u"\u00DF", u"ss",     u"-",  u" ",      u"'",
      u"1", u"10",   u"\u0436", u"\u4E2D", u"ab", u"AB",     u"internationalisation"};
  std::vector<std::u16string> words(n);
  for (std::u16string &w : words)
    for (size_t k = rng() % 5; k > 0; --k)
      w += parts[rng() % std::size(parts)];
  return words;
}

using Entries = std::vector<std::pair<std::u16string, TObject *>>;

// The list's items with their objects, which tell equal texts apart.
Entries EntriesOf(TWideStringList &list) {
  Entries out;
  for (int32_t i = 0; i < list.GetCount(); ++i)
    out.emplace_back(list.Get(i), list.GetObject(i));
  return out;
}

void Fill(TWideStringList &list, const std::vector<std::u16string> &words, uint32_t locale) {
  list.SetLanguage(locale);
  for (size_t i = 0; i < words.size(); ++i)
    list.AddObject(words[i], reinterpret_cast<TObject *>(i + 1));
}

} // namespace

TEST(CollationKeySort, KeysStandInOnlyForThePlatformsCompare) {
  TCollationKeys keys;
  EXPECT_TRUE(keys.Begin(kEnglishUS, 2));
  EXPECT_FALSE(keys.Begin(0x1234, 2)) << "unknown locale";
  CompareWithoutKeys other;
  EXPECT_FALSE(keys.Begin(kEnglishUS, 2)) << "another compare routine";
}

TEST(CollationKeySort, KeysCompareAsWideCompareText) {
  std::mt19937 rng(3);
  const std::vector<std::u16string> words = RandomWords(rng, 150);
  TCollationKeys keys;
  ASSERT_TRUE(keys.Begin(kEnglishUS, words.size()));
  for (const auto &w : words)
    ASSERT_TRUE(keys.Add(w));
  const std::vector<TCollationKeyRef> &refs = keys.Refs();
  ASSERT_EQ(refs.size(), words.size());
  for (size_t i = 0; i < words.size(); ++i) {
    EXPECT_EQ(refs[i].Index, int32_t(i));
    for (size_t j = 0; j < words.size(); ++j) {
      int want = WideCompareText(words[i], words[j], kEnglishUS);
      ASSERT_EQ(CompareCollationKeys(refs[i], refs[j]), (want > 0) - (want < 0)) << i << " " << j;
    }
  }
}

TEST(CollationKeySort, RandomListsSortAsTheirQuickSort) {
  std::mt19937 rng(11);
  const uint32_t locales[] = {kEnglishUS, kSwedish, kGerman};
  for (int trial = 0; trial < 60; ++trial) {
    const size_t n = trial < 10 ? size_t(trial) : 10 + rng() % 400;
    const std::vector<std::u16string> words = RandomWords(rng, n);
    const uint32_t locale = locales[trial % 3];
    TWideStringList onKeys, byCompare;
    Fill(onKeys, words, locale);
    Fill(byCompare, words, locale);
    onKeys.SetSorted(true);
    {
      CompareWithoutKeys without;
      byCompare.SetSorted(true);
    }
    ASSERT_EQ(EntriesOf(onKeys), EntriesOf(byCompare)) << "trial " << trial;
  }
}

TEST(CollationKeySort, SetLanguageResortsAsTheQuickSort) {
  std::mt19937 rng(17);
  const std::vector<std::u16string> words = RandomWords(rng, 300);
  TWideStringList onKeys, byCompare;
  Fill(onKeys, words, kGerman);
  Fill(byCompare, words, kGerman);
  onKeys.SetSorted(true);
  onKeys.SetLanguage(kSwedish);
  {
    CompareWithoutKeys without;
    byCompare.SetSorted(true);
    byCompare.SetLanguage(kSwedish);
  }
  EXPECT_EQ(EntriesOf(onKeys), EntriesOf(byCompare));
}
