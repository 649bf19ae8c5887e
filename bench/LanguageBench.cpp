// Building the language catalogue, which every tool pays for at start-up.
//
// "LanguageCatalogue-cold" is the first Initialize of the process (all units,
// the catalogue's enumeration with ICU's data still unopened), measured once
// before the benchmarks start. "LanguageCatalogue/kestrel" is one more
// TMKLanguages with ICU warm; the peer is the plain ICU loop that gathers the
// same English names without the catalogue's checks and records.
#include <benchmark/benchmark.h>

#include <chrono>
#include <set>
#include <string>

#include <unicode/uloc.h>

#include <kestrel/frame/Frame.h>
#include <kestrel/language/language_detailsU.h>

namespace {

double MeasureColdStartUp() {
  const auto start = std::chrono::steady_clock::now();
  kestrel::Initialize();
  const auto stop = std::chrono::steady_clock::now();
  kestrel::Finalize();
  return std::chrono::duration<double>(stop - start).count();
}

// Runs before main, so before the driver brings the library up.
const double gColdSeconds = MeasureColdStartUp();

void CatalogueCold(benchmark::State &state) {
  for (auto _ : state)
    state.SetIterationTime(gColdSeconds);
}

void CatalogueKestrel(benchmark::State &state) {
  for (auto _ : state) {
    kestrel::TMKLanguages languages;
    benchmark::DoNotOptimize(languages.AllLanguagesCount());
  }
}

void CatalogueIcu(benchmark::State &state) {
  for (auto _ : state) {
    std::set<std::u16string> names;
    for (int32_t i = 0, n = uloc_countAvailable(); i < n; ++i) {
      const char *name = uloc_getAvailable(i);
      if (uloc_getLCID(name) == 0) continue;
      UChar out[128];
      UErrorCode err = U_ZERO_ERROR;
      int32_t len = uloc_getDisplayLanguage(name, "en", out, 128, &err);
      if (U_SUCCESS(err)) names.emplace(out, out + std::min(len, 128));
    }
    benchmark::DoNotOptimize(names.size());
  }
}

} // namespace

BENCHMARK(CatalogueCold)->Name("LanguageCatalogue-cold/kestrel")->UseManualTime()->Iterations(1);
BENCHMARK(CatalogueKestrel)->Name("LanguageCatalogue/kestrel")->Unit(benchmark::kMillisecond);
BENCHMARK(CatalogueIcu)->Name("LanguageCatalogue/icu-names")->Unit(benchmark::kMillisecond);
