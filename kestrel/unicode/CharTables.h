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

// Eytzinger order: an ascending list laid out as a complete binary tree in an
// array, node k having the children 2k and 2k + 1 (node 0 is unused), padded
// with keys of UINT32_MAX to 2^Depth - 1 nodes. A search walks Depth levels
// whatever it looks for, without a branch on the keys, and its first levels
// share the first cache line. The path taken is the bits of k: going right
// where the key is not above Code, the last right turn is the node of the last
// key not above Code, or 0 when all are above it.
//
// The first six levels, nodes 1 to 63, are also copied with the top bit of
// each key flipped (signed compares then order them as unsigned), for the
// vector form of a batch of searches, which holds them in eight registers.
inline constexpr uint32_t kTopLevels = 6;
struct alignas(32) TEytzingerTop {
  int32_t Keys[1 << kTopLevels]; // node 0 is unused
};

struct TEytzingerTree {
  const uint32_t *Keys;
  uint32_t Depth;
  const TEytzingerTop *Top;
};

// One level down from node k: a compare and a subtract with borrow.
inline uint32_t EytzingerStep(const uint32_t *keys, uint32_t k, UCS4 code) {
  const uint32_t key = keys[k];
  return 2 * k + 1 - (code < key);
}

inline uint32_t EytzingerPredecessor(const TEytzingerTree &tree, UCS4 code) {
  uint32_t k = 1;
  for (uint32_t depth = tree.Depth; depth > 0; --depth)
    k = EytzingerStep(tree.Keys, k, code);
  return k >> (__builtin_ctz(k) + 1);
}

// Appends the Eytzinger layout of count ascending keys, read every keyStride
// elements from keys, and of the values that go with them (every valueStride
// from values): 2^Depth entries to each of treeKeys and treeValues. Top gets
// the copy of the first levels.
void BuildEytzinger(const uint32_t *keys, size_t keyStride, const uint32_t *values,
                    size_t valueStride, size_t count, std::vector<uint32_t> &treeKeys,
                    std::vector<uint32_t> &treeValues, uint32_t &depth, TEytzingerTop &top);

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
  // Tree and Depth place the property's pairs in TreeFirst and TreeLast.
  struct TSpan {
    uint32_t Start = 0, Pairs = 0, First = UINT32_MAX, Last = 0;
    uint32_t Tree = 0, Depth = 0;
  };
  std::vector<TSpan> Spans;
  // Each property's pairs copied at load in Eytzinger order, one tree after
  // another: first codes in TreeFirst, last codes beside them; the first
  // levels of property n in TreeTops[n].
  std::vector<uint32_t> TreeFirst, TreeLast;
  std::vector<TEytzingerTop> TreeTops;
  TEytzingerTree TreeOf(unsigned n) const {
    return {TreeFirst.data() + Spans[n].Tree, Spans[n].Depth, &TreeTops[n]};
  }
};

// The sections of "CASE" and the conversions that route through them.
enum : int { csUpper = 0, csLower, csTitle, csSectionCount };
enum : int { ccToUpper = 0, ccToLower, ccToTitle, ccConversionCount };

// Each conversion's route by category: a code in Keep stays as it is; a code
// in Test is looked up in column IfColumn of section IfSection; any other in
// column ElseColumn of section ElseSection.
struct TCaseRoute {
  int Keep, Test, IfSection, IfColumn, ElseSection, ElseColumn;
};
// clang-format off
inline constexpr TCaseRoute kCaseRoutes[ccConversionCount] = {
    {upLu, upLl, csLower, 1, csTitle, 1},  // UnicodeToUpper
    {upLl, upLu, csUpper, 1, csTitle, 2},  // UnicodeToLower
    {upLt, upLu, csUpper, 2, csLower, 2}}; // UnicodeToTitle
// clang-format on

struct TCaseTable {
  std::vector<uint32_t> CaseMap; // rows of three numbers: upper, lower, title sections
  uint32_t CaseLength = 0;       // total rows x 3
  uint16_t UpperLength = 0;      // upper rows x 3, kept in 16 bits
  uint16_t LowerLength = 0;      // lower rows x 3, kept in 16 bits
  // Derived at load. The sections as first and last row starts, cut to what
  // CaseMap holds so that an inconsistent header cannot send a lookup outside
  // it (an empty section has its last row start below its first).
  int64_t SectionFirst[csSectionCount] = {}, SectionLast[csSectionCount] = {};
  // Each section's codes in Eytzinger order, with the row start of each node.
  struct TSectionTree {
    std::vector<uint32_t> Codes, Rows;
    uint32_t Depth = 0;
    TEytzingerTop Top;
    TEytzingerTree Tree() const { return {Codes.data(), Depth, &Top}; }
  } Trees[csSectionCount];
  // Per conversion, two bits for each unit below 0x10000: bit 0 when its
  // IfSection has a row for the unit, bit 1 when its ElseSection has one. A
  // unit with neither maps to itself whatever its category, and a section
  // that has no row for a code need not be searched for it.
  std::vector<uint64_t> Reach[ccConversionCount];
  // Whether a row that a conversion can reach lies in its Keep category:
  // when none does, no code that the conversion can map is kept, and the
  // test is skipped (upper-casing reaches no Lu row in the stored table).
  bool KeepReachable[ccConversionCount] = {};
};

// The two bits of Reach for a code; both for a code above the units.
inline unsigned ReachOf(const std::vector<uint64_t> &reach, UCS4 code) {
  return code < 0x10000 ? unsigned(reach[code / 32] >> (code % 32 * 2)) & 3 : 3;
}

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
// Whether the case mappings of strings walk the first levels of their
// searches eight units at a time with AVX2: set at start-up when the
// processor has it; tests turn it off to compare both ways.
extern bool VectorSearches;
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
// above Code is the only one that can hold it; the search takes the same
// steps whatever the code, so it is never mispredicted.
inline bool LookupPropertyIn(const TTypeTable &t, UCS4 code, unsigned n) {
  if (n >= t.Count) return false;
  const TTypeTable::TSpan span = t.Spans[n];
  if (code < span.First || code > span.Last) return false;
  const uint32_t k = EytzingerPredecessor(t.TreeOf(n), code);
  return (k != 0) & (code <= t.TreeLast[span.Tree + k]);
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
