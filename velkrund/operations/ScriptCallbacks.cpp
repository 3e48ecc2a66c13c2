// Progress and cancel of an operation through two functions of a script module.

#include "velkrund/operations/UtilOperationInterface.h"
#include "velkrund/platform/extcalls/ExtCall.h"
#include "velkrund/platform/ormtools/Exceptions.h"
#include "velkrund/platform/ormtools/Format.h"

namespace velkrund {

namespace {

void Require(bool Condition, std::string_view Message, const char* Purpose) {
  if (!Condition) throw Exception(Format(Message, Purpose));
}

}  // namespace

void TUtilOperationInterface::SetProgressCallBack(const std::string& Module, const std::string& ShowProc,
                                                  const std::string& CancelProc) {
  if (!FExtCall) FExtCall = ExtCalls().CreateExtCall();
  BLLModule = Module;
  BLLShowProc = ShowProc;
  BLLCancelProc = CancelProc;
}

TExtCall& TUtilOperationInterface::PrepareCall(const std::string& Function, const char* Purpose) {
  if (!FExtCall) throw EAccessViolation("No script functions are set for progress and cancel");
  FExtCall->SetModule(BLLModule);
  FExtCall->SetFunction(Function);
  FExtCall->SetCallKind(TExtCallKind::ModuleFunction);
  Require(FExtCall->ReadBLLFunction(), "Error preparing %s BLL function to execute", Purpose);
  return *FExtCall;
}

bool TUtilOperationInterface::BLLCancel() {
  constexpr const char* Purpose = "Cancel";
  TExtCall& Call = PrepareCall(BLLCancelProc, Purpose);
  Require(Call.ParamCount() == 0, "Incorrent number of parameters of %s bll function", Purpose);
  Require(Call.ResultType() == static_cast<int>(TExtCallType::Boolean), "Incorrent type of result of %s bll function",
          Purpose);
  Require(Call.Execute(), "Error executing %s BLL function", Purpose);
  return Call.BooleanResult();
}

void TUtilOperationInterface::BLLShowProgress(std::int32_t Current, std::int32_t Total, std::string_view ObjectName) {
  constexpr const char* Purpose = "ShowProgress";
  constexpr TExtCallType Types[] = {TExtCallType::Integer, TExtCallType::Integer, TExtCallType::String};
  TExtCall& Call = PrepareCall(BLLShowProc, Purpose);
  Require(Call.ParamCount() == static_cast<int>(std::size(Types)), "Incorrent number of parameters of %s bll function",
          Purpose);
  for (int Index = 0; Index < Call.ParamCount(); ++Index)
    Require(Call.ParamType(Index) == static_cast<int>(Types[Index]), "Incorrent type of parameters of %s bll function",
            Purpose);
  Call.SetIntegerParam(0, Current);
  Call.SetIntegerParam(1, Total);
  Call.SetStringParam(2, ObjectName);
  Require(Call.Execute(), "Error executing %s BLL function", Purpose);
}

}  // namespace velkrund
