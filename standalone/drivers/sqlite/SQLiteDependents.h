#pragma once

#include <set>
#include <string>
#include <vector>

#include "standalone/drivers/sqlite/SQLiteHandle.h"

namespace velkrund {

/// The views and triggers that name a table or view, by themselves or by way of other views; and which of them work:
/// the engine keeps their texts unread until a statement needs them. Those of the connection alone are among them.
/// Raises EDatabaseError.
class TSQLiteDependents {
 public:
  /// Asks for those of the table or view as it is now. Database: borrowed.
  TSQLiteDependents(const TSQLiteHandle& Database, const std::string& Name);

  struct TChanges {
    std::vector<std::string> Broken;     // "view 'V': no such column: A"; "trigger 'A' or trigger 'B': ..."
    std::vector<std::string> NotBefore;  // "view 'V'": did not work before, and does not now
  };
  /// Asks them again. GoneFields: those that the table or view has no longer, folded.
  TChanges Changes(const std::set<std::string>& GoneFields) const;

 private:
  /// What the engine was asked, and why it does not work; empty: it does. Strictly: a name between quotes is no text,
  /// which the engine otherwise takes it for when there is no such column, without a word.
  struct TState {
    std::string Asked, Error, StrictError;
  };
  struct TDependent {
    bool IsView, IsTemporary;
    std::string Name, Table, Text;  // Table: of a trigger
    std::set<std::string> Words;    // all names in the text, folded
    std::set<std::string> Quoted;   // those between quotes that could be texts
    TState Before = {};

    std::string Shown() const;
  };

  void Read();
  void KeepThoseOf(const std::string& Name);
  TState StateOf(const TDependent& Dependent) const;
  static std::string ReasonNow(const TDependent& Dependent, const TState& Now, const std::set<std::string>& GoneFields);
  std::string Statement(const TDependent& Dependent, std::string& Error) const;
  std::string Update(const TDependent& Trigger, const std::string& Table, std::string& Error) const;

  const TSQLiteHandle FDatabase;
  std::vector<TDependent> FDependents;
};

}  // namespace velkrund
