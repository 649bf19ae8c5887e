// Case mapping over the "CASE" table.
#include <kestrel/unicode/CaseMapping.h>

#include <algorithm>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

#include <kestrel/frame/platform/Processor.h>
#include <kestrel/unicode/CharTables.h>

namespace kestrel {

// Chosen while the library loads.
bool chartables::VectorSearches = ProcessorRunsAvx2();

namespace {

// The row of Code among the row starts l..r of one section, whose first
// column ascends: the last row whose code is not above Code is the only one
// that can be Code's; it is found by halving without branches, so that the
// search costs the same whatever the text.
UCS4 LookupIn(const TCaseTable &t, UCS4 code, int64_t l, int64_t r, int column) {
  if (l > r) return code;
  const uint32_t *base = t.CaseMap.data() + l;
  size_t count = static_cast<size_t>((r - l) / 3 + 1);
  while (count > 1) {
    size_t half = count >> 1;
    base = base[3 * half] <= code ? base + 3 * half : base;
    count -= half;
  }
  return *base == code ? base[column] : code;
}

// The same search over the section's copy in Eytzinger order.
UCS4 LookupSection(const TCaseTable &t, UCS4 code, int section, int column) {
  const uint32_t k = EytzingerPredecessor(t.Trees[section].Tree(), code);
  if (k == 0) return code;
  const uint32_t row = t.Trees[section].Rows[k];
  return t.CaseMap[row] == code ? t.CaseMap[row + unsigned(column)] : code;
}

// One code along its route. A unit that no section of the route holds maps
// to itself whatever its category, so it skips the category tests, as does
// the Keep test when no row the route reaches is in that category; a section
// is searched only for a code it holds.
UCS4 MapCode(const TTypeTable &types, const TCaseTable &t, int conversion, UCS4 code) {
  const TCaseRoute &route = kCaseRoutes[conversion];
  const unsigned reach = ReachOf(t.Reach[conversion], code);
  if (reach == 0) return code;
  if (t.KeepReachable[conversion] && LookupPropertyIn(types, code, unsigned(route.Keep)))
    return code;
  if (LookupPropertyIn(types, code, unsigned(route.Test)))
    return reach & 1 ? LookupSection(t, code, route.IfSection, route.IfColumn) : code;
  return reach & 2 ? LookupSection(t, code, route.ElseSection, route.ElseColumn) : code;
}

// The case table first, then the category tests, as each conversion loads.
UCS4 MapOne(int conversion, UCS4 code) {
  const TCaseTable &t = CaseTable();
  return MapCode(TypeTable(), t, conversion, code);
}

// Eight units along their route at once. Every search takes a fixed number
// of steps, so the eight are walked in step with each other: their loads do
// not wait on one another, where one code's steps would each wait on the last.
constexpr int kBatch = 8;
using TLanes = uint32_t[kBatch];

#if defined(__x86_64__) || defined(__i386__)
// One level down for eight lanes: a key above the code gives -1, so the node
// becomes 2k + 1 less one.
__attribute__((target("avx2"), always_inline)) inline __m256i Down(__m256i k, __m256i key,
                                                                   __m256i code) {
  return _mm256_add_epi32(_mm256_add_epi32(k, k),
                          _mm256_add_epi32(_mm256_set1_epi32(1), _mm256_cmpgt_epi32(key, code)));
}

// Picks for each lane the key of its node among 16 consecutive nodes held in
// two registers: a permute reads the node number modulo 8, bit 3 picks the
// register.
__attribute__((target("avx2"), always_inline)) inline __m256i KeyOf16(__m256i low, __m256i high,
                                                                      __m256i n) {
  return _mm256_castps_si256(
      _mm256_blendv_ps(_mm256_castsi256_ps(_mm256_permutevar8x32_epi32(low, n)),
                       _mm256_castsi256_ps(_mm256_permutevar8x32_epi32(high, n)),
                       _mm256_castsi256_ps(_mm256_slli_epi32(n, 28))));
}

// The first six levels of eight searches at once: the 63 keys of those
// levels sit in eight registers, and each lane reads the key of its node with
// permutes and blends, where the scalar steps would read them one by one.
static_assert(kTopLevels == 6);
__attribute__((target("avx2"))) void TopLevels(const TEytzingerTop &top, const TLanes &code,
                                               TLanes &k) {
  const __m256i *keys = reinterpret_cast<const __m256i *>(top.Keys);
  __m256i r[8];
  for (int i = 0; i < 8; ++i)
    r[i] = _mm256_load_si256(keys + i);
  const __m256i flipped = _mm256_xor_si256(
      _mm256_loadu_si256(reinterpret_cast<const __m256i *>(code)), _mm256_set1_epi32(INT32_MIN));
  __m256i n = _mm256_set1_epi32(1);
  for (int level = 0; level < 3; ++level) // nodes 1 to 7
    n = Down(n, _mm256_permutevar8x32_epi32(r[0], n), flipped);
  n = Down(n, _mm256_permutevar8x32_epi32(r[1], n), flipped); // nodes 8 to 15
  n = Down(n, KeyOf16(r[2], r[3], n), flipped);               // nodes 16 to 31
  // Nodes 32 to 63: bit 4 of the node picks the half.
  const __m256i sixth = _mm256_castps_si256(_mm256_blendv_ps(
      _mm256_castsi256_ps(KeyOf16(r[4], r[5], n)), _mm256_castsi256_ps(KeyOf16(r[6], r[7], n)),
      _mm256_castsi256_ps(_mm256_slli_epi32(n, 27))));
  n = Down(n, sixth, flipped);
  _mm256_storeu_si256(reinterpret_cast<__m256i *>(k), n);
}

#else
void TopLevels(const TEytzingerTop &, const TLanes &, TLanes &) {}
#endif

[[gnu::always_inline]] inline void Predecessors(const TEytzingerTree &tree, const TLanes &code,
                                                TLanes &node) {
  TLanes k;
  uint32_t depth = tree.Depth;
  if (chartables::VectorSearches && depth >= kTopLevels) {
    TopLevels(*tree.Top, code, k);
    depth -= kTopLevels;
  } else {
    for (int i = 0; i < kBatch; ++i)
      k[i] = 1;
  }
  const uint32_t *const keys = tree.Keys;
  for (; depth > 0; --depth)
    for (int i = 0; i < kBatch; ++i)
      k[i] = EytzingerStep(keys, k[i], code[i]);
  for (int i = 0; i < kBatch; ++i)
    node[i] = k[i] >> (__builtin_ctz(k[i]) + 1);
}

// The lanes' steps stay scalar: vectorised by gcc, each would gather its keys
// one by one through shuffles.
#if defined(__GNUC__) && !defined(__clang__)
#define KESTREL_SCALAR_LANES __attribute__((optimize("no-tree-vectorize")))
#else
#define KESTREL_SCALAR_LANES
#endif

// As LookupPropertyIn for each lane, but for its first refusal of codes
// outside the property's lowest and highest code, which answers the same.
KESTREL_SCALAR_LANES void InProperty(const TTypeTable &types, int n, const TLanes &code,
                                     bool (&in)[kBatch]) {
  const TTypeTable::TSpan span = types.Spans[unsigned(n)];
  if (span.Pairs == 0) {
    std::fill(in, in + kBatch, false);
    return;
  }
  TLanes node;
  Predecessors(types.TreeOf(unsigned(n)), code, node);
  const uint32_t *last = types.TreeLast.data() + span.Tree;
  for (int i = 0; i < kBatch; ++i)
    in[i] = node[i] != 0 && code[i] <= last[node[i]];
}

// As LookupSection, for each lane.
KESTREL_SCALAR_LANES void InSection(const TCaseTable &t, int section, int column,
                                    const TLanes &code, TLanes &out) {
  const TCaseTable::TSectionTree &tree = t.Trees[section];
  TLanes node;
  Predecessors(tree.Tree(), code, node);
  for (int i = 0; i < kBatch; ++i) {
    const uint32_t row = tree.Rows[node[i]];
    out[i] =
        node[i] != 0 && t.CaseMap[row] == code[i] ? t.CaseMap[row + unsigned(column)] : code[i];
  }
}

// Reach holds the bits of the eight units together: a section that holds none
// of them is not searched.
void MapBatch(const TTypeTable &types, const TCaseTable &t, int conversion, const TLanes &code,
              unsigned reach, TLanes &out) {
  const TCaseRoute &route = kCaseRoutes[conversion];
  bool keep[kBatch] = {}, test[kBatch];
  TLanes ifValue, elseValue;
  if (t.KeepReachable[conversion]) InProperty(types, route.Keep, code, keep);
  InProperty(types, route.Test, code, test);
  if (reach & 1)
    InSection(t, route.IfSection, route.IfColumn, code, ifValue);
  else
    std::copy(code, code + kBatch, ifValue);
  if (reach & 2)
    InSection(t, route.ElseSection, route.ElseColumn, code, elseValue);
  else
    std::copy(code, code + kBatch, elseValue);
  for (int i = 0; i < kBatch; ++i)
    out[i] = keep[i] ? code[i] : test[i] ? ifValue[i] : elseValue[i];
}

// Units are gathered while they can be mapped and mapped eight at a time;
// the others are left as they are in the copy.
std::u16string MapEach(int conversion, std::u16string_view s) {
  std::u16string result(s);
  if (result.empty()) return result;
  const TCaseTable &t = CaseTable();
  const TTypeTable &types = TypeTable();
  const TCaseRoute &route = kCaseRoutes[conversion];
  if (types.Count <= unsigned(std::max(route.Keep, route.Test))) {
    for (char16_t &u : result) // a table without the categories: one at a time
      u = static_cast<char16_t>(MapCode(types, t, conversion, u));
    return result;
  }
  const uint64_t *reachOf = t.Reach[conversion].data();
  char16_t *units = result.data();
  const size_t size = result.size();
  size_t at[kBatch + 1];
  TLanes code, out;
  int pending = 0;
  unsigned reach = 0;
  for (size_t i = 0; i < size; ++i) {
    const char16_t u = units[i];
    const unsigned bits = unsigned(reachOf[u / 32] >> (u % 32 * 2)) & 3;
    at[pending] = i; // kept only when the unit can be mapped
    pending += int(bits != 0);
    reach |= bits;
    if (pending == kBatch) {
      for (int k = 0; k < kBatch; ++k)
        code[k] = units[at[k]];
      MapBatch(types, t, conversion, code, reach, out);
      for (int k = 0; k < kBatch; ++k)
        units[at[k]] = static_cast<char16_t>(out[k]);
      pending = 0;
      reach = 0;
    }
  }
  for (int k = 0; k < pending; ++k)
    units[at[k]] = static_cast<char16_t>(MapCode(types, t, conversion, units[at[k]]));
  return result;
}

} // namespace

UCS4 UnicodeLookupCase(UCS4 Code, int32_t First, int32_t Last, int32_t Column) {
  const TCaseTable &t = CaseTable();
  int64_t size = static_cast<int64_t>(t.CaseMap.size());
  if (Column < 0 || Column > 2 || First < 0 || Last > size - 3) return Code;
  return LookupIn(t, Code, First, Last, Column);
}

UCS4 UnicodeToUpper(UCS4 Code) {
  return MapOne(ccToUpper, Code);
}
UCS4 UnicodeToLower(UCS4 Code) {
  return MapOne(ccToLower, Code);
}
UCS4 UnicodeToTitle(UCS4 Code) {
  return MapOne(ccToTitle, Code);
}

char16_t WideUpCase(char16_t C) {
  return static_cast<char16_t>(UnicodeToUpper(C));
}
char16_t WideLoCase(char16_t C) {
  return static_cast<char16_t>(UnicodeToLower(C));
}
char16_t WideTitleCaseChar(char16_t C) {
  return static_cast<char16_t>(UnicodeToTitle(C));
}

std::u16string WideUpperCase(std::u16string_view S) {
  return MapEach(ccToUpper, S);
}
std::u16string WideLowerCase(std::u16string_view S) {
  return MapEach(ccToLower, S);
}
std::u16string WideTitleCaseString(std::u16string_view S) {
  return MapEach(ccToTitle, S);
}

} // namespace kestrel
