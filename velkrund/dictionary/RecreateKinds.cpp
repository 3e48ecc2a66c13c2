#include "velkrund/dictionary/RecreateKinds.h"

#include "velkrund/dictionary/RecreateObject.h"
#include "velkrund/operations/NameLengths.h"
#include "velkrund/platform/database/ApplicationManager.h"
#include "velkrund/platform/ormtools/Format.h"
#include "velkrund/platform/ormtools/Text.h"
#include "velkrund/platform/structures/DSPContainer.h"
#include "velkrund/platform/structures/ObjectTypes.h"

namespace velkrund {

namespace {

template <typename TOperation>
std::unique_ptr<TRecreateOperation> Make() {
  return std::make_unique<TOperation>();
}

constexpr const char* ProcedureNotFound =
    "Can not create stored procedure. Dictionary structure not found (Procedure:'%s';Database:'%s')";
constexpr const char* ProcedureMissingKey = "M_Velkrund_DicUtils_StoredProcForRecreateNotFound";
constexpr const char* ProcedureOverwriteKey = "M_Velkrund_DicUtils_RecreateOverwriteStoredProcConfirm";
constexpr const char* ProcedureErrorKey = "M_Velkrund_DicUtils_ErrorOnRecreateStoredProc";

}  // namespace

constinit const TRecreateKind GeneratorKind{
    GeneratorObjectType,
    "Can not create generator. Dictionary structure not found (Generator:'%s';Database:'%s')",
    "M_Velkrund_DicUtils_GeneratorForRecreateNotFound",
    "M_Velkrund_DicUtils_RecreateOverwriteGeneratorConfirm",
    "M_Velkrund_DicUtils_ErrorOnRecreateGenerator",
    true,
    nullptr,
    [](TDicDatabase& Database, const std::string& Name) { Database.CreateGenerator(Name, std::nullopt, true); },
    &Make<TUORecreateGenerator>};

constinit const TRecreateKind ViewKind{
    ViewObjectType,
    "Can not create view. Dictionary structure not found (View:'%s';Database:'%s')",
    "M_Velkrund_DicUtils_ViewForRecreateNotFound",
    "M_Velkrund_DicUtils_RecreateOverwriteViewConfirm",
    ProcedureErrorKey,
    false,
    &AskCancelCreateLongNameView,
    [](TDicDatabase& Database, const std::string& Name) { Database.CreateView(Name, true, true); },
    &Make<TUORecreateView>};

constinit const TRecreateKind ExecStoredProcKind{
    ExecStoredProcObjectType,
    ProcedureNotFound,
    ProcedureMissingKey,
    ProcedureOverwriteKey,
    ProcedureErrorKey,
    false,
    nullptr,
    [](TDicDatabase& Database, const std::string& Name) { Database.CreateExecStoredProc(Name, true); },
    &Make<TUORecreateExecStoredProc>};

constinit const TRecreateKind SelectStoredProcKind{
    SelectStoredProcObjectType,
    ProcedureNotFound,
    ProcedureMissingKey,
    ProcedureOverwriteKey,
    ProcedureErrorKey,
    false,
    nullptr,
    [](TDicDatabase& Database, const std::string& Name) { Database.CreateSelectStoredProc(Name, true); },
    &Make<TUORecreateSelectStoredProc>};

bool TRecreateKind::IsDescribed(const std::string& Name, const std::string& DatabaseName) const {
  return DSPContainer().Table(DatabaseName).DSPStructureExist(UpperCase(Name), ObjectType);
}

bool TRecreateKind::IsThere(const std::string& Name, const std::string& DatabaseName) const {
  return ObjectExists(DicDBContainer().Database(DatabaseName), ObjectType, Name);
}

std::string TRecreateKind::NotFoundText(const std::string& Name, const std::string& DatabaseName) const {
  return Format(NotFound, Name, DatabaseName);
}

std::string TRecreateKind::OverwriteQuestion(const std::string& Name) const {
  return Format(BaseMng().LString(OverwriteKey), Name);
}

}  // namespace velkrund
