// Each row runs kestrel in a fresh copy of inputs/ and compares exit code, output and files
// left with golden/<row>.txt; KESTREL_UPDATE_GOLDEN=1 rewrites them (review the diff).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include <kestrel/files/TextFiles.h>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"
#include "support/ZipWriter.h"

namespace kestrel::test {
namespace {

struct Row {
  const char *golden;                  // golden/<golden>.txt
  std::vector<std::string> args;       // run in the folder of input files
  std::vector<std::string> files = {}; // files whose content (or absence) is part of the result
  const char *input = "";              // the file that is standard input (none: /dev/null)
};

// clang-format off
const Row kRows[] = {
    // char: properties, text fields, JSON, bad arguments.
    {"char-text", {"char", "A\xC3\xA9\xC2\xBD", "\xF0\x90\x80\x80"}},
    {"char-code-points", {"char", "U+10000", "u+2169", "U+0009", "U+01C5", "U+1F82", "U+0345", "U+AC01", "U+D7A4"}},
    {"char-json", {"char", "--json", "\xC2\xBD", "U+0041", "U+00C0", "U+10000"}},
    {"char-no-argument", {"char"}},
    {"char-unknown-option", {"char", "--frobnicate", "A"}},
    {"char-cut-sequence", {"char", "ok", "\xC3"}},
    {"char-overlong", {"char", "\xC0\x80"}},
    // convert: names of encodings, marks, surrogates, replacements, failures.
    {"convert-1252-to-utf8", {"convert", "--from", "1252", "--to", "utf-8", "cp1252.txt"}},
    {"convert-utf8-to-1252", {"convert", "--from", "utf-8", "--to", "windows-1252", "cafe-utf8.txt"}},
    {"convert-utf8-to-cp932", {"convert", "--from", "utf8", "--to", "cp932", "nihon-utf8.txt"}},
    {"convert-empty", {"convert", "--from", "1252", "--to", "utf-8", "empty.txt"}},
    {"convert-to-utf16", {"convert", "--from", "utf-8", "--to", "utf-16", "cafe-utf8.txt"}},
    {"convert-to-utf16be", {"convert", "--from", "utf-8", "--to", "utf-16be", "cafe-utf8.txt"}},
    {"convert-to-utf16-no-bom", {"convert", "--from", "utf-8", "--to", "utf-16", "--no-bom", "cafe-utf8.txt"}},
    {"convert-utf16be-in", {"convert", "--from", "utf-16", "--to", "utf-8", "be.txt"}},
    {"convert-utf16-no-mark-in", {"convert", "--from", "utf-16", "--to", "utf-8", "a-utf16.bin"}},
    {"convert-utf8-mark-dropped", {"convert", "--from", "utf-8", "--to", "1252", "u8bom.txt"}},
    {"convert-utf8-mark-asked", {"convert", "--from", "1252", "--to", "utf-8", "--bom", "cp1252.txt"}},
    {"convert-pair-to-utf8", {"convert", "--from", "utf-16", "--to", "utf-8", "pair.bin"}},
    {"convert-lone-half-to-utf8", {"convert", "--from", "utf-16", "--to", "utf-8", "lone.bin"}},
    {"convert-lone-half-back", {"convert", "--from", "utf-8", "--to", "utf-16", "lone-utf8.bin"}},
    {"convert-replacements", {"convert", "--from", "utf-8", "--to", "1252", "han.txt", "out.bin"}, {"out.bin"}},
    {"convert-unknown-code-page", {"convert", "--from", "12345", "--to", "utf-8", "cp1252.txt", "out.bin"}, {"out.bin"}},
    {"convert-unknown-name", {"convert", "--from", "klingon", "--to", "utf-8", "cp1252.txt"}},
    {"convert-odd-utf16", {"convert", "--from", "utf-16", "--to", "utf-8", "odd.bin", "keep.bin"}, {"keep.bin"}},
    {"convert-missing-input", {"convert", "--from", "1252", "--to", "utf-8", "none.txt"}},
    {"convert-no-from", {"convert", "--to", "utf-8"}},
    {"convert-too-many", {"convert", "--from", "1252", "--to", "utf-8", "a", "b", "c"}},
    // search: encodings, flags, context, pattern files, code pages.
    {"search-encodings", {"search", "--json", "kestrel", "le.txt", "be.txt", "u8.txt", "u8bom.txt"}},
    {"search-folded", {"search", "--json", "kestrel", "flags.txt"}},
    {"search-case-sensitive", {"search", "--json", "--case-sensitive", "Kestrel", "flags.txt"}},
    {"search-whole-word", {"search", "--json", "--whole-word", "kestrel", "flags.txt"}},
    {"search-compress-space", {"search", "--json", "--compress-space", "a b", "flags.txt"}},
    {"search-no-compress", {"search", "--json", "a b", "flags.txt"}},
    {"search-ignore-marks", {"search", "--json", "--ignore-marks", "crecerelle", "flags.txt"}},
    {"search-context", {"search", "--width", "10", "falcon", "falcon.txt"}},
    {"search-pattern-file", {"search", "--json", "--pattern-file", "half-pattern.txt", "half-text.txt"}},
    {"search-encoding-1252", {"search", "--json", "--encoding", "1252", "caf\xC3\xA9", "latin.txt"}},
    {"search-encoding-cp1252", {"search", "--encoding", "cp1252", "caf", "latin.txt"}},
    {"search-missing-file", {"search", "word", "missing.txt"}},
    {"search-unknown-encoding", {"search", "--encoding", "nonsense", "word", "latin.txt"}},
    {"search-no-path", {"search", "word"}},
    {"search-unknown-option", {"search", "--bogus", "word", "latin.txt"}},
    {"search-negative-width", {"search", "--width", "-3", "word", "latin.txt"}},
    // search --regex.
    {"regex-matches", {"search", "--regex", "--json", "k[a-z]+l", "regex.txt"}},
    {"regex-folded", {"search", "--regex", "--json", "^KES", "regex.txt"}},
    {"regex-case-sensitive", {"search", "--regex", "--case-sensitive", "^kes", "regex.txt"}},
    {"regex-pattern-file", {"search", "--regex", "--json", "--pattern-file", "class-pattern.txt", "regex.txt"}},
    {"regex-group-open", {"search", "--regex", "(ab", "regex.txt"}},
    {"regex-empty-group", {"search", "--regex", "()", "regex.txt"}},
    {"regex-whole-word", {"search", "--regex", "--whole-word", "kes", "regex.txt"}},
    {"regex-ignore-marks", {"search", "--regex", "--ignore-marks", "kes", "regex.txt"}},
    {"regex-compress-space", {"search", "--regex", "--compress-space", "kes", "regex.txt"}},
    // search --regex and the literal search with word bounds, accents, familiar syntax.
    {"regex-every-match", {"search", "--regex", "[a-z]+ing", "driving.txt"}},
    {"regex-single-pass", {"search", "--regex", "--single-pass", "--json", "[a-z]+ing", "driving.txt"}},
    {"regex-word-boundary", {"search", "--regex", "\\bkes", "regex.txt"}},
    {"regex-lazy", {"search", "--regex", "a*?", "regex.txt"}},
    {"regex-whole-word-and-marks", {"search", "--regex", "--whole-word", "--ignore-marks", "kes", "regex.txt"}},
    {"single-pass-without-regex", {"search", "--single-pass", "kes", "regex.txt"}},
    {"words-whole-word", {"search", "--json", "--whole-word", "love", "words.txt"}},
    {"words-whole-word-regex", {"search", "--json", "--whole-word", "--regex", "lov(e|es)", "words.txt"}},
    {"words-whole-word-single-pass", {"search", "--json", "--whole-word", "--regex", "--single-pass", "love", "words.txt"}},
    {"words-shorter-match-keeps-bounds", {"search", "--json", "--whole-word", "--regex", "a.|a", "a-b.txt"}},
    {"words-inside-a-refused-one", {"search", "--json", "--whole-word", "a-a", "ba-a-a.txt"}},
    {"accents-bare-pattern", {"search", "--json", "--ignore-marks", "ceske", "accents.txt"}},
    {"accents-regex", {"search", "--json", "--ignore-marks", "--regex", "cr[e]+cerelle", "accents.txt"}},
    {"accents-kept", {"search", "--json", "ceske", "accents.txt"}},
    {"familiar-posix-class", {"search", "--json", "--regex", "[[:alpha:]]+ness", "familiar.txt"}},
    {"familiar-category", {"search", "--json", "--regex", "--case-sensitive", "\\p{Lu}\\p{Ll}+", "familiar.txt"}},
    {"familiar-digits-single-pass", {"search", "--json", "--regex", "--single-pass", "\\d+", "familiar.txt"}},
    // Each file in its own encoding; the names that search and convert share.
    {"encodings-per-file", {"search", "--json", "--encoding", "1251", "\xD0\xB4\xD0\xBE\xD0\xBC", "mixed"}},
    {"encodings-report", {"search", "--report", "\xD0\xB4\xD0\xBE\xD0\xBC", "mixed"}},
    {"encodings-as-given", {"search", "--json", "--report", "--encoding", "koi8-r", "\xD0\xB4\xD0\xBE\xD0\xBC", "mixed/koi8.txt"}},
    {"names-convert-x-mac-cyrillic", {"convert", "--from", "utf-8", "--to", "x-mac-cyrillic", "u.txt"}},
    // Folders, standard input, options.
    {"search-mask-misses-every-file", {"search", "kestrel", "notes"}},
    {"search-mask-takes-them", {"search", "--files", "*.md", "kestrel", "notes"}},
    {"search-empty-standard-input", {"search", "--json", "--report", "kestrel", "-"}},
    {"search-standard-input", {"search", "--json", "kestrel", "-"}, {}, "stdin.txt"},
    {"search-one-dash-option", {"search", "-i", "word", "dash.txt"}},
    {"search-dash-pattern", {"search", "--", "-x", "dash.txt"}},
    {"identify-unknown-option", {"identify", "--bogus", "x"}},
    {"identify-folder", {"identify", "lists"}},
    // Folders and archives: scan, identify, search.
    {"scan-json", {"scan", "--json", "corpus"}},
    {"scan-recursive-members", {"scan", "--recursive", "--members", "*.txt", "corpus"}},
    {"scan-no-zips", {"scan", "--no-zips", "corpus"}},
    {"scan-missing-folder", {"scan", "no/such/folder"}},
    {"scan-no-folder", {"scan"}},
    {"scan-unknown-option", {"scan", "corpus", "--bogus"}},
    {"scan-eleven-masks", {"scan", "corpus", "--files", "a;b;c;d;e;f;g;h;i;j;k"}},
    {"identify", {"identify", "lists/w.lst", "lists/k.kws", "lists/plain.txt", "lists/b.zip"}},
    {"identify-as-lineups", {"identify", "--json", "--tool", "lineups", "lists/w.lst"}},
    {"identify-older-json", {"identify", "--json", "lists/k.kws"}},
    {"identify-missing", {"identify", "lists/missing"}},
    {"identify-unknown-tool", {"identify", "--tool", "nobody", "lists"}},
    {"identify-no-file", {"identify"}},
    {"search-folder", {"search", "kestrel", "corpus"}},
    {"search-folder-recursive", {"search", "--recursive", "kestrel", "corpus"}},
    {"search-folder-files", {"search", "--files", "*.doc", "text", "corpus"}},
    {"search-archive", {"search", "--json", "kestrel", "corpus/c.zip"}},
    {"search-damaged-archive", {"search", "kestrel", "bad.zip"}},
    {"words-damaged-archive", {"words", "bad.zip"}},
    {"words-missing-file", {"words", "missing.txt", "flags.txt"}},
    {"words-folder-recursive", {"words", "--recursive", "--top", "3", "corpus"}},
    // search as a concordance: sorts under a locale, export formats, contexts, counts.
    {"concordance-corpus-order", {"search", "--format", "tsv", "kestrel", "sorts.txt"}},
    {"concordance-right-de", {"search", "--format", "tsv", "--sort", "right", "--locale", "de_DE", "kestrel", "sorts.txt"}},
    {"concordance-right-sv", {"search", "--format", "tsv", "--sort", "right", "--locale", "sv_SE", "kestrel", "sorts.txt"}},
    {"concordance-right-1-de", {"search", "--format", "tsv", "--sort", "right:1", "--locale", "de_DE", "kestrel", "sorts.txt"}},
    {"concordance-left", {"search", "--format", "tsv", "--sort", "left", "kestrel", "sorts.txt"}},
    {"concordance-left-2-de", {"search", "--format", "tsv", "--sort", "left:2", "--locale", "de_DE", "kestrel", "sorts.txt"}},
    {"concordance-match", {"search", "--format", "tsv", "--sort", "match", "kestrel", "sorts.txt"}},
    {"concordance-right-2", {"search", "--format", "tsv", "--sort", "right:2", "kestrel", "sorts.txt"}},
    {"concordance-csv", {"search", "--format", "csv", "--width", "5", "kestrel", "quote.txt"}},
    {"concordance-tsv", {"search", "--format", "tsv", "--width", "5", "kestrel", "quote.txt"}},
    {"concordance-json", {"search", "--json", "--width", "5", "kestrel", "quote.txt"}},
    {"concordance-json-words", {"search", "--format", "json", "--words", "1", "kestrel", "quote.txt"}},
    {"concordance-tsv-words", {"search", "--format", "tsv", "--words", "2", "kestrel", "quote.txt"}},
    {"concordance-words", {"search", "--words", "1", "kestrel", "quote.txt"}},
    {"count-tsv", {"search", "--count", "--format", "tsv", "kestrel", "counts/a.txt", "counts/b.txt", "counts/c.txt"}},
    {"count-max-tsv", {"search", "--count", "--max-count", "2", "--format", "tsv", "kestrel", "counts/a.txt", "counts/b.txt", "counts/c.txt"}},
    {"count-csv", {"search", "--count", "--format", "csv", "kestrel", "counts/a.txt", "counts/b.txt", "counts/c.txt"}},
    {"count-text", {"search", "--count", "kestrel", "counts/a.txt", "counts/b.txt", "counts/c.txt"}},
    {"count-json", {"search", "--count", "--json", "kestrel", "counts/a.txt", "counts/b.txt", "counts/c.txt"}},
    {"count-max-lines", {"search", "--max-count", "1", "--format", "tsv", "kestrel", "counts/a.txt", "counts/b.txt", "counts/c.txt"}},
    {"count-none", {"search", "--count", "falcon", "counts/a.txt"}},
    {"concordance-bad-sort", {"search", "--sort", "middle", "kestrel", "quote.txt"}},
    {"concordance-bad-sort-match-2", {"search", "--sort", "match:2", "kestrel", "quote.txt"}},
    {"concordance-bad-sort-left-0", {"search", "--sort", "left:0", "kestrel", "quote.txt"}},
    {"concordance-bad-sort-left-x", {"search", "--sort", "left:x", "kestrel", "quote.txt"}},
    {"concordance-bad-words", {"search", "--words", "0", "kestrel", "quote.txt"}},
    {"concordance-width-and-words", {"search", "--width", "5", "--words", "2", "kestrel", "quote.txt"}},
    {"concordance-bad-format", {"search", "--format", "xml", "kestrel", "quote.txt"}},
    {"concordance-json-and-csv", {"search", "--json", "--format", "csv", "kestrel", "quote.txt"}},
    {"concordance-bad-max-count", {"search", "--max-count", "0", "kestrel", "quote.txt"}},
    {"concordance-count-and-sort", {"search", "--count", "--sort", "left", "kestrel", "quote.txt"}},
    {"concordance-bad-locale", {"search", "--locale", "0x7fff", "kestrel", "quote.txt"}},
    // words: rows chosen and ordered, each format, bad usage.
    {"words-top", {"words", "--format", "tsv", "--top", "3", "rows/one.txt", "rows/two.txt"}},
    {"words-min-freq", {"words", "--format", "tsv", "--min-freq", "2", "rows/one.txt", "rows/two.txt"}},
    {"words-alpha-de", {"words", "--format", "tsv", "--sort", "alpha", "--locale", "de_DE", "--min-freq", "1", "rows/one.txt", "rows/two.txt"}},
    {"words-case-sensitive", {"words", "--format", "tsv", "--case-sensitive", "--min-freq", "2", "rows/one.txt", "rows/two.txt"}},
    {"words-ngram", {"words", "--format", "tsv", "--ngram", "2", "--top", "2", "rows/one.txt", "rows/two.txt"}},
    {"words-text", {"words", "hawk.txt"}},
    {"words-tsv", {"words", "--format", "tsv", "hawk.txt"}},
    {"words-csv", {"words", "--format", "csv", "hawk.txt"}},
    {"words-json", {"words", "--json", "hawk.txt"}},
    {"words-none", {"words", "no-words.txt"}},
    {"words-none-json", {"words", "--json", "no-words.txt"}},
    {"words-bad-sort", {"words", "--sort", "size", "hawk.txt"}},
    {"words-bad-top", {"words", "--top", "0", "hawk.txt"}},
    {"words-bad-ngram", {"words", "--ngram", "0", "hawk.txt"}},
    {"words-bad-min-freq", {"words", "--min-freq", "x", "hawk.txt"}},
    {"words-unknown-option", {"words", "--bogus", "hawk.txt"}},
    {"words-no-file", {"words"}},
    // langs: an all-languages file (the system's own list depends on ICU: LangsCommandTest).
    {"langs-favourites", {"langs", "--favourites", "languages.ini"}},
    {"langs-favourites-json", {"langs", "--json", "--favourites=languages.ini"}},
    {"langs-favourites-none", {"langs", "--json", "--favourites", "empty.txt"}},
    {"langs-favourites-missing", {"langs", "--favourites", "none.ini"}},
    {"langs-stray-argument", {"langs", "stray"}},
    {"langs-no-file-name", {"langs", "--favourites"}},
};
// clang-format on

// The input files every row may use: a copy of inputs/, with the dates of
// the corpus fixed (the ZIP members carry theirs).
void CopyInputs(const TempDir &dir) {
  namespace fs = std::filesystem;
  fs::copy(SourceDir() + "/tests/tools/kestrel/inputs", dir.Path(), fs::copy_options::recursive);
  const std::time_t when = LocalTime(2004, 7, 15, 13, 45, 30);
  const struct timespec times[2] = {{when, 0}, {when, 0}};
  for (const char *name : {"corpus/a.txt", "corpus/sub/b.txt", "corpus/c.zip"})
    ::utimensat(AT_FDCWD, (dir / name).c_str(), times, 0);
}

// Bytes as golden text: valid UTF-8 and line ends as they are, a backslash
// doubled, other control bytes, stray bytes and byte-order marks as \xNN.
std::string Escaped(const std::string &bytes) {
  std::string out;
  for (size_t i = 0; i < bytes.size();) {
    const auto b = static_cast<unsigned char>(bytes[i]);
    const auto *u = reinterpret_cast<const uint8_t *>(bytes.data());
    const bool half = b == 0xED && i + 1 < bytes.size() && u[i + 1] >= 0xA0; // encoded surrogate
    const size_t n = half ? 1 : std::max<size_t>(Utf8SequenceAt(u, i, bytes.size()), 1);
    const bool mark = bytes.compare(i, 3, "\xEF\xBB\xBF") == 0;
    if (b == '\\') {
      out += "\\\\";
    } else if (b == '\n' || b == '\t' || (b >= 0x20 && b < 0x7F) || (n > 1 && !mark)) {
      out += bytes.substr(i, n);
    } else {
      for (size_t k = i; k < i + n; ++k) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned char>(bytes[k]));
        out += hex;
      }
    }
    i += n;
  }
  return out;
}

void AddSection(std::string &result, const std::string &title, const std::string &bytes) {
  std::string text = Escaped(bytes);
  result += "--- " + title + "\n" + text;
  if (!text.empty() && text.back() != '\n') result += "\n--- no line end\n";
}

std::string Result(const Row &row, const TempDir &dir) {
  KestrelRun run = RunKestrel(row.args, dir.Path(), *row.input ? dir / row.input : "");
  for (std::string *text : {&run.out, &run.err}) // the folder's own name varies
    for (size_t at; (at = text->find(dir.Path())) != std::string::npos;)
      text->replace(at, dir.Path().size(), "$DIR");
  std::string result = "$ kestrel";
  for (const std::string &a : row.args)
    result += " " + (a.empty() || a.find_first_of(" *;()[]^$|") != std::string::npos
                         ? "'" + Escaped(a) + "'"
                         : Escaped(a));
  result += "\nexit " + std::to_string(run.status) + "\n";
  if (!run.out.empty()) AddSection(result, "stdout", run.out);
  if (!run.err.empty()) AddSection(result, "stderr", run.err);
  for (const std::string &f : row.files) {
    if (std::filesystem::exists(dir / f))
      AddSection(result, "file " + f, ReadFileBytes(dir / f));
    else
      result += "--- file " + f + ": none\n";
  }
  return result;
}

void PrintTo(const Row &row, std::ostream *os) {
  *os << row.golden;
}

class Commands : public ::testing::TestWithParam<Row> {};

TEST_P(Commands, PrintWhatTheGoldenFileHolds) {
  const Row &row = GetParam();
  TempDir dir;
  CopyInputs(dir);
  const std::string got = Result(row, dir);
  const std::string golden =
      SourceDir() + "/tests/tools/kestrel/golden/" + std::string(row.golden) + ".txt";
  if (std::getenv("KESTREL_UPDATE_GOLDEN")) {
    std::ofstream(golden, std::ios::binary) << got;
    return;
  }
  ASSERT_TRUE(std::filesystem::exists(golden)) << golden << " is missing; got:\n" << got;
  EXPECT_EQ(got, ReadFileBytes(golden)) << golden;
}

INSTANTIATE_TEST_SUITE_P(Golden, Commands, ::testing::ValuesIn(kRows), [](const auto &info) {
  std::string name = info.param.golden;
  for (char &c : name)
    if (c == '-') c = '_';
  return name;
});

} // namespace
} // namespace kestrel::test
