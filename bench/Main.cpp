#include <benchmark/benchmark.h>

#include <cstdio>

#include "bench/ExportCalls.h"
#include "bench/RawEngine.h"
#include "bench/TreeReading.h"

/// velkrund-bench [options of Google Benchmark] [SOURCE TABLE TARGET]: two SQLite databases, the first with rows in the
/// table, the second with the same table for copies. Without them only what needs no table is measured.
int main(int Count, char** Arguments) {
  benchmark::Initialize(&Count, Arguments);
  if (Count != 1 && Count != 4) {
    std::fputs("usage: velkrund-bench [--benchmark_...] [SOURCE TABLE TARGET]\n", stderr);
    return 2;
  }
  velkrund::bench::RegisterTreeReading();
  if (Count == 4) {
    velkrund::bench::RegisterRawEngine(Arguments[1], Arguments[2], Arguments[3]);
    velkrund::bench::RegisterExportCalls(Arguments[1], Arguments[2]);
  }
  benchmark::RunSpecifiedBenchmarks();
}
