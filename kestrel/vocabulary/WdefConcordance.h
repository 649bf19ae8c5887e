// Concordance vocabulary: the word positions around a search word, the sorts
// and their names, and the settings the tools keep about concordances.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <kestrel/frame/host/Types.h>
#include <kestrel/vocabulary/WdefDisplayTypes.h>
#include <kestrel/vocabulary/my_types.h>

namespace kestrel {

// Word positions around a search word: 50 to the left, the centre at
// ordinal 50, 51 to the right.
enum class TConcordance_span_type : uint8_t {
  span_L50,
  span_L49,
  span_L48,
  span_L47,
  span_L46,
  span_L45,
  span_L44,
  span_L43,
  span_L42,
  span_L41,
  span_L40,
  span_L39,
  span_L38,
  span_L37,
  span_L36,
  span_L35,
  span_L34,
  span_L33,
  span_L32,
  span_L31,
  span_L30,
  span_L29,
  span_L28,
  span_L27,
  span_L26,
  span_L25,
  span_L24,
  span_L23,
  span_L22,
  span_L21,
  span_L20,
  span_L19,
  span_L18,
  span_L17,
  span_L16,
  span_L15,
  span_L14,
  span_L13,
  span_L12,
  span_L11,
  span_L10,
  span_L09,
  span_L08,
  span_L07,
  span_L06,
  span_L05,
  span_L04,
  span_L03,
  span_L02,
  span_L01,
  span_Centre,
  span_R01,
  span_R02,
  span_R03,
  span_R04,
  span_R05,
  span_R06,
  span_R07,
  span_R08,
  span_R09,
  span_R10,
  span_R11,
  span_R12,
  span_R13,
  span_R14,
  span_R15,
  span_R16,
  span_R17,
  span_R18,
  span_R19,
  span_R20,
  span_R21,
  span_R22,
  span_R23,
  span_R24,
  span_R25,
  span_R26,
  span_R27,
  span_R28,
  span_R29,
  span_R30,
  span_R31,
  span_R32,
  span_R33,
  span_R34,
  span_R35,
  span_R36,
  span_R37,
  span_R38,
  span_R39,
  span_R40,
  span_R41,
  span_R42,
  span_R43,
  span_R44,
  span_R45,
  span_R46,
  span_R47,
  span_R48,
  span_R49,
  span_R50,
  span_R51
};
inline constexpr size_t kConcordanceSpanCount = 102;

enum class concordance_sort_type : uint8_t {
  cs_left5,
  cs_left4,
  cs_left3,
  cs_left2,
  cs_left1,
  cs_centre,
  cs_right1,
  cs_right2,
  cs_right3,
  cs_right4,
  cs_right5,
  cs_context_word_position,
  cs_number,
  cs_original,
  cs_by_tag,
  cs_by_tag_distance,
  cs_file_percent,
  cs_word_number,
  cs_sentence_number,
  cs_sentence_position,
  cs_paragraph_number,
  cs_paragraph_position,
  cs_heading_number,
  cs_heading_position,
  cs_section_number,
  cs_section_position
};
inline constexpr size_t kConcordanceSortCount = 26;

// The display name of each sort ("L5" ... "Section position"); constant from
// load, released at the unit's finalisation.
extern EnumTable<concordance_sort_type, std::string, kConcordanceSortCount> sort_str_arr;

// The span of a positional sort: its ordinal plus 45, so cs_left5 gives
// span_L05, cs_centre span_Centre and cs_right5 span_R05. The other sorts
// follow the same arithmetic (cs_context_word_position gives span_R06).
constexpr TConcordance_span_type SortSpanFromSort(concordance_sort_type sort) {
  return static_cast<TConcordance_span_type>(static_cast<uint8_t>(sort) + 45);
}

// The third sort of a concordance; cs_by_tag at load.
extern concordance_sort_type conc_third_sort;

// The earlier numbering of the sorts.
enum class old_sort_type : uint8_t {
  _leftmost,
  _left4,
  _left3,
  _left2,
  _left1,
  _centre,
  _right1,
  _right2,
  _right3,
  _right4,
  _rightmost,
  _context,
  _number,
  _original,
  _by_tag
};

enum class TSortLevel : uint8_t { main_sort, second_sort, third_sort };

enum class concordance_view_mode_type : uint8_t { cv_unlimited, cv_sentence, cv_paragraph };

using conc_display_type = TSet<conc_display_possibilities, 1>;

enum class Tconcordance_half_type : uint8_t { left_half, right_half };

enum class Tcollocates_stop_at_type : uint8_t {
  coll_stop_none,
  coll_stop_punctuation,
  coll_stop_sentence,
  coll_stop_paragraph,
  coll_stop_heading,
  coll_stop_section,
  coll_stop_text
};

// Numbers held for the tools, 0 at load; the library does not read them.
extern int16_t compnum;
extern int16_t concnum;
extern int16_t dicnum;
extern int16_t dispnum;
extern int16_t keywnum;
extern int16_t resort_num1;
extern int16_t resort_num2;
extern int16_t ToolChildNumber;
// "a" at load.
extern char lineups_chosen_category;

} // namespace kestrel
