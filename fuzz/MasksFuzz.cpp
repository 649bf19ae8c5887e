// Wildcard masks: any mask text compiles or is refused with EMaskException;
// a mask of stars, question marks, letters and sets matches a name exactly
// when the C library's fnmatch (case folded, no escapes) says it does.
#include "FuzzSupport.h"

#include <fnmatch.h>

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

// One mask token a byte stands for: letters, a dot, a hyphen, "*", "?",
// or a set of up to three items ("[!a-cB]").
std::string MaskToken(uint8_t b, Input &in) {
  static const char kLiterals[] = "abcABC.-x";
  switch (b % 4) {
  case 0:
    return "*";
  case 1:
    return "?";
  case 2:
    return std::string(1, kLiterals[(b >> 2) % (sizeof kLiterals - 1)]);
  default:
    break;
  }
  std::string set = (b & 0x10) ? "[!" : "[";
  const int items = 1 + (b >> 5) % 3;
  for (int i = 0; i < items; ++i) {
    const uint8_t c = in.Byte();
    const char low = "abcABC"[c % 6];
    if (c & 0x40) // a range within one case
      set += std::string{low, '-', static_cast<char>(low + 1 + (c >> 7))};
    else
      set += low;
  }
  return set + "]";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in(data, size);
  const std::string raw = in.Part();
  try { // any text at all
    TMyMasks list(raw);
    list.Matches(raw);
    TMask mask(raw);
    mask.Matches(raw);
  } catch (const EMaskException &) {
  }
  std::string mask;
  for (int n = in.Byte() % 12; n > 0; --n)
    mask += MaskToken(in.Byte(), in);
  static const char kName[] = "abcdABCD.-x";
  std::string name;
  for (int n = in.Byte() % 16; n > 0; --n)
    name += kName[in.Byte() % (sizeof kName - 1)];
  if (mask.empty()) return 0;
  const bool ours = TMask(mask).Matches(name);
  const bool theirs = ::fnmatch(mask.c_str(), name.c_str(), FNM_NOESCAPE | FNM_CASEFOLD) == 0;
  if (ours != theirs) Finding("TMask and fnmatch disagree");
  return 0;
}
