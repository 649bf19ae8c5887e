// The translation of familiar pattern syntax: one pass over the pattern,
// copying what the two languages share and rewriting the rest.
#include <kestrel/search/UREFamiliarSyntax.h>

#include <vector>

#include <kestrel/search/SearchEngine.h>
#include <kestrel/search/URECharSetsInternal.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {

ERegexSyntax::ERegexSyntax(const std::string &What, const std::string &Construct,
                           uint32_t Character)
    : Exception(What + " " + Construct + " at character " + std::to_string(Character) +
                " is not supported"),
      Construct(Construct), Character(Character) {}

namespace {

using charsets::TCodeSet;

bool IsAsciiLetter(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}
bool IsAsciiDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

// What one item of a class or one escape stands for: a set (positive or to
// be complemented) or one code point.
struct TItem {
  bool IsSet = false;
  bool Complemented = false;
  TCodeSet Set;
  UCS4 Code = 0;
};

class TTranslator {
public:
  TTranslator(const std::u16string &Pattern, bool CaseFold) : p_(Pattern), fold_(CaseFold) {}

  std::u16string Run() {
    while (i_ < p_.size())
      Top();
    return out_;
  }

private:
  size_t Left() const { return p_.size() - i_; }
  char16_t At(size_t k) const { return i_ + k < p_.size() ? p_[i_ + k] : 0; }

  // The place of unit Index, in characters from 1.
  uint32_t CharacterAt(size_t Index) const {
    uint32_t n = 1;
    for (size_t k = 0; k < Index; ++k)
      if (!(IsLowSurrogateUnit(p_[k]) && k > 0 && IsHighSurrogateUnit(p_[k - 1]))) ++n;
    return n;
  }
  [[noreturn]] void Refuse(const std::string &What, size_t From, size_t To) const {
    const std::u16string part = p_.substr(From, std::min(To, p_.size()) - From);
    throw ERegexSyntax(What, WideStringToUTF8(part), CharacterAt(From));
  }

  // One code point from the pattern, a pair counting as one.
  UCS4 TakeCode() {
    UCS4 c = p_[i_++];
    if (IsHighSurrogateUnit(c) && i_ < p_.size() && IsLowSurrogateUnit(p_[i_]))
      c = CombineSurrogates(c, p_[i_++]);
    return c;
  }

  void Top() {
    const size_t at = i_;
    const char16_t c = p_[i_];
    const bool alternativeStart = alternativeStart_;
    alternativeStart_ = false;
    switch (c) {
    case u'\\':
      return TopEscape();
    case u'[':
      return Class();
    case u'(':
      return Group();
    case u'*':
    case u'+':
    case u'?':
      out_ += c;
      ++i_;
      return NoLazyOrPossessive(at);
    case u'{':
      return Bound();
    case u'|':
      if (alternativeStart || At(1) == u'|' || At(1) == u')' || Left() == 1)
        Refuse("the empty alternative", at, at + 1);
      out_ += c;
      ++i_;
      alternativeStart_ = true;
      return;
    default:
      out_ += c;
      ++i_;
    }
  }

  // A quantifier ended just before i_, starting at From.
  void NoLazyOrPossessive(size_t From) {
    if (At(0) == u'?') Refuse("the lazy quantifier", From, i_ + 1);
    if (At(0) == u'+') Refuse("the possessive quantifier", From, i_ + 1);
  }

  // A bound as the engine reads it, {n}, {n,}, {,m}, {n,m} with blanks
  // around the numbers, is copied; anything else is left to the engine.
  void Bound() {
    const size_t at = i_;
    size_t k = i_ + 1;
    auto blanks = [&] {
      while (k < p_.size() && UnicodeIsWhiteSpace(p_[k]))
        ++k;
    };
    auto number = [&](bool &zero, bool &given) {
      const size_t from = k;
      zero = true;
      while (k < p_.size() && IsAsciiDigit(p_[k]))
        zero = zero && p_[k++] == u'0';
      given = k > from;
    };
    bool minZero = true, minGiven = false, maxZero = true, maxGiven = false, comma = false;
    blanks();
    number(minZero, minGiven);
    blanks();
    if (k < p_.size() && p_[k] == u',') {
      comma = true;
      ++k;
      blanks();
      number(maxZero, maxGiven);
    }
    if (k >= p_.size() || p_[k] != u'}') {
      out_ += p_[i_++];
      return;
    }
    ++k;
    // An upper bound of 0 (or none at all) would mean no limit to the engine.
    if (comma ? maxGiven && maxZero : !minGiven || minZero) Refuse("the repetition", at, k);
    out_.append(p_, i_, k - i_);
    i_ = k;
    NoLazyOrPossessive(at);
  }

  // Opens a group in the output; the pattern goes on at Next.
  void Open(size_t at, size_t Next) {
    i_ = Next;
    if (At(0) == u')') Refuse("the empty group", at, i_ + 1);
    out_ += u'(';
    alternativeStart_ = true;
  }

  void Group() {
    const size_t at = i_;
    if (At(1) != u'?') return Open(at, i_ + 1);
    const char16_t k = At(2);
    if (k == u':') return Open(at, i_ + 3);
    if ((k == u'<' && At(3) != u'=' && At(3) != u'!') || (k == u'P' && At(3) == u'<') ||
        k == u'\'') {
      // A named group: the name goes, the group stays.
      const char16_t close = k == u'\'' ? u'\'' : u'>';
      size_t end = p_.find(close, i_ + (k == u'P' ? 4 : 3));
      if (end == std::u16string::npos) Refuse("the unclosed group name", at, p_.size());
      return Open(at, end + 1);
    }
    if (k == u'=') Refuse("the look-ahead", at, at + 3);
    if (k == u'!') Refuse("the negative look-ahead", at, at + 3);
    if (k == u'<' && At(3) == u'=') Refuse("the look-behind", at, at + 4);
    if (k == u'<') Refuse("the negative look-behind", at, at + 4);
    if (k == u'>') Refuse("the atomic group", at, at + 3);
    if (k == u'#') Refuse("the comment", at, at + 3);
    if (k == u'|') Refuse("the branch reset", at, at + 3);
    if (k == u'P' && At(3) == u'=') Refuse("the back-reference", at, at + 4);
    if (k == u'R' || k == u'&' || IsAsciiDigit(k) || (k == u'P' && At(3) == u'>'))
      Refuse("the recursion", at, at + 3);
    size_t end = i_ + 2;
    while (end < p_.size() && (IsAsciiLetter(p_[end]) || p_[end] == u'-'))
      ++end;
    Refuse("the inline option", at, end + 1);
  }

  void TopEscape() {
    const size_t at = i_;
    if (Left() < 2) {
      out_ += p_[i_++]; // the engine reports the pattern's end
      return;
    }
    const char16_t e = p_[i_ + 1];
    switch (e) {
    case u'd':
    case u'D':
    case u's':
    case u'S':
    case u'w':
    case u'W':
    case u'p':
    case u'P': {
      TItem item = Escape(true);
      if (item.IsSet) {
        out_ += charsets::Write(item.Set, item.Complemented, fold_);
        return;
      }
      return; // the engine's own \pn, copied
    }
    case u'x':
      if (At(2) == u'{') {
        out_ += charsets::CodeEscape(Escape(true).Code);
        return;
      }
      break;
    case u'e':
      out_ += u"\\x001B";
      i_ += 2;
      return;
    case u'Q':
      return Quoted();
    case u'E':
      i_ += 2; // a \E without \Q, as Perl takes it
      return;
    default:
      break;
    }
    RefuseEscape(at, false);
    if (IsAsciiLetter(e) && !KnownLetterEscape(e, false)) Refuse("the escape", at, at + 2);
    out_ += u'\\';
    ++i_;
    out_ += p_[i_++];
    if (IsHighSurrogateUnit(out_.back()) && i_ < p_.size() && IsLowSurrogateUnit(p_[i_]))
      out_ += p_[i_++];
  }

  static bool KnownLetterEscape(char16_t e, bool inClass) {
    switch (e) {
    case u'a':
    case u'e':
    case u'f':
    case u'n':
    case u'r':
    case u't':
    case u'v':
    case u'x':
    case u'X':
    case u'u':
    case u'U':
      return true;
    case u'b':
    case u'R':
      return inClass;
    default:
      return false;
    }
  }

  // The escapes the familiar languages give a meaning the engine has not.
  void RefuseEscape(size_t at, bool inClass) const {
    const char16_t e = p_[at + 1];
    if (!inClass) {
      if (e == u'b') Refuse("the word boundary", at, at + 2);
      if (e == u'B') Refuse("the word non-boundary", at, at + 2);
      if (e == u'A' || e == u'Z' || e == u'z') Refuse("the text anchor", at, at + 2);
      if (e == u'G') Refuse("the match anchor", at, at + 2);
    }
    if (IsAsciiDigit(e) && e != u'0') {
      size_t end = at + 2;
      while (end < p_.size() && IsAsciiDigit(p_[end]))
        ++end;
      Refuse(inClass ? "the octal escape" : "the back-reference", at, end);
    }
    if (e == u'0') Refuse("the octal escape", at, at + 2);
    if (e == u'k' || e == u'g') Refuse("the back-reference", at, at + 2);
  }

  void Quoted() {
    i_ += 2;
    const size_t end = p_.find(u"\\E", i_);
    const size_t stop = end == std::u16string::npos ? p_.size() : end;
    while (i_ < stop) {
      const char16_t c = p_[i_];
      if (c < 0x80 && !IsAsciiLetter(c) && !IsAsciiDigit(c) && c != u' ') out_ += u'\\';
      out_ += p_[i_++];
    }
    i_ = end == std::u16string::npos ? stop : stop + 2;
  }

  // An escape at i_ that stands for a set or a code point; the engine's own
  // \pn outside a class is copied as it is.
  TItem Escape(bool top) {
    const size_t at = i_;
    const char16_t e = p_[i_ + 1];
    TItem item;
    i_ += 2;
    switch (e) {
    case u'd':
    case u's':
    case u'w':
    case u'D':
    case u'S':
    case u'W': {
      const char16_t lower = char16_t(e | 0x20);
      charsets::NamedSet(std::string(1, char(lower)), item.Set);
      item.IsSet = true;
      item.Complemented = e != lower;
      return item;
    }
    case u'p':
    case u'P':
      return Property(at, e == u'P', top);
    case u'x':
      if (At(0) == u'{') return HexInBraces(at);
      break;
    default:
      break;
    }
    i_ = at;
    return item;
  }

  TItem HexInBraces(size_t at) {
    TItem item;
    size_t k = i_ + 1;
    UCS4 value = 0;
    while (k < p_.size() && HexValue(p_[k]) >= 0 && value <= 0x10FFFF)
      value = value * 16 + UCS4(HexValue(p_[k++]));
    if (k >= p_.size() || p_[k] != u'}' || k == i_ + 1 || value > 0x10FFFF)
      Refuse("the code point", at, k + 1);
    item.Code = value;
    i_ = k + 1;
    return item;
  }

  TItem Property(size_t at, bool negated, bool top) {
    TItem item;
    std::string name;
    if (At(0) == u'{') {
      const size_t end = p_.find(u'}', i_);
      if (end == std::u16string::npos) Refuse("the unclosed property", at, p_.size());
      name = WideStringToUTF8(p_.substr(i_ + 1, end - i_ - 1));
      i_ = end + 1;
      if (!name.empty() && name[0] == '^') {
        negated = !negated;
        name.erase(0, 1);
      }
      if (!charsets::CategorySet(name, item.Set)) Refuse("the unknown property", at, i_);
    } else if (IsAsciiDigit(At(0)) || At(0) == u',') {
      // The engine's own numbered form.
      size_t end = i_;
      while (end < p_.size() && (IsAsciiDigit(p_[end]) || p_[end] == u','))
        ++end;
      if (top) {
        out_.append(p_, at, end - at);
        i_ = end;
        return item;
      }
      if (!charsets::NumberSet(WideStringToUTF8(p_.substr(i_, end - i_)), item.Set))
        Refuse("the property number", at, end);
      i_ = end;
    } else if (IsAsciiLetter(At(0))) {
      name = std::string(1, char(At(0)));
      ++i_;
      if (!charsets::CategorySet(name, item.Set)) Refuse("the unknown property", at, i_);
    } else {
      Refuse("the property", at, i_);
    }
    item.IsSet = true;
    item.Complemented = negated;
    return item;
  }

  // ------------------------------------------------------------- classes

  void Class() {
    const size_t at = i_;
    ++i_;
    bool negated = false;
    if (At(0) == u'^') {
      negated = true;
      ++i_;
    }
    TCodeSet positive;
    std::vector<TCodeSet> complemented;
    bool first = true;
    for (;;) {
      if (i_ >= p_.size()) Refuse("the unclosed class", at, p_.size());
      if (p_[i_] == u']' && !first) {
        ++i_;
        break;
      }
      first = false;
      TItem item = ClassItem();
      if (item.IsSet) {
        if (item.Complemented)
          complemented.push_back(std::move(item.Set));
        else
          positive.Add(item.Set);
        continue;
      }
      UCS4 low = item.Code, high = item.Code;
      if (At(0) == u'-' && At(1) != u']' && Left() > 1) {
        const size_t save = i_;
        ++i_;
        TItem end = ClassItem();
        if (end.IsSet) {
          // `[a-\d]`: the dash is a member.
          i_ = save;
        } else {
          high = end.Code;
        }
      }
      if (high < low) std::swap(low, high);
      positive.Ranges.push_back({low, high});
    }
    if (complemented.empty())
      out_ += charsets::Write(positive, negated, fold_);
    else if (positive.Empty() && complemented.size() == 1)
      out_ += charsets::Write(complemented.front(), !negated, fold_);
    else
      out_ += charsets::WriteExact(positive, complemented, negated, fold_);
  }

  // A POSIX name `[:alpha:]`, or the engine's bare `:alpha:`, at i_.
  bool PosixName(TItem &item) {
    const bool bracketed = At(0) == u'[';
    const size_t from = i_ + (bracketed ? 2 : 1);
    const size_t end = p_.find(bracketed ? u":]" : u":", from);
    if (end == std::u16string::npos || end - from > 10) return false;
    const std::string name = WideStringToUTF8(p_.substr(from, end - from));
    if (!charsets::NamedSet(name, item.Set) || name.size() < 4) {
      if (bracketed) Refuse("the unknown class name", i_, end + 2);
      return false;
    }
    item.IsSet = true;
    i_ = end + (bracketed ? 2 : 1);
    return true;
  }

  TItem ClassItem() {
    TItem item;
    const char16_t c = p_[i_];
    if (c == u'[' && At(1) == u':' && PosixName(item)) return item;
    if (c == u'[' && At(1) == u'=') Refuse("the equivalence class", i_, i_ + 2);
    if (c == u'[' && At(1) == u'.') Refuse("the collating element", i_, i_ + 2);
    if (c == u':' && PosixName(item)) return item;
    if (c != u'\\') {
      item.Code = TakeCode();
      return item;
    }
    const size_t at = i_;
    if (Left() < 2) Refuse("the unclosed class", at, p_.size());
    item = Escape(false);
    if (item.IsSet || i_ != at) return item;
    RefuseEscape(at, true);
    const char16_t e = p_[i_ + 1];
    if (IsAsciiLetter(e) && !KnownLetterEscape(e, true)) Refuse("the escape", at, at + 2);
    i_ += 2;
    switch (e) {
    case u'a':
      item.Code = 0x07;
      return item;
    case u'e':
      item.Code = 0x1B;
      return item;
    case u'b':
      item.Code = 0x08;
      return item;
    case u'f':
      item.Code = 0x0C;
      return item;
    case u'n':
      item.Code = 0x0A;
      return item;
    case u'r':
    case u'R':
      item.Code = 0x0D;
      return item;
    case u't':
      item.Code = 0x09;
      return item;
    case u'v':
      item.Code = 0x0B;
      return item;
    case u'x':
    case u'X':
    case u'u':
    case u'U': {
      UCS4 value = 0;
      int digits = 0;
      while (digits < 4 && i_ < p_.size() && HexValue(p_[i_]) >= 0) {
        value = value * 16 + UCS4(HexValue(p_[i_++]));
        ++digits;
      }
      item.Code = digits > 0 ? value : e;
      // A high surrogate and an escaped low one make one character.
      if (digits > 0 && IsHighSurrogateUnit(value) && At(0) == u'\\' && Left() > 2 &&
          (At(1) == u'x' || At(1) == u'X' || At(1) == u'u' || At(1) == u'U')) {
        UCS4 low = 0;
        size_t k = i_ + 2;
        while (k < i_ + 6 && k < p_.size() && HexValue(p_[k]) >= 0)
          low = low * 16 + UCS4(HexValue(p_[k++]));
        if (k > i_ + 2 && IsLowSurrogateUnit(low)) {
          item.Code = CombineSurrogates(value, low);
          i_ = k;
        }
      }
      return item;
    }
    default:
      --i_; // the escaped character itself
      item.Code = TakeCode();
      return item;
    }
  }

  const std::u16string &p_;
  bool fold_;
  size_t i_ = 0;
  std::u16string out_;
  bool alternativeStart_ = true; // nothing yet in the current alternative
};

} // namespace

std::u16string TranslateFamiliarSyntax(const std::u16string &Pattern, bool CaseFold) {
  return TTranslator(Pattern, CaseFold).Run();
}

} // namespace kestrel
