// The suite's own language numbers and their conversions to Windows language
// identifiers, locale identifiers, code pages and font character sets: pure
// table functions of unit Wdef.
#pragma once

#include <cstdint>

namespace kestrel {

// The suite's language numbers (the "MK3" numbering).
enum class language_type : uint8_t {
  lt_unknown,
  Albanian,
  Anglo_Saxon,
  Basque,
  Bosnian,
  Bulgarian,
  ByeloRussian,
  Catalan,
  Croatian,
  Czech,
  Danish,
  Dutch,
  English,
  Estonian,
  Finnish,
  French,
  German,
  Grek,
  Hungarian,
  Icelandic,
  Italian,
  Latvian,
  Lithuanian,
  Macedonian,
  Middle_English,
  Norwegian,
  Old_Norse,
  Polish,
  Portuguese,
  Romanian,
  Russian,
  Serbian,
  Serbian_1251,
  Slovak,
  Slovene,
  Sorbian_Upper,
  Sorbian_Lower,
  Spanish,
  Swedish,
  Turk,
  Ukrainian,
  Other1,
  Other2,
  Other3,
  Other4,
  Other5,
  Other6,
  Other7,
  Other8,
  Other9,
  Other10,
  Other11,
  Other12
};
inline constexpr int kLanguageTypeCount = 53;

enum class language_group_type : uint8_t {
  Western,
  Greek,
  Cyrillic,
  Central_European,
  Baltic,
  Turkish
};

// The DOS code pages the tools can convert.
enum class codepage_types : uint8_t {
  nao_precisa, // no conversion needed
  _437,
  _737,
  _771,
  _850,
  _852,
  _860,
  _863,
  _865,
  _866,
  Koi8
};

// The host's text directions; only the first two come from a charset.
enum class TBiDiMode : uint8_t {
  bdLeftToRight,
  bdRightToLeft,
  bdRightToLeftNoAlign,
  bdRightToLeftReadingOnly
};

// The suite's own code-page number for KOI8.
inline constexpr uint16_t kKoi8CodePage = 8;

// The primary language: the lowest 10 bits.
uint16_t PrimaryLanguage(uint32_t lcid);
bool SamePrimaryLanguage(uint32_t a, uint32_t b);

// Exact identifiers only, sublanguage included; lt_unknown for any other.
language_type MK3LanguageFromLangId(int32_t id);
// 0 for languages Windows has no identifier for.
int32_t WindowsLangIDFromMK3Language(language_type language);
language_group_type Language_Group_From_Language(language_type language);
// The group's font character set; 0 for a value outside the enumeration.
uint8_t CharsetFromLanguageGroup(language_group_type group);
uint8_t CharsetFromCodepage(uint16_t codepage);
codepage_types CodePageTypeFromCodepage(uint16_t codepage);
// Right to left for the Hebrew (177) and Arabic (178) charsets.
TBiDiMode BiDiModeFromCharset(uint8_t charset);

} // namespace kestrel
