// Case mapping over the "CASE" table.
#include <kestrel/unicode/CaseMapping.h>

#include <algorithm>

#include <kestrel/unicode/CharTables.h>

namespace kestrel {
namespace {

// The three sections of the table as ranges of row starts, cut to what the
// table holds so that an inconsistent header cannot send a lookup outside it.
struct Sections {
  int64_t upperFirst, upperLast, lowerFirst, lowerLast, titleFirst, titleLast;
};

Sections SectionsOf(const TCaseTable &t) {
  int64_t size = static_cast<int64_t>(std::min<size_t>(t.CaseMap.size(), t.CaseLength));
  size -= size % 3;
  int64_t upperEnd = std::min<int64_t>(t.UpperLength, size);
  int64_t lowerEnd = std::min<int64_t>(upperEnd + t.LowerLength, size);
  return {0, upperEnd - 3, upperEnd, lowerEnd - 3, lowerEnd, size - 3};
}

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

enum Column { kColumn1 = 1, kColumn2 = 2 };

UCS4 ToUpper(const TTypeTable &types, const TCaseTable &t, const Sections &s, UCS4 code) {
  if (LookupPropertyIn(types, code, upLu)) return code;
  if (LookupPropertyIn(types, code, upLl))
    return LookupIn(t, code, s.lowerFirst, s.lowerLast, kColumn1);
  return LookupIn(t, code, s.titleFirst, s.titleLast, kColumn1);
}

UCS4 ToLower(const TTypeTable &types, const TCaseTable &t, const Sections &s, UCS4 code) {
  if (LookupPropertyIn(types, code, upLl)) return code;
  if (LookupPropertyIn(types, code, upLu))
    return LookupIn(t, code, s.upperFirst, s.upperLast, kColumn1);
  return LookupIn(t, code, s.titleFirst, s.titleLast, kColumn2);
}

UCS4 ToTitle(const TTypeTable &types, const TCaseTable &t, const Sections &s, UCS4 code) {
  if (LookupPropertyIn(types, code, upLt)) return code;
  if (LookupPropertyIn(types, code, upLu))
    return LookupIn(t, code, s.upperFirst, s.upperLast, kColumn2);
  return LookupIn(t, code, s.lowerFirst, s.lowerLast, kColumn2);
}

struct Upper {
  UCS4 operator()(const TTypeTable &ty, const TCaseTable &t, const Sections &s, UCS4 c) const {
    return ToUpper(ty, t, s, c);
  }
};
struct Lower {
  UCS4 operator()(const TTypeTable &ty, const TCaseTable &t, const Sections &s, UCS4 c) const {
    return ToLower(ty, t, s, c);
  }
};
struct Title {
  UCS4 operator()(const TTypeTable &ty, const TCaseTable &t, const Sections &s, UCS4 c) const {
    return ToTitle(ty, t, s, c);
  }
};

// The case table first, then the category tests, as each conversion loads.
template <typename Map> UCS4 MapOne(UCS4 code) {
  const TCaseTable &t = CaseTable();
  return Map()(TypeTable(), t, SectionsOf(t), code);
}

template <typename Map> std::u16string MapEach(std::u16string_view s) {
  std::u16string result(s);
  if (result.empty()) return result;
  const TCaseTable &t = CaseTable();
  const TTypeTable &types = TypeTable();
  const Sections sections = SectionsOf(t);
  for (char16_t &u : result)
    u = static_cast<char16_t>(Map()(types, t, sections, u));
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
  return MapOne<Upper>(Code);
}
UCS4 UnicodeToLower(UCS4 Code) {
  return MapOne<Lower>(Code);
}
UCS4 UnicodeToTitle(UCS4 Code) {
  return MapOne<Title>(Code);
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
  return MapEach<Upper>(S);
}
std::u16string WideLowerCase(std::u16string_view S) {
  return MapEach<Lower>(S);
}
std::u16string WideTitleCaseString(std::u16string_view S) {
  return MapEach<Title>(S);
}

} // namespace kestrel
