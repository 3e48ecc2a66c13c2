#include "tests/support/MemoryFiles.h"

#include <algorithm>

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund::tests {
namespace {

bool IsDue(int& Countdown) { return Countdown > 0 && --Countdown == 0; }

}  // namespace

struct TMemoryFiles::TContent {
  std::string Data;
  std::string Synced;
  bool HasWriter = false;
};

class TMemoryFiles::TOpenFile final : public TFile {
 public:
  TOpenFile(TMemoryFiles& Files, std::string Path, std::shared_ptr<TContent> Content, bool Writable)
      : FFiles(Files), FPath(std::move(Path)), FContent(std::move(Content)), FWritable(Writable) {
    if (FWritable) FContent->HasWriter = true;
  }
  ~TOpenFile() override {
    const std::lock_guard Lock(FFiles.FLock);
    if (FWritable) FContent->HasWriter = false;
  }

  std::size_t ReadAt(std::int64_t Position, char* Buffer, std::size_t Count) override {
    const std::lock_guard Lock(FFiles.FLock);
    ++FFiles.Counts.Reads;
    FFiles.Counts.LargestRead = std::max(FFiles.Counts.LargestRead, static_cast<std::int64_t>(Count));
    if (IsDue(FFiles.Faults.FailRead)) throw EReadError(FPath + ": cannot read: Input/output error");
    const std::string& Data = FContent->Data;
    const auto At = static_cast<std::size_t>(Position);
    return At < Data.size() ? Data.copy(Buffer, Count, At) : 0;
  }

  void WriteAt(std::int64_t Position, std::string_view Data) override {
    const std::lock_guard Lock(FFiles.FLock);
    ++FFiles.Counts.Writes;
    RefuseUnlessWritable();
    if (IsDue(FFiles.Faults.FailWrite)) {
      Store(Position, Data.substr(0, Data.size() / 2));
      throw EWriteError(FPath + ": cannot write: Input/output error");
    }
    if (Store(Position, Data) < Data.size()) throw EWriteError(FPath + ": cannot write: No space left on device");
  }

  std::int64_t Size() override {
    const std::lock_guard Lock(FFiles.FLock);
    return static_cast<std::int64_t>(FContent->Data.size());
  }

  void SetSize(std::int64_t Size) override {
    const std::lock_guard Lock(FFiles.FLock);
    RefuseUnlessWritable();
    if (IsDue(FFiles.Faults.FailSetSize)) throw EWriteError(FPath + ": cannot set the size: Input/output error");
    const std::int64_t Added = Size - static_cast<std::int64_t>(FContent->Data.size());
    if (Added > 0 && FFiles.Faults.Capacity >= 0 && FFiles.TotalSize() + Added > FFiles.Faults.Capacity)
      throw EWriteError(FPath + ": cannot set the size: No space left on device");
    FContent->Data.resize(static_cast<std::size_t>(Size));
  }

  void Sync() override {
    const std::lock_guard Lock(FFiles.FLock);
    ++FFiles.Counts.Syncs;
    if (IsDue(FFiles.Faults.FailSync)) throw EWriteError(FPath + ": cannot sync: Input/output error");
    FContent->Synced = FContent->Data;
  }

 private:
  void RefuseUnlessWritable() const {
    if (!FWritable) throw EWriteError(FPath + ": cannot write: Bad file descriptor");
  }

  /// Stores what the disk has room for; returns how many bytes.
  std::size_t Store(std::int64_t Position, std::string_view Data) {
    std::string& Stored = FContent->Data;
    const auto At = static_cast<std::size_t>(Position);
    if (FFiles.Faults.Capacity >= 0) {
      const std::int64_t Room = std::max<std::int64_t>(0, FFiles.Faults.Capacity - FFiles.TotalSize());
      Data = Data.substr(0, std::max(Stored.size(), At) - At + static_cast<std::size_t>(Room));
    }
    if (Stored.size() < At + Data.size()) Stored.resize(At + Data.size());
    Data.copy(Stored.data() + At, Data.size());
    return Data.size();
  }

  TMemoryFiles& FFiles;
  std::string FPath;
  std::shared_ptr<TContent> FContent;
  bool FWritable;
};

TMemoryFiles::TMemoryFiles() = default;
TMemoryFiles::~TMemoryFiles() = default;

std::unique_ptr<TFile> TMemoryFiles::Open(const std::string& Path, TFileMode Mode) {
  const std::lock_guard Lock(FLock);
  std::shared_ptr<TContent> Content;
  if (const auto Found = FFiles.find(Path); Found != FFiles.end()) Content = Found->second;
  if (Mode == TFileMode::Create || Mode == TFileMode::CreateNew) {
    if (Content && Mode == TFileMode::CreateNew) throw EFCreateError(Path + ": cannot create: File exists");
    if (Content && Content->HasWriter) throw EFCreateError(Path + ": cannot create: in use by another writer");
    if (!Content) Content = FFiles[Path] = std::make_shared<TContent>();
    Content->Data.clear();
  } else {
    if (!Content) throw EFOpenError(Path + ": cannot open: No such file or directory");
    if (Mode == TFileMode::ReadWrite && Content->HasWriter)
      throw EFOpenError(Path + ": cannot open: in use by another writer");
  }
  return std::make_unique<TOpenFile>(*this, Path, Content, Mode != TFileMode::Read);
}

bool TMemoryFiles::Exists(const std::string& Path) {
  const std::lock_guard Lock(FLock);
  return FFiles.contains(Path);
}

void TMemoryFiles::Remove(const std::string& Path) {
  const std::lock_guard Lock(FLock);
  FFiles.erase(Path);
}

void TMemoryFiles::Put(const std::string& Path, std::string_view Content) {
  const std::lock_guard Lock(FLock);
  std::shared_ptr<TContent>& File = FFiles[Path];
  if (!File) File = std::make_shared<TContent>();
  File->Data = File->Synced = Content;
}

std::string TMemoryFiles::Get(const std::string& Path) const {
  const std::lock_guard Lock(FLock);
  return Existing(Path).Data;
}

std::string TMemoryFiles::GetSynced(const std::string& Path) const {
  const std::lock_guard Lock(FLock);
  return Existing(Path).Synced;
}

const TMemoryFiles::TContent& TMemoryFiles::Existing(const std::string& Path) const {
  const auto Found = FFiles.find(Path);
  if (Found == FFiles.end()) throw EFOpenError(Path + ": cannot open: No such file or directory");
  return *Found->second;
}

std::int64_t TMemoryFiles::TotalSize() const {
  std::int64_t Total = 0;
  for (const auto& [Path, Content] : FFiles) Total += static_cast<std::int64_t>(Content->Data.size());
  return Total;
}

}  // namespace velkrund::tests
