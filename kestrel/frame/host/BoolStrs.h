// The host's word lists for turning Booleans into text and back; the tools
// read them, WinGenOk fills them at start-up.
#pragma once

#include <string>
#include <vector>

namespace kestrel {

extern std::vector<std::string> TrueBoolStrs;
extern std::vector<std::string> FalseBoolStrs;

} // namespace kestrel
