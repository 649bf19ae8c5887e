// The regular-expression syntax people know from grep, Perl and Python,
// turned into the pattern language of TURESearch and TURELongestMatch before
// a compile.
//
// Accepted and translated:
// - POSIX bracket names inside a class, `[[:alpha:]]`, and the engine's own
//   `[:alpha:]`: alpha (letters and marks), digit, alnum, upper, lower, space,
//   blank, punct (punctuation and symbols), graph, print, cntrl, xdigit, word.
// - `\d \D \s \S \w \W`, in and out of classes: decimal digits; white space
//   (Zs Zl Zp, tab, line feed, vertical tab, form feed, carriage return,
//   U+0085); word characters (letters, digits, marks, connectors).
// - `\p{Lu}`, `\pL`, `\P{L}`, `\p{^L}`: the general categories of Unicode 3.0
//   and their groups (L, M, N, Z, C, P, S, and L& for the cased letters).
// - `\x{1F600}` for any code point, `\e`, `(?:...)`, named groups
//   `(?<name>...)` and `(?P<name>...)` (as plain groups), `\Q...\E`.
// - The engine's own forms stay: `\p3`, `\xHHHH`, `\uHHHH`.
// Without case sensitivity the text is folded to lower case, so the cased
// categories (Lu, Ll, Lt, upper, lower) each stand for all three.
//
// Refused with ERegexSyntax, naming the construct and its place: word
// boundaries and other anchors (`\b \B \A \Z \z \G`), look-ahead and
// look-behind, back-references (`\1`, `\k<n>`, `(?P=n)`), lazy and possessive
// quantifiers, atomic groups, inline options, empty alternatives and groups,
// a repetition `{0}`, collating elements and equivalence classes, unknown
// escapes and property names.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/frame/host/Exceptions.h>

namespace kestrel {

// A pattern construct that cannot be translated. The message is one line,
// e.g. "the word boundary \b at character 5 is not supported".
class ERegexSyntax : public Exception {
public:
  ERegexSyntax(const std::string &What, const std::string &Construct, uint32_t Character);
  std::string Construct; // as written in the pattern (UTF-8)
  uint32_t Character;    // its place, counted in characters from 1
};

// The pattern in the engine's language. CaseFold: whether the search folds
// case (FindPrepare without sfCaseSensitive).
std::u16string TranslateFamiliarSyntax(const std::u16string &Pattern, bool CaseFold);

} // namespace kestrel
