// UTF-8 conversion, upper-casing and the locale-aware compare, each beside the
// ICU operation that does the same job, in the same run.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <kestrel/unicode/Unicode.h>

namespace {

struct Script {
  int weight;
  std::vector<std::u16string> words;
};

// Words of several scripts, weighted roughly like a multilingual corpus, with
// a few characters beyond U+FFFF.
const std::vector<Script> &Scripts() {
  static const std::vector<Script> scripts = {
      {40, {u"the", u"corpus", u"word", u"list", u"of", u"and", u"concordance", u"keyness"}},
      {12, {u"Straße", u"über", u"Wörter", u"Häufigkeit", u"naïve", u"café", u"élève"}},
      {10, {u"слово", u"текст", u"корпус", u"частота", u"Москва"}},
      {5, {u"λέξη", u"κείμενο", u"Ωμέγα"}},
      {6, {u"كلمة", u"نص", u"مجموعة"}},
      {12, {u"中文", u"语料库", u"词频", u"文本"}},
      {5, {u"コーパス", u"ことば", u"日本語"}},
      {5, {u"말뭉치", u"한국어", u"단어"}},
      {1, {u"\U0001F600", u"\U00020000"}},
  };
  return scripts;
}

// Mostly English, with a word of Latin script with accents now and then
// (about one unit in 100 beyond ASCII).
const std::vector<Script> &MostlyAsciiScripts() {
  static const std::vector<Script> scripts = {Scripts()[0], {2, Scripts()[1].words}};
  return scripts;
}

const std::u16string &RandomWord(std::mt19937 &rng,
                                 const std::vector<Script> &scripts = Scripts()) {
  int total = 0;
  for (const Script &s : scripts)
    total += s.weight;
  int pick = int(rng() % unsigned(total));
  for (const Script &s : scripts)
    if ((pick -= s.weight) < 0) return s.words[rng() % s.words.size()];
  return scripts.front().words.front();
}

// About 2 M units of words and separators.
std::u16string RandomText(const std::vector<Script> &scripts) {
  const std::u16string separators[] = {u" ", u" ", u" ", u", ", u". ", u"\r\n"};
  std::mt19937 rng(7);
  std::u16string out;
  while (out.size() < 2 * 1024 * 1024) {
    out += RandomWord(rng, scripts);
    out += separators[rng() % std::size(separators)];
  }
  return out;
}

std::string IcuUtf8(const std::u16string &t) {
  std::string out(t.size() * 3, '\0');
  int32_t n = 0;
  UErrorCode err = U_ZERO_ERROR;
  u_strToUTF8(out.data(), int32_t(out.size()), &n, t.data(), int32_t(t.size()), &err);
  out.resize(size_t(n));
  return out;
}

// About 4 MB of UTF-8.
const std::u16string &MixedText() {
  static const std::u16string text = RandomText(Scripts());
  return text;
}

const std::string &MixedUtf8() {
  static const std::string bytes = IcuUtf8(MixedText());
  return bytes;
}

// About 2 MB of UTF-8.
const std::string &MostlyAsciiUtf8() {
  static const std::string bytes = IcuUtf8(RandomText(MostlyAsciiScripts()));
  return bytes;
}

void SetBytes(benchmark::State &state, size_t bytes) {
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(bytes));
}

void UTF8ToWide_kestrel(benchmark::State &state, const std::string &(*text)()) {
  const std::string &in = text();
  for (auto _ : state)
    benchmark::DoNotOptimize(kestrel::UTF8ToWideString(in));
  SetBytes(state, in.size());
}

// The same job as ours: a result string sized once, filled, then cut.
void UTF8ToWide_icu(benchmark::State &state, const std::string &(*text)()) {
  const std::string &in = text();
  for (auto _ : state) {
    std::u16string out(in.size(), u'\0');
    int32_t n = 0;
    UErrorCode err = U_ZERO_ERROR;
    u_strFromUTF8(out.data(), int32_t(out.size()), &n, in.data(), int32_t(in.size()), &err);
    out.resize(size_t(n));
    benchmark::DoNotOptimize(out);
  }
  SetBytes(state, in.size());
}

void WideToUTF8_kestrel(benchmark::State &state) {
  const std::u16string &in = MixedText();
  for (auto _ : state)
    benchmark::DoNotOptimize(kestrel::WideStringToUTF8(in));
  SetBytes(state, in.size() * 2);
}

void WideToUTF8_icu(benchmark::State &state) {
  const std::u16string &in = MixedText();
  for (auto _ : state) {
    std::string out(in.size() * 3, '\0');
    int32_t n = 0;
    UErrorCode err = U_ZERO_ERROR;
    u_strToUTF8(out.data(), int32_t(out.size()), &n, in.data(), int32_t(in.size()), &err);
    out.resize(size_t(n));
    benchmark::DoNotOptimize(out);
  }
  SetBytes(state, in.size() * 2);
}

// A 256 KB slice: upper-casing is slower per unit than conversion.
const std::u16string &CaseText() {
  static const std::u16string text = MixedText().substr(0, 128 * 1024);
  return text;
}

void WideUpperCase_kestrel(benchmark::State &state) {
  const std::u16string &in = CaseText();
  kestrel::WideUpperCase(u"a"); // load the tables outside the timing
  for (auto _ : state)
    benchmark::DoNotOptimize(kestrel::WideUpperCase(in));
  SetBytes(state, in.size() * 2);
}

// ICU's full upper-casing may lengthen the text (ß becomes SS): the buffer
// is sized for that.
void WideUpperCase_icu(benchmark::State &state) {
  const std::u16string &in = CaseText();
  for (auto _ : state) {
    std::u16string out(in.size() + in.size() / 8 + 16, u'\0');
    UErrorCode err = U_ZERO_ERROR;
    int32_t n =
        u_strToUpper(out.data(), int32_t(out.size()), in.data(), int32_t(in.size()), "", &err);
    out.resize(size_t(n));
    benchmark::DoNotOptimize(out);
  }
  SetBytes(state, in.size() * 2);
}

constexpr uint32_t kEnglishUS = 0x0409;

// Pairs of words to compare, some equal but for case.
const std::vector<std::pair<std::u16string, std::u16string>> &WordPairs() {
  static const auto pairs = [] {
    std::mt19937 rng(11);
    std::vector<std::pair<std::u16string, std::u16string>> out;
    for (int i = 0; i < 4096; ++i) {
      std::u16string a = RandomWord(rng), b = i % 4 ? RandomWord(rng) : kestrel::WideUpperCase(a);
      out.emplace_back(a, b);
    }
    return out;
  }();
  return pairs;
}

void WideCompareText_kestrel(benchmark::State &state) {
  const auto &pairs = WordPairs();
  kestrel::WideCompareText(u"a", u"b", kEnglishUS); // make the collator outside the timing
  for (auto _ : state)
    for (const auto &[a, b] : pairs)
      benchmark::DoNotOptimize(kestrel::WideCompareText(a, b, kEnglishUS));
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(pairs.size()));
}

// The bare collator with the same settings: the cost of our layer is the rest.
void WideCompareText_icu(benchmark::State &state) {
  const auto &pairs = WordPairs();
  UErrorCode err = U_ZERO_ERROR;
  UCollator *collator = ucol_open("en_US", &err);
  ucol_setStrength(collator, UCOL_SECONDARY);
  for (auto _ : state)
    for (const auto &[a, b] : pairs)
      benchmark::DoNotOptimize(
          ucol_strcoll(collator, a.data(), int32_t(a.size()), b.data(), int32_t(b.size())));
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(pairs.size()));
  ucol_close(collator);
}

} // namespace

BENCHMARK_CAPTURE(UTF8ToWide_kestrel, mixed, MixedUtf8)
    ->Name("UTF8ToWideString/kestrel")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(UTF8ToWide_icu, mixed, MixedUtf8)
    ->Name("UTF8ToWideString/icu")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(UTF8ToWide_kestrel, ascii, MostlyAsciiUtf8)
    ->Name("UTF8ToWideString-mostly-ASCII/kestrel")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(UTF8ToWide_icu, ascii, MostlyAsciiUtf8)
    ->Name("UTF8ToWideString-mostly-ASCII/icu")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(WideToUTF8_kestrel)->Name("WideStringToUTF8/kestrel")->Unit(benchmark::kMillisecond);
BENCHMARK(WideToUTF8_icu)->Name("WideStringToUTF8/icu")->Unit(benchmark::kMillisecond);
BENCHMARK(WideUpperCase_kestrel)->Name("WideUpperCase/kestrel")->Unit(benchmark::kMicrosecond);
BENCHMARK(WideUpperCase_icu)->Name("WideUpperCase/icu")->Unit(benchmark::kMicrosecond);
BENCHMARK(WideCompareText_kestrel)->Name("WideCompareText/kestrel")->Unit(benchmark::kMicrosecond);
BENCHMARK(WideCompareText_icu)->Name("WideCompareText/icu")->Unit(benchmark::kMicrosecond);
