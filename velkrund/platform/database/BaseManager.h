#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velkrund {

/// Statements on whole tables of one SQL database. Tables go by their physical names. In the caller's transaction, or
/// one of its own. Raises EDatabaseError.
class TODBCBaseManager {
 public:
  TODBCBaseManager() = default;
  TODBCBaseManager(const TODBCBaseManager&) = delete;
  TODBCBaseManager& operator=(const TODBCBaseManager&) = delete;
  virtual ~TODBCBaseManager() = default;

  /// A field of one table that goes into one of the other.
  using TFieldPairs = std::vector<std::pair<std::string, std::string>>;

  /// Adds the rows of Source to Target, each field into the one of its name, in any case; computed fields of Target are
  /// computed, other fields that Source lacks get their default. Replace: the rows of Target go first. Returns how many
  /// rows were copied. An error for a field of Source that Target lacks.
  virtual std::int64_t CopyTableData(const std::string& Source, const std::string& Target, bool Replace) = 0;
  /// Adds the rows with these fields alone, by one statement of the engine. SourceDatabase: where Source is. Nothing,
  /// and nothing was done, where the engine does not reach it, or could make another value of one than a copy through
  /// records makes, or refuses. MovesAutoSequence: the
  /// automatic numbering of Target stands behind the highest key afterwards; otherwise it is the affair of the engine.
  virtual std::optional<std::int64_t> CopyFields(const std::string& SourceDatabase, const std::string& Source,
                                                 const std::string& Target, const TFieldPairs& Pairs,
                                                 bool MovesAutoSequence) = 0;
  virtual void DropTable(const std::string& TableName) = 0;
};

}  // namespace velkrund
