// kestrel words against an independent count, and Ctrl-C in the middle of a walk.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"

namespace {

using Result = kestrel::test::ShellRun;
using kestrel::test::RunShell;

// Both as sorted lines of word TAB frequency TAB files.
TEST(WordsCommand, CountsMatchAnIndependentCountOfTheCorpus) {
  struct Case {
    const char *options;
    const char *fold;
    int ngram;
  };
  const Case cases[] = {{"", "fold", 1}, {"--case-sensitive", "keep", 1}, {"--ngram 2", "fold", 2}};
  const std::string source = KESTREL_SOURCE_DIR, corpus = source + "/corpus";
  kestrel::test::TempDir dir;
  for (const Case &c : cases) {
    const Result python =
        RunShell("python3 " + source + "/tests/tools/kestrel/word_count.py " + corpus + " " +
                 c.fold + " " + std::to_string(c.ngram) + " | LC_ALL=C sort");
    const Result kestrel =
        kestrel::test::RunKestrelLine("words --recursive --format tsv " + std::string(c.options) +
                                      " " + corpus + " >" + dir / "t");
    ASSERT_EQ(kestrel.status, 0) << kestrel.out;
    const Result rows = RunShell("tail -n +2 " + dir / "t" + " | cut -f2,3,5 | LC_ALL=C sort");
    EXPECT_GT(std::count(python.out.begin(), python.out.end(), '\n'), 100) << python.out;
    EXPECT_EQ(rows.out, python.out) << c.options;
  }
}

// Ctrl-C while the second of three texts, a pipe, is read: once the program has taken the
// line written to it, it waits in that read. It must read to the end, print and exit 130.
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
