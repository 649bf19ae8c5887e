// What units Wdef and LemmaStopMatchTypes set at start-up and release at
// finalisation.
#include <gtest/gtest.h>

#include <kestrel/frame/Units.h>
#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

using enum text_format_type;

TEST(WdefUnit, FormatDefaultsBySegmentThenFormat) {
  struct Row {
    text_segments_type segment;
    const char16_t *ascii, *html, *sgml;
  };
  const Row rows[] = {
      {14, u"", u"", u""},           {15, u"auto", u"auto", u"auto"},
      {16, u"", u"<p>", u"<p>"},     {17, u"<Enter><Tab>", u"</p>", u"</p>"},
      {18, u"", u"<h#>", u"<head>"}, {19, u"", u"</h#>", u"</head>"},
      {20, u"", u"", u"<div# *>"},   {21, u"", u"", u"</div>"},
      {13, u"", u"", u""}, // outside the segments
      {22, u"", u"", u""},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(int(r.segment));
    EXPECT_EQ(text_format_defaults[r.segment][assume_ascii], r.ascii);
    EXPECT_EQ(text_format_defaults[r.segment][assume_HTML], r.html);
    EXPECT_EQ(text_format_defaults[r.segment][assume_SGML], r.sgml);
  }
}

TEST(WdefUnit, SettingsAtLoad) {
  for (bool on : {autosearch_confirm, mask_wanted, whole_word_search})
    EXPECT_TRUE(on);
  for (bool off : {search_downwards, blanking, digraph_sorting, go_now, indexing_tallyman,
                   no_check_exit, reverse_sorting, utter_bollocks})
    EXPECT_FALSE(off);
  EXPECT_EQ(conc_third_sort, concordance_sort_type::cs_by_tag);
  EXPECT_EQ(lineups_chosen_category, 'a');
}

// Brings a unit down to its last finalisation and up again, as a library
// unloaded and loaded again would.
template <void (*Finalization)(), void (*Initialization)()> struct UnitCycle {
  UnitCycle() { Finalization(); } // pairs the library's start-up
  ~UnitCycle() { Initialization(); }
};

TEST(WdefUnit, FinalisationReleasesAndStartUpRestores) {
  LibraryRecs[3].handle = &LibraryRecs;
  txt_column_separator = "changed";
  {
    UnitCycle<&Wdef::Finalization, &Wdef::initialization> down;
    EXPECT_TRUE(txt_column_separator.empty());
    EXPECT_TRUE(TBaseDescriptivesStrings[TBaseDescriptivesSet::gc_sd].empty());
    EXPECT_TRUE(
        wildcards_converters[tag_wildcards_type::hash_type][tag_conversion_type::original_char]
            .empty());
    EXPECT_TRUE(text_format_defaults[15][assume_ascii].empty());
    EXPECT_TRUE(sort_str_arr[concordance_sort_type::cs_centre].empty());
    EXPECT_TRUE(maths_functions[9].empty());
  }
  EXPECT_EQ(LibraryRecs[3].handle, nullptr);
  EXPECT_EQ(txt_column_separator, "\t");
  EXPECT_EQ(row_separator_string_on, "\r\n  <ENTRY>");
  EXPECT_EQ(row_separator_string_off, "\r\n  </ENTRY>");
  EXPECT_EQ(TBaseDescriptivesStrings[TBaseDescriptivesSet::gc_sd], "Sd.");
  EXPECT_EQ(
      wildcards_converters[tag_wildcards_type::hash_type][tag_conversion_type::replacement_char],
      std::u16string(1, 27));
  EXPECT_EQ(text_format_defaults[15][assume_ascii], u"auto");
  EXPECT_EQ(sort_str_arr[concordance_sort_type::cs_centre], "Centre");
  EXPECT_EQ(maths_functions[9], "Abs");
}

TEST(WdefUnit, ProcessNamesReleasedAtFinalisation) {
  using enum TLemmaMatchStopOptions;
  EXPECT_EQ(names_of_processes[as_lemma], "lemmas");
  EXPECT_EQ(names_of_processes[as_match], "match list");
  EXPECT_EQ(names_of_processes[as_stop], "stop list");
  {
    UnitCycle<&LemmaStopMatchTypes::Finalization, &LemmaStopMatchTypes::initialization> down;
    EXPECT_TRUE(names_of_processes[as_lemma].empty());
    EXPECT_TRUE(names_of_processes[as_stop].empty());
  }
  EXPECT_EQ(names_of_processes[as_stop], "stop list");
}

} // namespace
} // namespace kestrel
