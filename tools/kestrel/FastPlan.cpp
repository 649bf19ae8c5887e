// The probe of a pattern for the fast way: the characters every match holds
// one after another, each with the characters the engine takes for it, and
// from them one or two bytes at fixed distances that the scan looks for.
#include <algorithm>
#include <array>
#include <set>

#include <kestrel/search/Search.h>
#include <kestrel/unicode/CaseMapping.h>

#include "FastSearch.h"
#include "WordChars.h"

namespace kestrel::cli {
namespace {

using Variants = std::vector<UCS4>; // the code points that match one pattern character
using Literal = std::vector<Variants>;

// A character after which a new line starts: a match holding one would cross
// the lines the fast way cuts the text at.
bool Breaks(UCS4 c) {
  return c == u'\n' || c == u'\r';
}

// ---- The literal engine: its entries say which text characters it takes.

std::optional<Literal> LiteralOfEngine(const std::u16string &pattern, const MatchOptions &o) {
  if (o.compressSpace || o.ignoreMarks) return std::nullopt;
  TSearchFlags flags;
  if (o.caseSensitive) flags.Include(TSearchFlag::sfCaseSensitive);
  TUTBMSearch engine(nullptr);
  engine.FindPrepare(pattern, flags);
  Literal literal;
  for (uint32_t i = 0; i < engine.GetPatternUsed(); ++i) {
    const TPatternEntry &e = engine.GetPattern()[i];
    Variants v{e.LoCase, e.UpCase, e.TitleCase};
    std::sort(v.begin(), v.end());
    v.erase(std::unique(v.begin(), v.end()), v.end());
    // The engine counts the units of the text's characters against the
    // pattern's: forms of two sizes would make matches of two lengths.
    const bool astral = v.front() > 0xFFFF;
    for (UCS4 c : v)
      if (c == 0 || Breaks(c) || c > 0x10FFFF || (c > 0xFFFF) != astral) return std::nullopt;
    literal.push_back(std::move(v));
  }
  if (literal.empty()) return std::nullopt;
  return literal;
}

// ---- Regular expressions: the runs of plain characters every match holds.
//
// Only a plain subset is read: characters, escaped punctuation, \d and \w,
// classes of characters, ranges and names that take no line break, groups,
// alternatives inside groups, and the quantifiers. Anything else (anchors,
// the dot, negated classes, \s and the other escapes) leaves the pattern to
// the plain way, since a match might then hold a line break.

class RequiredRuns {
public:
  explicit RequiredRuns(const std::u16string &p) : p_(p) {}

  // False when the pattern is outside the subset.
  bool Read(std::vector<std::vector<UCS4>> &runs) {
    std::vector<UCS4> run;
    if (!Sequence(&runs, run) || at_ != p_.size()) return false;
    Flush(&runs, run);
    return true;
  }

private:
  enum class Atom : uint8_t { Char, Other };

  UCS4 Peek() const { return at_ < p_.size() ? CodeAt(p_, at_) : 0xFFFFFFFF; }
  UCS4 Take() {
    const UCS4 c = Peek();
    at_ += UnitsAt(p_, at_);
    return c;
  }
  bool AtEnd() const { return at_ >= p_.size(); }

  static bool PlainChar(UCS4 c) {
    return IsWordChar(c) || c == u' ' || c == u'\'' || c == u'-' || c == u',';
  }
  static bool Punctuation(UCS4 c) {
    return c < 0x80 && c > 0x20 &&
           !((c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'));
  }

  static void Flush(std::vector<std::vector<UCS4>> *runs, std::vector<UCS4> &run) {
    if (runs && !run.empty()) runs->push_back(run);
    run.clear();
  }

  // Items up to ")" or the end; runs is null inside groups, whose
  // characters are not counted on. A "|" at the top leaves no run required.
  bool Sequence(std::vector<std::vector<UCS4>> *runs, std::vector<UCS4> &run) {
    while (!AtEnd() && Peek() != u')') {
      if (Peek() == u'|') {
        if (runs) return false;
        Take();
        continue;
      }
      UCS4 c = 0;
      Atom atom;
      if (!ReadAtom(atom, c)) return false;
      int min = 1;
      bool repeats = false;
      if (!ReadQuantifier(min, repeats)) return false;
      if (atom == Atom::Char && min >= 1) {
        run.push_back(c);
        if (repeats) Flush(runs, run);
      } else {
        Flush(runs, run);
      }
    }
    return true;
  }

  bool ReadAtom(Atom &atom, UCS4 &c) {
    atom = Atom::Other;
    const UCS4 first = Take();
    if (first == u'\\') {
      if (AtEnd()) return false;
      const UCS4 e = Take();
      if (e == u'd' || e == u'w') return true;
      if (!Punctuation(e)) return false;
      atom = Atom::Char;
      c = e;
      return true;
    }
    if (first == u'[') return ReadClass();
    if (first == u'(') {
      if (Peek() == u'?') {
        Take();
        if (Take() != u':') return false;
      }
      std::vector<UCS4> inner;
      if (!Sequence(nullptr, inner) || AtEnd()) return false;
      Take(); // ")"
      return true;
    }
    if (!PlainChar(first)) return false;
    atom = Atom::Char;
    c = first;
    return true;
  }

  // After "[": plain characters, ranges above the controls, escaped
  // punctuation, \d \w and the names that hold no line break.
  bool ReadClass() {
    static const std::set<std::u16string> names = {u"alpha", u"digit", u"alnum", u"upper",
                                                   u"lower", u"punct", u"word",  u"xdigit"};
    if (Peek() == u'^') return false;
    bool first = true;
    while (!AtEnd()) {
      UCS4 c = Take();
      if (c == u']' && !first) return true;
      first = false;
      if (c == u'[') {
        if (Take() != u':') return false;
        const size_t end = p_.find(u":]", at_);
        if (end == std::u16string::npos || !names.count(p_.substr(at_, end - at_))) return false;
        at_ = end + 2;
        continue;
      }
      if (c == u'\\') {
        if (AtEnd()) return false;
        c = Take();
        if (c == u'd' || c == u'w') continue;
        if (!Punctuation(c)) return false;
      } else if (c < 0x20 || c == 0x2028 || c == 0x2029) {
        return false;
      }
      if (Peek() == u'-' && at_ + 1 < p_.size() && p_[at_ + 1] != u']') {
        Take();
        const UCS4 high = Take();
        if (high == u'\\' || high == u'[' || high < c) return false;
      }
    }
    return false;
  }

  // ? * + {m} {m,} {m,n}; min is 0 or more, repeats whether more than one
  // may follow. Lazy and possessive forms stay with the plain way.
  bool ReadQuantifier(int &min, bool &repeats) {
    const UCS4 q = Peek();
    if (q == u'?' || q == u'*') {
      Take();
      min = 0;
    } else if (q == u'+') {
      Take();
      repeats = true;
    } else if (q == u'{') {
      Take();
      std::u16string digits;
      while (!AtEnd() && (Peek() == u',' || (Peek() >= u'0' && Peek() <= u'9')))
        digits += char16_t(Take());
      if (AtEnd() || Take() != u'}' || digits.empty() || digits[0] == u',' || digits.size() > 12)
        return false;
      min = digits[0] == u'0' ? 0 : 1;
      repeats = true;
    } else {
      return true;
    }
    return Peek() != u'?' && Peek() != u'+' && Peek() != u'*' && Peek() != u'{';
  }

  const std::u16string &p_;
  size_t at_ = 0;
};

// The code points whose lower case is another, as (lower case, code point),
// in order: made once, by one pass over the code space.
const std::vector<std::pair<UCS4, UCS4>> &Lowered() {
  static const std::vector<std::pair<UCS4, UCS4>> table = [] {
    std::vector<std::pair<UCS4, UCS4>> t;
    for (UCS4 x = 0; x <= 0x10FFFF; ++x)
      if (const UCS4 l = UnicodeToLower(x); l != x) t.emplace_back(l, x);
    std::sort(t.begin(), t.end());
    return t;
  }();
  return table;
}

// The characters the regular-expression engine takes for each character of
// the run: itself, or with case folded every code point of the same lower
// case (the engine folds text and pattern with UnicodeToLower).
Literal FoldedVariants(const std::vector<UCS4> &run, bool caseSensitive) {
  Literal literal;
  for (UCS4 c : run) {
    if (caseSensitive) {
      literal.push_back({c});
      continue;
    }
    const UCS4 lower = UnicodeToLower(c);
    Variants v;
    if (UnicodeToLower(lower) == lower) v.push_back(lower);
    const auto &t = Lowered();
    for (auto it = std::lower_bound(t.begin(), t.end(), std::make_pair(lower, UCS4(0)));
         it != t.end() && it->first == lower; ++it)
      v.push_back(it->second);
    literal.push_back(std::move(v));
  }
  return literal;
}

std::optional<Literal> LiteralOfRegex(const std::u16string &pattern, const MatchOptions &o) {
  if (o.singlePass || o.ignoreMarks || o.compressSpace) return std::nullopt;
  std::vector<std::vector<UCS4>> runs;
  if (!RequiredRuns(pattern).Read(runs) || runs.empty()) return std::nullopt;
  const auto longest = std::max_element(
      runs.begin(), runs.end(), [](const auto &a, const auto &b) { return a.size() < b.size(); });
  return FoldedVariants(*longest, o.caseSensitive);
}

// ---- From the literal to the probe

// The UTF-8 form of a code point, a surrogate half in three bytes as the
// decoder reads it.
std::string Utf8Of(UCS4 c) {
  std::string s;
  if (c < 0x80) {
    s += char(c);
  } else if (c < 0x800) {
    s += char(0xC0 | (c >> 6));
    s += char(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    s += char(0xE0 | (c >> 12));
    s += char(0x80 | ((c >> 6) & 0x3F));
    s += char(0x80 | (c & 0x3F));
  } else {
    s += char(0xF0 | (c >> 18));
    s += char(0x80 | ((c >> 12) & 0x3F));
    s += char(0x80 | ((c >> 6) & 0x3F));
    s += char(0x80 | (c & 0x3F));
  }
  return s;
}

// How often a byte comes in text, roughly (per mille of English prose); the
// scan wants the rarest.
double Frequency(uint8_t b) {
  static const std::array<double, 26> letters = {82, 15, 28, 43, 127, 22, 20, 61, 70, 2,  8, 40, 24,
                                                 67, 75, 19, 1,  60,  63, 91, 28, 10, 24, 2, 20, 1};
  if (b >= 'a' && b <= 'z') return letters[b - 'a'];
  if (b >= 'A' && b <= 'Z') return letters[b - 'A'] / 20 + 0.5;
  if (b == ' ') return 160;
  if (b == '\n' || b == ',' || b == '.') return 12;
  return b >= 0x80 ? 5 : 3;
}

struct Position {
  size_t bytes = 0;          // the length of every variant, 0 when they differ
  std::vector<uint8_t> last; // the last bytes of the variants
  double frequency = 0;
};

Position PositionOf(const Variants &v) {
  Position p;
  std::set<uint8_t> last;
  for (UCS4 c : v) {
    const std::string s = Utf8Of(c);
    if (p.bytes != 0 && s.size() != p.bytes) return {};
    p.bytes = s.size();
    last.insert(uint8_t(s.back()));
  }
  p.last.assign(last.begin(), last.end());
  for (uint8_t b : p.last)
    p.frequency += Frequency(b);
  return p;
}

// The one or two rarest usable positions of a stretch of equal-length
// positions, tested on the last bytes of their characters.
std::optional<ByteProbe> ProbeOf(const Literal &literal) {
  std::vector<Position> pos;
  for (const Variants &v : literal)
    pos.push_back(PositionOf(v));
  auto usable = [&](size_t i) { return pos[i].bytes > 0 && pos[i].last.size() <= 4; };
  size_t best = SIZE_MAX;
  for (size_t i = 0; i < pos.size(); ++i)
    if (usable(i) && (best == SIZE_MAX || pos[i].frequency < pos[best].frequency)) best = i;
  if (best == SIZE_MAX) return std::nullopt;
  // The stretch around it in which distances in bytes are fixed.
  size_t from = best, to = best + 1;
  while (from > 0 && pos[from - 1].bytes > 0)
    --from;
  while (to < pos.size() && pos[to].bytes > 0)
    ++to;
  size_t second = SIZE_MAX;
  for (size_t i = from; i < to; ++i)
    if (i != best && usable(i) && (second == SIZE_MAX || pos[i].frequency < pos[second].frequency))
      second = i;
  auto lastByte = [&](size_t k) {
    size_t at = 0;
    for (size_t i = from; i < k; ++i)
      at += pos[i].bytes;
    return at + pos[k].bytes - 1;
  };
  ByteProbe probe;
  std::vector<size_t> chosen{best};
  if (second != SIZE_MAX) chosen.push_back(second);
  size_t base = SIZE_MAX;
  for (size_t k : chosen)
    base = std::min(base, lastByte(k));
  for (size_t k : chosen) {
    ByteTest &t = probe.tests[probe.used++];
    t.offset = uint32_t(lastByte(k) - base);
    t.count = uint8_t(pos[k].last.size());
    std::copy(pos[k].last.begin(), pos[k].last.end(), t.bytes);
    probe.span = std::max(probe.span, t.offset + 1);
  }
  return probe;
}

} // namespace

std::optional<FastPlan> FastPlan::Make(const std::u16string &pattern, const MatchOptions &o) {
  const std::optional<Literal> literal =
      o.regex ? LiteralOfRegex(pattern, o) : LiteralOfEngine(pattern, o);
  if (!literal) return std::nullopt;
  const std::optional<ByteProbe> probe = ProbeOf(*literal);
  if (!probe) return std::nullopt;
  return FastPlan{*probe};
}

} // namespace kestrel::cli
