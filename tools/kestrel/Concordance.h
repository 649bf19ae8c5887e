// The lines of a concordance as data: each match with its place and its left
// and right context (in columns or in words), and the orders a linguist
// sorts them by. The printers of kestrel search format these lines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestrel::cli {

// Context on each side: `words` words when above 0, else `width` columns.
struct ContextSpec {
  int width = 30;
  int words = 0;
};

// --sort left|right|match[:N]: by the N-th word left or right of the match
// (from 1), or by the match itself.
struct SortSpec {
  enum class By : uint8_t { Corpus, Left, Right, Match };
  By by = By::Corpus;
  int n = 1;
};
// Throws UsageError for a value it does not understand.
SortSpec ParseSort(const std::string &value);

struct ConcordanceLine {
  std::string file, encoding;
  uint64_t start = 0, stop = 0; // UTF-16 unit offsets into the decoded text
  uint64_t line = 0;
  uint32_t column = 0;
  std::u16string left, match, right; // on one line: breaks and controls as blanks
  int leftColumns = 0;               // terminal columns of `left`
  std::u16string key;                // what the line sorts by
};

// The line of the match [start, stop) of text, placed at line:column.
ConcordanceLine MakeLine(const std::u16string &text, uint32_t start, uint32_t stop, uint32_t line,
                         uint32_t column, const ContextSpec &context, const SortSpec &sort);

// Whether MakeLine reads only inside text for the match [start, stop):
// the context and the sort key end short of the edges of text, or reach an
// edge that is the start (atStart) or end (atEnd) of the whole text. A
// piece of a text that passes gives the line the whole text would.
bool ContextWithin(const std::u16string &text, uint32_t start, uint32_t stop,
                   const ContextSpec &context, const SortSpec &sort, bool atStart, bool atEnd);

// The n-th word (from 1) before `at` or from `at` on; empty when there is none.
std::u16string WordBefore(const std::u16string &text, uint32_t at, int n);
std::u16string WordAfter(const std::u16string &text, uint32_t at, int n);

// Sorts by key with WideCompareText under the locale; equal keys keep the
// order they came in (corpus order).
void SortLines(std::vector<ConcordanceLine> &lines, uint32_t locale);

} // namespace kestrel::cli
