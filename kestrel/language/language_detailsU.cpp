// Unit language_detailsU: the catalogue MKLanguages, built at unit start-up
// and freed at finalisation.
#include <kestrel/language/language_detailsU.h>

#include <kestrel/files/inifileU2.h>
#include <kestrel/files/logging_utilities.h>
#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/myKpSmall.h>

namespace kestrel {

TMKLanguages *MKLanguages = nullptr;

std::string CustomLanguageSection(int32_t n) {
  return "Custom Language " + std::to_string(n);
}

// ---- TListOfAllNamesStringlist ------------------------------------------------

TListOfAllNamesStringlist::~TListOfAllNamesStringlist() {
  FreeHolders();
}

void TListOfAllNamesStringlist::FreeHolders() {
  for (int32_t i = 0; i < Count(); ++i) {
    delete Objects(i);
    PutObject(i, nullptr);
  }
}

void TListOfAllNamesStringlist::Free() {
  FreeHolders();
  delete this;
}

// ---- TFavouriteLangs ------------------------------------------------------------

TFavouriteLangs::~TFavouriteLangs() {
  TFavouriteLangs::Clear();
}

void TFavouriteLangs::Clear() {
  for (int32_t i = 0; i < Count(); ++i) {
    delete Objects(i);
    PutObject(i, nullptr);
  }
  TStringList::Clear();
}

void TFavouriteLangs::Delete(int32_t index) {
  if (index >= Count()) return;
  delete Objects(index); // a negative index raises here
  PutObject(index, nullptr);
  TStringList::Delete(index);
}

TLangDetailsHolder *TFavouriteLangs::HolderAt(int32_t index) const {
  if (index < 0 || index >= Count()) return nullptr;
  return dynamic_cast<TLangDetailsHolder *>(Objects(index));
}

fixed_lang_details_rec TFavouriteLangs::GetALanguage(int32_t index) const {
  const TLangDetailsHolder *holder = HolderAt(index);
  return holder ? holder->Details : fixed_lang_details_rec{};
}

uint32_t TFavouriteLangs::GetAnLCID(int32_t index) const {
  const TLangDetailsHolder *holder = HolderAt(index);
  return holder ? holder->Details.SortLCID : 0;
}

lang_preference_type TFavouriteLangs::GetAPreference(int32_t index) const {
  const TLangDetailsHolder *holder = HolderAt(index);
  return holder ? holder->Details.Preference : lang_preference_type::nao_instalada;
}

void TFavouriteLangs::SetALanguage(int32_t index, const fixed_lang_details_rec &details) {
  if (TLangDetailsHolder *holder = HolderAt(index)) holder->Details = details;
}

void TFavouriteLangs::SetanLCID(int32_t index, uint32_t lcid) {
  if (TLangDetailsHolder *holder = HolderAt(index)) holder->Details.SortLCID = lcid;
}

void TFavouriteLangs::SetaPreference(int32_t index, lang_preference_type preference) {
  if (TLangDetailsHolder *holder = HolderAt(index)) holder->Details.Preference = preference;
}

// ---- TMKLanguages -----------------------------------------------------------------

namespace {

// The catalogue that the running enumeration reports to: the system's
// callback has no room for an object.
thread_local TMKLanguages *gEnumerating = nullptr;

int32_t LocalesCallbackOfBound(char *locale) {
  return gEnumerating ? gEnumerating->LocalesCallback(locale) : 0;
}

// Binds a catalogue to the callback for the length of one enumeration.
class CallbackBinding {
public:
  explicit CallbackBinding(TMKLanguages *languages) : previous_(gEnumerating) {
    gEnumerating = languages;
  }
  ~CallbackBinding() { gEnumerating = previous_; }
  CallbackBinding(const CallbackBinding &) = delete;
  CallbackBinding &operator=(const CallbackBinding &) = delete;

private:
  TMKLanguages *previous_;
};

} // namespace

TMKLanguages::TMKLanguages()
    : Favourites(std::make_unique<TFavouriteLangs>()),
      AllNames(std::make_unique<TListOfAllNamesStringlist>()) {
  {
    CallbackBinding binding(this);
    EnumSystemLocalesA(LocalesCallbackOfBound, LCID_SUPPORTED);
  }
  AllNames->Sort();
  Changed = false;
}

TMKLanguages::~TMKLanguages() {
  if (AllNames) AllNames.release()->Free();
  if (Favourites) Favourites->Clear();
  Favourites.reset();
  AllLCIDs.clear();
}

int32_t TMKLanguages::LocalesCallback(const char *locale) {
  // Eight hexadecimal digits: a sort number, then the language identifier.
  const std::string text = locale ? locale : "";
  int32_t value;
  if (text.size() < 5 || !TryStrToInt(std::string("$").append(text, 4, 4), value)) return 1;
  const LCID lcid = static_cast<LCID>(value);
  if (LocaleData(lcid, LOCALE_SABBREVLANGNAME).empty()) return 1;
  const std::string name = ShortenedSysLanguageName(LocaleData(lcid, LOCALE_SENGLANGUAGE));
  if (AllNames->IndexOf(name) < 0) {
    TMyLangRec rec{name, lcid, IsValidLocale(lcid, LCID_INSTALLED)};
    auto holder = std::make_unique<TMyLangRecHolder>(std::move(rec));
    AllNames->AddObject(name, holder.get());
    holder.release();
  }
  AllLCIDs.push_back(lcid);
  return 1;
}

int32_t TMKLanguages::AllLanguagesCount() const {
  return AllNames->Count();
}

TMyLangRec TMKLanguages::GetOrdinaryLangRec(int32_t index) const {
  if (index < 0 || index >= AllNames->Count()) return {};
  const auto *holder = dynamic_cast<const TMyLangRecHolder *>(AllNames->Objects(index));
  return holder ? holder->LangRec : TMyLangRec{};
}

fixed_lang_details_rec TMKLanguages::GetALanguageDetails(int32_t index) const {
  fixed_lang_details_rec details{};
  const TMyLangRec rec = GetOrdinaryLangRec(index);
  const int32_t favourite = Favourites->IndexOf(rec.LangName);
  if (favourite >= 0) return Favourites->GetALanguage(favourite);
  if (rec.LangValid) details.Preference = lang_preference_type::instalada;
  details.SortLCID = rec.LangLCID;
  details.LanguageName = rec.LangName;
  return details;
}

void TMKLanguages::AddToFavourites(const fixed_lang_details_rec &details) {
  Changed = true;
  const std::string name = details.LanguageName.str();
  if (Favourites->IndexOf(name) >= 0) return;
  auto holder = std::make_unique<TLangDetailsHolder>(details);
  Favourites->AddObject(name, holder.get());
  holder.release();
}

void TMKLanguages::RemoveFromFavourites(const fixed_lang_details_rec &details) {
  Changed = true;
  const int32_t index = Favourites->IndexOf(details.LanguageName.str());
  if (index >= 0) Favourites->Delete(index);
}

void TMKLanguages::RemoveFromAvailable(const fixed_lang_details_rec &details) {
  const int32_t index = AllNames->IndexOf(details.LanguageName.str());
  if (index < 0) return;
  delete AllNames->Objects(index);
  AllNames->PutObject(index, nullptr);
  AllNames->Delete(index);
}

bool TMKLanguages::ReadAllLanguagesFromFile(const std::string &filename) {
  if (!FileExists(filename)) return false;
  TMyMemIniFile ini(filename);
  TLangDetailsHolder holder(fixed_lang_details_rec{}); // serves every section
  Favourites->Clear();
  for (int32_t n = 1; n <= kMaxCustomLanguages; ++n)
    if (holder.ReadFromIni(CustomLanguageSection(n), &ini)) AddToFavourites(holder.Details);
  for (int32_t i = AllNames->Count() - 1; i >= 0; --i) {
    if (holder.ReadFromIni(AllNames->Strings(i), &ini)) AddToFavourites(holder.Details);
    MyYieldProcess();
  }
  Changed = false;
  return true;
}

// The old file is not deleted first: the new one replaces it whole when it is
// written, so a failure leaves the user's favourites on disk.
bool TMKLanguages::SaveAllLanguagesToFile(const std::string &filename) {
  TMyMemIniFile ini(filename);
  ini.Clear();
  bool result = true;
  int32_t custom = 0;
  for (int32_t i = 0; i < Favourites->Count() && result; ++i) {
    auto *holder = dynamic_cast<TLangDetailsHolder *>(Favourites->Objects(i));
    if (!holder) continue;
    const std::string section =
        holder->Details.CustomLanguage ? CustomLanguageSection(++custom) : Favourites->Strings(i);
    result = holder->WriteToIni(section, &ini);
  }
  if (result) {
    ini.UpdateFile();
    Changed = false;
  }
  return result;
}

namespace {

void CreateCatalogue() {
  MKLanguages = new TMKLanguages();
}

void FreeCatalogue() {
  if (keeping_log) AddToLogFile(u"unloading language_detailsU");
  FreeAndNil(MKLanguages);
}

} // namespace

} // namespace kestrel

KESTREL_DEFINE_UNIT(language_detailsU, ::kestrel::CreateCatalogue, ::kestrel::FreeCatalogue)
