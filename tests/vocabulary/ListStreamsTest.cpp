// The stream forms of TSmallintList and TSmallAndLongintList, byte for byte.
#include <gtest/gtest.h>

#include "FullStream.h"
#include "support/TestSupport.h"
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

using test::BytesOf;
using test::FullStream;
using test::StreamOf;

std::vector<int16_t> Values(const TSmallintList &list) {
  std::vector<int16_t> values;
  for (int32_t i = 0; i < list.Count(); ++i)
    values.push_back(list.Items(i)->number);
  return values;
}

std::vector<std::pair<int16_t, int32_t>> Values(const TSmallAndLongintList &list) {
  std::vector<std::pair<int16_t, int32_t>> values;
  for (int32_t i = 0; i < list.Count(); ++i)
    values.emplace_back(list.Items(i)->small_value, list.Items(i)->long_value);
  return values;
}

TEST(SmallintListStream, ValuesWithNoCount) {
  TSmallintList list;
  for (int16_t v : {1, -2, 0x1234})
    list.Add(new TSmallIntHolder(v));
  TMemoryStream out;
  ASSERT_TRUE(list.SaveToStream(&out));
  const std::string expected("\x01\x00\xFE\xFF\x34\x12", 6);
  ASSERT_EQ(BytesOf(out), expected);

  TSmallintList back;
  back.Add(new TSmallIntHolder(7)); // reading appends
  EXPECT_TRUE(back.ReadFromStream(3, StreamOf(expected).get()));
  EXPECT_EQ(Values(back), (std::vector<int16_t>{7, 1, -2, 0x1234}));
}

TEST(SmallintListStream, CountIsItsLow16BitsAsASignedNumber) {
  const std::string bytes("\1\0\2\0\3\0", 6);
  struct Case {
    int32_t count;
    size_t read;
  };
  // 0x10002 reads 2; 0x8001 and 0xFFFF are negative in 16 bits.
  for (Case c : {Case{0, 0}, Case{-1, 0}, Case{0x10002, 2}, Case{0x8001, 0}, Case{0xFFFF, 0},
                 Case{0x7FFF0001, 1}}) {
    SCOPED_TRACE(c.count);
    TSmallintList list;
    EXPECT_TRUE(list.ReadFromStream(c.count, StreamOf(bytes).get()));
    EXPECT_EQ(size_t(list.Count()), c.read);
  }
}

TEST(SmallintListStream, StreamEndingEarlyKeepsTheWholeItemsAndFails) {
  TSmallintList list;
  EXPECT_FALSE(list.ReadFromStream(3, StreamOf(std::string("\5\0\6\0\7", 5)).get()));
  EXPECT_EQ(Values(list), (std::vector<int16_t>{5, 6}));
  EXPECT_FALSE(list.ReadFromStream(1, nullptr));
}

TEST(SmallAndLongintListStream, EightByteRecordsWithZeroFill) {
  TSmallAndLongintList list;
  list.Add(new TSmallAndLongintHolder({1, 0x01020304}));
  list.Add(new TSmallAndLongintHolder({-1, -2}));
  TMemoryStream out;
  ASSERT_TRUE(list.SaveToStream(&out));
  const std::string expected("\x01\x00\x00\x00\x04\x03\x02\x01"
                             "\xFF\xFF\x00\x00\xFE\xFF\xFF\xFF",
                             16);
  ASSERT_EQ(BytesOf(out), expected);

  TSmallAndLongintList back;
  EXPECT_TRUE(back.ReadFromStream(2, StreamOf(expected).get()));
  EXPECT_EQ(Values(back), Values(list));
}

TEST(SmallAndLongintListStream, FillBytesReadAreIgnoredAndShortStreamsFail) {
  // The fill of the first record holds 0xAA 0xBB; the second record is cut.
  const std::string bytes("\x09\x00\xAA\xBB\x01\x00\x00\x00\x02\x00\x00", 11);
  TSmallAndLongintList list;
  EXPECT_FALSE(list.ReadFromStream(2, StreamOf(bytes).get()));
  EXPECT_EQ(Values(list), (std::vector<std::pair<int16_t, int32_t>>{{9, 1}}));
  TMemoryStream out;
  ASSERT_TRUE(list.SaveToStream(&out));
  EXPECT_EQ(BytesOf(out), std::string("\x09\x00\x00\x00\x01\x00\x00\x00", 8));
}

TEST(ListStreams, AStreamThatTakesNoMoreFailsTheSave) {
  TSmallintList small;
  TSmallAndLongintList pairs;
  for (int16_t v : {1, 2, 3}) {
    small.Add(new TSmallIntHolder(v));
    pairs.Add(new TSmallAndLongintHolder({v, v}));
  }
  FullStream tight(5), tighter(20);
  EXPECT_FALSE(small.SaveToStream(&tight));
  EXPECT_FALSE(pairs.SaveToStream(&tighter));
  FullStream roomy(24);
  EXPECT_TRUE(pairs.SaveToStream(&roomy));
}

} // namespace
} // namespace kestrel
