#include "SearchPrinters.h"

#include <algorithm>
#include <cstdio>

#include "Cli.h"

namespace kestrel::cli {
namespace {

bool IsBreak(char16_t c) {
  return c == u'\n' || c == u'\r' || c == 0x2028 || c == 0x2029;
}
bool IsLowHalf(char16_t c) {
  return c >= 0xDC00 && c <= 0xDFFF;
}
bool IsHighHalf(char16_t c) {
  return c >= 0xD800 && c <= 0xDBFF;
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

std::string Utf8(const std::u16string &text) {
  return Utf16ToUtf8Lossless(text);
}

class ConcordancePrinter : public Printer {
public:
  ConcordancePrinter(int width, size_t nameWidth, bool report)
      : width_(width), nameWidth_(nameWidth), report_(report) {}
  void Print(const FileResult &file, const Hit &h, const std::u16string &text) override {
    Piece left = LeftContext(text, h.start, width_);
    Piece right = RightContext(text, h.stop, width_);
    std::string where = std::to_string(h.line) + ":" + std::to_string(h.column);
    std::printf("%-*s %9s  %*s%s  %s  %s\n", static_cast<int>(nameWidth_), file.name.c_str(),
                where.c_str(), width_ - left.columns, "", Utf8(left.text).c_str(),
                Utf8(Flatten(text.substr(h.start, h.stop - h.start))).c_str(),
                Utf8(right.text).c_str());
  }
  void FileDone(const FileResult &file) override {
    if (report_) files_.push_back(file);
  }
  void Finish(uint64_t matches, size_t files, size_t withMatches) override {
    for (const FileResult &f : files_)
      std::printf("%s: %llu match%s, %s (%s)\n", f.name.c_str(),
                  static_cast<unsigned long long>(f.matches), f.matches == 1 ? "" : "es",
                  f.encoding.c_str(), f.evidence.c_str());
    std::printf("%llu match%s in %zu of %zu file%s\n", static_cast<unsigned long long>(matches),
                matches == 1 ? "" : "es", withMatches, files, files == 1 ? "" : "s");
  }

private:
  int width_;
  size_t nameWidth_;
  bool report_;
  std::vector<FileResult> files_;
};

// A JSON array of matches; with the report, an object holding that array
// and one entry per file.
class JsonPrinter : public Printer {
public:
  explicit JsonPrinter(bool report) : report_(report) {
    std::printf(report_ ? "{\"matches\": [" : "[");
  }
  void Print(const FileResult &file, const Hit &h, const std::u16string &text) override {
    std::printf("%s\n  {\"file\": %s, \"start\": %u, \"stop\": %u, \"line\": %u, \"column\": %u, "
                "\"match\": %s, \"encoding\": %s}",
                first_ ? "" : ",", JsonString(file.name).c_str(), h.start, h.stop, h.line, h.column,
                JsonString(Utf8(text.substr(h.start, h.stop - h.start))).c_str(),
                JsonString(file.encoding).c_str());
    first_ = false;
  }
  void FileDone(const FileResult &file) override {
    if (report_) files_.push_back(file);
  }
  void Finish(uint64_t, size_t, size_t) override {
    std::printf("%s]", first_ ? "" : "\n");
    if (!report_) {
      std::printf("\n");
      return;
    }
    std::printf(",\n \"files\": [");
    for (size_t i = 0; i < files_.size(); ++i)
      std::printf("%s\n  {\"file\": %s, \"encoding\": %s, \"evidence\": %s, \"matches\": %llu}",
                  i ? "," : "", JsonString(files_[i].name).c_str(),
                  JsonString(files_[i].encoding).c_str(), JsonString(files_[i].evidence).c_str(),
                  static_cast<unsigned long long>(files_[i].matches));
    std::printf("%s]}\n", files_.empty() ? "" : "\n");
  }

private:
  bool report_;
  bool first_ = true;
  std::vector<FileResult> files_;
};

} // namespace

std::vector<uint32_t> LineStarts(const std::u16string &text) {
  std::vector<uint32_t> starts{0};
  for (size_t i = 0; i < text.size(); ++i) {
    if (!IsBreak(text[i])) continue;
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    starts.push_back(static_cast<uint32_t>(i + 1));
  }
  return starts;
}

Hit Place(const std::u16string &text, const std::vector<uint32_t> &lineStarts, uint32_t start,
          uint32_t stop) {
  const auto line =
      std::upper_bound(lineStarts.begin(), lineStarts.end(), start) - lineStarts.begin();
  const uint32_t column = Characters(text, lineStarts[size_t(line) - 1], start) + 1;
  return Hit{start, stop, static_cast<uint32_t>(line), column};
}

std::unique_ptr<Printer> MakeConcordancePrinter(int width, size_t nameWidth, bool report) {
  return std::make_unique<ConcordancePrinter>(width, nameWidth, report);
}

std::unique_ptr<Printer> MakeJsonPrinter(bool report) {
  return std::make_unique<JsonPrinter>(report);
}

} // namespace kestrel::cli
