#pragma once

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "velkrund/dictionary/RecreateObject.h"

namespace velkrund {

/// Creates several objects of one kind by their structures, in the order of the list, each in a transaction of its own.
/// Objects that are there are asked about, by the handler of OverwriteAsk, else by a dialog: yes and no count for one
/// of them, any other answer for all the rest. So are names without a structure, while OverwriteAsk asks. After an
/// error generators are asked about: whether to go on, otherwise it is raised; others go on, and a message box names at
/// the end what could not be created. EQuestionUnanswered always ends the run.
class TUORecreateObjects : public TDatabaseUtilOperation {
 public:
  /// 0: cancelled, also by an answer; what was created before stays.
  int Execute() override;

  std::vector<std::string> Names;  // empty ones are passed over
  TYesNoCancelAsk OverwriteAsk;    // FAlwaysAsk: at creation true; false: FYes holds

  /// Told of each that fails, as it does.
  std::function<void(const std::string& Name, const std::exception_ptr& Error)> FOnFailed;

  /// OverwriteAsk as one setting.
  TRecreateOverwrite Overwrite() const { return OverwriteOf(OverwriteAsk); }
  void SetOverwrite(TRecreateOverwrite Overwrite) { SetOverwriteOf(OverwriteAsk, Overwrite); }

  // Of the last run.
  int Created() const { return FCreated; }
  /// What failed, or has no structure.
  const std::vector<std::string>& NotCreated() const { return FNotCreated; }

 protected:
  explicit TUORecreateObjects(const TRecreateKind& Kind) : FKind(Kind) { OverwriteAsk.FAlwaysAsk = true; }

 private:
  enum class TNext { Create, PassOver, End };

  const std::string& Name() const { return Names[FIndex]; }
  bool CreateAll();
  /// False: the run ends.
  bool CreateOne();
  TNext Ask();
  TNext AskWithoutStructure();
  void Create();
  std::string Note(const std::string& Message);
  void ReportNotCreated();

  const TRecreateKind& FKind;
  std::size_t FIndex = 0;  // of the object in hand
  int FCreated = 0;
  std::vector<std::string> FNotCreated;
  TYesNoCancelAsk FAsk;  // OverwriteAsk, with what was answered in this run
  std::string FLastError;
};

class TUORecreateGenerators final : public TUORecreateObjects {
 public:
  TUORecreateGenerators() : TUORecreateObjects(GeneratorKind) {}

  static const TUtilOperationDescriptor Descriptor;
};

class TUORecreateViews final : public TUORecreateObjects {
 public:
  TUORecreateViews() : TUORecreateObjects(ViewKind) {}

  static const TUtilOperationDescriptor Descriptor;
};

class TUORecreateExecStoredProcs final : public TUORecreateObjects {
 public:
  TUORecreateExecStoredProcs() : TUORecreateObjects(ExecStoredProcKind) {}

  static const TUtilOperationDescriptor Descriptor;
};

class TUORecreateSelectStoredProcs final : public TUORecreateObjects {
 public:
  TUORecreateSelectStoredProcs() : TUORecreateObjects(SelectStoredProcKind) {}

  static const TUtilOperationDescriptor Descriptor;
};

}  // namespace velkrund
