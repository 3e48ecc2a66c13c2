#include "standalone/databases/StandaloneManager.h"

#include <algorithm>
#include <iostream>

#include "standalone/catalogue/Catalogue.h"
#include "standalone/drivers/postgresql/PostgreSQLDriver.h"
#include "standalone/drivers/sqlite/SQLiteDriver.h"
#include "standalone/tables/BlobTable.h"
#include "standalone/tables/DriverBaseManager.h"
#include "standalone/tables/DriverQuery.h"
#include "standalone/tables/DriverTable.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {
namespace {

constexpr std::string_view DatabaseSubsystem = "Databases";

TDriverRegistry AllDrivers() {
  TDriverRegistry Result;
  Result.Add(std::make_unique<TSQLiteDriver>());
  Result.Add(std::make_unique<TPostgreSQLDriver>());
  return Result;
}

TSettings SettingsOf(const TConfiguration& Configuration) {
  TSettings Result;
  if (const TCodePage* CodePage = TCodePage::Find(Configuration.CodePage)) Result.AnsiCodePage = CodePage;
  Result.StrictValues = Configuration.StrictValues;
  Result.StrictText = Configuration.StrictText;
  Result.WorkAs17Version = Configuration.WorkAs17Version;
  return Result;
}

/// Takes the next word, between bytes up to 0x20, off the front of Text.
std::string_view TakeWord(std::string_view& Text) {
  const auto IsBlank = [](char C) { return static_cast<unsigned char>(C) <= 0x20; };
  std::size_t Start = 0;
  while (Start < Text.size() && IsBlank(Text[Start])) ++Start;
  std::size_t End = Start;
  while (End < Text.size() && !IsBlank(Text[End])) ++End;
  const std::string_view Word = Text.substr(Start, End - Start);
  Text.remove_prefix(End);
  return Word;
}

/// "DELETE * FROM", which some engines write, as all engines write it.
std::string WithPlainDelete(const std::string& Statement) {
  std::string_view Rest = Statement;
  if (SameAsciiWord(TakeWord(Rest), "DELETE") && TakeWord(Rest) == "*") {
    const std::string_view FromHere = Rest;
    if (SameAsciiWord(TakeWord(Rest), "FROM")) return "DELETE" + std::string(FromHere);
  }
  return Statement;
}

}  // namespace

TStandaloneManager::TStandaloneManager(const TConfiguration& Configuration)
    : FConfiguration(Configuration),
      FSettings(SettingsOf(Configuration)),
      FTrace(Configuration.TraceLevel, Configuration.TraceFile),
      FDatabases(Configuration, AllDrivers(),
                 [this](TTraceLevel Level, const std::string& Line) { FTrace.Write(DatabaseSubsystem, Level, Line); }) {
}

TStandaloneManager::~TStandaloneManager() = default;

std::unique_ptr<TTable> TStandaloneManager::GetUserTable(const std::string& TableName, const std::string& DatabaseName,
                                                         bool ReadWrite) {
  TConnection& Connection = FDatabases.Connection(DatabaseName);
  const std::optional<TTableInfo> Info = Connection.Schema().FindTable(TableName);
  if (!Info) return nullptr;
  return std::make_unique<TDriverTable>(Connection, *Info, ReadWrite);
}

bool TStandaloneManager::TableExists(const std::string& TableName, const std::string& DatabaseName, bool Views) {
  const std::optional<TTableInfo> Found = FDatabases.Connection(DatabaseName).Schema().FindTable(TableName);
  return Found && (Views || Found->Kind != TTableKind::View);
}

std::vector<std::string> TStandaloneManager::UserTableNames(const std::string& DatabaseName) {
  std::vector<std::string> Result;
  for (const TTableInfo& Table : Tables(DatabaseName))
    if (Table.Kind != TTableKind::View) Result.push_back(FullName(Table));
  std::sort(Result.begin(), Result.end(), [](const std::string& A, const std::string& B) {
    const int Order = CompareText(A, B);
    return Order == 0 ? A < B : Order < 0;
  });
  return Result;
}

std::unique_ptr<TSelectQuery> TStandaloneManager::CreateSelectQuery(const std::string& DatabaseName) {
  return std::make_unique<TDriverQuery>(FDatabases.Connection(DatabaseName), std::string());
}

/// Made anew, since the connection may have been closed meanwhile.
TODBCBaseManager* TStandaloneManager::GetODBCBaseManager(const std::string& DatabaseName) {
  std::unique_ptr<TODBCBaseManager>& Result = FBaseManagers[DatabaseName];
  Result = std::make_unique<TDriverBaseManager>(
      FDatabases.Connection(DatabaseName),
      [this](const std::string& Name) -> TConnection& { return FDatabases.Connection(Name); });
  return Result.get();
}

std::unique_ptr<TBLOBTable> TStandaloneManager::OpenBLOBTable(std::string_view Bytes) {
  if (!TStandaloneBlobTable::IsOne(Bytes)) return nullptr;
  return TStandaloneBlobTable::Open(Bytes);
}

std::unique_ptr<TBLOBTable> TStandaloneManager::NewBLOBTable(const std::string& Name,
                                                             const TBLOBTable::TFields& Fields) {
  return std::make_unique<TStandaloneBlobTable>(Name, Fields);
}

void TStandaloneManager::StartTransaction(const std::string& DatabaseName, TIsolationLevel Level) {
  FDatabases.StartTransaction(DatabaseName, Level);
}

void TStandaloneManager::CommitTransaction(const std::string& DatabaseName) {
  FDatabases.CommitTransaction(DatabaseName);
}

void TStandaloneManager::RollbackTransaction(const std::string& DatabaseName) {
  FDatabases.RollbackTransaction(DatabaseName);
}

std::int64_t TStandaloneManager::ExecuteSQL(const std::string& Statement, const std::string& DatabaseName) {
  FTrace.Write(DatabaseSubsystem, TTraceLevel::Detail, Statement);
  return FDatabases.Connection(DatabaseName).Execute(WithPlainDelete(Statement));
}

std::string TStandaloneManager::LString(std::string_view Key) const {
  std::optional<std::string> Text;
  if (FLookUpText) Text = FLookUpText(Key);
  return Text ? std::move(*Text) : std::string(Key);
}

std::string TStandaloneManager::EnglishString(std::string_view Key) const {
  std::optional<std::string> Text;
  if (FLookUpEnglish) Text = FLookUpEnglish(Key);
  return Text ? std::move(*Text) : LString(Key);
}

void TStandaloneManager::WriteTrace(std::string_view Subsystem, TTraceLevel Level, std::string_view Text) noexcept {
  FTrace.Write(Subsystem, Level, Text);
}

void TStandaloneManager::Notice(const std::string& Text) noexcept {
  try {
    FDatabases.Tell(Text);
  } catch (...) {
    // It is said for convenience only.
  }
}

void TStandaloneManager::ReportError(const std::exception& Error) noexcept {
  try {
    const std::string Text = Kv_FullExceptionInfo(Error);
    FTrace.Write(DatabaseSubsystem, TTraceLevel::Error, Text);
    if (FReportError)
      FReportError(Error);
    else
      std::cerr << Text << std::endl;
  } catch (...) {
    // There is nobody left to tell.
  }
}

std::vector<TTableInfo> TStandaloneManager::Tables(const std::string& DatabaseName) {
  return FDatabases.Connection(DatabaseName).Schema().Tables();
}

TDatabaseInfo TStandaloneManager::DatabaseInfo(const std::string& DatabaseName) {
  TConnection& Connection = FDatabases.Connection(DatabaseName);
  TDatabaseInfo Result;
  Result.Engine = Connection.EngineName();
  Result.EngineVersion = Connection.EngineVersion();
  Result.ReadOnly = Connection.Capabilities().ReadOnly;
  Result.CatalogueVersion = TCatalogue(Connection).Version();
  for (const TTableInfo& Table : Connection.Schema().Tables()) {
    TDatabaseInfo::TTableSize Size{Table, std::nullopt, std::nullopt, {}};
    try {
      if (Table.Kind == TTableKind::Table || Table.Kind == TTableKind::Extension) {
        Size.Rows = Connection.Schema().RowCount(Table);
        Size.Bytes = Connection.Schema().TableBytes(Table);
      }
    } catch (const EDatabaseError& Error) {
      Size.Error = FactsOf(Error);
    }
    Result.Tables.push_back(std::move(Size));
  }
  return Result;
}

}  // namespace velkrund
