// Display vocabulary of unit Wdef that the name tables and the list mappings
// are indexed by: colour roles, save-as formats, concordance display options.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kestrel {

enum class TMKcolourset : uint8_t {
  normalcolour,
  highlightcolour,
  tagcolour,
  searchwordcolour,
  mainsortcolour,
  secondsortcolour,
  contextwordcolour,
  deletedcolour,
  taghighlightedcolour,
  centrehighlightedcolour,
  mainsorthighlightedcolour,
  secondsorthighlightedcolour,
  contextwordhighlightedcolour,
  mostfreqcolloccolour,
  viewtextsalientscolour,
  viewtextcolour
};
inline constexpr size_t kColoursetCount = 16;

enum class save_as_format_type : uint8_t {
  as_txt,
  as_xml,
  as_Excel_spreadsheet,
  as_default_for_list,
  as_Word_doc
};

enum class conc_display_possibilities : uint8_t {
  hide_tags,
  hide_words,
  cut_spaces,
  sentence_only
};
inline constexpr size_t kConcDisplayCount = 4;

} // namespace kestrel
