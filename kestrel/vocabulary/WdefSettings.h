// Search flags and similar settings that the library holds for the tools;
// nothing in the library reads them.
#pragma once

namespace kestrel {

extern bool autosearch_confirm; // true at load
extern bool mask_wanted;        // true at load
extern bool whole_word_search;  // true at load
extern bool search_downwards;
extern bool blanking;
extern bool digraph_sorting;
extern bool go_now;
extern bool indexing_tallyman;
extern bool no_check_exit;
extern bool reverse_sorting;
extern bool utter_bollocks;

} // namespace kestrel
