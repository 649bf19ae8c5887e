// Generated patterns over generated texts: every compile ends with an
// automaton or a clear exception, every search ends, the results are well
// formed, the fast scan agrees with the plain one, case folding agrees with a
// lower-cased text, and each reported match is a word of the pattern's
// language as an independent matcher (std::wregex) sees it.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <regex>

#include <kestrel/search/URESearch.h>
#include <kestrel/unicode/Unicode.h>

#include "URETestHelpers.h"

namespace kestrel::test {
namespace {

struct Generated {
  std::u16string ours;
  std::wstring peer; // the same language in ECMAScript syntax, over code points
  bool comparable = true;
};

class PatternMaker {
public:
  explicit PatternMaker(std::mt19937 &rng) : rng_(rng) {}

  Generated Make() {
    Generated g;
    Alternation(g, 0);
    return g;
  }

private:
  int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }

  void Add(Generated &g, const std::u16string &ours, const std::wstring &peer) {
    g.ours += ours;
    g.peer += peer;
  }

  void Atom(Generated &g, int depth) {
    switch (Pick(depth < 3 ? 16 : 14)) {
    case 0:
    case 1:
    case 2:
      return Add(g, u"a", L"a");
    case 3:
      return Add(g, u"b", L"b");
    case 4:
      return Add(g, u"c", L"c");
    case 5:
      return Add(g, u"\u00e9", L"\u00e9");
    case 6:
      return Add(g, u"\U0001D400", L"\U0001D400");
    case 7:
      return Add(g, u".", L".");
    case 8:
      return Add(g, u"[a-c]", L"[a-c]");
    case 9:
      return Add(g, u"[^ab]", L"[^ab]");
    case 10:
      return Add(g, u"\\x0062", L"b");
    case 11:
      return Add(g, u"[b\U0001D400-\U0001D401]", L"[b\U0001D400-\U0001D401]");
    case 12: // no counterpart in the peer's syntax
      g.comparable = false;
      return Add(g, Pick(2) ? u"^" : u"$", L"");
    case 13:
      g.comparable = false;
      return Add(g, Pick(2) ? u"\\p11" : u"[:digit:]A]", L"");
    default:
      Add(g, u"(", L"(?:");
      Alternation(g, depth + 1);
      return Add(g, u")", L")");
    }
  }

  void Quantifier(Generated &g) {
    int n = Pick(3), m = n + Pick(3);
    std::string s;
    switch (Pick(12)) {
    case 0:
      return Add(g, u"*", L"*");
    case 1:
      return Add(g, u"+", L"+");
    case 2:
      return Add(g, u"?", L"?");
    case 3:
      s = "{" + std::to_string(n + 1) + "}";
      break;
    case 4:
      s = "{" + std::to_string(n) + "," + std::to_string(m + 1) + "}";
      break;
    case 5:
      s = "{" + std::to_string(n) + ",}";
      break;
    case 6: // an upper bound of 0 means none
      Add(g, u"{" + std::u16string(1, char16_t(u'0' + n)) + u",0}",
          L"{" + std::to_wstring(n) + L",}");
      return;
    case 7:
      Add(g, u"{," + std::u16string(1, char16_t(u'1' + n)) + u"}",
          L"{0," + std::to_wstring(n + 1) + L"}");
      return;
    default:
      return;
    }
    Add(g, std::u16string(s.begin(), s.end()), std::wstring(s.begin(), s.end()));
  }

  void Sequence(Generated &g, int depth) {
    for (int i = 0, n = 1 + Pick(3); i < n; ++i) {
      Atom(g, depth);
      Quantifier(g);
    }
  }

  void Alternation(Generated &g, int depth) {
    for (int i = 0, n = 1 + (Pick(3) == 0 ? Pick(3) : 0); i < n; ++i) {
      if (i > 0) Add(g, u"|", L"|");
      Sequence(g, depth);
    }
  }

  std::mt19937 &rng_;
};

std::u16string MakeText(std::mt19937 &rng) {
  static const std::u16string pieces[] = {
      u"a",          u"a",      u"b",      u"c",      u"A",    u"B",      u"\u00e9",
      u"\u00c9",     u"1",      u" ",      u"\n",     u"\r\n", u"\u2028", u"\U0001D400",
      u"\U0001D401", u"\xD800", u"\xDC00", u"\u0301", u"x"};
  std::u16string text;
  int n = std::uniform_int_distribution<int>(0, 24)(rng);
  for (int i = 0; i < n; ++i)
    text += pieces[std::uniform_int_distribution<size_t>(0, std::size(pieces) - 1)(rng)];
  return text;
}

// FindAll again, with the plain scan.
Matches PlainFindAll(TURESearch &engine, const std::u16string &text) {
  Matches out;
  uint32_t run = 0, s = 0, e = 0, len = uint32_t(text.size());
  while (engine.ExecuteUREPlain(0, text.data() + run, len - run, s, e)) {
    out.emplace_back(run + s, run + e);
    run += e;
    if (e > 0) continue;
    if (run == len) break;
    bool pair = len - run >= 2 && text[run] >= 0xD800 && text[run] <= 0xDBFF &&
                text[run + 1] >= 0xDC00 && text[run + 1] <= 0xDFFF;
    run += pair ? 2 : 1;
  }
  return out;
}

std::wstring CodePoints(const std::u16string &units, size_t from, size_t to) {
  std::wstring out;
  for (size_t i = from; i < to; ++i) {
    uint32_t c = units[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < to && units[i + 1] >= 0xDC00 &&
        units[i + 1] <= 0xDFFF)
      c = 0x10000 + (((c & 0x3FF) << 10) | (units[i + 1] & 0x3FF)), ++i;
    out += wchar_t(c);
  }
  return out;
}

void CheckWellFormed(const Matches &m, const std::u16string &text, const std::string &where) {
  int32_t lastEnd = 0;
  int emptyHere = 0; // empty matches in a row at lastEnd
  for (const auto &[s, e] : m) {
    ASSERT_LE(s, e) << where;
    ASSERT_LE(e, int32_t(text.size())) << where;
    ASSERT_GE(s, lastEnd) << where;
    // An empty match further in is met again by the scan that starts on it,
    // which then steps on: never a third time.
    emptyHere = s == e ? (s == lastEnd ? emptyHere + 1 : 1) : 0;
    ASSERT_LE(emptyHere, 2) << where;
    for (int32_t p : {s, e}) { // never inside a surrogate pair
      bool inside = p > 0 && p < int32_t(text.size()) && text[p - 1] >= 0xD800 &&
                    text[p - 1] <= 0xDBFF && text[p] >= 0xDC00 && text[p] <= 0xDFFF;
      ASSERT_FALSE(inside) << where;
    }
    lastEnd = e;
  }
}

TEST(URERandom, GeneratedPatternsOverGeneratedTexts) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(4);
  const uint32_t seed = 20261123;
  std::mt19937 rng(seed);
  PatternMaker maker(rng);
  int patterns = 0, compiled = 0, compared = 0;
  static const char16_t noise[] = u"()[]{}|*+?\\^$,-:pP0123x";
  while (patterns < 5000 && std::chrono::steady_clock::now() < deadline) {
    ++patterns;
    Generated g = maker.Make();
    if (rng() % 5 == 0) { // damage it: the compile must end in an automaton or an exception
      g.comparable = false;
      size_t at = rng() % (g.ours.size() + 1);
      g.ours.insert(g.ours.begin() + at, noise[rng() % (std::size(noise) - 1)]);
    }
    const bool fold = rng() % 3 == 0;
    const std::string where =
        "seed " + std::to_string(seed) + " pattern " + Show(g.ours) + (fold ? " folded" : "");
    TURESearch engine;
    try {
      engine.FindPrepare(g.ours, fold ? TSearchFlags{} : CaseSensitive());
    } catch (const Exception &) {
      ASSERT_FALSE(g.comparable) << where; // the generated grammar always compiles
      continue;
    }
    ++compiled;
    const TDFA &dfa = engine.GetDFA();
    // Merging left no two states alike.
    for (uint32_t i = 0; i < dfa.StateList.StatesUsed && i < 24; ++i) {
      for (uint32_t j = 0; j < i; ++j) {
        ASSERT_FALSE(Alike(dfa, i, j)) << where << " states " << j << " and " << i;
      }
    }
    std::wregex peer;
    const bool oracle = g.comparable && !fold && !engine.GetDFA().StateList.States[0].Accepting;
    if (oracle) peer.assign(g.peer, std::regex::ECMAScript);
    for (int t = 0; t < 6; ++t) {
      const std::u16string text = MakeText(rng);
      const std::string at = where + " text " + Show(text);
      engine.FindAll(text);
      const Matches found = ResultsOf(engine);
      ASSERT_LE(found.size(), 2 * text.size() + 2) << at;
      CheckWellFormed(found, text, at);
      ASSERT_EQ(found, PlainFindAll(engine, text)) << at;
      uint32_t s = 0, e = 0;
      if (engine.FindFirst(text, s, e)) {
        ASSERT_FALSE(found.empty()) << at;
        ASSERT_EQ((std::pair<int32_t, int32_t>(s, e)), found[0]) << at;
      }
      if (fold) {
        std::u16string lowered = text;
        for (char16_t &u : lowered)
          if (u < 0xD800 || u > 0xDFFF) u = char16_t(UnicodeToLower(u));
        engine.FindAll(lowered);
        ASSERT_EQ(ResultsOf(engine), found) << at;
      }
      for (const auto &[ms, me] : found) {
        if (!oracle) break;
        ++compared;
        ASSERT_TRUE(std::regex_match(CodePoints(text, ms, me), peer))
            << at << " match " << ms << "," << me;
      }
    }
  }
  // Enough happened to mean something, even under the sanitizers.
  EXPECT_GT(patterns, 300);
  EXPECT_GT(compiled, patterns / 2);
  EXPECT_GT(compared, 100);
  std::printf("%d patterns, %d compiled, %d matches checked against std::wregex\n", patterns,
              compiled, compared);
}

} // namespace
} // namespace kestrel::test
