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
// The hit at [start, stop), placed by line and column.
Hit Place(const std::u16string &text, const std::vector<uint32_t> &lineStarts, uint32_t start,
          uint32_t stop);

} // namespace kestrel::cli
