// Collation keys through the platform's LCMapStringW, and the lists' quicksort
// over them.
#include <kestrel/unicode/CollationKeys.h>

#include <utility>

#include <kestrel/frame/platform/Nls.h>
#include <kestrel/unicode/CodePages.h>

namespace kestrel {
namespace {

// The flags of WideCompareTextNT's CompareStringW, with the key asked for.
constexpr uint32_t kKeyFlags = LCMAP_SORTKEY | NORM_IGNORECASE;

// Room that most keys fit in: a few bytes per unit and per level.
size_t KeyGuess(size_t units) {
  return 4 * units + 16;
}

uint64_t HeadOf(const uint8_t *key, uint32_t size) {
  uint64_t head = 0;
  for (uint32_t i = 0; i < 8; ++i)
    head = (head << 8) | (i < size ? key[i] : 0);
  return head;
}

} // namespace

bool TCollationKeys::Begin(uint32_t Locale, size_t Count) {
  locale_ = Locale;
  bytes_.clear();
  offsets_.clear();
  refs_.clear();
  if (WideCompareText != WideCompareTextNT) return false;
  // The empty text has a key under every locale the platform knows.
  if (LCMapStringW(Locale, kKeyFlags, u"", 0, nullptr, 0) == 0) return false;
  offsets_.reserve(Count);
  refs_.reserve(Count);
  bytes_.reserve(Count * KeyGuess(8));
  return true;
}

bool TCollationKeys::Add(std::u16string_view Text) {
  if (Text.size() > size_t(INT32_MAX / 8)) return false;
  const auto units = static_cast<int32_t>(Text.size());
  const size_t used = bytes_.size();
  size_t room = KeyGuess(Text.size());
  bytes_.resize(used + room);
  int32_t size = LCMapStringW(locale_, kKeyFlags, Text.data(), units, bytes_.data() + used,
                              static_cast<int32_t>(room));
  if (size == 0) { // a key longer than the guess: ask its size
    size = LCMapStringW(locale_, kKeyFlags, Text.data(), units, nullptr, 0);
    if (size > 0) {
      bytes_.resize(used + size_t(size));
      size = LCMapStringW(locale_, kKeyFlags, Text.data(), units, bytes_.data() + used, size);
    }
  }
  if (size <= 0) {
    bytes_.resize(used);
    return false;
  }
  bytes_.resize(used + size_t(size));
  offsets_.push_back(static_cast<uint32_t>(used));
  refs_.push_back({HeadOf(bytes_.data() + used, uint32_t(size)), nullptr, uint32_t(size),
                   static_cast<int32_t>(refs_.size())});
  return true;
}

std::vector<TCollationKeyRef> &TCollationKeys::Refs() {
  // The bytes no longer move: point each key at its place.
  for (size_t i = 0; i < refs_.size(); ++i)
    refs_[i].Key = bytes_.data() + offsets_[i];
  return refs_;
}

void QuickSortCollationKeys(TCollationKeyRef *Refs, int32_t L, int32_t R, bool Descending,
                            void (*EachPass)()) {
  const int sense = Descending ? -1 : 1;
  int32_t i;
  do {
    if (EachPass) EachPass();
    i = L;
    int32_t j = R;
    const TCollationKeyRef pivot = Refs[(uint32_t(L) + uint32_t(R)) >> 1];
    do {
      while (sense * CompareCollationKeys(Refs[i], pivot) < 0)
        ++i;
      while (sense * CompareCollationKeys(Refs[j], pivot) > 0)
        --j;
      if (i <= j) {
        std::swap(Refs[i], Refs[j]);
        ++i;
        --j;
      }
    } while (i <= j);
    if (L < j) QuickSortCollationKeys(Refs, L, j, Descending, EachPass);
    L = i;
  } while (i < R);
}

} // namespace kestrel
