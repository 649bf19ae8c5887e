// The front end of TURESearch: the operator stack, symbols, character classes,
// property lists and the expression table.
#include <algorithm>

#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/search/URESearch.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {

// ------------------------------------------------------- numbers and lists

uint32_t TURESearch::ParsePropertyList(const char16_t *Text, uint32_t Limit, uint32_t &Categories) {
  uint32_t n = 0, mask = 0, used = 0;
  while (UREBuffer.Error == 0 && used < Limit) {
    char16_t c = Text[used];
    if (c == u',') {
      if (n != 0) mask |= uint32_t(1) << (n - 1);
      n = 0;
    } else if (c >= u'0' && c <= u'9') {
      n = 10 * n + (c - u'0');
    } else {
      break;
    }
    ++used;
    if (n > 32) UREBuffer.Error = ErrBadProperty;
  }
  if (n >= 1 && n <= 32) mask |= uint32_t(1) << (n - 1);
  Categories = mask;
  return used;
}

uint32_t TURESearch::MakeHexNumber(const char16_t *Text, uint32_t Limit, uint32_t &Number) {
  uint32_t used = 0, value = 0;
  while (used < Limit && used < 4) {
    int d = HexValue(Text[used]);
    if (d < 0) break;
    value = value * 16 + uint32_t(d);
    ++used;
  }
  Number = value;
  return used;
}

uint32_t TURESearch::ProbeLowSurrogate(const char16_t *Text, uint32_t Limit, uint32_t &Number) {
  uint32_t value = 0;
  uint32_t used = MakeHexNumber(Text, Limit, value);
  if (used == 0 || !IsLowSurrogateUnit(value)) return 0;
  Number = value;
  return used;
}

// ------------------------------------------------------------------ classes

void TURESearch::AddRange(TCClass &Class, TRange Range) {
  if (UREBuffer.Flags & FoldCase) {
    Range.Low = UnicodeToLower(Range.Low);
    Range.High = UnicodeToLower(Range.High);
  }
  if (Range.High < Range.Low) std::swap(Range.Low, Range.High);
  // The list stands in descending order of Low.
  int32_t i = 0;
  while (i < Class.RangesUsed && Class.Ranges[i].Low > Range.Low)
    ++i;
  if (i < Class.RangesUsed && Class.Ranges[i].Low == Range.Low &&
      Class.Ranges[i].High == Range.High)
    return;
  GrowBy8(Class.Ranges, Class.RangesUsed);
  for (int32_t k = Class.RangesUsed; k > i; --k)
    Class.Ranges[k] = Class.Ranges[k - 1];
  Class.Ranges[i] = Range;
  ++Class.RangesUsed;
}

void TURESearch::CCLSetup(TSymbolTableEntry &Symbol, uint32_t Mask) {
  Symbol.Props |= Mask;
}

void TURESearch::SpaceSetup(TSymbolTableEntry &Symbol, uint32_t Mask) {
  Symbol.Props |= Mask;
  for (UCS4 c : {0x0009u, 0x000Du, 0x000Au, 0x000Cu, 0xFEFFu})
    AddRange(Symbol.Symbol.CCL, TRange{c, c});
}

void TURESearch::HexDigitSetup(TSymbolTableEntry &Symbol, uint32_t Mask) {
  AddRange(Symbol.Symbol.CCL, TRange{u'0', u'9'});
  AddRange(Symbol.Symbol.CCL, TRange{u'A', u'F'});
  AddRange(Symbol.Symbol.CCL, TRange{u'a', u'f'});
}

namespace {

struct TPosixName {
  const char16_t *Name;
  uint32_t Mask;
  int Setup; // 0 CCLSetup, 1 SpaceSetup, 2 HexDigitSetup
};

constexpr TPosixName PosixNames[] = {
    {u":alnum:", 0x3E07, 0},   {u":alpha:", 0x3E03, 0},   {u":cntrl:", 0x80, 0},
    {u":digit:", 0x4, 0},      {u":graph:", 0x1C3E0F, 0}, {u":lower:", 0x400, 0},
    {u":print:", 0x1C3E1F, 0}, {u":punct:", 0x3C000, 0},  {u":space:", 0x70, 1},
    {u":upper:", 0x200, 0},    {u":xdigit:", 0, 2},
};

} // namespace

uint32_t TURESearch::PosixCCL(const char16_t *Text, uint32_t Limit, TSymbolTableEntry &Symbol) {
  if (Limit < 7) return 0;
  for (const TPosixName &p : PosixNames) {
    uint32_t len = std::char_traits<char16_t>::length(p.Name);
    if (len > Limit || std::char_traits<char16_t>::compare(Text, p.Name, len) != 0) continue;
    if (p.Setup == 0)
      CCLSetup(Symbol, p.Mask);
    else if (p.Setup == 1)
      SpaceSetup(Symbol, p.Mask);
    else
      HexDigitSetup(Symbol, p.Mask);
    return len;
  }
  return 0;
}

namespace {

// The control escapes; 0 for a letter that is none. The carriage return is
// `\r` outside a class and `\R` inside one.
UCS4 ControlEscape(char16_t c, char16_t CarriageReturn) {
  if (c == CarriageReturn) return 0x0D;
  switch (c) {
  case u'a':
    return 0x07;
  case u'b':
    return 0x08;
  case u'f':
    return 0x0C;
  case u'n':
    return 0x0A;
  case u't':
    return 0x09;
  case u'v':
    return 0x0B;
  default:
    return 0;
  }
}

// Inside a class any other escaped character stands for itself.
UCS4 ClassEscape(char16_t c) {
  const UCS4 control = ControlEscape(c, u'R');
  return control != 0 ? control : c;
}

bool IsHexEscapeLetter(char16_t c) {
  return c == u'x' || c == u'X' || c == u'u' || c == u'U';
}

} // namespace

uint32_t TURESearch::BuildCharacterClass(const char16_t *Text, uint32_t Limit,
                                         TSymbolTableEntry &Symbol) {
  uint32_t used = 0;
  UCS4 last = 0;
  TRange range;
  bool rangeOpen = false;
  TCClass &ccl = Symbol.Symbol.CCL;
  // The end of the pattern counts as no `-`.
  auto nextIsDash = [&] { return used < Limit && Text[used] == u'-'; };

  if (used < Limit && Text[used] == u'^') {
    Symbol.SymbolType = NegatedClassSymbol;
    ++used;
  } else {
    Symbol.SymbolType = ClassSymbol;
  }
  while (UREBuffer.Error == 0 && used < Limit) {
    if (Text[used] == u']' && ccl.RangesUsed > 0) break;
    UCS4 c = Text[used++];
    if (c == u'\\') {
      if (used >= Limit) {
        UREBuffer.Error = ErrUnexpectedEnd;
        return used;
      }
      char16_t e = Text[used++];
      if (e == u'p' || e == u'P') {
        used += ParsePropertyList(Text + used, Limit - used, Symbol.Props);
        if (e == u'P') Symbol.Props = ~Symbol.Props;
        continue;
      }
      uint32_t number = 0;
      uint32_t digits = IsHexEscapeLetter(e) ? MakeHexNumber(Text + used, Limit - used, number) : 0;
      if (digits > 0) {
        c = number;
        used += digits;
      } else {
        c = ClassEscape(e);
      }
    } else if (c == u':') {
      uint32_t len = PosixCCL(Text + used - 1, Limit - used + 1, Symbol);
      if (len > 0) {
        used += len - 1;
        continue;
      }
    }
    if (last != 0) {
      if (IsLowSurrogateUnit(c)) {
        c = CombineSurrogates(last, c);
      } else {
        if (rangeOpen)
          range.High = last;
        else
          range.Low = range.High = last;
        AddRange(ccl, range);
        rangeOpen = false;
      }
    }
    last = 0;
    if (IsHighSurrogateUnit(c)) {
      if (nextIsDash()) {
        ++used;
        range.Low = c;
        rangeOpen = true;
      } else {
        last = c;
      }
      continue;
    }
    if (rangeOpen) {
      range.High = c;
      AddRange(ccl, range);
      rangeOpen = false;
    } else {
      range.Low = range.High = c;
      if (nextIsDash()) {
        ++used;
        rangeOpen = true;
      } else {
        AddRange(ccl, range);
      }
    }
  }
  if (used < Limit && Text[used] == u']')
    ++used;
  else
    UREBuffer.Error = ErrClassOpen;
  return used;
}

// ------------------------------------------------------------------ symbols

namespace {} // namespace

uint32_t TURESearch::CompileSymbol(const char16_t *Text, uint32_t Limit,
                                   TSymbolTableEntry &Symbol) {
  uint32_t used = 0;
  if (Limit == 0) return 0;
  char16_t c = Text[used++];
  if (c == u'\\') {
    if (used >= Limit) {
      UREBuffer.Error = ErrUnexpectedEnd;
      return used;
    }
    char16_t e = Text[used++];
    Symbol.SymbolType = CharSymbol;
    if (e == u'p' || e == u'P') {
      Symbol.SymbolType = e == u'p' ? ClassSymbol : NegatedClassSymbol;
      used += ParsePropertyList(Text + used, Limit - used, Symbol.Props);
    } else if (UCS4 ctl = ControlEscape(e, u'r')) {
      Symbol.Symbol.Chr = ctl;
    } else {
      uint32_t number = 0;
      uint32_t digits = IsHexEscapeLetter(e) ? MakeHexNumber(Text + used, Limit - used, number) : 0;
      Symbol.Symbol.Chr = digits > 0 ? number : e;
      used += digits;
    }
  } else if (c == u'^') {
    Symbol.SymbolType = LineStartSymbol;
  } else if (c == u'$') {
    Symbol.SymbolType = LineEndSymbol;
  } else if (c == u'[') {
    used += BuildCharacterClass(Text + used, Limit - used, Symbol);
  } else if (c == u'.') {
    Symbol.SymbolType = AnyCharSymbol;
  } else {
    Symbol.SymbolType = CharSymbol;
    Symbol.Symbol.Chr = c;
  }

  if (Symbol.SymbolType == CharSymbol && IsHighSurrogateUnit(Symbol.Symbol.Chr) && used < Limit) {
    if (IsLowSurrogateUnit(Text[used])) {
      Symbol.Symbol.Chr = CombineSurrogates(Symbol.Symbol.Chr, Text[used]);
      ++used;
    } else if (Text[used] == u'\\' && used + 1 < Limit && IsHexEscapeLetter(Text[used + 1])) {
      uint32_t low = 0;
      uint32_t digits = ProbeLowSurrogate(Text + used + 2, Limit - used - 2, low);
      if (digits > 0) {
        Symbol.Symbol.Chr = CombineSurrogates(Symbol.Symbol.Chr, low);
        used += 2 + digits;
      }
    }
  }
  if ((UREBuffer.Flags & FoldCase) && Symbol.SymbolType == CharSymbol)
    Symbol.Symbol.Chr = UnicodeToLower(Symbol.Symbol.Chr);
  if (Symbol.SymbolType != LineStartSymbol && Symbol.SymbolType != LineEndSymbol)
    UREBuffer.Flags &= ~BlankLine;
  return used;
}

bool TURESearch::SymbolsAreDifferent(const TSymbolTableEntry &A, const TSymbolTableEntry &B) {
  if (A.SymbolType != B.SymbolType || A.Mods != B.Mods || A.Props != B.Props) return true;
  if (A.SymbolType == ClassSymbol || A.SymbolType == NegatedClassSymbol) {
    const TCClass &a = A.Symbol.CCL, &b = B.Symbol.CCL;
    if (a.RangesUsed != b.RangesUsed) return true;
    for (int32_t i = 0; i < a.RangesUsed; ++i)
      if (a.Ranges[i].Low != b.Ranges[i].Low || a.Ranges[i].High != b.Ranges[i].High) return true;
  }
  if (A.SymbolType == CharSymbol && A.Symbol.Chr != B.Symbol.Chr) return true;
  return false;
}

uint32_t TURESearch::MakeSymbol(const char16_t *Text, uint32_t Limit, uint32_t &Consumed) {
  TSymbolTableEntry entry;
  Consumed = CompileSymbol(Text, Limit, entry);
  TSymbolTable &table = UREBuffer.SymbolTable;
  for (uint32_t i = 0; i < table.SymbolsUsed; ++i)
    if (!SymbolsAreDifferent(table.Symbols[i], entry)) return table.Symbols[i].ID;
  GrowBy8(table.Symbols, table.SymbolsUsed);
  entry.ID = table.SymbolsUsed;
  table.Symbols[table.SymbolsUsed] = std::move(entry);
  return table.SymbolsUsed++;
}

// -------------------------------------------------------------- expressions

void TURESearch::TExpressionIndex::Add(uint64_t Key, uint32_t Value) {
  if (2 * (Used + 1) > Keys.size()) { // at most half full
    std::vector<uint64_t> keys(std::max<size_t>(64, Keys.size() * 2), 0);
    std::vector<uint32_t> values(keys.size());
    const size_t mask = keys.size() - 1;
    for (size_t j = 0; j < Keys.size(); ++j) {
      if (Keys[j] == 0) continue;
      size_t i = Slot(Keys[j] - 1, mask);
      while (keys[i] != 0)
        i = (i + 1) & mask;
      keys[i] = Keys[j];
      values[i] = Values[j];
    }
    Keys.swap(keys);
    Values.swap(values);
  }
  const size_t mask = Keys.size() - 1;
  size_t i = Slot(Key, mask);
  while (Keys[i] != 0)
    i = (i + 1) & mask;
  Keys[i] = Key + 1;
  Values[i] = Value;
  ++Used;
}

uint32_t TURESearch::MakeExpression(uint32_t ExprType, uint32_t LHS, uint32_t RHS) {
  // An operand of "no expression" indexes nothing and cannot be reduced.
  bool unary = ExprType == OptionalExpr || ExprType == StarExpr || ExprType == PlusExpr;
  bool binary = ExprType == SequenceExpr || ExprType == AlternativeExpr;
  if ((unary && LHS == NoExpression) || (binary && (LHS == NoExpression || RHS == NoExpression))) {
    FMissingOperand = true;
    if (UREBuffer.Reducing && UREBuffer.Error == 0) UREBuffer.Error = ErrNoOperand;
    return NoExpression;
  }
  uint64_t key = (uint64_t(ExprType) << 40) | (uint64_t(LHS & 0xFFFFF) << 20) | (RHS & 0xFFFFF);
  if (uint32_t known = FExpressionIndex.Find(key); known != NoExpression) return known;
  TExpressionList &list = UREBuffer.ExpressionList;
  if (list.ExpressionsUsed >= NoExpression || !SpendWork(1)) {
    UREBuffer.Error = ErrTooLarge;
    return NoExpression;
  }
  GrowBy8(list.Expressions, list.ExpressionsUsed);
  list.Expressions[list.ExpressionsUsed] = TExpression{false, ExprType, LHS, RHS};
  FExpressionIndex.Add(key, list.ExpressionsUsed);
  return list.ExpressionsUsed++;
}

namespace {

bool IsDigitUnit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

} // namespace

// Reads the bounds behind a `{`. The end of the pattern ends a number or the
// white space like any unit that is neither.
uint32_t TURESearch::ParseBounds(const char16_t *Text, uint32_t Limit, uint32_t &Min,
                                 uint32_t &Max) {
  uint32_t used = 0;
  auto skipBlanks = [&] {
    while (used < Limit && UnicodeIsWhiteSpace(Text[used]))
      ++used;
  };
  auto number = [&]() -> uint32_t {
    std::string digits;
    while (used < Limit && IsDigitUnit(Text[used]))
      digits += char(Text[used++]);
    return digits.empty() ? 0 : uint32_t(StrToInt(digits));
  };
  skipBlanks();
  Min = number();
  skipBlanks();
  if (used < Limit && Text[used] == u',') {
    ++used;
    skipBlanks();
    Max = number();
    if (used < Limit && Text[used] == u'}')
      ++used;
    else
      UREBuffer.Error = ErrRangeOpen;
  } else if (used < Limit && Text[used] == u'}') {
    ++used;
    Max = Min;
  } else {
    UREBuffer.Error = ErrBadRange;
  }
  return used;
}

} // namespace kestrel
