// Unit SortableLists: TSortList; its start-up and finalisation do no work.
#include <kestrel/search/SortableLists.h>

#include <vector>

#include <kestrel/frame/Units.h>
#include <kestrel/unicode/CollationKeys.h>

namespace kestrel {
namespace {

void YieldEachPass() {
  MyYieldProcess();
}

// The sort of items L to R on their texts' collation keys, for a descendant
// that sorts SortKey by text; false, with nothing changed, when it does not or
// the keys cannot stand in for its comparison. The same quicksort over the
// keys makes the same exchanges, so the order is the same.
bool SortOnTextKeys(TSortList &list, int32_t SortKey, int32_t L, int32_t R) {
  uint32_t locale = 0;
  if (L < 0 || R >= list.Count() || L >= R || !list.SortsByText(SortKey, locale)) return false;
  TCollationKeys keys;
  if (!keys.Begin(locale, size_t(R - L + 1))) return false;
  void **items = list.List();
  for (int32_t i = L; i <= R; ++i)
    if (!keys.Add(list.ItemText(SortKey, items[i]))) return false;
  std::vector<TCollationKeyRef> &refs = keys.Refs();
  QuickSortCollationKeys(refs.data(), 0, R - L, list.Reversed, YieldEachPass);
  std::vector<void *> before(items + L, items + R + 1);
  for (size_t k = 0; k < refs.size(); ++k)
    items[L + int32_t(k)] = before[size_t(refs[k].Index)];
  return true;
}

} // namespace

void TSortList::TempQuickSort(int32_t SortKey, int32_t L, int32_t R,
                              TCompareFunctOfObject Compare) {
  if (SortOnTextKeys(*this, SortKey, L, R)) return;
  QuickSortByCompare(SortKey, L, R, Compare);
}

void TSortList::QuickSortByCompare(int32_t SortKey, int32_t L, int32_t R,
                                   TCompareFunctOfObject Compare) {
  int32_t I, J;
  do {
    MyYieldProcess();
    I = L;
    J = R;
    PivotIndex = static_cast<int32_t>((int64_t(L) + R) >> 1);
    SetBase(Get(PivotIndex));
    do {
      // The scans read through Get, so a comparison that is no order ends in
      // the list's index error instead of running off the items.
      CompareIndex = I;
      if (!Reversed)
        while (Compare(Get(CompareIndex)) > 0)
          ++CompareIndex;
      else
        while (Compare(Get(CompareIndex)) < 0)
          ++CompareIndex;
      I = CompareIndex;
      CompareIndex = J;
      if (!Reversed)
        while (Compare(Get(CompareIndex)) < 0)
          --CompareIndex;
      else
        while (Compare(Get(CompareIndex)) > 0)
          --CompareIndex;
      J = CompareIndex;
      if (I <= J) {
        Exchange(I, J);
        ++I;
        --J;
      }
    } while (I <= J);
    if (L < J) QuickSortByCompare(SortKey, L, J, Compare);
    L = I;
  } while (I < R);
}

void TSortList::DoASort(TCompareFunctOfObject Compare, int32_t SortKey, int32_t L, int32_t R) {
  if (R <= L || L < 0) return;
  if (R >= Count()) R = Count() - 1;
  if (L < R) {
    HasBeenSorted = true;
    TempQuickSort(SortKey, L, R, Compare);
  }
}

void TSortList::DoADoubleSort(TCompareFunctOfObject Compare, int32_t FirstKey, int32_t SecondKey,
                              int32_t L, int32_t R) {
  if (L < 0) L = 0;
  if (R >= Count()) R = Count() - 1;
  if (L >= R) return;
  SortStage = Tsort_num::first_sort;
  DoASort(Compare, FirstKey, L, R);
  if (FirstKey == SecondKey) return;
  int32_t K = L;
  while (K < R) {
    // The run of items equal to item K in the first key.
    int32_t I = K;
    PivotIndex = K;
    SetBase(Get(K));
    while (I + 1 <= R) {
      CompareIndex = I + 1;
      if (Compare(Get(CompareIndex)) != 0) break;
      ++I;
    }
    if (I > K) {
      SortStage = Tsort_num::second_sort;
      DoASort(Compare, SecondKey, K, I);
      SortStage = Tsort_num::first_sort;
      K = I;
    } else {
      ++K;
    }
  }
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(SortableLists, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
