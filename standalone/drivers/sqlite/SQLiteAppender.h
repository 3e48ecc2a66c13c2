#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "standalone/drivers/BulkAppender.h"
#include "standalone/drivers/Schema.h"
#include "standalone/drivers/sqlite/SQLiteBinder.h"
#include "standalone/drivers/sqlite/SQLiteStatement.h"

namespace velkrund {

/// Prepared inserts inside the caller's transaction. Small rows are held back until one statement takes several of
/// them, which costs the engine a fraction of a statement each; when that one fails, the rows go one by one to find the
/// record to blame.
class TSQLiteAppender final : public TBulkAppender {
 public:
  /// What the engine knows about the table beyond its description.
  struct TTraits {
    bool Strict = false;
    TSQLiteTexts Texts;
    int RowNumberColumn = -1;                // index of the column that stands for the row number; -1: none
    bool OneByOne = false;                   // what a row does can depend on the statement that it is part of
    std::vector<std::string> Triggers = {};  // that fire for the rows
    std::string Update = {};  // that takes a record's place, with its values at their places; empty: none
  };

  TSQLiteAppender(const TSQLiteHandle& Database, const TTableDescription& Table, std::span<const int> Columns,
                  const TAppendOptions& Options, const TTraits& Traits);
  ~TSQLiteAppender() override;

  void Append(std::span<const TKvVariant* const> Row) override;
  void Finish() override { InsertHeldOneByOne(); }
  std::int64_t ChangedValues() const override { return FChangedValues; }
  std::int64_t UpdatedRecords() const override { return FUpdatedRecords; }

 private:
  using TRow = std::span<const TKvVariant* const>;
  /// One statement that inserts a fixed number of rows.
  struct TInsert {
    TInsert(const TSQLiteHandle& Database, const TTableDescription& Table, std::span<const int> Columns,
            const TTraits& Traits, std::size_t Rows);
    /// Text: of one row.
    TInsert(const TSQLiteHandle& Database, const TTableDescription& Table, std::span<const int> Columns,
            const TTraits& Traits, std::size_t Rows, const std::string& Text);
    TSQLiteStatement Statement;
    std::vector<TSQLiteBinder> Binders;  // one per place, row by row
  };

  void MakeRoom();
  bool IsHeldBack(TRow Row) const;
  void Hold(TRow Row);
  void InsertHeld();
  bool BindHeld();
  void InsertHeldOneByOne();
  void InsertOne(TRow Row);
  void Bind(TInsert& Insert, TRow Row) const;
  bool UpdateOne(TRow Row);
  void CountReplaced(const TInsert& Insert);
  bool IsOfTrigger(std::string_view Message) const;
  TErrorInfo Place() const;
  [[noreturn]] void RaiseRefused(const TSQLiteBinder& Binder, std::size_t Column, const TKvVariant& Value,
                                 std::string_view Reason) const;
  [[noreturn]] void RaiseEngineError(const TInsert& Insert, const std::string& What, TErrorInfo Place) const;
  std::string RecordText() const;
  std::string HeldText() const;
  void GrowCache();
  void SetCacheSize(std::int64_t Size);

  TSQLiteHandle FDatabase;
  std::string FTableName;
  std::string FTriggers;  // for messages: that can have refused a row
  std::optional<std::int64_t> FCacheSizeBefore;
  const TTableDescription FTable;
  const std::vector<int> FColumns;
  const TTraits FTraits;
  TInsert FOne;
  std::optional<TInsert> FUpdate;              // tried before FOne
  std::optional<TInsert> FMany;                // made when the first rows are together
  std::vector<TKvVariant> FHeld;               // room for the rows of FMany; none: every row goes by itself
  std::vector<const TKvVariant*> FHeldPlaces;  // to FHeld's values
  std::size_t FHeldCount = 0;                  // values in FHeld
  std::vector<std::string> FNames;
  bool FAllowLoss;
  std::int64_t FChangedValues = 0, FUpdatedRecords = 0;
  std::int64_t FRecord;  // number of the next record that reaches the engine
};

}  // namespace velkrund
