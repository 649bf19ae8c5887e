// The tools of the suite, the running tool and the name tables.
#include <gtest/gtest.h>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/vocabulary/Vocabulary.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

TEST(ToolIdentity, NamesAndSignaturesByRow) {
  struct Row {
    tool_type tool;
    const char *name, *shortName;
    int32_t signature;
  };
  const Row rows[] = {
      {tool_type::tallyman, "Tallyman", "Tallyman", 37},
      {tool_type::lineups, "Lineups", "Lineups", 36},
      {tool_type::hub, "", "Marlowick", 36},
      {tool_type::morpher, "Text Morpher", "Text_Morpher", 36},
      {tool_type::tool_spare4, "", "", 36},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.shortName);
    EXPECT_EQ(Tool_Name(r.tool), r.name);
    EXPECT_EQ(GetShortToolFilename(r.tool), r.shortName);
    EXPECT_EQ(CurrentSignature[r.tool], r.signature);
  }
  // Past the table: empty, no read outside it.
  EXPECT_EQ(Tool_Name(static_cast<tool_type>(200)), "");
  EXPECT_EQ(GetShortToolFilename(static_cast<tool_type>(18)), "");
}

TEST(ToolIdentity, FullFilenameLiesBesideTheRunningProgram) {
  const std::string folder = IncludeTrailingPathDelimiter(ExtractFilePath(ParamStr0()));
  EXPECT_EQ(GetFullToolFilename(tool_type::lineups), folder + "Lineups.exe");
  EXPECT_EQ(GetFullToolFilename(tool_type::hintbox), folder + ".exe");
}

TEST(ToolIdentity, ProgramNamesChooseTheirTool) {
  struct Case {
    const char *program;
    tool_type expected;
  };
  const Case cases[] = {
      {"/opt/suite/Tallyman.exe", tool_type::tallyman},
      {"/opt/suite/TALLYMAN", tool_type::tallyman},
      {"lineups.EXE", tool_type::lineups},
      {"/x/marlowick.bin", tool_type::hub},
      {"/x/Text_Morpher.exe", tool_type::morpher},
      {"/x/SomethingElse.exe", tool_type::hintbox},
      {"/x/Text Morpher.exe", tool_type::hintbox}, // display name, not file name
      {"/x/.exe", tool_type::hintbox},             // empty name: first empty row
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.program);
    EXPECT_EQ(ToolTypeFromProgramFileName(c.program), c.expected);
  }
}

TEST(ToolIdentity, SetCurrentToolReadsTheRunningProgram) {
  test::ToolGuard guard(tool_type::tallyman);
  SetCurrentTool();
  // The test program is named after no tool.
  EXPECT_EQ(current_tool_var, ToolTypeFromProgramFileName(ParamStr0()));
  EXPECT_EQ(current_tool_var, tool_type::hintbox);
}

TEST(ToolIdentity, FinalisationReleasesTheTablesAndStartUpRestoresThem) {
  // The unit's own pair, beyond the library's start-up: one more start-up and
  // its finalisation only move the count; the last finalisation releases.
  my_consts::initialization();
  my_consts::Finalization();
  EXPECT_EQ(conc_display_str[conc_display_possibilities::hide_tags], "hide tags");
  my_consts::Finalization(); // pairs the library's start-up
  EXPECT_TRUE(conc_display_str[conc_display_possibilities::hide_tags].empty());
  EXPECT_TRUE(ini_all_colours[TMKcolourset::normalcolour].empty());
  my_consts::initialization();
  EXPECT_EQ(ini_all_colours[TMKcolourset::normalcolour], "normal text");
  EXPECT_EQ(ini_CAPS_tool[tool_type::salients], "SALIENTS");
  EXPECT_EQ(ini_stopmatchlemmafile[TLemmaMatchStopOptions::as_stop], "stop list file");
  EXPECT_EQ(conc_display_str[conc_display_possibilities::hide_tags], "hide tags");
}

} // namespace
} // namespace kestrel
