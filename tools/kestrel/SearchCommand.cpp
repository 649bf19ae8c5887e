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
#include <string>
#include <vector>

#include <kestrel/files/TextFiles.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/Search.h>
#include <kestrel/unicode/CodePages.h>
#include <kestrel/unicode/Utf8.h>

#include "Cli.h"
#include "SearchInputs.h"
#include "SearchMatchers.h"
#include "SearchPrinters.h"

namespace kestrel::cli {
namespace {

const std::vector<std::string> kOptions = {
    "case-sensitive", "ignore-marks", "compress-space", "whole-word", "width",
    "pattern-file",   "encoding",     "json",           "files",      "recursive",
    "regex",          "single-pass",  "report"};

// ---- Options

struct SearchOptions {
  MatchOptions match;
  TTextEncoding given = DefaultTextEncoding(); // for texts that show no encoding
  bool encodingGiven = false;
  int width = 30;
  bool json = false, report = false;
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
  o.width = static_cast<int>(width);
  o.json = args.Has("json");
  o.report = args.Has("report");
  return o;
}

// ---- Pattern

std::u16string StripOneLineBreak(std::u16string s) {
  if (!s.empty() && s.back() == u'\n') s.pop_back();
  if (!s.empty() && s.back() == u'\r') s.pop_back();
  return s;
}

// The pattern and the paths: from --pattern-file (read like the texts, one
// final line break dropped) or from the first argument.
std::u16string TakePattern(const Args &args, const SearchOptions &o,
                           std::vector<std::string> &paths) {
  paths = args.Positional();
  std::u16string pattern;
  if (args.Has("pattern-file")) {
    pattern = StripOneLineBreak(ReadTextFile(args.Value("pattern-file"), o.given).Text);
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

// Reads one input, says how when it had to assume, searches it, prints.
FileResult SearchOne(const Input &in, Matcher &matcher, const SearchOptions &o, Printer &printer) {
  const TDecodedText decoded = DecodeText(in.load(), o.given);
  FileResult file{in.name, decoded.Encoding.Name(), EvidenceText(decoded.Evidence, o.encodingGiven),
                  0};
  if (decoded.Evidence == TEncodingEvidence::Given && !o.encodingGiven && !decoded.Text.empty())
    std::cerr << "kestrel search: " << in.name << ": neither UTF-8 nor UTF-16, read as "
              << file.encoding << " (--encoding names another)\n";
  const std::vector<MatchSpan> found = matcher.FindAll(decoded.Text);
  if (!found.empty()) {
    const std::vector<uint32_t> starts = LineStarts(decoded.Text);
    for (const MatchSpan &m : found)
      printer.Print(file, Place(decoded.Text, starts, m.start, m.stop), decoded.Text);
  }
  file.matches = found.size();
  printer.FileDone(file);
  return file;
}

// ---- The command

int RunSearch(const Args &args) {
  const SearchOptions o = ReadOptions(args);
  std::vector<std::string> paths;
  const std::u16string pattern = TakePattern(args, o, paths);
  std::unique_ptr<Matcher> matcher = Matcher::Make(pattern, o.match);
  SearchInputs sources(args.Value("files", "*.txt"), args.Has("recursive"));
  std::vector<Input> inputs;
  for (const std::string &path : paths)
    sources.Add(path, inputs);

  size_t nameWidth = 0;
  for (const Input &in : inputs)
    nameWidth = std::max(nameWidth, in.name.size());
  std::unique_ptr<Printer> printer =
      o.json ? MakeJsonPrinter(o.report) : MakeConcordancePrinter(o.width, nameWidth, o.report);
  Progress progress(false);
  const bool showProgress = inputs.size() >= 20;
  uint64_t matches = 0;
  size_t withMatches = 0, done = 0;
  for (const Input &in : inputs) {
    if (showProgress)
      progress.Update("searching " + std::to_string(++done) + "/" + std::to_string(inputs.size()) +
                      ": " + in.name);
    const FileResult r = SearchOne(in, *matcher, o, *printer);
    matches += r.matches;
    withMatches += r.matches > 0;
  }
  progress.Done();
  printer->Finish(matches, inputs.size(), withMatches);
  std::fflush(stdout);
  return matches > 0 ? 0 : 1;
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
    "  the match. Exit status 0 when something was found, 1 when nothing, 2 for bad use.\n"
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
    "  --report             after the matches, a line per file: matches and encoding\n"
    "  --json               a JSON array: file, start and stop (UTF-16 unit offsets\n"
    "                       into the decoded text), line, column, the match and the\n"
    "                       file's encoding; with --report an object {\"matches\": [...],\n"
    "                       \"files\": [...]}",
    {"width", "pattern-file", "encoding", "files"},
    RunSearch}};

} // namespace
} // namespace kestrel::cli
