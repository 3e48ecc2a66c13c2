#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jobs/run/Job.h"

namespace velkrund {

/// Finds tables, and fields of theirs, that a person names. Errors say what was most likely meant.
class TTableSearch {
 public:
  /// Manager: borrowed. DatabaseText: for messages.
  TTableSearch(TStandaloneManager& Manager, std::string DatabaseName, std::string DatabaseText)
      : FManager(Manager), FDatabaseName(std::move(DatabaseName)), FDatabaseText(std::move(DatabaseText)) {}

  /// Null when there is none of that name.
  std::unique_ptr<TTable> Find(const std::string& Name, bool ReadWrite) const {
    return FManager.GetUserTable(Name, FDatabaseName, ReadWrite);
  }
  /// For: what it is wanted for, as " for section 3 'ORDERS' (TableData)", or nothing.
  [[noreturn]] void Missing(const std::string& Name, const std::string& For = {}) const;
  /// Raises an error where a table is an index of words, which has no rows of its own to save, and takes none.
  void RefuseIndex(const TTableInfo& Table) const;
  /// Raises an error unless the table has the field.
  void RequireField(TTable& Table, const std::string& Field) const;

 private:
  TStandaloneManager& FManager;
  const std::string FDatabaseName, FDatabaseText;
};

/// The names of all tables of a database that have rows of their own. Notes: says what is none, and that there are
/// none.
std::vector<std::string> TablesWithRows(TStandaloneManager& Manager, const std::string& DatabaseName,
                                        std::vector<TLText>& Notes);

}  // namespace velkrund
