// TSortList sorts that compare texts: on collation keys, without calling the
// comparison, and in the order the comparison would give, ties included.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/search/SortableLists.h>
#include <kestrel/unicode/CodePages.h>

using namespace kestrel;

namespace {

constexpr uint32_t kEnglishUS = 0x0409;

struct Entry {
  std::u16string word;
  int count;
};

// Sorts by word (key 1) under a locale, or by count (key 2), the first stage
// on FirstKey; says that key 1 compares texts only when told to.
class EntryList : public TSortList {
public:
  explicit EntryList(uint32_t locale, bool saysText) : locale_(locale), saysText_(saysText) {}
  int32_t FirstKey = 1, SecondKey = 2;
  ~EntryList() override { Clear(); }
  bool SortsByText(int32_t SortKey, uint32_t &Locale) override {
    Locale = locale_;
    return saysText_ && SortKey == 1;
  }
  std::u16string_view ItemText(int32_t SortKey, void *Item) override {
    return static_cast<Entry *>(Item)->word;
  }
  void SetBase(void *Item) override { base_ = static_cast<Entry *>(Item); }
  int32_t Compare(void *Item) {
    ++compares;
    const Entry *e = static_cast<Entry *>(Item);
    const int32_t key = SortStage == Tsort_num::first_sort ? FirstKey : SecondKey;
    return key == 1 ? WideCompareText(base_->word, e->word, locale_) : base_->count - e->count;
  }
  TCompareFunctOfObject Cmp() { return TCompareFunctOfObject::Bind<&EntryList::Compare>(this); }
  std::vector<const Entry *> Order() const {
    std::vector<const Entry *> out;
    for (int32_t i = 0; i < Count(); ++i)
      out.push_back(static_cast<const Entry *>(Get(i)));
    return out;
  }

  int compares = 0;

private:
  uint32_t locale_;
  bool saysText_;
  Entry *base_ = nullptr;
};

std::vector<Entry> RandomEntries(std::mt19937 &rng, size_t n) {
  static const char16_t *words[] = {
      u"river", u"River", u"RIVER",     u"rive",     u"r\u00EEve", u"Ufer",    u"\u00FCber",
      u"uber",  u"",      u"bank-side", u"bankside", u"banks",     u"estuary", u"Estuaries"};
  std::vector<Entry> out;
  for (size_t i = 0; i < n; ++i)
    out.push_back({words[rng() % std::size(words)], int(rng() % 4)});
  return out;
}

void Fill(EntryList &l, std::vector<Entry> &entries) {
  for (Entry &e : entries)
    l.Add(&e);
}

} // namespace

TEST(SortListTextKeys, OrdersAsTheComparisonWithoutCallingIt) {
  std::mt19937 rng(23);
  for (int trial = 0; trial < 40; ++trial) {
    std::vector<Entry> entries = RandomEntries(rng, trial < 5 ? size_t(trial) : 5 + rng() % 300);
    const int32_t last = int32_t(entries.size()) - 1;
    const int32_t l = trial % 4 == 3 && last > 4 ? 2 : 0, r = trial % 5 == 4 ? last - 1 : last;
    for (bool reversed : {false, true}) {
      EntryList onKeys(kEnglishUS, true), byCompare(kEnglishUS, false);
      Fill(onKeys, entries);
      Fill(byCompare, entries);
      onKeys.Reversed = byCompare.Reversed = reversed;
      onKeys.DoASort(onKeys.Cmp(), 1, l, r);
      byCompare.DoASort(byCompare.Cmp(), 1, l, r);
      ASSERT_EQ(onKeys.Order(), byCompare.Order()) << "trial " << trial << " " << reversed;
      EXPECT_EQ(onKeys.compares, 0);
      EXPECT_EQ(onKeys.HasBeenSorted, byCompare.HasBeenSorted);
    }
  }
}

TEST(SortListTextKeys, DoubleSortsOnEitherKey) {
  std::mt19937 rng(29);
  std::vector<Entry> entries = RandomEntries(rng, 250);
  for (auto [first, second] : {std::pair{1, 2}, std::pair{2, 1}}) {
    EntryList onKeys(kEnglishUS, true), byCompare(kEnglishUS, false);
    Fill(onKeys, entries);
    Fill(byCompare, entries);
    onKeys.FirstKey = byCompare.FirstKey = first;
    onKeys.SecondKey = byCompare.SecondKey = second;
    onKeys.DoADoubleSort(onKeys.Cmp(), first, second, -3, 1000);
    byCompare.DoADoubleSort(byCompare.Cmp(), first, second, -3, 1000);
    EXPECT_EQ(onKeys.Order(), byCompare.Order()) << first;
    EXPECT_LT(onKeys.compares, byCompare.compares);
  }
}

TEST(SortListTextKeys, YieldsOncePerPassAndFallsBackForAnUnknownLocale) {
  std::mt19937 rng(31);
  std::vector<Entry> entries = RandomEntries(rng, 200);
  EntryList onKeys(kEnglishUS, true), byCompare(kEnglishUS, false);
  Fill(onKeys, entries);
  Fill(byCompare, entries);
  int yields = 0;
  auto yield = [&yields] { ++yields; };
  AYieldProcessProc = TYieldProcessProc::Of(&yield);
  onKeys.DoASort(onKeys.Cmp(), 1, 0, 199);
  const int keyYields = yields;
  yields = 0;
  byCompare.DoASort(byCompare.Cmp(), 1, 0, 199);
  AYieldProcessProc = nullptr;
  EXPECT_EQ(keyYields, yields);
  EXPECT_GT(yields, 1);

  // No keys under a locale the platform does not know: the comparison runs,
  // fails on every pair, and its scan ends in the list's error as ever.
  EntryList unknown(0x1234, true);
  std::vector<Entry> two = {{u"b", 0}, {u"a", 0}};
  Fill(unknown, two);
  EXPECT_THROW(unknown.DoASort(unknown.Cmp(), 1, 0, 1), EListError);
  EXPECT_GT(unknown.compares, 0);
}
