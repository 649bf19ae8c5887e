#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/search/SortableLists.h>

using namespace kestrel;

namespace {

struct Rec {
  int first, second;
  int id;
};

// Ascending by first and then second key: reference key minus item key.
class RecList : public TSortList {
public:
  ~RecList() override { Clear(); }
  void SetBase(void *item) override {
    base = static_cast<Rec *>(item);
    ++bases;
  }
  int32_t Compare(void *item) {
    ++compares;
    if (SortStage == Tsort_num::second_sort) ++secondCompares;
    const Rec *r = static_cast<Rec *>(item);
    EXPECT_EQ(r, Get(CompareIndex)); // CompareIndex names the item being compared
    return SortStage == Tsort_num::first_sort ? base->first - r->first : base->second - r->second;
  }
  TCompareFunctOfObject Cmp() { return TCompareFunctOfObject::Bind<&RecList::Compare>(this); }

  Rec *base = nullptr;
  int bases = 0, compares = 0, secondCompares = 0;
};

std::vector<Rec> Make(const std::vector<std::pair<int, int>> &keys) {
  std::vector<Rec> recs;
  for (size_t i = 0; i < keys.size(); ++i)
    recs.push_back({keys[i].first, keys[i].second, static_cast<int>(i)});
  return recs;
}

void Fill(RecList &l, std::vector<Rec> &recs) {
  for (Rec &r : recs)
    l.Add(&r);
}

std::vector<int> Firsts(const RecList &l) {
  std::vector<int> v;
  for (int i = 0; i < l.Count(); ++i)
    v.push_back(static_cast<Rec *>(l.Get(i))->first);
  return v;
}

std::vector<std::pair<int, int>> Keys(const RecList &l, int from = 0, int to = -1) {
  std::vector<std::pair<int, int>> v;
  if (to < 0) to = l.Count() - 1;
  for (int i = from; i <= to; ++i) {
    auto *r = static_cast<Rec *>(l.Get(i));
    v.emplace_back(r->first, r->second);
  }
  return v;
}

} // namespace

TEST(TSortList, StartsClear) {
  RecList l;
  EXPECT_FALSE(l.Reversed);
  EXPECT_FALSE(l.HasBeenSorted);
  EXPECT_EQ(l.SortStage, Tsort_num::first_sort);
}

TEST(TSortList, DoASortRefusesEmptyOrNegativeRanges) {
  auto recs = Make({{3, 0}, {1, 0}, {2, 0}});
  struct Case {
    int l, r;
  } cases[] = {{1, 1}, {2, 1}, {-1, 2}};
  for (const Case &c : cases) {
    RecList l;
    Fill(l, recs);
    l.DoASort(l.Cmp(), 0, c.l, c.r);
    EXPECT_FALSE(l.HasBeenSorted);
    EXPECT_EQ(Firsts(l), (std::vector<int>{3, 1, 2}));
    EXPECT_EQ(l.compares, 0);
  }
}

TEST(TSortList, DoASortCutsRToTheLastItem) {
  auto recs = Make({{5, 0}, {3, 0}, {4, 0}, {1, 0}, {2, 0}});
  RecList l;
  Fill(l, recs);
  l.DoASort(l.Cmp(), 7, 1, 1000);
  EXPECT_TRUE(l.HasBeenSorted);
  EXPECT_EQ(Firsts(l), (std::vector<int>{5, 1, 2, 3, 4})); // item 0 untouched
}

TEST(TSortList, SortsAnyOrderAscendingOrReversed) {
  std::mt19937 rng(7);
  for (int n : {2, 3, 10, 257, 2000}) {
    for (bool reversed : {false, true}) {
      std::vector<std::pair<int, int>> keys;
      for (int i = 0; i < n; ++i)
        keys.emplace_back(static_cast<int>(rng() % 50), 0);
      auto recs = Make(keys);
      RecList l;
      Fill(l, recs);
      l.Reversed = reversed;
      l.DoASort(l.Cmp(), 0, 0, n - 1);
      std::vector<int> got = Firsts(l), want = got;
      if (reversed)
        std::sort(want.begin(), want.end(), std::greater<int>());
      else
        std::sort(want.begin(), want.end());
      EXPECT_EQ(got, want) << n << " " << reversed;
      // Only Exchange moved items: every record is still there once.
      std::vector<int> ids;
      for (int i = 0; i < n; ++i)
        ids.push_back(static_cast<Rec *>(l.Get(i))->id);
      std::sort(ids.begin(), ids.end());
      for (int i = 0; i < n; ++i)
        ASSERT_EQ(ids[i], i);
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
    std::vector<std::pair<int, int>> keys;
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
    auto got = Keys(l), want = got;
    if (reversed)
      std::sort(want.begin(), want.end(), std::greater<>());
    else
      std::sort(want.begin(), want.end());
    EXPECT_EQ(got, want) << reversed;
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
  RecList m;
  Fill(m, recs);
  m.DoADoubleSort(m.Cmp(), 1, 2, 0, 3);
  EXPECT_GT(m.secondCompares, 0);
  EXPECT_EQ(Keys(m), (std::vector<std::pair<int, int>>{{1, 3}, {1, 5}, {2, 1}, {2, 9}}));
}

TEST(TSortList, DoubleSortRespectsItsRange) {
  auto recs = Make({{9, 9}, {2, 2}, {1, 7}, {1, 3}, {0, 0}});
  RecList l;
  Fill(l, recs);
  l.DoADoubleSort(l.Cmp(), 1, 2, 1, 3);
  EXPECT_EQ(Keys(l), (std::vector<std::pair<int, int>>{{9, 9}, {1, 3}, {1, 7}, {2, 2}, {0, 0}}));
}

TEST(TSortList, AComparisonThatIsNoOrderEndsInTheListError) {
  auto recs = Make({{1, 0}, {2, 0}, {3, 0}});
  RecList l;
  Fill(l, recs);
  auto always = [](void *) -> int32_t { return 1; }; // never 0, not even for the reference
  EXPECT_THROW(l.DoASort(TCompareFunctOfObject::Of(&always), 0, 0, 2), EListError);
}
