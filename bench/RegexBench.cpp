// TURESearch against PCRE2 (16-bit, JIT) and ICU's uregex over one generated
// UTF-16 text of 32 MB: a literal word, a class run, five alternatives, a
// property class and a case-folded word; and the compile of a bounded group.
// Our matcher runs one pass without backtracking, so the peers may find other
// (leftmost-longest) matches: the counts are printed beside the times.
//
// Groups "Longest.*": TURELongestMatch (every leftmost-longest match, as
// grep -E -o) on the same cases, on a*b over a megabyte of "a" and on
// (a|aa)*b, beside PCRE2 JIT (leftmost-first), ICU and the one-pass engine.
// Groups "*.Compile*": the compile of bounds, by each engine and the peers.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include <unicode/uregex.h>

#include <kestrel/search/URELongestMatch.h>
#include <kestrel/search/URESearch.h>

#ifdef KESTREL_HAVE_PCRE2
#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>
#endif

namespace {

using kestrel::TSearchFlag;
using kestrel::TSearchFlags;

// Words of a made-up language with a Zipf distribution, some capitalised,
// some accented or Cyrillic, in sentences and lines.
const std::u16string &BenchText() {
  static const std::u16string text = [] {
    std::mt19937 rng(7);
    const std::u16string common[] = {u"the",       u"of",      u"and",       u"to",
                                     u"in",        u"house",   u"water",     u"little",
                                     u"people",    u"number",  u"river",     u"going",
                                     u"singing",   u"long",    u"caf\u00e9", u"\u0434\u043e\u043c",
                                     u"\u00fcber", u"language"};
    std::vector<std::u16string> vocabulary(common, common + std::size(common));
    const char16_t *letters = u"etaoinshrdlcumwfgypbvkjxqz";
    while (vocabulary.size() < 5000) {
      std::u16string w;
      for (int n = 2 + int(rng() % 9); n > 0; --n)
        w += letters[std::min<int>(25, int(std::exponential_distribution<>(0.25)(rng)))];
      if (rng() % 7 == 0) w += u"ing";
      vocabulary.push_back(w);
    }
    std::vector<double> weights;
    for (size_t i = 0; i < vocabulary.size(); ++i)
      weights.push_back(1.0 / double(i + 1));
    std::discrete_distribution<size_t> pick(weights.begin(), weights.end());
    std::u16string out;
    out.reserve(16u << 20);
    bool sentenceStart = true;
    while (out.size() < (16u << 20)) {
      std::u16string w = vocabulary[pick(rng)];
      if (sentenceStart || rng() % 20 == 0)
        w[0] = char16_t(w[0] >= u'a' && w[0] <= u'z' ? w[0] - 32 : w[0]);
      out += w;
      sentenceStart = rng() % 12 == 0;
      out += sentenceStart ? (rng() % 4 == 0 ? u".\n" : u". ") : (rng() % 15 == 0 ? u", " : u" ");
    }
    return out;
  }();
  return text;
}

struct Case {
  const char *name;
  std::u16string ours, peer;
  bool fold;
};

const Case Cases[] = {
    {"Regex.Literal", u"language", u"language", false},
    {"Regex.ClassRun", u"[a-z]+ing", u"[a-z]+ing", false},
    {"Regex.Alternation", u"house|water|little|people|number", u"house|water|little|people|number",
     false},
    {"Regex.Property", u"\\p10[a-z]+", u"\\p{Lu}[a-z]+", false},
    {"Regex.CaseFolded", u"river", u"river", true},
};

const Case LongestCases[] = {
    {"Longest.Literal", u"language", u"language", false},
    {"Longest.ClassRun", u"[a-z]+ing", u"[a-z]+ing", false},
    {"Longest.Alternation", u"house|water|little|people|number",
     u"house|water|little|people|number", false},
    {"Longest.Property", u"\\p10[a-z]+", u"\\p{Lu}[a-z]+", false},
    {"Longest.CaseFolded", u"river", u"river", true},
    {"Longest.Optional", u"colou?r", u"colou?r", false},
    {"Longest.NoMatchAStarB", u"a*b", u"a*b", false},
    {"Longest.Pathological", u"(a|aa)*b", u"(a|aa)*b", false},
};

// Where backtracking peers take time exponential in the run of "a" (PCRE2
// gives up at its match limit and misses the match at the end).
const Case PathologicalCase = {"Regex.Pathological", u"(a|aa)*b", u"(a|aa)*b", false};

// The text of a case: a megabyte of "a" for the a*b case, a run of 30 "a"
// then "xb" for the pathological one, else BenchText.
const std::u16string &TextFor(const Case &c) {
  static const std::u16string as(1u << 20, u'a');
  static const std::u16string run = std::u16string(30, u'a') + u"xb";
  if (c.ours == u"a*b") return as;
  return c.ours == u"(a|aa)*b" ? run : BenchText();
}

template <typename Engine> void Ours(benchmark::State &state, const Case &c) {
  const std::u16string &text = TextFor(c);
  Engine engine;
  engine.FindPrepare(c.ours, c.fold ? TSearchFlags{} : TSearchFlags{TSearchFlag::sfCaseSensitive});
  uint32_t count = 0;
  for (auto _ : state) {
    engine.FindAll(text);
    count = engine.GetCount();
    benchmark::DoNotOptimize(count);
  }
  state.counters["matches"] = count;
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(text.size() * 2));
}

#ifdef KESTREL_HAVE_PCRE2
void Pcre2(benchmark::State &state, const Case &c) {
  const std::u16string &text = TextFor(c);
  int error = 0;
  PCRE2_SIZE offset = 0;
  uint32_t options = PCRE2_UTF | PCRE2_NO_UTF_CHECK | (c.fold ? PCRE2_CASELESS : 0);
  pcre2_code *re = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(c.peer.c_str()), c.peer.size(),
                                 options, &error, &offset, nullptr);
  if (re == nullptr) {
    state.SkipWithError("pcre2_compile failed");
    return;
  }
  pcre2_jit_compile(re, PCRE2_JIT_COMPLETE);
  pcre2_match_data *md = pcre2_match_data_create_from_pattern(re, nullptr);
  const auto *subject = reinterpret_cast<PCRE2_SPTR>(text.data());
  uint32_t count = 0;
  for (auto _ : state) {
    count = 0;
    PCRE2_SIZE at = 0;
    while (at <= text.size() &&
           pcre2_match(re, subject, text.size(), at, PCRE2_NO_UTF_CHECK, md, nullptr) >= 0) {
      PCRE2_SIZE *ov = pcre2_get_ovector_pointer(md);
      ++count;
      at = ov[1] > ov[0] ? ov[1] : ov[1] + 1;
    }
    benchmark::DoNotOptimize(count);
  }
  state.counters["matches"] = count;
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(text.size() * 2));
  pcre2_match_data_free(md);
  pcre2_code_free(re);
}
#endif

void Icu(benchmark::State &state, const Case &c) {
  const std::u16string &text = TextFor(c);
  UErrorCode status = U_ZERO_ERROR;
  URegularExpression *re = uregex_open(c.peer.c_str(), int32_t(c.peer.size()),
                                       c.fold ? UREGEX_CASE_INSENSITIVE : 0, nullptr, &status);
  uregex_setText(re, text.c_str(), int32_t(text.size()), &status);
  if (U_FAILURE(status)) {
    state.SkipWithError("uregex_open failed");
    uregex_close(re);
    return;
  }
  uint32_t count = 0;
  for (auto _ : state) {
    count = 0;
    uregex_reset(re, 0, &status);
    while (uregex_findNext(re, &status))
      ++count;
    benchmark::DoNotOptimize(count);
  }
  state.counters["matches"] = count;
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(text.size() * 2));
  uregex_close(re);
}

// The compile of bounds, which the engine spells out copy by copy.
const std::u16string BoundPatterns[] = {u"(ab|cd){1,40}", u"a{1,1000}", u"[a-z]{2,1000}",
                                        u"(ab|cd){1,200}"};

template <typename Engine> void CompileOurs(benchmark::State &state, const std::u16string &p) {
  for (auto _ : state) {
    Engine engine;
    engine.FindPrepare(p, TSearchFlags{TSearchFlag::sfCaseSensitive});
    benchmark::DoNotOptimize(engine);
  }
}

#ifdef KESTREL_HAVE_PCRE2
void CompilePcre2(benchmark::State &state, const std::u16string &p) {
  for (auto _ : state) {
    int error = 0;
    PCRE2_SIZE offset = 0;
    pcre2_code *re = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(p.c_str()), p.size(), PCRE2_UTF,
                                   &error, &offset, nullptr);
    pcre2_jit_compile(re, PCRE2_JIT_COMPLETE);
    benchmark::DoNotOptimize(re);
    pcre2_code_free(re);
  }
}
#endif

void CompileIcu(benchmark::State &state, const std::u16string &p) {
  for (auto _ : state) {
    UErrorCode status = U_ZERO_ERROR;
    URegularExpression *re = uregex_open(p.c_str(), int32_t(p.size()), 0, nullptr, &status);
    benchmark::DoNotOptimize(re);
    uregex_close(re);
  }
}

[[maybe_unused]] const bool Registered = [] {
  for (const Case &c : Cases) {
    std::string group = c.name;
    benchmark::RegisterBenchmark((group + "/kestrel").c_str(), Ours<kestrel::TURESearch>, c)
        ->Unit(benchmark::kMillisecond);
#ifdef KESTREL_HAVE_PCRE2
    benchmark::RegisterBenchmark((group + "/pcre2-jit").c_str(), Pcre2, c)
        ->Unit(benchmark::kMillisecond);
#endif
    benchmark::RegisterBenchmark((group + "/icu").c_str(), Icu, c)->Unit(benchmark::kMillisecond);
  }
  for (const Case &c : LongestCases) {
    std::string group = c.name;
    benchmark::RegisterBenchmark((group + "/kestrel").c_str(), Ours<kestrel::TURELongestMatch>, c)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((group + "/one-pass").c_str(), Ours<kestrel::TURESearch>, c)
        ->Unit(benchmark::kMillisecond);
#ifdef KESTREL_HAVE_PCRE2
    benchmark::RegisterBenchmark((group + "/pcre2-jit").c_str(), Pcre2, c)
        ->Unit(benchmark::kMillisecond);
#endif
    if (c.ours != u"a*b") // ICU takes minutes on the megabyte of "a"
      benchmark::RegisterBenchmark((group + "/icu").c_str(), Icu, c)->Unit(benchmark::kMillisecond);
  }
  {
    const Case &c = PathologicalCase;
    std::string group = c.name;
    benchmark::RegisterBenchmark((group + "/kestrel").c_str(), Ours<kestrel::TURESearch>, c)
        ->Unit(benchmark::kMicrosecond);
#ifdef KESTREL_HAVE_PCRE2
    benchmark::RegisterBenchmark((group + "/pcre2-jit").c_str(), Pcre2, c)
        ->Unit(benchmark::kMicrosecond);
#endif
    benchmark::RegisterBenchmark((group + "/icu").c_str(), Icu, c)->Unit(benchmark::kMicrosecond);
  }
  for (const std::u16string &p : BoundPatterns) {
    const std::string shown(p.begin(), p.end());
    const std::string group = "Regex.Compile" + shown, longest = "Longest.Compile" + shown;
    benchmark::RegisterBenchmark((group + "/kestrel").c_str(), CompileOurs<kestrel::TURESearch>, p)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((longest + "/kestrel").c_str(),
                                 CompileOurs<kestrel::TURELongestMatch>, p)
        ->Unit(benchmark::kMicrosecond);
#ifdef KESTREL_HAVE_PCRE2
    benchmark::RegisterBenchmark((group + "/pcre2-jit").c_str(), CompilePcre2, p)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((longest + "/pcre2-jit").c_str(), CompilePcre2, p)
        ->Unit(benchmark::kMicrosecond);
#endif
    benchmark::RegisterBenchmark((group + "/icu").c_str(), CompileIcu, p)
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

} // namespace
