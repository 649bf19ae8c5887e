// The system's locales: enumeration, validity, and the six locale items the
// language catalogue reads for each.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <kestrel/frame/platform/Nls.h>

using namespace kestrel;

namespace {

std::vector<std::string> gSeen;
size_t gStopAfter = 0;

int32_t Collect(char *locale) {
  gSeen.push_back(locale);
  return gStopAfter == 0 || gSeen.size() < gStopAfter;
}

std::vector<LCID> Enumerate(uint32_t flags, bool *ok = nullptr) {
  gSeen.clear();
  const bool result = EnumSystemLocalesA(Collect, flags);
  if (ok) *ok = result;
  std::vector<LCID> lcids;
  for (const std::string &s : gSeen)
    lcids.push_back(static_cast<LCID>(std::strtoul(s.c_str(), nullptr, 16)));
  return lcids;
}

std::u16string Item(LCID lcid, LCTYPE item) {
  char16_t buf[1024] = {};
  const int32_t n = GetLocaleInfoW(lcid, item, buf, 1024);
  return n > 0 ? std::u16string(buf, static_cast<size_t>(n - 1)) : std::u16string();
}

bool IsCodePage(const std::u16string &text) {
  if (text.empty() || text.size() > 5) return false;
  for (char16_t c : text)
    if (c < u'0' || c > u'9') return false;
  return true;
}

} // namespace

TEST(EnumSystemLocalesA, EightHexDigitsInAscendingOrder) {
  const std::vector<LCID> all = Enumerate(LCID_SUPPORTED);
  ASSERT_GT(all.size(), 150u);
  for (const std::string &s : gSeen) {
    ASSERT_EQ(s.size(), 8u) << s;
    EXPECT_EQ(s.find_first_not_of("0123456789ABCDEF"), std::string::npos) << s;
  }
  for (size_t i = 1; i < all.size(); ++i)
    EXPECT_LT(all[i - 1], all[i]);
  for (LCID expected : {0x0409u, 0x0809u, 0x0407u, 0x0419u, 0x0411u})
    EXPECT_NE(std::find(all.begin(), all.end(), expected), all.end()) << std::hex << expected;
  EXPECT_EQ(std::find(all.begin(), all.end(), 0x0009u), all.end()); // no neutral locales
  EXPECT_EQ(Enumerate(LCID_INSTALLED), all); // ICU has data for every one it lists
}

TEST(EnumSystemLocalesA, TheCallbackStopsItAndBadFlagsFail) {
  gStopAfter = 3;
  EXPECT_EQ(Enumerate(LCID_SUPPORTED).size(), 3u);
  gStopAfter = 0;
  for (uint32_t flags : {0u, 3u, 4u, 8u, 0x12u}) {
    bool ok = true;
    EXPECT_TRUE(Enumerate(flags, &ok).empty()) << flags;
    EXPECT_FALSE(ok) << flags;
  }
  EXPECT_FALSE(EnumSystemLocalesA(nullptr, LCID_SUPPORTED));
}

TEST(EnumSystemLocalesA, AlternateSortsCarryASortNumber) {
  const std::vector<LCID> sorts = Enumerate(LCID_SUPPORTED | LCID_ALTERNATE_SORTS);
  EXPECT_NE(std::find(sorts.begin(), sorts.end(), 0x00010407u), sorts.end()); // phone book
  for (LCID lcid : sorts) {
    EXPECT_NE(lcid >> 16, 0u) << std::hex << lcid;
    EXPECT_TRUE(IsValidLocale(lcid, LCID_SUPPORTED)) << std::hex << lcid;
  }
}

TEST(IsValidLocale, InstalledMeansSupportedWithDataOfItsOwn) {
  EXPECT_TRUE(IsValidLocale(0x0409, LCID_INSTALLED));
  EXPECT_TRUE(IsValidLocale(0x0409, LCID_SUPPORTED));
  EXPECT_FALSE(IsValidLocale(0x1234, LCID_SUPPORTED));
  EXPECT_FALSE(IsValidLocale(0x0409, 0));
  EXPECT_FALSE(IsValidLocale(0x0409, LCID_INSTALLED | LCID_SUPPORTED));
  int supportedOnly = 0, installedOnly = 0;
  for (LCID lcid = 1; lcid <= 0xFFFF; ++lcid) {
    const bool installed = IsValidLocale(lcid, LCID_INSTALLED);
    const bool supported = IsValidLocale(lcid, LCID_SUPPORTED);
    installedOnly += installed && !supported;
    supportedOnly += supported && !installed; // known to ICU, without data of their own
  }
  EXPECT_EQ(installedOnly, 0);
  EXPECT_GT(supportedOnly, 0);
}

// What the language catalogue asks of every locale it is given.
TEST(EnumSystemLocalesA, EveryLocaleHasTheSixItems) {
  for (LCID lcid : Enumerate(LCID_SUPPORTED)) {
    const std::u16string abbreviation = Item(lcid, LOCALE_SABBREVLANGNAME);
    EXPECT_TRUE(abbreviation.size() == 2 || abbreviation.size() == 3) << std::hex << lcid;
    EXPECT_FALSE(Item(lcid, LOCALE_SENGLANGUAGE).empty()) << std::hex << lcid;
    EXPECT_FALSE(Item(lcid, LOCALE_SENGCOUNTRY).empty()) << std::hex << lcid;
    EXPECT_FALSE(Item(lcid, LOCALE_SCURRENCY).empty()) << std::hex << lcid;
    EXPECT_TRUE(IsCodePage(Item(lcid, LOCALE_IDEFAULTCODEPAGE))) << std::hex << lcid;
    EXPECT_TRUE(IsCodePage(Item(lcid, LOCALE_IDEFAULTANSICODEPAGE))) << std::hex << lcid;
  }
}
