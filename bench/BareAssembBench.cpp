// The buffer routines against the obvious standard-library code for the same
// job: std::u16string_view::find, std::search with a two-form predicate, a
// find-and-copy loop over std::string_view, and std::unique.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kestrel/search/bare_assemb.h>

namespace {

// Running text of made-up words, a sentence end with two blanks every twelve
// words, and "kestrel" or "KESTREL" planted about every 40,000 units.
const std::u16string &Text() {
  static const std::u16string text = [] {
    static const char16_t *syllables[] = {u"ka",  u"ro", u"len", u"mi", u"sta", u"tor",     u"be",
                                          u"qua", u"ne", u"dri", u"fa", u"shu", u"l\u00e9", u"ing",
                                          u"ed",  u"th", u"an",  u"or", u"vi",  u"p\u00f6"};
    std::mt19937 rng(7);
    std::u16string t;
    const size_t units = size_t(1) << 20;
    for (size_t word = 1; t.size() < units; ++word) {
      for (int parts = 1 + int(rng() % 3); parts > 0; --parts)
        t += syllables[rng() % std::size(syllables)];
      t += word % 12 == 0 ? u".  " : u" ";
    }
    for (size_t at = 3000; at + 16 < t.size(); at += 40000 + rng() % 10000)
      t.replace(at, 7, rng() % 2 ? u"kestrel" : u"KESTREL");
    return t;
  }();
  return text;
}

const std::string &Bytes() {
  static const std::string bytes = [] {
    std::string b;
    for (char16_t c : Text())
      b += static_cast<char>(c < 0x100 ? c : '?');
    return b;
  }();
  return bytes;
}

void SetBytes(benchmark::State &state, size_t bytes) {
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(bytes));
}

// ---- FastStrPosW: every occurrence, one search after another --------------

void StrPosKestrel(benchmark::State &state) {
  const std::u16string &t = Text();
  for (auto _ : state) {
    size_t hits = 0;
    const char16_t *at = t.data();
    while (const char16_t *found = kestrel::FastStrPosW(
               at, u"kestrel", static_cast<int32_t>(t.data() + t.size() + 1 - at))) {
      ++hits;
      at = found + 1;
    }
    benchmark::DoNotOptimize(hits);
  }
  SetBytes(state, t.size() * 2);
}

void StrPosStd(benchmark::State &state) {
  std::u16string_view t = Text();
  for (auto _ : state) {
    size_t hits = 0;
    for (size_t at = t.find(u"kestrel"); at != t.npos; at = t.find(u"kestrel", at + 1))
      ++hits;
    benchmark::DoNotOptimize(hits);
  }
  SetBytes(state, t.size() * 2);
}

// ---- FastStrIPosW: the same word in either case ---------------------------

void StrIPosKestrel(benchmark::State &state) {
  const std::u16string &t = Text();
  for (auto _ : state) {
    size_t hits = 0;
    const char16_t *at = t.data();
    while (const char16_t *found = kestrel::FastStrIPosW(
               at, u"kestrel", u"KESTREL", static_cast<int32_t>(t.data() + t.size() + 1 - at))) {
      ++hits;
      at = found + 1;
    }
    benchmark::DoNotOptimize(hits);
  }
  SetBytes(state, t.size() * 2);
}

void StrIPosStd(benchmark::State &state) {
  const std::u16string &t = Text();
  const std::pair<char16_t, char16_t> forms[] = {{u'k', u'K'}, {u'e', u'E'}, {u's', u'S'},
                                                 {u't', u'T'}, {u'r', u'R'}, {u'e', u'E'},
                                                 {u'l', u'L'}};
  auto either = [](char16_t c, const std::pair<char16_t, char16_t> &f) {
    return c == f.first || c == f.second;
  };
  for (auto _ : state) {
    size_t hits = 0;
    for (auto at = t.begin();; ++at) {
      at = std::search(at, t.end(), std::begin(forms), std::end(forms), either);
      if (at == t.end()) break;
      ++hits;
    }
    benchmark::DoNotOptimize(hits);
  }
  SetBytes(state, t.size() * 2);
}

// ---- SearchAndReplaceFast: a frequent three-byte word end ------------------
// The replacement is the search text itself, so the buffer stays as it was.

void ReplaceKestrel(benchmark::State &state) {
  std::string b = Bytes();
  for (auto _ : state) {
    kestrel::SearchAndReplaceFast(b.data(), "ing ", "ing ", static_cast<int32_t>(b.size()), 4);
    benchmark::ClobberMemory();
  }
  SetBytes(state, b.size());
}

void ReplaceStd(benchmark::State &state) {
  std::string b = Bytes();
  const std::string_view search = "ing ", replace = "ing ";
  for (auto _ : state) {
    std::string_view view(b.data(), b.size() - 1); // the last byte is never replaced
    for (size_t at = view.find(search); at != view.npos; at = view.find(search, at + 4))
      std::copy(replace.begin(), replace.end(), b.begin() + static_cast<ptrdiff_t>(at));
    benchmark::ClobberMemory();
  }
  SetBytes(state, b.size());
}

// ---- RemoveRedundantSpaceW: the text is restored outside the timing --------

template <typename Squeeze> void SqueezeCase(benchmark::State &state, Squeeze squeeze) {
  const std::u16string &t = Text();
  std::u16string b = t + u'\0';
  for (auto _ : state) {
    state.PauseTiming();
    std::copy(t.begin(), t.end(), b.begin());
    state.ResumeTiming();
    benchmark::DoNotOptimize(squeeze(b.data(), static_cast<int32_t>(t.size())));
  }
  SetBytes(state, t.size() * 2);
}

void SqueezeKestrel(benchmark::State &state) {
  SqueezeCase(state, kestrel::RemoveRedundantSpaceW);
}

void SqueezeStd(benchmark::State &state) {
  SqueezeCase(state, [](char16_t *b, int32_t len) {
    char16_t *end =
        std::unique(b, b + len, [](char16_t x, char16_t y) { return x == u' ' && y == u' '; });
    *end = 0;
    return static_cast<int32_t>(end - b);
  });
}

} // namespace

BENCHMARK(StrPosKestrel)->Name("FastStrPosW/kestrel");
BENCHMARK(StrPosStd)->Name("FastStrPosW/std-find");
BENCHMARK(StrIPosKestrel)->Name("FastStrIPosW/kestrel");
BENCHMARK(StrIPosStd)->Name("FastStrIPosW/std-search");
BENCHMARK(ReplaceKestrel)->Name("SearchAndReplaceFast/kestrel");
BENCHMARK(ReplaceStd)->Name("SearchAndReplaceFast/std-find");
BENCHMARK(SqueezeKestrel)->Name("RemoveRedundantSpaceW/kestrel");
BENCHMARK(SqueezeStd)->Name("RemoveRedundantSpaceW/std-unique");
