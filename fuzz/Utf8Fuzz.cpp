// UTF-8: any bytes decode without reading past them; any UTF-16 text goes
// to UTF-8 and back unchanged, and decoding what was encoded is stable.
#include "FuzzSupport.h"

using namespace kestrel;
using namespace kestrel::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string bytes(reinterpret_cast<const char *>(data), size);
  // Exactly the input: a copy of its own, so a read past it is seen.
  const std::u16string decoded = UTF8ToWideString(bytes);
  if (decoded.size() > bytes.size()) Finding("more units than bytes");
  const std::string again = WideStringToUTF8(decoded);
  if (UTF8ToWideString(again) != decoded) Finding("decoded text does not survive a round trip");

  const std::u16string wide = Units(bytes);
  const std::string utf8 = WideStringToUTF8(wide);
  if (utf8.size() > wide.size() * 3) Finding("more than three bytes a unit");
  if (UTF8ToWideString(utf8) != wide) Finding("UTF-16 to UTF-8 and back changed the text");
  return 0;
}
