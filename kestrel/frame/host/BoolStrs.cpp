#include <kestrel/frame/host/BoolStrs.h>

namespace kestrel {

std::vector<std::string> TrueBoolStrs;
std::vector<std::string> FalseBoolStrs;

} // namespace kestrel
