// kestrel search PATTERN PATH...: a concordance. Each input is read in the
// encoding it shows (or the one given), searched, and every match is printed
// as a key-word-in-context line aligned on the match, or as JSON.
//
// The steps live apart so that each can grow on its own: the options
// (SearchOptions here), the matchers (SearchMatchers), the inputs
// (SearchInputs) and the printers (SearchPrinters).
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <kestrel/files/TextFiles.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/Search.h>
#include <kestrel/unicode/CodePages.h>
#include <kestrel/unicode/Utf8.h>

#include "Cli.h"
#include "Collation.h"
#include "ConcordanceOutput.h"
#include "FastSearch.h"
#include "FileProblems.h"
#include "SearchInputs.h"
#include "SearchLimits.h"
#include "SearchMatchers.h"
#include "SearchPrinters.h"
#include "WalkControl.h"

namespace kestrel::cli {
namespace {

const std::vector<std::string> kOptions = {
    "case-sensitive", "ignore-marks", "compress-space", "whole-word", "width",  "pattern-file",
    "encoding",       "json",         "files",          "recursive",  "regex",  "single-pass",
    "report",         "format",       "words",          "sort",       "locale", "count",
    "max-count",      "follow-links", "max-file-size"};

// ---- Options

struct SearchOptions {
  MatchOptions match;
  TTextEncoding given = DefaultTextEncoding(); // for texts that show no encoding
  bool encodingGiven = false;
  OutputOptions out;
  uint64_t maxCount = UINT64_MAX; // matches taken from one file
  int64_t maxFileSize = kDefaultMaxFileSize;
};

SearchOptions ReadOptions(const Args &args) {
  args.RefuseSingleDash();
  if (auto unknown = args.Unknown(kOptions); !unknown.empty())
    throw UsageError{"unknown option " + unknown.front()};
  SearchOptions o;
  MatchOptions &m = o.match;
  m.regex = args.Has("regex");
  m.singlePass = args.Has("single-pass");
  m.caseSensitive = args.Has("case-sensitive");
  m.ignoreMarks = args.Has("ignore-marks");
  m.compressSpace = args.Has("compress-space");
  m.wholeWord = args.Has("whole-word");
  if (m.singlePass && !m.regex) throw UsageError{"--single-pass goes with --regex"};
  if (m.regex && m.compressSpace) throw UsageError{"--compress-space does not go with --regex"};
  if (args.Has("encoding")) {
    try {
      o.given = TextEncodingFromName(args.Value("encoding"));
    } catch (const EConvertError &e) {
      throw UsageError{e.Message()};
    }
    o.encodingGiven = true;
  }
  const int64_t width = args.Number("width", 30);
  if (width < 0 || width > 1000) throw UsageError{"--width must lie between 0 and 1000"};
  const int64_t words = args.Number("words", 0);
  if (args.Has("words") && (words < 1 || words > 100))
    throw UsageError{"--words must lie between 1 and 100"};
  if (args.Has("words") && args.Has("width"))
    throw UsageError{"--width and --words do not go together"};
  OutputOptions &out = o.out;
  out.context = ContextSpec{static_cast<int>(width), static_cast<int>(words)};
  out.format = ChooseFormat(args);
  if (args.Has("sort")) out.sort = ParseSort(args.Value("sort"));
  out.locale = ChooseLocale(args);
  out.count = args.Has("count");
  out.report = args.Has("report");
  if (out.count && args.Has("sort")) throw UsageError{"--sort does not go with --count"};
  if (args.Has("max-count")) {
    const int64_t most = args.Number("max-count", 0);
    if (most < 1) throw UsageError{"--max-count must be 1 or more"};
    o.maxCount = static_cast<uint64_t>(most);
  }
  o.maxFileSize = MaxFileSize(args.Value("max-file-size"));
  m.maxCount = o.maxCount;
  return o;
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

// The pattern and the paths: from --pattern-file (read like the texts, one
// final line break dropped) or from the first argument.
std::u16string TakePattern(const Args &args, const SearchOptions &o,
                           std::vector<std::string> &paths) {
  paths = args.Positional();
  std::u16string pattern;
  if (args.Has("pattern-file")) {
    pattern =
        StripOneLineBreak(DecodeText(ReadPatternFile(args.Value("pattern-file")), o.given).Text);
  } else {
    if (paths.empty()) throw UsageError{"no pattern given"};
    pattern = UTF8ToWideString(paths.front());
    paths.erase(paths.begin());
  }
  if (pattern.empty()) throw UsageError{"the pattern is empty"};
  if (paths.empty()) throw UsageError{"no file to search (give - for standard input)"};
  return pattern;
}

// ---- One text

std::string EvidenceText(TEncodingEvidence e, bool encodingGiven) {
  switch (e) {
  case TEncodingEvidence::ByteOrderMark:
    return "byte-order mark";
  case TEncodingEvidence::ValidUtf8:
    return "valid UTF-8";
  case TEncodingEvidence::Utf16Bytes:
    return "UTF-16 byte pattern";
  case TEncodingEvidence::Given:
    break;
  }
  return encodingGiven ? "as given" : "assumed";
}

// The lines of one text to the output.
void Hand(const std::u16string &text, const std::vector<MatchSpan> &found, const FileCount &file,
          const SearchOptions &o, ConcordanceOutput &out) {
  Placer placer(text);
  for (const MatchSpan &m : found) {
    const Hit h = placer.Place(m.start, m.stop);
    ConcordanceLine line =
        MakeLine(text, h.start, h.stop, h.line, h.column, o.out.context, o.out.sort);
    line.file = file.name;
    line.encoding = file.encoding;
    out.Add(std::move(line));
  }
}

// The fast way through a UTF-8 text: false, with nothing handed on, when
// the text must be decoded whole. A plain file is read a block at a time
// (with no size limit), other inputs whole. A text with more lines than are
// held until its end is searched twice: known to be UTF-8 after the first
// time, its lines go out as they are found the second.
bool SearchFast(const Input &in, const FastPlan &plan, Matcher &matcher, const SearchOptions &o,
                ConcordanceOutput &out, std::string &bytes, bool &loaded,
                std::pair<uint64_t, size_t> &done) {
  FastSettings settings;
  settings.context = o.out.context;
  settings.sort = o.out.sort;
  settings.countOnly = o.out.count;
  settings.maxCount = o.maxCount;
  if (!in.open) {
    bytes = in.load();
    loaded = true;
  }
  auto search = [&](FastResult &r) {
    if (in.open) return FastSearchText(*in.open(), plan, matcher, settings, r);
    MemorySource source(bytes);
    return FastSearchText(source, plan, matcher, settings, r);
  };
  FastResult r;
  if (!search(r)) return false;
  const FileCount file{in.name, "UTF-8", r.byteOrderMark ? "byte-order mark" : "valid UTF-8",
                       r.matches};
  auto hand = [&](ConcordanceLine &&line) {
    line.file = file.name;
    line.encoding = file.encoding;
    out.Add(std::move(line));
  };
  if (r.tooManyLines) {
    settings.emit = hand;
    FastResult again;
    if (!search(again) || again.matches != r.matches)
      throw InputFailed{"the file changed while it was read"};
  }
  for (ConcordanceLine &line : r.lines)
    hand(std::move(line));
  out.FileDone(file);
  done = {r.matches, static_cast<size_t>(r.bytes)};
  return true;
}

// Reads one input, says how when it had to assume, searches it, hands the
// lines on; returns the matches and the bytes read.
std::pair<uint64_t, size_t> SearchOne(const Input &in, Matcher &matcher, const FastPlan *plan,
                                      const SearchOptions &o, ConcordanceOutput &out,
                                      FileProblems &problems) {
  std::string bytes;
  bool loaded = false;
  std::pair<uint64_t, size_t> done;
  if (plan && SearchFast(in, *plan, matcher, o, out, bytes, loaded, done)) return done;
  if (!loaded) bytes = in.load();
  const TDecodedText decoded = DecodeText(bytes, o.given);
  FileCount file{in.name, decoded.Encoding.Name(), EvidenceText(decoded.Evidence, o.encodingGiven),
                 0};
  if (decoded.Evidence == TEncodingEvidence::Given && !o.encodingGiven && !decoded.Text.empty())
    std::cerr << "kestrel search: " << DisplayName(in.name)
              << ": neither UTF-8 nor UTF-16, read as " << file.encoding
              << " (--encoding names another)\n";
  std::vector<MatchSpan> found = matcher.FindAll(decoded.Text);
  if (matcher.EmptyCapReached())
    problems.Note(in.name, "more than " + std::to_string(kMaxEmptyMatches) +
                               " empty matches; the rest of the text was not searched");
  if (found.size() > o.maxCount) found.resize(o.maxCount);
  if (!o.out.count) Hand(decoded.Text, found, file, o, out);
  file.matches = found.size();
  out.FileDone(file);
  return {file.matches, bytes.size()};
}

// SearchOne, with a text that can't be had reported and counted as no match.
std::pair<uint64_t, size_t> SearchOrReport(const Input &in, Matcher &matcher, const FastPlan *plan,
                                           const SearchOptions &o, ConcordanceOutput &out,
                                           FileProblems &problems) {
  std::pair<uint64_t, size_t> found{0, 0};
  ReportingFailures(in.name, problems,
                    [&] { found = SearchOne(in, matcher, plan, o, out, problems); });
  return found;
}

// ---- The command

int RunSearch(const Args &args) {
  SearchOptions o = ReadOptions(args);
  std::vector<std::string> paths;
  const std::u16string pattern = TakePattern(args, o, paths);
  std::unique_ptr<Matcher> matcher = Matcher::Make(pattern, o.match);
  const std::optional<FastPlan> plan = FastPlan::Make(pattern, o.match);
  FileProblems problems("search");
  SearchInputs sources({args.Value("files", "*.txt"), args.Has("recursive"),
                        args.Has("follow-links"), o.maxFileSize},
                       problems);
  std::vector<Input> inputs;
  for (const std::string &path : paths)
    sources.Add(path, inputs);

  for (const Input &in : inputs)
    o.out.nameWidth = std::max(o.out.nameWidth, DisplayName(in.name).size());
  ConcordanceOutput out(o.out);
  Progress progress(false);
  WalkStatus status(inputs.size(), "matches");
  InterruptGuard interrupt;
  uint64_t matches = 0;
  size_t withMatches = 0, done = 0;
  for (const Input &in : inputs) {
    if (InterruptGuard::Requested()) break;
    const auto [n, bytes] = SearchOrReport(in, *matcher, plan ? &*plan : nullptr, o, out, problems);
    matches += n;
    withMatches += n > 0;
    ++done;
    status.FileDone(bytes, n);
    progress.Update(status.Text());
  }
  progress.Done();
  out.Finish(matches, done, withMatches, problems.Summary());
  std::fflush(stdout);
  if (InterruptGuard::Requested()) return kInterruptedStatus;
  return problems.Failures() > 0 ? 2 : matches > 0 ? 0 : 1;
}

const CommandRegistration kSearch{Command{
    "search",
    "a concordance: every match of a pattern in texts, in its context",
    "search [OPTIONS] PATTERN PATH...\n"
    "       search [OPTIONS] --pattern-file FILE PATH...\n"
    "  A PATH may be a folder, a ZIP archive (its members are searched as texts) or -\n"
    "  (standard input). Each file is read by its byte-order mark, as UTF-8 when it is\n"
    "  valid UTF-8, as UTF-16 when its bytes show it, else in the --encoding given\n"
    "  (windows-1252 by default, with a note). Each match shows file, line, column\n"
    "  (in characters, from 1), left context, the match and right context, aligned on\n"
    "  the match. Exit status 0 when something was found, 1 when nothing, 2 for bad use\n"
    "  or when a text could not be read: each such text is reported with the reason,\n"
    "  the others are searched, and the summary counts them. FIFOs, sockets, devices\n"
    "  and links to folders met in folders are passed by with a note.\n"
    "  --regex              the pattern is a regular expression: every leftmost-longest\n"
    "                       match, as grep -E -o; [[:alpha:]], \\d \\s \\w, \\p{Lu} and the\n"
    "                       other familiar forms are understood; \\b, look-around,\n"
    "                       back-references and lazy quantifiers are refused\n"
    "  --single-pass        with --regex: the library's one-pass engine, as it is\n"
    "  --case-sensitive     compare characters exactly (default: case folded)\n"
    "  --whole-word         no letter, digit, mark or connector just before or after\n"
    "                       the match (line breaks and punctuation are bounds)\n"
    "  --ignore-marks       accents do not count: text and pattern are decomposed and\n"
    "                       their non-spacing marks dropped (\"ceske\" finds \"\xC4\x8D"
    "esk\xC3\xA9\")\n"
    "  --compress-space     a run of white space counts as one blank (not with --regex)\n"
    "  --width N            columns of context on each side (default 30)\n"
    "  --pattern-file FILE  read the pattern from FILE, read like the texts\n"
    "                       (one final line break is dropped)\n"
    "  --encoding ENC       for texts that show no encoding: a code page (1252, cp1251,\n"
    "                       latin1, koi8-r, shift_jis, iso-8859-2...), utf-8, utf-16le,\n"
    "                       utf-16be\n"
    "  --files MASKS        in folders and archives, the files to search: up to 10\n"
    "                       masks separated by \";\" (default \"*.txt\")\n"
    "  --recursive          search the sub-folders of a folder too\n"
    "  --follow-links       enter links to folders (each folder is searched once)\n"
    "  --max-file-size SIZE texts that must be read whole and are larger than SIZE\n"
    "                       bytes (K, M, G: powers of 1024) are passed by with a note\n"
    "                       (default 1G); a UTF-8 file searched for a pattern with a\n"
    "                       literal part is read a block at a time, whatever its size\n"
    "  --max-count N        at most N matches per text\n"
    "  --report             after the matches, a line per file: matches and encoding\n"
    "  --words N            N words of context on each side instead of --width\n"
    "  --sort KEY           sort the lines: left[:N] or right[:N] by the N-th word left\n"
    "                       or right of the match (default 1), match by the match;\n"
    "                       in the order of --locale, equal keys in corpus order\n"
    "  --locale LOCALE      a name such as de_DE or a Windows locale number\n"
    "                       (default: the user's)\n"
    "  --count              the matches per file and the total instead of the lines\n"
    "  --format FMT         text (the default), tsv, csv (RFC 4180) or json, with the\n"
    "                       fields file, start, stop (UTF-16 unit offsets into the\n"
    "                       decoded text), line, column, match, encoding, left, right\n"
    "  --json               short for --format json; with --report an object\n"
    "                       {\"matches\": [...], \"files\": [...]}\n"
    "  Ctrl-C stops after the file being read: what was found is printed, status 130.",
    {"width", "pattern-file", "encoding", "files", "format", "words", "sort", "locale", "max-count",
     "max-file-size"},
    RunSearch}};

} // namespace
} // namespace kestrel::cli
