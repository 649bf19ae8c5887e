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
      FPattern.AddStar();
      ++i;
    } else if (c == U'?') {
      FPattern.AddAny();
      ++i;
    } else if (c == U'[') {
      WildcardPattern::Ranges ranges;
      bool negate = false;
      ++i;
      if (i < cps.size() && cps[i] == U'!') {
        negate = true;
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
        ranges.emplace_back(lo, hi);
        ++i;
      }
      if (i >= cps.size() || ranges.empty()) InvalidMask(mask, at[std::min(i, cps.size())]);
      ++i; // the closing ]
      FPattern.AddSet(std::move(ranges), negate);
    } else {
      FPattern.AddLiteral(c);
      ++i;
    }
  }
}

bool TMask::Matches(std::string_view name) const {
  return FPattern.Matches(CodePointsOf(name));
}

bool MatchesMask(std::string_view name, std::string_view mask) {
  return TMask(mask).Matches(name);
}

} // namespace kestrel
