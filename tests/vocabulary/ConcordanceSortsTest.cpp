// Concordance sorts: their names and the spans of the positional ones.
#include <gtest/gtest.h>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

using enum concordance_sort_type;
using enum TConcordance_span_type;

TEST(ConcordanceSorts, NamesAndSpans) {
  EXPECT_EQ(SortSpanFromSort(cs_left1), span_L01);
  EXPECT_EQ(SortSpanFromSort(cs_right1), span_R01);
  EXPECT_EQ(SortSpanFromSort(cs_section_position), span_R20);
  EXPECT_EQ(static_cast<int>(span_R51), 101);
  EXPECT_EQ(sort_str_arr[cs_left5], "L5");
  EXPECT_EQ(sort_str_arr[cs_file_percent], "File %");
  EXPECT_EQ(sort_str_arr[cs_section_position], "Section position");
}

} // namespace
} // namespace kestrel
