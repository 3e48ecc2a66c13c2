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
    "\"[SECTION]\" line is damaged or holds something else too; file repair mends the former. Sections of the same "
    "type and name, and other lines "
    "outside of sections that begin as markers do, are named but are no faults.",
    {{"file check orders.eif", "a line for each section, errors to standard error"},
     {"file check *.eif --json", "one document about all of them"},
     {"file check - < shop.eif", "from standard input"}}};

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
  const std::string Where = File.Text + ": " + Section.Text;
  const bool IsDone = Item.State == TItemState::Done;
  std::vector<std::string> Facts;
  if (Section.HasRows) Facts.push_back((IsDone ? "" : "after ") + Counted(Item.Counts.RowCount, "row"));
  if (IsDone) Facts.push_back(ByteText(static_cast<double>(Item.Bytes)));
  if (Item.Losses.Malformed) Facts.push_back(Counted(Item.Losses.Malformed, "malformed character"));
  if (Item.Losses.Unrepresentable)
    Facts.push_back(Counted(Item.Losses.Unrepresentable, "character") + " that the code page lacks");
  Say(Where + ": " + CheckText(Item.State) + (Facts.empty() ? "" : ", " + Joined(Facts)));
  if (Item.Error) SayError(FSession, *Item.Error);
}

void TCheckShown::FileChecked(const TCheckedFile& File) {
  for (const std::string& Hidden : File.Hidden) {
    Say(File.Text + ": a section that is not read");
    FSession.Say(Format("velkrund: %s: %s%s", File.Text, Hidden,
                        File.HasLineFeeds ? "; " + LineFeedRemedy(File.Text) : std::string()));
  }
  for (const std::string& Note : File.Notes) FSession.Console.Message(Format("%s: note: %s", File.Text, Note));
  if (File.Error) {
    const auto Count = static_cast<std::int64_t>(File.Sections.size());
    Say(File.Text + ": " +
        (!File.IsOpen       ? "cannot be opened"
         : File.IsForeign() ? "no section"
                            : "faulty behind " + Counted(Count, "section")));
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
  Session.Say(Format("checked %s: %s, %s, %s; %s%s", Counted(Totals.Sections, "section"), Counted(Totals.Rows, "row"),
                     ByteText(static_cast<double>(Totals.Bytes)), DurationText(Totals.Seconds),
                     Counted(Totals.Faults, "fault"), Totals.Cancelled ? "; cancelled" : ""));
  return static_cast<int>(FJob.End());
}

}  // namespace

std::unique_ptr<TCommand> MakeFileCheck() { return std::make_unique<TFileCheck>(); }

}  // namespace velkrund
