#include "standalone/drivers/postgresql/PostgreSQLCall.h"

#include "standalone/drivers/postgresql/CatalogueStatement.h"
#include "standalone/drivers/postgresql/Libpq.h"
#include "standalone/drivers/postgresql/PostgreSQLBatches.h"
#include "standalone/drivers/postgresql/PostgreSQLTypes.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Numbers.h"
#include "velkrund/platform/ormtools/Wording.h"

namespace velkrund {
namespace {

constexpr std::string_view Engine = "postgresql";

// Numbers of the engine's types.
constexpr Oid BooleanType = 16, BytesType = PostgreSQLBytesType, Int8Type = 20, Int2Type = 21, Int4Type = 23,
              OidType = 26, Float4Type = 700, Float8Type = 701, VoidType = 2278;

/// What the server counts of changed rows in the running transaction; NULL where it was told not to.
constexpr const char* ChangesStatement =
    "SELECT CASE WHEN pg_catalog.current_setting('track_counts') = 'on' THEN (SELECT coalesce(pg_catalog.sum("
    "pg_catalog.int8pl(pg_catalog.int8pl(t.n_tup_ins, t.n_tup_upd), t.n_tup_del)), 0::pg_catalog.numeric) "
    "FROM pg_catalog.pg_stat_xact_user_tables t) END";

std::optional<std::int64_t> CountChanges(TPostgreSQLSession& Session, std::string_view What) {
  const TPostgreSQLResult Rows = Session.Query(What, CatalogueStatement(ChangesStatement));
  return StrToInt64(Rows.Text(0, 0));
}

/// The value of a cell by its text, which is the same whatever the settings are.
void SetFromText(Oid Type, std::string_view Text, TKvVariant& Value) {
  switch (Type) {
    case Int2Type:
    case Int4Type:
    case Int8Type:
    case OidType:
      if (const auto Number = StrToInt64(Text)) return Value.SetInteger(*Number);
      break;
    case Float4Type:
    case Float8Type:
      if (const auto Number = StrToReal(Text)) return Value.SetReal(*Number);
      break;
    case BooleanType:
      return Value.SetBoolean(Text == "t");
    case BytesType: {
      std::string& Bytes = Value.StartText();
      for (std::size_t At = 2; At + 1 < Text.size(); At += 2)  // behind "\x"
        Bytes += static_cast<char>(HexToUnsigned(Text.substr(At, 2)).value_or(0));
      return Value.FinishText(TKvKind::Bytes);
    }
    default:
      break;
  }
  Value.BorrowText(Text);
}

/// The declared type of a parameter, and whether it takes all further values.
struct TParameterType {
  std::string Name;
  bool IsVariadic = false;
};
TParameterType TypeOf(const TDicParameter& Parameter) {
  constexpr std::string_view Variadic = "VARIADIC ";
  const TDicWords* const Words = WordsOf(Parameter.Words, Engine);
  if (!Words || !Words->Text) return {};
  if (!Words->Text->starts_with(Variadic)) return {*Words->Text};
  return {Words->Text->substr(Variadic.size()), true};
}

bool IsFunction(const TDicProcedureDescription& Procedure, std::string_view& Returns) {
  constexpr std::string_view Words = "RETURNS ";
  const TDicWords* const Own = WordsOf(Procedure.Words, Engine);
  const std::string* const Options = Own ? Own->Part("Options") : nullptr;
  if (!Options || !Options->starts_with(Words)) return Procedure.Selects;
  Returns = std::string_view(*Options).substr(Words.size());
  Returns = Returns.substr(0, Returns.find(' '));
  return true;
}

/// The statement of a call, and the values of its parameters.
class TCallWords {
 public:
  TCallWords(TPostgreSQLSession& Session, const TDicProcedureDescription& Procedure, std::string What)
      : FSession(Session), FProcedure(Procedure), FWhat(std::move(What)) {}

  std::string Text(const TProcedureArguments& Arguments, bool IsFunction) {
    for (std::size_t I = 0; I < Arguments.size(); ++I) {
      const TDicParameter& Parameter = FProcedure.Parameters[I];
      if (Arguments[I])
        AddArgument(Parameter, *Arguments[I], I + 1);
      else if (TakesValue(Parameter))
        FByName = true;
      else if (!IsFunction)
        Add(Parameter, "NULL");  // a procedure's place for what it gives back
    }
    const std::string Call =
        FSession.Dialect().QualifiedName({FProcedure.Name, FProcedure.Schema}) + "(" + Joined(FWords) + ")";
    return (IsFunction ? "SELECT * FROM " : "CALL ") + Call;
  }
  const std::vector<TKvVariant>& Values() const { return FValues; }

 private:
  void AddArgument(const TDicParameter& Parameter, const TKvVariant& Value, std::size_t Place) {
    const TParameterType Type = TypeOf(Parameter);
    const bool IsPolymorphic = Type.Name.starts_with("any");
    const std::string Cast = "::" + (IsPolymorphic || Type.Name.empty() ? "pg_catalog.text" : Type.Name);
    // By itself first, since an error of the whole call would not say which value it is about.
    const std::string Name = Parameter.Name.empty() ? std::to_string(Place) : Parameter.Name;
    FSession.Query(Format("%s: its parameter '%s'", FWhat, Name), "SELECT $1" + Cast, {&Value, 1},
                   TPostgreSQLSession::TFormat::Text);
    FValues.push_back(Value);
    Add(Parameter, "$" + std::to_string(FValues.size()) + Cast, Type.IsVariadic);
  }

  void Add(const TDicParameter& Parameter, const std::string& Value, bool IsVariadic = false) {
    if (FByName && Parameter.Name.empty())
      throw EDatabaseError(
          Format("%s: a parameter without a name stands behind one that has no value; give all", FWhat));
    FWords.push_back((IsVariadic ? "VARIADIC " : "") +
                     (FByName ? QuoteStandardName(Parameter.Name) + " => " : std::string()) + Value);
  }

  TPostgreSQLSession& FSession;
  const TDicProcedureDescription& FProcedure;
  const std::string FWhat;
  std::vector<std::string> FWords;
  std::vector<TKvVariant> FValues;
  bool FByName = false;  // since one before was left out
};

/// The columns of an answer, and its cells.
class TAnswer {
 public:
  void Describe(const PGresult* Rows) {
    for (int Column = 0; Column < PQnfields(Rows); ++Column) {
      FNames.emplace_back(PQfname(Rows, Column));
      FTypes.push_back(PQftype(Rows, Column));
    }
    if (FTypes == std::vector<Oid>{VoidType}) FNames.clear();  // it gives nothing back
  }
  const std::vector<std::string>& Names() const { return FNames; }
  void Read(const TPostgreSQLResult& Rows, int Row, int Column, TKvVariant& Value) const {
    if (PQgetisnull(Rows.Handle(), Row, Column) != 0) return Value.SetNull();
    SetFromText(FTypes[static_cast<std::size_t>(Column)], Rows.Text(Row, Column), Value);
  }

 private:
  std::vector<std::string> FNames;
  std::vector<Oid> FTypes;
};

class TRoutineRun : public TProcedureRun {
 public:
  const std::vector<std::string>& Columns() const final { return FAnswer.Names(); }
  std::optional<std::int64_t> ChangedRows() const final { return FChangedRows; }
  bool Next() final {
    if (FEnded) return false;
    if (NextRow()) return true;
    FEnded = true;
    FSession.DoubtSettings();
    const std::optional<std::int64_t> After = CountChanges(FSession, FWhat);
    if (After) FChangedRows = *After - FBefore;
    return false;
  }

 protected:
  TRoutineRun(TPostgreSQLSession& Session, std::string What)
      : FSession(Session), FWhat(std::move(What)), FBefore(CountChanges(Session, FWhat).value_or(0)) {}
  virtual bool NextRow() = 0;

  TPostgreSQLSession& FSession;
  const std::string FWhat;
  TAnswer FAnswer;

 private:
  const std::int64_t FBefore;
  std::optional<std::int64_t> FChangedRows;
  bool FEnded = false;
};

class TFunctionRun final : public TRoutineRun {
 public:
  TFunctionRun(TPostgreSQLSession& Session, const std::string& What, const std::string& Select,
               std::span<const TKvVariant> Values)
      : TRoutineRun(Session, What), FBatches(Session, What, Select, Values, TPostgreSQLSession::TFormat::Text) {
    FBatches.Fetch();
    FAnswer.Describe(FBatches.Batch().Handle());
  }

  void Read(int Column, TKvVariant& Value) override { FAnswer.Read(FBatches.Batch(), FBatches.Row(), Column, Value); }

 private:
  bool NextRow() override { return FBatches.Next() && !Columns().empty(); }

  TPostgreSQLBatches FBatches;
};

class TCallRun final : public TRoutineRun {
 public:
  TCallRun(TPostgreSQLSession& Session, const std::string& What, const std::string& Call,
           std::span<const TKvVariant> Values)
      : TRoutineRun(Session, What), FRows(Session.Query(What, Call, Values, TPostgreSQLSession::TFormat::Text)) {
    FAnswer.Describe(FRows.Handle());
  }

  void Read(int Column, TKvVariant& Value) override { FAnswer.Read(FRows, FRow, Column, Value); }

 private:
  bool NextRow() override { return ++FRow < FRows.RowCount(); }

  TPostgreSQLResult FRows;  // the output parameters, one row
  int FRow = -1;
};

}  // namespace

std::unique_ptr<TProcedureRun> CallPostgreSQLRoutine(TPostgreSQLSession& Session,
                                                     const TDicProcedureDescription& Procedure,
                                                     const TProcedureArguments& Arguments) {
  std::string What = Format("Cannot run procedure '%s'", Procedure.FullName());
  std::string_view Returns;
  const bool Selects = IsFunction(Procedure, Returns);
  if (Returns == "trigger" || Returns == "event_trigger")
    throw EDatabaseError(
        Format("%s: it is a trigger function, which the server runs when its trigger fires; change what the trigger "
               "watches to try it",
               What));
  TCallWords Words(Session, Procedure, What);
  const std::string Text = Words.Text(Arguments, Selects);
  if (Selects) return std::make_unique<TFunctionRun>(Session, What, Text, Words.Values());
  return std::make_unique<TCallRun>(Session, What, Text, Words.Values());
}

}  // namespace velkrund
