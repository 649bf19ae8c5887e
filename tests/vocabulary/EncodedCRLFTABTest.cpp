// The encoded form of line ends, tabs and wildcards in settings.
#include <gtest/gtest.h>

#include <string>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

const std::u16string kStar(1, 29), kQuestion(1, 28), kHash(1, 27);

TEST(EncodedCRLFTAB, EncodesAndDecodes) {
  struct Case {
    bool encode;
    std::u16string text, expected;
  };
  const Case cases[] = {
      {true, u"a*b*c", u"a" + kStar + u"b" + kStar + u"c"},
      {true, u"a?b#c", u"a" + kQuestion + u"b" + kHash + u"c"},
      // At either end of the text, or next to a double quote, a wildcard stays.
      {true, u"*ab*", u"*ab*"},
      {true, u"a\"*b", u"a\"*b"},
      {true, u"a*\"b", u"a*\"b"},
      {true, u"x<Enter>y<Tab>z", u"x\r\ny\tz"},
      {true, u"<Enter><Enter>", u"\r\n\r\n"},
      // Only these capitals.
      {true, u"<enter><TAB><Enter >", u"<enter><TAB><Enter >"},
      {true, u"", u""},
      {false, kStar + kQuestion + kHash, u"*?#"},
      {false, u"a\r\nb\tc", u"a<Enter>b<Tab>c"},
      // A lone carriage return or line feed is no line end.
      {false, u"a\rb\nc\n\r", u"a\rb\nc\n\r"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.text.begin(), c.text.end()));
    EXPECT_EQ(c.encode ? EncodedCRLFTAB(c.text) : DecodedCRLFTAB(c.text), c.expected);
  }
}

TEST(EncodedCRLFTAB, DecodingUndoesEncoding) {
  for (const char16_t *text : {u"p*q<Enter>r<Tab>s?t#u", u"*\"*\"*", u"<Enter>"})
    EXPECT_EQ(DecodedCRLFTAB(EncodedCRLFTAB(text)), text);
}

} // namespace
} // namespace kestrel
