// Unit SortableLists: TSortList; its start-up and finalisation do no work.
#include <kestrel/search/SortableLists.h>

#include <kestrel/frame/Units.h>

namespace kestrel {

void TSortList::TempQuickSort(int32_t SortKey, int32_t L, int32_t R,
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
    if (L < J) TempQuickSort(SortKey, L, J, Compare);
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
