#include "velkrund/module/CHandles.h"
#include "velkrund/module/Module.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

void OpenEIFile(TEIFile& File, const char* FileName, VelkrundFileMode Mode) {
  File.SetFileName(FileName);
  switch (Mode) {
    case VELKRUND_READ:
      File.SetReadonly(true);
      break;
    case VELKRUND_APPEND:
      break;
    case VELKRUND_CREATE:
      File.CreateFile();
      break;
    case VELKRUND_CREATE_NEW:
      File.CreateNewFile();
      break;
    default:
      throw EEIError(Format("There is no file mode %d", Mode));
  }
  File.Open();
}

VelkrundFile& FileAtRest(VelkrundFile* File) {
  RequireCArgument(File, "File");
  RequireAtRest(File->Shared->IsBusy, "file");
  return *File;
}

}  // namespace

}  // namespace velkrund

using namespace velkrund;

VelkrundFile* VelkrundOpenFile(const char* FileName, VelkrundFileMode Mode) {
  return GuardedC<VelkrundFile*>(nullptr, [&] {
    RequireCArgument(FileName, "FileName");
    StartModule();
    auto File = std::make_unique<VelkrundFile>();
    File->Shared = std::make_shared<TCShared<TEIFile>>();
    OpenEIFile(File->Shared->Object, FileName, Mode);
    return File.release();
  });
}

int VelkrundCloseFile(VelkrundFile* File) {
  return GuardedC(0, [File] {
    if (File) FileAtRest(File);
    const std::unique_ptr<VelkrundFile> Owned(File);
    if (Owned && !Owned->Shared->Object.Readonly()) Owned->Shared->Object.Sync();
    return 1;
  });
}

int32_t VelkrundSectionCount(VelkrundFile* File) {
  return GuardedC<std::int32_t>(-1, [&] { return FileAtRest(File).Shared->Object.Sections().Count(); });
}

int VelkrundDescribeSection(VelkrundFile* File, int32_t Index, VelkrundSectionInfo* Info) {
  return GuardedC(0, [&] {
    const TEISection& Section = FileAtRest(File).Shared->Object.Sections()[Index];
    RequireCStruct(Info, "Info");
    // The type is the text of a static descriptor.
    ToCStruct(Info,
              {sizeof *Info, Section.Name().c_str(), Section.TypeName().data(), Section.Version(), Section.DataSize});
    return 1;
  });
}
