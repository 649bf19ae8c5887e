// TURELongestMatch over generated patterns and texts, against POSIX grep on
// ASCII and against a matcher by the definition on Unicode texts.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <kestrel/search/URELongestMatch.h>
#include <kestrel/search/URESearch.h>
#include <kestrel/search/WordBounds.h>
#include <kestrel/unicode/Unicode.h>

#include "URETestHelpers.h"
#include "support/RunKestrel.h"

namespace kestrel {
namespace {

using test::LongestMatches;
using test::MakeText;
using test::Pairs;

// ------------------------------------------------------------- patterns

// Patterns in the common ground of ERE and the engine's language: no empty
// alternatives or groups, no {0}, no quantified anchors. Anchors inside
// groups only when asked: GNU grep 3.8 with -o misses matches through them
// (`(a|^[^a]{2,}c?){2,}` on "-B ad B" prints nothing, though the line is
// said to match).
class PatternMaker {
public:
  PatternMaker(std::mt19937 &rng, std::vector<std::u16string> atoms, bool innerAnchors)
      : rng_(rng), atoms_(std::move(atoms)), innerAnchors_(innerAnchors) {}

  std::u16string Make() {
    std::u16string p;
    if (Pick(6) == 0) p += u'^';
    p += Alternation(0);
    if (Pick(6) == 0) p += u'$';
    return p;
  }

private:
  int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }

  std::u16string Alternation(int depth) {
    std::u16string p = Sequence(depth);
    while (depth < 3 && Pick(4) == 0)
      p += u"|" + Sequence(depth);
    return p;
  }
  std::u16string Sequence(int depth) {
    std::u16string p;
    for (int n = 1 + Pick(3); n > 0; --n)
      p += Piece(depth);
    return p;
  }
  std::u16string Piece(int depth) {
    if (innerAnchors_ && depth > 0 && Pick(12) == 0) return Pick(2) ? u"^" : u"$";
    std::u16string p = depth < 3 && Pick(5) == 0 ? u"(" + Alternation(depth + 1) + u")"
                                                 : atoms_[size_t(Pick(int(atoms_.size())))];
    const int k = Pick(9);
    if (k < 3) return p + u"*+?"[k];
    if (k > 3) return p;
    const int n = 1 + Pick(3), form = Pick(3);
    const std::u16string low(1, char16_t(u'0' + n));
    if (form == 0) return p + u"{" + low + u"}";
    if (form == 1) return p + u"{" + low + u",}";
    return p + u"{" + low + u"," + std::u16string(1, char16_t(u'0' + n + Pick(3))) + u"}";
  }

  std::mt19937 &rng_;
  std::vector<std::u16string> atoms_;
  bool innerAnchors_;
};

Pairs NonEmpty(const Pairs &all) {
  Pairs out;
  for (const auto &m : all)
    if (m.first < m.second) out.push_back(m);
  return out;
}

std::string Narrow(const std::u16string &s) {
  return std::string(s.begin(), s.end());
}

// ------------------------------------------------------------------- grep

bool GrepWorks() {
  return test::RunShell("printf 'xab\\n' | LC_ALL=C grep -E -o -b 'a+b'").out == "1:ab\n";
}

// grep's matches per line of the file, as offsets within the line.
std::vector<Pairs> Grep(const std::string &pattern, const std::string &file,
                        const std::vector<std::string> &lines, bool fold, int &status) {
  const test::ShellRun run =
      test::RunShell("LC_ALL=C grep -E -o -b -n " + std::string(fold ? "-i " : "") + "-e '" +
                     pattern + "' " + file);
  status = run.status;
  std::vector<Pairs> out(lines.size());
  std::vector<size_t> lineStart{0};
  for (const std::string &l : lines)
    lineStart.push_back(lineStart.back() + l.size() + 1);
  for (size_t at = 0, eol; at < run.out.size(); at = eol + 1) {
    eol = run.out.find('\n', at);
    const std::string row = run.out.substr(at, eol - at);
    const size_t c1 = row.find(':'), c2 = row.find(':', c1 + 1);
    const size_t line = std::stoul(row.substr(0, c1)) - 1;
    const size_t offset = std::stoul(row.substr(c1 + 1, c2 - c1 - 1)) - lineStart[line];
    out[line].emplace_back(uint32_t(offset), uint32_t(offset + row.size() - c2 - 1));
  }
  return out;
}

TEST(LongestMatchAgainstGrep, AgreesOnGeneratedAsciiPatterns) {
  if (!GrepWorks()) GTEST_SKIP() << "no POSIX grep with -E -o -b here";
  std::mt19937 rng(2024);
  PatternMaker maker(rng,
                     {u"a", u"a", u"b", u"b", u"c", u"d", u".", u"[ab]", u"[a-c]", u"[^a]",
                      u"[^b ]", u"[b-d]", u"A", u"B"},
                     false);
  const std::vector<std::u16string> pieces = {u"a", u"a", u"b", u"b",  u"c", u"d",
                                              u" ", u"A", u"B", u"ab", u"-"};
  test::TempDir dir;
  int matches = 0;
  for (int i = 0; i < 300; ++i) {
    const std::u16string pattern = maker.Make();
    const bool fold = i % 3 == 0;
    std::vector<std::string> lines;
    std::string file;
    for (int k = 0; k < 12; ++k) {
      lines.push_back(Narrow(MakeText(rng, pieces, 24)));
      file += lines.back() + "\n";
    }
    dir.WriteFile("t.txt", file);
    int status = 0;
    const std::vector<Pairs> expected = Grep(Narrow(pattern), dir / "t.txt", lines, fold, status);
    ASSERT_TRUE(status == 0 || status == 1) << Narrow(pattern) << " status " << status;
    for (size_t k = 0; k < lines.size(); ++k) {
      const std::u16string text(lines[k].begin(), lines[k].end());
      const Pairs ours = NonEmpty(LongestMatches(
          pattern, text, fold ? TSearchFlags{} : TSearchFlags{TSearchFlag::sfCaseSensitive}));
      EXPECT_EQ(ours, expected[k])
          << "pattern " << Narrow(pattern) << (fold ? " (-i)" : "") << " text '" << lines[k] << "'";
      matches += int(ours.size());
    }
  }
  EXPECT_GT(matches, 3000); // the patterns do find things
}

// ---------------------------------------------- every start, by definition

// Every end of every start of a parsed expression, computed from the
// definitions of the operators: plain, slow and independent of the automaton.
class Definition {
public:
  Definition(const std::u16string &pattern, bool fold, bool bounded, const std::u16string &text)
      : fold_(fold), bounded_(bounded), text_(text) {
    root_ = parser_.ParseURE(pattern.data(), uint32_t(pattern.size()), fold);
  }

  Pairs Matches() {
    Pairs out;
    const uint32_t n = uint32_t(text_.size());
    int64_t lastEnd = -1;
    for (uint32_t s = 0; s <= n;) {
      std::set<uint32_t> ends = Ends(root_, s);
      int64_t e = -1;
      for (uint32_t x : ends)
        if (!bounded_ || (!WordBefore(s) && !WordAt(x))) e = std::max<int64_t>(e, x);
      if (e > int64_t(s) || (e == int64_t(s) && lastEnd != int64_t(s))) {
        out.emplace_back(s, uint32_t(e));
        lastEnd = e;
        if (e > int64_t(s)) {
          s = uint32_t(e);
          continue;
        }
      }
      if (s == n) break;
      s += Width(s);
    }
    return out;
  }

private:
  uint32_t Width(uint32_t at) const {
    return at + 1 < text_.size() && IsHighSurrogateUnit(text_[at]) &&
                   IsLowSurrogateUnit(text_[at + 1])
               ? 2
               : 1;
  }
  UCS4 CharAt(uint32_t at) const {
    return Width(at) == 2 ? CombineSurrogates(text_[at], text_[at + 1]) : text_[at];
  }
  // (Matches start and end only between characters.)
  bool WordBefore(uint32_t at) const {
    return at > 0 && IsWordCharacter(CharAt(at >= 2 && Width(at - 2) == 2 ? at - 2 : at - 1));
  }
  bool WordAt(uint32_t at) const { return at < text_.size() && IsWordCharacter(CharAt(at)); }
  static bool Break(UCS4 c) { return c == 0x0A || c == 0x0D || c == 0x2028 || c == 0x2029; }
  bool LineStart(uint32_t at) const {
    if (at == 0) return true;
    if (!Break(text_[at - 1])) return false;
    return !(text_[at - 1] == 0x0D && at < text_.size() && text_[at] == 0x0A);
  }
  bool LineEnd(uint32_t at) const {
    if (at == text_.size()) return true;
    if (!Break(text_[at])) return false;
    return !(text_[at] == 0x0A && at > 0 && text_[at - 1] == 0x0D);
  }

  bool Accepts(const TSymbolTableEntry &sym, UCS4 c) const {
    if (fold_) c = UnicodeToLower(c);
    switch (sym.SymbolType) {
    case AnyCharSymbol:
      return !Break(c);
    case CharSymbol:
      return sym.Symbol.Chr == c;
    default: {
      bool in = sym.Props != 0 && parser_.MatchesProperties(sym.Props, c);
      for (int32_t i = 0; i < sym.Symbol.CCL.RangesUsed; ++i)
        in = in || (c >= sym.Symbol.CCL.Ranges[size_t(i)].Low &&
                    c <= sym.Symbol.CCL.Ranges[size_t(i)].High);
      return sym.SymbolType == ClassSymbol ? in : !in;
    }
    }
  }

  std::set<uint32_t> Ends(uint32_t expr, uint32_t at) {
    const uint64_t key = (uint64_t(expr) << 32) | at;
    if (auto it = memo_.find(key); it != memo_.end()) return it->second;
    const TUREBuffer &b = parser_.GetUREBuffer();
    const TExpression &x = b.ExpressionList.Expressions[expr];
    std::set<uint32_t> out;
    auto repeat = [&](std::set<uint32_t> from) {
      std::vector<uint32_t> work(from.begin(), from.end());
      while (!work.empty()) {
        const uint32_t q = work.back();
        work.pop_back();
        for (uint32_t e : Ends(x.LHS, q))
          if (from.insert(e).second) work.push_back(e);
      }
      return from;
    };
    switch (x.ExprType) {
    case SymbolExpr: {
      const TSymbolTableEntry &sym = b.SymbolTable.Symbols[x.LHS];
      if (sym.SymbolType == LineStartSymbol) {
        if (LineStart(at)) out.insert(at);
      } else if (sym.SymbolType == LineEndSymbol) {
        if (LineEnd(at)) out.insert(at);
      } else if (at < text_.size() && Accepts(sym, CharAt(at))) {
        out.insert(at + Width(at));
      }
      break;
    }
    case SequenceExpr:
      for (uint32_t m : Ends(x.LHS, at))
        for (uint32_t e : Ends(x.RHS, m))
          out.insert(e);
      break;
    case AlternativeExpr:
      out = Ends(x.LHS, at);
      for (uint32_t e : Ends(x.RHS, at))
        out.insert(e);
      break;
    case OptionalExpr:
      out = Ends(x.LHS, at);
      out.insert(at);
      break;
    case StarExpr:
      out = repeat({at});
      break;
    case PlusExpr:
      out = repeat(Ends(x.LHS, at));
      break;
    }
    memo_[key] = out;
    return out;
  }

  TURESearch parser_;
  uint32_t root_ = NoExpression;
  bool fold_, bounded_;
  std::u16string text_;
  std::map<uint64_t, std::set<uint32_t>> memo_;
};

TEST(LongestMatchByDefinition, AgreesOnGeneratedUnicodePatterns) {
  std::mt19937 rng(77);
  PatternMaker maker(
      rng, {u"a",      u"b",         u"\u00e9",     u"\u00c9",          u"\u00df",
            u"\u0434", u"\u0414",    u"\U00010400", u"\u0301",          u" ",
            u".",      u"[a\u00e9]", u"[^a]",       u"[\u0430-\u044f]", u"[\\x00e0-\\x00ff]",
            u"\\p10",  u"\\p11",     u"\\P11",      u"[x\\p1,3]",       u"[\U00010400-\U00010428]"},
      true);
  const std::vector<std::u16string> pieces = {
      u"a",      u"b",          u"\u00e9",     u"\u00c9", u"\u00df", u"\u0434",
      u"\u0414", u"\U00010400", u"\U00010428", u"\u0301", u" ",      u"\n",
      u"\r\n",   u"\u2028",     u"-",          u"_",      u"1",      u"\r"};
  int matches = 0;
  for (int i = 0; i < 400; ++i) {
    const std::u16string pattern = maker.Make();
    const bool fold = i % 2 == 0, bounded = i % 5 == 0;
    TSearchFlags flags;
    if (!fold) flags.Include(TSearchFlag::sfCaseSensitive);
    if (bounded) {
      flags.Include(TSearchFlag::sfLeftBounded);
      flags.Include(TSearchFlag::sfRightBounded);
    }
    for (int k = 0; k < 4; ++k) {
      // The last text is long enough for the vector search over idle text.
      const std::u16string text = MakeText(rng, pieces, k == 3 ? 200 : 20);
      const Pairs expected = Definition(pattern, fold, bounded, text).Matches();
      EXPECT_EQ(LongestMatches(pattern, text, flags), expected)
          << "pattern #" << i << " fold " << fold << " bounded " << bounded;
      // A cache too small for more than a state or two changes nothing.
      if (k == 0) {
        EXPECT_EQ(LongestMatches(pattern, text, flags, 0), expected) << "pattern #" << i;
      }
      matches += int(expected.size());
    }
  }
  EXPECT_GT(matches, 1000);
}

} // namespace
} // namespace kestrel
