// Unit Wdef: its start-up sets the wide-string tables of the selection
// strings, zeroes LibraryRecs and sets the strings of the display; its
// finalisation releases its strings and tables in the reverse of their
// declaration. The extension constants, the index extensions and
// list_type_as_string are literals of the program image: there is nothing of
// them to release.
#include <kestrel/frame/Units.h>
#include <kestrel/vocabulary/Wdef.h>
#include <kestrel/vocabulary/WdefUnitInternal.h>

namespace kestrel {
namespace {

void Release(std::string &s) {
  std::string().swap(s);
}
void Release(std::u16string &s) {
  std::u16string().swap(s);
}
template <typename E, typename T, size_t N> void Release(EnumTable<E, T, N> &table);
template <typename T, size_t N> void Release(T (&rows)[N]) {
  for (T &row : rows)
    Release(row);
}
template <typename E, typename T, size_t N> void Release(EnumTable<E, T, N> &table) {
  Release(table.rows);
}

void StartUp() {
  // After a full finalisation (the library brought up again without being
  // unloaded) the constant tables come back first.
  if (maths_functions[0].empty()) FillDisplayTables();
  if (sort_str_arr.rows[0].empty()) FillConcordanceSortNames();
  SetSelectionTables();
  ZeroLibraryRecs();
  SetDisplayStrings();
}

void Stop() {
  Release(saveas_filename);
  Release(row_separator_string_off);
  Release(row_separator_string_on);
  Release(txt_column_separator);
  Release(TBaseDescriptivesStrings);
  Release(wildcards_converters);
  Release(text_format_defaults.rows);
  Release(sort_str_arr);
  Release(MutualInfoChoices);
  Release(type_mode_str);
  Release(maths_functions);
}

} // namespace
} // namespace kestrel

KESTREL_DEFINE_UNIT(Wdef, ::kestrel::StartUp, ::kestrel::Stop)
