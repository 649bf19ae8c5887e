#include "SearchPrinters.h"

#include <algorithm>

namespace kestrel::cli {
namespace {

bool IsBreak(char16_t c) {
  return c == u'\n' || c == u'\r' || c == 0x2028 || c == 0x2029;
}
bool IsLowHalf(char16_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}
bool IsHighHalf(char16_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}

// Characters (a pair counts one) between two offsets.
uint32_t Characters(const std::u16string &text, uint32_t from, uint32_t to) {
  uint32_t n = 0;
  for (uint32_t i = from; i < to; ++i)
    if (!(IsLowHalf(text[i]) && i > from && IsHighHalf(text[i - 1]))) ++n;
  return n;
}

} // namespace

std::vector<uint32_t> LineStarts(const std::u16string &text) {
  std::vector<uint32_t> starts{0};
  for (size_t i = 0; i < text.size(); ++i) {
    if (!IsBreak(text[i])) continue;
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    starts.push_back(static_cast<uint32_t>(i + 1));
  }
  return starts;
}

Hit Place(const std::u16string &text, const std::vector<uint32_t> &lineStarts, uint32_t start,
          uint32_t stop) {
  const auto line =
      std::upper_bound(lineStarts.begin(), lineStarts.end(), start) - lineStarts.begin();
  const uint32_t column = Characters(text, lineStarts[size_t(line) - 1], start) + 1;
  return Hit{start, stop, static_cast<uint32_t>(line), column};
}

} // namespace kestrel::cli
