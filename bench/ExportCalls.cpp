#include "bench/ExportCalls.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <memory>

#include "hosts/cli/render/Glances.h"
#include "standalone/databases/StandaloneManager.h"
#include "velkrund/dictionary/Dicutils.h"
#include "velkrund/eif/Eifiles.h"
#include "velkrund/module/Module.h"
#include "velkrund/platform/ormtools/InstalledService.h"

namespace velkrund::bench {

namespace {

using TClock = TGlances::TClock;

std::atomic<bool> StopWished = false;

/// The stand-alone platform, installed and started once for the process.
void StartPlatform() {
  static TStandaloneManager Manager{TConfiguration()};
  static const TServiceGuard<TApplicationManager> Guard(&Manager);
  static const bool Started = (StartModule(), true);
  benchmark::DoNotOptimize(Started);
}

class TNowhere final : public TStream {
 public:
  std::size_t Read(char*, std::size_t) override { return 0; }
  void Write(std::string_view Data) override { FSize += static_cast<std::int64_t>(Data.size()); }
  std::int64_t Seek(std::int64_t, TSeekOrigin) override { return FSize; }
  std::int64_t Size() override { return FSize; }
  void SetSize(std::int64_t Size) override { FSize = Size; }
  std::string_view Peek() override { return {}; }

 private:
  std::int64_t FSize = 0;
};

void Export(benchmark::State& State, const std::string& Database, const std::string& Table, bool WithCalls) {
  StartPlatform();
  TUOExportTableData Operation;
  Operation.FOnGetCancel = [] { return StopWished.load(std::memory_order_relaxed); };
  TClock::time_point Next = TClock::now() + std::chrono::hours(1);
  TGlances Glances;
  std::int64_t Rows = 0, Shown = 0;
  for (auto _ : State) {
    TEITableData Section;
    Section.DatabaseName = Database;
    Section.TableName = Table;
    if (WithCalls) {
      Section.OnCancel = [&] { return Operation.IsCanceled(); };
      Section.OnProgress = [&](std::int32_t, std::int32_t, std::string_view) {
        TClock::time_point Now;
        if (Glances.Due(Now) && Now >= Next) ++Shown;
      };
    }
    TNowhere Nowhere;
    TEIStream Stream(Nowhere);
    Stream.SetEncoding(TKvEncoding::Utf8);
    Section.ExportData(Stream);
    Rows = Section.Report->RowCount;
  }
  benchmark::DoNotOptimize(Shown);
  State.counters["rows"] = static_cast<double>(Rows);
}

}  // namespace

void RegisterExportCalls(const std::string& Source, const std::string& Table) {
  for (const bool WithCalls : {false, true})
    benchmark::RegisterBenchmark(WithCalls ? "export with calls" : "export without calls",
                                 [=](benchmark::State& State) { Export(State, "sqlite:" + Source, Table, WithCalls); })
        ->Iterations(1);
}

}  // namespace velkrund::bench
