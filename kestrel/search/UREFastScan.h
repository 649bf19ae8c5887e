// TUREFastScan: the accelerator of the regular-expression engine, our own
// addition to it. After a compile it holds, for each state and unit below 256,
// the target of the transition that wins there (a step table), columns added
// to it for the first 255 other units a text uses (Greek, Cyrillic, ...),
// the same decisions for further code points in a small cache, and the units a match
// can begin with, which it finds many units at a time (SSE2 or AVX2). All of
// it comes from the engine's own symbol test, so the fast scan gives the
// plain scan's results.
#pragma once

#include <cstdint>
#include <vector>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

struct TDFA;
struct TSymbolTableEntry;

// One position of a literal: its offset and the units (at most 4) that can
// stand there (URELiteralSearchInternal.h searches by two of them).
struct TLiteralProbe {
  uint32_t Offset = 0;
  uint32_t Count = 0;
  uint16_t Units[4] = {};
};

class TUREFastScan {
public:
  static constexpr int32_t NoTarget = -1; // no symbol accepts
  static constexpr int32_t Anchored = -2; // a line separator: an anchor may accept
  static constexpr int32_t Slow = -3;     // HighStep: take the general way

  // Builds the tables of an automaton; forgets them. Literal: plain
  // characters in a row that every match holds (folded as the symbols are),
  // if the pattern has some; the start search then jumps by their
  // occurrences.
  void Build(const TDFA &Dfa, const std::vector<UCS4> &Literal = {});
  void Clear();

  // Whether the tables were built (an automaton with states).
  bool Ready() const { return !FDecisions.empty(); }
  // The step table, state x 256 + unit: the winning target away from the first
  // unit of a text, with flags 0; null for an automaton too large for one.
  const int32_t *StepTable() const { return FStep.empty() ? nullptr : FStep.data(); }
  // The winning target on a code point (already folded, no line separator)
  // away from the first unit of a text, through the cache.
  int32_t Decision(const TDFA &Dfa, uint32_t State, UCS4 C);
  // The step table's answer for a unit from 256 up, away from the first unit
  // of a text; Slow for a surrogate, a line separator, or a unit past the
  // columns the table holds. Only with a step table.
  int32_t HighStep(const TDFA &Dfa, uint32_t State, char16_t U) {
    const uint8_t column = FHighColumn.empty() ? 0 : FHighColumn[U];
    if (column == 0) return AddHighColumn(Dfa, State, U);
    int32_t &t = FHighStep[size_t(State) * HighColumns + column - 1];
    if (t == Unknown) t = Decide(Dfa, State, U);
    return t;
  }
  // The first unit from Run on that may begin a match in the start state,
  // away from the first unit of the text; End if there is none.
  // In the start state with no attempt begun, and with no match found from
  // Run on so far.
  const char16_t *SkipToStart(const char16_t *Run, const char16_t *End);
  // A new scan: the occurrence of the literal found last is forgotten.
  void StartScan() { FHaveLast = false; }
  // Whether the start search jumps by a literal.
  bool LiteralJumps() const { return FLiteralOn; }

private:
  static constexpr int32_t Unknown = -4; // a high column's entry not decided yet
  static constexpr uint32_t HighColumns = 255;

  int32_t AddHighColumn(const TDFA &Dfa, uint32_t State, char16_t U);
  void BuildLiteral(const TDFA &Dfa, const std::vector<UCS4> &Literal);
  bool LiteralAt(const char16_t *At) const;
  const char16_t *JumpByLiteral(const char16_t *Run, const char16_t *End);

  static int32_t Decide(const TDFA &Dfa, uint32_t Cur, UCS4 C);
  static bool MayAcceptAbove255(const TSymbolTableEntry &Sym, bool fold);
  void FindStartUnits(const TDFA &Dfa);

  std::vector<int32_t> FStep;
  // Units from 256 up get a column of their own as a text brings them
  // (0: none yet), decided state by state when first needed.
  std::vector<uint8_t> FHighColumn;
  std::vector<int32_t> FHighStep;
  uint32_t FHighUsed = 0;
  struct TDecisionCache {
    uint32_t Code = 0xFFFFFFFF;
    uint32_t State = 0;
    int32_t Target = 0;
  };
  std::vector<TDecisionCache> FDecisions; // direct-mapped, filled by the scan
  // Where a new attempt can begin: the units below 256 that do not fail in the
  // start state, as at most 8 ranges (first unit and length - 1), and whether
  // every unit from 256 up fails there.
  std::vector<uint16_t> FStartLow, FStartSpan;
  bool FStartUnitsKnown = false;
  bool FStartSkipsHigh = false;
  // The literal every match holds, its two probes, and the units below
  // 256 that no state reads (after one, the scan is in the start state).
  std::vector<UCS4> FLiteral;
  TLiteralProbe FProbe[2];
  uint8_t FReset[256] = {};
  bool FFold = false;
  bool FLiteralOn = false;
  // The occurrence found last in this scan, and where the scan resumes for it.
  bool FHaveLast = false;
  const char16_t *FLastFound = nullptr, *FLastResume = nullptr;
};

} // namespace kestrel
