#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jobs/report/Document.h"
#include "jobs/report/StructureId.h"
#include "velkrund/dictionary/RecordData.h"
#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/LineReader.h"

namespace velkrund {

/// How a run ended. The numbers are those of programs that run jobs, and stand in documents.
enum class TEnd : int { Done = 0, Failed = 1, WrongSettings = 2, Cancelled = 3 };

enum class TItemState {
  Done,
  LeftOut,  // because of an answer, given beforehand or by a person
  Failed,
  Cancelled,
  NotReached,  // the run ended before
  TakenBack,   // done, and undone when the rest failed
};

/// "done", "left-out" ...: words for programs.
std::string_view StateText(TItemState State);

/// A generator of a section, and where it stood.
struct TGeneratorState {
  std::string Name;
  std::optional<std::int64_t> Value = {};
};

/// Localized texts of one section of the localization store.
struct TTextCounts {
  std::string SectionID;
  std::string Language = {};        // of a section in one language alone; empty: of several
  std::int64_t Strings = 0;         // names
  std::int64_t Texts = 0;           // moved, or deleted
  std::int64_t LeftAlone = 0;       // were there already, and stay because of an answer
  bool IsOneString = false;         // of the section, Source is its ID
  std::int64_t OtherLanguages = 0;  // of the file, in languages that were not asked for
};

/// What became of one section, or of one thing that is copied or deleted without a file.
struct TItem {
  std::string Section = {};  // empty: the file as a whole
  std::string Table = {};    // empty: the section is for something else; only tables have rows
  std::string File = {};
  std::string Source = {};  // what is copied, or deleted; empty: the item is a section
  TItemState State = TItemState::NotReached;
  TLText Note = {};  // why it was left out
  std::optional<TErrorFacts> Error = {};
  std::int64_t Bytes = 0;  // of the section's body
  double Seconds = 0;
  TTableDataReport Counts = {};
  std::int64_t RowsUpdated = 0;  // of a copy
  TTextLosses Losses = {};
  std::optional<TStructureId> Structure = {};
  std::optional<TGeneratorState> Generator = {};
  std::optional<TTextCounts> Resource = {};
  std::optional<std::string> Language = {};  // whose names it holds
  bool IsQuery = false;                      // the result of one

  /// Of the section.
  TSectionRole Role() const;
  /// What progress is about.
  const std::string& Subject() const { return Table.empty() ? Section : Table; }
  std::optional<std::int64_t> Rows() const {
    return Table.empty() && !IsQuery ? std::nullopt : std::optional<std::int64_t>(Counts.RowCount);
  }
};

TDocument ItemDocument(const TItem& Item);

/// How a run was cancelled, in words: those of the error that ended it.
TLText CancelText(std::string_view Message);

/// Of the sections that were done.
struct TTotals {
  std::int64_t Sections = 0, Bytes = 0;
  std::optional<std::int64_t> Rows;  // nothing without a table
  std::int64_t NullsMade = 0;
  std::int64_t ValuesChanged = 0;
  TTextLosses Losses = {};
  double Seconds = 0;
};

/// What became of a run over sections: the whole of it, for texts, documents and hosts.
struct TOutcome {
  TLText Done;  // "exported"
  std::string Database;
  std::vector<std::string> Files;  // as messages name them
  std::vector<TItem> Items = {};
  std::vector<TLText> Notes = {};         // about the run as a whole
  std::optional<TErrorFacts> Error = {};  // what ended the run besides the items
  TLText Cancelled = {};                  // the same
  std::exception_ptr FirstError = {};     // of the run or of an item

  /// Enters an error of an item, which fails, or of the run.
  void Fail(TItem& Item, const std::exception_ptr& Reason);
  void Fail(const std::exception_ptr& Reason);

  /// Enters that the run was cancelled, How in words, and that something stays where something was finished.
  void Cancel(TLText How);

  /// Whether the items are no sections, but what is copied, or deleted, without a file between.
  bool Copies() const { return !Items.empty() && !Items.front().Source.empty(); }
  bool Any(TItemState State) const { return Count(State) > 0; }
  int Count(TItemState State) const;
  TEnd End() const;
  TTotals Totals() const;
  void Describe(TDocument& Document) const;
};

}  // namespace velkrund
