// Unit Wdef: the names of the concordance sorts and the concordance settings.
#include <kestrel/vocabulary/WdefConcordance.h>

#include <kestrel/vocabulary/WdefUnitInternal.h>

namespace kestrel {

EnumTable<concordance_sort_type, std::string, kConcordanceSortCount> sort_str_arr;
concordance_sort_type conc_third_sort = concordance_sort_type::cs_by_tag;

int16_t compnum = 0;
int16_t concnum = 0;
int16_t dicnum = 0;
int16_t dispnum = 0;
int16_t keywnum = 0;
int16_t resort_num1 = 0;
int16_t resort_num2 = 0;
int16_t ToolChildNumber = 0;
char lineups_chosen_category = 'a';

static_assert(SortSpanFromSort(concordance_sort_type::cs_left5) ==
              TConcordance_span_type::span_L05);
static_assert(SortSpanFromSort(concordance_sort_type::cs_centre) ==
              TConcordance_span_type::span_Centre);
static_assert(SortSpanFromSort(concordance_sort_type::cs_section_position) <
              TConcordance_span_type::span_R51);

void FillConcordanceSortNames() {
  static constexpr const char *kNames[kConcordanceSortCount] = {"L5",
                                                                "L4",
                                                                "L3",
                                                                "L2",
                                                                "L1",
                                                                "Centre",
                                                                "R1",
                                                                "R2",
                                                                "R3",
                                                                "R4",
                                                                "R5",
                                                                "Context word",
                                                                "Set order",
                                                                "File order",
                                                                "Tag order",
                                                                "Tag distance",
                                                                "File %",
                                                                "Word number",
                                                                "Sentence number",
                                                                "Sentence position",
                                                                "Paragraph number",
                                                                "Paragraph position",
                                                                "Heading number",
                                                                "Heading position",
                                                                "Section number",
                                                                "Section position"};
  for (size_t i = 0; i < kConcordanceSortCount; ++i)
    sort_str_arr.rows[i] = kNames[i];
}

namespace {
// Constant from load, as typed constants are.
const bool gNamedAtLoad = (FillConcordanceSortNames(), true);
} // namespace

} // namespace kestrel
