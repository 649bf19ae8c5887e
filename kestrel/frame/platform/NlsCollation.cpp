// Locale-aware comparison on ICU collators.
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/NlsInternal.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include <unicode/ucol.h>

namespace kestrel {
namespace {

constexpr uint32_t kKnownFlags = NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS |
                                 SORT_DIGITSASNUMBERS | SORT_STRINGSORT;

struct CollatorDeleter {
  void operator()(UCollator *c) const { ucol_close(c); }
};
using CollatorPtr = std::unique_ptr<UCollator, CollatorDeleter>;

void Set(UCollator *c, UColAttribute attr, UColAttributeValue value) {
  UErrorCode err = U_ZERO_ERROR;
  ucol_setAttribute(c, attr, value, &err);
}

// A collator for the locale with the flags' strength and options, or null.
CollatorPtr MakeCollator(LCID locale, uint32_t flags) {
  std::string name;
  if (!LocaleNameFromLCID(locale, name)) return nullptr;
  UErrorCode err = U_ZERO_ERROR;
  CollatorPtr c(ucol_open(name.c_str(), &err));
  if (U_FAILURE(err)) return nullptr;
  bool ignoreCase = flags & NORM_IGNORECASE, ignoreMarks = flags & NORM_IGNORENONSPACE;
  if (ignoreMarks) {
    // Primary strength drops accents; the case level keeps case apart
    // unless case is ignored too.
    Set(c.get(), UCOL_STRENGTH, UCOL_PRIMARY);
    Set(c.get(), UCOL_CASE_LEVEL, ignoreCase ? UCOL_OFF : UCOL_ON);
  } else {
    Set(c.get(), UCOL_STRENGTH, ignoreCase ? UCOL_SECONDARY : UCOL_TERTIARY);
  }
  if (flags & NORM_IGNORESYMBOLS) Set(c.get(), UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED);
  if (flags & SORT_DIGITSASNUMBERS) Set(c.get(), UCOL_NUMERIC_COLLATION, UCOL_ON);
  return c;
}

uint64_t KeyOf(LCID locale, uint32_t flags) {
  return (uint64_t(locale) << 32) | flags;
}

struct CachedCollator {
  uint64_t key;
  CollatorPtr collator; // null for an unknown locale
};

// Collators are made once per locale and flag set and kept for the life of
// the process: comparing does not change a collator, so threads share them.
// Most callers compare many strings in one locale, so the entry used last is
// found without the lock; entries never move or go while the process runs.
class CollatorCache {
public:
  const UCollator *Get(LCID locale, uint32_t flags) {
    uint64_t key = KeyOf(locale, flags);
    const CachedCollator *last = last_.load(std::memory_order_acquire);
    if (last && last->key == key) return last->collator.get();
    const CachedCollator *entry = Find(key);
    last_.store(entry, std::memory_order_release);
    return entry->collator.get();
  }

private:
  [[gnu::noinline]] const CachedCollator *Find(uint64_t key) {
    {
      std::shared_lock<std::shared_mutex> read(mutex_);
      auto it = map_.find(key);
      if (it != map_.end()) return it->second.get();
    }
    auto made = std::make_unique<CachedCollator>(
        CachedCollator{key, MakeCollator(LCID(key >> 32), uint32_t(key))});
    std::unique_lock<std::shared_mutex> write(mutex_);
    auto [it, inserted] = map_.emplace(key, std::move(made));
    return it->second.get();
  }

  std::shared_mutex mutex_;
  std::unordered_map<uint64_t, std::unique_ptr<CachedCollator>> map_;
  std::atomic<const CachedCollator *> last_{nullptr};
};

const UCollator *CollatorFor(LCID locale, uint32_t flags) {
  static CollatorCache cache;
  return cache.Get(locale, flags);
}

template <typename Unit> bool CountOf(const Unit *text, int32_t count, int32_t &length) {
  if (!text && count != 0) return false;
  length = count < 0 ? static_cast<int32_t>(std::char_traits<Unit>::length(text)) : count;
  return true;
}

} // namespace

int32_t CompareStringW(LCID locale, uint32_t flags, const char16_t *text1, int32_t count1,
                       const char16_t *text2, int32_t count2) {
  int32_t n1, n2;
  if ((flags & ~kKnownFlags) || !CountOf(text1, count1, n1) || !CountOf(text2, count2, n2))
    return 0;
  const UCollator *collator = CollatorFor(nls::ResolveLCID(locale), flags);
  if (!collator) return 0;
  static const char16_t empty[1] = {0};
  UCollationResult r = ucol_strcoll(collator, n1 ? text1 : empty, n1, n2 ? text2 : empty, n2);
  return r == UCOL_LESS ? CSTR_LESS_THAN : r == UCOL_EQUAL ? CSTR_EQUAL : CSTR_GREATER_THAN;
}

int32_t LCMapStringW(LCID locale, uint32_t flags, const char16_t *text, int32_t count, void *key,
                     int32_t capacity) {
  int32_t n;
  const uint32_t compareFlags = flags & ~LCMAP_SORTKEY;
  if (!(flags & LCMAP_SORTKEY) || (compareFlags & ~kKnownFlags) || !CountOf(text, count, n) ||
      capacity < 0 || (capacity > 0 && !key))
    return 0;
  const UCollator *collator = CollatorFor(nls::ResolveLCID(locale), compareFlags);
  if (!collator) return 0;
  static const char16_t empty[1] = {0};
  // ICU gives the size it needs whatever the buffer, and no key is shorter
  // than its closing 0 byte.
  int32_t size =
      ucol_getSortKey(collator, n ? text : empty, n, static_cast<uint8_t *>(key), capacity);
  return capacity == 0 || size <= capacity ? size : 0;
}

int32_t CompareStringA(LCID locale, uint32_t flags, const char *text1, int32_t count1,
                       const char *text2, int32_t count2) {
  int32_t n1, n2;
  uint32_t codePage;
  if (!CountOf(text1, count1, n1) || !CountOf(text2, count2, n2) ||
      !nls::AnsiCodePageOf(locale, codePage))
    return 0;
  std::u16string wide1, wide2;
  if (!nls::DecodeBytes(codePage, std::string_view(n1 ? text1 : "", n1), wide1) ||
      !nls::DecodeBytes(codePage, std::string_view(n2 ? text2 : "", n2), wide2))
    return 0;
  return CompareStringW(locale, flags, wide1.data(), static_cast<int32_t>(wide1.size()),
                        wide2.data(), static_cast<int32_t>(wide2.size()));
}

} // namespace kestrel
