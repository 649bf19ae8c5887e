// The yield hook stands in every inner loop: with no callback it must cost a
// test and no call. Peer: an empty loop.
#include <benchmark/benchmark.h>

#include <kestrel/frame/myKpSmall.h>

namespace {

void YieldKestrel(benchmark::State &state) {
  kestrel::AYieldProcessProc = nullptr;
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i) {
      kestrel::MyYieldProcess();
      benchmark::ClobberMemory();
    }
  }
}

void YieldBare(benchmark::State &state) {
  for (auto _ : state)
    for (int i = 0; i < 1000; ++i)
      benchmark::ClobberMemory();
}

} // namespace

BENCHMARK(YieldKestrel)->Name("MyYieldProcess-null/kestrel");
BENCHMARK(YieldBare)->Name("MyYieldProcess-null/empty-loop");
