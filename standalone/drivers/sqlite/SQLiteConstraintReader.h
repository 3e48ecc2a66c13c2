#pragma once

#include <string>
#include <vector>

#include "standalone/drivers/sqlite/SQLiteTableDeclaration.h"
#include "standalone/drivers/sqlite/SQLiteTokenReader.h"

namespace velkrund {

/// Reads the keys, checks and references of CREATE TABLE. Columns go by the names that stand there.
class TSQLiteConstraintReader {
 public:
  /// Both outlive it.
  TSQLiteConstraintReader(TSQLiteTokenReader& Tokens, TSQLiteTableDeclaration& Result)
      : FTokens(Tokens), FResult(Result) {}

  /// Takes the name for the constraint that comes next.
  void ReadName() { FName = FTokens.TakeName(); }
  void ForgetName() { FName.clear(); }

  /// False: none comes next.
  bool ReadForColumn(const std::string& Column);
  void ReadForTable();
  /// What the engine is told to do with a row that breaks a constraint; empty: the usual.
  std::string ReadConflict();

 private:
  bool ReadColumnKey(const std::string& Column);
  bool ReadColumnReference(const std::string& Column);
  void ReadTableKey();
  bool ReadCheck();
  void ReadReference(const std::vector<std::string>& Own);
  bool ReadDescending();
  bool ReadDeferrable();
  TDicKeyAction ReadAction();
  std::vector<std::string> ReadNames();
  /// Columns: what the words of the key have to say of them; empty: nothing.
  void AddKey(TDicKey Key, const std::string& Columns, bool AutoIncrement, const std::string& Conflict);

  TSQLiteTokenReader& FTokens;
  TSQLiteTableDeclaration& FResult;
  std::string FName;
};

}  // namespace velkrund
