#include <algorithm>

#include "hosts/cli/Errors.h"
#include "hosts/cli/RunJob.h"
#include "hosts/cli/line/Commands.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/sections/CheckFiles.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

namespace {

const TCommandTexts FileCheckTexts = {
    "file",
    "check",
    "reads every section of export/import files as an import would, and writes nothing",
    "FILE...",
    "Takes no lock and needs no database. What a section says is checked as far as that is possible without the table "
    "that it is for: every value is one that some column could take, whatever the configuration says about values that "
    "cannot be read. After a faulty section the next one is checked; after a faulty header there is no next one.\n\n"
    "What looks like a section and is read by nobody is a fault: its lines end with a line feed alone, or its "
    "\"[SECTION]\" line is damaged or holds something else too; file repair mends the former. An end that an export "
    "has not finished is one too, since an import of the whole file would lack it. Sections of the same "
    "type and name, and other lines "
    "outside of sections that begin as markers do, are named but are no faults.",
    {{"file check orders.eif", "a line for each section, errors to standard error"},
     {"file check *.eif --json", "one document about all of them"},
     {"file check - < shop.eif", "from standard input"}}};

std::string CheckedText(TItemState State) {
  switch (State) {
    case TItemState::Done:
      return LText("M_Velkrund_Cli_CheckedOk").Local();
    case TItemState::Failed:
      return LText("M_Velkrund_Cli_CheckedFaulty").Local();
    case TItemState::Cancelled:
      return LText("M_Velkrund_Jobs_Cancelled").Local();
    default:
      return LText("M_Velkrund_Cli_CheckedNotReached").Local();
  }
}

/// Says what a check finds, as it comes.
class TCheckShown final : public TCheckListener {
 public:
  explicit TCheckShown(const TSession& Session) : FSession(Session) {}

  void SectionChecked(const TCheckedFile& File, const TCheckedSection& Section) override;
  void FileChecked(const TCheckedFile& File) override;

 private:
  /// The result for people; programs get it all at the end.
  void Say(const std::string& Line) const {
    if (!FSession.Json()) FSession.Console.Result(Printable(Line) + "\n");
  }

  const TSession& FSession;
};

void TCheckShown::SectionChecked(const TCheckedFile& File, const TCheckedSection& Section) {
  const TItem& Item = Section.Item;
  const std::string Where = File.Text + ": " + Section.Text.Local();
  const bool IsDone = Item.State == TItemState::Done;
  std::vector<std::string> Facts;
  const std::int64_t Rows = Item.Counts.RowCount;
  if (Section.HasRows)
    Facts.push_back(IsDone ? RowsText(Rows) : LCounted("M_Velkrund_Cli_AfterRows", Rows, Rows).Local());
  if (IsDone) Facts.push_back(ByteText(static_cast<double>(Item.Bytes)));
  const auto Add = [&](const char* Key, std::int64_t Count) {
    if (Count > 0) Facts.push_back(LCounted(Key, Count, Count).Local());
  };
  Add("M_Velkrund_Cli_MalformedCharacters", Item.Losses.Malformed);
  Add("M_Velkrund_Cli_UnrepresentableCharacters", Item.Losses.Unrepresentable);
  Say(Where + ": " + CheckedText(Item.State) + (Facts.empty() ? "" : ", " + Joined(Facts)));
  if (Item.Error) SayError(FSession, *Item.Error);
}

void TCheckShown::FileChecked(const TCheckedFile& File) {
  for (const std::string& Hidden : File.Hidden) {
    Say(LText("M_Velkrund_Cli_SectionNotRead", File.Text).Local());
    FSession.Say(Format("velkrund: %s: %s%s", File.Text, Hidden,
                        File.HasLineFeeds ? "; " + LineFeedRemedy(File.Text) : std::string()));
  }
  for (const TLText& Note : File.Notes) FSession.Console.Message(LText("M_Velkrund_Cli_Note", File.Text, Note).Local());
  if (File.Error) {
    const auto Count = static_cast<std::int64_t>(File.Sections.size());
    Say(File.Text + ": " +
        (!File.IsOpen       ? LText("M_Velkrund_Cli_NotOpened")
         : File.IsForeign() ? LText("M_Velkrund_Cli_NoSection")
                            : LCounted("M_Velkrund_Cli_FaultyBehind", Count, Count))
            .Local());
    SayError(FSession, *File.Error);
  }
}

class TFileCheck final : public TCommand {
 public:
  const TCommandTexts& Texts() const override { return FileCheckTexts; }
  std::vector<TOptionGroup> Options() override {
    return {{"Arguments", {Required(List("FILE", "FILE", "a file; - is standard input", FJob.FileNames))}},
            {"Options", {TSharedOptions::AllowLossOption(FJob.Policies)}},
            Shared.General()};
  }
  void CheckOptions() override { FJob.CheckSettings(); }
  bool ReadsStandardInput() const override {
    return std::find(FJob.FileNames.begin(), FJob.FileNames.end(), "-") != FJob.FileNames.end();
  }
  int Run(TSession& Session) override;

 private:
  TJobCheckFilesInterface FInterface;
  TJobCheckFiles& FJob = FInterface.Job();
};

int TFileCheck::Run(TSession& Session) {
  TCheckShown Shown(Session);
  FJob.CheckListener = &Shown;
  RunJob(Session, FInterface);
  const TJobCheckFiles::TTotals& Totals = FJob.Totals();
  std::string Text = LText("M_Velkrund_Cli_Checked", SectionsText(Totals.Sections), RowsText(Totals.Rows),
                           ByteText(static_cast<double>(Totals.Bytes)), DurationText(Totals.Seconds),
                           LCounted("M_Velkrund_Cli_Faults", Totals.Faults, Totals.Faults))
                         .Local();
  if (Totals.Cancelled) Text += "; " + LText("M_Velkrund_Jobs_Cancelled").Local();
  Session.Say(Text);
  return static_cast<int>(FJob.End());
}

}  // namespace

std::unique_ptr<TCommand> MakeFileCheck() { return std::make_unique<TFileCheck>(); }

}  // namespace velkrund
