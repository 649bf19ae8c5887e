// Fixed name tables that the tools use as keys in their ini files.
#pragma once

#include <string>

#include <kestrel/vocabulary/LemmaStopMatchTypes.h>
#include <kestrel/vocabulary/WdefDisplayTypes.h>
#include <kestrel/vocabulary/my_types.h>

namespace kestrel {

// Ini key of each colour role.
extern EnumTable<TMKcolourset, std::string, kColoursetCount> ini_all_colours;
// Section names of the first three tools, in capitals and as written.
extern EnumTable<tool_type, std::string, 3> ini_CAPS_tool;
extern EnumTable<tool_type, std::string, 3> ini_tool_name;
// Ini key of the file of each list option.
extern EnumTable<TLemmaMatchStopOptions, std::string, kLemmaMatchStopCount> ini_stopmatchlemmafile;
// Text of each concordance display option.
extern EnumTable<conc_display_possibilities, std::string, kConcDisplayCount> conc_display_str;

} // namespace kestrel
