// The kinds of stored list and the mappings between kinds, tools and extensions.
#include <gtest/gtest.h>

#include <string>

#include <kestrel/vocabulary/Vocabulary.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

using enum list_type;

TEST(ListTypes, TableRows) {
  struct Row {
    list_type list;
    const char *name, *signature, *older, *ext;
    tool_type tool;
    file_data_type data;
  };
  using enum tool_type;
  using enum file_data_type;
  const Row rows[] = {
      {word_list, "Word list", "Word List32", "Word Lister", ".lst", tallyman, marlow_only_data},
      {keyword_plot_list, "Salients Plot list", "Salients Plot32", "Salients Plot", "kpl", salients,
       graphic_data},
      {text_list, "Text List", " Text List32", " Text List", ".vwr", glass, text_data},
      {kw_cluster_list, "Salients Cluster list", "Salients ClusterList32", "", "", salients,
       marlow_only_data},
      {none_in_use, "", "", "", "", hub, marlow_only_data},
      {source_text_window, "", "spare3", "", "", hub, text_data},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.signature);
    EXPECT_STREQ(list_type_as_string[r.list], r.name);
    EXPECT_STREQ(list_signature32[r.list], r.signature);
    EXPECT_STREQ(older_signature_table[r.list], r.older);
    EXPECT_EQ(DefaultExtFromListType(r.list), r.ext);
    EXPECT_EQ(ToolTypeFromListType(r.list), r.tool);
    EXPECT_EQ(ListTypeToFileDataType(r.list), r.data);
  }
}

TEST(ListTypes, EveryTableIsFilledToTheLastRow) {
  // A missing row would shift every later one; the last rows pin the length.
  EXPECT_STREQ(list_signature32[spare10], "spare10");
  EXPECT_STREQ(list_type_as_string[notes_window], "Notes");
  EXPECT_STREQ(older_signature_table[tallyman_index_list], "Tallyman Index List");
  EXPECT_EQ(ListTypeFromGridAlternatives(grid_alternatives::grid_none), none_in_use);
  EXPECT_EQ(ListTypeFromGridAlternatives(grid_alternatives::mutual_information_grid),
            mutual_information_list);
}

TEST(ListTypes, ListSignatureDropsOnlyATrailing32) {
  EXPECT_EQ(ListSignature(word_list), "Word List");
  EXPECT_EQ(ListSignature(kw_cluster_list), "Salients ClusterList");
  EXPECT_EQ(ListSignature(notes_window), "Notes");
  EXPECT_EQ(ListSignature(none_in_use), "");
}

TEST(ListTypes, ExtensionsToKindsAndTools) {
  struct Case {
    const char *ext;
    list_type list;
    tool_type tool;
  };
  using enum tool_type;
  const Case cases[] = {
      {".lst", word_list, tallyman},    {".LST", word_list, tallyman},
      {".mut", word_list, tallyman},    {".cnc", concordance_list, lineups},
      {".Kws", keyword_list, salients}, {".kdb", KW_database_list, salients},
      {".vwr", text_list, glass},       {".ali", spare10, glass},
      {".tokens", spare10, tallyman},   {".dcl", spare10, tallyman},
      {"lst", spare10, tool_spare4},    {"", spare10, tool_spare4},
      {".txt", spare10, tool_spare4},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.ext);
    EXPECT_EQ(ListTypeFromFileExt(c.ext), c.list);
    EXPECT_EQ(ToolTypeFromFileExt(c.ext), c.tool);
  }
}

TEST(ListTypes, UnknownExtensionStaysWithTheRunningTool) {
  for (tool_type t : {tool_type::lineups, tool_type::glass, tool_type::hintbox}) {
    test::ToolGuard guard(t);
    EXPECT_EQ(ToolTypeFromListType(ListTypeFromFileExt(".xyz")), t);
    EXPECT_EQ(ToolTypeFromListType(notes_window), t);
  }
  EXPECT_EQ(ToolTypeFromListType(static_cast<list_type>(35)), tool_type::hub);
  EXPECT_EQ(ListTypeToFileDataType(static_cast<list_type>(99)), file_data_type::marlow_only_data);
}

TEST(ListTypes, DefaultExtensionOfTools) {
  using enum tool_type;
  EXPECT_EQ(DefaultExtFromToolType(tallyman), ".lst");
  EXPECT_EQ(DefaultExtFromToolType(lineups), ".cnc");
  EXPECT_EQ(DefaultExtFromToolType(salients), ".kws");
  EXPECT_EQ(DefaultExtFromToolType(glass), ".vwr");
  EXPECT_EQ(DefaultExtFromToolType(twin_seeker), ".txt");
  EXPECT_EQ(DefaultExtFromToolType(hub), ".dat");
  test::ToolGuard guard(lineups);
  EXPECT_EQ(DefaultExtFromToolType(widener16), ".cnc");
  current_tool_var = widener16;
  EXPECT_EQ(DefaultExtFromToolType(widener16), ".dat");
}

TEST(ListTypes, SaveAsFormats) {
  using enum save_as_format_type;
  EXPECT_EQ(DefaultExtFromSaveASFormat(as_txt, word_list), ".txt");
  EXPECT_EQ(DefaultExtFromSaveASFormat(as_xml, word_list), ".xml");
  EXPECT_EQ(DefaultExtFromSaveASFormat(as_Excel_spreadsheet, word_list), ".xls");
  EXPECT_EQ(DefaultExtFromSaveASFormat(as_Word_doc, word_list), ".doc");
  EXPECT_EQ(DefaultExtFromSaveASFormat(as_default_for_list, concordance_list), ".cnc");
  EXPECT_EQ(DefaultExtFromSaveASFormat(as_default_for_list, link_list), "klk");
}

TEST(ListTypes, GridAlternatives) {
  using enum grid_alternatives;
  const std::pair<grid_alternatives, list_type> cases[] = {
      {concordance_grid, concordance_list}, {detailed_consistency_grid, none_in_use},
      {freq_order_grid, word_list},         {kwcluster_list, none_in_use},
      {glass_aligned_grid, aligner_list},   {spare_9, none_in_use},
  };
  for (auto [grid, list] : cases)
    EXPECT_EQ(ListTypeFromGridAlternatives(grid), list) << int(grid);
}

} // namespace
} // namespace kestrel
