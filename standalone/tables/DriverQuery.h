#pragma once

#include <memory>
#include <string>
#include <vector>

#include "standalone/drivers/Connection.h"
#include "standalone/tables/CursorRecord.h"
#include "velkrund/platform/database/SelectQuery.h"

namespace velkrund {

/// A query of a database that a driver reaches.
class TDriverQuery final : public TSelectQuery {
 public:
  /// Connection: borrowed; outlives the query.
  TDriverQuery(TConnection& Connection, const std::string& Text);
  ~TDriverQuery() override;

  const std::string& SQL() const override { return FText.Text(); }
  void SetSQL(const std::string& Text) override;
  std::vector<TQueryParameter>& Parameters() override { return FParameters; }
  void Open() override;
  void Close() override;
  /// Without fields before it has been opened.
  TRecord& Record() override { return *FRecord; }
  /// Opens it, if it is not; again, it runs again.
  bool First() override;
  bool Next() override;

 private:
  std::vector<TQueryParameter> Given() const;
  void Run();
  void Take(const std::vector<TColumnInfo>& Columns);

  TConnection& FConnection;
  TQueryText FText;
  std::vector<TQueryParameter> FParameters;
  std::unique_ptr<TCursorRecord> FRecord = std::make_unique<TCursorRecord>("the query", std::span<TColumnInfo>());
  std::unique_ptr<TCursor> FCursor;  // from Open to the end of the walk
  bool FIsOpen = false;
  bool FHasMoved = false;  // the cursor, from before its first row
};

}  // namespace velkrund
