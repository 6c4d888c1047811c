#include <benchmark/benchmark.h>

#include "tbxutl/frame/fixed_strings.h"

// A call across the library boundary: the floor under every other figure.
static void BM_UTLGetString(benchmark::State& state) {
  int selector = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(UTLGetString(selector));
    selector = (selector + 1) % 7;
  }
}
BENCHMARK(BM_UTLGetString);
