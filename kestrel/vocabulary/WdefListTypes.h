// The kinds of stored list, their names, signatures, extensions, owning tools
// and kinds of data, and the mappings between them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <kestrel/frame/host/Types.h>
#include <kestrel/vocabulary/WdefDisplayTypes.h>
#include <kestrel/vocabulary/my_types.h>

namespace kestrel {

enum class list_type : uint8_t {
  word_list,
  keyword_list,
  KW_database_list,
  simple_consistency_list,
  detailed_consistency_list,
  collocate_list,
  salients_as_word_list,
  KWDbase_as_word_list,
  associates_as_word_list,
  clumps_as_word_list,
  concordance_list,
  keyword_plot_list,
  concordance_plot_list,
  concordance_cluster_list,
  concordance_pattern_list,
  associate_list,
  clump_list,
  filename_list,
  link_list,
  statistics_list,
  ratio_stats_list,
  aligner_list,
  text_list,
  tallyman_index_list,
  kw_cluster_list,
  none_in_use,
  notes_window,
  source_text_window,
  mutual_information_list,
  spare5,
  spare6,
  spare7,
  spare8,
  spare9,
  spare10
};
inline constexpr size_t kListTypeCount = 35;
using list_type_set = TSet<list_type, 5>;

enum class file_data_type : uint8_t { marlow_only_data, graphic_data, text_data };

// The ways a list can be held; only declared here.
enum class TBatchMode : uint8_t {
  simple_list,
  one_batchfile_holding_individual_data,
  folder_batchfiles_holding_individual_data,
  folder_batchfiles_holding_folderfuls_of_data
};

enum class grid_alternatives : uint8_t {
  concordance_grid,
  clusters_grid,
  dispersions_grid,
  patterns_grid,
  collocates_grid,
  detailed_consistency_grid,
  alph_order_grid,
  freq_order_grid,
  stats_grid,
  filenames_grid,
  ratiostats_grid,
  salients_grid,
  KWdbase_grid,
  kwassociates_grid,
  kwcluster_list,
  kwclumps_grid,
  kwplot_grid,
  kwplotlink_grid,
  glass_text_grid,
  glass_aligned_grid,
  spare_v2,
  spare_v3,
  mutual_information_grid,
  spare_3,
  spare_4,
  spare_5,
  spare_6,
  spare_7,
  spare_8,
  spare_9,
  grid_none
};
inline constexpr size_t kGridAlternativesCount = 31;

// Tables over list_type.
extern const EnumTable<list_type, const char *, kListTypeCount> list_type_as_string;
extern const EnumTable<list_type, const char *, kListTypeCount> list_signature32;
extern const EnumTable<list_type, const char *, kListTypeCount> older_signature_table;

// Extension constants.
inline constexpr const char *wl_ext = ".lst";
inline constexpr const char *mut_ext = ".mut";
inline constexpr const char *dcl_ext = ".dcl";
inline constexpr const char *aligner_ext = ".ali";
inline constexpr const char *conc_ext = ".cnc";
inline constexpr const char *kw_ext = ".kws";
inline constexpr const char *kwdb_ext = ".kdb";
inline constexpr const char *vwr_ext = ".vwr";
inline constexpr const char *index_types_extension = ".types";
inline constexpr const char *index_types_bak = ".types_bak";
inline constexpr const char *index_tokens_extension = ".tokens";
inline constexpr const char *index_tokens_bak = ".tokens_bak";

// The signature without its trailing "32".
std::string ListSignature(list_type list);
// Extension (with its full stop, any case) to list kind; spare10 when unknown.
list_type ListTypeFromFileExt(std::string_view ext);
// Extension (with its full stop, any case) to tool; tool_spare4 when unknown.
tool_type ToolTypeFromFileExt(std::string_view ext);
std::string DefaultExtFromToolType(tool_type tool);
std::string DefaultExtFromListType(list_type list);
std::string DefaultExtFromSaveASFormat(save_as_format_type format, list_type list);
list_type ListTypeFromGridAlternatives(grid_alternatives grid);
file_data_type ListTypeToFileDataType(list_type list);
// The owning tool; the running tool for notes_window and spare10.
tool_type ToolTypeFromListType(list_type list);

} // namespace kestrel
