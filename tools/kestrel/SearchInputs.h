// The texts that kestrel search reads: plain files and ZIP archive members
// found by the folder scanner in folders and archives, and files named
// outright. A plain file can be read a block at a time (the fast search of
// UTF-8 texts) or whole; what is read whole is bounded by a size limit. An
// archive is read once for all its members, and nothing goes to disk.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "FileProblems.h"

namespace kestrel::cli {

// Thrown by Input::load for a text passed by on purpose (larger than the
// limit): a note, not a failure.
struct InputSkipped {
  std::string why;
};
// Thrown by Input::load for a text that could not be read: the reason alone.
struct InputFailed {
  std::string why;
};

class ByteSource;

// One text to search: a name to show and a way to get its bytes, whole
// (up to the size limit) or, for plain files, a block at a time (open).
struct Input {
  std::string name;
  std::function<std::string()> load;
  std::function<std::unique_ptr<ByteSource>()> open; // empty but for plain files
};

class MemberReader;

// Turns folder and archive paths into inputs; "-" is standard input; other
// paths stay plain files. What the scanner passes by or can't read goes to
// problems.
class SearchInputs {
public:
  struct Options {
    std::string masks; // the file masks, also used for archive members
    bool recursive = false;
    bool followLinks = false;
    int64_t maxFileSize = kDefaultMaxFileSize;
  };
  SearchInputs(Options options, FileProblems &problems);
  ~SearchInputs();
  void Add(const std::string &path, std::vector<Input> &inputs);

private:
  struct Collector;
  void AddFolder(const std::string &folder, std::vector<Input> &inputs);
  void AddArchive(const std::string &archive, std::vector<Input> &inputs);
  void AddFound(const Collector &collector, std::vector<Input> &inputs);
  void NoteUnmatchedFolder(const std::string &folder) const;
  Options options_;
  FileProblems &problems_;
  std::shared_ptr<MemberReader> members_;
};

// Runs work for the named input; what it throws because the text can't be
// had or read (InputSkipped: a note; InputFailed, no memory, a library
// error: a failure) goes to problems, and the result is false.
bool ReportingFailures(const std::string &name, FileProblems &problems,
                       const std::function<void()> &work);

// The bytes of an input into bytes; false, with the reason reported to
// problems, when it can't be had.
bool LoadOrReport(const Input &in, FileProblems &problems, std::string &bytes);

// A plain file to read a block at a time; InputFailed with the system's
// reason when it can't be opened or read.
std::unique_ptr<ByteSource> OpenFileBlocks(const std::string &path);

// The bytes of a plain file, read whole if it is no larger than limit;
// InputSkipped past it, InputFailed with the system's reason.
std::string ReadFileLimited(const std::string &path, int64_t limit);

} // namespace kestrel::cli
