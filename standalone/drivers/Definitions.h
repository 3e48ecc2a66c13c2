#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "standalone/drivers/Schema.h"
#include "velkrund/platform/dictionary/ObjectDescriptions.h"

namespace velkrund {

enum class TDefinedKind { Table, Generator, View, ExecProcedure, SelectProcedure };

/// An object of a database that can be described.
struct TDefinedObject {
  TDefinedKind Kind;
  TTableInfo Table;         // name and schema, of all kinds of objects; the kind of a table
  std::string PartOf = {};  // the full name of the table that this one holds rows of, or indexes; empty: of none
};

struct TDescribeOptions {
  /// Of an engine whose cells may be of another kind than their column: a column's type is the narrowest that holds
  /// every cell, rather than the declared one.
  bool ScanColumns = false;
};

/// Describes the objects of a database as structures keep them: the neutral part, and the engine's own words where that
/// does not say all. What is described and made again in an empty database of the same engine is described the same.
/// Asks the engine every time. Raises EDatabaseError.
class TDefinitionReader {
 public:
  TDefinitionReader() = default;
  TDefinitionReader(const TDefinitionReader&) = delete;
  TDefinitionReader& operator=(const TDefinitionReader&) = delete;
  virtual ~TDefinitionReader() = default;

  /// The user's tables, views, generators that no table owns, and procedures, by type, then by name; parents of tables
  /// (that are inherited from, or partitioned) before their heirs. Neither the engine's own nor the platform's, and
  /// none that belong to an extension of the engine or are a part of another table.
  virtual std::vector<TDefinedObject> Objects() = 0;

  // Of an object that is there; EDatabaseError when it is not.
  virtual TDicTableDescription Table(const TTableInfo& Table, const TDescribeOptions& Options) = 0;
  /// How many tables to ask Tables for, so that the answers stay small.
  static constexpr std::size_t AtOnce = 64;
  /// Several, in their order: what an engine answers for many at once it is asked once. An error names the one table.
  virtual std::vector<TDicTableDescription> Tables(const std::vector<TTableInfo>& Tables,
                                                   const TDescribeOptions& Options) {
    std::vector<TDicTableDescription> Result;
    for (const TTableInfo& Each : Tables) Result.push_back(Table(Each, Options));
    return Result;
  }
  virtual TDicViewDescription View(const TTableInfo& View) = 0;
  virtual TDicGeneratorDescription Generator(const TTableInfo& Generator) = 0;
  virtual TDicProcedureDescription Procedure(const TTableInfo& Procedure) = 0;

  /// The last value that was given out; of one that was never asked, start minus step.
  virtual std::int64_t GeneratorValue(const TTableInfo& Generator) = 0;

  /// What no description holds: "owner 'bob' of table 'T'", grants, policies, tablespaces, publications; and of all
  /// objects those that cannot be described: aggregates, overloaded routines, routines in C.
  virtual std::vector<std::string> LeftBehind() = 0;
};

}  // namespace velkrund
