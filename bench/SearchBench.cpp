// Literal search and wide-list sorting against the best peers on the machine:
// std::boyer_moore_horspool_searcher (exact), ICU usearch at secondary
// strength (case ignored), and std::sort with an ICU collator.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/stsearch.h>
#include <unicode/ucol.h>
#include <unicode/usearch.h>

#include <kestrel/search/Search.h>
#include <kestrel/unicode/WideStrings.h>

namespace {

// A vocabulary of made-up words from syllables, a few with accents or
// capitals, drawn with a Zipf distribution: the shape of running text.
std::vector<std::u16string> Vocabulary(size_t n, std::mt19937 &rng) {
  static const char16_t *syllables[] = {
      u"ka", u"ro",  u"len",     u"mi",      u"sta", u"tor", u"be", u"qua", u"ne", u"dri",
      u"fa", u"shu", u"l\u00e9", u"p\u00f6", u"ing", u"ed",  u"th", u"an",  u"or", u"vi"};
  std::vector<std::u16string> words;
  while (words.size() < n) {
    std::u16string w;
    const int parts = 1 + static_cast<int>(rng() % 4);
    for (int i = 0; i < parts; ++i)
      w += syllables[rng() % std::size(syllables)];
    if (rng() % 10 == 0) w[0] = static_cast<char16_t>(w[0] - 0x20 * (w[0] >= u'a' && w[0] <= u'z'));
    words.push_back(w);
  }
  return words;
}

struct Corpus {
  std::u16string text;
  std::u16string pattern; // a word of middling frequency
};

const Corpus &TheCorpus() {
  static const Corpus corpus = [] {
    std::mt19937 rng(42);
    std::vector<std::u16string> vocab = Vocabulary(20000, rng);
    std::vector<double> weights(vocab.size());
    for (size_t i = 0; i < weights.size(); ++i)
      weights[i] = 1.0 / double(i + 1);
    std::discrete_distribution<size_t> zipf(weights.begin(), weights.end());
    Corpus c;
    const size_t units = size_t(17) << 20; // 34 MB of UTF-16
    c.text.reserve(units + 64);
    size_t sentence = 0;
    while (c.text.size() < units) {
      c.text += vocab[zipf(rng)];
      c.text += ++sentence % 12 == 0 ? u".\n" : u" ";
    }
    c.pattern = u"kestrel"; // planted below at a realistic rate
    for (size_t at = 5000; at + 16 < c.text.size(); at += 40000 + rng() % 20000) {
      at = c.text.find(u' ', at);
      if (at == std::u16string::npos) break;
      c.text.replace(at + 1, 7, rng() % 2 ? u"kestrel" : u"Kestrel");
    }
    return c;
  }();
  return corpus;
}

void SetBytes(benchmark::State &state, size_t units) {
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(units) * 2);
}

// ---- Exact search

void FindAllExactKestrel(benchmark::State &state) {
  const Corpus &c = TheCorpus();
  kestrel::TUTBMSearch engine(nullptr);
  engine.FindPrepare(c.pattern, kestrel::TSearchFlags{kestrel::TSearchFlag::sfCaseSensitive});
  for (auto _ : state) {
    engine.FindAll(c.text);
    benchmark::DoNotOptimize(engine.GetCount());
  }
  state.counters["matches"] = engine.GetCount();
  SetBytes(state, c.text.size());
}

void FindAllExactStd(benchmark::State &state) {
  const Corpus &c = TheCorpus();
  std::boyer_moore_horspool_searcher searcher(c.pattern.begin(), c.pattern.end());
  size_t matches = 0;
  for (auto _ : state) {
    matches = 0;
    for (auto it = c.text.begin();;) {
      auto [from, to] = searcher(it, c.text.end());
      if (from == c.text.end()) break;
      ++matches;
      it = to;
    }
    benchmark::DoNotOptimize(matches);
  }
  state.counters["matches"] = double(matches);
  SetBytes(state, c.text.size());
}

// ---- Case-insensitive search

void FindAllFoldedKestrel(benchmark::State &state) {
  const Corpus &c = TheCorpus();
  kestrel::TUTBMSearch engine(nullptr);
  engine.FindPrepare(c.pattern, kestrel::TSearchFlags{});
  for (auto _ : state) {
    engine.FindAll(c.text);
    benchmark::DoNotOptimize(engine.GetCount());
  }
  state.counters["matches"] = engine.GetCount();
  SetBytes(state, c.text.size());
}

void FindAllFoldedIcu(benchmark::State &state) {
  const Corpus &c = TheCorpus();
  UErrorCode status = U_ZERO_ERROR;
  UCollator *coll = ucol_open("en", &status);
  ucol_setStrength(coll, UCOL_SECONDARY);
  UStringSearch *search = usearch_openFromCollator(
      reinterpret_cast<const UChar *>(c.pattern.data()), int32_t(c.pattern.size()),
      reinterpret_cast<const UChar *>(c.text.data()), int32_t(c.text.size()), coll, nullptr,
      &status);
  if (U_FAILURE(status)) {
    state.SkipWithError(u_errorName(status));
    ucol_close(coll);
    return;
  }
  size_t matches = 0;
  for (auto _ : state) {
    matches = 0;
    usearch_reset(search);
    for (int32_t at = usearch_first(search, &status); at != USEARCH_DONE;
         at = usearch_next(search, &status))
      ++matches;
    benchmark::DoNotOptimize(matches);
  }
  state.counters["matches"] = double(matches);
  SetBytes(state, c.text.size());
  usearch_close(search);
  ucol_close(coll);
}

// ---- Sorting a wide list

const std::vector<std::u16string> &SortWords() {
  static const std::vector<std::u16string> words = [] {
    std::mt19937 rng(7);
    return Vocabulary(200000, rng);
  }();
  return words;
}

void SortListKestrel(benchmark::State &state) {
  const auto &words = SortWords();
  for (auto _ : state) {
    state.PauseTiming();
    auto list = std::make_unique<kestrel::TWideStringList>();
    list->SetLanguage(0x0409);
    list->BeginUpdate();
    for (const auto &w : words)
      list->Add(w);
    list->EndUpdate();
    state.ResumeTiming();
    list->SetSorted(true);
    benchmark::DoNotOptimize(list->GetCount());
    state.PauseTiming();
    list.reset();
    state.ResumeTiming();
  }
}

void SortListIcu(benchmark::State &state) {
  const auto &words = SortWords();
  UErrorCode status = U_ZERO_ERROR;
  UCollator *coll = ucol_open("en_US", &status);
  ucol_setStrength(coll, UCOL_SECONDARY); // case ignored, as the list's order
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<std::u16string> copy = words;
    state.ResumeTiming();
    std::sort(copy.begin(), copy.end(), [coll](const std::u16string &a, const std::u16string &b) {
      return ucol_strcoll(coll, reinterpret_cast<const UChar *>(a.data()), int32_t(a.size()),
                          reinterpret_cast<const UChar *>(b.data()),
                          int32_t(b.size())) == UCOL_LESS;
    });
    benchmark::DoNotOptimize(copy.data());
  }
  ucol_close(coll);
}

} // namespace

BENCHMARK(FindAllExactKestrel)->Name("FindAllExact/kestrel")->Unit(benchmark::kMillisecond);
BENCHMARK(FindAllExactStd)->Name("FindAllExact/std-bmh")->Unit(benchmark::kMillisecond);
BENCHMARK(FindAllFoldedKestrel)->Name("FindAllFolded/kestrel")->Unit(benchmark::kMillisecond);
BENCHMARK(FindAllFoldedIcu)->Name("FindAllFolded/icu")->Unit(benchmark::kMillisecond);
BENCHMARK(SortListKestrel)->Name("SortWideList/kestrel")->Unit(benchmark::kMillisecond);
BENCHMARK(SortListIcu)->Name("SortWideList/icu")->Unit(benchmark::kMillisecond);
