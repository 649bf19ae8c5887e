// Generated patterns over generated texts: compiles end, results are well
// formed and agree across scans and folding, and std::wregex accepts each match.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <regex>

#include <kestrel/search/URESearch.h>
#include <kestrel/unicode/Unicode.h>

#include "URETestHelpers.h"

namespace kestrel::test {
namespace {

std::wstring CodePoints(const std::u16string &units, size_t from, size_t to) {
  std::wstring out;
  for (size_t i = from; i < to; ++i) {
    const bool pair =
        i + 1 < to && IsHighSurrogateUnit(units[i]) && IsLowSurrogateUnit(units[i + 1]);
    out += wchar_t(pair ? CombineSurrogates(units[i], units[i + 1]) : units[i]);
    i += pair;
  }
  return out;
}

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
  void Add(Generated &g, const std::string &ours, const std::string &peer) {
    Add(g, std::u16string(ours.begin(), ours.end()), std::wstring(peer.begin(), peer.end()));
  }

  void Atom(Generated &g, int depth) {
    // The peer reads each as it stands, but for the escape.
    static const std::u16string plain[] = {
        u"a",          u"a", u"a",     u"b",     u"c",       u"\u00e9",
        u"\U0001D400", u".", u"[a-c]", u"[^ab]", u"\\x0062", u"[b\U0001D400-\U0001D401]"};
    const int k = Pick(depth < 3 ? 16 : 14);
    if (k < 12) return Add(g, plain[k], k == 10 ? L"b" : CodePoints(plain[k], 0, plain[k].size()));
    if (k < 14) { // no counterpart in the peer's syntax
      g.comparable = false;
      return Add(g, k == 12 ? (Pick(2) ? u"^" : u"$") : (Pick(2) ? u"\\p11" : u"[:digit:]A]"), L"");
    }
    Add(g, u"(", L"(?:");
    Alternation(g, depth + 1);
    Add(g, u")", L")");
  }

  void Quantifier(Generated &g) {
    const int n = Pick(3), m = n + Pick(3), k = Pick(12);
    const std::string N = std::to_string(n), N1 = std::to_string(n + 1);
    // An upper bound of 0 means none; a missing lower one is 0.
    const std::string forms[][2] = {{"*", "*"},
                                    {"+", "+"},
                                    {"?", "?"},
                                    {"{" + N1 + "}", "{" + N1 + "}"},
                                    {"{" + N + "," + std::to_string(m + 1) + "}", ""},
                                    {"{" + N + ",}", "{" + N + ",}"},
                                    {"{" + N + ",0}", "{" + N + ",}"},
                                    {"{," + N1 + "}", "{0," + N1 + "}"}};
    if (k < 8) Add(g, forms[k][0], forms[k][1].empty() ? forms[k][0] : forms[k][1]);
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

const std::vector<std::u16string> kPieces = {
    u"a",          u"a",      u"b",      u"c",      u"A",    u"B",      u"\u00e9",
    u"\u00c9",     u"1",      u" ",      u"\n",     u"\r\n", u"\u2028", u"\U0001D400",
    u"\U0001D401", u"\xD800", u"\xDC00", u"\u0301", u"x"};

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
      bool inside = p > 0 && p < int32_t(text.size()) && IsHighSurrogateUnit(text[p - 1]) &&
                    IsLowSurrogateUnit(text[p]);
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
      const std::u16string text = MakeText(rng, kPieces, 24);
      const std::string at = where + " text " + Show(text);
      engine.FindAll(text);
      const Matches found = ResultsOf(engine);
      ASSERT_LE(found.size(), 2 * text.size() + 2) << at;
      CheckWellFormed(found, text, at);
      ASSERT_EQ(found, ScanAll(engine, text, true)) << at;
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
