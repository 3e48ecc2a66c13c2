#include <algorithm>
#include <optional>

#include "hosts/cli/Batch.h"
#include "hosts/cli/InputFile.h"
#include "hosts/cli/RelatedTables.h"
#include "hosts/cli/Sections.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/StrayMarkers.h"
#include "hosts/cli/TableTargets.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "velkrund/dictionary/TableDataOperations.h"
#include "velkrund/eif/EIErrors.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

const TCommandTexts ImportTableTexts = {
    "import",
    "table",
    "loads table data sections of an export/import file into tables",
    "-d DB -i FILE [-t TABLE] [--section NAME|INDEX] [--replace|--append]",
    "Without --section every table data section of the file is loaded, each into the table that it names. A table is "
    "loaded in one transaction: after an error, or when the import is cancelled, it is as it was before. Tables come "
    "after those that they refer to; where foreign keys ask for it, they are loaded together or not at all.\n\n"
    "A table that has rows already needs --replace or --append. At a terminal it is asked about, elsewhere it is an "
    "error, before anything is changed.",
    {{"import table -d sqlite:shop.db -i orders.eif --replace", "every table of the file, emptied first"},
     {"import table -d sqlite:shop.db -i shop.eif --section ORDERS -t ORDERS_OLD --append",
      "one section into a table of another name"},
     {"import table -d shop -i - --replace < shop.eif", "from standard input"}}};

struct TStep {
  int Index = 0;
  std::size_t Target = 0;
};

class TImportTable final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ImportTableTexts; }
  std::vector<TOptionGroup> Options() override;
  TApplicationOptions ApplicationOptions() const override;
  bool ReadsStandardInput() const override { return FInput == "-"; }
  int Run(TSession& Session) override;

 private:
  std::vector<TStep> Steps(const TSession& Session, TInputFile& Input, TReport& Report, TTableTargets& Targets) const;
  std::vector<int> Chosen(TInputFile& Input, TReport& Report) const;
  void CheckFields(TInputFile& Input, int Index, TTable& Table) const;
  void Import(const TSession& Session, TInputFile& Input, const std::vector<TStep>& Steps, TTableTargets& Targets,
              TRelatedTables& Related, TReport& Report) const;

  std::string FInput, FTable;
  std::vector<std::string> FSections, FFields;
  TTableOptions FTables;
};

std::vector<TOptionGroup> TImportTable::Options() {
  std::vector<TOption> Own = {
      Shared.DatabaseOption(), Required(Text("-i,--input", "FILE", "the file to read; - is standard input", FInput)),
      Text("-t,--table", "TABLE", "the table to load (default: the one that the section names)", FTable),
      List("--section", "NAME|INDEX", "the section to load; a number is an index as file list shows it", FSections),
      CommaList("--fields", "A,B", "only these fields", FFields)};
  for (TOption& Option : FTables.Options()) Own.push_back(std::move(Option));
  Own.push_back(Shared.AllowLossOption());
  Own.push_back(Shared.OnErrorOption());
  return {{"Options", Own}, Shared.General()};
}

TApplicationOptions TImportTable::ApplicationOptions() const {
  TApplicationOptions Result = TCommand::ApplicationOptions();
  FTables.ApplyTo(Result);
  return Result;
}

/// The sections to load. What else the file holds is named in the report.
std::vector<int> TImportTable::Chosen(TInputFile& Input, TReport& Report) const {
  const TEISectionList& Sections = Input.File().Sections();
  const TSectionChoice Choice{TSectionRole::TableData, "table data", FSections, Input.Name(),
                              NoteStrayMarkers(Input, Report)};
  std::vector<int> Result = ChosenSections(Sections, Choice, Report.Notes);
  if (Result.size() > 1 && !FTable.empty())
    throw EUsage(
        Format("--table names one table, but %d sections are to be loaded: choose one with --section", Result.size()));
  return Result;
}

/// What would go wrong in silence: fields that nobody has.
void TImportTable::CheckFields(TInputFile& Input, int Index, TTable& Table) const {
  const std::optional<std::vector<std::string>> Names = FieldsOf(Input.File(), Index);
  if (!Names) return;  // the import says what is wrong with the body
  const TEISectionList& Sections = Input.File().Sections();
  const auto InFile = [&](const std::string& Field) {
    return std::any_of(Names->begin(), Names->end(), [&](const std::string& Name) { return SameText(Name, Field); });
  };
  for (const std::string& Field : FFields)
    if (!InFile(Field))
      throw EEIError(
          Format("There is no field '%s' in %s: it has %s", Field, SectionText(Sections, Index), Joined(*Names)));
  const std::vector<std::string>& Wanted = FFields.empty() ? *Names : FFields;
  const auto InTable = [&](const std::string& Field) { return Table.FindField(Field) != nullptr; };
  if (std::none_of(Wanted.begin(), Wanted.end(), InTable))
    throw EEIError(Format("The table '%s' has none of the fields of %s: %s", Table.TableName(),
                          SectionText(Sections, Index), Joined(Wanted)));
}

/// The sections with their tables. What is certain to fail ends the run before anything is changed.
std::vector<TStep> TImportTable::Steps(const TSession& Session, TInputFile& Input, TReport& Report,
                                       TTableTargets& Targets) const {
  const TEISectionList& Sections = Input.File().Sections();
  std::vector<TStep> Result;
  for (const int Index : Chosen(Input, Report)) {
    const std::string Name = FTable.empty() ? TableOf(Sections[Index]) : FTable;
    const std::unique_ptr<TTable> Table = Session.Manager().GetUserTable(Name, Session.Database(), true);
    if (!Table)
      throw EDatabaseError(Format("There is no table '%s' in the database %s; it is wanted for %s", Name,
                                  Report.Database, SectionText(Sections, Index)));
    CheckFields(Input, Index, *Table);
    Result.push_back({Index, Targets.Add(*Table)});
  }
  return Result;
}

void TImportTable::Import(const TSession& Session, TInputFile& Input, const std::vector<TStep>& Steps,
                          TTableTargets& Targets, TRelatedTables& Related, TReport& Report) const {
  TUOImportTableDataInterface Interface;
  Interface.SetDatabaseName(Session.Database());
  Interface.SetSource(&Input.File());
  Interface.SetFields(FFields);
  Interface.SetSkipMissingFields(FTables.SkipMissing);
  auto& Operation = static_cast<TUOImportTableData&>(Interface.Operation());
  Operation.Loading = &Related;
  TBatch Batch(Session, Input.File(), Report);
  std::vector<TReportItem>& Items = Report.Items;
  for (std::size_t I = 0; I < Steps.size(); ++I) {
    const TStep& Step = Steps[I];
    const TTableTarget& Target = Targets[Step.Target];
    if (Target.LeaveOut) continue;
    const std::int64_t Bytes = Input.File().Sections()[Step.Index].DataSize;
    Interface.SetSectionNumber(Step.Index);
    Interface.SetTableName(Target.Table);
    const bool More =
        !Related.AreOne() && std::any_of(Steps.begin() + static_cast<std::ptrdiff_t>(I) + 1, Steps.end(),
                                         [&](const TStep& Later) { return !Targets[Later.Target].LeaveOut; });
    const bool GoOn = Batch.Run(Items[I], Interface, {"bytes", Bytes}, More);
    Items[I].Counts = Operation.Report;
    Items[I].Bytes = Bytes;
    if (!GoOn) break;
  }
}

int TImportTable::Run(TSession& Session) {
  TReport Report{"import table", "imported", Session.Application.DatabaseText(Session.Database()), FInput};
  TInputFile Input(Session, FInput);
  Input.Open();
  if (Input.File().Losses().Any()) Report.Notes.emplace_back("warning: section headers hold malformed characters");
  TTableTargets Targets(FTables);
  std::vector<TStep> Plan = Steps(Session, Input, Report, Targets);
  Targets.Settle(Session);
  TRelatedTables Related(Session, Targets);
  std::stable_sort(Plan.begin(), Plan.end(), [&](const TStep& A, const TStep& B) {
    return Related.Rank(Targets[A.Target].Table) < Related.Rank(Targets[B.Target].Table);
  });
  for (const TStep& Step : Plan) {
    const TTableTarget& Target = Targets[Step.Target];
    Report.Items.push_back({Input.File().Sections()[Step.Index].Name(), Target.Table});
    if (!Target.LeaveOut) continue;
    Report.Items.back().State = TItemState::LeftOut;
    Report.Items.back().Note = Target.Note();
  }
  Related.Begin();
  Import(Session, Input, Plan, Targets, Related, Report);
  EndRelated(Related, Report);
  return Finish(Session, Report);
}

}  // namespace

std::unique_ptr<TCommand> MakeImportTable() { return std::make_unique<TImportTable>(); }

}  // namespace velkrund
