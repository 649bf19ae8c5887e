#include <kestrel/frame/host/Wildcards.h>

#include <cstddef>

#include <kestrel/frame/host/AnsiStrings.h>

namespace kestrel {

void WildcardPattern::AddStar() {
  if (FSteps.empty() || FSteps.back().kind != Kind::Star)
    FSteps.push_back(Step{Kind::Star, false, 0, {}});
}

void WildcardPattern::AddAny() {
  FSteps.push_back(Step{Kind::Any, false, 0, {}});
}

void WildcardPattern::AddLiteral(char32_t c) {
  FSteps.push_back(Step{Kind::Literal, false, UpperCodePoint(c), {}});
}

void WildcardPattern::AddSet(Ranges ranges, bool negate) {
  FSteps.push_back(Step{Kind::Set, negate, 0, std::move(ranges)});
}

WildcardPattern WildcardPattern::StarsAndQuestionMarks(std::u32string_view mask) {
  WildcardPattern p;
  for (char32_t c : mask) {
    if (c == U'*')
      p.AddStar();
    else if (c == U'?')
      p.AddAny();
    else
      p.AddLiteral(c);
  }
  return p;
}

bool WildcardPattern::StepMatches(const Step &step, char32_t c) const {
  switch (step.kind) {
  case Kind::Any:
    return true;
  case Kind::Literal:
    return UpperCodePoint(c) == step.ch;
  case Kind::Set: {
    const char32_t u = UpperCodePoint(c);
    bool in = false;
    for (const auto &[lo, hi] : step.ranges)
      if (u >= lo && u <= hi) {
        in = true;
        break;
      }
    return in != step.negate;
  }
  case Kind::Star:
    break;
  }
  return false;
}

bool WildcardPattern::Matches(std::u32string_view s) const {
  size_t si = 0, pi = 0, starP = SIZE_MAX, starS = 0;
  while (si < s.size()) {
    if (pi < FSteps.size() && FSteps[pi].kind == Kind::Star) {
      starP = pi++;
      starS = si;
    } else if (pi < FSteps.size() && StepMatches(FSteps[pi], s[si])) {
      ++pi;
      ++si;
    } else if (starP != SIZE_MAX) {
      pi = starP + 1;
      si = ++starS;
    } else {
      return false;
    }
  }
  while (pi < FSteps.size() && FSteps[pi].kind == Kind::Star)
    ++pi;
  return pi == FSteps.size();
}

} // namespace kestrel
