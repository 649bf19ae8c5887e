// UTF-8 to and from wide strings, unit by unit and without validation.
#include <kestrel/frame/platform/Processor.h>
#include <kestrel/unicode/Utf8.h>
#include <kestrel/unicode/Utf8Paths.h>

#include <algorithm>
#include <array>
#include <map>
#include <vector>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define KESTREL_UTF8_X86 1
#endif

namespace kestrel {
namespace {

// ---- The rules, one sequence or unit at a time ----------------------------

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

// Decodes the sequences that start before stop (stop <= size) and gives
// where the next one starts. A sequence that the end of the text cuts off
// gives one ReplacementCharacter and ends the text: size comes back.
size_t DecodeSequences(const uint8_t *src, size_t i, size_t stop, size_t size, char16_t *dst,
                       size_t &o) {
  while (i < stop) {
    const uint8_t lead = src[i];
    if (lead < 0x80) {
      dst[o++] = lead;
      ++i;
      continue;
    }
    const unsigned n = kContinuation.count[lead];
    if (n >= size - i) {
      dst[o++] = static_cast<char16_t>(ReplacementCharacter);
      return size;
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
  return i;
}

// Encodes units from..stop, each by itself, in 1 to 3 bytes.
void EncodeUnits(const char16_t *src, size_t i, size_t stop, char *dst, size_t &o) {
  for (; i < stop; ++i) {
    const uint32_t c = src[i];
    if (c < 0x80) {
      dst[o++] = static_cast<char>(c);
    } else if (c < 0x800) {
      dst[o] = static_cast<char>(0xC0 | (c >> 6));
      dst[o + 1] = static_cast<char>(0x80 | (c & 0x3F));
      o += 2;
    } else {
      dst[o] = static_cast<char>(0xE0 | (c >> 12));
      dst[o + 1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      dst[o + 2] = static_cast<char>(0x80 | (c & 0x3F));
      o += 3;
    }
  }
}

// Each way decodes the sequences that start from i to stop, reading up to
// size, and gives where the next one starts; each encodes the units from i
// to stop at least and gives where it stopped.
size_t DecodeScalar(const uint8_t *src, size_t i, size_t stop, size_t size, char16_t *dst,
                    size_t &o) {
  return DecodeSequences(src, i, stop, size, dst, o);
}

size_t EncodeScalar(const char16_t *src, size_t i, size_t stop, char *dst, size_t &o) {
  EncodeUnits(src, i, stop, dst, o);
  return stop;
}

#if KESTREL_UTF8_X86

// ---- SSE2: runs of ASCII ------------------------------------------------

// Decodes one sequence and the sequences beyond ASCII right after it that
// start before stop: the run of a word in another script.
size_t DecodeRunBeyondAscii(const uint8_t *src, size_t i, size_t stop, size_t size, char16_t *dst,
                            size_t &o) {
  do
    i = DecodeSequences(src, i, i + 1, size, dst, o);
  while (i < stop && src[i] >= 0x80);
  return i;
}

// Each round widens 16 bytes; as many units count as the bytes before the
// first one beyond ASCII, which the rules take with the rest of its run.
size_t DecodeSse2(const uint8_t *src, size_t i, size_t stop, size_t size, char16_t *dst,
                  size_t &o) {
  const __m128i zero = _mm_setzero_si128();
  while (i < stop && size - i >= 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + i));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + o), _mm_unpacklo_epi8(v, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + o + 8), _mm_unpackhi_epi8(v, zero));
    const unsigned high = unsigned(_mm_movemask_epi8(v));
    const size_t run = high ? size_t(__builtin_ctz(high)) : 16;
    i += run;
    o += run;
    if (high) i = DecodeRunBeyondAscii(src, i, stop, size, dst, o);
  }
  return DecodeSequences(src, i, stop, size, dst, o);
}

// 16 units at a time while all are below 0x80.
size_t EncodeSse2(const char16_t *src, size_t i, size_t stop, char *dst, size_t &o) {
  const __m128i beyond = _mm_set1_epi16(short(0xFF80));
  while (stop - i >= 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + i + 8));
    const __m128i high = _mm_and_si128(_mm_or_si128(a, b), beyond);
    if (_mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF) {
      _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + o), _mm_packus_epi16(a, b));
      i += 16;
      o += 16;
      continue;
    }
    // Up to the next unit beyond ASCII, and the units beyond it after it.
    size_t next = i;
    while (next < i + 16 && src[next] < 0x80)
      ++next;
    while (next < stop && src[next] >= 0x80)
      ++next;
    EncodeUnits(src, i, next, dst, o);
    i = next;
  }
  EncodeUnits(src, i, stop, dst, o);
  return stop;
}

// ---- AVX2: runs of ASCII and of one- to three-byte forms ------------------

// A window holds the forms that lie wholly within its first 12 bytes, up to 8
// of them, given by where they start. Entry[starts of bytes 1 to 12] names a
// shuffle that puts each form's last byte in the low half of a 16-bit lane
// and the byte before it (lead or middle byte) in the high half, with how
// many units and bytes the window takes.
struct WindowTable {
  struct Entry {
    uint16_t Shuffle; // index into Shuffles
    uint8_t Units, Bytes;
  };
  std::array<Entry, 4096> Entries;
  std::vector<std::array<uint8_t, 16>> Shuffles;

  WindowTable() {
    std::map<std::vector<int>, uint16_t> known;
    for (unsigned index = 0; index < 4096; ++index) {
      std::vector<int> lengths;
      int start = 0;
      for (int next = 1; next <= 12 && lengths.size() < 8; ++next) {
        if (!((index >> (next - 1)) & 1)) continue;
        if (next - start > 3) break;
        lengths.push_back(next - start);
        start = next;
      }
      auto [it, added] = known.emplace(lengths, uint16_t(Shuffles.size()));
      if (added) Shuffles.push_back(ShuffleOf(lengths));
      Entries[index] = {it->second, uint8_t(lengths.size()), uint8_t(start)};
    }
  }

  static std::array<uint8_t, 16> ShuffleOf(const std::vector<int> &lengths) {
    std::array<uint8_t, 16> s;
    s.fill(0x80); // a byte of 0
    int at = 0;
    for (size_t lane = 0; lane < lengths.size(); ++lane) {
      const int last = at + lengths[lane] - 1;
      s[2 * lane] = uint8_t(last);
      if (lengths[lane] > 1) s[2 * lane + 1] = uint8_t(last - 1);
      at += lengths[lane];
    }
    return s;
  }
};

const WindowTable &Windows() {
  static const WindowTable table;
  return table;
}

// Four units in 32-bit lanes, each as its bytes in order; Entry[bit i: unit i
// takes 2 or more bytes; bit 4 + i: it takes 3] gathers them side by side.
struct EncodeTable {
  struct alignas(16) Entry {
    uint8_t Shuffle[16];
  };
  std::array<Entry, 256> Entries;
  std::array<uint8_t, 256> Bytes;

  EncodeTable() {
    for (unsigned index = 0; index < 256; ++index) {
      Entry e;
      std::fill(std::begin(e.Shuffle), std::end(e.Shuffle), uint8_t(0x80));
      int at = 0;
      for (int lane = 0; lane < 4; ++lane) {
        const int length = 1 + int((index >> lane) & 1) + int((index >> (4 + lane)) & 1);
        for (int k = 0; k < length; ++k)
          e.Shuffle[at++] = uint8_t(4 * lane + k);
      }
      Entries[index] = e;
      Bytes[index] = uint8_t(at);
    }
  }
};

const EncodeTable &Encodings() {
  static const EncodeTable table;
  return table;
}

#define KESTREL_AVX2 __attribute__((target("avx2,bmi,popcnt")))

// Widens 16 bytes to 16 units.
KESTREL_AVX2 inline void Widen16(const uint8_t *src, char16_t *dst) {
  const __m256i v = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i *>(src)));
  _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst), v);
}

// The units of one window of well-formed forms: each byte cut to its
// payload (the bits a form gives its code), then per lane the last byte,
// the byte before it shifted by 6, and a three-byte lead's 4 bits by 12.
KESTREL_AVX2 inline __m128i DecodeWindow(const uint8_t *src, __m128i shuffle) {
  const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src));
  const __m128i payloadMasks = _mm_setr_epi8(0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x3F,
                                             0x3F, 0x3F, 0x3F, 0x1F, 0x1F, 0x0F, 0x07);
  const __m128i nibble = _mm_and_si128(_mm_srli_epi16(v, 4), _mm_set1_epi8(0x0F));
  const __m128i payload = _mm_and_si128(v, _mm_shuffle_epi8(payloadMasks, nibble));
  // The low 4 bits of the three-byte leads, 0 for every other byte.
  const __m128i isLead3 = _mm_cmpeq_epi8(_mm_max_epu8(v, _mm_set1_epi8(char(0xE0))), v);
  const __m128i lead3 = _mm_and_si128(isLead3, _mm_and_si128(v, _mm_set1_epi8(0x0F)));
  // The lead of a three-byte form stands before the byte in the high half;
  // for any other form that byte is no three-byte lead, or before the window.
  const __m128i before = _mm_or_si128(
      _mm_sub_epi16(shuffle, _mm_set1_epi16(0x0100)),
      _mm_or_si128(_mm_and_si128(shuffle, _mm_set1_epi16(short(0x8000))), _mm_set1_epi16(0x0080)));
  const __m128i x = _mm_shuffle_epi8(payload, shuffle);
  const __m128i y = _mm_shuffle_epi8(lead3, before);
  return _mm_or_si128(_mm_or_si128(_mm_and_si128(x, _mm_set1_epi16(0x7F)),
                                   _mm_and_si128(_mm_srli_epi16(x, 2), _mm_set1_epi16(0x0FC0))),
                      _mm_and_si128(_mm_slli_epi16(y, 4), _mm_set1_epi16(short(0xF000))));
}

// One bit per byte of 64: bytes whose top bits are Top (under Mask).
KESTREL_AVX2 inline uint64_t BitsOf(__m256i a, __m256i b, char mask, char top) {
  const __m256i m = _mm256_set1_epi8(mask), t = _mm256_set1_epi8(top);
  const uint32_t lo = uint32_t(_mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_and_si256(a, m), t)));
  const uint32_t hi = uint32_t(_mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_and_si256(b, m), t)));
  return uint64_t(lo) | uint64_t(hi) << 32;
}

// Blocks of 64 bytes. A block of ASCII is widened whole. Otherwise its
// well-formed prefix (each lead byte followed by exactly its continuation
// bytes, no byte from 0xF0 on) is converted window by window up to the start
// of its last whole form; the rules take over where the prefix is empty.
KESTREL_AVX2 size_t DecodeAvx2(const uint8_t *src, size_t i, size_t stop, size_t size,
                               char16_t *dst, size_t &o) {
  const WindowTable &table = Windows();
  while (i < stop && size - i >= 80) { // a block and the 16 bytes a last window may read
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src + i));
    const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src + i + 32));
    const uint64_t beyond = uint64_t(uint32_t(_mm256_movemask_epi8(a))) |
                            uint64_t(uint32_t(_mm256_movemask_epi8(b))) << 32;
    if (beyond == 0) {
      for (size_t k = 0; k < 64; k += 16)
        Widen16(src + i + k, dst + o + k);
      i += 64;
      o += 64;
      continue;
    }
    const uint64_t cont = BitsOf(a, b, char(0xC0), char(0x80));
    const uint64_t lead2 = BitsOf(a, b, char(0xE0), char(0xC0));
    const uint64_t lead3 = BitsOf(a, b, char(0xF0), char(0xE0));
    const uint64_t lead4 = BitsOf(a, b, char(0xF0), char(0xF0));
    const uint64_t wanted = (lead2 | lead3) << 1 | lead3 << 2;
    const uint64_t bad = (cont ^ wanted) | lead4;
    const unsigned e = bad ? unsigned(__builtin_ctzll(bad)) : 64;
    const uint64_t starts = ~cont;
    // The forms wholly before e end at a start before e; one ends at e too
    // when e starts a form (a stray continuation byte at e does not).
    uint64_t ends = starts & ~uint64_t(1) & (e == 64 ? ~uint64_t(0) : (uint64_t(1) << e) - 1);
    if (e > 0 && e < 64 && ((starts & ~wanted) >> e & 1)) ends |= uint64_t(1) << e;
    if (ends == 0) {
      i = DecodeRunBeyondAscii(src, i, stop, size, dst, o);
      continue;
    }
    const unsigned last = 63 - unsigned(__builtin_clzll(ends));
    const uint64_t marks = starts & (last == 63 ? ~uint64_t(0) : (uint64_t(2) << last) - 1);
    unsigned off = 0;
    while (off < last) {
      // ASCII is whole and well-formed wherever it stands in the block, past
      // the last form too: 16 bytes of it at once.
      if (off <= 48 && ((beyond >> off) & 0xFFFF) == 0) {
        Widen16(src + i + off, dst + o);
        off += 16;
        o += 16;
        continue;
      }
      const WindowTable::Entry entry = table.Entries[(marks >> (off + 1)) & 0xFFF];
      const __m128i shuffle =
          _mm_loadu_si128(reinterpret_cast<const __m128i *>(table.Shuffles[entry.Shuffle].data()));
      _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + o), DecodeWindow(src + i + off, shuffle));
      off += entry.Bytes;
      o += entry.Units;
    }
    i += off;
  }
  return DecodeSse2(src, i, stop, size, dst, o);
}

// Four units as their bytes: one for a unit below 0x80, two below 0x800,
// three for the rest, each in its 32-bit lane, then side by side.
KESTREL_AVX2 inline size_t EncodeFour(__m128i units, const EncodeTable &table, char *dst) {
  const __m128i u = _mm_cvtepu16_epi32(units);
  const __m128i two = _mm_cmpgt_epi32(u, _mm_set1_epi32(0x7F));
  const __m128i three = _mm_cmpgt_epi32(u, _mm_set1_epi32(0x7FF));
  const __m128i low6 = _mm_set1_epi32(0x3F), mark = _mm_set1_epi32(0x80);
  const __m128i last = _mm_or_si128(mark, _mm_and_si128(u, low6));
  const __m128i middle = _mm_or_si128(mark, _mm_and_si128(_mm_srli_epi32(u, 6), low6));
  const __m128i asTwo = _mm_or_si128(_mm_or_si128(_mm_set1_epi32(0xC0), _mm_srli_epi32(u, 6)),
                                     _mm_slli_epi32(last, 8));
  const __m128i asThree =
      _mm_or_si128(_mm_or_si128(_mm_set1_epi32(0xE0), _mm_srli_epi32(u, 12)),
                   _mm_or_si128(_mm_slli_epi32(middle, 8), _mm_slli_epi32(last, 16)));
  const __m128i lanes = _mm_blendv_epi8(_mm_blendv_epi8(u, asTwo, two), asThree, three);
  const unsigned index = unsigned(_mm_movemask_ps(_mm_castsi128_ps(two))) |
                         unsigned(_mm_movemask_ps(_mm_castsi128_ps(three))) << 4;
  const __m128i shuffle =
      _mm_load_si128(reinterpret_cast<const __m128i *>(table.Entries[index].Shuffle));
  _mm_storeu_si128(reinterpret_cast<__m128i *>(dst), _mm_shuffle_epi8(lanes, shuffle));
  return table.Bytes[index];
}

// 16 units of ASCII at a time; otherwise four at a time, each by itself.
// The caller leaves 16 bytes of room past the worst case.
KESTREL_AVX2 size_t EncodeAvx2(const char16_t *src, size_t i, size_t stop, char *dst, size_t &o) {
  const EncodeTable &table = Encodings();
  const __m256i beyond = _mm256_set1_epi16(short(0xFF80));
  while (stop - i >= 16) {
    const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src + i));
    if (_mm256_testz_si256(v, beyond)) {
      const __m128i bytes =
          _mm_packus_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
      _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + o), bytes);
      i += 16;
      o += 16;
      continue;
    }
    for (size_t k = 0; k < 16; k += 4)
      o += EncodeFour(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(src + i + k)), table,
                      dst + o);
    i += 16;
  }
  EncodeUnits(src, i, stop, dst, o);
  return stop;
}

#endif // KESTREL_UTF8_X86

// Chosen while the library loads.
utf8::TPath BestPath() {
#if KESTREL_UTF8_X86
  return ProcessorRunsAvx2() ? utf8::TPath::Avx2 : utf8::TPath::Sse2;
#else
  return utf8::TPath::Scalar;
#endif
}

const utf8::TPath kBest = BestPath();

} // namespace

namespace utf8 {

namespace {

// Text goes through a buffer on the stack a piece at a time and is appended
// to the result, which is allocated once for the worst case: the result is
// written once, where sizing it first would also fill it with zeros.
constexpr size_t kPiece = 2048;
// Room past a piece: a decoding block may run 63 bytes on and write 16 units
// past its last, an encoding round 15 units on and 16 bytes past its last.
constexpr size_t kSlack = 128;

using TDecoder = size_t (*)(const uint8_t *, size_t, size_t, size_t, char16_t *, size_t &);
using TEncoder = size_t (*)(const char16_t *, size_t, size_t, char *, size_t &);

TDecoder DecoderFor(TPath path) {
#if KESTREL_UTF8_X86
  if (path == TPath::Avx2) return DecodeAvx2;
  if (path == TPath::Sse2) return DecodeSse2;
#endif
  return DecodeScalar;
}

TEncoder EncoderFor(TPath path) {
#if KESTREL_UTF8_X86
  if (path == TPath::Avx2) return EncodeAvx2;
  if (path == TPath::Sse2) return EncodeSse2;
#endif
  return EncodeScalar;
}

} // namespace

bool PathRuns(TPath Path) {
  return Path <= kBest;
}

std::u16string Decode(std::string_view S, TPath Path) {
  std::u16string result;
  if (S.empty() || !PathRuns(Path)) return result;
  // No sequence gives more units than it has bytes, so this is the worst case.
  result.reserve(S.size());
  const TDecoder decode = DecoderFor(Path);
  const auto *src = reinterpret_cast<const uint8_t *>(S.data());
  char16_t buffer[kPiece + kSlack];
  for (size_t i = 0; i < S.size();) {
    size_t units = 0;
    i = decode(src, i, std::min(S.size(), i + kPiece), S.size(), buffer, units);
    result.append(buffer, units);
  }
  return result;
}

std::string Encode(std::u16string_view S, TPath Path) {
  std::string result;
  if (S.empty() || !PathRuns(Path)) return result;
  // Three bytes is the longest form a single unit takes.
  result.reserve(S.size() * 3);
  const TEncoder encode = EncoderFor(Path);
  char buffer[3 * kPiece + kSlack];
  for (size_t i = 0; i < S.size();) {
    size_t bytes = 0;
    i = encode(S.data(), i, std::min(S.size(), i + kPiece), buffer, bytes);
    result.append(buffer, bytes);
  }
  return result;
}

} // namespace utf8

std::u16string UTF8ToWideString(std::string_view S) {
  return utf8::Decode(S, kBest);
}

std::string WideStringToUTF8(std::u16string_view S) {
  return utf8::Encode(S, kBest);
}

} // namespace kestrel
