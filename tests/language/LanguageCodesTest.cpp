// The suite's language numbers and their conversions.
#include <gtest/gtest.h>

#include <kestrel/language/LanguageCodes.h>

using namespace kestrel;
using L = language_type;
using G = language_group_type;

TEST(LanguageCodes, PrimaryLanguageIsTheLowTenBits) {
  EXPECT_EQ(PrimaryLanguage(0x0809), 9);
  EXPECT_EQ(PrimaryLanguage(0x000107FF), 0x3FF);
  EXPECT_TRUE(SamePrimaryLanguage(0x0809, 0x0409));
  EXPECT_TRUE(SamePrimaryLanguage(0x00010407, 0x0807));
  EXPECT_FALSE(SamePrimaryLanguage(0x0409, 0x040A));
}

TEST(LanguageCodes, LangIdsMapExactly) {
  const std::pair<int32_t, L> cases[] = {
      {0x0000, L::English},      {0x0400, L::English},    {0x3409, L::English},
      {0x3809, L::lt_unknown},   {0x0436, L::Dutch},      {0x2C0A, L::Spanish},
      {0x500A, L::Spanish},      {0x540A, L::lt_unknown}, {0x0814, L::Norwegian},
      {0x0C1A, L::Serbian_1251}, {0x081A, L::Serbian},    {0x041A, L::Croatian},
      {0x0827, L::Lithuanian},   {0x041F, L::Turk},       {-1, L::lt_unknown}};
  for (const auto &[id, language] : cases)
    EXPECT_EQ(MK3LanguageFromLangId(id), language) << std::hex << id;
  int mapped = 0;
  for (int32_t id = 0; id <= 0xFFFF; ++id)
    mapped += MK3LanguageFromLangId(id) != L::lt_unknown;
  EXPECT_EQ(mapped, 83); // the identifiers listed, and no other
}

// The two directions are no inverses only where the design says so.
TEST(LanguageCodes, EachLanguagesIdentifierReadsBackAsItselfSaveTheNamedExceptions) {
  for (int i = 0; i < kLanguageTypeCount; ++i) {
    const auto language = static_cast<L>(i);
    const int32_t id = WindowsLangIDFromMK3Language(language);
    L expected = language;
    if (language == L::lt_unknown || language == L::Anglo_Saxon || language == L::Middle_English)
      expected = L::English;
    else if (language == L::Old_Norse)
      expected = L::Norwegian;
    if (id == 0) {
      EXPECT_TRUE(language == L::Bosnian || language == L::Sorbian_Upper ||
                  language == L::Sorbian_Lower || i > static_cast<int>(L::Ukrainian))
          << i;
      continue;
    }
    EXPECT_EQ(MK3LanguageFromLangId(id), expected) << i;
  }
  EXPECT_EQ(WindowsLangIDFromMK3Language(L::Old_Norse), 0x0814);
  EXPECT_EQ(WindowsLangIDFromMK3Language(L::lt_unknown), 0x0809);
  for (int outside : {kLanguageTypeCount, 255}) { // no language: that of lt_unknown
    EXPECT_EQ(WindowsLangIDFromMK3Language(static_cast<L>(outside)), 0x0809);
    EXPECT_EQ(Language_Group_From_Language(static_cast<L>(outside)), G::Western);
  }
}

TEST(LanguageCodes, GroupsAndTheirCharsets) {
  const std::pair<L, G> groups[] = {{L::lt_unknown, G::Western},
                                    {L::Albanian, G::Central_European},
                                    {L::ByeloRussian, G::Cyrillic},
                                    {L::Estonian, G::Baltic},
                                    {L::Grek, G::Greek},
                                    {L::Serbian_1251, G::Cyrillic},
                                    {L::Turk, G::Turkish},
                                    {L::Other12, G::Western}};
  for (const auto &[language, group] : groups)
    EXPECT_EQ(Language_Group_From_Language(language), group) << int(language);
  const std::pair<G, uint8_t> charsets[] = {
      {G::Western, 0},  {G::Greek, 161},   {G::Cyrillic, 204},     {G::Central_European, 238},
      {G::Baltic, 186}, {G::Turkish, 162}, {static_cast<G>(6), 0}, {static_cast<G>(255), 0}};
  for (const auto &[group, charset] : charsets)
    EXPECT_EQ(CharsetFromLanguageGroup(group), charset) << int(group);
}

TEST(LanguageCodes, CodePagesAndCharsets) {
  const std::pair<uint16_t, uint8_t> charsets[] = {
      {8, 204},    {866, 204},  {1251, 204}, {737, 161}, {1253, 161}, {771, 186}, {1257, 186},
      {1250, 238}, {1254, 162}, {1252, 0},   {850, 0},   {0, 0},      {65001, 0}};
  for (const auto &[codepage, charset] : charsets)
    EXPECT_EQ(CharsetFromCodepage(codepage), charset) << codepage;
  using C = codepage_types;
  const std::pair<uint16_t, C> types[] = {
      {437, C::_437},     {737, C::_737}, {771, C::_771},         {850, C::_850},
      {852, C::_852},     {860, C::_860}, {863, C::_863},         {865, C::_865},
      {866, C::_866},     {8, C::Koi8},   {1252, C::nao_precisa}, {862, C::nao_precisa},
      {0, C::nao_precisa}};
  for (const auto &[codepage, type] : types)
    EXPECT_EQ(CodePageTypeFromCodepage(codepage), type) << codepage;
  for (uint8_t charset : {0, 176, 179, 255})
    EXPECT_EQ(BiDiModeFromCharset(charset), TBiDiMode::bdLeftToRight) << int(charset);
  for (uint8_t charset : {177, 178})
    EXPECT_EQ(BiDiModeFromCharset(charset), TBiDiMode::bdRightToLeft) << int(charset);
}
