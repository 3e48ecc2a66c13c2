#include "jobs/resources/FolderFiles.h"

#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Printable.h"

namespace velkrund {

std::string TFolderFiles::PathOf(const std::string& Name) const {
  if (Name.find_first_of(std::string_view("/\0", 2)) != std::string::npos || Name.starts_with('.'))
    throw EFCreateError(Format("'%s' cannot be the name of a file in the folder '%s': export it into a file of "
                               "another name",
                               OnOneLine(Name), FFolder),
                        {.Code = TErrorCode::FileOpen, .File = Name});
  return FFolder + (FFolder.ends_with('/') ? "" : "/") + Name + ".eif";
}

bool TFolderFiles::MayWrite(const std::string& Path) {
  if (!FFiles.Exists(Path) || FExisting == TExisting::Replace) return true;
  if (FExisting != TExisting::Ask) return false;
  return FQuestion.Ask({LText("M_Velkrund_LUtils_FileExists", Path),
                        {TAnswer::Yes, TAnswer::No, TAnswer::All, TAnswer::None, TAnswer::Cancel},
                        TPolicy::ExistingFiles}) == TAnswer::Yes;
}

}  // namespace velkrund
