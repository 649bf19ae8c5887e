// The shared interface of the search engines over UTF-16 text: a pattern is
// prepared once, then FindFirst or FindAll run over texts, and the matches
// are read back by index as (start, stop) pairs of code-unit offsets, stop
// being one past the last unit of the match.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/frame/host/TList.h>
#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

class TWideStrings;

// The search flags, one bit each in a one-byte set (bit n for ordinal n).
enum class TSearchFlag : uint8_t {
  sfCaseSensitive,    // 1: characters compare exactly
  sfIgnoreNonSpacing, // 2: non-spacing marks are dropped and stepped over
  sfSpaceCompress,    // 4: a run of white space and controls counts as one blank
  sfLeftBounded,      // 8: the match starts the text or follows white space
  sfRightBounded,     // 16: the match ends the text or is followed by white space
};
using TSearchFlags = TSet<TSearchFlag, 1>;
static_assert(sizeof(TSearchFlags) == 1);

// Surrogate ranges and the way a pair combines into one code point.
inline constexpr UCS4 kSurrogateHighStart = 0xD800;
inline constexpr UCS4 kSurrogateHighEnd = 0xDBFF;
inline constexpr UCS4 kSurrogateLowStart = 0xDC00;
inline constexpr UCS4 kSurrogateLowEnd = 0xDFFF;

// Tests of one unit, and the code point of a high and a low surrogate.
constexpr bool IsHighSurrogateUnit(UCS4 u) {
  return u >= kSurrogateHighStart && u <= kSurrogateHighEnd;
}
constexpr bool IsLowSurrogateUnit(UCS4 u) {
  return u >= kSurrogateLowStart && u <= kSurrogateLowEnd;
}
constexpr UCS4 CombineSurrogates(UCS4 high, UCS4 low) {
  return 0x10000 + (((high & 0x3FF) << 10) | (low & 0x3FF));
}

// The base of TUTBMSearch and TURESearch. FindFirst gives the first match;
// FindAll keeps every match, read back with Count and GetResult.
class TSearchEngine : public TObject {
public:
  // The owner is kept but not owned; the library never reads it.
  explicit TSearchEngine(TWideStrings *AOwner);
  // Goes through Clear; a subclass's destructor calls its own Clear first,
  // since a base destructor cannot reach the override.
  ~TSearchEngine() override;

  virtual uint32_t GetCount();
  virtual void AddResult(uint32_t Start, uint32_t Stop);
  virtual void Clear();
  virtual void ClearResults();
  virtual void DeleteResult(uint32_t Index);

  virtual void FindPrepare(const std::u16string &Pattern, TSearchFlags Flags) = 0;
  virtual void FindPrepare(const char16_t *Pattern, uint32_t PatternLength, TSearchFlags Flags) = 0;
  virtual bool FindFirst(const std::u16string &Text, uint32_t &Start, uint32_t &Stop) = 0;
  virtual bool FindFirst(const char16_t *Text, uint32_t TextLen, uint32_t &Start,
                         uint32_t &Stop) = 0;
  virtual bool FindAll(const std::u16string &Text) = 0;
  virtual bool FindAll(const char16_t *Text, uint32_t TextLen) = 0;

  // Reads pair Index; an index out of range raises as TList does.
  virtual void GetResult(uint32_t Index, int32_t &Start, int32_t &Stop);

  TWideStrings *GetOwner() const { return Owner; }
  uint32_t Count() { return GetCount(); }

protected:
  TList *Results = nullptr; // start, stop, start, stop... as plain numbers
  TWideStrings *Owner = nullptr;
};

} // namespace kestrel
