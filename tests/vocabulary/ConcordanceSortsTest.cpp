// Concordance sorts, their names and the spans of the positional ones.
#include <gtest/gtest.h>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

using enum concordance_sort_type;
using enum TConcordance_span_type;

TEST(ConcordanceSorts, NamesAndSpans) {
  struct Row {
    concordance_sort_type sort;
    const char *name;
    TConcordance_span_type span;
  };
  const Row rows[] = {
      {cs_left5, "L5", span_L05},
      {cs_left1, "L1", span_L01},
      {cs_centre, "Centre", span_Centre},
      {cs_right1, "R1", span_R01},
      {cs_right5, "R5", span_R05},
      {cs_context_word_position, "Context word", span_R06},
      {cs_file_percent, "File %", span_R11},
      {cs_section_position, "Section position", span_R20},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_EQ(sort_str_arr[r.sort], r.name);
    EXPECT_EQ(SortSpanFromSort(r.sort), r.span);
  }
  // The table runs to its last row, and the spans around the centre.
  EXPECT_EQ(sort_str_arr[cs_heading_number], "Heading number");
  EXPECT_EQ(static_cast<int>(span_L50), 0);
  EXPECT_EQ(static_cast<int>(span_Centre), 50);
  EXPECT_EQ(static_cast<int>(span_R51), 101);
}

} // namespace
} // namespace kestrel
