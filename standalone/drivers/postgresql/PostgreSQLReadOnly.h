#pragma once

#include <cstdint>
#include <string>

namespace velkrund {

class TPostgreSQLSession;

/// While it lives, the server refuses whatever would write, in whatever function it stands. It is a transaction of its
/// own where none runs, else a part of the running one.
class TPostgreSQLReadOnly {
 public:
  /// Session: borrowed. What begins messages.
  TPostgreSQLReadOnly(TPostgreSQLSession& Session, std::string What);
  TPostgreSQLReadOnly(const TPostgreSQLReadOnly&) = delete;
  TPostgreSQLReadOnly& operator=(const TPostgreSQLReadOnly&) = delete;
  /// Takes the part or the transaction back, so that an error in it is none of what it stands in.
  ~TPostgreSQLReadOnly();

  /// Of a part that went well: cursors of the server that were made in it stay.
  void Keep();

 private:
  void Query(const std::string& Statement);

  TPostgreSQLSession& FSession;
  const std::string FWhat;
  const bool FIsOwn;
  std::int64_t FTransaction = 0;  // the one that it is, or is a part of
  bool FEnded = false;
};

}  // namespace velkrund
