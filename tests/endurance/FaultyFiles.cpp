#include "tests/endurance/Faults.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund::tests {

namespace {

template <typename TError>
void MayFail(TOperation Operation, const char* What, const std::string& Path) {
  if (TFault::Due().Strikes(Operation)) throw TError(Format("Cannot %s file '%s': Injected fault", What, Path));
}

class TFaultyFile final : public TFile {
 public:
  TFaultyFile(std::unique_ptr<TFile> Real, std::string Path)
      : FOwned(std::move(Real)), FReal(FOwned.get()), FPath(std::move(Path)) {}
  TFaultyFile(TFile& Real, std::string Path) : FReal(&Real), FPath(std::move(Path)) {}

  std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) override {
    MayFail<EReadError>(TOperation::FileRead, "read", FPath);
    return FReal->ReadAt(Position, Buffer, Count);
  }
  void WriteAt(std::int64_t Position, std::string_view Data) override {
    try {
      MayFail<EWriteError>(TOperation::FileWrite, "write", FPath);
    } catch (const EWriteError&) {
      FReal->WriteAt(Position, Data.substr(0, Data.size() / 2));
      throw;
    }
    FReal->WriteAt(Position, Data);
  }
  std::int64_t Size() override {
    MayFail<EReadError>(TOperation::FileSize, "get the size of", FPath);
    return FReal->Size();
  }
  void SetSize(std::int64_t Size) override {
    MayFail<EWriteError>(TOperation::FileSetSize, "set the size of", FPath);
    FReal->SetSize(Size);
  }
  void Sync() override { MayFail<EWriteError>(TOperation::FileSync, "sync", FPath); }

 private:
  std::unique_ptr<TFile> FOwned;
  TFile* FReal;
  std::string FPath;
};

class TFaultyFileInMaking final : public TFileInMaking {
 public:
  TFaultyFileInMaking(std::unique_ptr<TFileInMaking> Real, const std::string& Path)
      : FReal(std::move(Real)), FFile(FReal->File(), Path), FPath(Path) {}
  TFile& File() override { return FFile; }
  void Put() override {
    MayFail<EWriteError>(TOperation::FileSync, "sync", FPath);
    MayFail<EWriteError>(TOperation::FilePut, "put", FPath);
    FReal->Put();
  }

 private:
  std::unique_ptr<TFileInMaking> FReal;
  TFaultyFile FFile;
  std::string FPath;
};

}  // namespace

TFault& TFault::Due() {
  static TFault Fault;
  return Fault;
}

bool TFault::Strikes(TOperation At) {
  const bool OfFiles = At < TOperation::AnyOfFiles;
  const bool Any = Operation == (OfFiles ? TOperation::AnyOfFiles : TOperation::AnyOfEngine);
  if (Number == 0 || (At != Operation && (!Any || At == TOperation::EngineMemory))) return false;
  if (Number > 1) return --Number, false;
  if (!Lasting) Number = 0;
  return Met = true;
}

std::unique_ptr<TFile> TFaultyFiles::Open(const std::string& Path, TFileMode Mode) {
  if (Mode == TFileMode::CreateNew || Mode == TFileMode::Create)
    MayFail<EFCreateError>(TOperation::FileOpen, "create", Path);
  else
    MayFail<EFOpenError>(TOperation::FileOpen, "open", Path);
  return std::make_unique<TFaultyFile>(FReal.Open(Path, Mode), Path);
}

std::unique_ptr<TFileInMaking> TFaultyFiles::MakeInPlaceOf(const std::string& Path) {
  MayFail<EWriteError>(TOperation::FileMake, "replace", Path);
  return std::make_unique<TFaultyFileInMaking>(FReal.MakeInPlaceOf(Path), Path);
}

std::unique_ptr<TFileInMaking> TFaultyFiles::MakeNew(const std::string& Path, const std::string& Like) {
  MayFail<EFCreateError>(TOperation::FileMake, "create", Path);
  return std::make_unique<TFaultyFileInMaking>(FReal.MakeNew(Path, Like), Path);
}

void TFaultyFiles::Remove(const std::string& Path) {
  MayFail<EWriteError>(TOperation::FileRemove, "remove", Path);
  FReal.Remove(Path);
}

}  // namespace velkrund::tests
