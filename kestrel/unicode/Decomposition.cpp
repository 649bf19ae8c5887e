// Decomposition over the "DECOMPOSE" and "COMBINE" tables, and Hangul.
#include <kestrel/unicode/Decomposition.h>

#include <algorithm>

#include <kestrel/unicode/CharTables.h>

namespace kestrel {
namespace {

bool IsSyllable(UCS4 code) {
  return code >= SBase && code - SBase < UCS4(SCount);
}

template <typename Out> void DecomposeHangul(UCS4 code, Out out) {
  UCS4 s = code - SBase, t = s % TCount;
  out(LBase + s / NCount);
  out(VBase + (s % NCount) / TCount);
  if (t != 0) out(TBase + t);
}

// The rows that the node area holds with the closing number after them.
int64_t RowsOf(const TDecompositionTable &t) {
  int64_t nodes = static_cast<int64_t>(t.DecompositionNodes.size());
  return std::max<int64_t>(0, std::min<int64_t>(t.Rows, (nodes - 1) / 2));
}

// The row of Code in the node area (its index, even), or -1. Bisection on
// even indexes, as the rows are pairs of code and offset.
int64_t FindRow(const TDecompositionTable &t, UCS4 code) {
  return FindCodePair(t.DecompositionNodes.data(), 2 * RowsOf(t) - 2, code);
}

// Gives each element of Code's decomposition to out, in order.
template <typename Out>
void DecomposeWith(const TTypeTable &types, const TDecompositionTable &t, UCS4 code, Out out) {
  if (IsSyllable(code)) {
    DecomposeHangul(code, out);
    return;
  }
  int64_t row = LookupPropertyIn(types, code, upComposite) ? FindRow(t, code) : -1;
  if (row < 0) {
    out(code);
    return;
  }
  // The run goes up to the next row's offset (the closing total for the last
  // row); what lies past the data that the table holds counts as 0.
  bool lastRow = row + 2 >= 2 * RowsOf(t);
  size_t first = t.DecompositionNodes[row + 1];
  size_t end = t.DecompositionNodes[lastRow ? row + 2 : row + 3];
  size_t last = std::min<size_t>(end, t.DecompositionData.size());
  for (size_t i = first; i < last; ++i)
    if (UCS4 e = t.DecompositionData[i]; e != 0) out(e);
}

uint32_t ClassIn(const TCombiningTable &t, UCS4 code) {
  int64_t rows = std::min<int64_t>(t.Rows, static_cast<int64_t>(t.CombiningNodes.size()) / 3);
  const uint32_t *nodes = t.CombiningNodes.data();
  int64_t l = 0, r = 3 * rows - 1;
  while (l <= r) {
    int64_t m = (l + r) >> 1;
    m -= m % 3;
    if (code > nodes[m + 1])
      l = m + 3;
    else if (code < nodes[m])
      r = m - 3;
    else
      return nodes[m + 2];
  }
  return 0;
}

} // namespace

std::vector<UCS4> UnicodeDecomposeHangul(UCS4 Code) {
  std::vector<UCS4> result;
  if (IsSyllable(Code)) DecomposeHangul(Code, [&](UCS4 e) { result.push_back(e); });
  return result;
}

std::vector<UCS4> UnicodeDecompose(UCS4 Code) {
  const TDecompositionTable &t = DecompositionTable();
  std::vector<UCS4> result;
  DecomposeWith(TypeTable(), t, Code, [&](UCS4 e) { result.push_back(e); });
  return result;
}

uint32_t UnicodeCombiningClass(UCS4 Code) {
  return ClassIn(CombiningTable(), Code);
}

std::u16string WideDecompose(std::u16string_view S) {
  std::u16string result;
  if (S.empty()) return result;
  const TDecompositionTable &t = DecompositionTable();
  const TTypeTable &types = TypeTable();
  const TCombiningTable &classes = CombiningTable();
  result.reserve(S.size());
  auto place = [&](UCS4 e) {
    uint32_t c = ClassIn(classes, e);
    char16_t unit = static_cast<char16_t>(e);
    if (c == 0) {
      result.push_back(unit);
      return;
    }
    // k counts from 1; the unit at position 1 is never compared.
    size_t k = result.size();
    while (k > 1 && c < ClassIn(classes, result[k - 1]))
      --k;
    result.insert(result.begin() + static_cast<std::ptrdiff_t>(k), unit);
  };
  for (char16_t u : S)
    DecomposeWith(types, t, u, place);
  return result;
}

std::u16string WideComposeHangul(std::u16string_view S) {
  if (S.empty()) return {};
  std::u16string result(S.size(), u'\0');
  int64_t last = S[0];
  result[0] = S[0];
  size_t p = 0; // the position of Last, from 0
  for (size_t i = 1; i < S.size(); ++i) {
    int64_t ch = S[i];
    int64_t l = last - LBase, v = ch - VBase, s = last - SBase, tr = ch - TBase;
    if (l >= 0 && l < LCount && v >= 0 && v < VCount) {
      last = (l * VCount + v) * TCount + SBase;
      result[p] = static_cast<char16_t>(last);
    } else if (s >= 0 && s < SCount && s % TCount == 0 && tr >= 0 && tr <= TCount) {
      // The bound is TCount, not TCount - 1: U+11C3 is taken too and moves
      // the syllable on to the next one without a trailing consonant.
      last += tr;
      result[p] = static_cast<char16_t>(last);
    } else {
      last = ch;
      result[++p] = static_cast<char16_t>(ch);
    }
  }
  result.resize(p + 1);
  return result;
}

std::u16string WideCompose(std::u16string_view S) {
  return std::u16string(S);
}

} // namespace kestrel
