#include "Concordance.h"

#include <algorithm>

#include <kestrel/unicode/CodePages.h>

#include "Cli.h"
#include "OutputFormats.h"
#include "WordChars.h"

namespace kestrel::cli {
namespace {

std::u16string Flatten(std::u16string s) {
  for (auto &c : s)
    if (c < 0x20 || c == 0x2028 || c == 0x2029 || c == 0x7F) c = u' ';
  return s;
}

// The start of the code point that ends just before i.
uint32_t StepBack(const std::u16string &t, uint32_t i) {
  return i >= 2 && PairAt(t, i - 2) ? i - 2 : i - 1;
}

int ColumnsOf(const std::u16string &t, uint32_t from, uint32_t to) {
  int n = 0;
  for (uint32_t i = from; i < to; i += static_cast<uint32_t>(UnitsAt(t, i)))
    n += TerminalColumns(CodeAt(t, i));
  return n;
}

// Where the context ends on each side: whole characters up to `width`
// columns, or through the n-th word.
uint32_t LeftEdge(const std::u16string &t, uint32_t at, const ContextSpec &c) {
  uint32_t i = at;
  if (c.words > 0) {
    for (int k = 0; k < c.words && i > 0; ++k) {
      while (i > 0 && !IsWordChar(CodeAt(t, StepBack(t, i))))
        i = StepBack(t, i);
      while (i > 0 && IsWordChar(CodeAt(t, StepBack(t, i))))
        i = StepBack(t, i);
    }
    return i;
  }
  int columns = 0;
  while (i > 0) {
    const uint32_t j = StepBack(t, i);
    columns += TerminalColumns(CodeAt(t, j));
    if (columns > c.width) break;
    i = j;
  }
  return i;
}

uint32_t RightEdge(const std::u16string &t, uint32_t at, const ContextSpec &c) {
  uint32_t i = at;
  const auto size = static_cast<uint32_t>(t.size());
  if (c.words > 0) {
    for (int k = 0; k < c.words && i < size; ++k) {
      while (i < size && !IsWordChar(CodeAt(t, i)))
        i += static_cast<uint32_t>(UnitsAt(t, i));
      while (i < size && IsWordChar(CodeAt(t, i)))
        i += static_cast<uint32_t>(UnitsAt(t, i));
    }
    return i;
  }
  int columns = 0;
  while (i < size) {
    columns += TerminalColumns(CodeAt(t, i));
    if (columns > c.width) break;
    i += static_cast<uint32_t>(UnitsAt(t, i));
  }
  return i;
}

} // namespace

SortSpec ParseSort(const std::string &value) {
  SortSpec s;
  const size_t colon = value.find(':');
  const std::string by = value.substr(0, colon);
  if (by == "left")
    s.by = SortSpec::By::Left;
  else if (by == "right")
    s.by = SortSpec::By::Right;
  else if (by == "match")
    s.by = SortSpec::By::Match;
  else
    throw UsageError{"--sort takes left, right or match (with :N for the N-th word), not '" +
                     value + "'"};
  if (colon == std::string::npos) return s;
  const std::string n = value.substr(colon + 1);
  if (s.by == SortSpec::By::Match || n.empty() || n.size() > 3 ||
      n.find_first_not_of("0123456789") != std::string::npos || std::stoi(n) < 1)
    throw UsageError{"--sort " + value + ": N must be a word number from 1 (left:N or right:N)"};
  s.n = std::stoi(n);
  return s;
}

namespace {

// The n-th word before `at` as [from, to), empty when there is none; `stop`
// is where the walk stopped (at 0 it met the edge of the text).
struct WordSpan {
  uint32_t from = 0, to = 0, stop = 0;
};

WordSpan WordBeforeSpan(const std::u16string &t, uint32_t at, int n) {
  uint32_t from = at, to = at;
  for (int k = 0; k < n; ++k) {
    while (from > 0 && !IsWordChar(CodeAt(t, StepBack(t, from))))
      from = StepBack(t, from);
    if (from == 0) return {0, 0, 0};
    to = from;
    while (from > 0 && IsWordChar(CodeAt(t, StepBack(t, from))))
      from = StepBack(t, from);
  }
  return {from, to, from};
}

// The n-th word from `at` on; at `stop` == size the walk met the edge.
WordSpan WordAfterSpan(const std::u16string &t, uint32_t at, int n) {
  const auto size = static_cast<uint32_t>(t.size());
  uint32_t from = at, to = at;
  for (int k = 0; k < n; ++k) {
    while (to < size && !IsWordChar(CodeAt(t, to)))
      to += static_cast<uint32_t>(UnitsAt(t, to));
    if (to == size) return {size, size, size};
    from = to;
    while (to < size && IsWordChar(CodeAt(t, to)))
      to += static_cast<uint32_t>(UnitsAt(t, to));
  }
  return {from, to, to};
}

} // namespace

std::u16string WordBefore(const std::u16string &t, uint32_t at, int n) {
  const WordSpan w = WordBeforeSpan(t, at, n);
  return t.substr(w.from, w.to - w.from);
}

std::u16string WordAfter(const std::u16string &t, uint32_t at, int n) {
  const WordSpan w = WordAfterSpan(t, at, n);
  return t.substr(w.from, w.to - w.from);
}

// An edge reached (0 or the size) is no answer of the piece's own unless it
// is the edge of the whole text; short of it, every offset looked at lies
// inside.
bool ContextWithin(const std::u16string &text, uint32_t start, uint32_t stop,
                   const ContextSpec &context, const SortSpec &sort, bool atStart, bool atEnd) {
  const auto size = static_cast<uint32_t>(text.size());
  uint32_t left = LeftEdge(text, start, context), right = RightEdge(text, stop, context);
  if (sort.by == SortSpec::By::Left)
    left = std::min(left, WordBeforeSpan(text, start, sort.n).stop);
  if (sort.by == SortSpec::By::Right)
    right = std::max(right, WordAfterSpan(text, stop, sort.n).stop);
  return (atStart || left > 0) && (atEnd || right < size);
}

ConcordanceLine MakeLine(const std::u16string &text, uint32_t start, uint32_t stop, uint32_t line,
                         uint32_t column, const ContextSpec &context, const SortSpec &sort) {
  ConcordanceLine l;
  l.start = start;
  l.stop = stop;
  l.line = line;
  l.column = column;
  const uint32_t left = LeftEdge(text, start, context);
  l.left = Flatten(text.substr(left, start - left));
  l.leftColumns = ColumnsOf(text, left, start);
  l.match = Flatten(text.substr(start, stop - start));
  const uint32_t right = RightEdge(text, stop, context);
  l.right = Flatten(text.substr(stop, right - stop));
  switch (sort.by) {
  case SortSpec::By::Corpus:
    break;
  case SortSpec::By::Left:
    l.key = WordBefore(text, start, sort.n);
    break;
  case SortSpec::By::Right:
    l.key = WordAfter(text, stop, sort.n);
    break;
  case SortSpec::By::Match:
    l.key = text.substr(start, stop - start);
    break;
  }
  return l;
}

void SortLines(std::vector<ConcordanceLine> &lines, uint32_t locale) {
  std::stable_sort(lines.begin(), lines.end(),
                   [locale](const ConcordanceLine &a, const ConcordanceLine &b) {
                     return WideCompareText(a.key, b.key, locale) < 0;
                   });
}

} // namespace kestrel::cli
