#include "hosts/cli/SectionExport.h"

#include <algorithm>
#include <map>

#include "hosts/cli/Batch.h"
#include "hosts/cli/Interrupt.h"
#include "hosts/cli/line/Command.h"
#include "hosts/cli/render/Texts.h"
#include "jobs/files/OutputFile.h"
#include "standalone/databases/ReadTransaction.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"

namespace velkrund {

namespace {

/// What is there already under the name of a new section, and what becomes of it.
struct TStep {
  std::vector<int> Existing = {};
  bool Replace = false;
};

class TRun {
 public:
  TRun(const TSession& Session, const TExportOptions& Options, const TSectionExport& Export, TReport& Report)
      : FSession(Session),
        FOptions(Options),
        FExport(Export),
        FReport(Report),
        FOutput(Session.Files(), Options.Output,
                [&Session](const std::string& Text) { Session.Console.Message("velkrund: " + Text); }),
        FSteps(Report.Items.size()) {}

  void Settle();
  void Export();
  void Finish();

 private:
  void FindExisting();
  void SetUp();

  const TSession& FSession;
  const TExportOptions& FOptions;
  const TSectionExport& FExport;
  TReport& FReport;
  TOutputFile FOutput;
  std::vector<TStep> FSteps;   // one for every item
  std::vector<int> FReplaced;  // sections that new ones took the place of
};

void TRun::FindExisting() {
  std::map<std::string, std::vector<int>> Present;  // by name in lower case
  const TEISectionList& Sections = FOutput.File().Sections();
  for (int Index = 0; Index < Sections.Count(); ++Index)
    if (Sections[Index].ObjectClass.Role() == FExport.Role) Present[LowerCase(Sections[Index].Name())].push_back(Index);
  for (std::size_t I = 0; I < FSteps.size(); ++I) {
    const auto Found = Present.find(LowerCase(FReport.Items[I].Section));
    if (Found != Present.end()) FSteps[I].Existing = Found->second;
  }
}

/// Decides about sections that are there already, before anything is written.
void TRun::Settle() {
  FindExisting();
  std::vector<std::string> Met;
  for (std::size_t I = 0; I < FSteps.size(); ++I)
    if (!FSteps[I].Existing.empty()) Met.push_back("the section '" + FReport.Items[I].Section + "'");
  const std::string Options = "--overwrite yes to replace, --overwrite no to leave it out, or --add to keep both";
  const bool Ask = FOptions.Overwrite == TOverwrite::Ask && !FOptions.Add;
  if (Ask && !Met.empty() && !FSession.Answers.CanAsk())
    FSession.Answers.Ask({Format("Already in '%s': %s.", FOutput.Name(), JoinedInShort(std::move(Met))), {}, Options});
  TRepeatedQuestion Question(FSession.Answers);
  for (std::size_t I = 0; I < FSteps.size(); ++I) {
    if (FSteps[I].Existing.empty() || FOptions.Add) continue;
    TReportItem& Item = FReport.Items[I];
    FSteps[I].Replace = FOptions.Overwrite == TOverwrite::Yes;
    if (Ask)
      FSteps[I].Replace =
          Question.Ask({Format("The section '%s' is already in '%s'. Replace it?", Item.Section, FOutput.Name()),
                        {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                        Options}) == TAnswer::Yes;
    if (FSteps[I].Replace) continue;
    Item.State = TItemState::LeftOut;
    Item.Note = "the section is already there";
  }
}

void TRun::SetUp() {
  TExportUtilOperationInterface& Interface = FExport.Interface;
  Interface.SetDatabaseName(FSession.Database());
  Interface.SetTarget(&FOutput.File());
  Interface.SetReleaseVersion(FOptions.Release);
  Interface.SetEncoding(FOptions.Encoding.value_or(
      FOptions.Release == TExportReleaseVersion::rv20 ? TKvEncoding::Utf8 : TKvEncoding::Ansi));
}

void TRun::Export() {
  SetUp();
  TBatch Batch(FSession, FOutput.File(), FReport);
  // Rows of one section refer to rows of another.
  TReadTransaction Moment(FSession.Manager().Databases(), FSession.Database());
  std::vector<TReportItem>& Items = FReport.Items;
  for (std::size_t I = 0; I < Items.size(); ++I) {
    if (Items[I].State == TItemState::LeftOut) continue;
    FExport.Interface.SetSectionName(Items[I].Section);
    FExport.Prepare(I);
    const bool More = std::any_of(Items.begin() + static_cast<std::ptrdiff_t>(I) + 1, Items.end(),
                                  [](const TReportItem& Later) { return Later.State != TItemState::LeftOut; });
    const bool GoOn = Batch.Run(Items[I], FExport.Interface, {FExport.Unit}, More);
    FExport.AfterRun(Items[I]);
    if (Items[I].State == TItemState::Done) {
      const TEISectionList& Sections = FOutput.File().Sections();
      Items[I].Bytes = Sections[Sections.Count() - 1].DataSize;
      if (FSteps[I].Replace) FReplaced.insert(FReplaced.end(), FSteps[I].Existing.begin(), FSteps[I].Existing.end());
    }
    if (!GoOn) break;
    if (Items[I].State != TItemState::Failed) continue;
    Moment.Renew();
    FReport.Notes.push_back(Format("what follows '%s' is of a later moment than what stands before", Items[I].Section));
  }
}

void TRun::Finish() {
  // A wish to stop that came before has been obeyed; what is finished is put right now.
  const bool Stopped = TInterrupt::Requested();
  try {
    FOutput.Finish(FReplaced, [=] { return !Stopped && TInterrupt::Requested(); });
  } catch (const EAbort& Abort) {
    FReport.Cancelled = Abort.what();
    if (!FReplaced.empty())
      FReport.Notes.emplace_back("the sections that were to be replaced stand beside the new ones");
  } catch (const std::exception& Error) {
    FReport.Error = ExceptionClassName(Error) + ":" + Error.what();
  }
}

}  // namespace

TOption TExportOptions::OutputOption() {
  return Required(Text("-o,--output", "FILE", "the file to add to; - is standard output", Output));
}

TOption TExportOptions::SectionOption(const std::string& Default) {
  return Text("--section", "NAME", Format("the section's name (default: %s)", Default), Section);
}

std::vector<TOption> TExportOptions::Others(TSharedOptions& Shared, const std::string& What) {
  return {
      Choice<std::optional<TKvEncoding>>("--encoding", "of the sections (default: utf8, with rv17 ansi)",
                                         {{"utf8", TKvEncoding::Utf8}, {"ansi", TKvEncoding::Ansi}}, Encoding),
      Choice<TExportReleaseVersion>("--release", "whose readers the file has to suit (default: rv20)",
                                    {{"rv20", TExportReleaseVersion::rv20}, {"rv17", TExportReleaseVersion::rv17}},
                                    Release),
      Choice<TOverwrite>("--overwrite",
                         Format("a section of that name that is there: replace it, or leave it and skip the %s "
                                "(default: ask)",
                                What),
                         {{"ask", TOverwrite::Ask}, {"yes", TOverwrite::Yes}, {"no", TOverwrite::No}}, Overwrite),
      NotWith(Switch("--add", "keep a section of that name that is there beside the new one", Add), {"--overwrite"}),
      Shared.AllowLossOption(),
      Shared.OnErrorOption()};
}

void TExportOptions::Check(bool Several, const std::string& WhatInPlural) const {
  if (Encoding == TKvEncoding::Utf8 && Release == TExportReleaseVersion::rv17)
    throw EUsage("--encoding utf8 does not go with --release rv17, whose readers know ansi only");
  if (Several && !Section.empty())
    throw EUsage(Format("--section names one section, but several %s are exported", WhatInPlural));
}

int ExportSections(const TSession& Session, const TExportOptions& Options, const TSectionExport& Export,
                   TReport& Report) {
  {
    TRun Run(Session, Options, Export, Report);
    Run.Settle();
    Run.Export();
    Run.Finish();
  }
  return Finish(Session, Report, !Options.ToStandardOutput());
}

}  // namespace velkrund
