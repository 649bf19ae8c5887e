// Property tests per code unit over a mixed-script text, beside ICU's
// property lookups on the same units. The tables are loaded before timing.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <unicode/uchar.h>

#include <kestrel/unicode/Unicode.h>

namespace {

// A text of the kind the tools read: words of several scripts with spaces,
// punctuation and digits, weighted roughly like a multilingual corpus.
const std::u16string &MixedText() {
  static const std::u16string text = [] {
    struct Script {
      int weight;
      std::vector<std::u16string> words;
    };
    const std::vector<Script> scripts = {
        {40, {u"the", u"corpus", u"word", u"list", u"of", u"and", u"concordance", u"keyness"}},
        {12, {u"Straße", u"über", u"Wörter", u"Häufigkeit", u"naïve", u"café", u"élève"}},
        {10, {u"слово", u"текст", u"корпус", u"частота", u"Москва"}},
        {5, {u"λέξη", u"κείμενο", u"Ωμέγα"}},
        {6, {u"كلمة", u"نص", u"مجموعة"}},
        {12, {u"中文", u"语料库", u"词频", u"文本"}},
        {5, {u"コーパス", u"ことば", u"日本語"}},
        {5, {u"말뭉치", u"한국어", u"단어"}},
        {5, {u"1999", u"42", u"3.14", u"½", u"٣"}},
    };
    const std::u16string punctuation[] = {u" ",  u" ",  u" ",   u" ",  u", ",   u". ", u"; ",
                                          u" (", u") ", u" – ", u"\t", u"\r\n", u"«",  u"»"};
    int total = 0;
    for (const Script &s : scripts)
      total += s.weight;
    std::mt19937 rng(20240601);
    std::u16string out;
    while (out.size() < 64 * 1024) {
      int pick = int(rng() % unsigned(total));
      for (const Script &s : scripts) {
        if ((pick -= s.weight) < 0) {
          out += s.words[rng() % s.words.size()];
          break;
        }
      }
      out += punctuation[rng() % std::size(punctuation)];
    }
    return out;
  }();
  return text;
}

template <typename Test> void Run(benchmark::State &state, Test test) {
  const std::u16string &text = MixedText();
  kestrel::UnicodeIsAlpha(0x41); // load the table outside the timing
  for (auto _ : state) {
    size_t hits = 0;
    for (char16_t u : text)
      hits += test(u) ? 1 : 0;
    benchmark::DoNotOptimize(hits);
  }
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(text.size()));
}

// Letters, decimal digits and the connector: Lu Ll Lt Lm Lo, Nd, Pc.
constexpr uint32_t kWordMask =
    (1u << 14) | (1u << 15) | (1u << 16) | (1u << 17) | (1u << 18) | (1u << 3) | (1u << 19);
constexpr uint32_t kIcuWordMask = U_GC_L_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
// Punctuation and symbols: Pd Ps Pe Po Sm Sc Sk So, and Pi Pf from the second mask.
constexpr uint32_t kPunctMask1 = (1u << 20) | (1u << 21) | (1u << 22) | (1u << 23) | (1u << 24) |
                                 (1u << 25) | (1u << 26) | (1u << 27);
constexpr uint32_t kPunctMask2 = (1u << (47 - 32)) | (1u << (48 - 32));
constexpr uint32_t kIcuPunctMask = U_GC_PD_MASK | U_GC_PS_MASK | U_GC_PE_MASK | U_GC_PO_MASK |
                                   U_GC_PI_MASK | U_GC_PF_MASK | U_GC_S_MASK;

void IsAlphaKestrel(benchmark::State &s) {
  Run(s, [](char16_t u) { return kestrel::UnicodeIsAlpha(u); });
}
void IsAlphaIcu(benchmark::State &s) {
  Run(s, [](char16_t u) { return u_isalpha(u) != 0; });
}

void IsWhiteSpaceKestrel(benchmark::State &s) {
  Run(s, [](char16_t u) { return kestrel::UnicodeIsWhiteSpace(u); });
}
void IsWhiteSpaceIcu(benchmark::State &s) {
  Run(s, [](char16_t u) { return u_isWhitespace(u) != 0; });
}

void WordMaskKestrel(benchmark::State &s) {
  Run(s, [](char16_t u) { return kestrel::UnicodeTestProperties(u, kWordMask, 0); });
}
void WordMaskIcu(benchmark::State &s) {
  Run(s, [](char16_t u) { return (U_MASK(u_charType(u)) & kIcuWordMask) != 0; });
}

void PunctMaskKestrel(benchmark::State &s) {
  Run(s, [](char16_t u) { return kestrel::UnicodeTestProperties(u, kPunctMask1, kPunctMask2); });
}
void PunctMaskIcu(benchmark::State &s) {
  Run(s, [](char16_t u) { return (U_MASK(u_charType(u)) & kIcuPunctMask) != 0; });
}

} // namespace

BENCHMARK(IsAlphaKestrel)->Name("UnicodeIsAlpha/kestrel");
BENCHMARK(IsAlphaIcu)->Name("UnicodeIsAlpha/icu");
BENCHMARK(IsWhiteSpaceKestrel)->Name("UnicodeIsWhiteSpace/kestrel");
BENCHMARK(IsWhiteSpaceIcu)->Name("UnicodeIsWhiteSpace/icu");
BENCHMARK(WordMaskKestrel)->Name("TestProperties-letters-Nd-Pc/kestrel");
BENCHMARK(WordMaskIcu)->Name("TestProperties-letters-Nd-Pc/icu");
BENCHMARK(PunctMaskKestrel)->Name("TestProperties-punct-symbols/kestrel");
BENCHMARK(PunctMaskIcu)->Name("TestProperties-punct-symbols/icu");
