// Case mapping: the section lookup, the wide forms, and every code of the
// 16-bit range against the published mappings.
#include <gtest/gtest.h>

#include <kestrel/unicode/Unicode.h>

#include "support/UnicodeData.h"

namespace kestrel {
namespace {

// The 16-bit range is checked against the published data below.
TEST(CaseMapping, CodesBeyondTheTablesAreLeftAlone) {
  for (UCS4 code : {0x10400u, 0x10FFFFu, 0x110000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(UnicodeToUpper(code), code) << std::hex << code;
    EXPECT_EQ(UnicodeToLower(code), code) << std::hex << code;
    EXPECT_EQ(UnicodeToTitle(code), code) << std::hex << code;
  }
}

TEST(CaseMapping, WideCharactersAreCutTo16Bits) {
  EXPECT_EQ(WideUpCase(u'a'), u'A');
  EXPECT_EQ(WideLoCase(u'\u0130'), u'i');
  EXPECT_EQ(WideTitleCaseChar(u'\u01C6'), u'\u01C5');
  EXPECT_EQ(WideUpCase(0xD800), 0xD800);
}

TEST(CaseMapping, Sections) {
  // The section lookup finds a row only within its bounds.
  EXPECT_EQ(UnicodeLookupCase(0x0041, 0, 691 * 3, 1), 0x0061u); // upper section
  EXPECT_EQ(UnicodeLookupCase(0x0041, 692 * 3, 692 * 3 + 701 * 3, 1), 0x0041u);
  EXPECT_EQ(UnicodeLookupCase(0x01C5, 1394 * 3, 1397 * 3, 2), 0x01C6u); // title section
  EXPECT_EQ(UnicodeLookupCase(0x01C5, 0, -3, 1), 0x01C5u);              // empty section
  EXPECT_EQ(UnicodeLookupCase(0x0041, 0, 999999, 1), 0x0041u);          // beyond the table
}

TEST(CaseMapping, TerminatedStringsInPlace) {
  char16_t s[] = u"Hello \u00E9\u01C4";
  EXPECT_EQ(StrUpperW(s), s);
  EXPECT_EQ(std::u16string(s), u"HELLO \u00C9\u01C4");
  StrLowerW(s);
  EXPECT_EQ(std::u16string(s), u"hello \u00E9\u01C6");
  StrTitleW(s);
  EXPECT_EQ(std::u16string(s), u"HELLO \u00C9\u01C5");
  char16_t empty[] = u"";
  EXPECT_EQ(StrUpperW(empty), empty);
  EXPECT_EQ(WideUpperCase(u""), u""); // other strings: the table search test
}

// What each conversion should give, worked out from the published mappings
// and categories by the rules of the table's three sections.
struct Expected {
  UCS4 upper, lower, title;
};

Expected FromPublishedData(UCS4 code, const test::UnicodeDataRow *row) {
  if (!row) return {code, code, code};
  bool hasUpper = row->upper != 0, hasLower = row->lower != 0;
  bool inUpperSection = hasLower && !hasUpper, inLowerSection = hasUpper && !hasLower,
       inTitleSection = hasUpper && hasLower;
  UCS4 titleOrSelf = row->title ? row->title : code;
  UCS4 titleOrUpper = row->title ? row->title : row->upper;
  const std::string &cat = row->category;
  Expected e{code, code, code};
  if (cat == "Ll")
    e.upper = inLowerSection ? row->upper : code;
  else if (cat != "Lu")
    e.upper = inTitleSection ? row->upper : code;
  if (cat == "Lu")
    e.lower = inUpperSection ? row->lower : code;
  else if (cat != "Ll")
    e.lower = inTitleSection ? row->lower : code;
  if (cat == "Lu")
    e.title = inUpperSection ? titleOrSelf : code;
  else if (cat != "Lt")
    e.title = inLowerSection ? titleOrUpper : code;
  return e;
}

TEST(CaseMapping, EveryCodeAgainstThePublishedData) {
  const auto &rows = test::UnicodeDataRows();
  if (rows.empty()) GTEST_SKIP() << "the shared Unicode data is not beside the repository";
  int mismatches = 0;
  for (UCS4 code = 0; code <= 0xFFFF; ++code) {
    auto it = rows.find(code);
    Expected e = FromPublishedData(code, it == rows.end() ? nullptr : &it->second);
    UCS4 upper = UnicodeToUpper(code), lower = UnicodeToLower(code), title = UnicodeToTitle(code);
    if (upper != e.upper || lower != e.lower || title != e.title) {
      if (++mismatches <= 10)
        ADD_FAILURE() << std::hex << "U+" << code << ": " << upper << "/" << lower << "/" << title
                      << " expected " << e.upper << "/" << e.lower << "/" << e.title;
    }
  }
  EXPECT_EQ(mismatches, 0);
}

} // namespace
} // namespace kestrel
