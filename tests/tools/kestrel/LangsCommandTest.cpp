// kestrel langs lists what ICU's data holds, so it is checked line by line
// rather than against a golden file (the favourites are: CommandsTest.cpp).
#include <gtest/gtest.h>

#include <string>

#include "support/RunKestrel.h"

namespace kestrel::test {

namespace {
size_t Count(const std::string &text, const std::string &part) {
  size_t n = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++n;
  return n;
}
} // namespace

TEST(LangsCommand, ListsTheSystemsLanguages) {
  const KestrelRun plain = RunKestrel({"langs"});
  ASSERT_EQ(plain.status, 0) << plain.err;
  EXPECT_NE(plain.out.find("\nEnglish                         0x0409  Windows 1252  DOS 437   "
                           "installed\n"),
            std::string::npos);
  const KestrelRun json = RunKestrel({"langs", "--json"});
  ASSERT_EQ(json.status, 0);
  EXPECT_NE(json.out.find("{\"name\": \"English\", \"lcid\": 1033, \"windows_codepage\": 1252, "
                          "\"dos_codepage\": 437, \"installed\": true}"),
            std::string::npos);
  EXPECT_EQ(Count(json.out, "{\"name\""), Count(plain.out, "\n"));
}

} // namespace kestrel::test
