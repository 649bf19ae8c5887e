// The unit's start-up and finalisation.
#include <kestrel/frame/Units.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {
namespace {

void StartUnicode() {
  CRLF = u"\r\n";
  ChooseWideCompareText();
}

void StopUnicode() {
  FreeCharacterDatabase();
  CRLF.clear();
}

} // namespace
} // namespace kestrel

KESTREL_DEFINE_UNIT(Unicode, ::kestrel::StartUnicode, ::kestrel::StopUnicode)
