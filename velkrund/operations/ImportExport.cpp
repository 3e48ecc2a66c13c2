#include "velkrund/operations/ImportExport.h"

#include "velkrund/platform/ormtools/Exceptions.h"

namespace velkrund {

int TImportUtilOperation::Execute() {
  if (!FSource) throw EAccessViolation("Access violation: the source of an import operation is not assigned");
  const std::unique_ptr<TEIObject> Object = FSource->CreateEIObject(FSectionNumber);
  InitEIObject(*Object);
  Object->OnProgress = FOnShowProgress;
  Object->OnCancel = [this] { return IsCanceled(); };
  if (!FSource) throw Exception("Propetry Source must be assigned for import util operation");
  try {
    FSource->ImportObject(*Object);
  } catch (const EAbort&) {
    return 0;
  }
  EndEIObject(*Object);
  return Object->Stopped() ? 0 : 1;
}

int TExportUtilOperation::Execute() {
  const std::unique_ptr<TEIObject> Object = CreateEIObject();
  // What nobody sees is not counted.
  Object->OnProgress = FOnShowProgress;
  Object->OnCancel = [this] { return IsCanceled(); };
  if (!FTarget) throw Exception("Propetry Target must be assigned for export util operation");
  FTarget->SetDefaultEncoding(FReleaseVersion == TExportReleaseVersion::rv20 ? FEncoding : TKvEncoding::Ansi);
  try {
    FTarget->ExportObject(*Object, SectionName());
  } catch (const EAbort&) {
    return 0;
  }
  EndEIObject(*Object);
  return 1;
}

}  // namespace velkrund
