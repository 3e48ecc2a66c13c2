#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/Surroundings.h"

namespace velkrund {

class TPostgreSQLSession;

class TPostgreSQLSurroundings final : public TSurroundings {
 public:
  /// Session: borrowed.
  TPostgreSQLSurroundings(TPostgreSQLSession& Session, TTableInfo Object, TRenamedFields Renamed);

  void SetAside() override;
  void PutBack() override;
  const std::vector<std::string>& Remarks() const override { return FRemarks; }

 private:
  TPostgreSQLSession& FSession;
  const TTableInfo FObject;
  const TRenamedFields FRenamed;
  std::vector<std::string> FRemarks;
};

}  // namespace velkrund
