#include "ConcordanceOutput.h"

#include <algorithm>
#include <cstdio>

#include "Cli.h"
#include "FileProblems.h"

namespace kestrel::cli {
namespace {

std::string Utf8(const std::u16string &text) {
  return Utf16ToUtf8Lossless(text);
}

std::string Plural(uint64_t n, const char *word, const char *plural) {
  return std::to_string(n) + " " + (n == 1 ? word : plural);
}

// The place first, as JSON had it before the contexts came: file, offsets,
// line, column, match, encoding; then the contexts.
const std::vector<Column> kLineColumns = {{"file", false},     {"start", true},  {"stop", true},
                                          {"line", true},      {"column", true}, {"match", false},
                                          {"encoding", false}, {"left", false},  {"right", false}};

} // namespace

ConcordanceOutput::ConcordanceOutput(const OutputOptions &options)
    : o_(options), hold_(options.sort.by != SortSpec::By::Corpus ||
                         (options.format == OutputFormat::Text && options.context.words > 0)) {
  if (o_.count || o_.format == OutputFormat::Text) return;
  const bool wrapped = o_.report && o_.format == OutputFormat::Json;
  if (wrapped) std::fputs("{\"matches\": ", stdout);
  table_ = std::make_unique<TableWriter>(o_.format, kLineColumns, stdout, !wrapped);
}

ConcordanceOutput::~ConcordanceOutput() = default;

void ConcordanceOutput::Add(ConcordanceLine line) {
  if (o_.count) return;
  if (hold_)
    held_.push_back(std::move(line));
  else
    Emit(line);
}

void ConcordanceOutput::FileDone(const FileCount &file) {
  files_.push_back(file);
}

void ConcordanceOutput::Emit(const ConcordanceLine &l) {
  if (!table_) {
    PrintText(l, o_.context.width);
    return;
  }
  table_->Row({l.file, std::to_string(l.start), std::to_string(l.stop), std::to_string(l.line),
               std::to_string(l.column), Utf8(l.match), l.encoding, Utf8(l.left), Utf8(l.right)});
}

void ConcordanceOutput::PrintText(const ConcordanceLine &l, int leftWidth) {
  const std::string where = std::to_string(l.line) + ":" + std::to_string(l.column);
  std::printf("%-*s %9s  %*s%s  %s  %s\n", static_cast<int>(o_.nameWidth),
              DisplayName(l.file).c_str(), where.c_str(), std::max(0, leftWidth - l.leftColumns),
              "", Utf8(l.left).c_str(), Utf8(l.match).c_str(), Utf8(l.right).c_str());
}

void ConcordanceOutput::Finish(uint64_t matches, size_t files, size_t withMatches,
                               const std::string &failed) {
  failed_ = failed;
  if (!failed_.empty() && o_.format != OutputFormat::Text)
    std::fprintf(stderr, "kestrel search: %s\n", failed_.c_str());
  if (o_.count) {
    FinishCounts(matches, files, withMatches);
    return;
  }
  if (o_.sort.by != SortSpec::By::Corpus) SortLines(held_, o_.locale);
  int leftWidth = o_.context.width;
  if (o_.context.words > 0) {
    leftWidth = 0;
    for (const ConcordanceLine &l : held_)
      leftWidth = std::max(leftWidth, l.leftColumns);
  }
  for (const ConcordanceLine &l : held_)
    table_ ? Emit(l) : PrintText(l, leftWidth);
  held_.clear();
  if (table_) table_->Finish();
  if (o_.format == OutputFormat::Json && o_.report) {
    std::fputs(",\n \"files\": [", stdout);
    for (size_t i = 0; i < files_.size(); ++i)
      std::printf("%s\n  {\"file\": %s, \"encoding\": %s, \"evidence\": %s, \"matches\": %llu}",
                  i ? "," : "", JsonString(files_[i].name).c_str(),
                  JsonString(files_[i].encoding).c_str(), JsonString(files_[i].evidence).c_str(),
                  static_cast<unsigned long long>(files_[i].matches));
    std::fputs(files_.empty() ? "]}\n" : "\n]}\n", stdout);
  }
  if (o_.format != OutputFormat::Text) return;
  if (o_.report)
    for (const FileCount &f : files_)
      std::printf("%s: %s, %s (%s)\n", DisplayName(f.name).c_str(),
                  Plural(f.matches, "match", "matches").c_str(), f.encoding.c_str(),
                  f.evidence.c_str());
  Summary(matches, files, withMatches);
}

void ConcordanceOutput::Summary(uint64_t matches, size_t files, size_t withMatches) const {
  std::printf("%s in %zu of %s%s%s\n", Plural(matches, "match", "matches").c_str(), withMatches,
              Plural(files, "file", "files").c_str(), failed_.empty() ? "" : "; ", failed_.c_str());
}

// --count: a row per file; text ends with the summary, TSV and CSV with a
// "(total)" row, JSON holds the total.
void ConcordanceOutput::FinishCounts(uint64_t matches, size_t files, size_t withMatches) {
  if (o_.format == OutputFormat::Json) {
    std::fputs("{\"files\": [", stdout);
    for (size_t i = 0; i < files_.size(); ++i)
      std::printf("%s\n  {\"file\": %s, \"matches\": %llu, \"encoding\": %s}", i ? "," : "",
                  JsonString(files_[i].name).c_str(),
                  static_cast<unsigned long long>(files_[i].matches),
                  JsonString(files_[i].encoding).c_str());
    std::printf("%s], \"total\": %llu, \"files_with_matches\": %zu}\n", files_.empty() ? "" : "\n",
                static_cast<unsigned long long>(matches), withMatches);
    return;
  }
  TableWriter table(o_.format, {{"file", false}, {"matches", true}});
  for (const FileCount &f : files_)
    table.Row({f.name, std::to_string(f.matches)});
  // The total as a last row, as the summary line and the JSON have it.
  if (o_.format != OutputFormat::Text) table.Row({"(total)", std::to_string(matches)});
  table.Finish();
  if (o_.format == OutputFormat::Text) Summary(matches, files, withMatches);
}

} // namespace kestrel::cli
