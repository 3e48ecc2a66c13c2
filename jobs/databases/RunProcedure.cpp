#include "jobs/databases/RunProcedure.h"

#include <algorithm>
#include <limits>

#include "standalone/dictionary/Arguments.h"
#include "velkrund/platform/database/Transaction.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Nearest.h"

namespace velkrund {

namespace {

using TThis = TJobRunProcedure;

constexpr TProperty Properties[] = {
    TPolicyRows::DryRun,
    PropertyOf<&TThis::ProcedureName>("ProcedureName", "the procedure, in any case, with its schema where needed"),
    PropertyOf<&TThis::Parameters>("Parameters", "names of parameters, and their values as texts"),
    PropertyOf<&TThis::NullParameters>("NullParameters", "parameters that are to be NULL"),
    PropertyOf<&TThis::KeepRows>("KeepRows", "keep the rows for the report; memory then grows with them"),
    ReadOnlyOf<&TThis::Rows>("Rows", "rows that the procedure yielded in the last run"),
    ReadOnlyOf<[](const TThis& Job) { return Job.ChangedRows().value_or(-1); }>(
        "ChangedRows", "rows that it changed; -1: the engine does not count them"),
};

/// Rows between two looks at the progress.
constexpr std::int64_t RowsAtOnce = 256;
constexpr std::int64_t MostShown = std::numeric_limits<std::int32_t>::max();

}  // namespace

constinit const TUtilOperationDescriptor TThis::Descriptor = OperationDescriptor<TThis>("TJobRunProcedure");
constinit const TInterfaceDescriptor TThis::Interface =
    TJobInterface<TThis>::Describe("TJobRunProcedureInterface", {&JobProperties, Properties});

void TThis::Forget() {
  FFound.clear();
  FColumns.clear();
  FRows = 0;
  FChangedRows.reset();
  FKept.clear();
  ForgetPlan();
}

TDicProcedureDescription TThis::Find(TProcedures& Procedures) const {
  if (std::optional<TDicProcedureDescription> Found = Procedures.Find(ProcedureName)) return std::move(*Found);
  std::vector<std::string> Names;
  for (const TDicProcedureDescription& Procedure : Procedures.List()) Names.push_back(Procedure.FullName());
  throw EDatabaseError(Format("There is no procedure '%s' that can be run in the database %s%s", ProcedureName,
                              DatabaseText(), Names.empty() ? "" : ContentHint(ProcedureName, Names, ": it has ")),
                       {.Code = TErrorCode::ProcedureMissing});
}

void TThis::Run() {
  TConnection& Connection = Manager().Databases().Connection(DatabaseName);
  TTransaction Transaction(DatabaseName);
  TGapBook Gaps;
  const std::unique_ptr<TProcedures> Procedures = ProceduresOf(Connection, Gaps);
  const TDicProcedureDescription Procedure = Find(*Procedures);
  FFound = Procedure.FullName();
  AddToPlan({Format("run the procedure '%s', and take back what it changes", FFound)});
  const TProcedureArguments Arguments = ArgumentsOf(Procedure, {Parameters, NullParameters});
  BeginPart(FFound, "rows");
  TakeRows(*Procedures->Run(Procedure, Arguments));
  EndPart();
  if (!Policies.DryRun) Transaction.Commit();
}

void TThis::TakeRows(TProcedureRun& Running) {
  TRowLines Lines([this](std::string_view Text) {
    if (TakeLines) TakeLines(Text);
  });
  FColumns = Running.Columns();
  const int Count = static_cast<int>(FColumns.size());
  for (const std::string& Column : FColumns) Lines.AddText(Column);
  if (Count > 0) Lines.EndRow();
  TKvVariant Value;
  while (Running.Next()) {
    if (IsCanceled()) throw EAbort("cancelled");
    if (KeepRows) FKept.emplace_back();
    for (int Column = 0; Column < Count; ++Column) {
      Running.Read(Column, Value);
      Lines.Add(Value);
      if (KeepRows) FKept.back().push_back(Value);
    }
    Lines.EndRow();
    if (++FRows % RowsAtOnce == 0) ShowPart(static_cast<std::int32_t>(std::min(FRows, MostShown)), -1, FFound);
  }
  if (IsCanceled()) throw EAbort("cancelled");
  FChangedRows = Running.ChangedRows();
  Lines.End();
}

void TThis::Describe(TDocument& Document) const {
  Document.Set("database", DatabaseText()).Set("procedure", FFound).Set("columns", FColumns);
  if (KeepRows) {
    TDocument Rows = TDocument::List();
    for (const std::vector<TKvVariant>& Kept : FKept) {
      TDocument Row = TDocument::List();
      for (const TKvVariant& Value : Kept) Row.Add(TDocument::Value(Value));
      Rows.Add(std::move(Row));
    }
    Document.Set("rows", std::move(Rows));
  }
  Document.Set("rowCount", FRows).Set("changedRows", FChangedRows);
}

}  // namespace velkrund
