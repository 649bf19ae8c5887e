// What kestrel search finds in one text: the engine behind each kind of
// search, word bounds and accents handled around it, matches as offsets into
// the text as it was read.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kestrel::cli {

struct MatchSpan {
  uint32_t start = 0, stop = 0;
};

struct MatchOptions {
  bool regex = false;
  bool singlePass = false; // the one-pass engine for --regex
  bool caseSensitive = false;
  bool ignoreMarks = false;
  bool compressSpace = false;
  bool wholeWord = false;
};

class Matcher {
public:
  // Compiles the pattern; raises kestrel::Exception for a bad one (one line).
  static std::unique_ptr<Matcher> Make(const std::u16string &pattern, const MatchOptions &options);
  virtual ~Matcher() = default;
  // Every match in the text, in order, none empty.
  std::vector<MatchSpan> FindAll(const std::u16string &text);

protected:
  explicit Matcher(bool ignoreMarks) : ignoreMarks_(ignoreMarks) {}
  // The matches in the text the engine sees (without marks when they are
  // ignored).
  virtual std::vector<MatchSpan> Find(const std::u16string &text) = 0;

private:
  bool ignoreMarks_;
};

} // namespace kestrel::cli
