// Texts without accents and the way back to the original offsets.
#include <gtest/gtest.h>

#include <kestrel/search/MarkFreeText.h>

namespace kestrel {
namespace {

TEST(MarkFreeText, PrecomposedAndDecomposedLettersMeet) {
  EXPECT_EQ(WithoutMarks(u"\u010desk\u00e9"), u"ceske");
  EXPECT_EQ(WithoutMarks(u"c\u030ceske\u0301"), u"ceske");
  EXPECT_EQ(WithoutMarks(u"cr\u00e9cerelle"), WithoutMarks(u"crecerelle"));
  // A mark that stands alone goes; spacing marks and Hangul syllables stay.
  EXPECT_EQ(WithoutMarks(u"\u0301a\u0903\uAC00"), u"a\u0903\uAC00");
  EXPECT_EQ(WithoutMarks(u"\U00010400\u0301"), u"\U00010400");
}

struct Span {
  uint32_t start, stop, originalStart, originalStop;
};

void ExpectSpans(const std::u16string &original, const std::u16string &stripped,
                 std::initializer_list<Span> spans) {
  TMarkFreeText t(original);
  EXPECT_EQ(t.Text(), stripped);
  for (const Span &s : spans) {
    uint32_t a = 99, b = 99;
    t.ToOriginal(s.start, s.stop, a, b);
    EXPECT_EQ(std::make_pair(a, b), std::make_pair(s.originalStart, s.originalStop))
        << s.start << ".." << s.stop;
  }
}

TEST(MarkFreeText, OffsetsLeadBackToTheOriginal) {
  // Precomposed: one unit for one.
  ExpectSpans(u"\u010desk\u00e9", u"ceske", {{0, 5, 0, 5}, {4, 5, 4, 5}});
  // Decomposed: the marks after a letter go with it.
  ExpectSpans(u"c\u030ceske\u0301 x", u"ceske x", {{0, 5, 0, 7}, {0, 1, 0, 2}, {6, 7, 8, 9}});
  // A letter with two marks of its own and one more after it.
  ExpectSpans(u"\u01d6\u0301y", u"uy", {{0, 1, 0, 2}, {1, 2, 2, 3}, {0, 2, 0, 3}});
  // Pairs count two units on both sides; empty stretches stay empty.
  ExpectSpans(u"\U00010400e\u0301", u"\U00010400e", {{0, 2, 0, 2}, {2, 3, 2, 4}, {2, 2, 2, 2}});
  ExpectSpans(u"ab", u"ab", {{2, 2, 2, 2}});
}

} // namespace
} // namespace kestrel
