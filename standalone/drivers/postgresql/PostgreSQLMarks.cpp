#include "standalone/drivers/postgresql/PostgreSQLMarks.h"

#include <algorithm>

#include "standalone/drivers/Dialect.h"

namespace velkrund {

void TPostgreSQLMarks::Begin(int Number, TMark Mark) {
  FMarks.resize(static_cast<std::size_t>(Number) - 1, Mark);
  FMarks.push_back(Mark);
}

void TPostgreSQLMarks::End(int Number) {
  if (Of(Number).Name > 0 && !IsShared(Number)) FToRelease = Of(Number).Name;
  FMarks.erase(FMarks.begin() + Number - 1, FMarks.end());
}

void TPostgreSQLMarks::Drop(int Number) {
  if (Of(Number).Name > 0) FToRelease = 0;
  FMarks.erase(FMarks.begin() + Number - 1, FMarks.end());
}

int TPostgreSQLMarks::FirstThatWaits() const {
  const auto First = std::find_if(FMarks.begin(), FMarks.end(), [](const TMark& Mark) { return Mark.Name == 0; });
  return First == FMarks.end() ? 0 : static_cast<int>(First - FMarks.begin()) + 1;
}

std::string TPostgreSQLMarks::Due() const {
  std::string Result;
  if (FToRelease > 0) Result = "RELEASE SAVEPOINT " + SavepointName(FToRelease) + ";";
  if (const int First = FirstThatWaits(); First > 0) Result += "SAVEPOINT " + SavepointName(First);
  return Result;
}

void TPostgreSQLMarks::NoteDone() {
  const int First = FirstThatWaits();
  for (TMark& Mark : FMarks)
    if (Mark.Name == 0) Mark.Name = First;
  FToRelease = 0;
}

}  // namespace velkrund
