// The fast way of kestrel search through UTF-8 texts. The bytes are read in
// blocks and scanned for a literal that every match holds (the literal
// pattern, or a run of plain characters a regular expression cannot match
// without) in each of its case forms; only the lines around a candidate are
// decoded, and the matcher of the plain way decides there, so the answers
// are its answers. Offsets stay UTF-16 offsets of the whole decoded text and
// lines and columns stay exact: the bytes passed over are tallied (units,
// line breaks) without being decoded.
//
// A text takes the plain way when its encoding needs decoding (a UTF-16
// byte-order mark, bytes that are no UTF-8 found on the way, controls with
// which UTF-8 may be UTF-16); a pattern takes it when a match could span
// lines or has no such literal (see FastPlan::Make).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ByteScan.h"
#include "Concordance.h"
#include "SearchMatchers.h"

namespace kestrel::cli {

// The bytes of one text from its start, a block at a time.
class ByteSource {
public:
  virtual ~ByteSource() = default;
  // Up to n bytes into `to`; 0 at the end. Raises InputFailed.
  virtual size_t Read(char *to, size_t n) = 0;
};

// Bytes already in memory (an archive member, standard input), not copied.
class MemorySource : public ByteSource {
public:
  explicit MemorySource(std::string_view bytes) : bytes_(bytes) {}
  size_t Read(char *to, size_t n) override;

private:
  std::string_view bytes_;
  size_t at_ = 0;
};

// The probe of a pattern, or none when the pattern must take the plain way.
struct FastPlan {
  ByteProbe probe;
  static std::optional<FastPlan> Make(const std::u16string &pattern, const MatchOptions &options);
};

// What the fast way gives for one text.
struct FastResult {
  bool byteOrderMark = false; // else valid UTF-8
  uint64_t bytes = 0;         // read
  uint64_t matches = 0;
  std::vector<ConcordanceLine> lines; // unless only counted; file and encoding left empty
  // More than mostLines lines: none are kept, but the text is known to take
  // the fast way; search it again with `emit` to have them.
  bool tooManyLines = false;
};

struct FastSettings {
  ContextSpec context;
  SortSpec sort;
  bool countOnly = false;
  uint64_t maxCount = UINT64_MAX;
  size_t blockSize = size_t(1) << 20; // read at a time
  size_t history = size_t(64) << 10;  // kept before the lines being searched, for contexts
  size_t mostHeld = size_t(16) << 20; // held at once: a longer line takes the plain way
  // Lines are kept until the text is known to be UTF-8 (its end), at most
  // so many; or, when the caller knows it already, handed to emit at once.
  size_t mostLines = 50000;
  std::function<void(ConcordanceLine &&)> emit;
};

// Searches the text of source with matcher; false when it must take the
// plain way (read again from its start), having given nothing.
bool FastSearchText(ByteSource &source, const FastPlan &plan, Matcher &matcher,
                    const FastSettings &settings, FastResult &result);

} // namespace kestrel::cli
