#include "standalone/drivers/postgresql/PostgreSQLReadOnly.h"

#include "standalone/drivers/postgresql/PostgreSQLSession.h"
#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {
namespace {

constexpr const char* Mark = "velkrund_query";

}  // namespace

TPostgreSQLReadOnly::TPostgreSQLReadOnly(TPostgreSQLSession& Session, std::string What)
    : FSession(Session), FWhat(std::move(What)), FIsOwn(!Session.InTransaction()) {
  if (FIsOwn) {
    FSession.Begin("REPEATABLE READ READ ONLY");
  } else {
    Query(std::string("SAVEPOINT ") + Mark);
    try {
      // The server forgets it with the part that it was said in.
      Query("SET TRANSACTION READ ONLY");
    } catch (...) {
      FSession.TakePartBack(Mark);
      throw;
    }
  }
  FTransaction = FSession.TransactionNumber();
}

TPostgreSQLReadOnly::~TPostgreSQLReadOnly() {
  FSession.DoubtSettings();
  if (FEnded || !FSession.InTransaction() || FSession.TransactionNumber() != FTransaction) return;
  try {
    if (FIsOwn)
      FSession.Rollback();
    else
      FSession.TakePartBack(Mark);
  } catch (const Exception&) {
    // The next statement says what has become of the connection.
  }
}

void TPostgreSQLReadOnly::Keep() {
  Query(std::string("RELEASE SAVEPOINT ") + Mark);
  FEnded = true;
}

void TPostgreSQLReadOnly::Query(const std::string& Statement) { FSession.Query(FWhat, Statement); }

}  // namespace velkrund
