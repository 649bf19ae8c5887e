// Text without its accents, for searches that ignore them: every character
// is canonically decomposed and the non-spacing marks are dropped, so that a
// precomposed letter and its bare form meet ("české" reads "ceske"). The
// offsets found in such a text lead back to the original.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

// Decomposes and drops the non-spacing marks (category Mn); Hangul
// syllables stay whole.
std::u16string WithoutMarks(std::u16string_view Text);

class TMarkFreeText {
public:
  explicit TMarkFreeText(std::u16string_view Original);
  const std::u16string &Text() const { return FText; }
  // The stretch of the original that the units [Start, Stop) of Text() come
  // from: from the start of the character of the first unit to the end of
  // the character of the last, with the marks that follow it there. An
  // empty stretch stays empty.
  void ToOriginal(uint32_t Start, uint32_t Stop, uint32_t &OriginalStart,
                  uint32_t &OriginalStop) const;

private:
  std::u16string FText;
  std::vector<uint32_t> FFrom;  // per unit: where its character starts in the original
  std::vector<uint32_t> FUntil; // per unit: where its character and its marks end there
  uint32_t FOriginalLength = 0;
};

} // namespace kestrel
