// The Unicode blocks of the 16-bit range that the library names by number.
#include <kestrel/unicode/CodeBlocks.h>

#include <algorithm>
#include <iterator>

namespace kestrel {
namespace {

struct CodeBlock {
  char16_t first, last;
  const char *name;
};

// Ascending and not overlapping; a block's number is its row. Units between
// the rows stand in no block.
constexpr CodeBlock kCodeBlocks[] = {
    {0x0000, 0x007F, "Basic Latin"},                     // 0
    {0x0080, 0x00FF, "Latin-1 Supplement"},              // 1
    {0x0100, 0x017F, "Latin Extended-A"},                // 2
    {0x0180, 0x024F, "Latin Extended-B"},                // 3
    {0x0250, 0x02AF, "IPA Extensions"},                  // 4
    {0x02B0, 0x02FF, "Spacing Modifier Letters"},        // 5
    {0x0300, 0x036F, "Combining Diacritical Marks"},     // 6
    {0x0370, 0x03FF, "Greek"},                           // 7
    {0x0400, 0x04FF, "Cyrillic"},                        // 8
    {0x0530, 0x058F, "Armenian"},                        // 9
    {0x0590, 0x05FF, "Hebrew"},                          // 10
    {0x0600, 0x06FF, "Arabic"},                          // 11
    {0x0900, 0x097F, "Devanagari"},                      // 12
    {0x0980, 0x09FF, "Bengali"},                         // 13
    {0x0A00, 0x0A7F, "Gurmukhi"},                        // 14
    {0x0A80, 0x0AFF, "Gujarati"},                        // 15
    {0x0B00, 0x0B7F, "Oriya"},                           // 16
    {0x0B80, 0x0BFF, "Tamil"},                           // 17
    {0x0C00, 0x0C7F, "Telugu"},                          // 18
    {0x0C80, 0x0CFF, "Kannada"},                         // 19
    {0x0D00, 0x0D7F, "Malayalam"},                       // 20
    {0x0E00, 0x0E7F, "Thai"},                            // 21
    {0x0E80, 0x0EFF, "Lao"},                             // 22
    {0x0F00, 0x0FBF, "Tibetan"},                         // 23
    {0x10A0, 0x10FF, "Georgian"},                        // 24
    {0x1100, 0x11FF, "Hangul Jamo"},                     // 25
    {0x1E00, 0x1EFF, "Latin Extended Additional"},       // 26
    {0x1F00, 0x1FFF, "Greek Extended"},                  // 27
    {0x2000, 0x206F, "General Punctuation"},             // 28
    {0x2070, 0x209F, "Superscripts and Subscripts"},     // 29
    {0x20A0, 0x20CF, "Currency Symbols"},                // 30
    {0x20D0, 0x20FF, "Combining Marks for Symbols"},     // 31
    {0x2100, 0x214F, "Letterlike Symbols"},              // 32
    {0x2150, 0x218F, "Number Forms"},                    // 33
    {0x2190, 0x21FF, "Arrows"},                          // 34
    {0x2200, 0x22FF, "Mathematical Operators"},          // 35
    {0x2300, 0x23FF, "Miscellaneous Technical"},         // 36
    {0x2400, 0x243F, "Control Pictures"},                // 37
    {0x2440, 0x245F, "Optical Character Recognition"},   // 38
    {0x2460, 0x24FF, "Enclosed Alphanumerics"},          // 39
    {0x2500, 0x257F, "Box Drawing"},                     // 40
    {0x2580, 0x259F, "Block Elements"},                  // 41
    {0x25A0, 0x25FF, "Geometric Shapes"},                // 42
    {0x2600, 0x26FF, "Miscellaneous Symbols"},           // 43
    {0x2700, 0x27BF, "Dingbats"},                        // 44
    {0x3000, 0x303F, "CJK Symbols and Punctuation"},     // 45
    {0x3040, 0x309F, "Hiragana"},                        // 46
    {0x30A0, 0x30FF, "Katakana"},                        // 47
    {0x3100, 0x312F, "Bopomofo"},                        // 48
    {0x3130, 0x318F, "Hangul Compatibility Jamo"},       // 49
    {0x3190, 0x319F, "Kanbun"},                          // 50
    {0x3200, 0x32FF, "Enclosed CJK Letters and Months"}, // 51
    {0x3300, 0x33FF, "CJK Compatibility"},               // 52
    {0x4E00, 0x9FFF, "CJK Unified Ideographs"},          // 53
    {0xAC00, 0xD7A3, "Hangul Syllables"},                // 54
    {0xD800, 0xDB7F, "High Surrogates"},                 // 55
    {0xDB80, 0xDBFF, "High Private Use Surrogates"},     // 56
    {0xDC00, 0xDFFF, "Low Surrogates"},                  // 57
    {0xE000, 0xF8FF, "Private Use"},                     // 58
    {0xF900, 0xFAFF, "CJK Compatibility Ideographs"},    // 59
    {0xFB00, 0xFB4F, "Alphabetic Presentation Forms"},   // 60
    {0xFB50, 0xFDFF, "Arabic Presentation Forms-A"},     // 61
    {0xFE20, 0xFE2F, "Combining Half Marks"},            // 62
    {0xFE30, 0xFE4F, "CJK Compatibility Forms"},         // 63
    {0xFE50, 0xFE6F, "Small Form Variants"},             // 64
    {0xFE70, 0xFEFF, "Arabic Presentation Forms-B"},     // 65
    {0xFF00, 0xFFEF, "Halfwidth and Fullwidth Forms"},   // 66
};
static_assert(std::size(kCodeBlocks) == NoCodeBlock);

} // namespace

uint32_t CodeBlockFromChar(char16_t C) {
  // The first block that ends at or after C holds C if it starts at or before it.
  const CodeBlock *end = std::end(kCodeBlocks);
  const CodeBlock *b =
      std::lower_bound(std::begin(kCodeBlocks), end, C,
                       [](const CodeBlock &row, char16_t c) { return row.last < c; });
  if (b == end || C < b->first) return NoCodeBlock;
  return static_cast<uint32_t>(b - std::begin(kCodeBlocks));
}

const char *CodeBlockName(uint32_t Block) {
  return Block < NoCodeBlock ? kCodeBlocks[Block].name : "";
}

} // namespace kestrel
