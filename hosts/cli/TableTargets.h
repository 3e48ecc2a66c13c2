#pragma once

#include <set>
#include <string>
#include <vector>

#include "hosts/cli/Session.h"
#include "velkrund/platform/database/Tables.h"

namespace velkrund {

/// What commands that load tables let one say about them.
struct TTableOptions {
  bool Replace = false, Append = false, Lenient = false, Create = false, SkipMissing = true;

  std::vector<TOption> Options();
  void ApplyTo(TApplicationOptions& Application) const;
};

/// A table that a section is to be loaded into.
struct TTableTarget {
  std::string Table;      // the physical name
  std::int64_t Rows = 0;  // that are there; counted only where it matters
  bool Append = false;    // keep them
  bool LeaveOut = false;

  /// Why it is left out.
  std::string Note() const;
};

/// The targets of a run. Of several for one table the later ones join the rows that were loaded, or are left out
/// together.
class TTableTargets {
 public:
  /// Options: borrowed.
  explicit TTableTargets(const TTableOptions& Options) : FOptions(Options) {}

  /// The number of the target, from 0.
  std::size_t Add(TTable& Table);
  const TTableTarget& operator[](std::size_t Number) const { return FTargets[Number]; }
  /// The tables that are not left out, in the order of the targets, some more than once.
  std::vector<std::string> Loaded() const;
  /// Whether the rows of a table are to be deleted before it is loaded.
  bool Empties(const std::string& Table) const;
  /// Whether they still are to be deleted.
  bool StillEmpties(const std::string& Table) const { return Empties(Table) && !FLoaded.contains(Table); }
  /// The table was loaded or emptied: what comes for it is added from now on.
  void SetLoaded(const std::string& Table) { FLoaded.insert(Table); }
  /// Decides about rows that are there, before anything is changed: by option, else by asking. Raises
  /// EQuestionUnanswered that names all tables at stake when nobody can be asked, and EAbort on Cancel.
  void Settle(const TSession& Session);

 private:
  const TTableOptions& FOptions;
  std::vector<TTableTarget> FTargets;
  std::set<std::string> FLoaded;  // tables
};

}  // namespace velkrund
