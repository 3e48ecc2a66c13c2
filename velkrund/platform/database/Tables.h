#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velkrund/platform/database/Rows.h"

namespace velkrund {

/// A table of a platform database: rows to walk forward, and a bulk way in. Freed by whoever asked for it. Operations
/// raise EDatabaseError. Used by one thread at a time.
class TTable : public TRows {
 public:
  /// The physical name, in the case in which the database has it.
  virtual const std::string& TableName() const = 0;

  /// Of the rows that a walk goes through.
  virtual std::int64_t RecordCount() = 0;
  /// About how many, for progress: told without reading the rows where that can be, otherwise RecordCount.
  virtual std::int64_t EstimatedCount() { return RecordCount(); }
  /// Whether there is a row; without counting them, where that is quicker.
  virtual bool HasRecords() { return RecordCount() > 0; }
  /// Walks that begin later go through the rows by the table's key, so that the same rows come in the same order
  /// whatever holds them. False: it has no such key, and walks keep the table's own order.
  virtual bool OrderByKey() { return false; }
  /// Walks that begin later read these fields of Record alone, by their places from 0. To ask for the value of
  /// another one is an error then.
  virtual void SetWalkedFields(const std::vector<int>& /*Places*/) {}
  /// Walks that begin later go through the rows alone that a condition holds for, which the engine understands; empty:
  /// through all. An error that shows when a walk begins where the engine does not understand it, and at once where the
  /// table is none of an SQL engine.
  virtual void SetSelection(const std::string& Condition);
  /// Walks that begin later give the rows as they are when it begins, whatever is done to the database meanwhile, by
  /// triggers too; otherwise rows that are changed on the way may come, or come twice, where the engine reads so.
  virtual void SetUnmoved(bool) {}
  /// Walks that begin later may read ahead on a thread of their own also where the engine cannot be held up meanwhile:
  /// from First to the end of the walk the caller does nothing else with the table's database.
  virtual void SetReadAhead(bool) {}

  /// Whether an append of given keys moves the table's automatic numbering behind the highest one, where the engine
  /// does not do so by itself.
  virtual void SetCanRecreateAutoSequence(bool Value) = 0;
  /// Whether an append stores of a value what the engine can hold of it, where little is lost: a text with replacement
  /// characters, a day with midnight. Otherwise, as from the beginning, such a value is an error.
  virtual void SetAllowLoss(bool) {}
  /// Values that were stored so by the last append, once it has ended.
  virtual std::int64_t ChangedValues() const { return 0; }
  /// Whether a record of an append takes the place of the row with the same key, where there is one: the fields that
  /// are assigned get the new values, the others keep theirs. The key is the table's primary one; an error, when the
  /// append begins, where there is none, and later where a record does not assign all of it.
  virtual void SetUpdateByKey(bool Value);
  /// How many records did so in the last append, once it has ended.
  virtual std::int64_t UpdatedRecords() const { return 0; }
  /// Bulk append: between begin and end the record buffer is added once per AppendRecord, by the engine's fastest way.
  /// Fields not assigned get the column's default. An error names the record (counted from 1) and, where known, the
  /// column. A table that is freed between the two, or begins again, drops what was not yet handed to the engine.
  virtual void BeginAppend() = 0;
  virtual void AppendRecord() = 0;
  virtual void EndAppend() = 0;

  void ClearData() { Record().ClearData(); }
};

/// A table of an SQL engine, which can be emptied by a statement.
class TODBCTable : public TTable {
 public:
  /// The name as it stands in the engine's SQL, quoted and with its schema where needed.
  virtual std::string SQLName() const = 0;
};

}  // namespace velkrund
