#include "jobs/files/LentFile.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

class TOpened final : public TFile {
 public:
  TOpened(TFile& File, bool IsSynced) : FFile(File), FIsSynced(IsSynced) {}
  std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) override {
    return FFile.ReadAt(Position, Buffer, Count);
  }
  void WriteAt(std::int64_t Position, std::string_view Data) override { FFile.WriteAt(Position, Data); }
  std::int64_t Size() override { return FFile.Size(); }
  void SetSize(std::int64_t Size) override { FFile.SetSize(Size); }
  void Sync() override {
    if (FIsSynced) FFile.Sync();
  }

 private:
  TFile& FFile;
  const bool FIsSynced;
};

}  // namespace

std::unique_ptr<TFile> TLentFile::Open(const std::string&, TFileMode) {
  return std::make_unique<TOpened>(FFile, FIsSynced);
}

bool TLentFile::Exists(const std::string&) { return true; }

void TLentFile::Remove(const std::string& Path) { throw EWriteError(Format("Cannot remove '%s' here", Path)); }

}  // namespace velkrund
