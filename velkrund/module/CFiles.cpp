#include "velkrund/module/CHandles.h"
#include "velkrund/module/Module.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

std::shared_ptr<TEIFile> OpenEIFile(const char* FileName, VelkrundFileMode Mode) {
  auto File = std::make_shared<TEIFile>();
  File->SetFileName(FileName);
  switch (Mode) {
    case VELKRUND_READ:
      File->SetReadonly(true);
      break;
    case VELKRUND_APPEND:
      break;
    case VELKRUND_CREATE:
      File->CreateFile();
      break;
    default:
      throw EEIError(Format("There is no file mode %d", static_cast<int>(Mode)));
  }
  File->Open();
  return File;
}

}  // namespace

}  // namespace velkrund

using namespace velkrund;

VelkrundFile* VelkrundOpenFile(const char* FileName, VelkrundFileMode Mode) {
  return GuardedC<VelkrundFile*>(nullptr, [&] {
    RequireCArgument(FileName, "FileName");
    StartModule();
    auto File = std::make_unique<VelkrundFile>();
    File->File = OpenEIFile(FileName, Mode);
    return File.release();
  });
}

int VelkrundCloseFile(VelkrundFile* File) {
  return GuardedC(0, [File] {
    const std::unique_ptr<VelkrundFile> Owned(File);
    if (Owned && !Owned->File->Readonly()) Owned->File->Sync();
    return 1;
  });
}

int32_t VelkrundSectionCount(VelkrundFile* File) {
  return GuardedC<std::int32_t>(-1, [&] {
    RequireCArgument(File, "File");
    return File->File->Sections().Count();
  });
}

int VelkrundDescribeSection(VelkrundFile* File, int32_t Index, VelkrundSectionInfo* Info) {
  return GuardedC(0, [&] {
    RequireCArgument(File, "File");
    RequireCArgument(Info, "Info");
    const TEISection& Section = File->File->Sections()[Index];
    // The type is the text of a static descriptor.
    *Info = {Section.Name().c_str(), Section.TypeName().data(), Section.Version(), Section.DataSize};
    return 1;
  });
}
