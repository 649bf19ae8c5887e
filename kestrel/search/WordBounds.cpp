#include <kestrel/search/WordBounds.h>

#include <kestrel/search/SearchEngine.h>
#include <kestrel/unicode/CharDatabase.h>
#include <kestrel/unicode/CharTables.h>

namespace kestrel {
namespace {

constexpr uint32_t Bit(int index) {
  return uint32_t(1) << index;
}

constexpr uint32_t WordMask = Bit(upLu) | Bit(upLl) | Bit(upLt) | Bit(upLm) | Bit(upLo) |
                              Bit(upNd) | Bit(upMn) | Bit(upMc) | Bit(upMe) | Bit(upPc);

} // namespace

bool IsWordCharacter(UCS4 C) {
  return UnicodeTestProperties(C, WordMask, 0);
}

bool IsWholeWord(const char16_t *Text, uint32_t TextLen, uint32_t Start, uint32_t Stop) {
  if (Start > 0 && Start <= TextLen) {
    UCS4 before = Text[Start - 1];
    if (IsLowSurrogateUnit(before) && Start >= 2 && IsHighSurrogateUnit(Text[Start - 2]))
      before = CombineSurrogates(Text[Start - 2], before);
    if (IsWordCharacter(before)) return false;
  }
  if (Stop < TextLen) {
    UCS4 after = Text[Stop];
    if (IsHighSurrogateUnit(after) && Stop + 1 < TextLen && IsLowSurrogateUnit(Text[Stop + 1]))
      after = CombineSurrogates(after, Text[Stop + 1]);
    if (IsWordCharacter(after)) return false;
  }
  return true;
}

} // namespace kestrel
