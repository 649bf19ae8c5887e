// The string form of the tags to ignore.
#include <gtest/gtest.h>

#include <string>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

using enum tag_on_off_type;

TEST(IgnoreTags, StringToSlotsAndBack) {
  struct Case {
    const char16_t *text;
    const char16_t *on, *off; // the six slots of each row, 0 for "."
    const char16_t *back;
  };
  const Case cases[] = {
      {u"<*>", u"<.....", u">.....", u"<*>"},
      {u"<*>,[*]", u"<[....", u">]....", u"<*>,[*]"},
      // One character is both the opening and the closing one.
      {u"x", u"x.....", u"x.....", u"x*x"},
      // Between first and last nothing is looked at.
      {u"{abc}", u"{.....", u"}.....", u"{*}"},
      // A trailing comma leaves an empty slot behind it.
      {u"<>,", u"<.....", u">.....", u"<*>"},
      // An empty entry leaves its slot empty and the next entry takes the next.
      {u"a,,b", u"a.b...", u"a.b...", u"a*a,b*b"},
      // The seventh entry and those after it overwrite the sixth.
      {u"a,b,c,d,e,f,g,hi", u"abcdeh", u"abcdei", u"a*a,b*b,c*c,d*d,e*e,h*i"},
      {u"", u"......", u"......", u""},
  };
  auto row = [](const char16_t *slots) {
    std::array<char16_t, 6> r{};
    for (size_t i = 0; i < 6; ++i)
      r[i] = slots[i] == u'.' ? 0 : slots[i];
    return r;
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.text, c.text + std::char_traits<char16_t>::length(c.text)));
    const IgnoreTag_Type tag = WideStringToIgnoreTag_Type(c.text);
    EXPECT_EQ(tag[tag_on], row(c.on));
    EXPECT_EQ(tag[tag_off], row(c.off));
    EXPECT_EQ(IgnoreTag_TypeToWideString(tag), c.back);
  }
}

TEST(IgnoreTags, SlotWithAZeroInEitherRowIsSkipped) {
  IgnoreTag_Type tag{};
  tag[tag_on] = {u'<', u'[', 0, u'(', 0, u'{'};
  tag[tag_off] = {u'>', 0, u']', u')', 0, u'}'};
  EXPECT_EQ(IgnoreTag_TypeToWideString(tag), u"<*>,(*),{*}");
}

} // namespace
} // namespace kestrel
