// Where kestrel search's matches stand: line and column (the printing is
// ConcordanceOutput's).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrel::cli {

// One match in a text, with its place: offsets in UTF-16 units, line and
// column (in characters) from 1.
struct Hit {
  uint32_t start, stop, line, column;
};

// Offsets at which lines start; CR LF is one break.
std::vector<uint32_t> LineStarts(const std::u16string &text);

// Places the hits of one text, in order, by line and column.
class Placer {
public:
  explicit Placer(const std::u16string &text) : text_(text) {}
  Hit Place(uint32_t start, uint32_t stop);

private:
  const std::u16string &text_;
  std::vector<uint32_t> starts_; // made at the first hit
  uint32_t line_ = 0, at_ = 0, column_ = 0;
};

} // namespace kestrel::cli
