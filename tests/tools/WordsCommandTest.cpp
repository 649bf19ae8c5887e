// kestrel words end to end: counts over the sample corpus against an
// independent Python count, and the options that choose and order rows.
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"

namespace {

using Result = kestrel::test::ShellRun;
using kestrel::test::RunShell;

Result Words(const std::string &args) {
  return kestrel::test::RunKestrelLine("words " + args);
}

std::vector<std::vector<std::string>> Split(const std::string &text, char sep) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::vector<std::string> cells;
    std::istringstream fields(line);
    std::string cell;
    while (std::getline(fields, cell, sep))
      cells.push_back(cell);
    rows.push_back(cells);
  }
  return rows;
}

// word -> "frequency/files"
using Counts = std::map<std::string, std::string>;

Counts FromKestrel(const std::string &tsv) {
  Counts counts;
  auto rows = Split(tsv, '\t');
  EXPECT_FALSE(rows.empty());
  for (size_t i = 1; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].size(), 5u) << tsv;
    if (rows[i].size() == 5) counts[rows[i][1]] = rows[i][2] + "/" + rows[i][4];
  }
  return counts;
}

Counts FromPython(const std::string &out) {
  Counts counts;
  for (const auto &row : Split(out, '\t'))
    if (row.size() == 3) counts[row[0]] = row[1] + "/" + row[2];
  return counts;
}

std::string Corpus() {
  return std::string(KESTREL_SOURCE_DIR) + "/corpus";
}

TEST(WordsCommand, CountsMatchAnIndependentCountOfTheCorpus) {
  struct Case {
    const char *options;
    const char *fold;
    int ngram;
  };
  const Case cases[] = {{"", "fold", 1}, {"--case-sensitive", "keep", 1}, {"--ngram 2", "fold", 2}};
  for (const Case &c : cases) {
    const Result python =
        RunShell("python3 " + std::string(KESTREL_SOURCE_DIR) + "/tests/tools/word_count.py " +
                 Corpus() + " " + c.fold + " " + std::to_string(c.ngram));
    ASSERT_EQ(python.status, 0) << python.out;
    const Result kestrel =
        Words("--recursive --format tsv " + std::string(c.options) + " " + Corpus());
    ASSERT_EQ(kestrel.status, 0) << kestrel.out;
    const Counts expected = FromPython(python.out);
    EXPECT_GT(expected.size(), 100u);
    EXPECT_EQ(FromKestrel(kestrel.out), expected) << c.options;
  }
}

TEST(WordsCommand, RowsAreChosenAndOrdered) {
  kestrel::test::TempDir dir;
  // "b" 3 times, "a" and "c" twice, the rest once; Ä sorts beside A in German.
  dir.WriteFile("one.txt", "b a c b\nZebra \xC3\x84pfel apfel\n");
  dir.WriteFile("two.txt", "B a c under_score x\xCC\x81y 42\n");
  const std::string files = dir / "one.txt" + " " + dir / "two.txt";
  struct Case {
    std::string options, expected; // the word column, in order
  };
  const Case cases[] = {
      {"--top 3", "b a c"},
      {"--min-freq 2", "b a c"},
      {"--sort alpha --locale de_DE --min-freq 1",
       "42 a apfel \xC3\xA4pfel b c under_score x\xCC\x81y zebra"},
      {"--case-sensitive --min-freq 2", "a b c"},
      {"--ngram 2 --top 2", "a c b a"},
  };
  for (const Case &c : cases) {
    const Result r = Words("--format tsv " + c.options + " " + files);
    ASSERT_EQ(r.status, 0) << c.options << r.out;
    std::string words;
    const auto rows = Split(r.out, '\t');
    for (size_t i = 1; i < rows.size(); ++i)
      words += (i > 1 ? " " : "") + rows[i].at(1);
    EXPECT_EQ(words, c.expected) << c.options;
  }
}

TEST(WordsCommand, EachFormatCarriesTheSameRow) {
  kestrel::test::TempDir dir;
  dir.WriteFile("t.txt", "kestrel kestrel falcon hawk\nkestrel\n");
  const std::string f = dir / "t.txt";
  struct Case {
    std::string options, expected;
  };
  const Case cases[] = {
      {"", "   1  kestrel          3    60.00      1"},
      {"--format tsv", "1\tkestrel\t3\t60.00\t1\n"},
      {"--format csv", "1,kestrel,3,60.00,1\r\n"},
      {"--json",
       "{\"rank\": 1, \"word\": \"kestrel\", \"frequency\": 3, \"percent\": 60.00, \"files\": 1}"},
  };
  for (const Case &c : cases) {
    const Result r = Words(c.options + " " + f);
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.out.find(c.expected), std::string::npos) << c.options << "\n" << r.out;
  }
  EXPECT_EQ(Words("--format csv " + f).out.rfind("rank,word,frequency,percent,files\r\n", 0), 0u);
}

TEST(WordsCommand, BadUsageAndEmptyInput) {
  kestrel::test::TempDir dir;
  dir.WriteFile("empty.txt", " ... \n");
  const std::string f = dir / "empty.txt";
  EXPECT_EQ(Words(f).status, 1);
  EXPECT_EQ(Words("--json " + f).out, "[]\n");
  for (const char *bad : {"--sort size", "--top 0", "--ngram 0", "--min-freq x", "--format xml",
                          "--json --format csv", "--locale 0x7fff", "--bogus", ""}) {
    const Result r = Words(std::string(bad) + (*bad ? " " + f : ""));
    EXPECT_EQ(r.status, 2) << bad << r.out;
    EXPECT_NE(r.out.find("kestrel words: "), std::string::npos) << bad;
  }
  const Result missing = Words(dir / "missing.txt");
  EXPECT_EQ(missing.status, 2);
  EXPECT_NE(missing.out.find("missing.txt: No such file or directory"), std::string::npos)
      << missing.out;
}

// Ctrl-C while the second of three texts is being read: the program reads
// it to the end, prints what it found in the first two and exits with 130.
// The second text is standard input, a pipe: once the program has taken the
// line written to it, the test knows it is waiting in that read.
Result InterruptAtTheSecondText(std::vector<std::string> args) {
  kestrel::test::TempDir dir;
  dir.WriteFile("1.txt", "kestrel first\n");
  dir.WriteFile("3.txt", "kestrel third\n");
  const std::string program = std::string(KESTREL_BINARY_DIR) + "/tools/kestrel";
  args.insert(args.begin(), program);
  args.push_back(dir / "1.txt");
  args.push_back("-");
  args.push_back(dir / "3.txt");
  std::vector<char *> argv;
  for (std::string &a : args)
    argv.push_back(a.data());
  argv.push_back(nullptr);
  int pipeEnds[2];
  if (::pipe(pipeEnds) != 0) return {-1, "no pipe"};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  const std::string out = dir / "out";
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_adddup2(&actions, pipeEnds[0], STDIN_FILENO);
  posix_spawn_file_actions_addclose(&actions, pipeEnds[1]);
  pid_t pid = 0;
  const int spawned = ::posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) return {-1, "cannot start kestrel"};
  EXPECT_EQ(::write(pipeEnds[1], "kestrel second\n", 15), 15);
  int waiting = 1;
  for (int tries = 0; waiting > 0 && tries < 5000; ++tries) {
    if (::ioctl(pipeEnds[0], FIONREAD, &waiting) != 0) break;
    if (waiting > 0) ::usleep(1000);
  }
  ::usleep(20000); // from taking the line to the next read
  ::kill(pid, SIGINT);
  ::close(pipeEnds[1]); // the end of the text
  ::close(pipeEnds[0]);
  int status = 0;
  ::waitpid(pid, &status, 0);
  std::ifstream in(out);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
          std::string((std::istreambuf_iterator<char>(in)), {})};
}

TEST(WalkingCommands, CtrlCEndsAfterTheCurrentTextWithTheResultsSoFar) {
  const std::vector<std::vector<std::string>> commands = {
      {"words", "--format", "tsv"},
      {"search", "--format", "tsv", "kestrel"},
  };
  for (const auto &command : commands) {
    const Result r = InterruptAtTheSecondText(command);
    EXPECT_EQ(r.status, 130) << command[0] << r.out;
    EXPECT_NE(r.out.find("first"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("second"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find("third"), std::string::npos) << r.out;
  }
}

} // namespace
