// Construction of the automaton: the operator stack, bounds, reduction to
// states, merging and the flat tables.
#include <gtest/gtest.h>

#include <kestrel/search/URESearch.h>

#include "URETestHelpers.h"

namespace kestrel::test {
namespace {

const TDFA &Compile(TURESearch &engine, const std::u16string &pattern) {
  engine.FindPrepare(pattern, CaseSensitive());
  return engine.GetDFA();
}

// The automaton as text: per state its acceptance and transitions "symbol>target".
std::string Describe(const TDFA &dfa) {
  std::string out;
  for (uint32_t s = 0; s < dfa.StateList.StatesUsed; ++s) {
    const TDFAState &st = dfa.StateList.States[s];
    out += std::to_string(s) + (st.Accepting ? "*" : "") + ":";
    for (uint32_t t = 0; t < st.NumberTransitions; ++t) {
      const TTransition &tr = dfa.TransitionList.Transitions[st.StartTransition + t];
      out += " " + std::to_string(tr.Symbol) + ">" + std::to_string(tr.NextState);
    }
    out += ";";
  }
  return out;
}

std::string DescribePattern(const std::u16string &pattern) {
  TURESearch engine;
  return Describe(Compile(engine, pattern));
}

// Checks the layout every automaton must have: transitions side by side in
// ascending symbol order, targets within the table, no gaps.
void ExpectWellFormed(const TDFA &dfa) {
  uint32_t next = 0;
  for (uint32_t s = 0; s < dfa.StateList.StatesUsed; ++s) {
    const TDFAState &st = dfa.StateList.States[s];
    ASSERT_EQ(st.StartTransition, next);
    for (uint32_t t = 0; t < st.NumberTransitions; ++t) {
      const TTransition &tr = dfa.TransitionList.Transitions[next + t];
      ASSERT_LT(tr.NextState, dfa.StateList.StatesUsed);
      ASSERT_LT(tr.Symbol, dfa.SymbolTable.SymbolsUsed);
      if (t > 0) {
        ASSERT_LT(dfa.TransitionList.Transitions[next + t - 1].Symbol, tr.Symbol);
      }
    }
    next += st.NumberTransitions;
  }
  ASSERT_EQ(next, dfa.TransitionList.TransitionsUsed);
}

TEST(UREAutomaton, StateCountsOfSmallPatterns) {
  struct Case {
    std::u16string pattern;
    uint32_t states;
  } cases[] = {
      {u"a", 2},      {u"ab", 3},     {u"a*", 1},          {u"a+", 2},
      {u"a?", 2},     {u"a|b", 2},    {u"(ab){2}", 5},     {u"a(b|c)|d(c|b)", 3},
      {u"a{2,3}", 4}, {u"a{0,3}", 4}, {u"[ab]c|[ab]d", 3}, {u"(a*)*", 1},
      {u"(a?)+", 1},  {u"(ab)*", 2},  {u"a{3,}", 4},
  };
  for (const Case &c : cases) {
    TURESearch engine;
    const TDFA &dfa = Compile(engine, c.pattern);
    std::string name(c.pattern.begin(), c.pattern.end());
    EXPECT_EQ(dfa.StateList.StatesUsed, c.states) << name << " " << Describe(dfa);
    ExpectWellFormed(dfa);
  }
}

TEST(UREAutomaton, TablesOfSmallPatterns) {
  EXPECT_EQ(DescribePattern(u"a*"), "0*: 0>0;"); // one accepting state looping on itself
  EXPECT_EQ(DescribePattern(u"ab"), "0: 0>1;1: 1>2;2*:;");
  // Behind a and behind d the states are first apart, then merged and
  // renumbered without gaps.
  EXPECT_EQ(DescribePattern(u"a(b|c)|d(c|b)"), "0: 0>1 3>1;1: 1>2 2>2;2*:;");
}

TEST(UREAutomaton, PatternsThatReadAlike) {
  const std::pair<std::u16string, std::u16string> same[] = {
      {u"a|", u"a"},         {u"a()", u"aa"},    {u"a{0}", u"a*"},   {u"a{2,0}", u"a{2,}"},
      {u"a{1}", u"a"},       {u"a{,}", u"a*"},   {u"a{0,1}", u"a?"}, {u"a{1,0}", u"a+"},
      {u"ab)", u"ab"},       {u"(a)(b)", u"ab"}, {u"a{ 2 }", u"aa"}, {u"a{,2}", u"a?|aa"},
      {u"x(|a)", u"x(x|a)"}, // an empty alternative repeats the expression before it
  };
  for (const auto &[a, b] : same)
    EXPECT_EQ(DescribePattern(a), DescribePattern(b))
        << std::string(a.begin(), a.end()) << " vs " << std::string(b.begin(), b.end());
}

TEST(UREAutomaton, NullableRepetitionsTerminate) {
  for (const char16_t *p : {u"(a*)*", u"(a?)+", u"(a*|b*)*", u"((a?)*)+", u"(a*b?)*c", u"(^)*",
                            u"($|a)+", u"(a{0,3}){2,4}"}) {
    TURESearch engine;
    const TDFA &dfa = Compile(engine, p);
    EXPECT_GT(dfa.StateList.StatesUsed, 0u);
    ExpectWellFormed(dfa);
  }
}

TEST(UREAutomaton, ACompileOfABoundOfFortyStaysSmall) {
  TURESearch engine;
  const TDFA &dfa = Compile(engine, u"(ab|cd){1,40}");
  ExpectWellFormed(dfa);
  // The start, and per repetition the states after a, after c and after the
  // pair; the last 40 accept.
  EXPECT_EQ(dfa.StateList.StatesUsed, 121u);
  uint32_t accepting = 0;
  for (uint32_t s = 0; s < dfa.StateList.StatesUsed; ++s)
    accepting += dfa.StateList.States[s].Accepting;
  EXPECT_EQ(accepting, 40u);
}

// A bound is the alternative of its spelled-out sequences, as the pattern
// would be written by hand: both give the same automaton, state by state.
TEST(UREAutomaton, BoundsEqualTheirSpelledOutAlternatives) {
  struct Case {
    std::u16string operand;
    uint32_t min, max;
  } cases[] = {{u"a", 1, 1},     {u"a", 2, 3},     {u"a", 0, 3},      {u"a", 1, 9},
               {u"a", 3, 3},     {u"a", 4, 7},     {u"(ab|c)", 0, 4}, {u"(ab|c)", 2, 5},
               {u"[a-c]", 2, 6}, {u"(a*b)", 1, 4}, {u"(x?)", 0, 3},   {u"(a|ab)", 3, 8}};
  for (const Case &c : cases) {
    // x{0,m} is x?, then two copies up to m; x{n,m} is n copies up to m.
    std::u16string spelled = u"(";
    uint32_t from = c.min;
    if (c.min == 0) {
      spelled += c.operand + u"?";
      from = 2;
    }
    for (uint32_t v = from; v <= c.max; ++v) {
      if (spelled.size() > 1) spelled += u"|";
      for (uint32_t k = 0; k < v; ++k)
        spelled += c.operand;
    }
    spelled += u")z";
    const std::string bound = std::to_string(c.min) + "," + std::to_string(c.max);
    const std::u16string pattern =
        c.operand + u"{" + std::u16string(bound.begin(), bound.end()) + u"}z";
    EXPECT_EQ(DescribePattern(pattern), DescribePattern(spelled))
        << std::string(pattern.begin(), pattern.end());
  }
}

} // namespace
} // namespace kestrel::test
