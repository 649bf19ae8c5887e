// TURELongestMatch: every match of a regular expression, leftmost-longest and
// without overlap, as POSIX `grep -E -o` finds them. The pattern language is
// TURESearch's (the same parser reads it); what differs is the matching:
//
// - From every position of the text an attempt may start, and the match that
//   starts leftmost wins; of the matches from that start the longest wins.
//   The next match is looked for from its end. A match that can be empty is
//   reported only where no other match ends (`a*` on "bab" gives (0, 0),
//   (1, 2), (3, 3)).
// - `^` and `$` test a position: the start of the text or of a line, the
//   end of the text or of a line (CR LF is one line break, and no line starts
//   or ends between its two units). They consume nothing.
// - With sfLeftBounded / sfRightBounded a match may not be preceded /
//   followed by a word character: a letter, digit, mark or connector
//   (IsWordCharacter, WordBounds.h). The bounds are part of the match, so a shorter match
//   that keeps them beats a longer one that does not.
// - sfCaseSensitive as for TURESearch: without it pattern and text are folded
//   to lower case. sfIgnoreNonSpacing and sfSpaceCompress have no effect.
//
// The symbols of the pattern are split into disjoint classes of characters,
// and the expression is determinized lazily: each state of the automaton is
// made when the text first needs it and kept in a cache of bounded size
// (emptied and refilled when full). A state records which attempts are still
// alive, grouped by where they started, so that one forward pass with a small
// register per group finds the start and the end of each match in time linear
// in the text for a fixed pattern.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <kestrel/search/SearchEngine.h>

namespace kestrel {

namespace longest {
class TAutomaton;
}

class TURELongestMatch : public TSearchEngine {
public:
  // One match: code-unit offsets, Stop one past the last unit.
  struct TMatch {
    uint32_t Start = 0;
    uint32_t Stop = 0;
    bool operator==(const TMatch &) const = default;
  };

  explicit TURELongestMatch(TWideStrings *AOwner = nullptr);
  ~TURELongestMatch() override;

  // Compiles the pattern; a bad pattern raises the parser's Exception, with
  // TURESearch's texts. A null or empty pattern changes nothing.
  void FindPrepare(const std::u16string &Pattern, TSearchFlags Flags) override;
  void FindPrepare(const char16_t *Pattern, uint32_t PatternLength, TSearchFlags Flags) override;
  // The first match in the TextLen units (a zero unit is a character like
  // any other).
  bool FindFirst(const std::u16string &Text, uint32_t &Start, uint32_t &Stop) override;
  bool FindFirst(const char16_t *Text, uint32_t TextLen, uint32_t &Start, uint32_t &Stop) override;
  bool FindAll(const std::u16string &Text) override;
  bool FindAll(const char16_t *Text, uint32_t TextLen) override;
  void Clear() override;

  // The matches of the last FindAll or FindFirst, also kept as pairs in the
  // result list of the base class.
  const std::vector<TMatch> &Matches() const { return FMatches; }
  bool Prepared() const { return FAutomaton != nullptr; }

  // The memory the cache of states may take before it is emptied (default
  // 8 MB, at most 1 GB; a limit too small for more than a state or two
  // empties it at every new transition, slowly, with the same answers), and
  // how often it has been emptied since the last FindPrepare.
  void SetCacheLimit(size_t Bytes);
  // Bounds FindAll: it stops after MaxFull non-empty or MaxEmpty empty
  // matches (unbounded at first), keeping those, and LimitReached says so.
  // A pattern such as q* matches the empty text at every unit.
  void SetMatchLimits(uint64_t MaxFull, uint64_t MaxEmpty) {
    FMaxFull = MaxFull;
    FMaxEmpty = MaxEmpty;
  }
  bool LimitReached() const { return FLimitReached; }
  uint64_t CacheFlushes() const;
  // Whether the scan jumps to the next occurrence of a literal that every
  // match holds (on at first); the answers are the same either way. Used
  // says whether the compiled pattern has one to jump by.
  void SetLiteralFilter(bool On);
  bool UsesLiteralFilter() const;
  // States in the cache now, for tests.
  size_t CachedStates() const;

private:
  bool Run(const char16_t *Text, uint32_t TextLen, bool FirstOnly);

  std::unique_ptr<longest::TAutomaton> FAutomaton;
  std::vector<TMatch> FMatches;
  size_t FCacheLimit = 8u << 20;
  uint64_t FMaxFull = UINT64_MAX, FMaxEmpty = UINT64_MAX;
  bool FLimitReached = false;
  bool FLiteralFilter = true;
};

} // namespace kestrel
