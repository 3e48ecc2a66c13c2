#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkrund/platform/dictionary/ObjectDescriptions.h"

namespace velkrund {

/// The parts of a table, in the order in which they are made.
struct TTableParts {
  bool Table = true;  // with its fields, keys, checks; where the engine takes them only with the table, foreign keys
  bool Indexes = true;
  bool ForeignKeys = true;
  bool Triggers = true;
  bool Comments = true;
};

/// What an engine cannot make of a description, and what of another engine's words it does not understand.
struct TScriptGap {
  std::string Kind;       // in the plural, as people allow it: "checks", "triggers", "defaults", "collations" ...
  std::string What;       // "the check 'C1' of table 'ORDERS'"
  std::string Why = {};   // "its text is PostgreSQL's alone"
  bool Harmless = false;  // the rows are the same without it, and the structure keeps it: a comment, a narrower type

  bool operator==(const TScriptGap&) const = default;
};

struct TScriptStatement {
  std::string Text;         // without a semicolon at its end
  std::string What;         // for messages: "index 'I1' of table 'ORDERS'"
  std::string Unless = {};  // a query; the statement is not needed where that yields a row
  std::string Kind = {};    // of the gap that it leaves where the engine refuses it; empty: nothing goes without it
};

struct TScript {
  std::vector<TScriptStatement> Statements;
  std::vector<TScriptGap> Gaps;
  std::vector<std::string> Needs = {};  // full names of tables that have to be there before
  /// Names of what the script makes that the engine keeps apart from each other: tables, views, indexes and what else
  /// shares their names there. Equal ones are the same name to the engine, whatever their case; not for people.
  std::vector<std::string> Makes = {};
};

/// The words with which an engine makes and drops objects. Text alone: needs neither the engine nor a connection.
/// Descriptions are made with the engine's own words where they have some, else by their neutral part.
class TScriptWriter {
 public:
  virtual ~TScriptWriter() = default;

  /// Under which descriptions keep the engine's words: "sqlite".
  virtual std::string_view Engine() const = 0;
  /// By which tables are made unless somebody says otherwise. Places to be filled: {table}, the quoted name; {items},
  /// columns and constraints; {words}, what follows the closing parenthesis, with a blank before it.
  virtual std::string TablePattern() const = 0;

  /// Pattern: as TablePattern. Raises EDatabaseError for a description or pattern that nothing can be made of.
  virtual TScript Table(const TDicTableDescription& Table, const TTableParts& Parts,
                        const std::string& Pattern) const = 0;
  /// Replace: one that is there is redefined, with all that hangs on it; of engines that can, and no view that keeps
  /// its rows.
  virtual TScript View(const TDicViewDescription& View, bool Replace) const = 0;
  /// Start: the first value; nothing: that of the description.
  virtual TScript Generator(const TDicGeneratorDescription& Generator, std::optional<std::int64_t> Start) const = 0;
  /// Makes one that is there count as described. Start: the next number that it gives out; nothing: it goes on where it
  /// stands. Of engines with generators alone.
  virtual TScript AlterGenerator(const TDicGeneratorDescription& /*Generator*/,
                                 std::optional<std::int64_t> /*Start*/) const {
    return {};
  }
  /// Makes Value the last one that was given out, of one that is there as described; undone by a roll back. Of engines
  /// with generators alone.
  virtual TScript SetGenerator(const TDicGeneratorDescription& /*Generator*/, std::int64_t /*Value*/) const {
    return {};
  }
  /// Replace: one that is there, with the same parameters, is redefined.
  virtual TScript Procedure(const TDicProcedureDescription& Procedure, bool Replace) const = 0;

  /// The statement as the engine's shell takes it, with its condition, and the line feed behind it.
  virtual std::string ShellText(const TScriptStatement& Statement) const;

  virtual std::string DropTable(const TDicObjectDescription& Table) const = 0;
  virtual std::string DropView(const TDicViewDescription& View) const = 0;
  virtual std::string DropGenerator(const TDicObjectDescription& Generator) const = 0;
  virtual std::string DropProcedure(const TDicProcedureDescription& Procedure) const = 0;

 protected:
  TScriptWriter() = default;
  TScriptWriter(const TScriptWriter&) = default;
  TScriptWriter& operator=(const TScriptWriter&) = default;
};

}  // namespace velkrund
