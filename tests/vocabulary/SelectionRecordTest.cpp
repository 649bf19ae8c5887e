// Selection strings: wildcard conversion, the selection record and the
// selection kinds.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

// Text with each "{w}" turned into the code of wildcard w.
std::u16string Coded(std::u16string text) {
  const std::pair<char16_t, char16_t> codes[] = {
      {u'~', 31}, {u'^', 30}, {u'*', 29}, {u'?', 28}, {u'#', 27}};
  for (auto [wildcard, code] : codes) {
    const char16_t placeholder[] = {u'{', wildcard, u'}', 0};
    for (size_t at; (at = text.find(placeholder)) != std::u16string::npos;)
      text.replace(at, 3, 1, code);
  }
  return text;
}

TEST(SelectionRecord, WildcardConvertedTakesTheFirstUnquotedOccurrenceOfEach) {
  struct Case {
    const char16_t *text, *expected;
  };
  const Case cases[] = {
      {u"a*b*c", u"a{*}b*c"},
      {u"~^*?#", u"{~}{^}{*}{?}{#}"},
      {u"##?", u"{#}#{?}"},
      // A quoted first occurrence stays, and no later one is tried.
      {u"\"*\"a*", u"\"*\"a*"},
      // A quoted occurrence after the first does not hinder it.
      {u"a*\"*\"", u"a{*}\"*\""},
      // A quote on one side only is no quoting.
      {u"x\"*y", u"x\"{*}y"},
      {u"x*\"y", u"x{*}\"y"},
      {u"plain", u"plain"},
      {u"", u""},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.text, c.text + std::char_traits<char16_t>::length(c.text)));
    EXPECT_EQ(WildcardConverted(c.text), Coded(c.expected));
  }
}

TEST(SelectionRecord, SplitsIntoHeadWildcardsAndTail) {
  struct Case {
    const char16_t *text, *head, *wildcards, *tail, *back;
  };
  const Case cases[] = {
      {u"a*b?c", u"a", u"{*}{?}", u"bc", u"a*?bc"},
      // The second "*" is no wildcard: it stays plain in the tail.
      {u"a*b*c", u"a", u"{*}", u"b*c", u"a*b*c"},
      {u"*abc", u"", u"{*}", u"abc", u"*abc"},
      {u"abc", u"abc", u"", u"", u"abc"},
      // Every control character counts; one of no wildcard comes back as nothing.
      {u"a\tb", u"a", u"\t", u"b", u"ab"},
      {u"\"*\"x", u"\"*\"x", u"", u"", u"\"*\"x"},
      {u"", u"", u"", u"", u""},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.text, c.text + std::char_traits<char16_t>::length(c.text)));
    const TSelectTextFile_RecW rec = WideStringToTSelectTextFile_RecW(c.text);
    EXPECT_EQ(std::u16string(rec.select_head), c.head);
    EXPECT_EQ(std::u16string(rec.select_wildcards), Coded(c.wildcards));
    EXPECT_EQ(std::u16string(rec.select_tail), c.tail);
    EXPECT_EQ(rec.select_head_length, int32_t(std::u16string(c.head).size()));
    EXPECT_EQ(rec.select_has_wildcards, *c.wildcards != 0);
    EXPECT_EQ(rec.select_spare, 0);
    EXPECT_EQ(TSelectTextFile_RecWToWideString(rec), c.back);
  }
}

TEST(SelectionRecord, FieldsAreCutAtEightyCharactersAndReadToTheirEnd) {
  const std::u16string head(100, u'h'), tail(90, u't');
  const TSelectTextFile_RecW rec = WideStringToTSelectTextFile_RecW(head + u"*" + tail);
  EXPECT_EQ(std::u16string(rec.select_head), head.substr(0, 80));
  EXPECT_EQ(rec.select_head_length, 80);
  EXPECT_EQ(std::u16string(rec.select_tail), tail.substr(0, 80));
  EXPECT_EQ(rec.select_head[80], 0);
  EXPECT_EQ(rec.select_tail[80], 0);
  // Fields without a terminator are read to their end only.
  TSelectTextFile_RecW full;
  std::memset(&full, 0, sizeof full);
  std::fill_n(full.select_head, 81, u'h');
  std::fill_n(full.select_wildcards, 81, char16_t(29));
  std::fill_n(full.select_tail, 81, u't');
  EXPECT_EQ(TSelectTextFile_RecWToWideString(full),
            std::u16string(81, u'h') + std::u16string(81, u'*') + std::u16string(81, u't'));
}

TEST(SelectionRecord, SelectionKindsFromNumbers) {
  using enum text_select_type;
  struct Case {
    int16_t n;
    text_select_type atAll, within;
  };
  const Case cases[] = {
      {-1, incluir_or, excluir_and}, {1, incluir_and, excluir_and}, {4, incluir_and, excluir_or},
      {5, incluir_or, excluir_and},  {6, incluir_or, excluir_or},   {7, incluir_and, incluir_and},
      {8, incluir_or, incluir_or},   {9, incluir_or, incluir_and},  {10, excluir_and, incluir_or},
      {11, excluir_or, incluir_and},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.n);
    EXPECT_EQ(SelectAtAllTypeFromNumber(c.n), c.atAll);
    EXPECT_EQ(SelectWithinTypeFromNumber(c.n), c.within);
  }
}

} // namespace
} // namespace kestrel
