// Unit my_consts: the name tables. They hold their fixed texts from load; the
// finalisation releases them, last table first.
#include <kestrel/vocabulary/my_consts.h>

#include <kestrel/frame/Units.h>

namespace kestrel {

EnumTable<TMKcolourset, std::string, kColoursetCount> ini_all_colours;
EnumTable<tool_type, std::string, 3> ini_CAPS_tool;
EnumTable<tool_type, std::string, 3> ini_tool_name;
EnumTable<TLemmaMatchStopOptions, std::string, kLemmaMatchStopCount> ini_stopmatchlemmafile;
EnumTable<conc_display_possibilities, std::string, kConcDisplayCount> conc_display_str;

namespace {

template <typename Table, size_t N> void Fill(Table &table, const char *const (&texts)[N]) {
  static_assert(N == Table::size());
  for (size_t i = 0; i < N; ++i)
    table.rows[i] = texts[i];
}

template <typename Table> void Release(Table &table) {
  for (auto &row : table.rows)
    std::string().swap(row);
}

void FillTables() {
  Fill(ini_all_colours,
       {"normal text", "highlight", "tags", "search word", "main sort word", "second sort word",
        "context word", "deleted", "tags highlighted", "search word highlighted",
        "main sort highlighted", "second sort highlighted", "context word highlighted",
        "most frequent collocate", "viewing texts salients", "viewing texts"});
  Fill(ini_CAPS_tool, {"TALLYMAN", "LINEUPS", "SALIENTS"});
  Fill(ini_tool_name, {"Tallyman", "Lineups", "Salients"});
  Fill(ini_stopmatchlemmafile, {"lemma match list file", "match list file", "stop list file"});
  Fill(conc_display_str, {"hide tags", "hide words", "cut spaces", "sentence only"});
}

// The tables are constant from load on, as typed constants are.
const bool gFilledAtLoad = (FillTables(), true);

// A start-up after a full finalisation (the library brought up again without
// being unloaded) puts the fixed texts back.
void StartUp() {
  if (ini_all_colours.rows[0].empty()) FillTables();
}

void Stop() {
  Release(conc_display_str);
  Release(ini_stopmatchlemmafile);
  Release(ini_tool_name);
  Release(ini_CAPS_tool);
  Release(ini_all_colours);
}

} // namespace
} // namespace kestrel

KESTREL_DEFINE_UNIT(my_consts, ::kestrel::StartUp, ::kestrel::Stop)
