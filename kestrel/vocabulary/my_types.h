// Tool identity: which tools the suite has, which one is running, and the
// signature number of the stored files each tool writes today.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

enum class tool_type : uint8_t {
  tallyman,
  lineups,
  salients,
  hub,
  cleaver,
  morpher,
  hintbox,
  relabeller,
  refresher,
  tonguepick,
  widener16,
  glass,
  netgleaner,
  glyph_scope,
  twin_seeker,
  file_kit,
  tool_spare3,
  tool_spare4
};
inline constexpr size_t kToolTypeCount = 18;

// A table over an enumeration, indexed by its values.
template <typename E, typename T, size_t N> struct EnumTable {
  T rows[N];
  constexpr T &operator[](E e) { return rows[static_cast<size_t>(e)]; }
  constexpr const T &operator[](E e) const { return rows[static_cast<size_t>(e)]; }
  static constexpr size_t size() { return N; }
};

// The running tool; hub until SetCurrentTool names it.
extern tool_type current_tool_var;
// The signature number of today's stored files, per tool.
extern EnumTable<tool_type, int32_t, kToolTypeCount> CurrentSignature;

// Display name; empty for the tools without one. Ordinals past the table give
// empty names.
std::string Tool_Name(tool_type tool);
// Program file name without folder or extension; empty where there is none.
std::string GetShortToolFilename(tool_type tool);
// The tool's program beside the running one: folder, short name, ".exe".
std::string GetFullToolFilename(tool_type tool);
// Sets current_tool_var from the running program's file name.
void SetCurrentTool();
// The tool that a program file name stands for (the rule of SetCurrentTool):
// folder and extension dropped, compared without regard to ASCII case;
// hintbox when no tool has that name.
tool_type ToolTypeFromProgramFileName(std::string_view programFileName);

} // namespace kestrel
