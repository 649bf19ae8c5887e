// kestrel convert, run as the built program on files.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <vector>

#include <TestSupport.h>

namespace {

using kestrel::test::ReadFileBytes;
using kestrel::test::TempDir;

struct RunResult {
  int status;
  std::string err;
};

std::string Quote(const std::string &a) {
  std::string q = "'";
  for (char c : a)
    q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// Runs kestrel convert; standard error is collected into a file.
RunResult Convert(const TempDir &dir, const std::vector<std::string> &args) {
  std::string cmd = Quote(std::string(KESTREL_BINARY_DIR) + "/tools/kestrel") + " convert";
  for (const std::string &a : args)
    cmd += " " + Quote(a);
  cmd += " 2>" + Quote(dir / "stderr.txt") + " </dev/null";
  int st = std::system(cmd.c_str());
  return {WIFEXITED(st) ? WEXITSTATUS(st) : -1, ReadFileBytes(dir / "stderr.txt")};
}

// Writes the input, converts it into out.bin and gives what was written.
std::string Converted(const TempDir &dir, const std::string &input,
                      std::vector<std::string> options) {
  dir.WriteFile("in.bin", input);
  options.push_back(dir / "in.bin");
  options.push_back(dir / "out.bin");
  RunResult r = Convert(dir, options);
  EXPECT_EQ(r.status, 0) << r.err;
  return ReadFileBytes(dir / "out.bin");
}

TEST(ConvertCommand, CodePagesToUnicodeAndBack) {
  TempDir dir;
  EXPECT_EQ(Converted(dir, "caf\xE9 \x80", {"--from", "1252", "--to", "utf-8"}),
            "caf\xC3\xA9 \xE2\x82\xAC");
  EXPECT_EQ(Converted(dir, "caf\xC3\xA9", {"--from", "utf-8", "--to", "windows-1252"}), "caf\xE9");
  EXPECT_EQ(Converted(dir, "\x93\xFA\x96\x7B", {"--from", "932", "--to", "utf-8"}),
            "\xE6\x97\xA5\xE6\x9C\xAC");
  EXPECT_EQ(Converted(dir, "\xE6\x97\xA5\xE6\x9C\xAC", {"--from", "utf8", "--to", "cp932"}),
            "\x93\xFA\x96\x7B");
  EXPECT_EQ(Converted(dir, "\xC7\xD1", {"--from", "949", "--to", "950"}), "?"); // no Hangul in Big5
  EXPECT_EQ(Converted(dir, "", {"--from", "1252", "--to", "utf-8"}), "");
}

TEST(ConvertCommand, Utf16WithByteOrderMarks) {
  TempDir dir;
  EXPECT_EQ(Converted(dir, "A\xC3\xA9", {"--from", "utf-8", "--to", "utf-16"}),
            std::string("\xFF\xFE"
                        "A\0\xE9\0",
                        6));
  EXPECT_EQ(Converted(dir, "A", {"--from", "utf-8", "--to", "utf-16be"}),
            std::string("\xFE\xFF\0A", 4));
  EXPECT_EQ(Converted(dir, "A", {"--from", "utf-8", "--to", "utf-16", "--no-bom"}),
            std::string("A\0", 2));
  // The input's mark decides its byte order.
  EXPECT_EQ(
      Converted(dir, std::string("\xFE\xFF\0A\0\xE9", 6), {"--from", "utf-16", "--to", "utf-8"}),
      "A\xC3\xA9");
  EXPECT_EQ(Converted(dir, std::string("A\0", 2), {"--from", "utf-16", "--to", "utf-8"}), "A");
  // UTF-8 loses its mark on input and gets one only on request.
  EXPECT_EQ(Converted(dir, "\xEF\xBB\xBFx", {"--from", "utf-8", "--to", "1252"}), "x");
  EXPECT_EQ(Converted(dir, "x", {"--from", "1252", "--to", "utf-8", "--bom"}), "\xEF\xBB\xBFx");
}

TEST(ConvertCommand, SurrogatesThroughUtf8) {
  TempDir dir;
  // A pair is one four-byte form; a lone half keeps its own three-byte form
  // and reads back as itself.
  std::string pair("\xFF\xFE\x3D\xD8\x00\xDE", 6), lone("\xFF\xFE\x00\xD8"
                                                        "a\0",
                                                        6);
  EXPECT_EQ(Converted(dir, pair, {"--from", "utf-16", "--to", "utf-8"}), "\xF0\x9F\x98\x80");
  std::string utf8 = Converted(dir, lone, {"--from", "utf-16", "--to", "utf-8"});
  EXPECT_EQ(utf8, "\xED\xA0\x80"
                  "a");
  EXPECT_EQ(Converted(dir, utf8, {"--from", "utf-8", "--to", "utf-16"}), lone);
}

TEST(ConvertCommand, ReplacementsAreReported) {
  TempDir dir;
  dir.WriteFile("in.bin", "a\xE4\xB8\xAD");
  RunResult r = Convert(dir, {"--from", "utf-8", "--to", "1252", dir / "in.bin", dir / "out.bin"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(ReadFileBytes(dir / "out.bin"), "a?");
  EXPECT_NE(r.err.find("were written as '?'"), std::string::npos) << r.err;
}

TEST(ConvertCommand, ClearErrorsAndNoPartialOutput) {
  TempDir dir;
  dir.WriteFile("in.bin", "abc");
  RunResult unknown =
      Convert(dir, {"--from", "12345", "--to", "utf-8", dir / "in.bin", dir / "out.bin"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_NE(unknown.err.find("unknown code page 12345"), std::string::npos) << unknown.err;
  EXPECT_FALSE(std::filesystem::exists(dir / "out.bin"));

  RunResult name = Convert(dir, {"--from", "klingon", "--to", "utf-8", dir / "in.bin"});
  EXPECT_EQ(name.status, 1);
  EXPECT_NE(name.err.find("unknown encoding 'klingon'"), std::string::npos) << name.err;

  // An odd UTF-16 input fails and leaves an existing output as it was.
  dir.WriteFile("out.bin", "keep");
  RunResult odd =
      Convert(dir, {"--from", "utf-16", "--to", "utf-8", dir / "in.bin", dir / "out.bin"});
  EXPECT_EQ(odd.status, 1);
  EXPECT_NE(odd.err.find("odd number of bytes"), std::string::npos) << odd.err;
  EXPECT_EQ(ReadFileBytes(dir / "out.bin"), "keep");

  RunResult missing = Convert(dir, {"--from", "1252", "--to", "utf-8", dir / "none.txt"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.err.find("Cannot open file"), std::string::npos) << missing.err;

  EXPECT_EQ(Convert(dir, {"--to", "utf-8"}).status, 2);
  EXPECT_EQ(Convert(dir, {"--from", "1252", "--to", "utf-8", "a", "b", "c"}).status, 2);
}

} // namespace
