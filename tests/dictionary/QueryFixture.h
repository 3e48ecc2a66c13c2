#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/dictionary/TableFixture.h"
#include "velkrund/platform/database/SelectQuery.h"

namespace velkrund::tests {

/// A query whose result is what stands in a table.
class TTableQuery final : public TSelectQuery {
 public:
  TTableQuery(TTable& Result, std::string Text) : FResult(Result), FText(std::move(Text)) {}

  const std::string& SQL() const override { return FText; }
  void SetSQL(const std::string& Text) override { FText = Text; }
  std::vector<TQueryParameter>& Parameters() override { return FParameters; }
  void Open() override { IsOpen = true; }
  void Close() override { IsOpen = false; }
  TRecord& Record() override { return FResult.Record(); }
  bool First() override { return IsOpen && FResult.First(); }
  bool Next() override { return FResult.Next(); }

  bool IsOpen = false;

 private:
  TTable& FResult;
  std::string FText;
  std::vector<TQueryParameter> FParameters;
};

}  // namespace velkrund::tests
