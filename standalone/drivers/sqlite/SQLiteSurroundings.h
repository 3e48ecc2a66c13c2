#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/Surroundings.h"

namespace velkrund {

class TSQLiteDatabase;

class TSQLiteSurroundings final : public TSurroundings {
 public:
  /// Database: borrowed.
  TSQLiteSurroundings(TSQLiteDatabase& Database, TTableInfo Object, TRenamedFields Renamed);

  void SetAside() override;
  void PutBack() override;
  const std::vector<std::string>& Remarks() const override { return FRemarks; }

 private:
  TSQLiteDatabase& FDatabase;
  const TTableInfo FObject;
  const TRenamedFields FRenamed;
  std::vector<std::string> FRemarks;
};

}  // namespace velkrund
