// Unit Wdef: the settings it holds for the tools, with their values at load.
#include <kestrel/vocabulary/WdefSettings.h>

namespace kestrel {

bool autosearch_confirm = true;
bool mask_wanted = true;
bool whole_word_search = true;
bool search_downwards = false;
bool blanking = false;
bool digraph_sorting = false;
bool go_now = false;
bool indexing_tallyman = false;
bool no_check_exit = false;
bool reverse_sorting = false;
bool utter_bollocks = false;

} // namespace kestrel
