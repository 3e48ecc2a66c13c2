#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hosts/cli/Report.h"
#include "hosts/cli/Session.h"
#include "velkrund/operations/ImportExportInterfaces.h"

namespace velkrund {

/// What commands that add sections to a file let one say about that.
struct TExportOptions {
  std::string Output, Section;
  TExportReleaseVersion Release = TExportReleaseVersion::rv20;
  std::optional<TKvEncoding> Encoding;
  TOverwrite Overwrite = TOverwrite::Ask;
  bool Add = false;

  TOption OutputOption();
  TOption SectionOption(const std::string& Default);
  /// What: that the sections are made from, "table".
  std::vector<TOption> Others(TSharedOptions& Shared, const std::string& What);
  /// Raises EUsage. Several: whether there are to be several sections.
  void Check(bool Several, const std::string& WhatInPlural) const;
  bool ToStandardOutput() const { return Output == "-"; }
};

/// How a command makes its sections.
struct TSectionExport {
  TExportUtilOperationInterface& Interface;
  TSectionRole Role;
  std::string Unit;                                                // of its progress, in the plural
  std::function<void(std::size_t Item)> Prepare;                   // the interface, for that item of the report
  std::function<void(TReportItem& Item)> AfterRun = [](auto&) {};  // takes over what the operation counted
};

/// Adds a section for every item of the report, whose name it has, to the file that is named in Options; sections of
/// the same name and role that are there are asked about before anything is written, and taken out at the end when they
/// are replaced. Prints the report and returns the exit code.
int ExportSections(const TSession& Session, const TExportOptions& Options, const TSectionExport& Export,
                   TReport& Report);

}  // namespace velkrund
