// A reader of the published character data for tests that check the lookups
// against it, independently of the table generator.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kestrel::test {

struct UnicodeDataRow {
  std::string category;
  uint32_t combiningClass = 0;
  bool compatibility = false;               // the decomposition field has a <tag>
  std::vector<uint32_t> decomposition;      // empty when there is none
  uint32_t upper = 0, lower = 0, title = 0; // 0 when the field is empty
};

// The rows of UnicodeData.txt by code point (range rows not expanded), or an
// empty map when the shared data is not there.
const std::map<uint32_t, UnicodeDataRow> &UnicodeDataRows();

} // namespace kestrel::test
