// The five stored tables, built from the records of UnicodeData.txt.
#include <algorithm>
#include <map>
#include <utility>

#include "Properties.h"
#include "UcdGen.h"

namespace kestrel::ucdgen {

namespace {

// Sorted, merged ranges of one property, built by adding code points or ranges.
class RangeSet {
public:
  void Add(uint32_t first, uint32_t last) {
    if (first <= last) pending_.emplace_back(first, last);
  }
  void Add(uint32_t code) { Add(code, code); }
  std::vector<std::pair<uint32_t, uint32_t>> Ranges() const {
    std::vector<std::pair<uint32_t, uint32_t>> sorted = pending_, merged;
    std::sort(sorted.begin(), sorted.end());
    for (const auto &r : sorted) {
      if (!merged.empty() && uint64_t(r.first) <= uint64_t(merged.back().second) + 1)
        merged.back().second = std::max(merged.back().second, r.second);
      else
        merged.push_back(r);
    }
    return merged;
  }

private:
  std::vector<std::pair<uint32_t, uint32_t>> pending_;
};

// Little-endian writer of a stored table.
class Writer {
public:
  void U16(uint32_t v) {
    if (v > 0xFFFF) throw UcdError("a 16-bit field overflows: " + std::to_string(v));
    bytes_.push_back(char(v & 0xFF));
    bytes_.push_back(char(v >> 8));
  }
  void U32(uint32_t v) {
    for (int i = 0; i < 4; ++i)
      bytes_.push_back(char((v >> (8 * i)) & 0xFF));
  }
  void Mark() { U16(0xFEFF); }
  size_t Size() const { return bytes_.size(); }
  std::string Take() { return std::move(bytes_); }

private:
  std::string bytes_;
};

// Private-use characters that the library defines itself.
struct PrivateRow {
  uint32_t first, last;
  int category;
};

const PrivateRow kPrivateRows[] = {
    {0xE900, 0xE90F, kLo}, {0xE915, 0xE939, kLo}, {0xE940, 0xE95A, kLo}, {0xE970, 0xE976, kLo},
    {0xE97C, 0xE97D, kLo}, {0xE97B, 0xE97B, kMn}, {0xE97E, 0xE97F, kMn}};

struct PrivateRun {
  uint32_t first, last;
  std::vector<uint32_t> run;
};

const std::vector<PrivateRun> &PrivateDecompositions() {
  static const std::vector<uint32_t> hrv = {0x0939, 0x0943, 0x0935}, hr = {0x0939, 0x0943},
                                     sstr = {0x0938, 0x094D, 0x0924, 0x094D, 0x0930};
  static const std::vector<PrivateRun> runs = {
      {0xE900, 0xE906, hrv}, {0xE940, 0xE959, hrv}, {0xE970, 0xE976, hrv}, {0xE929, 0xE929, hr},
      {0xE931, 0xE931, hr},  {0xE934, 0xE934, hr},  {0xE97C, 0xE97C, hr},  {0xE95A, 0xE95A, sstr}};
  return runs;
}

struct PrivateClass {
  uint32_t first, last, cls;
};

const PrivateClass kPrivateClasses[] = {{0xE97B, 0xE97B, 36}, {0xE97E, 0xE97F, 36}};

// Marks whose published class the library does not keep (class 0 for it).
bool ClassDropped(uint32_t code) {
  return code == 0xFB1E || (code >= 0xFE20 && code <= 0xFE23);
}

// The lists of their own: explicit code points and ranges.
const std::vector<std::pair<uint32_t, uint32_t>> kNonBreakingList = {
    {0x00A0, 0x00A0}, {0x2007, 0x2007}, {0x2011, 0x2011}, {0xFEFF, 0xFEFF}};

const std::vector<std::pair<uint32_t, uint32_t>> kSymmetricList = {
    {0x0028, 0x0029}, {0x005B, 0x005B}, {0x005D, 0x005D}, {0x007B, 0x007B}, {0x007D, 0x007D},
    {0x00AB, 0x00AB}, {0x00BB, 0x00BB}, {0x0F3A, 0x0F3F}, {0x2018, 0x201F}, {0x2039, 0x203A},
    {0x2045, 0x2046}, {0x207D, 0x207E}, {0x208D, 0x208E}, {0x2329, 0x232A}, {0x3008, 0x3011},
    {0x3014, 0x301B}, {0x301D, 0x301F}, {0xFD3E, 0xFD3F}, {0xFE35, 0xFE44}, {0xFE59, 0xFE5E},
    {0xFF08, 0xFF09}, {0xFF3B, 0xFF3B}, {0xFF3D, 0xFF3D}, {0xFF5B, 0xFF5B}, {0xFF5D, 0xFF5D},
    {0xFF62, 0xFF63}};

const std::vector<std::pair<uint32_t, uint32_t>> kHexDigitList = {
    {0x0030, 0x0039}, {0x0041, 0x0046}, {0x0061, 0x0066},
    {0xFF10, 0xFF19}, {0xFF21, 0xFF26}, {0xFF41, 0xFF46}};

const std::vector<std::pair<uint32_t, uint32_t>> kQuotationMarkList = {
    {0x0022, 0x0022}, {0x0027, 0x0027}, {0x00AB, 0x00AB}, {0x00BB, 0x00BB},
    {0x2018, 0x201F}, {0x2039, 0x203A}, {0x300C, 0x300F}, {0x301D, 0x301F},
    {0xFE41, 0xFE44}, {0xFF02, 0xFF02}, {0xFF07, 0xFF07}, {0xFF62, 0xFF63}};

// A canonical (untagged) decomposition, or empty.
std::vector<uint32_t> CanonicalMapping(const UcdRecord &r) {
  if (r.decomposition.empty() || r.decomposition[0] == '<') return {};
  return ParseCodeList(r.decomposition, "the decomposition of " + r.name);
}

bool IsRangeFirst(const UcdRecord &r) {
  return r.name.size() >= 8 && r.name.compare(r.name.size() - 8, 8, ", First>") == 0;
}

bool NameHas(const UcdRecord &r, const char *text) {
  return r.name.find(text) != std::string::npos;
}

uint32_t OptionalCode(const std::string &text, const UcdRecord &r) {
  return text.empty() ? 0 : ParseHex(text, "the case mapping of " + r.name);
}

// Appends the full canonical decomposition of code, each expanded mapping
// closed by a 0 element.
void AppendRun(uint32_t code, const std::map<uint32_t, std::vector<uint32_t>> &mappings,
               std::vector<uint32_t> &out, int depth) {
  if (depth > 16) throw UcdError("decomposition cycle at " + std::to_string(code));
  for (uint32_t element : mappings.at(code)) {
    if (mappings.count(element))
      AppendRun(element, mappings, out, depth + 1);
    else
      out.push_back(element);
  }
  out.push_back(0);
}

uint32_t ParseNumberPart(const std::string &text, const UcdRecord &r) {
  if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos)
    throw UcdError("unsupported numeric value '" + r.numeric + "' of " + r.name);
  uint32_t v = uint32_t(std::stoul(text));
  if (v > 0xFFFF)
    throw UcdError("numeric value '" + r.numeric + "' of " + r.name + " exceeds 16 bits");
  return v;
}

} // namespace

// The "TYPE" table.
std::string BuildTypeTable(const std::vector<UcdRecord> &records) {
  std::vector<RangeSet> props(kPropertyCount);
  auto addCharacter = [&](const UcdRecord &r, uint32_t first, uint32_t last) {
    props[CategoryIndex(r.category)].Add(first, last);
    props[BidiIndex(r.bidi)].Add(first, last);
    props[kDefined].Add(first, last);
    if (CanonicalMapping(r).size() >= 2) props[kComposite].Add(first, last);
  };
  for (size_t i = 0; i < records.size(); ++i) {
    const UcdRecord &r = records[i];
    if (r.category == "Cs" || r.category == "Co")
      continue; // the surrogate and private-use blocks are given below
    if (IsRangeFirst(r) && i + 1 < records.size() &&
        (NameHas(r, "<CJK Ideograph,") || NameHas(r, "<Hangul Syllable"))) {
      uint32_t last = records[++i].code;
      addCharacter(r, r.code, last);
      if (NameHas(r, "<CJK Ideograph,")) {
        // The letter and direction hold for the whole block, assigned or not.
        props[kLo].Add(r.code, 0x9FFF);
        props[kL].Add(r.code, 0x9FFF);
      }
      continue;
    }
    // Any other pair (CJK extension A) stands as its two end points.
    addCharacter(r, r.code, r.code);
  }
  // The compatibility ideographs: the whole block, all of it defined.
  props[kLo].Add(0xF900, 0xFAFF);
  props[kL].Add(0xF900, 0xFAFF);
  props[kDefined].Add(0xF900, 0xFAFF);
  // Surrogates: the code points that pairs stand for, not the halves.
  props[kCs].Add(0x10000, kMaxCode);
  props[kL].Add(0x10000, kMaxCode);
  props[kCo].Add(0xE000, 0xF8FF);
  props[kL].Add(0xE000, 0xF8FF);
  for (const PrivateRow &p : kPrivateRows) {
    props[p.category].Add(p.first, p.last);
    props[kDefined].Add(p.first, p.last);
  }
  for (const PrivateRun &p : PrivateDecompositions())
    props[kComposite].Add(p.first, p.last);
  for (const auto &[a, b] : kNonBreakingList)
    props[kNonBreaking].Add(a, b);
  for (const auto &[a, b] : kSymmetricList)
    props[kSymmetric].Add(a, b);
  for (const auto &[a, b] : kHexDigitList)
    props[kHexDigit].Add(a, b);
  for (const auto &[a, b] : kQuotationMarkList)
    props[kQuotationMark].Add(a, b);
  props[kSpaceControls].Add(0x0009, 0x000D);

  std::vector<uint32_t> offsets, ranges;
  for (const RangeSet &set : props) {
    auto list = set.Ranges();
    offsets.push_back(list.empty() ? 0xFFFF : uint32_t(ranges.size()));
    for (const auto &[a, b] : list) {
      ranges.push_back(a);
      ranges.push_back(b);
    }
  }
  offsets.push_back(uint32_t(ranges.size()));
  size_t offsetWords = (offsets.size() + 1) / 2 * 2; // rounded up to a multiple of 4 bytes
  Writer w;
  w.Mark();
  w.U16(kPropertyCount);
  w.U32(uint32_t(offsetWords * 2 + ranges.size() * 4));
  for (size_t i = 0; i < offsetWords; ++i)
    w.U16(i < offsets.size() ? offsets[i] : 0);
  for (uint32_t v : ranges)
    w.U32(v);
  return w.Take();
}

// The "CASE" table: three sections of (character, mapping, mapping) rows.
std::string BuildCaseTable(const std::vector<UcdRecord> &records) {
  using Row = std::vector<uint32_t>;
  std::vector<Row> upper, lower, title;
  for (const UcdRecord &r : records) {
    bool hasUpper = !r.upper.empty(), hasLower = !r.lower.empty();
    uint32_t up = OptionalCode(r.upper, r), lo = OptionalCode(r.lower, r);
    uint32_t ti = r.title.empty() ? 0 : OptionalCode(r.title, r);
    if (hasLower && !hasUpper)
      upper.push_back({r.code, lo, r.title.empty() ? r.code : ti});
    else if (hasUpper && !hasLower)
      lower.push_back({r.code, up, r.title.empty() ? up : ti});
    else if (hasUpper && hasLower)
      title.push_back({r.code, up, lo});
  }
  Writer w;
  w.Mark();
  w.U16(uint32_t(upper.size() + lower.size() + title.size()));
  w.U16(uint32_t(upper.size()));
  w.U16(uint32_t(lower.size()));
  for (const auto *section : {&upper, &lower, &title})
    for (const Row &row : *section)
      for (uint32_t v : row)
        w.U32(v);
  return w.Take();
}

// The "DECOMPOSE" table: the rows of the Composite property and their runs.
std::string BuildDecompositionTable(const std::vector<UcdRecord> &records) {
  std::map<uint32_t, std::vector<uint32_t>> mappings; // every canonical mapping
  std::map<uint32_t, std::vector<uint32_t>> rows;     // the expanded runs
  for (const UcdRecord &r : records) {
    std::vector<uint32_t> m = CanonicalMapping(r);
    if (!m.empty()) mappings[r.code] = m;
  }
  for (const auto &[code, mapping] : mappings) {
    if (mapping.size() < 2) continue;
    std::vector<uint32_t> run;
    AppendRun(code, mappings, run, 0);
    rows[code] = run;
  }
  for (const PrivateRun &p : PrivateDecompositions())
    for (uint32_t c = p.first; c <= p.last; ++c) {
      std::vector<uint32_t> run = p.run;
      run.push_back(0);
      rows[c] = run;
    }
  std::vector<uint32_t> nodes, data;
  for (const auto &[code, run] : rows) {
    nodes.push_back(code);
    nodes.push_back(uint32_t(data.size()));
    data.insert(data.end(), run.begin(), run.end());
  }
  nodes.push_back(uint32_t(data.size()));
  Writer w;
  w.Mark();
  w.U16(uint32_t(rows.size()));
  w.U32(uint32_t((nodes.size() + data.size()) * 4));
  for (uint32_t v : nodes)
    w.U32(v);
  for (uint32_t v : data)
    w.U32(v);
  return w.Take();
}

// The "COMBINE" table: ranges of neighbouring code points of one class.
std::string BuildCombiningTable(const std::vector<UcdRecord> &records) {
  std::vector<std::vector<uint32_t>> rows;
  auto add = [&](uint32_t code, uint32_t cls) {
    if (!rows.empty() && rows.back()[1] + 1 == code && rows.back()[2] == cls)
      rows.back()[1] = code;
    else
      rows.push_back({code, code, cls});
  };
  std::map<uint32_t, uint32_t> classes;
  for (const UcdRecord &r : records)
    if (r.combiningClass != 0 && !ClassDropped(r.code))
      classes[r.code] = uint32_t(r.combiningClass);
  for (const PrivateClass &p : kPrivateClasses)
    for (uint32_t c = p.first; c <= p.last; ++c)
      classes[c] = p.cls;
  for (const auto &[code, cls] : classes)
    add(code, cls);
  Writer w;
  w.Mark();
  w.U16(uint32_t(rows.size()));
  w.U32(uint32_t(rows.size() * 12));
  for (const auto &row : rows)
    for (uint32_t v : row)
      w.U32(v);
  return w.Take();
}

// The "NUMBERS" table: (code, index) nodes and shared (numerator, denominator) pairs.
std::string BuildNumberTable(const std::vector<UcdRecord> &records) {
  std::vector<uint32_t> nodes, values;
  std::map<std::pair<uint32_t, uint32_t>, uint32_t> pairIndex;
  for (const UcdRecord &r : records) {
    if (r.numeric.empty()) continue;
    size_t slash = r.numeric.find('/');
    std::pair<uint32_t, uint32_t> pair;
    if (slash == std::string::npos) {
      uint32_t n = ParseNumberPart(r.numeric, r);
      pair = {n, n};
    } else {
      pair = {ParseNumberPart(r.numeric.substr(0, slash), r),
              ParseNumberPart(r.numeric.substr(slash + 1), r)};
    }
    auto [it, fresh] = pairIndex.emplace(pair, uint32_t(values.size()));
    if (fresh) {
      values.push_back(pair.first);
      values.push_back(pair.second);
    }
    nodes.push_back(r.code);
    nodes.push_back(it->second);
  }
  Writer w;
  w.Mark();
  w.U16(uint32_t(nodes.size()));
  w.U32(uint32_t(nodes.size() * 4 + values.size() * 2));
  for (uint32_t v : nodes)
    w.U32(v);
  for (uint32_t v : values)
    w.U16(v);
  return w.Take();
}

// Builds all five tables from the text of UnicodeData.txt.
GeneratedTables GenerateTables(std::istream &unicodeData) {
  std::vector<UcdRecord> records = ReadUnicodeData(unicodeData);
  GeneratedTables t;
  t.type = BuildTypeTable(records);
  t.caseMap = BuildCaseTable(records);
  t.decompose = BuildDecompositionTable(records);
  t.combine = BuildCombiningTable(records);
  t.numbers = BuildNumberTable(records);
  return t;
}

} // namespace kestrel::ucdgen
