#pragma once

#include "jobs/run/JobInterface.h"

namespace velkrund {

/// Shows a database's engine and its tables with rows and sizes.
class TJobDatabaseInfo final : public TJob {
 public:
  const TDatabaseInfo& Info() const { return FInfo; }
  /// As messages name the database.
  const std::string& Database() const { return DatabaseText(); }
  std::string CommandName() const override { return "database info"; }

  static const TUtilOperationDescriptor Descriptor;
  static const TInterfaceDescriptor Interface;

 protected:
  void Run() override { FInfo = Manager().DatabaseInfo(DatabaseName); }
  void Forget() override { FInfo = {}; }
  std::string_view Schema() const override { return "database"; }
  void Describe(TDocument& Document) const override;

 private:
  TDatabaseInfo FInfo;
};

using TJobDatabaseInfoInterface = TJobInterface<TJobDatabaseInfo>;

/// "table", "view" or "foreign".
const char* KindText(TTableKind Kind);

}  // namespace velkrund
