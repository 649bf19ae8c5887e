#include <kestrel/frame/host/Masks.h>

#include <algorithm>
#include <cstdint>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

namespace {

[[noreturn]] void InvalidMask(std::string_view mask, size_t position) {
  throw EMaskException(
      Format(Consts::SInvalidMask, std::string(mask).c_str(), static_cast<int>(position + 1)));
}

} // namespace

TMask::TMask(std::string_view mask) {
  std::vector<size_t> at; // byte offset of each code point, for the error message
  std::u32string cps = CodePointsOf(mask, &at);
  at.push_back(mask.size());
  size_t i = 0;
  while (i < cps.size()) {
    char32_t c = cps[i];
    if (c == U'*') {
      if (FSteps.empty() || FSteps.back().kind != Kind::Star) // runs of stars are one star
        FSteps.push_back(Step{Kind::Star, false, 0, {}});
      ++i;
    } else if (c == U'?') {
      FSteps.push_back(Step{Kind::Any, false, 0, {}});
      ++i;
    } else if (c == U'[') {
      Step set{Kind::Set, false, 0, {}};
      ++i;
      if (i < cps.size() && cps[i] == U'!') {
        set.negate = true;
        ++i;
      }
      while (i < cps.size() && cps[i] != U']') {
        if (cps[i] == U'-') InvalidMask(mask, at[i]); // a range needs a start
        char32_t lo = UpperCodePoint(cps[i]), hi = lo;
        if (i + 1 < cps.size() && cps[i + 1] == U'-') {
          if (i + 2 >= cps.size() || cps[i + 2] == U']')
            InvalidMask(mask, at[i + 1]); // a range needs an end
          hi = UpperCodePoint(cps[i + 2]);
          if (hi < lo) InvalidMask(mask, at[i + 2]);
          i += 2;
        }
        set.ranges.emplace_back(lo, hi);
        ++i;
      }
      if (i >= cps.size() || set.ranges.empty()) InvalidMask(mask, at[std::min(i, cps.size())]);
      ++i; // the closing ]
      FSteps.push_back(std::move(set));
    } else {
      FSteps.push_back(Step{Kind::Literal, false, UpperCodePoint(c), {}});
      ++i;
    }
  }
}

bool TMask::StepMatches(const Step &step, char32_t c) const {
  switch (step.kind) {
  case Kind::Any:
    return true;
  case Kind::Literal:
    return UpperCodePoint(c) == step.ch;
  case Kind::Set: {
    char32_t u = UpperCodePoint(c);
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

bool TMask::Matches(std::string_view name) const {
  std::u32string s = CodePointsOf(name);
  // Greedy walk that goes back to the last star on a mismatch: linear in
  // practice, at most steps x characters.
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

bool MatchesMask(std::string_view name, std::string_view mask) {
  return TMask(mask).Matches(name);
}

} // namespace kestrel
