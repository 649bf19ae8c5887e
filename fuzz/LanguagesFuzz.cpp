// The all-languages file: any bytes read as the user's favourite languages,
// and the favourites read save and read back to the same records, byte for
// byte. Two kinds of file fall outside that promise by the format itself:
// more custom languages than a read looks at, and a language named like a
// custom section, whose section the numbering of the customs can take.
#include "FuzzSupport.h"

#include <algorithm>
#include <vector>

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

using Favourite = std::pair<std::string, std::string>; // name, record bytes

std::vector<Favourite> Favourites(const TMKLanguages &languages) {
  std::vector<Favourite> all;
  for (int32_t i = 0; i < languages.Favourites->Count(); ++i) {
    const fixed_lang_details_rec rec = languages.Favourites->GetALanguage(i);
    all.emplace_back(languages.Favourites->Strings(i),
                     std::string(reinterpret_cast<const char *>(&rec), sizeof rec));
  }
  std::sort(all.begin(), all.end());
  return all;
}

bool KeepsItsSections(const TMKLanguages &languages) {
  int32_t custom = 0;
  for (int32_t i = 0; i < languages.Favourites->Count(); ++i) {
    const fixed_lang_details_rec rec = languages.Favourites->GetALanguage(i);
    if (rec.CustomLanguage) ++custom;
    if (rec.LanguageName.view().rfind("Custom Language", 0) == 0) return false;
  }
  return custom <= kMaxCustomLanguages;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string file = PrivateFolder() + "/languages.ini";
  const std::string copy = PrivateFolder() + "/again.ini";
  WriteFile(file, std::string(reinterpret_cast<const char *>(data), size));
  TMKLanguages &languages = *MKLanguages;
  if (!languages.ReadAllLanguagesFromFile(file)) Finding("an existing file was not read");
  for (int32_t i = 0; i <= languages.AllLanguagesCount(); ++i) // one past the end too
    languages.GetALanguageDetails(i);
  const std::vector<Favourite> read = Favourites(languages);
  const bool keeps = KeepsItsSections(languages);
  if (!languages.SaveAllLanguagesToFile(copy)) Finding("the favourites could not be saved");
  if (!languages.ReadAllLanguagesFromFile(copy)) Finding("a saved file was not read");
  if (keeps && Favourites(languages) != read) Finding("favourites saved and read back changed");
  return 0;
}
