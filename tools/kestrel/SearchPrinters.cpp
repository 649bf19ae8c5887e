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

Hit Placer::Place(uint32_t start, uint32_t stop) {
  if (starts_.empty()) starts_ = LineStarts(text_);
  const auto line = static_cast<uint32_t>(std::upper_bound(starts_.begin(), starts_.end(), start) -
                                          starts_.begin());
  // Counted on from the last hit on the same line, so that many hits on one
  // long line cost no more than the line.
  if (line != line_ || start < at_) {
    line_ = line;
    at_ = starts_[line - 1];
    column_ = 1;
  }
  column_ += Characters(text_, at_, start);
  at_ = start;
  return Hit{start, stop, line, column_};
}

} // namespace kestrel::cli
