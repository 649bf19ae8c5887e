// Encoding names to code pages: Windows numbers as they are, ICU's names and
// aliases through the converter they open.
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/NlsInternal.h>

#include <cctype>
#include <map>
#include <mutex>
#include <vector>

#include <unicode/ucnv.h>

namespace kestrel {
namespace {

// The first number given to a name that no Windows code page stands for.
constexpr uint32_t FirstOwnNumber = 0x10000;

// The Windows code pages a converter name is compared with, most wanted
// first where two convert alike.
constexpr uint32_t kCandidates[] = {1252,  1250,  1251,  1253,  1254,  1255,  1256,  1257,  1258,
                                    874,   932,   936,   949,   950,   1361,  28591, 28592, 28593,
                                    28594, 28595, 28596, 28597, 28598, 28599, 28603, 28605, 20127,
                                    20866, 21866, 50220, 51932, 51949, 52936, 54936, 65000, 65001,
                                    10000, 437,   737,   775,   850,   852,   855,   857,   858,
                                    860,   861,   862,   863,   864,   865,   866,   869};

std::mutex &RegistryLock() {
  static std::mutex lock;
  return lock;
}
// Converters of our own numbers: the name they open by and the one shown.
struct TOwnConverter {
  std::string open, shown;
};
std::vector<TOwnConverter> &Registry() {
  static std::vector<TOwnConverter> converters;
  return converters;
}

std::string Lower(std::string_view s) {
  std::string out(s);
  for (char &c : out)
    c = char(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

// "1252", "cp1252", "windows-1252", "ibm-850", "ibm850": the number; 0 if the
// name is no such form.
uint32_t NumberForm(const std::string &name) {
  for (const char *prefix : {"", "cp", "windows-", "ibm-", "ibm"}) {
    const std::string p = prefix;
    if (name.compare(0, p.size(), p) != 0 || name.size() == p.size()) continue;
    const std::string digits = name.substr(p.size());
    if (digits.size() > 5 || digits.find_first_not_of("0123456789") != std::string::npos) continue;
    const uint32_t n = uint32_t(std::stoul(digits));
    return n < FirstOwnNumber ? n : 0;
  }
  return 0;
}

// The canonical converter name of each candidate code page, found once.
const std::map<std::string, uint32_t> &CandidatesByConverter() {
  static const std::map<std::string, uint32_t> byName = [] {
    std::map<std::string, uint32_t> out;
    for (uint32_t cp : kCandidates) {
      const std::string canonical = nls::CanonicalConverterName(cp);
      if (!canonical.empty()) out.emplace(canonical, cp); // the first one stays
    }
    return out;
  }();
  return byName;
}

// The name to show for a converter of our own: its IANA or MIME name when it
// has one.
std::string ShownName(const char *canonical) {
  for (const char *standard : {"IANA", "MIME"}) {
    UErrorCode err = U_ZERO_ERROR;
    const char *name = ucnv_getStandardName(canonical, standard, &err);
    if (U_SUCCESS(err) && name) return name;
  }
  return canonical;
}

} // namespace

namespace nls {

bool RegisteredConverter(uint32_t codePage, std::string &icuName, bool shown) {
  if (codePage < FirstOwnNumber) return false;
  std::lock_guard<std::mutex> guard(RegistryLock());
  const size_t index = codePage - FirstOwnNumber;
  if (index >= Registry().size()) return false;
  icuName = shown ? Registry()[index].shown : Registry()[index].open;
  return true;
}

} // namespace nls

uint32_t CodePageFromName(std::string_view name) {
  const std::string lower = Lower(name);
  if (lower.empty()) return 0;
  if (const uint32_t n = NumberForm(lower)) {
    if (n == 1200 || n == 1201 || IsValidCodePage(n)) return n;
    return 0;
  }
  UErrorCode err = U_ZERO_ERROR;
  const char *canonical = ucnv_getAlias(lower.c_str(), 0, &err);
  if (U_FAILURE(err) || canonical == nullptr) return 0;
  const std::string c = canonical;
  if (c == "UTF-16LE" || c == "UTF-16" || c == "UTF16_PlatformEndian") return 1200;
  if (c == "UTF-16BE") return 1201;
  auto it = CandidatesByConverter().find(c);
  if (it != CandidatesByConverter().end()) return it->second;
  // A converter no Windows code page stands for: a number of its own, if the
  // converter opens (a name may be known without its table).
  UConverter *conv = ucnv_open(canonical, &err);
  if (conv) ucnv_close(conv);
  if (U_FAILURE(err)) return 0;
  std::lock_guard<std::mutex> guard(RegistryLock());
  std::vector<TOwnConverter> &own = Registry();
  for (size_t i = 0; i < own.size(); ++i)
    if (own[i].open == c) return FirstOwnNumber + uint32_t(i);
  own.push_back({c, ShownName(canonical)});
  return FirstOwnNumber + uint32_t(own.size() - 1);
}

} // namespace kestrel
