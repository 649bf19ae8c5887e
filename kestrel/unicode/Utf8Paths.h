// The ways UTF8ToWideString and WideStringToUTF8 can take, for tests that
// compare them. Not part of the public interface.
//
// Scalar applies the rules one sequence (one unit) at a time. Sse2 copies
// runs of ASCII 16 at a time. Avx2 copies runs of ASCII 32 or 64 at a time and
// converts well-formed runs of one- to three-byte forms 8 units at a time,
// handing everything else (stray and truncated bytes, four- to six-byte forms)
// to the rules. All give the same answers; the public functions take the
// best one the processor runs, chosen when the library loads.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel::utf8 {

enum class TPath : uint8_t { Scalar, Sse2, Avx2 };

bool PathRuns(TPath Path);
std::u16string Decode(std::string_view S, TPath Path);
std::string Encode(std::u16string_view S, TPath Path);

} // namespace kestrel::utf8
