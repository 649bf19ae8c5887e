// Text tables line up by the columns a terminal gives each character.
#include <gtest/gtest.h>

#include <string>

#include "OutputFormats.h"

namespace {

TEST(OutputFormats, DisplayWidthCountsTerminalColumns) {
  const struct {
    const char *utf8;
    size_t columns;
  } cases[] = {
      {"", 0},
      {"kestrel", 7},
      {"crécerelle", 10},       // é as one code point
      {"cre\u0301cerelle", 10}, // e and a combining acute
      {"隼", 2},                // wide
      {"\xF0\x90\x90\x80", 1},  // astral, narrow
      {"\xF0\xA0\x80\x80", 2},  // astral ideograph, wide
  };
  for (const auto &c : cases)
    EXPECT_EQ(kestrel::cli::DisplayWidth(c.utf8), c.columns) << c.utf8;
}

} // namespace
