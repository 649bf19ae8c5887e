// The module's string table: texts by 16-bit identifier, filled by the units
// that own them as the module loads.
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>

#include <map>

namespace kestrel {

namespace {

struct StringTable {
  std::map<uint16_t, std::string> texts;
  std::string duplicates;
};

// Built at first use, so that registrations of any translation unit find it.
StringTable &Table() {
  static StringTable table;
  return table;
}

} // namespace

StringTableRegistration::StringTableRegistration(std::initializer_list<StringResource> entries) {
  StringTable &table = Table();
  for (const StringResource &e : entries)
    if (!table.texts.emplace(e.ident, e.text).second)
      table.duplicates.append(table.duplicates.empty() ? "" : " ").append(std::to_string(e.ident));
}

bool FindStringResource(HMODULE module, uint16_t ident, std::string &text) {
  if (module != KestrelModuleHandle()) return false;
  const StringTable &table = Table();
  auto it = table.texts.find(ident);
  if (it == table.texts.end()) return false;
  text = it->second;
  return true;
}

std::string DuplicateStringIds() {
  return Table().duplicates;
}

} // namespace kestrel
