#include "bench/RawEngine.h"

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <vector>

namespace velkrund::bench {

namespace {

constexpr std::size_t BatchBytes = 16 << 20;  // of rows in memory between reading and inserting

struct TCloser {
  void operator()(sqlite3* Database) const { sqlite3_close(Database); }
  void operator()(sqlite3_stmt* Statement) const { sqlite3_finalize(Statement); }
  void operator()(sqlite3_value* Value) const { sqlite3_value_free(Value); }
};
using TDatabase = std::unique_ptr<sqlite3, TCloser>;
using TStatement = std::unique_ptr<sqlite3_stmt, TCloser>;
using TCell = std::unique_ptr<sqlite3_value, TCloser>;

TDatabase Open(const std::string& Path) {
  sqlite3* Database = nullptr;
  const int Code = sqlite3_open_v2(Path.c_str(), &Database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  TDatabase Result(Database);
  if (Code != SQLITE_OK) throw std::runtime_error(Path + ": " + sqlite3_errmsg(Database));
  return Result;
}

TStatement Prepare(const TDatabase& Database, const std::string& Text) {
  sqlite3_stmt* Statement = nullptr;
  if (sqlite3_prepare_v2(Database.get(), Text.c_str(), -1, &Statement, nullptr) != SQLITE_OK)
    throw std::runtime_error(Text + ": " + sqlite3_errmsg(Database.get()));
  return TStatement(Statement);
}

void Run(const TDatabase& Database, const std::string& Text) {
  const TStatement Statement = Prepare(Database, Text);
  while (sqlite3_step(Statement.get()) == SQLITE_ROW) continue;
  if (sqlite3_reset(Statement.get()) != SQLITE_OK) throw std::runtime_error(Text);
}

void TouchCell(sqlite3_stmt* Row, int Column) {
  switch (sqlite3_column_type(Row, Column)) {
    case SQLITE_INTEGER:
      return benchmark::DoNotOptimize(sqlite3_column_int64(Row, Column));
    case SQLITE_FLOAT:
      return benchmark::DoNotOptimize(sqlite3_column_double(Row, Column));
    case SQLITE_TEXT:
      benchmark::DoNotOptimize(sqlite3_column_text(Row, Column));
      return benchmark::DoNotOptimize(sqlite3_column_bytes(Row, Column));
    case SQLITE_BLOB:
      benchmark::DoNotOptimize(sqlite3_column_blob(Row, Column));
      return benchmark::DoNotOptimize(sqlite3_column_bytes(Row, Column));
    default:
      return;
  }
}

std::int64_t Scan(const TDatabase& Database, const std::string& Table) {
  const TStatement Rows = Prepare(Database, "SELECT * FROM " + Table);
  const int Columns = sqlite3_column_count(Rows.get());
  std::int64_t Count = 0;
  for (; sqlite3_step(Rows.get()) == SQLITE_ROW; ++Count)
    for (int Column = 0; Column < Columns; ++Column) TouchCell(Rows.get(), Column);
  return Count;
}

/// Puts the cells of the next rows into Cells, row by row; returns whether the table has more.
bool ReadBatch(sqlite3_stmt* Rows, std::vector<TCell>& Cells) {
  Cells.clear();
  for (std::size_t Bytes = 0; Bytes < BatchBytes;) {
    if (sqlite3_step(Rows) != SQLITE_ROW) return false;
    for (int Column = 0; Column < sqlite3_column_count(Rows); ++Column) {
      sqlite3_value* Cell = sqlite3_value_dup(sqlite3_column_value(Rows, Column));
      Bytes += static_cast<std::size_t>(sqlite3_value_bytes(Cell)) + sizeof(TCell);
      Cells.emplace_back(Cell);
    }
  }
  return true;
}

/// Lends the engine the cell's bytes, which stay until the statement is done.
void Lend(sqlite3_stmt* Insertion, int Place, sqlite3_value* Cell) {
  const auto Size = [Cell] { return static_cast<sqlite3_uint64>(sqlite3_value_bytes(Cell)); };
  switch (sqlite3_value_type(Cell)) {
    case SQLITE_INTEGER:
      sqlite3_bind_int64(Insertion, Place, sqlite3_value_int64(Cell));
      break;
    case SQLITE_FLOAT:
      sqlite3_bind_double(Insertion, Place, sqlite3_value_double(Cell));
      break;
    case SQLITE_TEXT: {
      const auto* Text = reinterpret_cast<const char*>(sqlite3_value_text(Cell));
      sqlite3_bind_text64(Insertion, Place, Text, Size(), SQLITE_STATIC, SQLITE_UTF8);
      break;
    }
    case SQLITE_BLOB: {
      const void* Bytes = sqlite3_value_blob(Cell);
      sqlite3_bind_blob64(Insertion, Place, Bytes, Size(), SQLITE_STATIC);
      break;
    }
    default:
      sqlite3_bind_null(Insertion, Place);
  }
}

using TCells = std::span<const TCell>;

void Insert(sqlite3_stmt* Insertion, TCells Cells) {
  const auto Places = static_cast<std::size_t>(sqlite3_bind_parameter_count(Insertion));
  for (; !Cells.empty(); Cells = Cells.subspan(Places)) {
    for (std::size_t At = 0; At < Places; ++At) Lend(Insertion, static_cast<int>(At) + 1, Cells[At].get());
    if (sqlite3_step(Insertion) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(sqlite3_db_handle(Insertion)));
    sqlite3_reset(Insertion);
  }
}

std::string InsertText(const std::string& Table, std::size_t Columns, std::size_t Rows) {
  std::string Row = "(";
  for (std::size_t Column = 0; Column < Columns; ++Column) Row += Column > 0 ? ",?" : "?";
  Row += ')';
  std::string Text = "INSERT INTO " + Table + " VALUES" + Row;
  for (std::size_t Count = 1; Count < Rows; ++Count) Text += ',' + Row;
  return Text;
}

/// Together: rows that one statement takes.
std::int64_t Copy(benchmark::State& State, const TDatabase& Source, const TDatabase& Target, const std::string& Table,
                  std::size_t Together) {
  const TStatement Rows = Prepare(Source, "SELECT * FROM " + Table);
  const auto Columns = static_cast<std::size_t>(sqlite3_column_count(Rows.get()));
  const TStatement Many = Prepare(Target, InsertText(Table, Columns, Together));
  const TStatement One = Prepare(Target, InsertText(Table, Columns, 1));
  std::vector<TCell> Cells;
  std::int64_t Count = 0;
  for (bool More = true; More;) {
    State.PauseTiming();
    More = ReadBatch(Rows.get(), Cells);
    State.ResumeTiming();
    const std::size_t Odd = Cells.size() % (Columns * Together);
    Insert(Many.get(), TCells(Cells).first(Cells.size() - Odd));
    Insert(One.get(), TCells(Cells).last(Odd));
    Count += static_cast<std::int64_t>(Cells.size() / Columns);
  }
  return Count;
}

void Measure(benchmark::State& State, const std::function<std::int64_t()>& Body) {
  try {
    std::int64_t Rows = 0;
    for (auto _ : State) Rows = Body();
    State.counters["rows"] = static_cast<double>(Rows);
  } catch (const std::exception& Error) {
    State.SkipWithError(Error.what());
  }
}

}  // namespace

void RegisterRawEngine(const std::string& Source, const std::string& Table, const std::string& Target) {
  benchmark::RegisterBenchmark("raw scan", [=](benchmark::State& State) {
    const TDatabase Database = Open(Source);
    Measure(State, [&] { return Scan(Database, Table); });
  })->Iterations(1);
  for (const std::size_t Together : {std::size_t{1}, std::size_t{16}})
    benchmark::RegisterBenchmark(Together == 1 ? "raw insert" : "raw insert of 16", [=](benchmark::State& State) {
      const TDatabase From = Open(Source), To = Open(Target);
      Run(To, "DELETE FROM " + Table);
      Measure(State, [&] {
        Run(To, "BEGIN");
        const std::int64_t Rows = Copy(State, From, To, Table, Together);
        Run(To, "COMMIT");
        return Rows;
      });
    })->Iterations(1);
}

}  // namespace velkrund::bench
