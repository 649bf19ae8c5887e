// A wildcard pattern over code points: the one matcher behind TMask and the
// file masks of FindFirst. A star takes any run of characters, also none (a
// run of stars is one star); "any" takes one character; a set takes one
// character within its ranges, or outside them when negated; a literal takes
// itself. Letters compare without case (UpperCodePoint).
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrel {

class WildcardPattern {
public:
  using Ranges = std::vector<std::pair<char32_t, char32_t>>;

  void AddStar();
  void AddAny();
  void AddLiteral(char32_t c);
  // Bounds in upper case.
  void AddSet(Ranges ranges, bool negate);

  // A mask of "*" and "?", every other character standing for itself.
  static WildcardPattern StarsAndQuestionMarks(std::u32string_view mask);

  // Greedy walk that goes back to the last star on a mismatch: linear in
  // practice, at most steps x characters.
  bool Matches(std::u32string_view name) const;

private:
  enum class Kind : uint8_t { Literal, Any, Star, Set };
  struct Step {
    Kind kind;
    bool negate = false;
    char32_t ch = 0; // Literal: upper-case form
    Ranges ranges;   // Set
  };
  bool StepMatches(const Step &step, char32_t c) const;
  std::vector<Step> FSteps;
};

} // namespace kestrel
