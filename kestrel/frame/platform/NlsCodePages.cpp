// Code-page conversion on ICU converters.
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/NlsInternal.h>

#include <climits>
#include <cstring>
#include <memory>
#include <unordered_map>

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/unorm2.h>

namespace kestrel {
namespace {

uint32_t ActualCodePage(uint32_t codePage) {
  switch (codePage) {
  case CP_ACP:
  case CP_THREAD_ACP:
    return GetACP();
  case CP_OEMCP:
    return GetOEMCP();
  case CP_MACCP:
    return 10000;
  default:
    return codePage;
  }
}

// Windows code pages whose ICU converters go by another name than
// "windows-N" or "ibm-N".
struct NamedCodePage {
  uint32_t codePage;
  const char *icuName;
};

constexpr NamedCodePage kNamedCodePages[] = {
    {20127, "US-ASCII"},    {20866, "KOI8-R"},      {21866, "KOI8-U"},      {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},  {28593, "ISO-8859-3"},  {28594, "ISO-8859-4"},  {28595, "ISO-8859-5"},
    {28596, "ISO-8859-6"},  {28597, "ISO-8859-7"},  {28598, "ISO-8859-8"},  {28599, "ISO-8859-9"},
    {28603, "ISO-8859-13"}, {28605, "ISO-8859-15"}, {50220, "ISO-2022-JP"}, {51932, "EUC-JP"},
    {51949, "EUC-KR"},      {52936, "HZ-GB-2312"},  {54936, "GB18030"},     {65000, "UTF-7"},
    {65001, "UTF-8"},       {10000, "macintosh"},
};

// Code pages whose conversion is defined by the Unicode standard itself and
// takes no flags but MB_ERR_INVALID_CHARS.
bool IsUnicodeForm(uint32_t cp) {
  return cp == CP_UTF7 || cp == CP_UTF8 || cp == 54936;
}

UConverter *OpenByName(const std::string &name) {
  UErrorCode err = U_ZERO_ERROR;
  UConverter *conv = ucnv_open(name.c_str(), &err);
  if (U_FAILURE(err)) {
    if (conv) ucnv_close(conv);
    return nullptr;
  }
  return conv;
}

// UTF-16 and UTF-32 are no byte code pages for these conversions.
bool IsWideForm(uint32_t cp) {
  return cp == 1200 || cp == 1201 || cp == 12000 || cp == 12001;
}

UConverter *OpenConverter(uint32_t cp) {
  if (std::string name; nls::RegisteredConverter(cp, name)) return OpenByName(name);
  if (IsWideForm(cp)) return nullptr;
  for (const auto &row : kNamedCodePages)
    if (row.codePage == cp) return OpenByName(row.icuName);
  if (UConverter *conv = OpenByName("windows-" + std::to_string(cp))) return conv;
  // The DOS and EBCDIC pages stand under their IBM numbers.
  return cp < 1300 ? OpenByName("ibm-" + std::to_string(cp)) : nullptr;
}

// IBM's tables swap the controls 0x1A, 0x1C and 0x7F (0x1A gives U+001C);
// Windows maps them to themselves. Those bytes are never part of a double-
// byte character, so such converters skip them and they are mapped here.
bool SwapsControls(UConverter *conv) {
  const char probe[] = {0x1A, 0x1C, 0x7F};
  UChar out[8];
  UErrorCode err = U_ZERO_ERROR;
  int32_t n = ucnv_toUChars(conv, out, 8, probe, 3, &err);
  ucnv_reset(conv);
  return U_SUCCESS(err) && n == 3 && out[0] == 0x1C && out[1] == 0x7F && out[2] == 0x1A;
}

bool IsSwappedControl(uint32_t c) {
  return c == 0x1A || c == 0x1C || c == 0x7F;
}

struct Converter {
  UConverter *conv = nullptr;
  bool swapsControls = false;
  ~Converter() {
    if (conv) ucnv_close(conv);
  }
};

// Converters keep state while they work, so each thread has its own, opened
// at first use of a code page and kept for the thread's life.
Converter *ConverterFor(uint32_t codePage) {
  thread_local std::unordered_map<uint32_t, std::unique_ptr<Converter>> cache;
  auto it = cache.find(codePage);
  if (it != cache.end()) return it->second->conv ? it->second.get() : nullptr;
  auto entry = std::make_unique<Converter>();
  entry->conv = OpenConverter(codePage);
  if (entry->conv) entry->swapsControls = SwapsControls(entry->conv);
  Converter *result = entry->conv ? entry.get() : nullptr;
  cache.emplace(codePage, std::move(entry)); // unknown pages are remembered too
  return result;
}

// What the callbacks saw, and whether a failure should stop the conversion.
struct CallbackState {
  bool stopOnInvalid = false;
  bool invalidSeen = false;
};

bool IsConversionFault(UConverterCallbackReason reason) {
  return reason == UCNV_UNASSIGNED || reason == UCNV_ILLEGAL || reason == UCNV_IRREGULAR;
}

void ToUnicodeCallback(const void *context, UConverterToUnicodeArgs *args, const char *, int32_t,
                       UConverterCallbackReason reason, UErrorCode *err) {
  if (!IsConversionFault(reason)) return;
  auto *state = static_cast<CallbackState *>(const_cast<void *>(context));
  state->invalidSeen = true;
  if (state->stopOnInvalid) return; // the error stands and ends the conversion
  *err = U_ZERO_ERROR;
  const UChar replacement = 0xFFFD;
  ucnv_cbToUWriteUChars(args, &replacement, 1, 0, err);
}

void FromUnicodeCallback(const void *context, UConverterFromUnicodeArgs *args, const UChar *units,
                         int32_t length, UChar32 cp, UConverterCallbackReason reason,
                         UErrorCode *err) {
  if (!IsConversionFault(reason)) return;
  auto *state = static_cast<CallbackState *>(const_cast<void *>(context));
  state->invalidSeen = true;
  if (state->stopOnInvalid) return;
  UCNV_FROM_U_CALLBACK_SUBSTITUTE(nullptr, args, units, length, cp, reason, err);
}

// Decodes one run of bytes in full; false when a callback stopped it.
bool DecodeRun(UConverter *conv, const char *bytes, size_t count, std::u16string &out) {
  const char *src = bytes, *srcEnd = bytes + count;
  for (;;) {
    size_t at = out.size();
    out.resize(at + count + 16);
    UChar *dst = out.data() + at;
    UErrorCode err = U_ZERO_ERROR;
    ucnv_toUnicode(conv, &dst, out.data() + out.size(), &src, srcEnd, nullptr, true, &err);
    out.resize(static_cast<size_t>(dst - out.data()));
    if (err != U_BUFFER_OVERFLOW_ERROR) return U_SUCCESS(err);
  }
}

bool EncodeRun(UConverter *conv, const char16_t *units, size_t count, std::string &out) {
  const UChar *src = units, *srcEnd = units + count;
  for (;;) {
    size_t at = out.size();
    out.resize(at + 4 * count + 16);
    char *dst = out.data() + at;
    UErrorCode err = U_ZERO_ERROR;
    ucnv_fromUnicode(conv, &dst, out.data() + out.size(), &src, srcEnd, nullptr, true, &err);
    out.resize(static_cast<size_t>(dst - out.data()));
    if (err != U_BUFFER_OVERFLOW_ERROR) return U_SUCCESS(err);
  }
}

// Splits the text at the controls that IBM tables swap when the converter
// does, converting the runs between them and mapping those controls apart.
template <typename Unit, typename Out, typename RunFn>
bool ConvertAroundControls(const Converter &c, const Unit *text, size_t count, Out &out,
                           RunFn run) {
  if (!c.swapsControls) return run(c.conv, text, count, out);
  size_t start = 0;
  for (size_t i = 0; i <= count; ++i) {
    bool end = i == count;
    if (!end && !IsSwappedControl(static_cast<std::make_unsigned_t<Unit>>(text[i]))) continue;
    if (i > start && !run(c.conv, text + start, i - start, out)) return false;
    if (!end) out.push_back(static_cast<typename Out::value_type>(text[i]));
    start = i + 1;
  }
  return true;
}

// The symbol code page puts bytes 0x20 to 0xFF at U+F020 to U+F0FF.
void DecodeSymbol(std::string_view bytes, std::u16string &out) {
  for (unsigned char b : bytes)
    out.push_back(b < 0x20 ? char16_t(b) : char16_t(0xF000 + b));
}

bool EncodeSymbol(std::u16string_view text, std::string &out, bool &usedDefault) {
  for (char16_t u : text) {
    if (u < 0x20 || (u >= 0xF020 && u <= 0xF0FF)) {
      out.push_back(static_cast<char>(u & 0xFF));
    } else {
      out.push_back('?');
      usedDefault = true;
    }
  }
  return true;
}

// The glyphs that the DOS code pages show for the control bytes.
constexpr char16_t kControlGlyphs[32] = {
    0x0000, 0x263A, 0x263B, 0x2665, 0x2666, 0x2663, 0x2660, 0x2022, 0x25D8, 0x25CB, 0x25D9,
    0x2642, 0x2640, 0x266A, 0x266B, 0x263C, 0x25BA, 0x25C4, 0x2195, 0x203C, 0x00B6, 0x00A7,
    0x25AC, 0x21A8, 0x2191, 0x2193, 0x2192, 0x2190, 0x221F, 0x2194, 0x25B2, 0x25BC};

bool IsDosCodePage(uint32_t cp) {
  switch (cp) {
  case 437:
  case 720:
  case 737:
  case 775:
  case 850:
  case 852:
  case 855:
  case 857:
  case 858:
  case 860:
  case 861:
  case 862:
  case 863:
  case 864:
  case 865:
  case 866:
  case 869:
    return true;
  default:
    return false;
  }
}

void UseGlyphs(std::u16string &text) {
  for (char16_t &u : text) {
    if (u > 0 && u < 0x20)
      u = kControlGlyphs[u];
    else if (u == 0x7F)
      u = 0x2302;
  }
}

bool Decompose(std::u16string &text) {
  UErrorCode err = U_ZERO_ERROR;
  const UNormalizer2 *nfd = unorm2_getNFDInstance(&err);
  if (U_FAILURE(err)) return false;
  std::u16string out(text.size() * 4 + 16, u'\0');
  int32_t n = unorm2_normalize(nfd, text.data(), static_cast<int32_t>(text.size()), out.data(),
                               static_cast<int32_t>(out.size()), &err);
  if (U_FAILURE(err)) return false;
  out.resize(static_cast<size_t>(n));
  text = std::move(out);
  return true;
}

bool ValidByteFlags(uint32_t cp, uint32_t flags) {
  constexpr uint32_t known =
      MB_PRECOMPOSED | MB_COMPOSITE | MB_USEGLYPHCHARS | MB_ERR_INVALID_CHARS;
  if (flags & ~known) return false;
  if ((flags & MB_PRECOMPOSED) && (flags & MB_COMPOSITE)) return false;
  if ((IsUnicodeForm(cp) || cp == CP_SYMBOL) && (flags & ~MB_ERR_INVALID_CHARS)) return false;
  return true;
}

// Copies a whole result into the caller's buffer, or gives its size.
template <typename Unit>
int32_t Deliver(const std::basic_string<Unit> &result, Unit *buffer, int32_t capacity) {
  if (result.size() > static_cast<size_t>(INT32_MAX)) return 0;
  int32_t needed = static_cast<int32_t>(result.size());
  if (capacity == 0) return needed;
  if (capacity < needed) return 0;
  std::memcpy(buffer, result.data(), result.size() * sizeof(Unit));
  return needed;
}

bool Decode(uint32_t cp, std::string_view bytes, bool stopOnInvalid, std::u16string &out) {
  if (cp == CP_SYMBOL) {
    DecodeSymbol(bytes, out);
    return true;
  }
  Converter *c = ConverterFor(cp);
  if (!c) return false;
  CallbackState state{stopOnInvalid};
  UErrorCode err = U_ZERO_ERROR;
  ucnv_reset(c->conv);
  ucnv_setToUCallBack(c->conv, ToUnicodeCallback, &state, nullptr, nullptr, &err);
  bool ok = ConvertAroundControls(*c, bytes.data(), bytes.size(), out, DecodeRun);
  return ok && !(stopOnInvalid && state.invalidSeen);
}

bool Encode(uint32_t cp, std::u16string_view text, const char *defaultChar, bool stopOnInvalid,
            bool bestFit, std::string &out, bool &usedDefault) {
  if (cp == CP_SYMBOL) return EncodeSymbol(text, out, usedDefault);
  Converter *c = ConverterFor(cp);
  if (!c) return false;
  CallbackState state{stopOnInvalid};
  UErrorCode err = U_ZERO_ERROR;
  ucnv_reset(c->conv);
  ucnv_setFromUCallBack(c->conv, FromUnicodeCallback, &state, nullptr, nullptr, &err);
  ucnv_setFallback(c->conv, bestFit);
  if (!IsUnicodeForm(cp)) {
    const char *sub = defaultChar && *defaultChar ? defaultChar : "?";
    err = U_ZERO_ERROR;
    ucnv_setSubstChars(c->conv, sub, static_cast<int8_t>(std::min<size_t>(std::strlen(sub), 2)),
                       &err);
  }
  bool ok = ConvertAroundControls(*c, text.data(), text.size(), out, EncodeRun);
  usedDefault = state.invalidSeen;
  return ok && !(stopOnInvalid && state.invalidSeen);
}

} // namespace

std::string CodePageName(uint32_t codePage) {
  if (codePage == 1200) return "UTF-16LE";
  if (codePage == 1201) return "UTF-16BE";
  if (std::string name; nls::RegisteredConverter(codePage, name, true)) return name;
  for (const auto &row : kNamedCodePages)
    if (row.codePage == codePage) return row.icuName;
  if (codePage == CP_SYMBOL) return "symbol";
  if (!IsValidCodePage(codePage)) return "";
  // The DOS pages go by their IBM names, as Windows knows them.
  const bool windows = codePage >= 1250 || (codePage >= 874 && codePage <= 950);
  return (windows ? "windows-" : "ibm-") + std::to_string(codePage);
}

bool IsValidCodePage(uint32_t codePage) {
  if (codePage == CP_SYMBOL) return true;
  if (codePage <= CP_THREAD_ACP) return false; // the pseudo pages are no code pages of their own
  return ConverterFor(codePage) != nullptr;
}

int32_t MultiByteToWideChar(uint32_t codePage, uint32_t flags, const char *bytes, int32_t byteCount,
                            char16_t *wide, int32_t capacity) {
  uint32_t cp = ActualCodePage(codePage);
  if (!bytes || byteCount == 0 || byteCount < -1 || capacity < 0 || (capacity > 0 && !wide))
    return 0;
  if (!ValidByteFlags(cp, flags)) return 0;
  size_t count = byteCount == -1 ? std::strlen(bytes) + 1 : static_cast<size_t>(byteCount);
  std::u16string result;
  if (!Decode(cp, std::string_view(bytes, count), flags & MB_ERR_INVALID_CHARS, result)) return 0;
  if ((flags & MB_USEGLYPHCHARS) && IsDosCodePage(cp)) UseGlyphs(result);
  if ((flags & MB_COMPOSITE) && !Decompose(result)) return 0;
  return Deliver(result, wide, capacity);
}

int32_t WideCharToMultiByte(uint32_t codePage, uint32_t flags, const char16_t *wide,
                            int32_t unitCount, char *bytes, int32_t capacity,
                            const char *defaultChar, bool *usedDefaultChar) {
  uint32_t cp = ActualCodePage(codePage);
  if (!wide || unitCount == 0 || unitCount < -1 || capacity < 0 || (capacity > 0 && !bytes))
    return 0;
  bool unicodeForm = IsUnicodeForm(cp);
  uint32_t allowed =
      unicodeForm ? (cp == CP_UTF8 ? WC_ERR_INVALID_CHARS : 0) : WC_NO_BEST_FIT_CHARS;
  if (flags & ~allowed) return 0;
  if (unicodeForm && (defaultChar || usedDefaultChar)) return 0;
  size_t count = unitCount == -1 ? std::char_traits<char16_t>::length(wide) + 1
                                 : static_cast<size_t>(unitCount);
  std::string result;
  bool usedDefault = false;
  if (!Encode(cp, std::u16string_view(wide, count), defaultChar, flags & WC_ERR_INVALID_CHARS,
              !(flags & WC_NO_BEST_FIT_CHARS), result, usedDefault))
    return 0;
  if (usedDefaultChar) *usedDefaultChar = usedDefault;
  return Deliver(result, bytes, capacity);
}

namespace nls {

std::string ToSystemBytes(std::u16string_view text) {
  std::string out;
  bool used = false;
  Encode(GetACP(), text, nullptr, false, true, out, used);
  return out;
}

bool DecodeBytes(uint32_t codePage, std::string_view bytes, std::u16string &out) {
  return Decode(ActualCodePage(codePage), bytes, false, out);
}

std::string CanonicalConverterName(uint32_t codePage) {
  Converter *c = ConverterFor(codePage);
  if (!c) return "";
  UErrorCode err = U_ZERO_ERROR;
  const char *name = ucnv_getName(c->conv, &err);
  return U_SUCCESS(err) && name ? name : "";
}

bool EncodeText(uint32_t codePage, std::u16string_view text, std::string &out) {
  bool used = false;
  return Encode(ActualCodePage(codePage), text, nullptr, false, true, out, used);
}

} // namespace nls
} // namespace kestrel
