// Loading and freeing the five character tables.
#include <kestrel/unicode/CharTables.h>

#include <algorithm>
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
// next offset that is not 0xFFFF (the closing entry for the last ones).
void DeriveBounds(TTypeTable &t) {
  const auto &offsets = t.PropertyOffsets;
  const size_t total = t.PropertyRanges.size();
  t.Spans.assign(t.Count, {});
  for (size_t n = 0; n < t.Count; ++n) {
    if (offsets[n] == 0xFFFF) continue;
    size_t k = n + 1;
    while (k < t.Count && offsets[k] == 0xFFFF)
      ++k;
    size_t first = offsets[n], end = std::min<size_t>(offsets[k], total);
    uint32_t pairs = uint32_t((end > first ? end - first : 0) / 2);
    if (pairs != 0)
      t.Spans[n] = {uint32_t(first), pairs, t.PropertyRanges[first],
                    t.PropertyRanges[first + 2 * pairs - 1]};
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
