// Shared pieces of the kestrel command-line companion: command registry,
// argument parsing, JSON output and the progress line.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace kestrel::cli {

// Parsed command line of one command: options (--name or --name value) and
// positional arguments, in order.
class Args {
public:
  // valueOptions names the options that take a value.
  Args(const std::vector<std::string> &argv, const std::vector<std::string> &valueOptions);
  bool Has(const std::string &name) const { return flags_.count(name) != 0; }
  std::string Value(const std::string &name, const std::string &fallback = "") const;
  std::vector<std::string> Values(const std::string &name) const;
  int64_t Number(const std::string &name, int64_t fallback) const;
  const std::vector<std::string> &Positional() const { return positional_; }
  // Options that the command does not know, for a clear error.
  std::vector<std::string> Unknown(const std::vector<std::string> &known) const;
  // Arguments with a single dash ("-i", not "-" alone) before any "--": they
  // look like options, which take two dashes here. They are also among the
  // positional arguments; a command refuses them with RefuseSingleDash.
  const std::vector<std::string> &SingleDash() const { return singleDash_; }
  void RefuseSingleDash() const;

private:
  std::multimap<std::string, std::string> flags_;
  std::vector<std::string> positional_;
  std::vector<std::string> singleDash_;
};

// Thrown for bad usage; main prints the message on one line and points to
// the command's --help.
struct UsageError {
  std::string message;
};

using CommandFn = std::function<int(const Args &)>;

struct Command {
  std::string name, summary, usage;
  std::vector<std::string> valueOptions;
  CommandFn run;
};

// A static instance in a command's source registers it.
struct CommandRegistration {
  explicit CommandRegistration(Command command);
};
const std::map<std::string, Command> &Commands();

// Text with its controls (and DEL) escaped: \n, \r, \t, else \u00XX for
// JSON (which also escapes " and \) or \xXX for a name on one line.
std::string EscapeControls(const std::string &text, bool json);
// A JSON string literal.
std::string JsonString(const std::string &utf8);
std::string Utf16ToUtf8Lossless(const std::u16string &text); // lone halves as U+FFFD

// A file a command writes before it renames it into place: while it is held,
// SIGINT, SIGTERM or SIGHUP removes it before the program ends by the signal
// (main installs the handler). At most 8 are held at once.
class TemporaryFile {
public:
  explicit TemporaryFile(const std::string &path);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile &) = delete;
  TemporaryFile &operator=(const TemporaryFile &) = delete;

private:
  int slot_ = -1;
};
void InstallInterruptCleanup();

// A progress line on standard error, shown when it is a terminal or when
// forced; rewritten in place and cleared at the end.
class Progress {
public:
  explicit Progress(bool forced = false);
  ~Progress();
  void Update(const std::string &text);
  void Done();

private:
  bool enabled_;
  bool shown_ = false;
  int64_t lastMs_ = 0;
};

} // namespace kestrel::cli
