// Fields of `kestrel char` from the character database: the categories,
// direction classes and other properties that hold, the number value, and
// the tests of the UnicodeIs... family that answer true.
#include <string>
#include <vector>

#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

#include "CharInfo.h"

namespace kestrel::cli {
namespace {

bool IsCategory(int n) {
  return n <= upSo || n == upPi || n == upPf;
}
bool IsDirection(int n) {
  return n >= upL && n <= upON;
}

void AddField(std::vector<CharField> &fields, const char *key,
              const std::vector<std::string> &items) {
  fields.push_back({key, items.empty() ? "-" : JoinWords(items), JsonStringArray(items)});
}

void PropertyFields(UCS4 code, std::vector<CharField> &fields) {
  std::vector<std::string> categories, directions, others;
  for (int n = 0; n < upPropertyCount; ++n) {
    if (!UnicodeLookupProperty(code, n)) continue;
    auto &list = IsCategory(n) ? categories : IsDirection(n) ? directions : others;
    list.push_back(UnicodePropertyLabels[n]);
  }
  AddField(fields, "category", categories);
  AddField(fields, "direction", directions);
  AddField(fields, "properties", others);
}

void NumberField(UCS4 code, std::vector<CharField> &fields) {
  TUnicodeNumber n = UnicodeGetNumber(code);
  if (n.Numerator == UnicodeNoNumber && n.Denominator == UnicodeNoNumber) {
    fields.push_back({"number", "", "null"});
    return;
  }
  // A whole number is stored as (n, n).
  bool whole = n.Numerator == n.Denominator;
  std::string num = std::to_string(n.Numerator), den = std::to_string(n.Denominator);
  fields.push_back({"number", whole ? num : num + "/" + den,
                    "{\"numerator\":" + num + ",\"denominator\":" + den + "}"});
}

struct NamedTest {
  const char *name;
  bool (*test)(UCS4);
};

#define KESTREL_TEST(Name)                                                                         \
  { #Name, UnicodeIs##Name }
const NamedTest kTests[] = {
    KESTREL_TEST(Alpha),
    KESTREL_TEST(Digit),
    KESTREL_TEST(AlphaNum),
    KESTREL_TEST(Control),
    KESTREL_TEST(Space),
    KESTREL_TEST(WhiteSpace),
    KESTREL_TEST(Blank),
    KESTREL_TEST(Punctuation),
    KESTREL_TEST(Graph),
    KESTREL_TEST(Printable),
    KESTREL_TEST(Upper),
    KESTREL_TEST(Lower),
    KESTREL_TEST(Title),
    KESTREL_TEST(HexDigit),
    KESTREL_TEST(IsoControl),
    KESTREL_TEST(FormatControl),
    KESTREL_TEST(Symbol),
    KESTREL_TEST(Number),
    KESTREL_TEST(NonSpacing),
    KESTREL_TEST(OpenPunctuation),
    KESTREL_TEST(ClosePunctuation),
    KESTREL_TEST(InitialPunctuation),
    KESTREL_TEST(FinalPunctuation),
    KESTREL_TEST(Composite),
    KESTREL_TEST(QuotationMark),
    KESTREL_TEST(Symmetric),
    KESTREL_TEST(Mirroring),
    KESTREL_TEST(NonBreaking),
    KESTREL_TEST(RTL),
    KESTREL_TEST(LTR),
    KESTREL_TEST(Strong),
    KESTREL_TEST(Weak),
    KESTREL_TEST(Neutral),
    KESTREL_TEST(Separator),
    KESTREL_TEST(Mark),
    KESTREL_TEST(Modifier),
    KESTREL_TEST(LetterNumber),
    KESTREL_TEST(ConnectionPunctuation),
    KESTREL_TEST(Dash),
    KESTREL_TEST(Math),
    KESTREL_TEST(Currency),
    KESTREL_TEST(ModifierSymbol),
    KESTREL_TEST(NonSpacingMark),
    KESTREL_TEST(SpacingMark),
    KESTREL_TEST(Enclosing),
    KESTREL_TEST(Private),
    KESTREL_TEST(Surrogate),
    KESTREL_TEST(LineSeparator),
    KESTREL_TEST(ParagraphSeparator),
    KESTREL_TEST(IdenifierStart),
    KESTREL_TEST(IdentifierPart),
    KESTREL_TEST(Defined),
    KESTREL_TEST(Undefined),
    KESTREL_TEST(Han),
    KESTREL_TEST(Hangul),
};
#undef KESTREL_TEST
static_assert(sizeof(kTests) / sizeof(kTests[0]) == 55);

void TestFields(UCS4 code, std::vector<CharField> &fields) {
  std::vector<std::string> names;
  for (const NamedTest &t : kTests)
    if (t.test(code)) names.push_back(t.name);
  AddField(fields, "is", names);
}

const CharFieldRegistration kProperties(10, PropertyFields);
const CharFieldRegistration kNumber(50, NumberField);
const CharFieldRegistration kTestsField(90, TestFields);

} // namespace
} // namespace kestrel::cli
