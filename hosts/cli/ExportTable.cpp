#include <algorithm>
#include <optional>

#include "hosts/cli/Batch.h"
#include "hosts/cli/Commands.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/Sections.h"
#include "hosts/cli/Session.h"
#include "hosts/cli/Texts.h"
#include "hosts/common/OutputFile.h"
#include "velkrund/dictionary/TableDataOperations.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

const TCommandTexts ExportTableTexts = {
    "export",
    "table",
    "saves the rows of tables as sections of an export/import file",
    "-d DB (-t TABLE... | --all) -o FILE",
    "The sections are added to the file, which is made when it does not exist. A section of the same name that is "
    "there "
    "already is asked about, unless --overwrite or --add says what to do.\n\n"
    "A file that is made here and gets no section, because the export fails or is cancelled, is removed again. What "
    "is finished stays.",
    {{"export table -d sqlite:shop.db -t ORDERS -o orders.eif", "one table"},
     {"export table -d sqlite:shop.db --all -o shop.eif --overwrite yes",
      "all tables; sections of an earlier export are replaced"},
     {"export table -d sqlite:shop.db -t ORDERS -o - | velkrund import table -d sqlite:other.db -i - --replace",
      "from one database into another"},
     {"export table -d shop -t ORDERS -t LINES -o old.eif --release rv17",
      "for readers of the release before; \"shop\" is a name of the configuration"}}};

struct TStep {
  std::string Table;
  std::vector<int> Existing;  // sections of the same name that are there
  bool LeaveOut = false;
  bool Replace = false;
};

class TExportTable final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return ExportTableTexts; }
  std::vector<TOptionGroup> Options() override;
  void CheckOptions() override;
  bool WritesStandardOutput() const override { return FOutput == "-"; }
  int Run(TSession& Session) override;

 private:
  std::vector<TStep> Steps(const TSession& Session, TReport& Report) const;
  std::vector<std::string> AllTables(const TSession& Session, TReport& Report) const;
  const std::string& SectionName(const TStep& Step) const { return FSection.empty() ? Step.Table : FSection; }
  void Settle(const TSession& Session, TOutputFile& Output, std::vector<TStep>& Steps) const;
  std::vector<int> Export(const TSession& Session, TOutputFile& Output, const std::vector<TStep>& Steps,
                          TReport& Report) const;

  std::vector<std::string> FTables, FFields;
  bool FAll = false, FAdd = false;
  std::string FOutput, FSection;
  std::optional<TKvEncoding> FEncoding;
  TExportReleaseVersion FRelease = TExportReleaseVersion::rv20;
  TOverwrite FOverwrite = TOverwrite::Ask;
};

std::vector<TOptionGroup> TExportTable::Options() {
  return {
      {"Options",
       {Shared.DatabaseOption(), NotWith(List("-t,--table", "TABLE", "a table to export", FTables), {"--all"}),
        Switch("--all", "all tables of the database; views and tables that the engine does not keep are left out",
               FAll),
        Required(Text("-o,--output", "FILE", "the file to add to; - is standard output", FOutput)),
        CommaList("--fields", "A,B", "only these fields", FFields),
        Text("--section", "NAME", "the section's name (default: the table's)", FSection),
        Choice<std::optional<TKvEncoding>>("--encoding", "of the sections (default: utf8, with rv17 ansi)",
                                           {{"utf8", TKvEncoding::Utf8}, {"ansi", TKvEncoding::Ansi}}, FEncoding),
        Choice<TExportReleaseVersion>("--release", "whose readers the file has to suit (default: rv20)",
                                      {{"rv20", TExportReleaseVersion::rv20}, {"rv17", TExportReleaseVersion::rv17}},
                                      FRelease),
        Choice<TOverwrite>("--overwrite",
                           "a section of that name that is there: replace it, or leave it and skip the table "
                           "(default: ask)",
                           {{"ask", TOverwrite::Ask}, {"yes", TOverwrite::Yes}, {"no", TOverwrite::No}}, FOverwrite),
        NotWith(Switch("--add", "keep a section of that name that is there beside the new one", FAdd), {"--overwrite"}),
        Shared.AllowLossOption(), Shared.OnErrorOption()}},
      Shared.General()};
}

void TExportTable::CheckOptions() {
  if (FTables.empty() && !FAll) throw EUsage("say which tables: --table NAME or --all");
  if (FEncoding == TKvEncoding::Utf8 && FRelease == TExportReleaseVersion::rv17)
    throw EUsage("--encoding utf8 does not go with --release rv17, whose readers know ansi only");
  const bool Several = FAll || FTables.size() > 1;
  if (Several && !FSection.empty()) throw EUsage("--section names one section, but several tables are exported");
  if (Several && !FFields.empty()) throw EUsage("--fields names fields of one table, but several tables are exported");
}

std::vector<std::string> TExportTable::AllTables(const TSession& Session, TReport& Report) const {
  std::vector<std::string> Result, LeftOut;
  for (const TTableInfo& Table : Session.Manager().Tables(Session.Database()))
    (Table.Kind == TTableKind::Table ? Result : LeftOut).push_back(FullName(Table));
  if (!LeftOut.empty())
    Report.Notes.push_back("left out, being views or tables that the engine does not keep: " + Joined(LeftOut));
  return Result;
}

/// The tables under their physical names, each once. A name that is none ends the run before anything is written.
std::vector<TStep> TExportTable::Steps(const TSession& Session, TReport& Report) const {
  std::vector<TStep> Result;
  for (const std::string& Name : FAll ? AllTables(Session, Report) : FTables) {
    const std::unique_ptr<TTable> Table = Session.Manager().GetUserTable(Name, Session.Database(), false);
    if (!Table) throw EDatabaseError(Format("There is no table '%s' in the database %s", Name, Report.Database));
    for (const std::string& Field : FFields)
      if (!Table->FindField(Field))
        throw EDatabaseError(Format("There is no field '%s' in the table '%s'", Field, Table->TableName()));
    const auto Same = [&](const TStep& Step) { return Step.Table == Table->TableName(); };
    if (std::none_of(Result.begin(), Result.end(), Same)) Result.push_back({Table->TableName(), {}});
  }
  return Result;
}

/// Decides about sections that are there already, before anything is written.
void TExportTable::Settle(const TSession& Session, TOutputFile& Output, std::vector<TStep>& Steps) const {
  const TEISectionList& Sections = Output.File().Sections();
  std::vector<std::string> Met;
  for (TStep& Step : Steps) {
    for (const int Index : SectionsNamed(Sections, SectionName(Step)))
      if (IsTableData(Sections[Index])) Step.Existing.push_back(Index);
    if (!Step.Existing.empty()) Met.push_back("the section '" + SectionName(Step) + "'");
  }
  const std::string Options = "--overwrite yes to replace, --overwrite no to leave it out, or --add to keep both";
  const bool Ask = FOverwrite == TOverwrite::Ask && !FAdd;
  if (Ask && !Met.empty() && !Session.Answers.CanAsk())
    Session.Answers.Ask({Format("Already in '%s': %s.", Output.Name(), Joined(Met)), {}, Options});
  TRepeatedQuestion Question(Session.Answers);
  for (TStep& Step : Steps) {
    if (Step.Existing.empty() || FAdd) continue;
    Step.Replace = FOverwrite == TOverwrite::Yes;
    if (Ask)
      Step.Replace =
          Question.Ask({Format("The section '%s' is already in '%s'. Replace it?", SectionName(Step), Output.Name()),
                        {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                        Options}) == TAnswer::Yes;
    Step.LeaveOut = !Step.Replace;
  }
}

/// Adds the sections. Returns the indexes of those that they take the place of.
std::vector<int> TExportTable::Export(const TSession& Session, TOutputFile& Output, const std::vector<TStep>& Steps,
                                      TReport& Report) const {
  TUOExportTableDataInterface Interface;
  Interface.SetDatabaseName(Session.Database());
  Interface.SetTarget(&Output.File());
  Interface.SetFields(FFields);
  Interface.SetReleaseVersion(FRelease);
  Interface.SetEncoding(
      FEncoding.value_or(FRelease == TExportReleaseVersion::rv20 ? TKvEncoding::Utf8 : TKvEncoding::Ansi));
  TBatch Batch(Session, Output.File(), Report);
  std::vector<TReportItem>& Items = Report.Items;
  std::vector<int> Replaced;
  for (std::size_t I = 0; I < Steps.size(); ++I) {
    const TStep& Step = Steps[I];
    if (Step.LeaveOut) continue;
    Interface.SetTableName(Step.Table);
    Interface.SetSectionName(SectionName(Step));
    const bool More = std::any_of(Steps.begin() + static_cast<std::ptrdiff_t>(I) + 1, Steps.end(),
                                  [](const TStep& Later) { return !Later.LeaveOut; });
    const bool GoOn = Batch.Run(Items[I], Interface, {"rows"}, More);
    Items[I].Counts = static_cast<const TUOExportTableData&>(Interface.Operation()).Report;
    if (Items[I].State == TItemState::Done) {
      const TEISectionList& Sections = Output.File().Sections();
      Items[I].Bytes = Sections[Sections.Count() - 1].DataSize;
      if (Step.Replace) Replaced.insert(Replaced.end(), Step.Existing.begin(), Step.Existing.end());
    }
    if (!GoOn) break;
  }
  return Replaced;
}

int TExportTable::Run(TSession& Session) {
  TReport Report{"export table", "exported", Session.Application.DatabaseText(Session.Database()), FOutput};
  std::vector<TStep> Plan = Steps(Session, Report);
  TOutputFile Output(Session.Files(), FOutput,
                     [&](const std::string& Text) { Session.Console.Message("velkrund: " + Text); });
  Settle(Session, Output, Plan);
  for (const TStep& Step : Plan) {
    Report.Items.push_back({SectionName(Step), Step.Table});
    if (!Step.LeaveOut) continue;
    Report.Items.back().State = TItemState::LeftOut;
    Report.Items.back().Note = "the section is already there";
  }
  const std::vector<int> Replaced = Export(Session, Output, Plan, Report);
  // A wish to stop that came before has been obeyed; what is finished is put right now.
  const bool Stopped = TInterrupt::Requested();
  try {
    Output.Finish(Replaced, [=] { return !Stopped && TInterrupt::Requested(); });
  } catch (const EAbort& Abort) {
    Report.Cancelled = Abort.what();
    if (!Replaced.empty()) Report.Notes.emplace_back("the sections that were to be replaced stand beside the new ones");
  } catch (const std::exception& Error) {
    Report.Error = ExceptionClassName(Error) + ":" + Error.what();
  }
  return Finish(Session, Report, !WritesStandardOutput());
}

}  // namespace

std::unique_ptr<TCommand> MakeExportTable() { return std::make_unique<TExportTable>(); }

}  // namespace velkrund
