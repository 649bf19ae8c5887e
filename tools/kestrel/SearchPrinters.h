// How kestrel search shows what it found: concordance lines aligned on the
// match, or JSON; with --report a line per file saying how it was read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kestrel::cli {

// One match in a text, with its place: offsets in UTF-16 units, line and
// column (in characters) from 1.
struct Hit {
  uint32_t start, stop, line, column;
};

// One searched text: its name, how it was read, its matches.
struct FileResult {
  std::string name;
  std::string encoding; // "UTF-8", "windows-1252", ...
  std::string evidence; // "byte-order mark", "valid UTF-8", "byte pattern", "assumed", "given"
  uint64_t matches = 0;
};

// Offsets at which lines start; CR LF is one break.
std::vector<uint32_t> LineStarts(const std::u16string &text);
// The hit at [start, stop), placed by line and column.
Hit Place(const std::u16string &text, const std::vector<uint32_t> &lineStarts, uint32_t start,
          uint32_t stop);

class Printer {
public:
  virtual ~Printer() = default;
  virtual void Print(const FileResult &file, const Hit &hit, const std::u16string &text) = 0;
  // After each file, with its count.
  virtual void FileDone(const FileResult &file) = 0;
  virtual void Finish(uint64_t matches, size_t files, size_t filesWithMatches) = 0;
};

// width: columns of context on each side; nameWidth: of the file column.
std::unique_ptr<Printer> MakeConcordancePrinter(int width, size_t nameWidth, bool report);
std::unique_ptr<Printer> MakeJsonPrinter(bool report);

} // namespace kestrel::cli
