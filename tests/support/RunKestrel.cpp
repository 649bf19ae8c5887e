#include "RunKestrel.h"

#include <cstdio>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

#include "TestSupport.h"

extern char **environ;

namespace kestrel::test {

KestrelRun RunKestrel(const std::vector<std::string> &args, const std::string &folder,
                      const std::string &input) {
  TempDir capture;
  const std::string program = std::string(KESTREL_BINARY_DIR) + "/tools/kestrel";
  const std::string out = capture / "out", err = capture / "err";
  std::vector<char *> argv{const_cast<char *>(program.c_str())};
  for (const std::string &a : args)
    argv.push_back(const_cast<char *>(a.c_str()));
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, input.empty() ? "/dev/null" : input.c_str(),
                                   O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT, 0600);
  if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  pid_t pid = 0;
  int failed = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed) throw std::runtime_error("cannot run " + program + " (is it built?)");

  int status = 0;
  waitpid(pid, &status, 0);
  KestrelRun run;
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  run.out = ReadFileBytes(out);
  run.err = ReadFileBytes(err);
  return run;
}

ShellRun RunShell(const std::string &command) {
  ShellRun run;
  FILE *p = ::popen((command + " 2>&1").c_str(), "r");
  if (!p) return run;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0)
    run.out.append(buf, n);
  const int status = ::pclose(p);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

ShellRun RunKestrelLine(const std::string &arguments) {
  return RunShell(std::string(KESTREL_BINARY_DIR) + "/tools/kestrel " + arguments);
}

} // namespace kestrel::test
