// The extra fonts of a cell: defaults, typed access and the stream form.
#include <gtest/gtest.h>

#include <cstring>

#include "FullStream.h"
#include "support/TestSupport.h"
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

using enum typeface_type;
using test::BytesOf;
using test::FullStream;
using test::StreamOf;

const TMyCanvasFontRec kColours = {0x00112233, 0x000000FF, 0x00FFFFFF, -16};
const TMyCanvasFontRec kOther = {1, 2, 3, 4};

bool SameBytes(const TExtraFontRec &a, const TExtraFontRec &b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(ExtraFontList, DefaultsAndTheirUpdate) {
  TExtraFontList empty;
  empty.UpdateColoursAndTypeFace(kOther, {underline}); // the defaults only
  EXPECT_EQ(empty.Count(), 0);
  EXPECT_EQ(empty.default_colours.base_back, 3);
  EXPECT_EQ(empty.default_typeface, typeface_set_type{underline});

  TExtraFontList list(kColours, {bold});
  list.AddOne(5, 6);
  list.AddOne(7, 8, kOther, {italics, strikeout});
  EXPECT_EQ(list.GetAFontFrec(0).extra_colours.base_fore, kColours.base_fore);
  EXPECT_EQ(list.GetAFontFrec(0).extra_typeface, typeface_set_type{bold});
  EXPECT_EQ(list.GetAFontFrec(1).extra_typeface, (typeface_set_type{italics, strikeout}));
  list.UpdateColoursAndTypeFace(kOther, {normal});
  for (int32_t i = 0; i < 2; ++i) {
    const TExtraFontRec rec = list.GetAFontFrec(i);
    EXPECT_EQ(rec.extra_first, 5 + 2 * i); // the numbers stay
    EXPECT_EQ(rec.extra_second, 6 + 2 * i);
    EXPECT_EQ(rec.extra_colours.highlight_fore, 2);
    EXPECT_EQ(rec.extra_typeface, typeface_set_type{normal});
  }
  list.AddOne(0, 0);
  EXPECT_EQ(list.GetAFontFrec(2).extra_colours.base_fore, 1);
}

TEST(ExtraFontList, IndexOutOfRangeGivesZeroAndChangesNothing) {
  TExtraFontList list;
  list.AddOne(1, 2, kColours, {bold});
  EXPECT_TRUE(SameBytes(list.GetAFontFrec(-1), TExtraFontRec{}));
  EXPECT_TRUE(SameBytes(list.GetAFontFrec(1), TExtraFontRec{}));
  TExtraFontRec changed = list.GetAFontFrec(0);
  changed.extra_first = 77;
  list.SetAFontFrec(1, changed);
  list.SetAFontFrec(-1, changed);
  EXPECT_EQ(list.GetAFontFrec(0).extra_first, 1);
  list.SetAFontFrec(0, changed);
  EXPECT_EQ(list.GetAFontFrec(0).extra_first, 77);
}

// A count, then 28-byte records: numbers, four colours, typeface, fill.
const std::string kTwoFonts("\x02\x00\x00\x00"                 // count
                            "\x01\x00\x00\x00\xFF\xFF\xFF\xFF" // 1, -1
                            "\x33\x22\x11\x00\xFF\x00\x00\x00" // base_fore, highlight_fore
                            "\xFF\xFF\xFF\x00\xF0\xFF\xFF\xFF" // base_back, highlight_back
                            "\x0A\x00\x00\x00"                 // bold and underline, fill
                            "\x10\x00\x00\x00\x20\x00\x00\x00" // 16, 32
                            "\x01\x00\x00\x00\x02\x00\x00\x00" // colours 1, 2
                            "\x03\x00\x00\x00\x04\x00\x00\x00" // colours 3, 4
                            "\x11\xAA\xBB\xCC",                // normal and strikeout, fill kept
                            4 + 2 * 28);

TEST(ExtraFontListStream, SavedByteForByteAndReadBackWithItsFill) {
  TExtraFontList list;
  list.AddOne(1, -1, kColours, {bold, underline});
  list.AddOne(16, 32, kOther, {normal, strikeout});
  TExtraFontRec withFill = list.GetAFontFrec(1);
  const uint8_t fill[3] = {0xAA, 0xBB, 0xCC};
  std::memcpy(withFill.extra_fill, fill, sizeof fill);
  list.SetAFontFrec(1, withFill);
  TMemoryStream out;
  ASSERT_TRUE(list.SaveToStream(&out));
  ASSERT_EQ(BytesOf(out), kTwoFonts);

  TExtraFontList back;
  back.AddOne(100, 200); // reading appends
  ASSERT_TRUE(back.ReadFromStream(StreamOf(kTwoFonts).get()));
  ASSERT_EQ(back.Count(), 3);
  EXPECT_EQ(back.GetAFontFrec(0).extra_first, 100);
  for (int32_t i = 0; i < 2; ++i)
    EXPECT_TRUE(SameBytes(back.GetAFontFrec(i + 1), list.GetAFontFrec(i)));
}

TEST(ExtraFontListStream, EmptyAndNegativeCountsReadNothing) {
  for (const std::string &bytes : {std::string(4, '\0'), std::string(4, '\xFF')}) {
    TExtraFontList list;
    EXPECT_TRUE(list.ReadFromStream(StreamOf(bytes).get()));
    EXPECT_EQ(list.Count(), 0);
  }
  TExtraFontList empty;
  TMemoryStream out;
  ASSERT_TRUE(empty.SaveToStream(&out));
  EXPECT_EQ(BytesOf(out), std::string(4, '\0'));
}

TEST(ExtraFontListStream, StreamErrorsReachTheCallerAndWholeRecordsStay) {
  // Two records announced, one and a half there.
  TExtraFontList list;
  EXPECT_THROW(list.ReadFromStream(StreamOf(kTwoFonts.substr(0, 4 + 28 + 14)).get()), EReadError);
  ASSERT_EQ(list.Count(), 1);
  EXPECT_EQ(list.GetAFontFrec(0).extra_first, 1);

  TExtraFontList noCount;
  EXPECT_THROW(noCount.ReadFromStream(StreamOf(std::string("\1\0\0", 3)).get()), EReadError);
  EXPECT_EQ(noCount.Count(), 0);

  FullStream tight(30);
  EXPECT_THROW(list.SaveToStream(&tight), EWriteError);
}

} // namespace
} // namespace kestrel
