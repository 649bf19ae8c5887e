// TSortList: sorts by comparison, and on collation keys in the same order.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/search/SortableLists.h>
#include <kestrel/unicode/CodePages.h>

using namespace kestrel;

namespace {

constexpr uint32_t kEnglishUS = 0x0409;

struct Rec {
  int first, second;
  int id;
  std::u16string word;
};

// Key 1 is the word under a locale, key 2 the first number, key 3 the second:
// reference key minus item key. Says that key 1 compares texts only when told to.
class RecList : public TSortList {
public:
  explicit RecList(bool saysText = false, uint32_t locale = kEnglishUS)
      : locale_(locale), saysText_(saysText) {}
  ~RecList() override { Clear(); }
  bool SortsByText(int32_t SortKey, uint32_t &Locale) override {
    Locale = locale_;
    return saysText_ && SortKey == 1;
  }
  std::u16string_view ItemText(int32_t, void *Item) override {
    return static_cast<Rec *>(Item)->word;
  }
  void SetBase(void *item) override {
    base = static_cast<Rec *>(item);
    ++bases;
  }
  int32_t Compare(void *item) {
    ++compares;
    if (SortStage == Tsort_num::second_sort) ++secondCompares;
    const Rec *r = static_cast<Rec *>(item);
    EXPECT_EQ(r, Get(CompareIndex)); // CompareIndex names the item being compared
    switch (SortStage == Tsort_num::first_sort ? FirstKey : SecondKey) {
    case 1:
      return WideCompareText(base->word, r->word, locale_);
    case 2:
      return base->first - r->first;
    default:
      return base->second - r->second;
    }
  }
  TCompareFunctOfObject Cmp() { return TCompareFunctOfObject::Bind<&RecList::Compare>(this); }
  std::vector<const Rec *> Order() const {
    std::vector<const Rec *> out;
    for (int32_t i = 0; i < Count(); ++i)
      out.push_back(static_cast<const Rec *>(Get(i)));
    return out;
  }

  int32_t FirstKey = 2, SecondKey = 3;
  Rec *base = nullptr;
  int bases = 0, compares = 0, secondCompares = 0;

private:
  uint32_t locale_;
  bool saysText_;
};

using Keyset = std::vector<std::pair<int, int>>;

std::vector<Rec> Make(const Keyset &keys) {
  std::vector<Rec> recs;
  for (size_t i = 0; i < keys.size(); ++i)
    recs.push_back({keys[i].first, keys[i].second, static_cast<int>(i), u""});
  return recs;
}

// Words with case, accents, hyphens and ties, and small counts.
std::vector<Rec> RandomWords(std::mt19937 &rng, size_t n) {
  static const char16_t *words[] = {
      u"river", u"River", u"RIVER",     u"rive",     u"r\u00EEve", u"Ufer",    u"\u00FCber",
      u"uber",  u"",      u"bank-side", u"bankside", u"banks",     u"estuary", u"Estuaries"};
  std::vector<Rec> out;
  for (size_t i = 0; i < n; ++i) {
    const char16_t *word = words[rng() % std::size(words)];
    out.push_back({int(rng() % 4), 0, int(i), word});
  }
  return out;
}

void Fill(RecList &l, std::vector<Rec> &recs) {
  for (Rec &r : recs)
    l.Add(&r);
}

// The same items in a list sorted on collation keys and in one sorted by the
// comparison, by word and then count.
struct Twins {
  explicit Twins(std::vector<Rec> &recs, bool reversed = false) {
    for (RecList *l : {&onKeys, &byCompare}) {
      l->FirstKey = 1;
      l->SecondKey = 2;
      l->Reversed = reversed;
      Fill(*l, recs);
    }
  }
  RecList onKeys{true}, byCompare;
};

Keyset Keys(const RecList &l) {
  Keyset v;
  for (const Rec *r : l.Order())
    v.emplace_back(r->first, r->second);
  return v;
}

Keyset Sorted(Keyset keys, bool reversed) {
  std::sort(keys.begin(), keys.end());
  if (reversed) std::reverse(keys.begin(), keys.end());
  return keys;
}

} // namespace

TEST(TSortList, DoASortRefusesEmptyOrNegativeRanges) {
  const Keyset keys = {{3, 0}, {1, 0}, {2, 0}};
  auto recs = Make(keys);
  struct Case {
    int l, r;
  } cases[] = {{1, 1}, {2, 1}, {-1, 2}};
  for (const Case &c : cases) {
    RecList l;
    Fill(l, recs);
    l.DoASort(l.Cmp(), 0, c.l, c.r);
    EXPECT_FALSE(l.HasBeenSorted);
    EXPECT_EQ(Keys(l), keys);
    EXPECT_EQ(l.compares, 0);
  }
}

TEST(TSortList, DoASortCutsRToTheLastItem) {
  auto recs = Make({{5, 0}, {3, 0}, {4, 0}, {1, 0}, {2, 0}});
  RecList l;
  Fill(l, recs);
  l.DoASort(l.Cmp(), 7, 1, 1000);
  EXPECT_TRUE(l.HasBeenSorted);
  EXPECT_EQ(Keys(l), (Keyset{{5, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}})); // item 0 untouched
}

TEST(TSortList, SortsAnyOrderAscendingOrReversed) {
  std::mt19937 rng(7);
  for (int n : {2, 3, 10, 257, 2000}) {
    for (bool reversed : {false, true}) {
      Keyset keys;
      for (int i = 0; i < n; ++i)
        keys.emplace_back(static_cast<int>(rng() % 50), 0);
      auto recs = Make(keys);
      RecList l;
      Fill(l, recs);
      l.Reversed = reversed;
      l.DoASort(l.Cmp(), 0, 0, n - 1);
      EXPECT_EQ(Keys(l), Sorted(keys, reversed)) << n << " " << reversed;
      // Every item is still there once.
      const std::vector<const Rec *> order = l.Order();
      EXPECT_EQ(std::set<const Rec *>(order.begin(), order.end()).size(), size_t(n));
    }
  }
}

TEST(TSortList, YieldsOncePerPass) {
  int yields = 0;
  auto yield = [&] { ++yields; };
  AYieldProcessProc = TYieldProcessProc::Of(&yield);
  auto recs = Make({{4, 0}, {3, 0}, {2, 0}, {1, 0}});
  RecList l;
  Fill(l, recs);
  l.DoASort(l.Cmp(), 0, 0, 3);
  AYieldProcessProc = nullptr;
  EXPECT_GT(yields, 0);
  EXPECT_EQ(yields, l.bases); // one SetBase per pass, and one yield
}

TEST(TSortList, DoubleSortOrdersRunsBySecondKey) {
  std::mt19937 rng(11);
  for (bool reversed : {false, true}) {
    Keyset keys;
    for (int i = 0; i < 300; ++i)
      keys.emplace_back(static_cast<int>(rng() % 6), static_cast<int>(rng() % 100));
    keys.emplace_back(99, 5); // a run that reaches item R: the largest first key, twice
    keys.emplace_back(99, 1);
    auto recs = Make(keys);
    RecList l;
    Fill(l, recs);
    l.Reversed = reversed;
    l.DoADoubleSort(l.Cmp(), 1, 2, -5, 10000);
    EXPECT_EQ(l.SortStage, Tsort_num::first_sort);
    EXPECT_EQ(Keys(l), Sorted(keys, reversed)) << reversed;
  }
}

TEST(TSortList, DoubleSortWithEqualKeysRunsTheFirstSortOnly) {
  auto recs = Make({{2, 9}, {1, 5}, {2, 1}, {1, 3}});
  RecList l;
  Fill(l, recs);
  l.DoADoubleSort(l.Cmp(), 4, 4, 0, 3);
  auto k = Keys(l);
  EXPECT_EQ(k[0].first, 1);
  EXPECT_EQ(k[2].first, 2);
  EXPECT_EQ(l.secondCompares, 0);
}

TEST(TSortList, DoubleSortRespectsItsRange) {
  auto recs = Make({{9, 9}, {2, 2}, {1, 7}, {1, 3}, {0, 0}});
  RecList l;
  Fill(l, recs);
  l.DoADoubleSort(l.Cmp(), 1, 2, 1, 3);
  EXPECT_EQ(Keys(l), (Keyset{{9, 9}, {1, 3}, {1, 7}, {2, 2}, {0, 0}}));
}

TEST(TSortList, AComparisonThatIsNoOrderEndsInTheListError) {
  auto recs = Make({{1, 0}, {2, 0}, {3, 0}});
  RecList l;
  Fill(l, recs);
  auto always = [](void *) -> int32_t { return 1; }; // never 0, not even for the reference
  EXPECT_THROW(l.DoASort(TCompareFunctOfObject::Of(&always), 0, 0, 2), EListError);
}

TEST(TSortListTextKeys, OrdersAsTheComparisonWithoutCallingIt) {
  std::mt19937 rng(23);
  for (int trial = 0; trial < 40; ++trial) {
    std::vector<Rec> entries = RandomWords(rng, trial < 5 ? size_t(trial) : 5 + rng() % 300);
    const int32_t last = int32_t(entries.size()) - 1;
    const int32_t l = trial % 4 == 3 && last > 4 ? 2 : 0, r = trial % 5 == 4 ? last - 1 : last;
    for (bool reversed : {false, true}) {
      Twins t(entries, reversed);
      t.onKeys.DoASort(t.onKeys.Cmp(), 1, l, r);
      t.byCompare.DoASort(t.byCompare.Cmp(), 1, l, r);
      ASSERT_EQ(t.onKeys.Order(), t.byCompare.Order()) << "trial " << trial << " " << reversed;
      EXPECT_EQ(t.onKeys.compares, 0);
      EXPECT_EQ(t.onKeys.HasBeenSorted, t.byCompare.HasBeenSorted);
    }
  }
}

TEST(TSortListTextKeys, DoubleSortsOnEitherKey) {
  std::mt19937 rng(29);
  std::vector<Rec> entries = RandomWords(rng, 250);
  for (auto [first, second] : {std::pair{1, 2}, std::pair{2, 1}}) {
    Twins t(entries);
    t.onKeys.FirstKey = t.byCompare.FirstKey = first;
    t.onKeys.SecondKey = t.byCompare.SecondKey = second;
    t.onKeys.DoADoubleSort(t.onKeys.Cmp(), first, second, -3, 1000);
    t.byCompare.DoADoubleSort(t.byCompare.Cmp(), first, second, -3, 1000);
    EXPECT_EQ(t.onKeys.Order(), t.byCompare.Order()) << first;
    EXPECT_LT(t.onKeys.compares, t.byCompare.compares);
  }
}

TEST(TSortListTextKeys, YieldsOncePerPassAndFallsBackForAnUnknownLocale) {
  std::mt19937 rng(31);
  std::vector<Rec> entries = RandomWords(rng, 200);
  Twins t(entries);
  int yields = 0;
  auto yield = [&yields] { ++yields; };
  AYieldProcessProc = TYieldProcessProc::Of(&yield);
  t.onKeys.DoASort(t.onKeys.Cmp(), 1, 0, 199);
  const int keyYields = yields;
  yields = 0;
  t.byCompare.DoASort(t.byCompare.Cmp(), 1, 0, 199);
  AYieldProcessProc = nullptr;
  EXPECT_EQ(keyYields, yields);
  EXPECT_GT(yields, 1);

  // No keys under a locale the platform does not know: the comparison runs,
  // fails on every pair, and its scan ends in the list's error as ever.
  RecList unknown(true, 0x1234);
  unknown.FirstKey = 1;
  std::vector<Rec> two = {{0, 0, 0, u"b"}, {0, 0, 1, u"a"}};
  Fill(unknown, two);
  EXPECT_THROW(unknown.DoASort(unknown.Cmp(), 1, 0, 1), EListError);
  EXPECT_GT(unknown.compares, 0);
}
