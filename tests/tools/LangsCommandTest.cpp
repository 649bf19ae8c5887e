// kestrel langs through the built program.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

#include "TestSupport.h"

namespace {

using kestrel::test::TempDir;

struct Result {
  int status;
  std::string out;
};

Result Langs(const std::string &args) {
  const std::string cmd =
      std::string(KESTREL_BINARY_DIR) + "/tools/kestrel langs " + args + " 2>&1";
  Result r{-1, {}};
  FILE *p = ::popen(cmd.c_str(), "r");
  if (!p) return r;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0)
    r.out.append(buf, n);
  const int status = ::pclose(p);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}

size_t Count(const std::string &text, const std::string &part) {
  size_t n = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++n;
  return n;
}

const char *kFile = "[Custom Language 1]\r\nlanguage name=Sindarin\r\nfont size=12\r\n"
                    "ANSI currency=\xA3\r\n\r\n[English]\r\nlanguage name=English\r\n"
                    "preference=main language\r\nsort as in=2057\r\n";

} // namespace

TEST(LangsCommand, ListsTheSystemsLanguages) {
  const Result plain = Langs("");
  ASSERT_EQ(plain.status, 0) << plain.out;
  EXPECT_NE(plain.out.find("\nEnglish                         0x0409  Windows 1252  DOS 437   "
                           "installed\n"),
            std::string::npos);
  const Result json = Langs("--json");
  ASSERT_EQ(json.status, 0);
  EXPECT_NE(json.out.find("{\"name\": \"English\", \"lcid\": 1033, \"windows_codepage\": 1252, "
                          "\"dos_codepage\": 437, \"installed\": true}"),
            std::string::npos);
  EXPECT_EQ(Count(json.out, "{\"name\""), Count(plain.out, "\n"));
}

TEST(LangsCommand, ShowsTheFavouritesOfAFile) {
  TempDir dir;
  dir.WriteFile("languages.ini", kFile);
  const Result plain = Langs("--favourites " + dir / "languages.ini");
  ASSERT_EQ(plain.status, 0) << plain.out;
  EXPECT_EQ(plain.out.find("Sindarin  (custom language)\n"), 0u);
  EXPECT_NE(
      plain.out.find("\nEnglish\n  preference       main language\n  sort as in       0x0809\n"),
      std::string::npos);
  const Result json = Langs("--json --favourites=" + dir / "languages.ini");
  ASSERT_EQ(json.status, 0);
  EXPECT_NE(json.out.find("{\"name\": \"Sindarin\", \"custom\": true, \"preference\": "
                          "\"available language\", \"sort_lcid\": 0"),
            std::string::npos);
  EXPECT_NE(json.out.find("\"currency\": \"\xEF\xBF\xBD\""), std::string::npos); // stays UTF-8
  EXPECT_EQ(Count(json.out, "{\"name\""), 2u);
}

TEST(LangsCommand, ExitCodes) {
  TempDir dir;
  dir.WriteFile("empty.ini", "; nothing\r\n");
  const Result empty = Langs("--json --favourites " + dir / "empty.ini");
  EXPECT_EQ(empty.status, 1);
  EXPECT_EQ(empty.out, "[]\n");
  const Result missing = Langs("--favourites " + dir / "none.ini");
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(Count(missing.out, "\n"), 1u);
  for (const char *bad : {"--bogus", "stray", "--favourites"})
    EXPECT_EQ(Langs(bad).status, 2) << bad;
}
