// kestrel search while its files are deleted: the gone ones are reported, the summary adds up.
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"

namespace kestrel::test {
namespace {

struct Outcome {
  int status = -1;
  int missing = 0; // files reported as gone
};

// One search while a shell loop deletes the files from the last name back, to meet it.
Outcome SearchWhileDeleting(int files) {
  TempDir dir;
  for (int i = 0; i < files; ++i)
    dir.WriteFile("c/f" + std::to_string(10000 + i) + ".txt", "kestrel\n");
  const std::string c = dir / "c", out = dir / "out", err = dir / "err";
  const ShellRun run =
      RunShell("(ls -r '" + c + "' | while read f; do rm -f '" + c + "'/\"$f\"; done) & " +
               KESTREL_BINARY_DIR + "/tools/kestrel search kestrel '" + c + "' >'" + out + "' 2>'" +
               err + "'; s=$?; wait; exit $s");
  Outcome o{run.status, 0};
  std::istringstream lines(ReadFileBytes(err));
  const std::regex gone("kestrel search: " + c + "/f1[0-9]{4}\\.txt: No such file or directory");
  for (std::string line; std::getline(lines, line); ++o.missing)
    EXPECT_TRUE(std::regex_match(line, gone)) << line;
  // "M matches in M of T files", then the failures if there were any.
  const std::string text = ReadFileBytes(out);
  std::smatch m;
  const std::regex summary("(\\d+) matches in (\\d+) of (\\d+) files(; (\\d+) files? could not be "
                           "read \\(No such file or directory: (\\d+)\\))?\n$");
  if (!std::regex_search(text, m, summary)) {
    ADD_FAILURE() << "no summary: " << text.substr(text.size() > 300 ? text.size() - 300 : 0);
    return o;
  }
  const int found = std::stoi(m[2]), listed = std::stoi(m[3]);
  EXPECT_EQ(m[1], m[2]);
  EXPECT_EQ(found + o.missing, listed);
  EXPECT_LE(listed, files);
  if (o.missing > 0) {
    EXPECT_EQ(std::stoi(m[5]), o.missing);
    EXPECT_EQ(std::stoi(m[6]), o.missing);
  } else {
    EXPECT_FALSE(m[4].matched);
  }
  EXPECT_EQ(o.status, o.missing > 0 ? 2 : 0) << text.substr(0, 200);
  return o;
}

TEST(ChangingCorpus, FilesDeletedDuringASearchAreReportedAndCounted) {
  // The race is not met on every run: each try must add up, and one must see a file go.
  bool seen = false;
  for (int attempt = 0; attempt < 6 && !seen; ++attempt)
    seen = SearchWhileDeleting(1500 + 500 * attempt).missing > 0;
  EXPECT_TRUE(seen) << "no search saw a file deleted under it";
}

} // namespace
} // namespace kestrel::test
