#include <kestrel/search/MarkFreeText.h>

#include <algorithm>

#include <kestrel/search/SearchEngine.h>
#include <kestrel/unicode/CharDatabase.h>
#include <kestrel/unicode/Decomposition.h>

namespace kestrel {
namespace {

void AppendCode(std::u16string &out, UCS4 c) {
  if (c < 0x10000) {
    out += char16_t(c);
  } else {
    c -= 0x10000;
    out += char16_t(0xD800 + (c >> 10));
    out += char16_t(0xDC00 + (c & 0x3FF));
  }
}

// Walks the characters of Text (a pair counting one) and hands each kept
// piece of their decomposition to Keep with the character's offset and
// length.
template <typename KeepFn> void Strip(std::u16string_view text, KeepFn &&Keep) {
  for (size_t i = 0; i < text.size();) {
    UCS4 c = text[i];
    uint32_t units = 1;
    if (IsHighSurrogateUnit(c) && i + 1 < text.size() && IsLowSurrogateUnit(text[i + 1])) {
      c = CombineSurrogates(c, text[i + 1]);
      units = 2;
    }
    if (c >= SBase && c < SBase + SCount)
      Keep(c, uint32_t(i), units);
    else
      for (UCS4 d : UnicodeDecompose(c))
        if (!UnicodeIsNonSpacing(d)) Keep(d, uint32_t(i), units);
    i += units;
  }
}

} // namespace

std::u16string WithoutMarks(std::u16string_view Text) {
  std::u16string out;
  Strip(Text, [&](UCS4 d, uint32_t, uint32_t) { AppendCode(out, d); });
  return out;
}

TMarkFreeText::TMarkFreeText(std::u16string_view Original)
    : FOriginalLength(uint32_t(Original.size())) {
  FText.reserve(Original.size());
  Strip(Original, [&](UCS4 d, uint32_t at, uint32_t units) {
    const size_t before = FText.size();
    AppendCode(FText, d);
    for (size_t k = before; k < FText.size(); ++k) {
      FFrom.push_back(at);
      FUntil.push_back(at + units);
    }
  });
  // A character left with no unit (a mark) belongs to the one before it.
  for (size_t k = FUntil.size(); k-- > 0;) {
    const uint32_t next = k + 1 < FFrom.size() ? FFrom[k + 1] : FOriginalLength;
    if (FFrom[k] != next) FUntil[k] = std::max(FUntil[k], next);
  }
}

void TMarkFreeText::ToOriginal(uint32_t Start, uint32_t Stop, uint32_t &OriginalStart,
                               uint32_t &OriginalStop) const {
  OriginalStart = Start < FFrom.size() ? FFrom[Start] : FOriginalLength;
  OriginalStop = Stop > Start && Stop - 1 < FUntil.size() ? FUntil[Stop - 1] : OriginalStart;
}

} // namespace kestrel
