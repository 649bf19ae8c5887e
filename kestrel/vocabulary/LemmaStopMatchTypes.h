// Unit LemmaStopMatchTypes: the three ways a list of words from a user's file
// is applied (joined under headwords, marked, or dropped), their names, and
// the callbacks with which the tools hand entries and progress around.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <kestrel/frame/host/Types.h>
#include <kestrel/vocabulary/my_types.h>

namespace kestrel {

enum class TLemmaMatchStopOptions : uint8_t { as_lemma, as_match, as_stop };
inline constexpr size_t kLemmaMatchStopCount = 3;

// "lemmas", "match list", "stop list"; constant from load, released at the
// unit's finalisation and back at its next start-up.
extern EnumTable<TLemmaMatchStopOptions, std::string, kLemmaMatchStopCount> names_of_processes;

// Entries of the lemma and match files; their fields lie with the tools that
// read those files.
struct TLemmaEntryRec;
struct TMatchEntryRec;

// in_unicode says whether the entry's text is wide.
using THandleLemmaProc = OfObject<void(TLemmaEntryRec &t, bool in_unicode)>;
using THandleMatchProc = OfObject<void(TMatchEntryRec t, bool in_unicode)>;
using THandleStopProc = OfObject<void(TMatchEntryRec t, bool in_unicode)>;
using TShowSomeProgressProc = OfObject<void(int32_t n)>;
using TAnnounceNumberAndMessageProc = OfObject<void(int32_t n, const ShortString<255> &mess)>;

} // namespace kestrel
