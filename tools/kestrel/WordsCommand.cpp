// kestrel words PATH...: a word-frequency list. The texts are found and
// decoded as kestrel search finds and decodes them; a word is a run of
// letters, digits, marks and connectors by the library's character database.
#include <algorithm>
#include <cstdio>
#include <string>
#include <unordered_map>
#include <vector>

#include <kestrel/files/TextFiles.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/unicode/CaseMapping.h>

#include "Cli.h"
#include "Collation.h"
#include "OutputFormats.h"
#include "SearchInputs.h"
#include "WalkControl.h"
#include "WordChars.h"

namespace kestrel::cli {
namespace {

struct Entry {
  uint64_t frequency = 0;
  uint32_t files = 0;
  size_t lastFile = SIZE_MAX; // the file that last counted toward `files`
};

struct Options {
  bool caseSensitive = false;
  int64_t ngram = 1;
};

// Counts the words (or clusters of n words within a line) of a text.
class Counter {
public:
  explicit Counter(Options options) : options_(options) {}

  void Count(const std::u16string &text, size_t file) {
    window_.clear();
    size_t i = 0;
    while (i < text.size()) {
      if (IsLineBreak(text[i])) {
        window_.clear();
        ++i;
        continue;
      }
      const size_t start = i;
      while (i < text.size() && IsWordChar(CodeAt(text, i)))
        i += UnitsAt(text, i);
      if (i == start) {
        i += UnitsAt(text, i);
        continue;
      }
      std::u16string word = text.substr(start, i - start);
      if (!options_.caseSensitive) word = WideLowerCase(word);
      Add(std::move(word), file);
    }
  }

  const std::unordered_map<std::u16string, Entry> &Entries() const { return entries_; }
  uint64_t Total() const { return total_; }

private:
  void Add(std::u16string word, size_t file) {
    window_.push_back(std::move(word));
    if (window_.size() > static_cast<size_t>(options_.ngram)) window_.erase(window_.begin());
    if (window_.size() < static_cast<size_t>(options_.ngram)) return;
    std::u16string key = window_.front();
    for (size_t k = 1; k < window_.size(); ++k)
      key += u' ' + window_[k];
    Entry &e = entries_[key];
    ++e.frequency;
    ++total_;
    if (e.lastFile != file) {
      e.lastFile = file;
      ++e.files;
    }
  }

  Options options_;
  std::vector<std::u16string> window_;
  std::unordered_map<std::u16string, Entry> entries_;
  uint64_t total_ = 0;
};

using Row = std::pair<const std::u16string *, const Entry *>;

std::vector<Row> SortedRows(const Counter &counter, bool alpha, uint32_t locale, int64_t minFreq) {
  std::vector<Row> rows;
  for (const auto &[word, entry] : counter.Entries())
    if (static_cast<int64_t>(entry.frequency) >= minFreq) rows.emplace_back(&word, &entry);
  std::sort(rows.begin(), rows.end(), [&](const Row &a, const Row &b) {
    if (!alpha && a.second->frequency != b.second->frequency)
      return a.second->frequency > b.second->frequency;
    return CompareForSort(*a.first, *b.first, locale) < 0;
  });
  return rows;
}

std::string Percent(uint64_t part, uint64_t total) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", total ? 100.0 * static_cast<double>(part) / total : 0.0);
  return buf;
}

int64_t PositiveOption(const Args &args, const char *name, int64_t fallback, int64_t most) {
  const int64_t n = args.Number(name, fallback);
  if (n < 1 || n > most)
    throw UsageError{std::string("--") + name + " must lie between 1 and " + std::to_string(most)};
  return n;
}

int RunWords(const Args &args) {
  args.RefuseSingleDash();
  auto unknown =
      args.Unknown({"case-sensitive", "sort", "min-freq", "top", "ngram", "locale", "encoding",
                    "files", "recursive", "format", "json", "follow-links", "max-file-size"});
  if (!unknown.empty()) throw UsageError{"unknown option " + unknown.front()};
  const std::string sort = args.Value("sort", "freq");
  if (sort != "freq" && sort != "alpha")
    throw UsageError{"--sort takes freq or alpha, not '" + sort + "'"};
  Options options;
  options.caseSensitive = args.Has("case-sensitive");
  options.ngram = PositiveOption(args, "ngram", 1, 100);
  const int64_t minFreq = PositiveOption(args, "min-freq", 1, INT64_MAX);
  const int64_t top = PositiveOption(args, "top", INT64_MAX, INT64_MAX);
  const OutputFormat format = ChooseFormat(args);
  const uint32_t locale = ChooseLocale(args);
  TTextEncoding encoding = DefaultTextEncoding();
  if (args.Has("encoding")) {
    try {
      encoding = TextEncodingFromName(args.Value("encoding"));
    } catch (const EConvertError &e) {
      throw UsageError{e.Message()};
    }
  }
  if (args.Positional().empty()) throw UsageError{"no file to read"};

  FileProblems problems("words");
  SearchInputs sources({args.Value("files", "*.txt"), args.Has("recursive"),
                        args.Has("follow-links"), MaxFileSize(args.Value("max-file-size"))},
                       problems);
  std::vector<Input> inputs;
  for (const std::string &path : args.Positional())
    sources.Add(path, inputs);

  Counter counter(options);
  Progress progress(false);
  WalkStatus status(inputs.size(), "words");
  InterruptGuard interrupt;
  for (size_t i = 0; i < inputs.size() && !InterruptGuard::Requested(); ++i) {
    std::string bytes;
    if (!LoadOrReport(inputs[i], problems, bytes)) continue;
    const uint64_t before = counter.Total();
    counter.Count(DecodeText(bytes, encoding).Text, i);
    status.FileDone(bytes.size(), counter.Total() - before);
    progress.Update(status.Text());
  }
  progress.Done();

  const std::vector<Row> rows = SortedRows(counter, sort == "alpha", locale, minFreq);
  TableWriter table(
      format,
      {{"rank", true}, {"word", false}, {"frequency", true}, {"percent", true}, {"files", true}});
  const size_t shown = std::min<uint64_t>(rows.size(), static_cast<uint64_t>(top));
  for (size_t i = 0; i < shown; ++i)
    table.Row({std::to_string(i + 1), Utf16ToUtf8Lossless(*rows[i].first),
               std::to_string(rows[i].second->frequency),
               Percent(rows[i].second->frequency, counter.Total()),
               std::to_string(rows[i].second->files)});
  table.Finish();
  std::fflush(stdout);
  if (!problems.Summary().empty())
    std::fprintf(stderr, "kestrel words: %s\n", problems.Summary().c_str());
  if (InterruptGuard::Requested()) return kInterruptedStatus;
  return problems.Failures() > 0 ? 2 : rows.empty() ? 1 : 0;
}

const CommandRegistration kWords{Command{
    "words",
    "a word list: every word of texts with its frequency",
    "words [OPTIONS] PATH...\n"
    "  Reads texts as search does (folders, ZIP archives, encodings; a text that\n"
    "  can't be read is reported, the others are counted, exit status 2) and counts\n"
    "  their words: runs of letters, digits, marks and connectors. Columns: rank,\n"
    "  word, frequency, percent of all words counted, files holding the word.\n"
    "  --case-sensitive     keep case (default: words folded to lower case)\n"
    "  --sort freq|alpha    by frequency (the default) or alphabetically in the\n"
    "                       order of the locale\n"
    "  --locale LOCALE      the order for sorting: a name such as de_DE or a\n"
    "                       Windows locale number (default: the user's)\n"
    "  --min-freq N         only words seen at least N times\n"
    "  --top N              only the first N rows\n"
    "  --ngram N            clusters of N words within a line instead of words\n"
    "  --encoding ENC       for texts that show no encoding: a code page (1252, cp1251,\n"
    "                       latin1, koi8-r...), utf-8, utf-16le, utf-16be (default 1252)\n"
    "  --files MASKS        in folders and archives, the files to read (default \"*.txt\")\n"
    "  --recursive          read the sub-folders of a folder too\n"
    "  --follow-links       enter links to folders (each folder is read once)\n"
    "  --max-file-size SIZE texts larger than SIZE bytes (K, M, G: powers of 1024)\n"
    "                       are passed by with a note (default 1G)\n"
    "  --format FMT         text (the default), tsv, csv or json; --json is short\n"
    "                       for --format json",
    {"sort", "min-freq", "top", "ngram", "locale", "encoding", "files", "format", "max-file-size"},
    RunWords}};

} // namespace
} // namespace kestrel::cli
