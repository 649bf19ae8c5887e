#include <kestrel/search/URECharSetsInternal.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include <kestrel/search/SearchEngine.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel::charsets {
namespace {

constexpr UCS4 LastCode = 0x10FFFF;

constexpr uint64_t Bit(int index) {
  return uint64_t(1) << index;
}

constexpr uint64_t Letters = Bit(upLu) | Bit(upLl) | Bit(upLt) | Bit(upLm) | Bit(upLo);
constexpr uint64_t Cased = Bit(upLu) | Bit(upLl) | Bit(upLt);
constexpr uint64_t Marks = Bit(upMn) | Bit(upMc) | Bit(upMe);
constexpr uint64_t Numbers = Bit(upNd) | Bit(upNl) | Bit(upNo);
constexpr uint64_t Separators = Bit(upZs) | Bit(upZl) | Bit(upZp);
constexpr uint64_t Others = Bit(upCc) | Bit(upCf) | Bit(upCs) | Bit(upCo) | Bit(upCn);
constexpr uint64_t Punctuation =
    Bit(upPc) | Bit(upPd) | Bit(upPs) | Bit(upPe) | Bit(upPi) | Bit(upPf) | Bit(upPo);
constexpr uint64_t Symbols = Bit(upSm) | Bit(upSc) | Bit(upSk) | Bit(upSo);

// The pattern number of a general category (bit n - 1), or 0 for the
// categories the pattern language cannot name.
uint32_t NumberOf(int Category) {
  for (int bit = 0; bit < 32; ++bit)
    if (UREPropertyIndex[bit] == Category && Category <= upSo) return uint32_t(1) << bit;
  return 0;
}

// The ranges of property Index of the character database, in order.
TRanges PropertyRanges(int Index) {
  TRanges out;
  const TTypeTable &t = TypeTable();
  if (Index < 0 || Index >= t.Count) return out;
  const TTypeTable::TSpan span = t.Spans[size_t(Index)];
  for (uint32_t i = 0; i < span.Pairs; ++i)
    out.push_back({t.PropertyRanges[span.Start + 2 * i], t.PropertyRanges[span.Start + 2 * i + 1]});
  return out;
}

TRanges Normalize(TRanges r) {
  std::sort(r.begin(), r.end(),
            [](const TCodeRange &a, const TCodeRange &b) { return a.Low < b.Low; });
  TRanges out;
  for (const TCodeRange &x : r) {
    if (!out.empty() && x.Low <= out.back().High + 1)
      out.back().High = std::max(out.back().High, x.High);
    else
      out.push_back(x);
  }
  return out;
}

TRanges Complement(const TRanges &r) {
  TRanges out;
  UCS4 next = 0;
  for (const TCodeRange &x : r) {
    if (x.Low > next) out.push_back({next, x.Low - 1});
    next = x.High + 1;
  }
  if (next <= LastCode) out.push_back({next, LastCode});
  return out;
}

TRanges Union(TRanges a, const TRanges &b) {
  a.insert(a.end(), b.begin(), b.end());
  return Normalize(std::move(a));
}

// Unassigned code points have no ranges of their own in the database: they
// are those it does not define.
TRanges CategoryRanges(int Category) {
  if (Category == upCn) return Union(PropertyRanges(upCn), Complement(PropertyRanges(upDefined)));
  return PropertyRanges(Category);
}

// Case ignored, a cased category stands for all three.
uint64_t Widened(uint64_t Categories, bool CaseFold) {
  return CaseFold && (Categories & Cased) ? Categories | Cased : Categories;
}

TRanges ExactRanges(const TCodeSet &Set, bool CaseFold) {
  TRanges out = Set.Ranges;
  const uint64_t categories = Widened(Set.Categories, CaseFold);
  for (int c = 0; c < 64; ++c)
    if (categories & Bit(c)) {
      TRanges more = CategoryRanges(c);
      out.insert(out.end(), more.begin(), more.end());
    }
  for (int bit = 0; bit < 32; ++bit)
    if ((Set.Numbers >> bit) & 1u) {
      TRanges more = PropertyRanges(UREPropertyIndex[bit]);
      out.insert(out.end(), more.begin(), more.end());
    }
  return Normalize(std::move(out));
}

// The code points that case folding changes (upper and title case letters
// with a lower-case form), in order.
const std::vector<UCS4> &Unfixed() {
  static const std::vector<UCS4> codes = [] {
    std::vector<UCS4> out;
    for (int category : {upLu, upLt})
      for (const TCodeRange &r : PropertyRanges(category))
        for (UCS4 c = r.Low; c <= r.High; ++c)
          if (UnicodeToLower(c) != c) out.push_back(c);
    std::sort(out.begin(), out.end());
    return out;
  }();
  return codes;
}

bool IsUnfixed(UCS4 c) {
  return std::binary_search(Unfixed().begin(), Unfixed().end(), c);
}

// Every member with its folded form: what the engine compares, since it
// folds the text.
TRanges FoldImage(const TRanges &set) {
  TRanges out = set;
  for (const TCodeRange &r : set) {
    auto from = std::lower_bound(Unfixed().begin(), Unfixed().end(), r.Low);
    for (auto it = from; it != Unfixed().end() && *it <= r.High; ++it) {
      const UCS4 l = UnicodeToLower(*it);
      out.push_back({l, l});
    }
  }
  return Normalize(std::move(out));
}

// Members that folding changes are never compared: they may stand inside a
// range (so that ranges stay few) but not at its ends, which the engine
// folds as it reads them.
TRanges Filled(TRanges set) {
  for (UCS4 c : Unfixed())
    set.push_back({c, c});
  TRanges trimmed;
  for (TCodeRange r : Normalize(std::move(set))) {
    while (r.Low <= r.High && IsUnfixed(r.Low))
      ++r.Low;
    while (r.High >= r.Low && IsUnfixed(r.High))
      --r.High;
    if (r.Low <= r.High) trimmed.push_back(r);
  }
  return trimmed;
}

// Members of a class, highest first: a high surrogate at the end of an item
// waits for the next unit (a low one would join it), and the next item,
// being lower, never starts with a low surrogate. Should the last item end
// with a high surrogate, the first member is repeated to settle it.
std::u16string WriteRanges(TRanges ranges) {
  std::sort(ranges.begin(), ranges.end(),
            [](const TCodeRange &a, const TCodeRange &b) { return a.Low > b.Low; });
  std::u16string out;
  for (const TCodeRange &r : ranges) {
    out += CodeEscape(r.Low);
    if (r.High != r.Low) {
      out += u'-';
      out += CodeEscape(r.High);
    }
  }
  if (!ranges.empty() && IsHighSurrogateUnit(ranges.back().High) &&
      !IsLowSurrogateUnit(ranges.front().High))
    out += CodeEscape(ranges.front().High);
  return out;
}

std::u16string NumberList(uint32_t numbers) {
  std::u16string out;
  for (int bit = 0; bit < 32; ++bit)
    if ((numbers >> bit) & 1u) {
      if (!out.empty()) out += u',';
      for (char c : std::to_string(bit + 1))
        out += char16_t(c);
    }
  return out;
}

} // namespace

void TCodeSet::Add(const TCodeSet &Other) {
  Ranges.insert(Ranges.end(), Other.Ranges.begin(), Other.Ranges.end());
  Categories |= Other.Categories;
  Numbers |= Other.Numbers;
}

std::u16string CodeEscape(UCS4 Code) {
  char buf[16];
  if (Code < 0x10000) {
    std::snprintf(buf, sizeof buf, "\\x%04X", unsigned(Code));
  } else {
    const UCS4 v = Code - 0x10000;
    std::snprintf(buf, sizeof buf, "\\x%04X\\x%04X", unsigned(0xD800 + (v >> 10)),
                  unsigned(0xDC00 + (v & 0x3FF)));
  }
  return std::u16string(buf, buf + std::char_traits<char>::length(buf));
}

bool CategorySet(const std::string &Name, TCodeSet &Set) {
  static const std::map<std::string, uint64_t> names = {
      {"L", Letters},    {"L&", Cased},     {"LC", Cased},      {"Lu", Bit(upLu)},
      {"Ll", Bit(upLl)}, {"Lt", Bit(upLt)}, {"Lm", Bit(upLm)},  {"Lo", Bit(upLo)},
      {"M", Marks},      {"Mn", Bit(upMn)}, {"Mc", Bit(upMc)},  {"Me", Bit(upMe)},
      {"N", Numbers},    {"Nd", Bit(upNd)}, {"Nl", Bit(upNl)},  {"No", Bit(upNo)},
      {"Z", Separators}, {"Zs", Bit(upZs)}, {"Zl", Bit(upZl)},  {"Zp", Bit(upZp)},
      {"C", Others},     {"Cc", Bit(upCc)}, {"Cf", Bit(upCf)},  {"Cs", Bit(upCs)},
      {"Co", Bit(upCo)}, {"Cn", Bit(upCn)}, {"P", Punctuation}, {"Pc", Bit(upPc)},
      {"Pd", Bit(upPd)}, {"Ps", Bit(upPs)}, {"Pe", Bit(upPe)},  {"Pi", Bit(upPi)},
      {"Pf", Bit(upPf)}, {"Po", Bit(upPo)}, {"S", Symbols},     {"Sm", Bit(upSm)},
      {"Sc", Bit(upSc)}, {"Sk", Bit(upSk)}, {"So", Bit(upSo)},
  };
  auto it = names.find(Name);
  if (it == names.end()) return false;
  Set.Categories |= it->second;
  return true;
}

bool NamedSet(const std::string &Name, TCodeSet &Set) {
  const TRanges space = {{0x09, 0x0D}, {0x85, 0x85}};
  const uint64_t graph = Letters | Marks | Numbers | Punctuation | Symbols;
  struct TNamed {
    uint64_t categories;
    TRanges ranges;
  };
  static const std::map<std::string, TNamed> names = {
      {"alpha", {Letters | Marks, {}}},
      {"digit", {Bit(upNd), {}}},
      {"d", {Bit(upNd), {}}},
      {"alnum", {Letters | Marks | Bit(upNd), {}}},
      {"upper", {Bit(upLu), {}}},
      {"lower", {Bit(upLl), {}}},
      {"space", {Separators, space}},
      {"s", {Separators, space}},
      {"blank", {Bit(upZs), {{0x09, 0x09}}}},
      {"punct", {Punctuation | Symbols, {}}},
      {"graph", {graph, {}}},
      {"print", {graph | Bit(upZs), {}}},
      {"cntrl", {Bit(upCc), {}}},
      {"xdigit", {0, {{'0', '9'}, {'A', 'F'}, {'a', 'f'}}}},
      {"word", {Letters | Marks | Bit(upNd) | Bit(upPc), {}}},
      {"w", {Letters | Marks | Bit(upNd) | Bit(upPc), {}}},
  };
  auto it = names.find(Name);
  if (it == names.end()) return false;
  Set.Categories |= it->second.categories;
  Set.Ranges.insert(Set.Ranges.end(), it->second.ranges.begin(), it->second.ranges.end());
  return true;
}

bool NumberSet(const std::string &List, TCodeSet &Set) {
  uint32_t n = 0;
  for (char c : List + ",") {
    if (c == ',') {
      if (n > 0) Set.Numbers |= uint32_t(1) << (n - 1);
      n = 0;
      continue;
    }
    n = 10 * n + uint32_t(c - '0');
    if (n > 32) return false;
  }
  return true;
}

std::u16string Write(const TCodeSet &Set, bool Negated, bool CaseFold) {
  const uint64_t categories = Widened(Set.Categories, CaseFold);
  uint32_t numbers = Set.Numbers;
  TRanges ranges = Set.Ranges;
  for (int c = 0; c < 64; ++c) {
    if (!(categories & Bit(c))) continue;
    if (uint32_t n = NumberOf(c)) {
      numbers |= n;
    } else {
      TRanges more = CategoryRanges(c);
      ranges.insert(ranges.end(), more.begin(), more.end());
    }
  }
  // Without ranges a class could not be closed: the properties stand alone,
  // in a group so that a digit after them is no part of the list.
  if (ranges.empty()) return (Negated ? u"(\\P" : u"(\\p") + NumberList(numbers) + u")";
  std::u16string out = Negated ? u"[^" : u"[";
  out += WriteRanges(std::move(ranges));
  if (numbers != 0) {
    out += u"\\p";
    out += NumberList(numbers);
  }
  return out + u"]";
}

std::u16string WriteExact(const TCodeSet &Positive, const std::vector<TCodeSet> &Complemented,
                          bool Negated, bool CaseFold) {
  TRanges set = ExactRanges(Positive, CaseFold);
  for (const TCodeSet &c : Complemented)
    set = Union(set, Complement(ExactRanges(c, CaseFold)));
  if (Negated) set = Complement(set);
  TRanges members = set, others = Complement(set);
  if (CaseFold) {
    const TRanges image = FoldImage(set);
    members = Filled(image);
    others = Filled(Complement(image));
  }
  // (Built by appending: GCC 12 warns falsely on a literal + a temporary.)
  std::u16string plain = u"[", negated = u"[^";
  plain.append(WriteRanges(members)).append(u"]");
  negated.append(WriteRanges(others)).append(u"]");
  if (members.empty()) return negated;
  if (others.empty()) return plain;
  return negated.size() < plain.size() ? negated : plain;
}

} // namespace kestrel::charsets
