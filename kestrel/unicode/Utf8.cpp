// UTF-8 to and from wide strings, unit by unit and without validation.
#include <kestrel/unicode/Utf8.h>

#include <cstring>

namespace kestrel {
namespace {

// Continuation bytes that follow each lead byte.
constexpr uint8_t ContinuationBytes(uint8_t lead) {
  return lead < 0xC0   ? 0
         : lead < 0xE0 ? 1
         : lead < 0xF0 ? 2
         : lead < 0xF8 ? 3
         : lead < 0xFC ? 4
                       : 5;
}

struct ContinuationTable {
  uint8_t count[256];
  constexpr ContinuationTable() : count() {
    for (int b = 0; b < 256; ++b)
      count[b] = ContinuationBytes(static_cast<uint8_t>(b));
  }
};
constexpr ContinuationTable kContinuation;

// What the sum of a sequence's bytes, shifted by 6 between them, holds beyond
// the code: the lead byte's marks and 0x80 for each continuation byte.
constexpr uint32_t kOffsetsFromUTF8[6] = {0x00000000, 0x00003080, 0x000E2080,
                                          0x03C82080, 0xFA082080, 0x82082080};

constexpr uint64_t kHighBits = 0x8080808080808080ull;

// Copies a run of ASCII bytes 8 at a time; returns the bytes copied.
size_t WidenAscii(const uint8_t *src, size_t count, char16_t *dst) {
  size_t i = 0;
  for (; i + 8 <= count; i += 8) {
    uint64_t block;
    std::memcpy(&block, src + i, 8);
    if (block & kHighBits) break;
    for (size_t k = 0; k < 8; ++k)
      dst[i + k] = src[i + k];
  }
  return i;
}

size_t NarrowAscii(const char16_t *src, size_t count, char *dst) {
  size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    uint64_t block;
    std::memcpy(&block, src + i, 8);
    if (block & 0xFF80FF80FF80FF80ull) break;
    for (size_t k = 0; k < 4; ++k)
      dst[i + k] = static_cast<char>(src[i + k]);
  }
  return i;
}

} // namespace

std::u16string UTF8ToWideString(std::string_view S) {
  if (S.empty()) return {};
  // No sequence gives more units than it has bytes, so this is the worst case.
  std::u16string result(S.size(), u'\0');
  const auto *src = reinterpret_cast<const uint8_t *>(S.data());
  const size_t size = S.size();
  char16_t *dst = result.data();
  size_t i = 0, o = 0;
  while (i < size) {
    uint8_t lead = src[i];
    if (lead < 0x80) {
      size_t run = WidenAscii(src + i, size - i, dst + o);
      if (run == 0) {
        dst[o++] = lead;
        ++i;
      } else {
        i += run;
        o += run;
      }
      continue;
    }
    unsigned n = kContinuation.count[lead];
    // The common forms first: the same sum written out, kept when it gives a
    // single unit; anything else takes the general way below.
    if (n == 1 && i + 1 < size) {
      uint32_t c = (uint32_t(lead) << 6) + src[i + 1] - kOffsetsFromUTF8[1];
      if (c <= MaximumUCS2) {
        dst[o++] = static_cast<char16_t>(c);
        i += 2;
        continue;
      }
    } else if (n == 2 && i + 2 < size) {
      uint32_t c = (((uint32_t(lead) << 6) + src[i + 1]) << 6) + src[i + 2] - kOffsetsFromUTF8[2];
      if (c <= MaximumUCS2) {
        dst[o++] = static_cast<char16_t>(c);
        i += 3;
        continue;
      }
    }
    if (n >= size - i) {
      // The end of the text cuts the sequence off: one replacement for it.
      dst[o++] = static_cast<char16_t>(ReplacementCharacter);
      break;
    }
    uint32_t c = 0;
    for (unsigned k = 0; k < n; ++k)
      c = (c + src[i + k]) << 6;
    c += src[i + n];
    c -= kOffsetsFromUTF8[n];
    i += n + 1;
    if (c <= MaximumUCS2) {
      dst[o++] = static_cast<char16_t>(c);
    } else if (c > MaximumUTF16) {
      dst[o++] = static_cast<char16_t>(ReplacementCharacter);
    } else {
      c -= 0x10000;
      dst[o++] = static_cast<char16_t>((c >> 10) + SurrogateHighStart);
      dst[o++] = static_cast<char16_t>((c & 0x3FF) + SurrogateLowStart);
    }
  }
  result.resize(o);
  return result;
}

std::string WideStringToUTF8(std::u16string_view S) {
  if (S.empty()) return {};
  // Three bytes is the longest form a single unit takes.
  std::string result(S.size() * 3, '\0');
  char *dst = result.data();
  const char16_t *src = S.data();
  const size_t size = S.size();
  size_t i = 0, o = 0;
  while (i < size) {
    uint32_t c = src[i];
    if (c < 0x80) {
      size_t run = NarrowAscii(src + i, size - i, dst + o);
      if (run == 0) {
        dst[o++] = static_cast<char>(c);
        ++i;
      } else {
        i += run;
        o += run;
      }
      continue;
    }
    // A run of units beyond ASCII, as in most words of other scripts.
    do {
      if (c < 0x800) {
        dst[o + 1] = static_cast<char>(0x80 | (c & 0x3F));
        dst[o] = static_cast<char>(0xC0 | (c >> 6));
        o += 2;
      } else {
        dst[o + 2] = static_cast<char>(0x80 | (c & 0x3F));
        dst[o + 1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        dst[o] = static_cast<char>(0xE0 | (c >> 12));
        o += 3;
      }
    } while (++i < size && (c = src[i]) >= 0x80);
  }
  result.resize(o);
  return result;
}

} // namespace kestrel
