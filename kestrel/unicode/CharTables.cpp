// Loading and freeing the five character tables.
#include <kestrel/unicode/CharTables.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <mutex>

#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

// clang-format off
const char *const UnicodePropertyLabels[upPropertyCount] = {
    "Mn", "Mc", "Me", "Nd", "Nl", "No", "Zs", "Zl", "Zp", "Cc", "Cf", "Cs", "Co", "Cn",
    "Lu", "Ll", "Lt", "Lm", "Lo", "Pc", "Pd", "Ps", "Pe", "Po", "Sm", "Sc", "Sk", "So",
    "L", "R", "EN", "ES", "ET", "AN", "CS", "B", "S", "white space", "ON", "Composite",
    "NonBreaking", "Symmetric", "HexDigit", "QuotationMark", "Mirroring", "SpaceControls",
    "Defined", "Pi", "Pf"};
// clang-format on

namespace chartables {
std::atomic<const TTypeTable *> TypeTable{nullptr};
std::atomic<const TCaseTable *> CaseTable{nullptr};
std::atomic<const TDecompositionTable *> DecompositionTable{nullptr};
std::atomic<const TCombiningTable *> CombiningTable{nullptr};
std::atomic<const TNumberTable *> NumberTable{nullptr};
std::atomic<uint32_t> ResourceReads{0};
} // namespace chartables

namespace {

std::atomic<TCriticalSection *> gDatabaseLock{nullptr};

inline uint16_t Swap(uint16_t v) {
  return uint16_t((v << 8) | (v >> 8));
}
inline uint32_t Swap(uint32_t v) {
  return __builtin_bswap32(v);
}

// Reads one table resource: the header, then arrays in the order of the
// format, swapping every value when the mark says the bytes are reversed.
class TableReader {
public:
  explicit TableReader(const char *name) : stream_(KestrelModuleHandle(), name, "UNICODE") {
    chartables::ResourceReads.fetch_add(1, std::memory_order_relaxed);
    stream_.Read(&mark_, 2);
    swapped_ = mark_ == 0xFFFE; // any other mark reads as little-endian data
  }
  uint16_t Word() {
    uint16_t v = 0;
    stream_.Read(&v, 2);
    return swapped_ ? Swap(v) : v;
  }
  uint32_t Long() {
    uint32_t v = 0;
    stream_.Read(&v, 4);
    return swapped_ ? Swap(v) : v;
  }
  // An array of count elements; what the resource does not hold stays 0.
  template <typename T> std::vector<T> Array(size_t count) {
    std::vector<T> v(count, T(0));
    Fill(v);
    return v;
  }
  // An array of up to count elements, no more than the resource still holds.
  template <typename T> std::vector<T> BoundedArray(int64_t count) {
    int64_t available = stream_.Remaining() / int64_t(sizeof(T));
    std::vector<T> v(size_t(std::clamp<int64_t>(count, 0, available)), T(0));
    Fill(v);
    return v;
  }

private:
  template <typename T> void Fill(std::vector<T> &v) {
    if (v.empty()) return;
    stream_.Read(v.data(), int32_t(std::min<size_t>(v.size() * sizeof(T), INT32_MAX)));
    if (swapped_)
      for (T &x : v)
        x = Swap(x);
  }
  TResourceStream stream_;
  uint16_t mark_ = 0;
  bool swapped_ = false;
};

// Per property, the pairs that the lookup bisects: from its offset up to the
// next offset that is not 0xFFFF (the closing entry for the last ones), and
// their copy in Eytzinger order.
void DeriveBounds(TTypeTable &t) {
  const auto &offsets = t.PropertyOffsets;
  const size_t total = t.PropertyRanges.size();
  t.Spans.assign(t.Count, {});
  t.TreeFirst.clear();
  t.TreeLast.clear();
  t.TreeTops.assign(t.Count, {});
  for (size_t n = 0; n < t.Count; ++n) {
    if (offsets[n] == 0xFFFF) continue;
    size_t k = n + 1;
    while (k < t.Count && offsets[k] == 0xFFFF)
      ++k;
    size_t first = offsets[n], end = std::min<size_t>(offsets[k], total);
    uint32_t pairs = uint32_t((end > first ? end - first : 0) / 2);
    if (pairs == 0) continue;
    TTypeTable::TSpan &span = t.Spans[n];
    span = {uint32_t(first),
            pairs,
            t.PropertyRanges[first],
            t.PropertyRanges[first + 2 * pairs - 1],
            uint32_t(t.TreeFirst.size()),
            0};
    const uint32_t *ranges = t.PropertyRanges.data() + first;
    BuildEytzinger(ranges, 2, ranges + 1, 2, pairs, t.TreeFirst, t.TreeLast, span.Depth,
                   t.TreeTops[n]);
  }
}

// The sections cut to the rows the table holds, their trees, which units
// each holds, and which conversions can reach a row in their Keep category
// (read with the category tests, so "TYPE" loads with "CASE").
void DeriveSections(TCaseTable &t) {
  int64_t size = static_cast<int64_t>(std::min<size_t>(t.CaseMap.size(), t.CaseLength));
  size -= size % 3;
  const int64_t upperEnd = std::min<int64_t>(t.UpperLength, size);
  const int64_t lowerEnd = std::min<int64_t>(upperEnd + t.LowerLength, size);
  const int64_t ends[csSectionCount + 1] = {0, upperEnd, lowerEnd, size};
  std::vector<uint64_t> holds[csSectionCount];
  for (int s = 0; s < csSectionCount; ++s) {
    t.SectionFirst[s] = ends[s];
    t.SectionLast[s] = ends[s + 1] - 3;
    const size_t rows = size_t(ends[s + 1] - ends[s]) / 3;
    std::vector<uint32_t> starts(rows);
    holds[s].assign(0x10000 / 64, 0);
    for (size_t r = 0; r < rows; ++r) {
      starts[r] = uint32_t(ends[s] + int64_t(3 * r));
      const uint32_t code = t.CaseMap[starts[r]];
      if (code < 0x10000) holds[s][code / 64] |= uint64_t(1) << (code % 64);
    }
    auto &tree = t.Trees[s];
    tree.Codes.clear();
    tree.Rows.clear();
    BuildEytzinger(t.CaseMap.data() + ends[s], 3, starts.data(), 1, rows, tree.Codes, tree.Rows,
                   tree.Depth, tree.Top);
  }
  const TTypeTable &types = TypeTable();
  for (int c = 0; c < ccConversionCount; ++c) {
    const TCaseRoute &route = kCaseRoutes[c];
    t.Reach[c].assign(0x10000 / 32, 0);
    for (uint32_t u = 0; u < 0x10000; ++u) {
      const uint64_t bits = ((holds[route.IfSection][u / 64] >> (u % 64)) & 1) |
                            ((holds[route.ElseSection][u / 64] >> (u % 64)) & 1) << 1;
      t.Reach[c][u / 32] |= bits << (u % 32 * 2);
    }
    t.KeepReachable[c] = false;
    for (int s : {route.IfSection, route.ElseSection})
      for (int64_t r = t.SectionFirst[s]; r <= t.SectionLast[s]; r += 3)
        t.KeepReachable[c] |= LookupPropertyIn(types, t.CaseMap[size_t(r)], unsigned(route.Keep));
  }
}

std::unique_ptr<TTypeTable> ReadTypeTable() {
  TableReader r("TYPE");
  auto t = std::make_unique<TTypeTable>();
  t->Count = r.Word();
  r.Long(); // size: the arrays are sized from the counts
  t->PropertyOffsets = r.Array<uint16_t>(size_t(t->Count) + 1);
  if ((t->Count + 1) % 2 != 0) r.Word(); // the spare word that rounds the offsets to 4 bytes
  t->PropertyRanges = r.Array<uint32_t>(t->PropertyOffsets[t->Count]);
  DeriveBounds(*t);
  return t;
}

std::unique_ptr<TCaseTable> ReadCaseTable() {
  TableReader r("CASE");
  auto t = std::make_unique<TCaseTable>();
  uint16_t total = r.Word(), upper = r.Word(), lower = r.Word();
  t->CaseLength = uint32_t(total) * 3;
  t->UpperLength = uint16_t(upper * 3);
  t->LowerLength = uint16_t(lower * 3);
  t->CaseMap = r.Array<uint32_t>(t->CaseLength);
  DeriveSections(*t);
  return t;
}

std::unique_ptr<TDecompositionTable> ReadDecompositionTable() {
  TableReader r("DECOMPOSE");
  auto t = std::make_unique<TDecompositionTable>();
  t->Rows = r.Word();
  uint32_t size = r.Long();
  size_t nodes = 2 * size_t(t->Rows) + 1;
  t->DecompositionNodes = r.Array<uint32_t>(nodes);
  t->DecompositionData = r.BoundedArray<uint32_t>((int64_t(size) - int64_t(4 * nodes)) / 4);
  return t;
}

std::unique_ptr<TCombiningTable> ReadCombiningTable() {
  TableReader r("COMBINE");
  auto t = std::make_unique<TCombiningTable>();
  t->Rows = r.Word();
  r.Long(); // size
  t->CombiningNodes = r.Array<uint32_t>(3 * size_t(t->Rows));
  return t;
}

std::unique_ptr<TNumberTable> ReadNumberTable() {
  TableReader r("NUMBERS");
  auto t = std::make_unique<TNumberTable>();
  t->Count = r.Word();
  uint32_t size = r.Long();
  t->NumberNodes = r.Array<uint32_t>(t->Count);
  t->NumberValues = r.BoundedArray<uint16_t>((int64_t(size) - 4 * int64_t(t->Count)) / 2);
  return t;
}

// Double-checked load: the table is read under the lock and published only
// when complete. An exception leaves nothing installed.
template <typename Table, typename Reader>
const Table &LoadOnce(std::atomic<const Table *> &slot, Reader read) {
  std::lock_guard<TCriticalSection> guard(DatabaseLock());
  if (const Table *t = slot.load(std::memory_order_acquire)) return *t;
  std::unique_ptr<Table> table = read();
  const Table *t = table.release();
  slot.store(t, std::memory_order_release);
  return *t;
}

template <typename Table> void FreeTable(std::atomic<const Table *> &slot) {
  delete slot.exchange(nullptr, std::memory_order_acq_rel);
}

} // namespace

void BuildEytzinger(const uint32_t *keys, size_t keyStride, const uint32_t *values,
                    size_t valueStride, size_t count, std::vector<uint32_t> &treeKeys,
                    std::vector<uint32_t> &treeValues, uint32_t &depth, TEytzingerTop &top) {
  depth = 0;
  while ((size_t(1) << depth) - 1 < count)
    ++depth;
  const size_t base = treeKeys.size(), nodes = size_t(1) << depth;
  // Padding nodes hold keys above every code and the last value, so that a
  // search landing on one answers as the last element would.
  const uint32_t lastValue = count ? values[(count - 1) * valueStride] : 0;
  treeKeys.resize(base + nodes, UINT32_MAX);
  treeValues.resize(base + nodes, lastValue);
  // An in-order walk of the tree visits the nodes in ascending order.
  size_t next = 0;
  auto fill = [&](auto &self, size_t k) -> void {
    if (k >= nodes) return;
    self(self, 2 * k);
    if (next < count) {
      treeKeys[base + k] = keys[next * keyStride];
      treeValues[base + k] = values[next * valueStride];
      ++next;
    }
    self(self, 2 * k + 1);
  };
  fill(fill, 1);
  for (size_t k = 0; k < std::size(top.Keys); ++k) {
    const uint32_t key = k != 0 && k < nodes ? treeKeys[base + k] : UINT32_MAX;
    top.Keys[k] = static_cast<int32_t>(key ^ 0x80000000u);
  }
}

TCriticalSection &DatabaseLock() {
  TCriticalSection *lock = gDatabaseLock.load(std::memory_order_acquire);
  if (lock) return *lock;
  auto fresh = std::make_unique<TCriticalSection>();
  if (gDatabaseLock.compare_exchange_strong(lock, fresh.get(), std::memory_order_acq_rel))
    return *fresh.release();
  return *lock; // another thread created it first
}

const TTypeTable &LoadTypeTable() {
  return LoadOnce(chartables::TypeTable, ReadTypeTable);
}
const TCaseTable &LoadCaseTable() {
  return LoadOnce(chartables::CaseTable, ReadCaseTable);
}
const TDecompositionTable &LoadDecompositionTable() {
  return LoadOnce(chartables::DecompositionTable, ReadDecompositionTable);
}
const TCombiningTable &LoadCombiningTable() {
  return LoadOnce(chartables::CombiningTable, ReadCombiningTable);
}
const TNumberTable &LoadNumberTable() {
  return LoadOnce(chartables::NumberTable, ReadNumberTable);
}

void FreeCharacterTables() {
  delete gDatabaseLock.exchange(nullptr, std::memory_order_acq_rel);
  FreeTable(chartables::NumberTable);
  FreeTable(chartables::CombiningTable);
  FreeTable(chartables::DecompositionTable);
  FreeTable(chartables::CaseTable);
  FreeTable(chartables::TypeTable);
}

} // namespace kestrel
