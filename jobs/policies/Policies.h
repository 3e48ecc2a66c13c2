#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/database/LText.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

/// What becomes of something that is there already, when a run brings the same.
enum class TExisting : int {
  Ask = 0,
  Skip = 1,     // it stays as it is, and what the run brings is left out
  Replace = 2,  // it goes first
  Add = 3,      // both are kept: rows are appended, a section stands beside the other, a structure is updated
};
/// What a run over several things does after one of them failed.
enum class TOnError : int { Ask = 0, Continue = 1, Stop = 2 };
/// Fields of a file that the table lacks.
enum class TMissingFields : int { Skip = 0, Refuse = 1 };
/// Several sections for one table that is to be replaced: the rows of one could be meant to take the place of
/// another's.
enum class TRepeatedTables : int { Refuse = 0, Join = 1 };
/// Unfinished sections at the end of a file, all of which is to be loaded.
enum class TUnfinishedPolicy : int { Refuse = 0, Skip = 1 };
/// How much of an import stays together.
enum class TCommit : int {
  Run = 0,   // everything or nothing
  Each = 1,  // tables that hang together, and every other section by itself
};
/// Those on the tables that are loaded.
enum class TTriggers : int { Fire = 0, Off = 1 };
/// Indexes of the tables that are loaded which are there for queries alone, neither unique nor a key.
enum class TIndexPolicy : int {
  Auto = 0,     // made again behind the rows where many come into an empty table
  Keep = 1,     // every row goes into them as it comes
  Rebuild = 2,  // made again behind the rows wherever that can be done
};
/// Rows of tables that are loaded which refer to rows that are nowhere.
enum class TBrokenReferencePolicy : int { Refuse = 0, Allow = 1 };
/// Names that some databases do not take, of tables and views that are to be made.
enum class TLongNamePolicy : int {
  Ask = 0,
  Keep = 1,
  Cancel = 2,  // what has such a name is not made
};
/// What is to be taken and is not there.
enum class TMissingSourcePolicy : int {
  Ask = 0,
  Skip = 1,  // it is left out
  Stop = 2,
};

/// Tables of a file that the database lacks, and structures describe.
enum class TCreateTables : int { Ask = 0, Yes = 1, No = 2 };

/// Names of tables that are made, and of what belongs to them.
enum class TMadeNames : int { Keep = 0, Lower = 1 };

/// By which type a column is described where its cells may be of another.
enum class TColumnTypes : int { Declared = 0, Scanned = 1 };

/// How the rows of a table stand in a file.
enum class TRowOrder : int {
  Key = 0,  // by the primary key or a unique one: the same rows give the same text
  Any = 1,  // as the engine has them, which is quickest
};

/// Everything that a person would be asked about or has to allow, decided beforehand: one record for all jobs. What is
/// left at Ask is asked, through the installed window system: about structures as each one comes, about all else before
/// anything is changed. Where nobody can be asked it is an EPolicyUnanswered, before anything is changed.
struct TPolicies {
  TExisting ExistingRows = TExisting::Ask;
  TExisting ExistingSections = TExisting::Ask;
  TExisting ExistingStructures = TExisting::Ask;
  TExisting ExistingTexts = TExisting::Ask;    // localized texts, and what languages are called: Skip or Replace
  TExisting ExistingFiles = TExisting::Ask;    // that are made afresh: Skip or Replace
  TExisting ExistingObjects = TExisting::Ask;  // tables, views and others that are made anew: Skip or Replace
  TOnError OnError = TOnError::Ask;
  TMissingFields MissingFields = TMissingFields::Refuse;  // skipped ones are named in the report
  TRepeatedTables RepeatedTables = TRepeatedTables::Refuse;
  TUnfinishedPolicy Unfinished = TUnfinishedPolicy::Refuse;  // skipped ones are named in the report
  TCommit Commit = TCommit::Run;
  TTriggers Triggers = TTriggers::Fire;
  TIndexPolicy TableIndexes = TIndexPolicy::Auto;
  TBrokenReferencePolicy BrokenReferences = TBrokenReferencePolicy::Refuse;  // counted where they are allowed
  TCreateTables CreateTables = TCreateTables::Ask;
  TMadeNames Names = TMadeNames::Keep;
  /// What may be left out where the engine has no words for it: kinds of TScriptGap, "checks". Otherwise an error.
  std::vector<std::string> AllowMissing = {};
  TColumnTypes Columns = TColumnTypes::Declared;
  TLongNamePolicy LongNames = TLongNamePolicy::Keep;                 // counted: this engine takes them
  TMissingSourcePolicy MissingSources = TMissingSourcePolicy::Stop;  // skipped ones are named in the report
  bool AllowLoss = false;  // go on where characters or values cannot be kept; counted. Otherwise an error
  bool Lenient = false;    // values that cannot be read become NULL; counted. Otherwise an error
  bool DryRun = false;     // show what would be done, and change nothing
  bool Yes = false;        // to what has no policy of its own: several sections removed at once, a structure dropped
};

/// The policies by which something can be decided.
enum class TPolicy {
  ExistingRows,
  ExistingSections,
  ExistingStructures,
  ExistingObjects,
  ExistingTexts,
  ExistingFiles,
  OnError,
  CreateTables,
  LongNames,
  MissingSources,
  QueryTarget,  // the table that the rows of a query go into
  Yes
};

/// A decision that a policy leaves to a person, where there is none. Hosts say in their own words how to decide; what()
/// says it by the names of properties.
class EPolicyUnanswered final : public EQuestionUnanswered {
 public:
  /// Stakes: a sentence that says what is at stake: "Table 'ORDERS' has 3 rows."
  EPolicyUnanswered(TPolicy Policy, const TLText& Stakes);
  const char* ClassName() const noexcept override { return "EPolicyUnanswered"; }

  TPolicy Policy() const { return FPolicy; }
  const TLText& Stakes() const { return FStakes; }

 private:
  TPolicy FPolicy;
  TLText FStakes;
};

/// Whether an error is that something has no words, all of which may be missing.
bool MayBeMissing(const TPolicies& Policies, const TErrorInfo& Error);

/// How to decide by properties: "Set ExistingRows to replace or append".
std::string_view Remedy(TPolicy Policy);

/// The name of a property as it stands in the text of an ESettingsError, where hosts find it.
std::string Setting(std::string_view Property);

/// Settings of a job that contradict each other, or what they meet. The message names them by their properties; hosts
/// can put what people set there in their place.
class ESettingsError final : public Exception {
 public:
  /// Text: Setting("TableName") + " names one table, but 2 sections are to be loaded".
  explicit ESettingsError(const std::string& Text);
  const char* ClassName() const noexcept override { return "ESettingsError"; }
  /// The message with a host's own names.
  std::string Worded(const std::function<std::string(std::string_view Property)>& NameOf) const;

 private:
  std::string FText;
};

}  // namespace velkrund
