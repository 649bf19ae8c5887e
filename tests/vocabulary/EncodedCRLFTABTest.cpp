// The encoded form of line ends, tabs and wildcards in settings.
#include <gtest/gtest.h>

#include <string>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

const std::u16string kStar(1, 29), kQuestion(1, 28), kHash(1, 27);

TEST(EncodedCRLFTAB, Encodes) {
  struct Case {
    std::u16string text, expected;
  };
  const Case cases[] = {
      {u"a*b", u"a" + kStar + u"b"},
      {u"a*b*c", u"a" + kStar + u"b" + kStar + u"c"},
      {u"a?b#c", u"a" + kQuestion + u"b" + kHash + u"c"},
      // At either end of the text, or next to a double quote, a wildcard stays.
      {u"*ab*", u"*ab*"},
      {u"?", u"?"},
      {u"a\"*b", u"a\"*b"},
      {u"a*\"b", u"a*\"b"},
      {u"x<Enter>y<Tab>z", u"x\r\ny\tz"},
      {u"<Enter><Enter>", u"\r\n\r\n"},
      // Only these capitals.
      {u"<enter><TAB><Enter >", u"<enter><TAB><Enter >"},
      {u"", u""},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.text.begin(), c.text.end()));
    EXPECT_EQ(EncodedCRLFTAB(c.text), c.expected);
  }
}

TEST(EncodedCRLFTAB, Decodes) {
  struct Case {
    std::u16string text, expected;
  };
  const Case cases[] = {
      {kStar + kQuestion + kHash, u"*?#"},
      {u"a\r\nb\tc", u"a<Enter>b<Tab>c"},
      // A lone carriage return or line feed is no line end.
      {u"a\rb\nc\n\r", u"a\rb\nc\n\r"},
      {u"*x*", u"*x*"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.text.begin(), c.text.end()));
    EXPECT_EQ(DecodedCRLFTAB(c.text), c.expected);
  }
}

TEST(EncodedCRLFTAB, DecodingUndoesEncoding) {
  for (const char16_t *text : {u"p*q<Enter>r<Tab>s?t#u", u"*\"*\"*", u"<Enter>"})
    EXPECT_EQ(DecodedCRLFTAB(EncodedCRLFTAB(text)), text);
}

} // namespace
} // namespace kestrel
