// Unit LemmaStopMatchTypes: the three ways a list of words from a user's file
// is applied.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kestrel {

enum class TLemmaMatchStopOptions : uint8_t { as_lemma, as_match, as_stop };
inline constexpr size_t kLemmaMatchStopCount = 3;

} // namespace kestrel
