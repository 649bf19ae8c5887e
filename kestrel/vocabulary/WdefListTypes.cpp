// Unit Wdef: the table of list kinds and the mappings over it.
#include <kestrel/vocabulary/WdefListTypes.h>

#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

const EnumTable<list_type, const char *, kListTypeCount> list_type_as_string = {{
    "Word list",
    "Keyword list",
    "Salients Database",
    "Simple Consistency List",
    "Detailed Consistency List",
    "Collocate List",
    "Salients as Tallyman",
    "KWDBase as Tallyman",
    "Associates as Tallyman",
    "Clumps as Tallyman",
    "Concordance list",
    "Salients Plot list",
    "Concordance Plot list",
    "Concordance Cluster List",
    "Concordance Pattern List",
    "Associate List",
    "Clump List",
    "Filename List",
    "Link List",
    "Statistics List",
    "Ratio Stats List",
    "Aligner List",
    "Text List",
    "Tallyman Index List",
    "Salients Cluster list",
    "",
    "Notes",
    "",
    "Mutual Information List",
    "",
    "",
    "",
    "",
    "",
    "",
}};

const EnumTable<list_type, const char *, kListTypeCount> list_signature32 = {{
    "Word List32",
    "Key Word List32",
    "Salients Database32",
    "Simple Consistency List32",
    "Detailed Consistency List32",
    "Collocate List32",
    "Salients as Tallyman32",
    "KWDBase as Tallyman32",
    "Associates as Tallyman32",
    "Clumps as Tallyman32",
    "Concordance32",
    "Salients Plot32",
    "Concordance Plot32",
    "Concordance Cluster List32",
    "Concordance Pattern List32",
    "Associate List32",
    "Clump List32",
    "Filename List32",
    "Link List32",
    "Statistics List32",
    "Ratio Stats List32",
    "Aligner List32",
    " Text List32",
    "Tallyman Index List32",
    "Salients ClusterList32",
    "",
    "Notes",
    "spare3",
    "Mutual Information List32",
    "spare5",
    "spare6",
    "spare7",
    "spare8",
    "spare9",
    "spare10",
}};

const EnumTable<list_type, const char *, kListTypeCount> older_signature_table = {{
    "Word Lister",
    "Key Word List",
    "Salients Database (v. 2)",
    "Simple Consistency List",
    "Detailed Consistency List",
    "Collocate List",
    "Salients as Tallyman",
    "KWDBase as Tallyman",
    "Associates as Tallyman",
    "Clumps as Tallyman",
    "Concordancer",
    "Salients Plot",
    "Concordance Plot",
    "Concordance Cluster List",
    "Concordance Pattern List",
    "Associate List",
    "Clump List",
    "Filename List",
    "Link List",
    "Statistics List",
    "Ratio Stats List",
    "Aligner List",
    " Text List",
    "Tallyman Index List",
    "",
    "",
    "",
    "",
    "",
    "",
    "",
    "",
    "",
    "",
    "",
}};

namespace {

using enum list_type;
using enum tool_type;

constexpr const char *kDefaultExt[kListTypeCount] = {
    ".lst", ".kws", ".kdb", ".lst", ".lst", ".col",    ".lst", ".lst", ".lst",
    ".lst", ".cnc", "kpl",  ".cpl", ".ccl", ".cpt",    ".ass", "clp",  ".fil",
    "klk",  ".lst", ".lst", ".ali", ".vwr", ".tokens", "",     "",     "",
    "",     ".mut", "",     "",     "",     "",        "",     ""};

// current_tool_var answers for the rows marked so (notes_window, spare10).
constexpr tool_type kCurrent = tool_spare4;
constexpr tool_type kOwner[kListTypeCount] = {
    tallyman, salients, salients, tallyman, tallyman, lineups,  tallyman, tallyman, tallyman,
    tallyman, lineups,  salients, lineups,  lineups,  lineups,  salients, salients, hub,
    salients, tallyman, tallyman, glass,    glass,    tallyman, salients, hub,      kCurrent,
    hub,      tallyman, hub,      hub,      hub,      hub,      hub,      kCurrent};

constexpr file_data_type M = file_data_type::marlow_only_data;
constexpr file_data_type G = file_data_type::graphic_data;
constexpr file_data_type T = file_data_type::text_data;
constexpr file_data_type kData[kListTypeCount] = {M, M, M, M, M, M, M, M, M, M, M, G,
                                                  G, M, M, M, M, T, M, M, M, M, T, M,
                                                  M, M, T, T, M, M, M, M, M, M, M};

constexpr list_type kGridList[kGridAlternativesCount] = {concordance_list,
                                                         concordance_cluster_list,
                                                         concordance_plot_list,
                                                         concordance_pattern_list,
                                                         collocate_list,
                                                         none_in_use,
                                                         word_list,
                                                         word_list,
                                                         statistics_list,
                                                         filename_list,
                                                         ratio_stats_list,
                                                         keyword_list,
                                                         KW_database_list,
                                                         associate_list,
                                                         none_in_use,
                                                         clump_list,
                                                         keyword_plot_list,
                                                         link_list,
                                                         text_list,
                                                         aligner_list,
                                                         none_in_use,
                                                         none_in_use,
                                                         mutual_information_list,
                                                         none_in_use,
                                                         none_in_use,
                                                         none_in_use,
                                                         none_in_use,
                                                         none_in_use,
                                                         none_in_use,
                                                         none_in_use,
                                                         none_in_use};

size_t Row(list_type list) {
  return static_cast<size_t>(list);
}

} // namespace

std::string ListSignature(list_type list) {
  if (Row(list) >= kListTypeCount) return "";
  std::string sig = list_signature32[list];
  if (sig.size() >= 2 && sig.compare(sig.size() - 2, 2, "32") == 0) sig.resize(sig.size() - 2);
  return sig;
}

list_type ListTypeFromFileExt(std::string_view ext) {
  const std::string e = LowerCase(ext);
  if (e == wl_ext || e == mut_ext) return word_list;
  if (e == conc_ext) return concordance_list;
  if (e == kw_ext) return keyword_list;
  if (e == kwdb_ext) return KW_database_list;
  if (e == vwr_ext) return text_list;
  return spare10;
}

tool_type ToolTypeFromFileExt(std::string_view ext) {
  const std::string e = LowerCase(ext);
  if (e == conc_ext) return lineups;
  if (e == kw_ext || e == kwdb_ext) return salients;
  if (e == wl_ext || e == index_tokens_extension || e == mut_ext || e == dcl_ext) return tallyman;
  if (e == aligner_ext || e == vwr_ext) return glass;
  return tool_spare4;
}

std::string DefaultExtFromToolType(tool_type tool) {
  switch (tool) {
  case tallyman:
    return wl_ext;
  case lineups:
    return conc_ext;
  case salients:
    return kw_ext;
  case glass:
    return vwr_ext;
  case cleaver:
  case netgleaner:
  case twin_seeker:
  case file_kit:
    return ".txt";
  case widener16:
    // The widener writes in the format of the tool that runs it.
    return current_tool_var != widener16 ? DefaultExtFromToolType(current_tool_var) : ".dat";
  default:
    return ".dat";
  }
}

std::string DefaultExtFromListType(list_type list) {
  return Row(list) < kListTypeCount ? kDefaultExt[Row(list)] : "";
}

std::string DefaultExtFromSaveASFormat(save_as_format_type format, list_type list) {
  switch (format) {
  case save_as_format_type::as_txt:
    return ".txt";
  case save_as_format_type::as_xml:
    return ".xml";
  case save_as_format_type::as_Excel_spreadsheet:
    return ".xls";
  case save_as_format_type::as_default_for_list:
    return DefaultExtFromListType(list);
  case save_as_format_type::as_Word_doc:
    return ".doc";
  }
  return "";
}

list_type ListTypeFromGridAlternatives(grid_alternatives grid) {
  const auto row = static_cast<size_t>(grid);
  return row < kGridAlternativesCount ? kGridList[row] : none_in_use;
}

file_data_type ListTypeToFileDataType(list_type list) {
  return Row(list) < kListTypeCount ? kData[Row(list)] : file_data_type::marlow_only_data;
}

tool_type ToolTypeFromListType(list_type list) {
  if (Row(list) >= kListTypeCount) return hub;
  const tool_type owner = kOwner[Row(list)];
  return owner == kCurrent ? current_tool_var : owner;
}

} // namespace kestrel
