#pragma once

#include <string>

#include "velkrund/platform/dictionary/ObjectDescriptions.h"

namespace velkrund {

/// The structures of one database as descriptions of its objects, in the installed DSPContainer. Names are found
/// ignoring case; a description that has another name than its structure gets that of the structure, as a copy may
/// have. Reading raises EDatabaseError where there is no structure, and EDSPError for one that describes no such
/// object.
class TDescribedStructures {
 public:
  explicit TDescribedStructures(std::string DatabaseName) : FDatabaseName(std::move(DatabaseName)) {}

  TDicTableDescription Table(const std::string& Name) const;
  TDicViewDescription View(const std::string& Name) const;
  TDicGeneratorDescription Generator(const std::string& Name) const;
  /// Selects: of those that return rows.
  TDicProcedureDescription Procedure(const std::string& Name, bool Selects) const;

  // Each in place of the tree that the structure of that name has; one that does not exist is made.
  void Store(const std::string& Name, const TDicTableDescription& Table) const;
  void Store(const std::string& Name, const TDicViewDescription& View) const;
  void Store(const std::string& Name, const TDicGeneratorDescription& Generator) const;
  void Store(const std::string& Name, const TDicProcedureDescription& Procedure) const;

 private:
  const std::string FDatabaseName;
};

}  // namespace velkrund
