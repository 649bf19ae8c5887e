// The pattern language of TURESearch: symbols, escapes, classes, properties,
// bounds and the errors with their texts.
#include <gtest/gtest.h>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/URESearch.h>

#include "URETestHelpers.h"

namespace kestrel::test {
namespace {

std::string Fault(const std::string &pattern, uint16_t ident) {
  return "Error in regular expression: " + pattern + "\r" + LoadResString(ident);
}

TEST(UREStrings, TheTableHoldsTheTextsUnderTheirIdentifiers) {
  EXPECT_EQ(LoadResString(65520), "Error in regular expression: %s\r");
  EXPECT_EQ(LoadResString(65521), "Unexpected end of pattern.");
  EXPECT_EQ(LoadResString(65522), "Character class not closed, ']' is missing.");
  EXPECT_EQ(LoadResString(65523), "Unbalanced group expression, ')' is missing.");
  EXPECT_EQ(LoadResString(65524), "A character property is invalid");
  EXPECT_EQ(LoadResString(65525), "Invalid repeation range.");
  EXPECT_EQ(LoadResString(65526), "Repeation range not closed, '}' is missing.");
  EXPECT_EQ(LoadResString(65527), "Expression is empty.");
  EXPECT_EQ(LoadResString(1), "");
}

// The parse runs to its end before an operator with nothing before it is
// refused, so a parse error anywhere in the pattern is the one reported (*( and
// the like); an open group overwrites the other faults ((a\ and (*a).
TEST(UREParser, FaultsRaiseTheirTexts) {
  const std::pair<uint16_t, std::vector<std::u16string>> cases[] = {
      {SUREGroupOpen, {u")", u"(a\\", u"(ab", u"(*a", u"*(", u"*)"}},
      {SUREUnexpectedEnd, {u"a\\", u"[a\\", u"()a\\"}},
      {SUREClassOpen, {u"[ab", u"[\\p1]", u"[:digit:]", u"*[a"}},
      {SUREBadRange, {u"a{", u"a{1", u"a{1x}", u"a{3,2}", u"?a{2", u"*{3,2}"}},
      {SURERangeOpen, {u"a{1,", u"a{1,2 }", u"+{1,"}},
      {SUREBadProperty, {u"\\p33", u"[\\p40]", u"*\\p33"}},
      {SURENoOperand, {u"*a", u"+", u"?b", u"|a", u"{2}a", u"()a", u"(|a)", u"(*)"}},
      // Bounds that would exhaust the tables.
      {SURETooLarge,
       {u"*a{1,40000}", u"a{100000}", u"a{1,40000}", u"a{70000,}", u"(ab|cd){3000,9000}",
        u"a{1,8192}", u"(ab|cd){9000,}", u"(a|b)*a(a|b){20}"}},
  };
  for (const auto &[ident, patterns] : cases)
    for (const std::u16string &p : patterns)
      EXPECT_EQ(CompileError(p), Fault(std::string(p.begin(), p.end()), ident)) << Show(p);
  // The message shows the pattern in UTF-8; an empty expression has its own text.
  EXPECT_EQ(CompileError(u"\u0080\u00e9("), Fault("\xC2\x80\xC3\xA9(", SUREGroupOpen));
  EXPECT_EQ(CompileError(u"\xD800("), Fault("\xEF\xBF\xBD(", SUREGroupOpen));
  EXPECT_EQ(CompileError(u"()"), "Expression is empty.");
  EXPECT_EQ(CompileError(u"(())"), "Expression is empty.");
}

TEST(UREParser, GoodPatternsCompile) {
  // Bounds within the automaton's size; past it, a bound on an operand that can
  // be empty is no longer a count of states. (Other tables compile many more.)
  for (const char16_t *p : {u"[\\p1a]", u"a{ 1 , 2}", u"a{,3}", u"]}", u"a{200}", u"a{1,1500}",
                            u"[a-z]{2,1000}", u"(ab|cd){1,200}", u"(a*){1,9000}"})
    EXPECT_EQ(CompileError(p), "") << Show(p);
}

TEST(UREParser, AnEmptyPatternCompilesNothingAndKeepsTheOldOne) {
  TURESearch engine;
  engine.FindPrepare(u"b", CaseSensitive());
  engine.FindPrepare(u"", CaseSensitive());
  engine.FindPrepare(nullptr, 3, CaseSensitive());
  const char16_t zero[] = {0, u'a'};
  engine.FindPrepare(zero, 2, CaseSensitive());
  engine.FindAll(u"abc");
  EXPECT_EQ(ResultsOf(engine), (Matches{{1, 2}}));
}

TEST(UREParser, AFailedCompileLeavesNoAutomaton) {
  TURESearch engine;
  engine.FindPrepare(u"b", CaseSensitive());
  EXPECT_THROW(engine.FindPrepare(u"(b", CaseSensitive()), Exception);
  EXPECT_EQ(engine.GetDFA().StateList.StatesUsed, 0u);
  EXPECT_FALSE(engine.FindAll(u"abc"));
}

TEST(UREParser, LargeBounds) {
  // A bound beyond a 32-bit number fails in the number conversion.
  TURESearch engine;
  EXPECT_THROW(engine.FindPrepare(u"a{99999999999}", CaseSensitive()), EConvertError);
  // A very long pattern passes the numbering range of expressions.
  std::u16string longLiteral;
  for (int i = 0; i < 70000; ++i)
    longLiteral += (i % 2) ? u'a' : u'b';
  std::string err = CompileError(longLiteral);
  EXPECT_NE(err.find(LoadResString(SURETooLarge)), std::string::npos);
}

// --------------------------------------------------------------- symbols

const TSymbolTableEntry &OnlySymbol(TURESearch &engine, const std::u16string &pattern,
                                    bool fold = false) {
  engine.FindPrepare(pattern, fold ? TSearchFlags{} : CaseSensitive());
  EXPECT_EQ(engine.GetDFA().SymbolTable.SymbolsUsed, 1u);
  return engine.GetDFA().SymbolTable.Symbols[0];
}

std::vector<std::pair<UCS4, UCS4>> RangesOf(const TSymbolTableEntry &s) {
  std::vector<std::pair<UCS4, UCS4>> out;
  for (int32_t i = 0; i < s.Symbol.CCL.RangesUsed; ++i)
    out.emplace_back(s.Symbol.CCL.Ranges[i].Low, s.Symbol.CCL.Ranges[i].High);
  return out;
}

using Ranges = std::vector<std::pair<UCS4, UCS4>>;

TEST(UREParser, EscapesGiveTheirCharacters) {
  const std::pair<std::u16string, UCS4> cases[] = {
      {u"\\a", 7},
      {u"\\b", 8},
      {u"\\f", 12},
      {u"\\n", 10},
      {u"\\r", 13},
      {u"\\t", 9},
      {u"\\v", 11},
      {u"\\.", u'.'},
      {u"\\d", u'd'},
      {u"\\x41", u'A'},
      {u"\\U00e9", 0xE9},
      {u"\\x", u'x'},
      {u"\\u", u'u'},
      {u"\\X2028", 0x2028},
      {u"\\uD835\\uDC00", 0x1D400},
      {u"\U0001D400", 0x1D400},
      {u"\\uD835\\xDC00", 0x1D400},
  };
  for (const auto &[pattern, chr] : cases) {
    TURESearch engine;
    const TSymbolTableEntry &s = OnlySymbol(engine, pattern);
    EXPECT_EQ(s.SymbolType, CharSymbol) << Show(pattern);
    EXPECT_EQ(s.Symbol.Chr, chr) << Show(pattern);
  }
}

TEST(UREParser, AHighSurrogateEscapeWithoutALowOneStandsAlone) {
  TURESearch engine;
  engine.FindPrepare(u"\\uD835x", CaseSensitive());
  ASSERT_EQ(engine.GetDFA().SymbolTable.SymbolsUsed, 2u);
  EXPECT_EQ(engine.GetDFA().SymbolTable.Symbols[0].Symbol.Chr, 0xD835u);
}

TEST(UREParser, ClassesHoldTheirRangesInDescendingOrder) {
  struct Case {
    std::u16string pattern;
    uint32_t type;
    uint32_t props;
    Ranges ranges;
  } cases[] = {
      {u"[a-z0-9_]", ClassSymbol, 0, {{'a', 'z'}, {'_', '_'}, {'0', '9'}}},
      {u"[z-a]", ClassSymbol, 0, {{'a', 'z'}}},
      {u"[^abc]", NegatedClassSymbol, 0, {{'c', 'c'}, {'b', 'b'}, {'a', 'a'}}},
      {u"[]a]", ClassSymbol, 0, {{'a', 'a'}, {']', ']'}}},
      {u"[xa-]", ClassSymbol, 0, {{'x', 'x'}}},
      {u"[a-]b]", ClassSymbol, 0, {{'b', 'b'}, {']', 'a'}}},
      {u"[aa]", ClassSymbol, 0, {{'a', 'a'}}},
      {u"[a\\p3\\p5]", ClassSymbol, 0x10, {{'a', 'a'}}},
      {u"[a\\p5:digit:]", ClassSymbol, 0x14, {{'a', 'a'}}},
      {u"[a\\P1]", ClassSymbol, 0xFFFFFFFE, {{'a', 'a'}}},
      {u"[\\p1,3,,32a]", ClassSymbol, 0x80000005, {{'a', 'a'}}},
      {u"[\\t\\R\\r\\n]", ClassSymbol, 0, {{'r', 'r'}, {13, 13}, {10, 10}, {9, 9}}},
      {u"[\\x41-\\x43]", ClassSymbol, 0, {{'A', 'C'}}},
      {u"[:alnum:x]", ClassSymbol, 0x3E07, {{'x', 'x'}}},
      {u"[:alpha::cntrl::lower::upper:x]",
       ClassSymbol,
       0x3E03 | 0x80 | 0x400 | 0x200,
       {{'x', 'x'}}},
      {u"[:graph::print::punct:x]", ClassSymbol, 0x1C3E1F | 0x3C000, {{'x', 'x'}}},
      {u"[:space:]", ClassSymbol, 0x70, {{0xFEFF, 0xFEFF}, {13, 13}, {12, 12}, {10, 10}, {9, 9}}},
      {u"[:xdigit:]", ClassSymbol, 0, {{'a', 'f'}, {'A', 'F'}, {'0', '9'}}},
      {u"[:nope:]", ClassSymbol, 0, {{'p', 'p'}, {'o', 'o'}, {'n', 'n'}, {'e', 'e'}, {':', ':'}}},
      {u"[\U0001D400a]", ClassSymbol, 0, {{0x1D400, 0x1D400}, {'a', 'a'}}},
      {u"[\U0001D400-\U0001D402]", ClassSymbol, 0, {{0x1D400, 0x1D402}}},
      {u"[\xD835x]", ClassSymbol, 0, {{0xD835, 0xD835}, {'x', 'x'}}},
      {u"\\p3,5", ClassSymbol, 0x14, {}},
      {u"\\P1", NegatedClassSymbol, 0x1, {}},
      {u"\\p0", ClassSymbol, 0, {}},
  };
  for (const auto &c : cases) {
    TURESearch engine;
    const TSymbolTableEntry &s = OnlySymbol(engine, c.pattern);
    std::string name(c.pattern.begin(), c.pattern.end());
    EXPECT_EQ(s.SymbolType, c.type) << name;
    EXPECT_EQ(s.Props, c.props) << name;
    EXPECT_EQ(RangesOf(s), c.ranges) << name;
  }
}

TEST(UREParser, CaseFoldingLowersCharactersAndRangeEnds) {
  TURESearch engine;
  const TSymbolTableEntry &s = OnlySymbol(engine, u"[A-C]", true);
  EXPECT_EQ(RangesOf(s), (Ranges{{'a', 'c'}}));
  TURESearch other;
  EXPECT_EQ(OnlySymbol(other, u"Q", true).Symbol.Chr, UCS4('q'));
}

TEST(UREParser, EqualSymbolsAreOneEntry) {
  TURESearch engine;
  engine.FindPrepare(u"[a-z]x[z-a]x\\x78.\\.", CaseSensitive());
  // [a-z], x, ., and the escaped dot.
  EXPECT_EQ(engine.GetDFA().SymbolTable.SymbolsUsed, 4u);
  TURESearch folded;
  folded.FindPrepare(u"aA", TSearchFlags{});
  EXPECT_EQ(folded.GetDFA().SymbolTable.SymbolsUsed, 1u);
}

TEST(UREParser, BlankLineStaysOnlyForPatternsOfAnchors) {
  struct Case {
    std::u16string pattern;
    bool blank;
  } cases[] = {{u"^", true}, {u"^$", true}, {u"$^$", true}, {u"^a", false}, {u"a$", false}};
  for (const auto &c : cases) {
    TURESearch engine;
    engine.FindPrepare(c.pattern, CaseSensitive());
    EXPECT_EQ((engine.GetDFA().Flags & BlankLine) != 0, c.blank);
  }
}

} // namespace
} // namespace kestrel::test
