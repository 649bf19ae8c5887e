// Unit Wdef: selection strings, tags to ignore and encoded settings.
#include <kestrel/vocabulary/WdefSelection.h>

#include <algorithm>
#include <cstring>

#include <kestrel/unicode/CodePages.h>
#include <kestrel/vocabulary/WdefUnitInternal.h>

namespace kestrel {

EnumTable<tag_wildcards_type, EnumTable<tag_conversion_type, std::u16string, 2>, kTagWildcardsCount>
    wildcards_converters;
text_format_defaults_type text_format_defaults;
char16_t default_tag_translation_starter = u'&';
char16_t default_tag_switch_off = u'/';

namespace {

using enum tag_conversion_type;

constexpr char16_t kQuote = u'"';

// Each wildcard, in table order, with its code.
struct WildcardCode {
  char16_t wildcard, code;
};
constexpr WildcardCode kWildcardCodes[kTagWildcardsCount] = {
    {u'~', 31}, {u'^', 30}, {u'*', 29}, {u'?', 28}, {u'#', 27}};

// The wildcards that the encoded form knows, in the order it treats them.
constexpr WildcardCode kEncodedWildcards[] = {{u'*', 29}, {u'?', 28}, {u'#', 27}};

std::u16string ReplacedAll(std::u16string text, std::u16string_view from, std::u16string_view to) {
  for (size_t at = text.find(from); at != std::u16string::npos;
       at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

// The characters of a terminated field, never past its end.
std::u16string_view FieldText(const char16_t (&field)[kSelectFieldChars + 1]) {
  const char16_t *end = std::find(field, field + kSelectFieldChars + 1, u'\0');
  return {field, static_cast<size_t>(end - field)};
}

void SetField(char16_t (&field)[kSelectFieldChars + 1], std::u16string_view text) {
  const size_t n = std::min(text.size(), kSelectFieldChars);
  std::copy_n(text.data(), n, field);
  field[n] = u'\0';
}

// The wildcard that a code stands for, or 0 for a code of no wildcard.
char16_t WildcardOfCode(char16_t code) {
  for (const auto &row : wildcards_converters.rows)
    if (row[replacement_char].size() == 1 && row[replacement_char][0] == code &&
        row[original_char].size() == 1)
      return row[original_char][0];
  return 0;
}

} // namespace

void SetSelectionTables() {
  for (size_t i = 0; i < kTagWildcardsCount; ++i) {
    wildcards_converters.rows[i][original_char] = std::u16string(1, kWildcardCodes[i].wildcard);
    wildcards_converters.rows[i][replacement_char] = std::u16string(1, kWildcardCodes[i].code);
  }
  using enum text_format_type;
  struct Default {
    text_segments_type segment;
    text_format_type format;
    const char16_t *marker;
  };
  static constexpr Default kDefaults[] = {
      {sentence_end_segment, assume_ascii, u"auto"},
      {sentence_end_segment, assume_HTML, u"auto"},
      {sentence_end_segment, assume_SGML, u"auto"},
      {paragraph_start_segment, assume_HTML, u"<p>"},
      {paragraph_start_segment, assume_SGML, u"<p>"},
      {paragraph_end_segment, assume_ascii, u"<Enter><Tab>"},
      {paragraph_end_segment, assume_HTML, u"</p>"},
      {paragraph_end_segment, assume_SGML, u"</p>"},
      {heading_start_segment, assume_HTML, u"<h#>"},
      {heading_start_segment, assume_SGML, u"<head>"},
      {heading_end_segment, assume_HTML, u"</h#>"},
      {heading_end_segment, assume_SGML, u"</head>"},
      {section_start_segment, assume_SGML, u"<div# *>"},
      {section_end_segment, assume_SGML, u"</div>"},
  };
  for (auto &row : text_format_defaults.rows)
    for (auto &cell : row.rows)
      cell.clear();
  for (const Default &d : kDefaults)
    text_format_defaults.rows[d.segment - sentence_start_segment][d.format] = d.marker;
}

const text_format_defaults_type::Row &
text_format_defaults_type::operator[](text_segments_type segment) const {
  static const Row kNoSegment{};
  if (segment < sentence_start_segment || segment > section_end_segment) return kNoSegment;
  return rows[segment - sentence_start_segment];
}

std::u16string WildcardConverted(std::u16string_view text) {
  std::u16string result(text);
  for (const auto &row : wildcards_converters.rows) {
    const std::u16string &wildcard = row[original_char];
    const std::u16string &code = row[replacement_char];
    if (wildcard.size() != 1 || code.size() != 1) continue;
    const size_t first = text.find(wildcard[0]);
    if (first == std::u16string_view::npos) continue;
    const char16_t quoted[] = {kQuote, wildcard[0], kQuote};
    const size_t inQuotes = text.find(std::u16string_view(quoted, 3));
    if (inQuotes != std::u16string_view::npos && inQuotes + 1 == first) continue;
    result[first] = code[0];
  }
  return result;
}

TSelectTextFile_RecW WideStringToTSelectTextFile_RecW(std::u16string_view text) {
  TSelectTextFile_RecW rec;
  std::memset(&rec, 0, sizeof rec);
  const std::u16string converted = WildcardConverted(text);
  if (converted.empty()) return rec;
  std::u16string head, wildcards, tail;
  for (char16_t c : converted) {
    if (c < 32) {
      rec.select_has_wildcards = true;
      wildcards += c;
    } else {
      (rec.select_has_wildcards ? tail : head) += c;
    }
  }
  SetField(rec.select_head, head);
  SetField(rec.select_wildcards, wildcards);
  SetField(rec.select_tail, tail);
  rec.select_head_length = static_cast<int32_t>(FieldText(rec.select_head).size());
  return rec;
}

std::u16string TSelectTextFile_RecWToWideString(const TSelectTextFile_RecW &rec) {
  std::u16string result(FieldText(rec.select_head));
  for (char16_t code : FieldText(rec.select_wildcards))
    if (char16_t wildcard = WildcardOfCode(code)) result += wildcard;
  result += FieldText(rec.select_tail);
  return result;
}

IgnoreTag_Type WideStringToIgnoreTag_Type(std::u16string_view text) {
  using enum tag_on_off_type;
  IgnoreTag_Type tag{};
  size_t slot = 0;
  size_t start = 0;
  while (start < text.size()) {
    const size_t comma = text.find(u',', start);
    const size_t end = comma == std::u16string_view::npos ? text.size() : comma;
    if (end > start) {
      tag[tag_on][slot] = text[start];
      tag[tag_off][slot] = text[end - 1];
    }
    if (comma == std::u16string_view::npos) break;
    if (slot < kIgnoreTagSlots - 1) ++slot;
    start = comma + 1;
  }
  return tag;
}

std::u16string IgnoreTag_TypeToWideString(const IgnoreTag_Type &tag) {
  using enum tag_on_off_type;
  std::u16string result;
  for (size_t slot = 0; slot < kIgnoreTagSlots; ++slot) {
    const char16_t on = tag[tag_on][slot], off = tag[tag_off][slot];
    if (on == 0 || off == 0) continue;
    if (!result.empty()) result += u',';
    result += on;
    result += u'*';
    result += off;
  }
  return result;
}

std::u16string EncodedCRLFTAB(std::u16string_view text) {
  std::u16string result(text);
  const size_t n = result.size();
  for (const WildcardCode &w : kEncodedWildcards)
    for (size_t i = 0; i < n; ++i) {
      if (result[i] != w.wildcard || i == 0 || i == n - 1) continue;
      if (result[i - 1] == kQuote || result[i + 1] == kQuote) continue;
      result[i] = w.code;
    }
  result = ReplacedAll(std::move(result), u"<Enter>", CRLF);
  return ReplacedAll(std::move(result), u"<Tab>", u"\t");
}

std::u16string DecodedCRLFTAB(std::u16string_view text) {
  std::u16string result(text);
  for (const WildcardCode &w : kEncodedWildcards)
    std::replace(result.begin(), result.end(), w.code, w.wildcard);
  result = ReplacedAll(std::move(result), u"\r\n", u"<Enter>");
  return ReplacedAll(std::move(result), u"\t", u"<Tab>");
}

text_select_type SelectAtAllTypeFromNumber(int16_t n) {
  using enum text_select_type;
  if (n == 1 || n == 4 || n == 7) return incluir_and;
  if (n <= 9) return incluir_or;
  return n == 10 ? excluir_and : excluir_or;
}

text_select_type SelectWithinTypeFromNumber(int16_t n) {
  using enum text_select_type;
  const bool odd = (n & 1) != 0;
  if (n < 7) return odd ? excluir_and : excluir_or;
  return odd ? incluir_and : incluir_or;
}

} // namespace kestrel
