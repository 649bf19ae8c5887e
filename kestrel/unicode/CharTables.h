// The five character tables in memory, for the unit's own lookups (property
// tests, numbers, case mapping, decomposition). Not part of the public
// interface.
//
// Each table is loaded on first use from its resource of type "UNICODE"
// under DatabaseLock and then never changes. A table is published through an
// atomic pointer only after all its arrays are read and byte-swapped, so the
// unlocked fast path (an acquire load) always sees a complete table.
//
// Arrays are sized from the header; what a short resource does not fill
// stays 0. The two arrays sized by a 32-bit field (DecompositionData,
// NumberValues) are never made longer than what the resource still holds, so
// a hostile size cannot make us allocate: they may then be shorter than the
// header says, and lookups treat anything past their end as 0 elements.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include <kestrel/frame/host/SyncObjs.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

// The properties of "TYPE", by index.
// clang-format off
enum : int {
  upMn = 0, upMc, upMe, upNd, upNl, upNo, upZs, upZl, upZp, upCc, upCf, upCs, upCo, upCn,
  upLu, upLl, upLt, upLm, upLo, upPc, upPd, upPs, upPe, upPo, upSm, upSc, upSk, upSo,
  upL, upR, upEN, upES, upET, upAN, upCS, upB, upS, upWhiteSpace, upON, upComposite,
  upNonBreaking, upSymmetric, upHexDigit, upQuotationMark, upMirroring, upSpaceControls,
  upDefined, upPi, upPf,
  upPropertyCount // 49
};
// clang-format on

// Short label of each property ("Mn", "white space", "Composite", ...).
extern const char *const UnicodePropertyLabels[upPropertyCount];

struct TTypeTable {
  uint16_t Count = 0;                    // properties
  std::vector<uint16_t> PropertyOffsets; // Count + 1 entries; 0xFFFF = no ranges
  std::vector<uint32_t> PropertyRanges;  // first, last, first, last ...
  // Derived at load from PropertyOffsets (the same walk as the lookup's):
  // per property, where its pairs start in PropertyRanges, how many complete
  // pairs it has, and its lowest and highest code (First above Last when it
  // has none) so that most codes outside it are refused at once.
  struct TSpan {
    uint32_t Start = 0, Pairs = 0, First = UINT32_MAX, Last = 0;
  };
  std::vector<TSpan> Spans;
};

struct TCaseTable {
  std::vector<uint32_t> CaseMap; // rows of three numbers: upper, lower, title sections
  uint32_t CaseLength = 0;       // total rows x 3
  uint16_t UpperLength = 0;      // upper rows x 3, kept in 16 bits
  uint16_t LowerLength = 0;      // lower rows x 3, kept in 16 bits
};

struct TDecompositionTable {
  uint16_t Rows = 0;
  std::vector<uint32_t> DecompositionNodes; // code, offset per row; then the closing total
  std::vector<uint32_t> DecompositionData;  // the runs, each ending in 0
};

struct TCombiningTable {
  uint16_t Rows = 0;
  std::vector<uint32_t> CombiningNodes; // first code, last code, class per row
};

struct TNumberTable {
  uint16_t Count = 0;                 // 32-bit words in the node area, two per row
  std::vector<uint32_t> NumberNodes;  // code, index into NumberValues
  std::vector<uint16_t> NumberValues; // numerator, denominator pairs
};

// Guards the first load of every table; created on first need, safely
// against several threads, and freed by the unit's finalisation.
TCriticalSection &DatabaseLock();

namespace chartables {
extern std::atomic<const TTypeTable *> TypeTable;
extern std::atomic<const TCaseTable *> CaseTable;
extern std::atomic<const TDecompositionTable *> DecompositionTable;
extern std::atomic<const TCombiningTable *> CombiningTable;
extern std::atomic<const TNumberTable *> NumberTable;
// How many times a table resource has been read, for tests of the load.
extern std::atomic<uint32_t> ResourceReads;
} // namespace chartables

// The locked part of each load: reads the resource unless another thread did
// meanwhile. Raises the resource stream's error when the resource is missing;
// nothing is installed then and the next call tries again.
const TTypeTable &LoadTypeTable();
const TCaseTable &LoadCaseTable();
const TDecompositionTable &LoadDecompositionTable();
const TCombiningTable &LoadCombiningTable();
const TNumberTable &LoadNumberTable();

// The tables, loaded on first use.
inline const TTypeTable &TypeTable() {
  const TTypeTable *t = chartables::TypeTable.load(std::memory_order_acquire);
  return t ? *t : LoadTypeTable();
}
inline const TCaseTable &CaseTable() {
  const TCaseTable *t = chartables::CaseTable.load(std::memory_order_acquire);
  return t ? *t : LoadCaseTable();
}
inline const TDecompositionTable &DecompositionTable() {
  const TDecompositionTable *t = chartables::DecompositionTable.load(std::memory_order_acquire);
  return t ? *t : LoadDecompositionTable();
}
inline const TCombiningTable &CombiningTable() {
  const TCombiningTable *t = chartables::CombiningTable.load(std::memory_order_acquire);
  return t ? *t : LoadCombiningTable();
}
inline const TNumberTable &NumberTable() {
  const TNumberTable *t = chartables::NumberTable.load(std::memory_order_acquire);
  return t ? *t : LoadNumberTable();
}

// Bisects a flat array of (code, value) pairs on even indexes, from 0 to
// Last, for the pair whose code is Code: its index (even), or -1.
inline int64_t FindCodePair(const uint32_t *Nodes, int64_t Last, UCS4 Code) {
  int64_t l = 0, r = Last;
  while (l <= r) {
    int64_t m = (l + r) >> 1;
    m -= m & 1;
    if (Code > Nodes[m])
      l = m + 2;
    else if (Code < Nodes[m])
      r = m - 2;
    else
      return m;
  }
  return -1;
}

// Whether Code lies in one of the ranges of property n of a loaded table.
// The pairs are sorted and disjoint, so the last pair whose first code is not
// above Code is the only one that can hold it. The bisection has no branch
// that depends on Code (its steps depend only on the number of pairs), so
// it is never mispredicted.
inline bool LookupPropertyIn(const TTypeTable &t, UCS4 code, unsigned n) {
  if (n >= t.Count) return false;
  const TTypeTable::TSpan span = t.Spans[n];
  if (code < span.First || code > span.Last) return false;
  const uint32_t *base = t.PropertyRanges.data() + span.Start;
  for (uint32_t count = span.Pairs; count > 1;) {
    uint32_t half = count >> 1;
    base = base[2 * half] <= code ? base + 2 * half : base;
    count -= half;
  }
  return (base[0] <= code) & (code <= base[1]);
}

// Whether Code lies in property n (0 to 48 of the table); false for an index
// outside the table.
inline bool UnicodeLookupProperty(UCS4 code, int n) {
  return n >= 0 && LookupPropertyIn(TypeTable(), code, unsigned(n));
}

// Frees every loaded table and the lock, in the unit's order; the next
// question loads again.
void FreeCharacterTables();

} // namespace kestrel
