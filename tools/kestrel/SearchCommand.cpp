// kestrel search PATTERN PATH...: a concordance. Each input is decoded to
// UTF-16, searched with a search engine, and every match is printed as a
// key-word-in-context line aligned on the match, or as JSON.
//
// The command is built from three separate steps so that each can grow on
// its own: ChooseEngine (which engine and flags), EnumerateInputs (which
// texts), and the printers.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/Search.h>
#include <kestrel/unicode/CodePages.h>

#include "Cli.h"
#include "FileProblems.h"
#include "SearchInputs.h"
#include "SearchLimits.h"
#include "TextFiles.h"

namespace kestrel::cli {
namespace {

// ---- Engine

// --regex: the regular-expression engine, which knows only case folding; the
// other flags would have no effect on it, so they are refused with it. A bad
// pattern's message has its two lines broken for the terminal.
std::unique_ptr<TSearchEngine> ChooseRegexEngine(const Args &args, const std::u16string &pattern) {
  for (const char *option : {"ignore-marks", "compress-space", "whole-word"})
    if (args.Has(option))
      throw UsageError{std::string("--") + option + " does not go with --regex"};
  TSearchFlags flags;
  if (args.Has("case-sensitive")) flags.Include(TSearchFlag::sfCaseSensitive);
  auto engine = std::make_unique<TURESearch>(nullptr);
  try {
    engine->FindPrepare(pattern, flags);
  } catch (const EConvertError &) {
    throw;
  } catch (const Exception &e) {
    std::string message = e.Message();
    std::replace(message.begin(), message.end(), '\r', '\n');
    throw Exception(message);
  }
  return engine;
}

std::unique_ptr<TSearchEngine> ChooseEngine(const Args &args, const std::u16string &pattern) {
  if (args.Has("regex")) return ChooseRegexEngine(args, pattern);
  TSearchFlags flags;
  if (args.Has("case-sensitive")) flags.Include(TSearchFlag::sfCaseSensitive);
  if (args.Has("ignore-marks")) flags.Include(TSearchFlag::sfIgnoreNonSpacing);
  if (args.Has("compress-space")) flags.Include(TSearchFlag::sfSpaceCompress);
  if (args.Has("whole-word")) {
    flags.Include(TSearchFlag::sfLeftBounded);
    flags.Include(TSearchFlag::sfRightBounded);
  }
  auto engine = std::make_unique<TUTBMSearch>(nullptr);
  engine->FindPrepare(pattern, flags);
  return engine;
}

// ---- Inputs

// A folder gives the files that --files takes (with --recursive, in its
// sub-folders too) and the members of its ZIP archives that the same masks
// take; a ZIP archive gives its members; any other path is a text.
std::vector<Input> EnumerateInputs(const std::vector<std::string> &paths, SearchInputs &sources) {
  std::vector<Input> inputs;
  for (const std::string &path : paths)
    sources.Add(path, inputs);
  return inputs;
}

// ---- Pattern

std::u16string StripOneLineBreak(std::u16string s) {
  if (!s.empty() && s.back() == u'\n') s.pop_back();
  if (!s.empty() && s.back() == u'\r') s.pop_back();
  return s;
}

// The pattern file's bytes; one that can't be read ends the command.
std::string ReadPatternFile(const std::string &name) {
  try {
    return ReadFileLimited(name, kDefaultMaxFileSize);
  } catch (const InputFailed &failed) {
    throw Exception(DisplayName(name) + ": " + failed.why);
  } catch (const InputSkipped &skipped) {
    throw Exception(DisplayName(name) + ": " + skipped.why);
  }
}

// The pattern and the paths: from --pattern-file (decoded like the texts,
// one final line break dropped) or from the first argument.
std::u16string TakePattern(const Args &args, const TextEncoding &encoding,
                           std::vector<std::string> &paths) {
  paths = args.Positional();
  std::u16string pattern;
  if (args.Has("pattern-file")) {
    pattern =
        StripOneLineBreak(DecodeText(ReadPatternFile(args.Value("pattern-file")), encoding).text);
  } else {
    if (paths.empty()) throw UsageError{"no pattern given"};
    pattern = UTF8ToWideString(paths.front());
    paths.erase(paths.begin());
  }
  if (pattern.empty()) throw UsageError{"the pattern is empty"};
  if (paths.empty()) throw UsageError{"no file to search"};
  return pattern;
}

// ---- Positions and contexts

bool IsBreak(char16_t c) {
  return c == u'\n' || c == u'\r' || c == 0x2028 || c == 0x2029;
}
bool IsLowHalf(char16_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}
bool IsHighHalf(char16_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
}

// Offsets at which lines start; CR LF is one break.
std::vector<uint32_t> LineStarts(const std::u16string &text) {
  std::vector<uint32_t> starts{0};
  for (size_t i = 0; i < text.size(); ++i) {
    if (!IsBreak(text[i])) continue;
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    starts.push_back(static_cast<uint32_t>(i + 1));
  }
  return starts;
}

// Characters (a pair counts one) between two offsets.
uint32_t Characters(const std::u16string &text, uint32_t from, uint32_t to) {
  uint32_t n = 0;
  for (uint32_t i = from; i < to; ++i)
    if (!(IsLowHalf(text[i]) && i > from && IsHighHalf(text[i - 1]))) ++n;
  return n;
}

// Columns a character takes on a terminal: 0 for combining marks, 2 for
// the wide East Asian ranges, 1 otherwise.
int Columns(uint32_t c) {
  if ((c >= 0x0300 && c <= 0x036F) || (c >= 0x20D0 && c <= 0x20FF) || c == 0x200B) return 0;
  if ((c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) ||
      (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
      (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFF60) ||
      (c >= 0xFFE0 && c <= 0xFFE6) || c >= 0x20000)
    return 2;
  return 1;
}

struct Piece {
  std::u16string text;
  int columns = 0;
};

// Flattens a stretch of text to one line: breaks, tabs and controls show as
// blanks.
std::u16string Flatten(std::u16string s) {
  for (auto &c : s)
    if (c < 0x20 || c == 0x2028 || c == 0x2029 || c == 0x7F) c = u' ';
  return s;
}

// Up to `width` columns of text before `at`, whole characters only.
Piece LeftContext(const std::u16string &text, uint32_t at, int width) {
  Piece p;
  uint32_t i = at;
  while (i > 0) {
    uint32_t j = i - 1;
    uint32_t c = text[j];
    if (IsLowHalf(text[j]) && j > 0 && IsHighHalf(text[j - 1])) {
      --j;
      c = 0x10000 + ((text[j] - 0xD800u) << 10) + (text[j + 1] - 0xDC00u);
    }
    int w = c < 0x20 ? 1 : Columns(c);
    if (p.columns + w > width) break;
    p.columns += w;
    i = j;
  }
  p.text = Flatten(text.substr(i, at - i));
  return p;
}

Piece RightContext(const std::u16string &text, uint32_t at, int width) {
  Piece p;
  uint32_t i = at;
  while (i < text.size()) {
    uint32_t c = text[i];
    uint32_t units = 1;
    if (IsHighHalf(text[i]) && i + 1 < text.size() && IsLowHalf(text[i + 1])) {
      c = 0x10000 + ((text[i] - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      units = 2;
    }
    int w = c < 0x20 ? 1 : Columns(c);
    if (p.columns + w > width) break;
    p.columns += w;
    i += units;
  }
  p.text = Flatten(text.substr(at, i - at));
  return p;
}

// ---- Printers

struct Hit {
  const std::string *file;
  uint32_t start, stop, line, column;
};

class Printer {
public:
  virtual ~Printer() = default;
  virtual void Print(const Hit &hit, const std::u16string &text) = 0;
  virtual void Finish(uint64_t matches, size_t files, size_t filesWithMatches,
                      const std::string &failed) = 0;
};

class ConcordancePrinter : public Printer {
public:
  ConcordancePrinter(int width, size_t nameWidth) : width_(width), nameWidth_(nameWidth) {}
  void Print(const Hit &h, const std::u16string &text) override {
    Piece left = LeftContext(text, h.start, width_);
    Piece right = RightContext(text, h.stop, width_);
    std::string where = std::to_string(h.line) + ":" + std::to_string(h.column);
    std::printf("%-*s %9s  %*s%s  %s  %s\n", static_cast<int>(nameWidth_),
                DisplayName(*h.file).c_str(), where.c_str(), width_ - left.columns, "",
                Utf16ToUtf8Lossless(left.text).c_str(),
                Utf16ToUtf8Lossless(Flatten(text.substr(h.start, h.stop - h.start))).c_str(),
                Utf16ToUtf8Lossless(right.text).c_str());
  }
  void Finish(uint64_t matches, size_t files, size_t withMatches,
              const std::string &failed) override {
    std::printf("%llu match%s in %zu of %zu file%s%s%s\n", static_cast<unsigned long long>(matches),
                matches == 1 ? "" : "es", withMatches, files, files == 1 ? "" : "s",
                failed.empty() ? "" : "; ", failed.c_str());
  }

private:
  int width_;
  size_t nameWidth_;
};

class JsonPrinter : public Printer {
public:
  JsonPrinter() { std::printf("["); }
  void Print(const Hit &h, const std::u16string &text) override {
    std::printf("%s\n  {\"file\": %s, \"start\": %u, \"stop\": %u, \"line\": %u, \"column\": %u, "
                "\"match\": %s}",
                first_ ? "" : ",", JsonString(*h.file).c_str(), h.start, h.stop, h.line, h.column,
                JsonString(Utf16ToUtf8Lossless(text.substr(h.start, h.stop - h.start))).c_str());
    first_ = false;
  }
  void Finish(uint64_t, size_t, size_t, const std::string &failed) override {
    std::printf("%s]\n", first_ ? "" : "\n");
    if (!failed.empty()) std::fprintf(stderr, "kestrel search: %s\n", failed.c_str());
  }

private:
  bool first_ = true;
};

// ---- The command

// The matches of one text, printed; at most maxCount of them, and a note
// when the search of the text stopped early.
uint32_t SearchOne(TSearchEngine &engine, const Input &input, const std::u16string &text,
                   uint64_t maxCount, Printer &printer, FileProblems &problems) {
  if (text.size() > 0x7FFFFFFF) throw InputFailed{"text too long to search"};
  std::vector<uint32_t> starts; // made at the first match
  // Columns count on from the last match on the same line, so that many
  // matches on one long line cost no more than the line.
  uint32_t lastLine = 0, lastAt = 0, lastColumn = 0;
  const BoundedSearch found =
      FindBounded(engine, text, maxCount, [&](uint32_t start, uint32_t stop) {
        if (starts.empty()) starts = LineStarts(text);
        const auto line = static_cast<uint32_t>(
            std::upper_bound(starts.begin(), starts.end(), start) - starts.begin());
        if (line != lastLine || start < lastAt) {
          lastLine = line;
          lastAt = starts[line - 1];
          lastColumn = 1;
        }
        lastColumn += Characters(text, lastAt, start);
        lastAt = start;
        printer.Print(Hit{&input.name, start, stop, line, lastColumn}, text);
      });
  if (found.emptyCapReached)
    problems.Note(input.name, "more than " + std::to_string(kMaxEmptyMatches) +
                                  " empty matches; the rest of the text was not searched");
  return static_cast<uint32_t>(found.matches);
}

// Reads, decodes and searches one input; a text that can't be had is
// reported and counts no match.
uint32_t SearchInput(TSearchEngine &engine, const Input &in, const TextEncoding &encoding,
                     uint64_t maxCount, Printer &printer, FileProblems &problems) {
  try {
    const DecodedText decoded = DecodeText(in.load(), encoding);
    return SearchOne(engine, in, decoded.text, maxCount, printer, problems);
  } catch (const InputSkipped &skipped) {
    problems.Note(in.name, skipped.why);
  } catch (const InputFailed &failed) {
    problems.Failure(in.name, failed.why);
  } catch (const std::bad_alloc &) {
    problems.Failure(in.name, "out of memory");
  } catch (const Exception &e) {
    problems.Failure(in.name, e.Message());
  }
  return 0;
}

// --max-count: matches per text, all when not given.
uint64_t MaxCount(const Args &args) {
  const int64_t n = args.Number("max-count", -1);
  if (args.Has("max-count") && n < 1) throw UsageError{"--max-count must be 1 or more"};
  return n < 1 ? UINT64_MAX : static_cast<uint64_t>(n);
}

int RunSearch(const Args &args) {
  auto unknown = args.Unknown({"case-sensitive", "ignore-marks", "compress-space", "whole-word",
                               "width", "pattern-file", "encoding", "json", "files", "recursive",
                               "regex", "follow-links", "max-file-size", "max-count"});
  if (!unknown.empty()) throw UsageError{"unknown option --" + unknown.front()};
  const TextEncoding encoding =
      args.Has("encoding") ? ParseEncoding(args.Value("encoding")) : TextEncoding{};
  const int64_t width = args.Number("width", 30);
  if (width < 0 || width > 1000) throw UsageError{"--width must lie between 0 and 1000"};
  std::vector<std::string> paths;
  const std::u16string pattern = TakePattern(args, encoding, paths);
  std::unique_ptr<TSearchEngine> engine = ChooseEngine(args, pattern);
  const uint64_t maxCount = MaxCount(args);
  FileProblems problems("search");
  SearchInputs sources({args.Value("files", "*.txt"), args.Has("recursive"),
                        args.Has("follow-links"), MaxFileSize(args.Value("max-file-size"))},
                       problems);
  const std::vector<Input> inputs = EnumerateInputs(paths, sources);

  size_t nameWidth = 0;
  for (const Input &in : inputs)
    nameWidth = std::max(nameWidth, in.name.size());
  std::unique_ptr<Printer> printer;
  if (args.Has("json"))
    printer = std::make_unique<JsonPrinter>();
  else
    printer = std::make_unique<ConcordancePrinter>(static_cast<int>(width), nameWidth);

  Progress progress(false);
  const bool showProgress = inputs.size() >= 20;
  uint64_t matches = 0;
  size_t withMatches = 0, done = 0;
  for (const Input &in : inputs) {
    if (showProgress)
      progress.Update("searching " + std::to_string(++done) + "/" + std::to_string(inputs.size()) +
                      ": " + in.name);
    const uint32_t n = SearchInput(*engine, in, encoding, maxCount, *printer, problems);
    matches += n;
    withMatches += n > 0;
  }
  progress.Done();
  printer->Finish(matches, inputs.size(), withMatches, problems.Summary());
  std::fflush(stdout);
  return problems.Failures() > 0 ? 2 : 0;
}

const CommandRegistration kSearch{Command{
    "search",
    "a concordance: every match of a pattern in texts, in its context",
    "search [OPTIONS] PATTERN PATH...\n"
    "       search [OPTIONS] --pattern-file FILE PATH...\n"
    "  Texts are UTF-16 with either byte-order mark, UTF-8 with or without mark,\n"
    "  or what --encoding names. A PATH may be a folder or a ZIP archive: members\n"
    "  of archives are searched as texts. Each match shows file, line, column\n"
    "  (in characters, from 1), left context, the match and right context,\n"
    "  aligned on the match. A text that can't be read is reported with the\n"
    "  reason and the others are searched; the exit status is then 2. FIFOs,\n"
    "  sockets and devices in folders are passed by with a note.\n"
    "  --regex              the pattern is a regular expression (case folded unless\n"
    "                       --case-sensitive; goes with no other flag of the engine)\n"
    "  --case-sensitive     compare characters exactly (default: case folded)\n"
    "  --ignore-marks       drop non-spacing marks from pattern and text\n"
    "  --compress-space     a run of white space counts as one blank\n"
    "  --whole-word         the match must start and end at white space or the text's ends\n"
    "  --width N            columns of context on each side (default 30)\n"
    "  --pattern-file FILE  read the pattern from FILE, decoded like the texts\n"
    "                       (one final line break is dropped)\n"
    "  --encoding ENC       for texts without a mark: a code page (1252, cp1251...),\n"
    "                       utf-8 (the default), utf-16le or utf-16be\n"
    "  --files MASKS        in folders and archives, the files to search: up to 10\n"
    "                       masks separated by \";\" (default \"*.txt\")\n"
    "  --recursive          search the sub-folders of a folder too\n"
    "  --follow-links       enter links to folders (each folder is searched once)\n"
    "  --max-file-size SIZE texts larger than SIZE bytes (K, M, G: powers of 1024)\n"
    "                       are passed by with a note (default 1G)\n"
    "  --max-count N        at most N matches per text\n"
    "  --json               a JSON array: file, start and stop (UTF-16 unit offsets\n"
    "                       into the decoded text), line, column and the match",
    {"width", "pattern-file", "encoding", "files", "max-file-size", "max-count"},
    RunSearch}};

} // namespace
} // namespace kestrel::cli
