// Unit my_types: the tools of the suite and the running tool.
#include <kestrel/vocabulary/my_types.h>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/SysUtils.h>

KESTREL_DEFINE_UNIT(my_types, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)

namespace kestrel {

tool_type current_tool_var = tool_type::hub;

EnumTable<tool_type, int32_t, kToolTypeCount> CurrentSignature = {
    {37, 36, 37, 36, 36, 36, 36, 36, 36, 36, 36, 36, 36, 36, 36, 36, 36, 36}};

namespace {

constexpr const char *kToolNames[kToolTypeCount] = {"Tallyman",
                                                    "Lineups",
                                                    "Salients",
                                                    "",
                                                    "Cleaver",
                                                    "Text Morpher",
                                                    "",
                                                    "",
                                                    "Refresher",
                                                    "Tongue Picker",
                                                    "MK1-3 Data Widener",
                                                    "Glass",
                                                    "NetGleaner",
                                                    "Glyph Scope",
                                                    "Twin Seeker",
                                                    "File Kit",
                                                    "",
                                                    ""};

constexpr const char *kShortToolFilenames[kToolTypeCount] = {"Tallyman",
                                                             "Lineups",
                                                             "Salients",
                                                             "Marlowick",
                                                             "Cleaver",
                                                             "Text_Morpher",
                                                             "",
                                                             "Relabeller",
                                                             "Refresher",
                                                             "PickTongues",
                                                             "WidenMK1to3Data",
                                                             "Glass",
                                                             "NetGleaner",
                                                             "GlyphScopeP",
                                                             "TwinSeeker",
                                                             "File_Kit",
                                                             "",
                                                             ""};

size_t Row(tool_type tool) {
  return static_cast<size_t>(tool);
}

} // namespace

std::string Tool_Name(tool_type tool) {
  return Row(tool) < kToolTypeCount ? kToolNames[Row(tool)] : "";
}

std::string GetShortToolFilename(tool_type tool) {
  return Row(tool) < kToolTypeCount ? kShortToolFilenames[Row(tool)] : "";
}

std::string GetFullToolFilename(tool_type tool) {
  return IncludeTrailingPathDelimiter(ExtractFilePath(ParamStr0())) + GetShortToolFilename(tool) +
         ".exe";
}

tool_type ToolTypeFromProgramFileName(std::string_view programFileName) {
  const std::string wanted = UpperCase(ChangeFileExt(ExtractFileName(programFileName), ""));
  // Rows with an empty short name compare equal to an empty program name, so
  // the first of them (hintbox) answers for it, as it answers for no match.
  for (size_t i = 0; i < kToolTypeCount; ++i)
    if (UpperCase(kShortToolFilenames[i]) == wanted) return static_cast<tool_type>(i);
  return tool_type::hintbox;
}

void SetCurrentTool() {
  current_tool_var = ToolTypeFromProgramFileName(ParamStr0());
}

} // namespace kestrel
