// What kestrel search prints: concordance lines (aligned text, TSV, CSV or
// JSON), sorted when asked, or with --count the matches per file; with
// --report a line per file saying how it was read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Concordance.h"
#include "OutputFormats.h"

namespace kestrel::cli {

// One searched text: its name, how it was read, its matches.
struct FileCount {
  std::string name;
  std::string encoding; // "UTF-8", "windows-1252", ...
  std::string evidence; // how the encoding was found
  uint64_t matches = 0;
};

struct OutputOptions {
  OutputFormat format = OutputFormat::Text;
  ContextSpec context;
  SortSpec sort;
  uint32_t locale = 0;  // for sorting
  size_t nameWidth = 0; // of the file column of text lines
  bool count = false;   // counts per file instead of lines
  bool report = false;  // after the lines, how each file was read
};

class ConcordanceOutput {
public:
  explicit ConcordanceOutput(const OutputOptions &options);
  ~ConcordanceOutput();
  void Add(ConcordanceLine line);
  void FileDone(const FileCount &file);
  // The lines held for sorting or alignment, the counts, the report, the
  // summary. failed: what could not be read ("2 files could not be read
  // (...)"), or empty; the summary line says it, or standard error when
  // there is no summary line.
  void Finish(uint64_t matches, size_t files, size_t filesWithMatches, const std::string &failed);

private:
  void Emit(const ConcordanceLine &line);
  void PrintText(const ConcordanceLine &line, int leftWidth);
  void FinishCounts(uint64_t matches, size_t files, size_t filesWithMatches);
  void Summary(uint64_t matches, size_t files, size_t filesWithMatches) const;

  OutputOptions o_;
  bool hold_; // lines wait for Finish: to be sorted, or aligned on word contexts
  std::vector<ConcordanceLine> held_;
  std::vector<FileCount> files_;
  std::unique_ptr<TableWriter> table_;
  std::string failed_;
};

} // namespace kestrel::cli
