// Display vocabulary of the tools: the enumerations and string tables that
// fill a tool's choices, the buttons of a list window, the strings that
// separate exported rows and columns, and two questions about the session.
//
// The records plotarray_type, drawgrid_data_rec, one_text_stats_rec and
// plot_info_rec have plain fields that only the tools know; they are declared
// with the tools that fill them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/host/Types.h>
#include <kestrel/frame/platform/Display.h>
#include <kestrel/frame/platform/UserInfo.h>
#include <kestrel/vocabulary/WdefDisplayTypes.h>
#include <kestrel/vocabulary/my_types.h>

namespace kestrel {

// ---- String tables --------------------------------------------------------------
// Constant from load; released at the unit's finalisation and back at its
// next start-up.

inline constexpr size_t kMathsFunctionCount = 10;
// "(pi)", "RelC", "Sqrt", "Exp", "Sin", "Cos", "Log", "Sqr", "Rel", "Abs".
extern std::string maths_functions[kMathsFunctionCount];

enum class type_mode_type : uint8_t { typing_in, setting_categories, editing_data };
extern EnumTable<type_mode_type, std::string, 3> type_mode_str;

enum class TMutualInfoProc : uint8_t { MI_MI, MI_MI3, MI_Z, MI_log_likelihood };
extern EnumTable<TMutualInfoProc, std::string, 4> MutualInfoChoices;

enum class TBaseDescriptivesSet : uint8_t { gc_total, gc_max, gc_min, gc_mean, gc_sd };
extern EnumTable<TBaseDescriptivesSet, std::string, 5> TBaseDescriptivesStrings;

// ---- Enumerations of the display and of the tools' settings ---------------------

enum class Talphabetical_sort : uint8_t {
  sort_alphabetically,
  sort_reverse_word,
  sort_word_length,
  sort_case_sensitively
};
enum class alignment_mode_type : uint8_t { paragrafo, sentenca };
enum class association_type : uint8_t { alphabet, frequencia, association_strength };
enum class create_read_type : uint8_t { creating, reading };
enum class dual_view_type : uint8_t { horiz_split, vert_split };
enum class index_type : uint8_t { alphabetico, file_order };
enum class keyness_procedure_type : uint8_t { chi_square_proc, log_likelihood_proc };
enum class salients_save_system : uint8_t { in_a_file, as_a_string };
enum class old_kw_disp_type : uint8_t {
  left_fr,
  left_percent,
  right_fr,
  right_percent,
  xsquare,
  prob
};
enum class KWsort_type : uint8_t { alpha, freq1, freq2, by_keyness };
enum class KWplotsort_type : uint8_t { keyness, alphab, incidence, links, first, range };
enum class file_load_type : uint8_t { file_load_unchanged, file_load_it, file_unload_it };
enum class match_action_wanted_type : uint8_t {
  match_now,
  delete_matches,
  delete_non_matches,
  remove_match_marking,
  ignore_matching
};
enum class match_basis_type : uint8_t { file_based, template_based };
enum class output_type : uint8_t {
  screenwards,
  screen_test_wards,
  clipboardwards,
  textfile_wards,
  printerwards,
  print_preview_wards
};
enum class search_type : uint8_t { all, forwards, backwards };
enum class text_mode_type : uint8_t { as_text, as_decimals };
enum class output_results_case_type : uint8_t {
  upper_case_output,
  title_case_output,
  lower_case_output,
  as_it_comes_output
};
enum class alignment_type : uint8_t {
  centre_aligned,
  left_aligned,
  right_aligned,
  decimal_aligned,
  plotting,
  text_glass_entry,
  conc_entry,
  file_name
};
enum class editable_type : uint8_t { nao_pode, maiusc, minusc, tanto_faz };
enum class drawgrid_data_types : uint8_t { aswidestring, assingle, asplot };
enum class TIndexChoices : uint8_t { index_delete, index_backup, index_proceed };
enum class kw_fnames_order : uint8_t { little_text, reference_corpus };
enum class gradient_colours : uint8_t { start_colour, end_colour };
enum class TRulerAndPlotColourTypes : uint8_t { rpc_plotmarks, rpc_rulermarks, rpc_margins };

// ---- The buttons of a list window -------------------------------------------------

enum class button_show_set : uint8_t {
  show_save,
  show_print,
  show_copy,
  show_grow,
  show_help,
  show_shrink,
  show_autosize,
  show_resort,
  show_columns,
  show_maths,
  show_mutual_info,
  show_allow_more_columns,
  show_casechange,
  show_matchlist,
  show_mark,
  show_lemma_match,
  show_join,
  show_unjoin,
  show_autojoin,
  show_zap,
  show_edit,
  show_search,
  show_replace,
  show_collocs,
  show_recompute_collocs,
  show_filenames,
  show_plot,
  show_plot_ruler,
  show_divide,
  show_clusters,
  show_patterns,
  show_links,
  show_associates,
  show_clumps,
  show_findBestClump,
  show_summarystats,
  show_stats,
  show_rotate,
  show_viewtext,
  show_notes,
  show_skim,
  show_refresh,
  show_lineups,
  show_tallyman,
  show_findfiles
};
inline constexpr size_t kButtonShowCount = 45;
using TButton_Options = TSet<button_show_set, 6>;

// ---- Declared types ---------------------------------------------------------------

struct dos_ansi_conversion_rec {
  std::string dos_text;
  std::string ansi_text;
};

struct kw_fnames_rec {
  int32_t number;
  EnumTable<kw_fnames_order, std::string, 2> fnames;
};

using smaller_search_word_type = ShortString<79>;
using array_of_word = std::vector<uint16_t>;
using array_of_integer_type = std::vector<int32_t>;
using array_of_Boolean_type = std::vector<bool>;
using array_of_cardinal_and_pointer = std::vector<std::pair<uint32_t, void *>>;
using TStringlistArray = std::vector<TStringList *>;

// ---- Process-wide strings and scratch ---------------------------------------------

// Set at the unit's start-up: a tab; CR LF, two blanks, "<ENTRY>" and
// "</ENTRY>"; empty.
extern std::string txt_column_separator;
extern std::string row_separator_string_on;
extern std::string row_separator_string_off;
extern std::string saveas_filename;

// Scratch buffers for the tools; the library does not touch them.
extern char arrchar255[256];
extern char16_t arrchar255W[256];
// A handle for the tools, 0 at load.
extern uint32_t AccelTbl;

// ---- The session ------------------------------------------------------------------

// Logical pixels per inch across the screen (LOGPIXELSX of its device
// context): 96 unless the tool has said otherwise with SetScreenPixelsPerInch.
int32_t ScreenPixelsPerInch();
// The name of the user the process runs as, from the system's user database;
// "?????" when it cannot be had or is longer than 99 characters.
std::string Registry_Current_User();

void Yikes();   // does nothing
bool testing(); // true

} // namespace kestrel
