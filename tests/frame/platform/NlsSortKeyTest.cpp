// LCMapStringW with LCMAP_SORTKEY: sizes, refusals, and keys that order as
// CompareStringW does under the same locale and flags.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <kestrel/frame/platform/Nls.h>

using namespace kestrel;

namespace {

constexpr LCID kEnglishUS = 0x0409;
constexpr LCID kSwedish = 0x041D;
constexpr LCID kGerman = 0x0407;

std::string KeyOf(LCID locale, uint32_t flags, const std::u16string &text) {
  const auto n = static_cast<int32_t>(text.size());
  int32_t size = LCMapStringW(locale, LCMAP_SORTKEY | flags, text.data(), n, nullptr, 0);
  std::string key(size_t(size > 0 ? size : 0), '\0');
  if (size > 0) {
    EXPECT_EQ(LCMapStringW(locale, LCMAP_SORTKEY | flags, text.data(), n, key.data(), size), size);
  }
  return key;
}

int Sign(int v) {
  return (v > 0) - (v < 0);
}

int KeyOrder(const std::string &a, const std::string &b) {
  int c = std::memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
  return Sign(c != 0 ? c : int(a.size()) - int(b.size()));
}

int CompareOrder(LCID locale, uint32_t flags, const std::u16string &a, const std::u16string &b) {
  return CompareStringW(locale, flags, a.data(), int32_t(a.size()), b.data(), int32_t(b.size())) -
         2;
}

} // namespace

TEST(LCMapStringW, SizesAndRefusals) {
  const char16_t *text = u"Kestrel";
  const int32_t size = LCMapStringW(kEnglishUS, LCMAP_SORTKEY, text, -1, nullptr, 0);
  ASSERT_GT(size, 1);
  std::string key(size_t(size) + 4, '\x55');
  EXPECT_EQ(LCMapStringW(kEnglishUS, LCMAP_SORTKEY, text, 7, key.data(), size + 4), size);
  EXPECT_EQ(key[size_t(size) - 1], '\0') << "a key ends in its 0 byte";
  EXPECT_EQ(std::strlen(key.data()), size_t(size) - 1) << "and holds no other";
  EXPECT_EQ(key[size_t(size)], '\x55') << "nothing written past the key";

  struct Refusal {
    LCID locale;
    uint32_t flags;
    const char16_t *text;
    int32_t count, capacity;
    const char *what;
  };
  char buffer[256];
  const Refusal refusals[] = {
      {kEnglishUS, LCMAP_SORTKEY, text, 7, size - 1, "buffer one byte short"},
      {0x1234, LCMAP_SORTKEY, text, 7, 256, "unknown locale"},
      {kEnglishUS, NORM_IGNORECASE, text, 7, 256, "no map flag"},
      {kEnglishUS, LCMAP_SORTKEY | 0x40000, text, 7, 256, "unknown flag"},
      {kEnglishUS, LCMAP_SORTKEY, nullptr, 3, 256, "null text with a count"},
      {kEnglishUS, LCMAP_SORTKEY, text, 7, -1, "negative capacity"},
  };
  for (const Refusal &r : refusals)
    EXPECT_EQ(LCMapStringW(r.locale, r.flags, r.text, r.count, buffer, r.capacity), 0) << r.what;
  EXPECT_EQ(LCMapStringW(kEnglishUS, LCMAP_SORTKEY, text, 7, nullptr, 8), 0) << "null buffer";
  EXPECT_GT(LCMapStringW(kEnglishUS, LCMAP_SORTKEY, nullptr, 0, nullptr, 0), 0) << "empty text";
}

TEST(LCMapStringW, KeysOrderAsCompareStringW) {
  // Case, accents and empty texts under English are in the random test below.
  struct Pair {
    LCID locale;
    uint32_t flags;
    std::u16string a, b;
  };
  const Pair pairs[] = {
      {kEnglishUS, NORM_IGNORECASE | NORM_IGNORENONSPACE, u"cote", u"C\u00D4TE"},
      {kSwedish, NORM_IGNORECASE, u"\u00E4r", u"zon"}, // a-umlaut after z in Swedish
      {kGerman, NORM_IGNORECASE, u"\u00E4r", u"zon"},
      {kEnglishUS, SORT_DIGITSASNUMBERS, u"file10", u"file9"},
      {LOCALE_USER_DEFAULT, NORM_IGNORECASE, u"b", u"A"},
  };
  for (const Pair &p : pairs) {
    const int want = CompareOrder(p.locale, p.flags, p.a, p.b);
    ASSERT_GE(want, -1);
    EXPECT_EQ(KeyOrder(KeyOf(p.locale, p.flags, p.a), KeyOf(p.locale, p.flags, p.b)), want)
        << std::hex << p.locale << " " << p.flags;
  }
  EXPECT_NE(KeyOf(kSwedish, NORM_IGNORECASE, u"\u00E4"),
            KeyOf(kGerman, NORM_IGNORECASE, u"\u00E4"));
}

TEST(LCMapStringW, RandomTextsOrderAsCompareStringW) {
  const char16_t letters[] = u"aAbBeE\u00E9\u00C9\u00DFs -'1";
  std::mt19937 rng(5);
  std::vector<std::u16string> texts;
  for (int i = 0; i < 120; ++i) {
    std::u16string t(rng() % 12, u'a');
    for (char16_t &c : t)
      c = letters[rng() % (std::size(letters) - 1)];
    texts.push_back(t);
  }
  for (uint32_t flags : {uint32_t(NORM_IGNORECASE), 0u}) {
    std::vector<std::string> keys;
    for (const auto &t : texts)
      keys.push_back(KeyOf(kEnglishUS, flags, t));
    for (size_t i = 0; i < texts.size(); ++i)
      for (size_t j = 0; j < texts.size(); j += 7)
        ASSERT_EQ(KeyOrder(keys[i], keys[j]), CompareOrder(kEnglishUS, flags, texts[i], texts[j]))
            << i << " " << j;
  }
}
