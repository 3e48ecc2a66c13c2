#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "velkrund/dictionary/RecreateKinds.h"

namespace velkrund {

/// Creates one object of a database that is no table as its structure describes it, in place of one that is there. An
/// object that is there is asked about: by the handler of OverwriteAsk, else in a message box. Left alone by the
/// answer, that is a success. Result 0: its name is too long for some databases, and the creation was cancelled for
/// that. Raises EDicUtilError where no structure describes it, and what the database says otherwise.
class TUORecreateObject : public TRecreateOperation {
 public:
  int Execute() override;

  /// OverwriteAsk as one setting.
  TRecreateOverwrite Overwrite() const { return OverwriteOf(OverwriteAsk); }
  void SetOverwrite(TRecreateOverwrite Overwrite) { SetOverwriteOf(OverwriteAsk, Overwrite); }

 protected:
  explicit TUORecreateObject(const TRecreateKind& Kind) : FKind(Kind) {}

  virtual void Make(TDicDatabase& Database) { FKind.Replace(Database, ObjectName); }

 private:
  bool MayReplace();

  const TRecreateKind& FKind;
};

/// One that is there goes on where it stands, or where it stood when its section was written, whichever is further,
/// unless it is told where to begin.
class TUORecreateGenerator final : public TUORecreateObject {
 public:
  TUORecreateGenerator() : TUORecreateObject(GeneratorKind) {}

  void SetStartValue(std::int64_t Value) override { FStood = Value; }
  /// StartValue in decimal; empty: none. EConvertError for what is no whole number of 64 bits.
  std::string StartValueText() const;
  void SetStartValueText(const std::string& Text);

  std::optional<std::int64_t> StartValue;  // the next number that it gives out, also behind those that it has given out

  static const TUtilOperationDescriptor Descriptor;

 protected:
  void Make(TDicDatabase& Database) override;

 private:
  std::optional<std::int64_t> FStood;  // the last number that it had given out
};

class TUORecreateView final : public TUORecreateObject {
 public:
  TUORecreateView() : TUORecreateObject(ViewKind) {}

  static const TUtilOperationDescriptor Descriptor;
};

/// Of a procedure that returns no rows.
class TUORecreateExecStoredProc final : public TUORecreateObject {
 public:
  TUORecreateExecStoredProc() : TUORecreateObject(ExecStoredProcKind) {}

  static const TUtilOperationDescriptor Descriptor;
};

/// Of a procedure that returns rows.
class TUORecreateSelectStoredProc final : public TUORecreateObject {
 public:
  TUORecreateSelectStoredProc() : TUORecreateObject(SelectStoredProcKind) {}

  static const TUtilOperationDescriptor Descriptor;
};

}  // namespace velkrund
