// The byte-level work of the fast search of UTF-8 texts: tallies of the bytes
// passed over (UTF-16 units, line breaks, whether they are well-formed) and
// the scan for the bytes of a pattern's literal. Both take 32 bytes a step
// where the processor runs AVX2, one at a time elsewhere, with the same
// answers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kestrel::cli {

// What a run of UTF-8 bytes holds, added up over runs.
struct Utf8Tally {
  uint64_t units = 0;  // UTF-16 units once decoded
  uint64_t breaks = 0; // line breaks: LF, CR, CR LF (one), U+2028, U+2029
  bool valid = true;   // well-formed, as IsValidUtf8 takes it
  // Controls that plain text does not hold (all below 20 but 08-0D, 1A, 1B):
  // with them, text without a byte-order mark may be UTF-16.
  bool strayControls = false;
};

// Adds the n bytes at p to tally. The run starts at a character and ends
// after a line feed or at the end of the text: a CR at its end counts as a
// break of its own, a sequence its end cuts makes it ill-formed.
void TallyUtf8(const char *p, size_t n, Utf8Tally &tally);
// The same one byte at a time; the reference of the tests.
void TallyUtf8Scalar(const char *p, size_t n, Utf8Tally &tally);

// A test of one byte: the byte at `offset` from a position is one of `bytes`.
struct ByteTest {
  uint32_t offset = 0;
  uint8_t count = 0; // 1 to 4
  uint8_t bytes[4] = {};
};

// One or two byte tests that every occurrence of a literal passes.
struct ByteProbe {
  ByteTest tests[2];
  uint8_t used = 0;  // 1 or 2
  uint32_t span = 0; // the largest offset + 1
};

inline constexpr size_t kNoProbe = SIZE_MAX;

// The first position i from `from` on, with i + span <= n, at which every
// test of the probe holds; kNoProbe if there is none.
size_t FindProbe(const char *p, size_t n, size_t from, const ByteProbe &probe);
size_t FindProbeScalar(const char *p, size_t n, size_t from, const ByteProbe &probe);

} // namespace kestrel::cli
