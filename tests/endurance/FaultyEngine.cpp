#include <sqlite3.h>

#include <stdexcept>

#include "tests/endurance/Faults.h"

namespace velkrund::tests {

namespace {

bool Strikes(TOperation Operation) { return TFault::Due().Strikes(Operation); }

sqlite3_mem_methods RealMemory;
sqlite3_vfs* RealFiles = nullptr;

/// The engine's handle of a file; the real one lies behind it in the same piece of memory.
struct TEngineFile {
  sqlite3_file Base;
  sqlite3_file* Real;
};

sqlite3_file* Real(sqlite3_file* File) { return reinterpret_cast<TEngineFile*>(File)->Real; }

int Close(sqlite3_file* File) { return Real(File)->pMethods->xClose(Real(File)); }
int Read(sqlite3_file* File, void* Buffer, int Count, sqlite3_int64 Position) {
  if (Strikes(TOperation::EngineRead)) return SQLITE_IOERR_READ;
  return Real(File)->pMethods->xRead(Real(File), Buffer, Count, Position);
}
int Write(sqlite3_file* File, const void* Buffer, int Count, sqlite3_int64 Position) {
  const bool Fails = Strikes(TOperation::EngineWrite);
  const int Code = Real(File)->pMethods->xWrite(Real(File), Buffer, Fails ? Count / 2 : Count, Position);
  return Fails ? SQLITE_FULL : Code;
}
int Truncate(sqlite3_file* File, sqlite3_int64 Size) {
  if (Strikes(TOperation::EngineTruncate)) return SQLITE_IOERR_TRUNCATE;
  return Real(File)->pMethods->xTruncate(Real(File), Size);
}
int Sync(sqlite3_file*, int) { return Strikes(TOperation::EngineSync) ? SQLITE_IOERR_FSYNC : SQLITE_OK; }
int FileSize(sqlite3_file* File, sqlite3_int64* Size) {
  if (Strikes(TOperation::EngineSize)) return SQLITE_IOERR_FSTAT;
  return Real(File)->pMethods->xFileSize(Real(File), Size);
}
int Lock(sqlite3_file* File, int Level) {
  if (Strikes(TOperation::EngineLock)) return SQLITE_IOERR_LOCK;
  return Real(File)->pMethods->xLock(Real(File), Level);
}
int Unlock(sqlite3_file* File, int Level) { return Real(File)->pMethods->xUnlock(Real(File), Level); }
int CheckReservedLock(sqlite3_file* File, int* Result) {
  return Real(File)->pMethods->xCheckReservedLock(Real(File), Result);
}
int FileControl(sqlite3_file* File, int Operation, void* Argument) {
  return Real(File)->pMethods->xFileControl(Real(File), Operation, Argument);
}
int SectorSize(sqlite3_file* File) { return Real(File)->pMethods->xSectorSize(Real(File)); }
int Characteristics(sqlite3_file* File) { return Real(File)->pMethods->xDeviceCharacteristics(Real(File)); }

int Open(sqlite3_vfs*, const char* Name, sqlite3_file* File, int Flags, int* OutFlags) {
  static const sqlite3_io_methods Methods = {1,
                                             &Close,
                                             &Read,
                                             &Write,
                                             &Truncate,
                                             &Sync,
                                             &FileSize,
                                             &Lock,
                                             &Unlock,
                                             &CheckReservedLock,
                                             &FileControl,
                                             &SectorSize,
                                             &Characteristics,
                                             nullptr,
                                             nullptr,
                                             nullptr,
                                             nullptr,
                                             nullptr,
                                             nullptr};
  auto& Own = *reinterpret_cast<TEngineFile*>(File);
  Own.Base.pMethods = nullptr;
  Own.Real = reinterpret_cast<sqlite3_file*>(&Own + 1);
  if (Strikes(TOperation::EngineOpen)) return SQLITE_CANTOPEN;
  const int Code = RealFiles->xOpen(RealFiles, Name, Own.Real, Flags, OutFlags);
  if (Own.Real->pMethods) Own.Base.pMethods = &Methods;
  return Code;
}

int Delete(sqlite3_vfs*, const char* Name, int SyncFolder) {
  if (Strikes(TOperation::EngineDelete)) return SQLITE_IOERR_DELETE;
  return RealFiles->xDelete(RealFiles, Name, SyncFolder);
}

int Access(sqlite3_vfs*, const char* Name, int Flags, int* Result) {
  if (Strikes(TOperation::EngineAccess)) return SQLITE_IOERR_ACCESS;
  return RealFiles->xAccess(RealFiles, Name, Flags, Result);
}

void* Allocate(int Size) { return Strikes(TOperation::EngineMemory) ? nullptr : RealMemory.xMalloc(Size); }

void* Reallocate(void* Old, int Size) {
  return Strikes(TOperation::EngineMemory) ? nullptr : RealMemory.xRealloc(Old, Size);
}

bool InstallFaults() {
  bool Done = sqlite3_config(SQLITE_CONFIG_GETMALLOC, &RealMemory) == SQLITE_OK;
  sqlite3_mem_methods Memory = RealMemory;
  Memory.xMalloc = &Allocate;
  Memory.xRealloc = &Reallocate;
  Done = Done && sqlite3_config(SQLITE_CONFIG_MALLOC, &Memory) == SQLITE_OK;
  // Otherwise small allocations never ask.
  Done = Done && sqlite3_config(SQLITE_CONFIG_LOOKASIDE, 0, 0) == SQLITE_OK;
  if (!Done) throw std::runtime_error("the engine was in use already");
  RealFiles = sqlite3_vfs_find(nullptr);
  static sqlite3_vfs Files = *RealFiles;
  Files.zName = "velkrund-faults";
  Files.szOsFile = static_cast<int>(sizeof(TEngineFile)) + RealFiles->szOsFile;
  Files.xOpen = &Open;
  Files.xDelete = &Delete;
  Files.xAccess = &Access;
  return sqlite3_vfs_register(&Files, 1) == SQLITE_OK;
}

}  // namespace

void MakeEngineFaulty() {
  static const bool Done = InstallFaults();
  if (!Done) throw std::runtime_error("the engine takes no other way to files");
}

}  // namespace velkrund::tests
