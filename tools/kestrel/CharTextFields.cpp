// Fields of `kestrel char` from the text services: the upper, lower and title
// forms, the canonical decomposition, the combining class and the block.
// The readable line shows a form only where it differs from the character.
#include <cstdio>
#include <string>
#include <vector>

#include <kestrel/unicode/Unicode.h>

#include "CharInfo.h"
#include "Cli.h"

namespace kestrel::cli {
namespace {

std::string CodeText(UCS4 code) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "U+%04X", unsigned(code));
  return buf;
}

void CaseFields(UCS4 code, std::vector<CharField> &fields) {
  const std::pair<const char *, UCS4> forms[] = {{"upper", UnicodeToUpper(code)},
                                                 {"lower", UnicodeToLower(code)},
                                                 {"title", UnicodeToTitle(code)}};
  for (const auto &[key, value] : forms)
    fields.push_back({key, value == code ? "" : CodeText(value), JsonString(CodeText(value))});
}

void DecompositionField(UCS4 code, std::vector<CharField> &fields) {
  std::vector<std::string> elements;
  for (UCS4 e : UnicodeDecompose(code))
    elements.push_back(CodeText(e));
  bool decomposes = elements.size() != 1 || elements[0] != CodeText(code);
  fields.push_back(
      {"decomposition", decomposes ? JoinWords(elements) : "", JsonStringArray(elements)});
}

void CombiningClassField(UCS4 code, std::vector<CharField> &fields) {
  uint32_t c = UnicodeCombiningClass(code);
  fields.push_back({"class", c ? std::to_string(c) : "", std::to_string(c)});
}

// Blocks are numbered for 16-bit units only; a code above U+FFFF has none.
void BlockField(UCS4 code, std::vector<CharField> &fields) {
  uint32_t block = code <= 0xFFFF ? CodeBlockFromChar(char16_t(code)) : NoCodeBlock;
  if (block == NoCodeBlock) {
    fields.push_back({"block", "-", "null"});
    return;
  }
  std::string name = CodeBlockName(block);
  fields.push_back(
      {"block", name + " (" + std::to_string(block) + ")",
       "{\"number\":" + std::to_string(block) + ",\"name\":" + JsonString(name) + "}"});
}

const CharFieldRegistration kCase(20, CaseFields);
const CharFieldRegistration kDecomposition(30, DecompositionField);
const CharFieldRegistration kClass(35, CombiningClassField);
const CharFieldRegistration kBlock(40, BlockField);

} // namespace
} // namespace kestrel::cli
