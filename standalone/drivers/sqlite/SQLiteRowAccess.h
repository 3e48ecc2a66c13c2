#pragma once

#include "standalone/drivers/RowAccess.h"

namespace velkrund {

class TSQLiteDatabase;
class TSQLiteSchemaReader;
struct TSQLiteCopiedTable;

class TSQLiteRowAccess final : public TRowAccess {
 public:
  TSQLiteRowAccess(const TSQLiteDatabase& Database, TSQLiteSchemaReader& Schema, bool ReadOnly)
      : FDatabase(Database), FSchema(Schema), FReadOnly(ReadOnly), FSource{&Schema, "main"} {}
  /// One that copies rows from a database that is attached to this one. Source: of that database; all borrowed.
  struct TSource {
    TSQLiteSchemaReader* Schema;
    const char* Name;  // by which it is attached
  };
  TSQLiteRowAccess(const TSQLiteDatabase& Database, TSQLiteSchemaReader& Schema, bool ReadOnly, TSource Source)
      : FDatabase(Database), FSchema(Schema), FReadOnly(ReadOnly), FSource(Source) {}

  std::unique_ptr<TCursor> OpenCursor(const TTableDescription& Table, std::span<const int> Columns,
                                      const TWalkOptions& Options) override;
  std::int64_t CountRows(const TTableDescription& Table, std::string_view Condition) override;
  std::unique_ptr<TBulkAppender> OpenAppender(const TTableDescription& Table, std::span<const int> Columns,
                                              const TAppendOptions& Options) override;
  bool CopiesExactly(const TTableDescription& Source, const TTableDescription& Target,
                     std::span<const TColumnPair> Pairs) override;
  std::int64_t CopyRows(const TTableDescription& Source, const TTableDescription& Target,
                        std::span<const TColumnPair> Pairs) override;

 private:
  TSQLiteCopiedTable Copied(const TSource& End, const TTableDescription& Table, const std::string& What);
  TSource Own() const { return {&FSchema, "main"}; }
  bool MayMove(const TTableDescription& Table);
  bool CopiesRecords(const std::string& Statement);

  const TSQLiteDatabase& FDatabase;
  TSQLiteSchemaReader& FSchema;
  const bool FReadOnly;
  const TSource FSource;
};

}  // namespace velkrund
