#pragma once

#include <sqlite3.h>

#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "tests/support/postgresql/PostgreSQLDatabase.h"

namespace velkrund::tests {

/// Executes statements, or shows a table, past the code under test: every cell with its storage class and its very
/// bytes.
class TRawDatabase {
 public:
  explicit TRawDatabase(const std::string& Path) {
    if (sqlite3_open(Path.c_str(), &FHandle) != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(FHandle));
  }
  ~TRawDatabase() { sqlite3_close(FHandle); }

  void Run(const std::string& Statements) {
    char* Message = nullptr;
    if (sqlite3_exec(FHandle, Statements.c_str(), nullptr, nullptr, &Message) != SQLITE_OK)
      throw std::runtime_error(Statements + ": " + Message);
  }

  std::string Cells(const std::string& Query) {
    sqlite3_stmt* Statement = nullptr;
    if (sqlite3_prepare_v2(FHandle, Query.c_str(), -1, &Statement, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(FHandle));
    std::ostringstream Out;
    while (sqlite3_step(Statement) == SQLITE_ROW) {
      for (int Column = 0; Column < sqlite3_column_count(Statement); ++Column) Out << Cell(Statement, Column) << ' ';
      Out << '\n';
    }
    sqlite3_finalize(Statement);
    return Out.str();
  }

  /// A line for each row, its values as text, separated by tabs.
  std::string Text(const std::string& Query) {
    std::string Result;
    char* Message = nullptr;
    if (sqlite3_exec(FHandle, Query.c_str(), &TRawDatabase::AddLine, &Result, &Message) != SQLITE_OK)
      throw std::runtime_error(Query + ": " + Message);
    return Result;
  }

 private:
  static int AddLine(void* Text, int Count, char** Values, char**) {
    for (int I = 0; I < Count; ++I)
      static_cast<std::string*>(Text)->append(Values[I] ? Values[I] : "\\N").append(I + 1 < Count ? "\t" : "\n");
    return 0;
  }

  static std::string Cell(sqlite3_stmt* Statement, int Column) {
    const int Type = sqlite3_column_type(Statement, Column);
    std::string Bytes;
    if (Type == SQLITE_INTEGER) {
      Bytes = std::to_string(sqlite3_column_int64(Statement, Column));
    } else if (Type == SQLITE_FLOAT) {
      const double Real = sqlite3_column_double(Statement, Column);
      Bytes.assign(reinterpret_cast<const char*>(&Real), sizeof Real);
    } else if (Type != SQLITE_NULL) {
      const auto* Data = static_cast<const char*>(sqlite3_column_blob(Statement, Column));
      if (Data) Bytes.assign(Data, static_cast<std::size_t>(sqlite3_column_bytes(Statement, Column)));
    }
    std::string Shown = std::to_string(Type) + ":";
    for (const char Byte : Bytes) {
      constexpr char Digits[] = "0123456789ABCDEF";
      Shown += Digits[static_cast<unsigned char>(Byte) >> 4];
      Shown += Digits[static_cast<unsigned char>(Byte) & 15];
    }
    return Shown;
  }

  sqlite3* FHandle = nullptr;
};

/// A database of either engine, and what it holds past the code under test.
struct TTestDatabase {
  std::string Url;
  std::function<void(const std::string& Statements)> Run;
  std::function<std::string(const std::string& Query)> Cells;
  std::function<std::string(const std::string& Query)> Text = {};  // a line for each row, values separated by tabs
};

inline TTestDatabase SQLiteDatabase(const std::string& Path) {
  const auto Raw = std::make_shared<TRawDatabase>(Path);
  return {"sqlite:" + Path, [Raw](const std::string& Statements) { Raw->Run(Statements); },
          [Raw](const std::string& Query) { return Raw->Cells(Query); },
          [Raw](const std::string& Query) { return Raw->Text(Query); }};
}

inline TTestDatabase PostgreSQLDatabase(const std::string& ServerUrl = {}) {
  const auto Raw = std::make_shared<TPostgreSQLDatabase>(ServerUrl);
  return {Raw->Url(), [Raw](const std::string& Statements) { Raw->Run(Statements); },
          [Raw](const std::string& Query) { return Raw->Rows(Query); },
          [Raw](const std::string& Query) { return Raw->Rows(Query); }};
}

}  // namespace velkrund::tests
