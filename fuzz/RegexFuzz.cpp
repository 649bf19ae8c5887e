// Regular expressions: any pattern compiles or is refused with the engine's
// error, and on any text the fast scan (step table, start search) gives
// what the automaton's plain tables give, from every start. The same
// pattern, read as familiar syntax, goes through the translation and the
// leftmost-longest engine, whose matches must be ordered and in the text.
#include "FuzzSupport.h"

#include <kestrel/search/UREFamiliarSyntax.h>
#include <kestrel/search/URELongestMatch.h>

using namespace kestrel;
using namespace kestrel::fuzz;

namespace {

void Longest(const std::u16string &pattern, TSearchFlags flags, const std::u16string &text) {
  TURELongestMatch engine;
  try {
    engine.FindPrepare(
        TranslateFamiliarSyntax(pattern, !flags.Contains(TSearchFlag::sfCaseSensitive)), flags);
  } catch (const Exception &) {
    return;
  }
  engine.SetMatchLimits(64, 64);
  engine.FindAll(text);
  uint32_t last = 0;
  for (const TURELongestMatch::TMatch &m : engine.Matches()) {
    if (m.Start < last || m.Start > m.Stop || m.Stop > text.size())
      Finding("longest matches out of order or out of the text");
    last = m.Stop;
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in(data, size);
  const uint8_t options = in.Byte();
  const std::u16string pattern = Units(in.Part() + in.Part());
  const std::u16string text = Units(in.Bytes(128));
  TSearchFlags flags;
  if (options & 1) flags.Include(TSearchFlag::sfCaseSensitive);
  const uint32_t scanFlags = (options >> 1) & (IgnoreNonSpacingMarks | DotMatchesAll);
  Longest(pattern, flags, text);
  TURESearch engine(nullptr);
  try {
    engine.FindPrepare(pattern, flags);
  } catch (const Exception &) {
    return 0; // refused with a message: a good answer
  }
  const uint32_t length = static_cast<uint32_t>(text.size());
  for (uint32_t at = 0; at <= length; ++at) {
    uint32_t s1 = 0, e1 = 0, s2 = 0, e2 = 0;
    const bool fast = engine.ExecuteURE(scanFlags, text.data() + at, length - at, s1, e1);
    const bool plain = engine.ExecuteUREPlain(scanFlags, text.data() + at, length - at, s2, e2);
    if (fast != plain || (fast && (s1 != s2 || e1 != e2)))
      Finding("the fast scan differs from the plain one");
    if (fast && (s1 > e1 || e1 > length - at)) Finding("a match outside the text");
  }
  if (engine.FindAll(text))
    for (uint32_t i = 0; i < engine.GetCount(); ++i) {
      int32_t s = 0, e = 0;
      engine.GetResult(i, s, e);
      if (s < 0 || s > e || static_cast<uint32_t>(e) > length) Finding("FindAll out of the text");
    }
  uint32_t s = 0, e = 0;
  if (engine.FindFirst(text, s, e) && (s > e || e > length)) Finding("FindFirst out of the text");
  return 0;
}
