#include <kestrel/search/UTBMSearch.h>

#include <algorithm>
#include <cstdlib>

#include <kestrel/unicode/CaseMapping.h>
#include <kestrel/unicode/CharDatabase.h>

namespace kestrel {

namespace {

using F = TSearchFlag;

// The code point at p, combining a pair whose low half lies before end.
UCS4 CodePointAt(const char16_t *p, const char16_t *end) {
  UCS4 c = *p;
  if (IsHighSurrogateUnit(c) && p + 1 < end && IsLowSurrogateUnit(p[1]))
    c = CombineSurrogates(c, p[1]);
  return c;
}

bool EntryEquals(const TPatternEntry &e, UCS4 c) {
  return c == e.UpCase || c == e.LoCase || c == e.TitleCase;
}

bool SameForms(const TPatternEntry &a, const TPatternEntry &b) {
  return a.UpCase == b.UpCase && a.LoCase == b.LoCase && a.TitleCase == b.TitleCase;
}

// Whether one text character can equal both entries.
bool ShareAForm(const TPatternEntry &a, const TPatternEntry &b) {
  return EntryEquals(a, b.LoCase) || EntryEquals(a, b.UpCase) || EntryEquals(a, b.TitleCase);
}

// Moves a position that sits on the low half of a pair back to the pair's
// high half, so that a step never splits a character.
const char16_t *Align(const char16_t *text, const char16_t *stop, const char16_t *pos) {
  if (pos < stop && pos > text && IsLowSurrogateUnit(*pos) && IsHighSurrogateUnit(pos[-1]))
    return pos - 1;
  return pos;
}

// Steps from pos by count units and aligns. A step of 1 from the high half
// of a pair would be undone by the alignment; it then goes past the whole
// pair instead, so that every step moves forward.
const char16_t *Advance(const char16_t *text, const char16_t *stop, const char16_t *pos,
                        uint32_t count) {
  const char16_t *next = Align(text, stop, pos + std::min<size_t>(count, stop - pos));
  if (next <= pos) next = pos + (CodePointAt(pos, stop) > 0xFFFF ? 2 : 1);
  return next;
}

// Moves back one character and reads it, combining a pair whose high half
// lies within the text.
UCS4 StepBack(const char16_t *text, const char16_t *&pos) {
  --pos;
  UCS4 c = *pos;
  if (IsLowSurrogateUnit(c) && pos > text && IsHighSurrogateUnit(pos[-1])) {
    --pos;
    c = CombineSurrogates(*pos, c);
  }
  return c;
}

bool IsSpaceOrControl(UCS4 c) {
  return UnicodeIsWhiteSpace(c) || UnicodeIsControl(c);
}

} // namespace

TUTBMSearch::TUTBMSearch(TWideStrings *AOwner) : TSearchEngine(AOwner) {}

TUTBMSearch::~TUTBMSearch() {
  TUTBMSearch::Clear();
}

void TUTBMSearch::Clear() {
  ClearPattern();
  TSearchEngine::Clear();
}

void TUTBMSearch::ClearPattern() {
  std::free(Pattern);
  std::free(SkipValues);
  Pattern = nullptr;
  SkipValues = nullptr;
  Flags = TSearchFlags();
  PatternUsed = PatternSize = PatternLength = SkipsUsed = MismatchShift = 0;
}

void TUTBMSearch::FindPrepare(const std::u16string &APattern, TSearchFlags AFlags) {
  FindPrepare(APattern.data(), static_cast<uint32_t>(APattern.size()), AFlags);
}

void TUTBMSearch::FindPrepare(const char16_t *APattern, uint32_t APatternLength,
                              TSearchFlags AFlags) {
  Compile(APattern, APatternLength, AFlags);
}

void TUTBMSearch::AppendEntry(UCS4 lo, UCS4 up, UCS4 title) {
  Pattern[PatternUsed++] = TPatternEntry{lo, up, title};
}

void TUTBMSearch::Compile(const char16_t *APattern, uint32_t APatternLength, TSearchFlags AFlags) {
  // The length is a signed count for the callers of old: "negative" is empty.
  if (!APattern || APatternLength == 0 || APatternLength > 0x7FFFFFFF || APattern[0] == 0) return;
  ClearPattern();
  Flags = AFlags;
  MismatchShift = 1;
  Pattern = static_cast<TPatternEntry *>(std::calloc(APatternLength, sizeof(TPatternEntry)));
  SkipValues = static_cast<TSkipEntry *>(std::calloc(APatternLength, sizeof(TSkipEntry)));
  if (!Pattern || !SkipValues) {
    ClearPattern();
    throw std::bad_alloc();
  }
  PatternSize = APatternLength;

  const bool ignoreMarks = Flags.Contains(F::sfIgnoreNonSpacing);
  const bool compress = Flags.Contains(F::sfSpaceCompress);
  const bool exact = Flags.Contains(F::sfCaseSensitive);
  const char16_t *end = APattern + APatternLength;
  bool haveSpace = false;
  for (uint32_t i = 0; i < APatternLength;) {
    const UCS4 c = CodePointAt(APattern + i, end);
    const bool white = UnicodeIsWhiteSpace(c);
    if (!white) haveSpace = false;
    if (ignoreMarks && UnicodeIsNonSpacing(c)) {
      ++i;
      continue;
    }
    if (compress && white) {
      if (!haveSpace) {
        AppendEntry(0x20, 0x20, 0x20);
        ++PatternLength;
        haveSpace = true;
      }
      ++i;
      continue;
    }
    if (compress && UnicodeIsControl(c)) {
      ++i;
      continue;
    }
    if (exact)
      AppendEntry(c, c, c);
    else
      AppendEntry(UnicodeToLower(c), UnicodeToUpper(c), UnicodeToTitle(c));
    const uint32_t units = c > 0xFFFF ? 2 : 1;
    PatternLength += units;
    i += units;
  }
  BuildSkipTable();
  FillLatin1Skips();
}

void TUTBMSearch::BuildSkipTable() {
  if (PatternUsed == 0) return;
  const TPatternEntry &lastEntry = Pattern[PatternUsed - 1];
  const int64_t last = int64_t(PatternLength) - 1;
  int64_t k = 0;
  for (uint32_t n = 0; n < PatternUsed; ++n) {
    TPatternEntry &entry = Pattern[n];
    // One record per character. Entries that share only their upper case
    // (s and long s, micro and mu) keep records of their own: a record refers
    // to one entry, and a text character equal to the other alone would find
    // none and skip the whole pattern.
    TSkipEntry *record = nullptr;
    for (uint32_t s = 0; s < SkipsUsed && !record; ++s)
      if (SameForms(*SkipValues[s].Entry, entry)) record = &SkipValues[s];
    if (!record) {
      record = &SkipValues[SkipsUsed++];
      record->Entry = &entry;
    }
    // The distance from the entry to the pattern's end, for a pair too: the
    // search aligns every probe on a pair's first unit, so one unit more
    // would jump over an occurrence.
    const bool wide = entry.UpCase > 0xFFFF;
    record->Skip = static_cast<uint32_t>(std::max<int64_t>(last - k, 0));
    // Any entry that a character equal to the last one can also equal
    // (the Kelvin sign and k share the lower case k) bounds the shift.
    if ((wide && k + 2 <= last) || (k + 1 <= last && ShareAForm(entry, lastEntry)))
      MismatchShift = static_cast<uint32_t>(last - k);
    k += wide ? 2 : 1;
  }
}

// The smallest skip of the records equal to c. Without case sensitivity a
// character can equal two records (k equals the entries of k and of the
// Kelvin sign); the first one's skip may jump over where the other ends.
uint32_t TUTBMSearch::RecordSkip(UCS4 c) const {
  uint32_t skip = kNoRecord;
  for (uint32_t s = 0; s < SkipsUsed; ++s)
    if (EntryEquals(*SkipValues[s].Entry, c)) skip = std::min(skip, SkipValues[s].Skip);
  return skip;
}

void TUTBMSearch::FillLatin1Skips() {
  for (UCS4 c = 0; c < 256; ++c)
    Latin1Skips[c] = RecordSkip(c);
}

uint32_t TUTBMSearch::GetSkipValue(const char16_t *TextStart, const char16_t *TextEnd) const {
  if (TextStart >= TextEnd) return 0;
  const UCS4 c = CodePointAt(TextStart, TextEnd);
  // For units below 256 read from the table that Compile filled from the
  // same records.
  const uint32_t skip = c < 256 ? Latin1Skips[c] : RecordSkip(c);
  if (skip == kNoRecord) return PatternLength;
  return static_cast<uint32_t>(std::min<size_t>(skip, TextEnd - TextStart));
}

bool TUTBMSearch::Match(const char16_t *Text, const char16_t *Start, const char16_t *Stop,
                        uint32_t &MatchStart, uint32_t &MatchEnd) const {
  MatchEnd = static_cast<uint32_t>(Start - Text) + 1;
  UCS4 c = CodePointAt(Start, Stop);
  if (c > 0xFFFF) ++MatchEnd;
  if (PatternUsed == 1) {
    MatchStart = static_cast<uint32_t>(Start - Text);
    return true;
  }
  if (Flags.Contains(F::sfRightBounded)) {
    const char16_t *after = Text + MatchEnd;
    if (after < Stop && *after != 0 && !UnicodeIsWhiteSpace(*after)) return false;
  }
  const bool ignoreMarks = Flags.Contains(F::sfIgnoreNonSpacing);
  const bool compress = Flags.Contains(F::sfSpaceCompress);
  int64_t cp = int64_t(PatternUsed) - 1;
  int64_t count = PatternLength;
  while (count > 0) {
    if (ignoreMarks)
      while (Start > Text && UnicodeIsNonSpacing(c))
        c = StepBack(Text, Start);
    if (compress) {
      bool checkSpace = false;
      while (Start > Text && IsSpaceOrControl(c)) {
        checkSpace = UnicodeIsWhiteSpace(c);
        c = StepBack(Text, Start);
      }
      if (checkSpace) {
        if (Pattern[cp].UpCase != 0x20) return false;
        --cp;
        --count;
        if (count == 0) ++Start; // the match begins with the run
      }
    }
    if (count > 0 && (cp < 0 || !EntryEquals(Pattern[cp], c))) return false;
    count -= c > 0xFFFF ? 2 : 1;
    if (count > 0) {
      --cp;
      // Entries remain but the text has no character left before this one:
      // the candidate fails rather than compare the first character twice.
      if (Start <= Text) return false;
      c = StepBack(Text, Start);
    }
  }
  if (Flags.Contains(F::sfLeftBounded) && Start > Text && !UnicodeIsWhiteSpace(Start[-1]))
    return false;
  MatchStart = static_cast<uint32_t>(Start - Text);
  return true;
}

// A probe on a character that the compare steps over in the text, a mark
// under sfIgnoreNonSpacing or white space or a control under sfSpaceCompress,
// says nothing of where an occurrence ends: any number of such characters may
// stand inside one, and one may end right here (a mark after its last letter)
// or at the next character. The skip table would give such a probe the full
// length of a character the pattern lacks and pass the match, so the probe is
// compared in place and the search then moves one character only.
bool TUTBMSearch::SteppedOver(const char16_t *Pos, const char16_t *Stop) const {
  if (PatternUsed < 2) return false; // a single entry is compared by the skip lookup alone
  const UCS4 c = CodePointAt(Pos, Stop);
  return (Flags.Contains(F::sfIgnoreNonSpacing) && UnicodeIsNonSpacing(c)) ||
         (Flags.Contains(F::sfSpaceCompress) && IsSpaceOrControl(c));
}

// After a failed compare: MismatchShift, or one character where the probe or
// the character after it is stepped over. A match may end on such a character
// where it could not end before it (a right bound that fails on a mark but
// holds after it).
uint32_t TUTBMSearch::ShiftAfterMismatch(const char16_t *Pos, const char16_t *Stop) const {
  if (MismatchShift <= 1) return MismatchShift;
  const char16_t *next = Pos + (CodePointAt(Pos, Stop) > 0xFFFF ? 2 : 1);
  if (SteppedOver(Pos, Stop) || (next < Stop && SteppedOver(next, Stop))) return 1;
  return MismatchShift;
}

bool TUTBMSearch::Find(const char16_t *Text, uint32_t TextLen, uint32_t &MatchStart,
                       uint32_t &MatchEnd) const {
  if (!Pattern || PatternUsed == 0 || !Text || TextLen == 0 || PatternLength > TextLen)
    return false;
  const char16_t *stop = Text + TextLen;
  const char16_t *start = Align(Text, stop, Text + PatternLength - 1);
  for (;;) {
    for (uint32_t k = GetSkipValue(start, stop); k != 0; k = GetSkipValue(start, stop)) {
      // From a pair, a skip of 1 comes only from the record of a pattern's
      // last character when that character is the pair (a character not in a
      // pattern of two or more units skips the pattern's length): compare here
      // rather than step, or the pair would never be found.
      if (k == 1 && PatternLength > 1 && CodePointAt(start, stop) > 0xFFFF) break;
      if (SteppedOver(start, stop)) break;
      start = Advance(Text, stop, start, k);
    }
    if (start < stop && Match(Text, start, stop, MatchStart, MatchEnd)) return true;
    if (start >= stop) return false;
    start = Advance(Text, stop, start, ShiftAfterMismatch(start, stop));
    if (start >= stop) return false;
  }
}

bool TUTBMSearch::FindFirst(const std::u16string &Text, uint32_t &Start, uint32_t &Stop) {
  return FindFirst(Text.data(), static_cast<uint32_t>(Text.size()), Start, Stop);
}

bool TUTBMSearch::FindFirst(const char16_t *Text, uint32_t TextLen, uint32_t &Start,
                            uint32_t &Stop) {
  ClearResults();
  const bool found = Find(Text, TextLen, Start, Stop);
  if (found) AddResult(Start, Stop);
  return found;
}

bool TUTBMSearch::FindAll(const std::u16string &Text) {
  return FindAll(Text.data(), static_cast<uint32_t>(Text.size()));
}

bool TUTBMSearch::FindAll(const char16_t *Text, uint32_t TextLen) {
  ClearResults();
  const char16_t *run = Text;
  uint32_t left = TextLen;
  uint32_t matchStart = 0, matchEnd = 0;
  while (Find(run, left, matchStart, matchEnd)) {
    const auto offset = static_cast<uint32_t>(run - Text);
    AddResult(offset + matchStart, offset + matchEnd);
    run += matchEnd;
    left -= matchEnd;
  }
  return GetCount() > 0;
}

} // namespace kestrel
