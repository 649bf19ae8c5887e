// What a command meets on the way through a corpus: notes (things passed by
// on purpose: special files, links not followed, files over the size limit)
// and failures (files, folders or archives that could not be read). Each is
// one line on standard error with the name and the reason; failures are
// counted by reason for the summary, and make the exit status 2.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <kestrel/kestrel.h>

namespace kestrel::cli {

// A name as it may be printed on one line: control characters (a line break
// in an archive member's name, say) are shown as escapes (\n, \t, \x1b).
std::string DisplayName(const std::string &name);

class FileProblems {
public:
  explicit FileProblems(std::string command) : command_(std::move(command)) {}
  // "kestrel CMD: note: NAME: what"
  void Note(const std::string &name, const std::string &what);
  // "kestrel CMD: NAME: why", counted under why.
  void Failure(const std::string &name, const std::string &why);
  // The folder scanner's report, as a note or a failure.
  void Skipped(const std::string &name, TSkipReason why, const std::string &detail);
  TSkippedEvent SkippedEvent() { return TSkippedEvent::Bind<&FileProblems::Skipped>(this); }

  int64_t Failures() const { return failures_; }
  int64_t Notes() const { return notes_; }
  // "2 files could not be read (CRC error: 1, Permission denied: 1)", or empty.
  std::string Summary() const;
  // The same as a JSON object: {"failed":2,"reasons":{"Permission denied":1,...},"notes":1}
  std::string Json() const;

private:
  std::string command_;
  int64_t failures_ = 0, notes_ = 0;
  std::map<std::string, int64_t> reasons_;
};

// Why a named file can't be read as a text or a stored list, or empty when
// it can: a folder, FIFO, socket, device or broken link is no file to read,
// and a file that can't be opened gives the system's reason.
std::string FileProblem(const std::string &name);

// --max-file-size: a number of bytes with an optional K, M or G (powers of
// 1024); 1 GiB when the option is not given.
inline constexpr int64_t kDefaultMaxFileSize = int64_t(1) << 30;
int64_t MaxFileSize(const std::string &text);
// A size for a note: "1.5 GiB", "300 KiB", "12 bytes".
std::string SizeText(int64_t bytes);

} // namespace kestrel::cli
