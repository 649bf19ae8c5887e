// Runs the built kestrel program, as a user would from a shell.
#pragma once

#include <string>
#include <vector>

namespace kestrel::test {

struct KestrelRun {
  int status = -1; // the exit code; -1 when the program did not exit by itself
  std::string out, err;
};

// Runs kestrel with these arguments (no shell between) in the folder given
// (the current one when empty), with standard input from the file given
// (/dev/null when empty).
KestrelRun RunKestrel(const std::vector<std::string> &args, const std::string &folder = "",
                      const std::string &input = "");

// A shell command line run to its end: its exit code and what it wrote to
// standard output and error, together.
struct ShellRun {
  int status = -1;
  std::string out;
};
ShellRun RunShell(const std::string &command);
// kestrel with the arguments as the shell splits them.
ShellRun RunKestrelLine(const std::string &arguments);

} // namespace kestrel::test
