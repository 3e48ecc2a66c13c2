#pragma once

#include <memory>
#include <string>

#include "velkrund/platform/ormtools/FileSystem.h"

namespace velkrund::tests {

/// What can be made to fail: operations on export/import files, and those of the engine under a database.
enum class TOperation {
  FileOpen,
  FileRead,
  FileWrite,  // stores the first half
  FileSetSize,
  FileSize,
  FileSync,
  FileMake,
  FilePut,
  FileRemove,
  AnyOfFiles,
  EngineOpen,
  EngineRead,
  EngineWrite,
  EngineTruncate,
  EngineSize,
  EngineSync,
  EngineDelete,
  EngineAccess,
  EngineLock,
  AnyOfEngine,
  EngineMemory,  // an allocation
};

/// The one fault of this program that is due: the Number-th operation of that kind, or all from it on.
struct TFault {
  TOperation Operation = TOperation::FileOpen;
  int Number = 0;  // counts down; none at 0
  bool Lasting = false;
  bool Met = false;

  static TFault& Due();
  bool Strikes(TOperation Met);
};

/// The operating system's files with that fault. Nothing is synced in truth: tests pull no plugs.
class TFaultyFiles final : public TFileSystem {
 public:
  /// Real: borrowed.
  explicit TFaultyFiles(TFileSystem& Real) : FReal(Real) {}
  std::unique_ptr<TFile> Open(const std::string& Path, TFileMode Mode) override;
  bool Exists(const std::string& Path) override { return FReal.Exists(Path); }
  std::unique_ptr<TFileInMaking> MakeInPlaceOf(const std::string& Path) override;
  std::unique_ptr<TFileInMaking> MakeNew(const std::string& Path, const std::string& Like) override;
  void RemoveLeft(const std::string& Path) override { FReal.RemoveLeft(Path); }
  void Remove(const std::string& Path) override;

 private:
  TFileSystem& FReal;
};

/// Puts the fault under the engine of this program, once: as its allocator and as its way to files. To be called before
/// the engine's first use.
void MakeEngineFaulty();

}  // namespace velkrund::tests
