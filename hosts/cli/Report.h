#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/cli/Structures.h"
#include "jobs/report/Json.h"
#include "velkrund/dictionary/TableData.h"
#include "velkrund/platform/ormtools/LineReader.h"

namespace velkrund {

enum class TItemState {
  Done,
  LeftOut,  // because of an answer, given by option or by a person
  Failed,
  Cancelled,
  NotReached,  // the run ended before
  TakenBack,   // done, and undone when the rest failed
};

/// What became of one section.
struct TReportItem {
  std::string Section = {};  // empty: the file as a whole
  std::string Table = {};    // empty: the section is for something else; only tables have rows
  std::string File = {};     // empty: the run's only one
  TItemState State = TItemState::NotReached;
  std::string Note = {};   // why it was left out, or the error
  std::int64_t Bytes = 0;  // of the section's body
  double Seconds = 0;
  TTableDataReport Counts = {};
  TTextLosses Losses = {};
  std::optional<TStructureId> Structure = {};

  /// What progress is about.
  const std::string& Subject() const { return Table.empty() ? Section : Table; }
};

/// The end report of a run over sections: lines for people, a document for programs, and the exit code.
struct TReport {
  std::string Command;  // "export table"
  std::string Done;     // "exported"
  std::string Database, File;
  std::vector<TReportItem> Items = {};
  std::vector<std::string> Notes = {};  // about the run as a whole
  std::string Error = {};               // what ended the run besides the items
  std::string Cancelled = {};           // the same

  int ExitCode() const;
  std::string Text() const;
  TJson Json() const;
};

}  // namespace velkrund
