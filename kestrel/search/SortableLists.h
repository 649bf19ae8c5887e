// Unit SortableLists: TSortList, a list of pointers that sorts itself by one
// key, or by a first and a second key, through a comparison of one item
// against a reference item that a descendant remembers in SetBase.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/frame/host/TList.h>
#include <kestrel/frame/myKpSmall.h>

namespace kestrel {

enum class Tsort_num : uint8_t { first_sort, second_sort };

// Owns its slots like TList, not the items; descendants add the keys.
class TSortList : public TList {
public:
  TSortList() = default;

  // Remembers the reference item of the comparison; empty here.
  virtual void SetBase(void * /*Item*/) {}

  // A descendant whose comparison orders items by a text under a locale for
  // SortKey, Compare(item) being WideCompareText(text of the reference, text
  // of the item, Locale), says so here and gives each item's text through
  // ItemText. Such a sort turns each text of L to R into a collation key once
  // and orders the keys, with the result that Compare would give, calling
  // neither Compare nor SetBase (nor when the platform gives no keys, for an
  // unknown locale: Compare then runs as usual).
  virtual bool SortsByText(int32_t /*SortKey*/, uint32_t & /*Locale*/) { return false; }
  virtual std::u16string_view ItemText(int32_t /*SortKey*/, void * /*Item*/) { return {}; }

  // Quicksort of items L to R (both included) with the middle item as the
  // reference. Compare(item) above 0 means the item sorts before the
  // reference (below 0 with Reversed). Not stable.
  void TempQuickSort(int32_t SortKey, int32_t L, int32_t R, TCompareFunctOfObject Compare);
  // Sorts L to R; nothing for R <= L or L < 0; R is cut to the last item.
  void DoASort(TCompareFunctOfObject Compare, int32_t SortKey, int32_t L, int32_t R);
  // Sorts by FirstKey, then each run of items equal in it by SecondKey; the
  // comparison tells the stages apart by SortStage.
  void DoADoubleSort(TCompareFunctOfObject Compare, int32_t FirstKey, int32_t SecondKey, int32_t L,
                     int32_t R);

  bool Reversed = false;
  bool HasBeenSorted = false;
  Tsort_num SortStage = Tsort_num::first_sort;
  int32_t UserValue1 = 0; // for descendants; the unit never touches it
  int32_t CompareIndex = 0;
  int32_t PivotIndex = 0;
  int32_t UserValue2 = 0; // for descendants
  std::string UserText;   // for descendants

private:
  void QuickSortByCompare(int32_t SortKey, int32_t L, int32_t R, TCompareFunctOfObject Compare);
};

} // namespace kestrel
