// Literal search over UTF-16 text with a Boyer-Moore skip table. Knows about
// case (lower, upper and title forms), non-spacing marks, runs of white
// space and word-like bounds; see TSearchFlag.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <kestrel/search/SearchEngine.h>

namespace kestrel {

#pragma pack(push, 1)
// One pattern character in its three case forms; a text code point equals
// the entry when it equals any of them.
struct TPatternEntry {
  UCS4 LoCase;
  UCS4 UpCase;
  UCS4 TitleCase;
};
#pragma pack(pop)
static_assert(sizeof(TPatternEntry) == 12);
static_assert(offsetof(TPatternEntry, UpCase) == 4 && offsetof(TPatternEntry, TitleCase) == 8);

// How far to move when a text position holds the entry's character.
struct TSkipEntry {
  TPatternEntry *Entry; // the first pattern entry with this UpCase
  uint32_t Skip;        // in code units
};

// The literal engine: FindPrepare takes the pattern as plain text and raises
// nothing of its own.
class TUTBMSearch : public TSearchEngine {
public:
  explicit TUTBMSearch(TWideStrings *AOwner);
  ~TUTBMSearch() override;

  void Clear() override;
  void FindPrepare(const std::u16string &Pattern, TSearchFlags Flags) override;
  void FindPrepare(const char16_t *Pattern, uint32_t PatternLength, TSearchFlags Flags) override;
  bool FindFirst(const std::u16string &Text, uint32_t &Start, uint32_t &Stop) override;
  bool FindFirst(const char16_t *Text, uint32_t TextLen, uint32_t &Start, uint32_t &Stop) override;
  bool FindAll(const std::u16string &Text) override;
  bool FindAll(const char16_t *Text, uint32_t TextLen) override;

  // The compiled state, for callers that want to look at it.
  TSearchFlags GetFlags() const { return Flags; }
  uint32_t GetPatternUsed() const { return PatternUsed; }
  uint32_t GetPatternLength() const { return PatternLength; }
  uint32_t GetSkipsUsed() const { return SkipsUsed; }
  uint32_t GetMismatchShift() const { return MismatchShift; }
  const TPatternEntry *GetPattern() const { return Pattern; }
  const TSkipEntry *GetSkipValues() const { return SkipValues; }

protected:
  void ClearPattern();
  void Compile(const char16_t *APattern, uint32_t APatternLength, TSearchFlags AFlags);
  uint32_t GetSkipValue(const char16_t *TextStart, const char16_t *TextEnd) const;
  bool Match(const char16_t *Text, const char16_t *Start, const char16_t *Stop,
             uint32_t &MatchStart, uint32_t &MatchEnd) const;
  bool Find(const char16_t *Text, uint32_t TextLen, uint32_t &MatchStart, uint32_t &MatchEnd) const;

private:
  static constexpr uint32_t kNoRecord = 0xFFFFFFFF;
  void AppendEntry(UCS4 lo, UCS4 up, UCS4 title);
  void BuildSkipTable();
  // The Skip of the first record whose entry equals c, or kNoRecord.
  uint32_t RecordSkip(UCS4 c) const;
  void FillLatin1Skips();
  bool SteppedOver(const char16_t *Pos, const char16_t *Stop) const;
  uint32_t ShiftAfterMismatch(const char16_t *Pos, const char16_t *Stop) const;

  TSearchFlags Flags;
  TPatternEntry *Pattern = nullptr;
  uint32_t PatternUsed = 0;
  uint32_t PatternSize = 0;
  uint32_t PatternLength = 0;
  TSkipEntry *SkipValues = nullptr;
  uint32_t SkipsUsed = 0;
  uint32_t MismatchShift = 0;
  // RecordSkip of every unit below 256, filled by Compile: the same answers
  // as the list, without walking it for the commonest units.
  uint32_t Latin1Skips[256] = {};
};

} // namespace kestrel
