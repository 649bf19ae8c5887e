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
  uint64_t maxCount = UINT64_MAX; // matches kept per text
};

class Matcher {
public:
  // Compiles the pattern; raises kestrel::Exception for a bad one (one line).
  static std::unique_ptr<Matcher> Make(const std::u16string &pattern, const MatchOptions &options);
  virtual ~Matcher() = default;
  // Every match in the text, in order, none empty; at most maxCount, and
  // none after kMaxEmptyMatches empty ones (a pattern such as q* matches
  // the empty text at every unit), which EmptyCapReached then tells.
  std::vector<MatchSpan> FindAll(const std::u16string &text);
  bool EmptyCapReached() const { return emptyCapReached_; }

protected:
  explicit Matcher(const MatchOptions &o) : maxCount_(o.maxCount), ignoreMarks_(o.ignoreMarks) {}
  // The matches in the text the engine sees (without marks when they are
  // ignored).
  virtual std::vector<MatchSpan> Find(const std::u16string &text) = 0;

  bool emptyCapReached_ = false; // set by Find
  const uint64_t maxCount_;

private:
  bool ignoreMarks_;
};

} // namespace kestrel::cli
