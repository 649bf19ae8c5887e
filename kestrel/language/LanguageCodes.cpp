// The language conversions of unit Wdef.
#include <kestrel/language/LanguageCodes.h>

#include <iterator>

namespace kestrel {

namespace {

using G = language_group_type;

struct LanguageRow {
  G group;
  int32_t langId;
};

// One row per language_type, in its order.
constexpr LanguageRow kLanguages[kLanguageTypeCount] = {
    {G::Western, 0x0809},          // lt_unknown
    {G::Central_European, 0x041C}, // Albanian
    {G::Western, 0x0809},          // Anglo_Saxon
    {G::Western, 0x042D},          // Basque
    {G::Central_European, 0},      // Bosnian
    {G::Cyrillic, 0x0402},         // Bulgarian
    {G::Cyrillic, 0x0423},         // ByeloRussian
    {G::Western, 0x0403},          // Catalan
    {G::Central_European, 0x041A}, // Croatian
    {G::Central_European, 0x0405}, // Czech
    {G::Western, 0x0406},          // Danish
    {G::Western, 0x0413},          // Dutch
    {G::Western, 0x0809},          // English
    {G::Baltic, 0x0425},           // Estonian
    {G::Western, 0x040B},          // Finnish
    {G::Western, 0x040C},          // French
    {G::Western, 0x0407},          // German
    {G::Greek, 0x0408},            // Grek
    {G::Central_European, 0x040E}, // Hungarian
    {G::Western, 0x040F},          // Icelandic
    {G::Western, 0x0410},          // Italian
    {G::Baltic, 0x0426},           // Latvian
    {G::Baltic, 0x0427},           // Lithuanian
    {G::Cyrillic, 0x042F},         // Macedonian
    {G::Western, 0x0809},          // Middle_English
    {G::Western, 0x0414},          // Norwegian
    {G::Western, 0x0814},          // Old_Norse
    {G::Central_European, 0x0415}, // Polish
    {G::Western, 0x0416},          // Portuguese
    {G::Central_European, 0x0418}, // Romanian
    {G::Cyrillic, 0x0419},         // Russian
    {G::Central_European, 0x081A}, // Serbian
    {G::Cyrillic, 0x0C1A},         // Serbian_1251
    {G::Central_European, 0x041B}, // Slovak
    {G::Central_European, 0x0424}, // Slovene
    {G::Central_European, 0},      // Sorbian_Upper
    {G::Central_European, 0},      // Sorbian_Lower
    {G::Western, 0x040A},          // Spanish
    {G::Western, 0x041D},          // Swedish
    {G::Turkish, 0x041F},          // Turk
    {G::Cyrillic, 0x0422},         // Ukrainian
    {G::Western, 0},               // Other1
    {G::Western, 0},               // Other2
    {G::Western, 0},               // Other3
    {G::Western, 0},               // Other4
    {G::Western, 0},               // Other5
    {G::Western, 0},               // Other6
    {G::Western, 0},               // Other7
    {G::Western, 0},               // Other8
    {G::Western, 0},               // Other9
    {G::Western, 0},               // Other10
    {G::Western, 0},               // Other11
    {G::Western, 0},               // Other12
};

const LanguageRow &RowOf(language_type language) {
  const auto i = static_cast<uint8_t>(language);
  return kLanguages[i < kLanguageTypeCount ? i : 0];
}

} // namespace

uint16_t PrimaryLanguage(uint32_t lcid) {
  return static_cast<uint16_t>(lcid & 0x03FF);
}

bool SamePrimaryLanguage(uint32_t a, uint32_t b) {
  return PrimaryLanguage(a) == PrimaryLanguage(b);
}

namespace {

struct LangIdRow {
  int32_t ids[20]; // ends at the first 0 after the first entry
  language_type language;
};

// Every variety is listed by itself: the mapping is exact.
// clang-format off
constexpr LangIdRow kLangIds[] = {
    {{0x0000, 0x0400, 0x0409, 0x0809, 0x0C09, 0x1009, 0x1409, 0x1809, 0x1C09, 0x2009, 0x2409,
      0x2809, 0x2C09, 0x3009, 0x3409}, language_type::English},
    {{0x041C}, language_type::Albanian},
    {{0x042D}, language_type::Basque},
    {{0x0402}, language_type::Bulgarian},
    {{0x0423}, language_type::ByeloRussian},
    {{0x0403}, language_type::Catalan},
    {{0x041A}, language_type::Croatian},
    {{0x0405}, language_type::Czech},
    {{0x0406}, language_type::Danish},
    {{0x0413, 0x0436, 0x0813}, language_type::Dutch},
    {{0x0425}, language_type::Estonian},
    {{0x040B}, language_type::Finnish},
    {{0x040C, 0x080C, 0x0C0C, 0x100C, 0x140C, 0x180C}, language_type::French},
    {{0x0407, 0x0807, 0x0C07, 0x1007, 0x1407}, language_type::German},
    {{0x0408}, language_type::Grek},
    {{0x040E}, language_type::Hungarian},
    {{0x040F}, language_type::Icelandic},
    {{0x0410, 0x0810}, language_type::Italian},
    {{0x0426}, language_type::Latvian},
    {{0x0427, 0x0827}, language_type::Lithuanian},
    {{0x042F}, language_type::Macedonian},
    {{0x0414, 0x0814}, language_type::Norwegian},
    {{0x0415}, language_type::Polish},
    {{0x0416, 0x0816}, language_type::Portuguese},
    {{0x0418}, language_type::Romanian},
    {{0x0419}, language_type::Russian},
    {{0x081A}, language_type::Serbian},
    {{0x0C1A}, language_type::Serbian_1251},
    {{0x041B}, language_type::Slovak},
    {{0x0424}, language_type::Slovene},
    {{0x040A, 0x080A, 0x0C0A, 0x100A, 0x140A, 0x180A, 0x1C0A, 0x200A, 0x240A, 0x280A, 0x2C0A,
      0x300A, 0x340A, 0x380A, 0x3C0A, 0x400A, 0x440A, 0x480A, 0x4C0A, 0x500A}, language_type::Spanish},
    {{0x041D, 0x081D}, language_type::Swedish},
    {{0x041F}, language_type::Turk},
    {{0x0422}, language_type::Ukrainian},
};
// clang-format on

} // namespace

language_type MK3LanguageFromLangId(int32_t id) {
  for (const LangIdRow &row : kLangIds)
    for (size_t i = 0; i < std::size(row.ids) && (i == 0 || row.ids[i] != 0); ++i)
      if (row.ids[i] == id) return row.language;
  return language_type::lt_unknown;
}

int32_t WindowsLangIDFromMK3Language(language_type language) {
  return RowOf(language).langId;
}

language_group_type Language_Group_From_Language(language_type language) {
  return RowOf(language).group;
}

uint8_t CharsetFromLanguageGroup(language_group_type group) {
  static constexpr uint8_t kCharsets[] = {0, 161, 204, 238, 186, 162};
  const auto i = static_cast<uint8_t>(group);
  return i < sizeof kCharsets ? kCharsets[i] : 0;
}

// clang-format off
uint8_t CharsetFromCodepage(uint16_t codepage) {
  switch (codepage) {
  case kKoi8CodePage: case 866: case 1251: return 204;
  case 737: case 1253: return 161;
  case 771: case 1257: return 186;
  case 1250: return 238;
  case 1254: return 162;
  default: return 0;
  }
}

codepage_types CodePageTypeFromCodepage(uint16_t codepage) {
  using C = codepage_types;
  switch (codepage) {
  case 437: return C::_437;
  case 737: return C::_737;
  case 771: return C::_771;
  case 850: return C::_850;
  case 852: return C::_852;
  case 860: return C::_860;
  case 863: return C::_863;
  case 865: return C::_865;
  case 866: return C::_866;
  case kKoi8CodePage: return C::Koi8;
  default: return C::nao_precisa;
  }
}
// clang-format on

TBiDiMode BiDiModeFromCharset(uint8_t charset) {
  return charset == 177 || charset == 178 ? TBiDiMode::bdRightToLeft : TBiDiMode::bdLeftToRight;
}

} // namespace kestrel
