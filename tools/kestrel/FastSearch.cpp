#include "FastSearch.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <kestrel/files/TextFiles.h>
#include <kestrel/unicode/Utf8.h>

#include "SearchPrinters.h"

namespace kestrel::cli {

size_t MemorySource::Read(char *to, size_t n) {
  const size_t k = std::min(n, bytes_.size() - at_);
  std::memcpy(to, bytes_.data() + at_, k);
  at_ += k;
  return k;
}

namespace {

// The memory of the blocks, kept from text to text: no allocation, no
// clearing per text.
struct Memory {
  std::unique_ptr<char[]> data;
  size_t capacity = 0;
};
thread_local Memory kMemory;

// Positions are offsets into the text's bytes; the buffer holds a stretch of
// them, read on block by block and cut at the front as the search goes on.
class Blocks {
public:
  Blocks(ByteSource &source, size_t block) : source_(source), block_(block) {}

  uint64_t Begin() const { return base_; }
  uint64_t End() const { return base_ + size_; }
  bool Eof() const { return eof_; }
  const char *At(uint64_t pos) const { return kMemory.data.get() + (pos - base_); }
  uint64_t Read() const { return read_; }

  // Drops what lies before keep, reads a block more; false at the end.
  bool Next(uint64_t keep) {
    if (eof_) return false;
    keep = std::clamp(keep, base_, End());
    char *data = kMemory.data.get();
    if (keep > base_) std::memmove(data, data + (keep - base_), End() - keep);
    size_ = End() - keep;
    base_ = keep;
    if (size_ + block_ > kMemory.capacity) {
      const size_t capacity = std::max(kMemory.capacity * 2, size_ + block_);
      auto grown = std::make_unique_for_overwrite<char[]>(capacity);
      if (size_ > 0) std::memcpy(grown.get(), data, size_);
      kMemory.data = std::move(grown);
      kMemory.capacity = capacity;
    }
    const size_t got = source_.Read(kMemory.data.get() + size_, block_);
    size_ += got;
    read_ += got;
    eof_ = got == 0;
    return !eof_;
  }

  // After the last line feed in [from, to), or from if there is none.
  uint64_t LineStart(uint64_t from, uint64_t to) const {
    if (to <= from) return from;
    const void *lf = memrchr(At(from), '\n', to - from);
    return lf ? base_ + (static_cast<const char *>(lf) - At(base_)) + 1 : from;
  }
  // After the first line feed from `from` on in the buffer, or 0 if none.
  uint64_t LineEnd(uint64_t from) const {
    if (from >= End()) return 0;
    const void *lf = std::memchr(At(from), '\n', End() - from);
    return lf ? base_ + (static_cast<const char *>(lf) - At(base_)) + 1 : 0;
  }

private:
  ByteSource &source_;
  size_t block_;
  size_t size_ = 0; // bytes held, from base_
  uint64_t base_ = 0, read_ = 0;
  bool eof_ = false;
};

// The search of one text. Invariants: everything before `counted_` is
// tallied, `counted_` and `lineStart_` are line starts (after an LF, or the
// text's start), and no candidate lies in [text start, scan_).
class Scan {
public:
  Scan(ByteSource &source, const FastPlan &plan, Matcher &matcher, const FastSettings &s,
       FastResult &result)
      : blocks_(source, s.blockSize), plan_(plan), matcher_(matcher), s_(s), result_(result) {}

  bool Run() {
    if (!Start()) return false;
    while (!Done() && !plain_) {
      const size_t i = FindProbe(blocks_.At(blocks_.Begin()), blocks_.End() - blocks_.Begin(),
                                 scan_ - blocks_.Begin(), plan_.probe);
      if (i == kNoProbe ? !PassBlock() : !Window(blocks_.Begin() + i)) break;
    }
    // The rest is still tallied: one byte that is no UTF-8 makes the whole
    // text another encoding.
    while (!plain_ && More(Keep(blocks_.End())))
      Tally(blocks_.LineStart(std::max(counted_, blocks_.Begin()), blocks_.End()));
    Tally(blocks_.End());
    result_.bytes = blocks_.Read();
    return !plain_;
  }

private:
  bool Done() const { return result_.matches >= s_.maxCount; }

  // The first block; a byte-order mark of UTF-8 is no part of the text, one
  // of UTF-16 leaves the text to the plain way.
  bool Start() {
    while (blocks_.End() < 3 && blocks_.Next(0)) {
    }
    const uint64_t n = blocks_.End();
    const auto *b = reinterpret_cast<const uint8_t *>(blocks_.At(0));
    if (n >= 2 && ((b[0] == 0xFF && b[1] == 0xFE) || (b[0] == 0xFE && b[1] == 0xFF))) return false;
    result_.byteOrderMark = n >= 3 && b[0] == 0xEF && b[1] == 0xBB && b[2] == 0xBF;
    textStart_ = scan_ = lineStart_ = counted_ = result_.byteOrderMark ? 3 : 0;
    while (blocks_.End() <= kUtf16Sample && blocks_.Next(0)) {
    }
    return true;
  }

  // Bytes of the start that DecodeText looks at for UTF-16 without a mark.
  static constexpr uint64_t kUtf16Sample = 65536;

  // Valid UTF-8 with stray controls is UTF-16 when its first bytes look so
  // (DecodeText's fourth step comes after the third): asked of DecodeText
  // with the sample and a control after it, so that it looks at just these.
  bool StrayControlsMeanUtf16() const {
    std::string sample = head_;
    if (blocks_.Begin() == 0 && blocks_.End() > kUtf16Sample)
      sample.assign(blocks_.At(0), kUtf16Sample);
    if (sample.empty()) return true; // a short text: the plain way decides
    return DecodeText(sample + '\x01', DefaultTextEncoding()).Evidence ==
           TEncodingEvidence::Utf16Bytes;
  }

  // The next block, dropping what lies before keep; false at the end, or
  // when a line too long to hold sends the text to the plain way.
  bool More(uint64_t keep) {
    if (plain_) return false;
    if (blocks_.End() - std::max(keep, blocks_.Begin()) > s_.mostHeld) {
      plain_ = true;
      return false;
    }
    // The start leaves the buffer: kept for the question above.
    if (blocks_.Begin() == 0 && keep > 0 && blocks_.End() > kUtf16Sample)
      head_.assign(blocks_.At(0), kUtf16Sample);
    return blocks_.Next(keep);
  }

  // Where the buffer may be cut when reading on from `at`: keeping history
  // bytes before it for the contexts, and nothing not tallied is dropped.
  uint64_t Keep(uint64_t at) const {
    const uint64_t back = at > s_.history ? at - s_.history : 0;
    return std::min(back, counted_);
  }

  // Tallies up to `to` (a line start or the end); sets plain_ when the text
  // must be decoded by the plain way.
  void Tally(uint64_t to) {
    if (to <= counted_ || plain_) return;
    TallyUtf8(blocks_.At(counted_), to - counted_, tally_);
    counted_ = to;
    plain_ = !tally_.valid;
    if (tally_.strayControls && !result_.byteOrderMark && !strayChecked_) {
      strayChecked_ = true;
      plain_ = plain_ || StrayControlsMeanUtf16();
    }
  }

  // No candidate in the buffer: tally up to the line of the next scan, read
  // on; false at the end.
  bool PassBlock() {
    const uint64_t span = plan_.probe.span;
    const uint64_t next = std::max(scan_, blocks_.End() >= span ? blocks_.End() - span + 1 : 0);
    lineStart_ = blocks_.LineStart(lineStart_, next);
    scan_ = next;
    Tally(lineStart_);
    return !plain_ && More(Keep(lineStart_));
  }

  // The lines around the candidate at `anchor`, searched; false when the
  // text must take the plain way.
  bool Window(uint64_t anchor) {
    const uint64_t from = blocks_.LineStart(lineStart_, anchor);
    Tally(from);
    uint64_t to = blocks_.LineEnd(anchor);
    while (to == 0 && More(Keep(from)))
      to = blocks_.LineEnd(anchor);
    if (to == 0) to = blocks_.End();
    const Utf8Tally before = tally_;
    Tally(to);
    if (plain_) return false;
    const std::u16string text = Decode(from, to);
    std::vector<MatchSpan> found = matcher_.FindAll(text);
    const uint64_t room = s_.maxCount - result_.matches;
    if (found.size() > room) found.resize(room);
    result_.matches += found.size();
    if (!s_.countOnly) Lines(found, text, from, to, before);
    scan_ = lineStart_ = to;
    return !plain_;
  }

  std::u16string Decode(uint64_t from, uint64_t to) const {
    return UTF8ToWideString(std::string_view(blocks_.At(from), to - from));
  }

  void Lines(const std::vector<MatchSpan> &found, const std::u16string &text, uint64_t from,
             uint64_t to, const Utf8Tally &before) {
    Placer placer(text);
    for (const MatchSpan &m : found) {
      const Hit h = placer.Place(m.start, m.stop);
      ConcordanceLine line;
      if (!Context(text, m, from, to, line)) {
        plain_ = true;
        return;
      }
      line.start = before.units + m.start;
      line.stop = before.units + m.stop;
      line.line = before.breaks + h.line;
      line.column = h.column;
      Hold(std::move(line));
    }
  }

  // Past mostLines the lines are still made (so that a search again goes
  // the same way) but not kept.
  void Hold(ConcordanceLine &&line) {
    if (s_.emit) {
      s_.emit(std::move(line));
    } else if (result_.tooManyLines || result_.lines.size() >= s_.mostLines) {
      result_.tooManyLines = true;
      std::vector<ConcordanceLine>().swap(result_.lines);
    } else {
      result_.lines.push_back(std::move(line));
    }
  }

  // The context of a match, from the window's lines when they hold it, else
  // from more lines on either side; false when what it needs was dropped.
  bool Context(const std::u16string &text, const MatchSpan &m, uint64_t from, uint64_t to,
               ConcordanceLine &line) {
    uint64_t cFrom = from, cTo = to;
    std::u16string wide = text;
    uint32_t shift = 0;
    for (uint64_t more = 4096; !plain_; more *= 2) {
      const bool atStart = cFrom == textStart_, atEnd = cTo == blocks_.End() && blocks_.Eof();
      if (ContextWithin(wide, m.start + shift, m.stop + shift, s_.context, s_.sort, atStart,
                        atEnd)) {
        line = MakeLine(wide, m.start + shift, m.stop + shift, 0, 0, s_.context, s_.sort);
        return true;
      }
      if (!atStart) {
        cFrom = LineAtOrBefore(cFrom > textStart_ + more ? cFrom - more : textStart_);
        if (cFrom == kDropped) return false;
      }
      if (!atEnd) cTo = LineAtOrAfter(cTo + more, cFrom);
      const std::u16string head = Decode(cFrom, from);
      shift = uint32_t(head.size());
      wide = head + text + Decode(to, cTo);
    }
    return false;
  }

  static constexpr uint64_t kDropped = UINT64_MAX;

  // The line start at or before `at`: the text's start at the earliest,
  // kDropped when it lies before the buffer.
  uint64_t LineAtOrBefore(uint64_t at) const {
    if (at < blocks_.Begin()) return kDropped;
    if (at <= textStart_) return textStart_;
    const uint64_t floor = std::max(blocks_.Begin(), textStart_);
    const uint64_t s = blocks_.LineStart(floor, at);
    return s != floor || floor == textStart_ ? s : kDropped;
  }

  // The line end at or after `at`, reading on as needed (the end of the
  // text at the latest) and keeping what lies from `from` on.
  uint64_t LineAtOrAfter(uint64_t at, uint64_t from) {
    while (blocks_.End() < at + 1 && More(Keep(from))) {
    }
    if (at >= blocks_.End()) return blocks_.End();
    uint64_t end = blocks_.LineEnd(at);
    while (end == 0 && More(Keep(from)))
      end = blocks_.LineEnd(at);
    return end == 0 ? blocks_.End() : end;
  }

  Blocks blocks_;
  const FastPlan &plan_;
  Matcher &matcher_;
  const FastSettings &s_;
  FastResult &result_;
  Utf8Tally tally_;
  uint64_t textStart_ = 0, scan_ = 0, lineStart_ = 0, counted_ = 0;
  bool plain_ = false; // the text must take the plain way
  bool strayChecked_ = false;
  std::string head_; // the first kUtf16Sample bytes, once dropped from the buffer
};

} // namespace

bool FastSearchText(ByteSource &source, const FastPlan &plan, Matcher &matcher,
                    const FastSettings &settings, FastResult &result) {
  result = FastResult{};
  Scan scan(source, plan, matcher, settings, result);
  const bool done = scan.Run();
  if (!done) result = FastResult{};
  return done;
}

} // namespace kestrel::cli
