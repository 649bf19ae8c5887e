// Text selection and tags: the string forms in which a user writes which
// stretch of a text to take and which tags to ignore, the records they turn
// into, the default markers of each text format, and the encoded form of
// line ends, tabs and wildcards.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/vocabulary/my_types.h>

namespace kestrel {

// ---- Wildcards --------------------------------------------------------------

enum class tag_wildcards_type : uint8_t {
  not_type,
  any_letter_type,
  asterisk_type,
  question_type,
  hash_type
};
inline constexpr size_t kTagWildcardsCount = 5;

enum class tag_conversion_type : uint8_t { original_char, replacement_char };

// Each wildcard as the user writes it and the control character that stands
// for it once converted (31 down to 27), one character each. Set at the
// unit's start-up.
extern EnumTable<tag_wildcards_type, EnumTable<tag_conversion_type, std::u16string, 2>,
                 kTagWildcardsCount>
    wildcards_converters;

// text with the first occurrence of each wildcard replaced by its control
// character, unless that occurrence stands in double quotes ("*").
std::u16string WildcardConverted(std::u16string_view text);

// ---- Selection record -------------------------------------------------------

// Characters a field of the selection record holds, before its terminator.
inline constexpr size_t kSelectFieldChars = 80;

// A stretch of text described by a literal head, wildcards and a literal
// tail. In the host's aligned layout.
struct TSelectTextFile_RecW {
  char16_t select_head[kSelectFieldChars + 1];      // text before the first wildcard
  char16_t select_wildcards[kSelectFieldChars + 1]; // the wildcards, as control characters
  char16_t select_tail[kSelectFieldChars + 1];      // all text after the first wildcard
  int32_t select_head_length;                       // characters in select_head
  uint8_t select_spare;                             // zeroed here, the tools' own
  bool select_has_wildcards;
};
static_assert(sizeof(TSelectTextFile_RecW) == 496);
static_assert(offsetof(TSelectTextFile_RecW, select_wildcards) == 162);
static_assert(offsetof(TSelectTextFile_RecW, select_tail) == 324);
static_assert(offsetof(TSelectTextFile_RecW, select_head_length) == 488);
static_assert(offsetof(TSelectTextFile_RecW, select_spare) == 492);
static_assert(offsetof(TSelectTextFile_RecW, select_has_wildcards) == 493);

// Splits text (after WildcardConverted) into head, wildcards and tail; each
// field is cut to 80 characters. Every control character counts as a wildcard.
TSelectTextFile_RecW WideStringToTSelectTextFile_RecW(std::u16string_view text);
// Head, the wildcards as the user writes them, tail: all wildcards come to
// stand together between head and tail ("a*b?c" comes back as "a*?bc").
std::u16string TSelectTextFile_RecWToWideString(const TSelectTextFile_RecW &rec);

// ---- Tags to ignore ---------------------------------------------------------

enum class tag_on_off_type : uint8_t { tag_on, tag_off };
inline constexpr size_t kIgnoreTagSlots = 6;

// Up to six kinds of bracket whose contents are ignored: the opening
// characters in the tag_on row, the closing ones in the tag_off row. A slot
// with a zero in either row is empty.
using IgnoreTag_Type = EnumTable<tag_on_off_type, std::array<char16_t, kIgnoreTagSlots>, 2>;
static_assert(sizeof(IgnoreTag_Type) == 24);

// "<*>,[*]" form: comma-separated entries, each giving its first character
// as the opening and its last as the closing one. A seventh entry and those
// after it overwrite the sixth; an empty entry leaves its slot empty.
IgnoreTag_Type WideStringToIgnoreTag_Type(std::u16string_view text);
std::u16string IgnoreTag_TypeToWideString(const IgnoreTag_Type &tag);

// ---- Text formats and their segment markers ---------------------------------

enum class text_format_type : uint8_t { assume_ascii, assume_HTML, assume_SGML };
inline constexpr size_t kTextFormatCount = 3;

// Segments of a text, 14 to 21: start and end of a sentence, a paragraph, a
// heading and a section.
using text_segments_type = uint8_t;
inline constexpr text_segments_type sentence_start_segment = 14;
inline constexpr text_segments_type sentence_end_segment = 15;
inline constexpr text_segments_type paragraph_start_segment = 16;
inline constexpr text_segments_type paragraph_end_segment = 17;
inline constexpr text_segments_type heading_start_segment = 18;
inline constexpr text_segments_type heading_end_segment = 19;
inline constexpr text_segments_type section_start_segment = 20;
inline constexpr text_segments_type section_end_segment = 21;
inline constexpr size_t kTextSegmentCount = 8;

// The default marker of each segment in each text format, indexed by segment
// first: text_format_defaults[paragraph_end_segment][assume_HTML] is "</p>".
// A segment outside 14 to 21 gives a row of empty strings. Set at the unit's
// start-up.
struct text_format_defaults_type {
  using Row = EnumTable<text_format_type, std::u16string, kTextFormatCount>;
  Row rows[kTextSegmentCount];
  const Row &operator[](text_segments_type segment) const;
};
extern text_format_defaults_type text_format_defaults;

enum class text_stats_type : uint8_t {
  word_stats,
  sentence_stats,
  paragraph_stats,
  heading_stats,
  section_stats
};

enum class trim_type : uint8_t { trim_left_edge, trim_right_edge, trim_both_edges };

// Default signs of tag handling.
extern char16_t default_tag_translation_starter; // "&"
extern char16_t default_tag_switch_off;          // "/"
inline constexpr char crlftab[4] = {13, 10, 9, 0};

// ---- Encoded line ends, tabs and wildcards ----------------------------------

// "*", "?" and "#" become codes 29, 28 and 27 except at either end of the text
// or next to a double quote; then "<Enter>" becomes CR LF and "<Tab>" a tab.
std::u16string EncodedCRLFTAB(std::u16string_view text);
// Codes 29, 28, 27 back to "*", "?", "#"; CR LF to "<Enter>", tab to "<Tab>".
std::u16string DecodedCRLFTAB(std::u16string_view text);

// ---- Selection kinds --------------------------------------------------------

enum class text_select_type : uint8_t { incluir_and, incluir_or, excluir_and, excluir_or };

// 1, 4, 7: include all; else up to 9: include any; 10: exclude all; above: exclude any.
text_select_type SelectAtAllTypeFromNumber(int16_t n);
// Below 7 excludes, from 7 on includes; odd numbers all, even numbers any.
text_select_type SelectWithinTypeFromNumber(int16_t n);

} // namespace kestrel
