// Collation keys for the sorts of the wide lists and of TSortList: each text
// is turned once into a byte string whose plain order is the order of
// WideCompareText, so that a sort compares bytes instead of asking the locale
// service at each of its n log n steps. Not part of the public interface.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace kestrel {

// One item's key, and where the item stood before the sort.
struct TCollationKeyRef {
  uint64_t Head;      // the key's first 8 bytes, most significant first, 0-padded
  const uint8_t *Key; // the whole key, its closing 0 byte included
  uint32_t Size;
  int32_t Index;
};

// The sign of WideCompareText of the two items' texts. A key ends in its only
// 0 byte, so equal heads with a short key mean equal keys.
inline int CompareCollationKeys(const TCollationKeyRef &a, const TCollationKeyRef &b) {
  if (a.Head != b.Head) return a.Head < b.Head ? -1 : 1;
  if (a.Size <= 8 || b.Size <= 8) return 0;
  const uint32_t common = a.Size < b.Size ? a.Size : b.Size;
  const int c = std::memcmp(a.Key + 8, b.Key + 8, common - 8);
  if (c != 0) return c < 0 ? -1 : 1;
  return a.Size == b.Size ? 0 : (a.Size < b.Size ? -1 : 1);
}

class TCollationKeys {
public:
  // Starts the keys of Count texts under Locale, in the order that
  // WideCompareText gives them. False when keys cannot stand in for it: the
  // routine installed is not the platform's wide compare, or the platform
  // does not know the locale (WideCompareText then fails on every pair).
  bool Begin(uint32_t Locale, size_t Count);
  // The key of the next text, whose Index is the number of texts added
  // before it; false when the platform gives none.
  bool Add(std::u16string_view Text);
  // The keys, complete once every text is added.
  std::vector<TCollationKeyRef> &Refs();

private:
  uint32_t locale_ = 0;
  std::vector<uint8_t> bytes_;
  std::vector<uint32_t> offsets_;
  std::vector<TCollationKeyRef> refs_;
};

// The quicksort of the lists over keys: the middle item as the reference, the
// scans stopping at items equal to it, recursion on the left part and a loop
// on the right. With the same comparisons it makes the same exchanges as the
// list's own sort over its texts, so the order, ties included, is the same.
// Descending swaps the sense of every comparison. EachPass, when given, is
// called once per pass of the outer loop.
void QuickSortCollationKeys(TCollationKeyRef *Refs, int32_t L, int32_t R, bool Descending,
                            void (*EachPass)() = nullptr);

} // namespace kestrel
