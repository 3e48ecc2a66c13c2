#include "standalone/drivers/sqlite/SQLiteCursor.h"

#include <sqlite3.h>

#include <cstring>
#include <optional>

#include "standalone/drivers/Dialect.h"
#include "standalone/drivers/Selection.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {
namespace {

// Of the engine's own, the one by bytes compares those of the database's encoding.
constexpr const char* Utf8Order = "velkrund_utf8";

int CompareUtf8(void* /*Unused*/, int SizeA, const void* A, int SizeB, const void* B) {
  const int Common = std::min(SizeA, SizeB);
  const int Order = Common == 0 ? 0 : std::memcmp(A, B, static_cast<std::size_t>(Common));
  return Order == 0 ? SizeA - SizeB : Order;
}

const TSQLiteHandle& WithUtf8Order(const TSQLiteHandle& Database, bool Wanted) {
  if (Wanted &&
      sqlite3_create_collation_v2(Database, Utf8Order, SQLITE_UTF8, nullptr, &CompareUtf8, nullptr) != SQLITE_OK)
    RaiseSQLiteError(Database, "Cannot sort");
  return Database;
}

std::string SelectText(const TTableDescription& Table, std::span<const int> Columns, const TWalkOptions& Options,
                       bool Wide) {
  // Without the alias the engine would take a quoted name that has vanished for a text between quotes.
  const auto Name = [&](int Column) {
    return "T." + QuoteStandardName(Table.Columns[static_cast<std::size_t>(Column)].Name);
  };
  std::string Text = "SELECT ";
  for (const int Column : Columns) Text += Name(Column) + ", ";
  if (Columns.empty()) Text += "NULL, ";
  Text.resize(Text.size() - 2);
  Text += " FROM " + SQLiteRowsOf(Table) + SelectionWords(Options.Condition);
  const char* Separator = " ORDER BY ";
  if (Options.Unmoved) {
    // What is known for no row beforehand is sorted by: all rows are read before the first one comes, and stay so.
    Text += " ORDER BY 0 * random()";
    Separator = ", ";
  }
  for (const int Column : Options.Order) {
    Text += Separator + Name(Column);
    // Their keys are numbers, and only when asked for plainly are their rows known to stand so.
    if (Table.Table.Kind != TTableKind::Extension) Text += std::string(" COLLATE ") + (Wide ? Utf8Order : "BINARY");
    Separator = ", ";
  }
  return Text;
}

/// While it lives a quoted name that no column has is an error, not a text.
class TNamesAlone {
 public:
  explicit TNamesAlone(sqlite3* Database) : FDatabase(Database) {
    sqlite3_db_config(Database, SQLITE_DBCONFIG_DQS_DML, -1, &FBefore);
    sqlite3_db_config(Database, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  }
  TNamesAlone(const TNamesAlone&) = delete;
  TNamesAlone& operator=(const TNamesAlone&) = delete;
  ~TNamesAlone() { sqlite3_db_config(FDatabase, SQLITE_DBCONFIG_DQS_DML, FBefore, nullptr); }

 private:
  sqlite3* FDatabase;
  int FBefore = 1;
};

/// A date or time text takes its kind when it is the system text of what it says; otherwise Value may be anything.
bool SetDateKind(std::string_view Text, TKvKind Leading, std::string& Scratch, TKvVariant& Value) {
  constexpr std::size_t DateSize = 10;
  constexpr std::size_t TimeSize = 8;
  constexpr std::size_t DateTimeSize = DateSize + 1 + TimeSize;
  std::size_t PlainSize = DateSize;
  Scratch.clear();
  if (Leading == TKvKind::SysDate) {
    const std::optional<TDateTime> Date = StrToSysDate(Text);
    if (!Date) return false;
    Value.SetSysDate(*Date);
  } else if (Leading == TKvKind::SysTime) {
    const std::optional<std::int64_t> Time = StrToSysTime(Text);
    if (!Time) return false;
    PlainSize = TimeSize;
    Value.SetSysTime(*Time);
    if (Text.size() != PlainSize) AppendSysTime(Scratch, *Time);
  } else {
    const std::optional<TDateTime> DateTime = SysStrToDateTime(Text);
    if (!DateTime) return false;
    PlainSize = DateTimeSize;
    Value.SetDateTime(*DateTime);
    if (Text.size() != PlainSize) AppendSysDateTime(Scratch, *DateTime);
  }
  // Without a fraction there is one way to write it; with one, "12:00:00.50" and "12:00:00.500" are the same time.
  return Text.size() == PlainSize || Text == Scratch;
}

/// The same for an amount.
void SetAmount(std::string_view Text, std::string& Scratch, TKvVariant& Value) {
  const std::optional<TCurrency> Amount = StrToCurrency(Text);
  if (!Amount) return;
  Scratch.clear();
  AppendCurrency(Scratch, *Amount);
  if (Text == Scratch) Value.SetCurrency(*Amount);
}

std::string_view BytesOf(const void* Bytes, int Size) {
  if (!Bytes && Size > 0) throw EDatabaseError("Cannot read a value: out of memory");
  return {static_cast<const char*>(Bytes), static_cast<std::size_t>(Size)};
}

}  // namespace

void ReadSQLiteCell(sqlite3_value* Cell, bool Wide, TKvVariant& Value) {
  switch (sqlite3_value_type(Cell)) {
    case SQLITE_INTEGER:
      return Value.SetInteger(sqlite3_value_int64(Cell));
    case SQLITE_FLOAT:
      return Value.SetReal(sqlite3_value_double(Cell));
    case SQLITE_TEXT: {
      // Asked for as bytes the engine lends its page; as text it would copy to add a final zero.
      const void* Text = Wide ? static_cast<const void*>(sqlite3_value_text(Cell)) : sqlite3_value_blob(Cell);
      return Value.BorrowText(BytesOf(Text, sqlite3_value_bytes(Cell)));
    }
    case SQLITE_BLOB: {
      const void* Bytes = sqlite3_value_blob(Cell);
      return Value.BorrowText(BytesOf(Bytes, sqlite3_value_bytes(Cell)), TKvKind::Bytes);
    }
    default:
      return Value.SetNull();
  }
}

void ReadSQLiteCell(sqlite3_value* Cell, bool Wide, TKvKind Leading, std::string& Scratch, TKvVariant& Value) {
  ReadSQLiteCell(Cell, Wide, Value);
  switch (Leading) {
    case TKvKind::Boolean:
      if (Value.Kind() == TKvKind::Int64 && (Value.AsInteger() == 0 || Value.AsInteger() == 1))
        Value.SetBoolean(Value.AsInteger() == 1);
      break;
    case TKvKind::Currency:
      if (Value.Kind() == TKvKind::Double)
        if (const std::optional<TCurrency> Amount = RealToCurrency(Value.AsReal())) Value.SetCurrency(*Amount);
      // Where texts are kept as they come, amounts are, too.
      if (Value.Kind() == TKvKind::String) SetAmount(Value.AsText(), Scratch, Value);
      break;
    case TKvKind::SysDate:
    case TKvKind::SysTime:
    case TKvKind::DateTime:
      if (Value.Kind() == TKvKind::String) {
        const std::string_view Text = Value.AsText();
        if (!SetDateKind(Text, Leading, Scratch, Value)) Value.BorrowText(Text);
      }
      break;
    default:
      break;
  }
}

std::string SQLiteRowsOf(const TTableDescription& Table) {
  std::string Result = "main." + QuoteStandardName(Table.Table.Name) + " AS T";
  // An index that holds all columns would be walked in its own order. One that has the wanted order leads to every row
  // by itself, which takes longer than to sort what is read from end to end; rows that stand in their order are not
  // sorted.
  if (Table.Table.Kind == TTableKind::Table) Result += " NOT INDEXED";
  return Result;
}

void CheckSQLiteSelection(const TSQLiteHandle& Database, const TTableDescription& Table, std::string_view Condition,
                          const std::string& What) {
  if (Condition.empty()) return;
  const TNamesAlone NamesAlone(Database);
  const TSQLiteStatement Check(Database, SelectionCheck(Condition, SQLiteRowsOf(Table)), What);
  if (sqlite3_bind_parameter_count(Check.Handle()) > 0)
    throw EDatabaseError(What + ": it has a parameter, whose value nobody knows", {.Table = Table.Table.Name});
}

TSQLiteCursor::TSQLiteCursor(const TSQLiteHandle& Database, const TTableDescription& Table,
                             std::span<const int> Columns, const TWalkOptions& Options, bool Wide)
    : FStatement(WithUtf8Order(Database, Wide && !Options.Order.empty()), SelectText(Table, Columns, Options, Wide),
                 SelectionFailed(Format("Cannot read table '%s'", Table.Table.Name), Options.Condition),
                 TSQLiteStatement::TUse::Often),
      FWide(Wide) {
  FKinds.reserve(Columns.size());
  for (const int Column : Columns) FKinds.push_back(Table.Columns[static_cast<std::size_t>(Column)].Kind);
}

void TSQLiteCursor::Read(int Column, TKvVariant& Value) {
  // The connection has no mutex, so that the cell itself may be asked: one look-up instead of one per question.
  ReadSQLiteCell(sqlite3_column_value(FStatement.Row(), Column), FWide, FKinds[static_cast<std::size_t>(Column)],
                 FScratch, Value);
}

void TSQLiteCursor::ReadRow(std::span<TKvVariant> Row) {
  sqlite3_stmt* const Statement = FStatement.Row();
  for (std::size_t Column = 0; Column < Row.size(); ++Column)
    ReadSQLiteCell(sqlite3_column_value(Statement, static_cast<int>(Column)), FWide, FKinds[Column], FScratch,
                   Row[Column]);
}

}  // namespace velkrund
