// Code pages: for any bytes and any UTF-16 text, the size a conversion
// announces (capacity 0) is the size it then writes, a buffer one short is
// (capacity 0 asks for the size) refused without being overrun, and what a single-byte page reads
// back from its own output is stable.
#include "FuzzSupport.h"

#include <vector>

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

constexpr uint32_t kPages[] = {1252, 1250, 1251, 1253,  1255,  1256,  874,   437,   850,   932,
                               936,  949,  950,  20866, 28591, 28595, 65000, 65001, 54936, 42};

bool SingleByte(uint32_t page) {
  for (uint32_t p :
       {1252u, 1250u, 1251u, 1253u, 1255u, 1256u, 874u, 437u, 850u, 20866u, 28591u, 28595u})
    if (p == page) return true;
  return false;
}

void ToWide(uint32_t page, uint32_t flags, const std::string &bytes) {
  const int32_t n = static_cast<int32_t>(bytes.size());
  const int32_t need = MultiByteToWideChar(page, flags, bytes.data(), n, nullptr, 0);
  if (need < 0 || (n > 0 && need > 4 * n + 4)) Finding("MultiByteToWideChar announced a bad size");
  if (need == 0) return;
  std::vector<char16_t> exact(static_cast<size_t>(need));
  if (MultiByteToWideChar(page, flags, bytes.data(), n, exact.data(), need) != need)
    Finding("MultiByteToWideChar wrote another size than it announced");
  std::vector<char16_t> shorter(static_cast<size_t>(need));
  if (need > 1 && MultiByteToWideChar(page, flags, bytes.data(), n, shorter.data(), need - 1) != 0)
    Finding("MultiByteToWideChar filled a buffer too small");
}

void ToBytes(uint32_t page, const std::u16string &wide) {
  const int32_t n = static_cast<int32_t>(wide.size());
  const int32_t need = WideCharToMultiByte(page, 0, wide.data(), n, nullptr, 0, nullptr, nullptr);
  if (need < 0 || (n > 0 && need > 8 * n + 8)) Finding("WideCharToMultiByte announced a bad size");
  if (need == 0) return;
  std::string exact(static_cast<size_t>(need), '\0');
  if (WideCharToMultiByte(page, 0, wide.data(), n, exact.data(), need, nullptr, nullptr) != need)
    Finding("WideCharToMultiByte wrote another size than it announced");
  std::string shorter(static_cast<size_t>(need), '\0');
  if (need > 1 &&
      WideCharToMultiByte(page, 0, wide.data(), n, shorter.data(), need - 1, nullptr, nullptr) != 0)
    Finding("WideCharToMultiByte filled a buffer too small");
  const std::u16string back = CodePageToWideString(exact, static_cast<uint16_t>(page));
  if (SingleByte(page) && back.size() != exact.size())
    Finding("a single-byte page gave another count of units than bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in(data, size);
  const uint8_t choice = in.Byte();
  const uint32_t page = kPages[choice % std::size(kPages)];
  const uint32_t flags = (choice & 0x80) ? MB_ERR_INVALID_CHARS : 0;
  const std::string bytes = in.Rest();
  ToWide(page, flags, bytes);
  ToBytes(page, Units(bytes));
  return 0;
}
