#pragma once

#include <memory>
#include <string>

#include "velkrund/operations/RecreateContainer.h"
#include "velkrund/platform/dictionary/DicDatabase.h"

namespace velkrund {

/// In what the recreation of one kind of objects differs from that of the others.
struct TRecreateKind {
  int ObjectType;          // of the structures
  const char* NotFound;    // the error of an object without a structure, with places for its name and the database
  const char* MissingKey;  // the same as a question of lists: whether to go on with the next one
  const char* OverwriteKey;
  const char* ErrorKey;  // of lists
  bool AsksAfterErrors;  // lists ask after each error whether to go on; otherwise they go on, and report at the end
  bool (*AskCancel)(const std::string& Name);  // whether a name too long for some databases is given up; null: any goes
  void (*Replace)(TDicDatabase& Database, const std::string& Name);  // makes it, in place of one that is there
  std::unique_ptr<TRecreateOperation> (*Single)();

  bool IsDescribed(const std::string& Name, const std::string& DatabaseName) const;
  /// Whether the database has one.
  bool IsThere(const std::string& Name, const std::string& DatabaseName) const;
  std::string NotFoundText(const std::string& Name, const std::string& DatabaseName) const;
  /// The question whether the one that is there is replaced.
  std::string OverwriteQuestion(const std::string& Name) const;
};

extern const TRecreateKind GeneratorKind, ViewKind, ExecStoredProcKind, SelectStoredProcKind;

}  // namespace velkrund
