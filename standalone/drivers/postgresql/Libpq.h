#pragma once

#include <libpq-fe.h>

#include <atomic>

namespace velkrund {

/// The function of libpq with that name. The library is loaded with the first one that is looked for, and stays: it
/// brings so many others along that a command without a server would spend most of its start on them. Safe to call from
/// several threads. Raises EDatabaseError where it is not installed, or has no such function.
void* FindLibpqFunction(const char* Name);

/// A function of libpq, found when it is called first.
template <typename F>
class TLibpqFunction;

template <typename R, typename... A>
class TLibpqFunction<R (*)(A...)> {
 public:
  explicit constexpr TLibpqFunction(const char* Name) : FName(Name) {}

  using TFunction = R (*)(A...);

  R operator()(A... Arguments) { return Found()(Arguments...); }
  TFunction Found() {
    TFunction Result = FFunction.load(std::memory_order_relaxed);
    if (!Result) FFunction = Result = reinterpret_cast<TFunction>(FindLibpqFunction(FName));
    return Result;
  }

 private:
  const char* const FName;
  std::atomic<TFunction> FFunction = nullptr;
};

// In the place of those that the library's header declares.
inline constinit TLibpqFunction<decltype(&::PQcancel)> PQcancel("PQcancel");
inline constinit TLibpqFunction<decltype(&::PQclear)> PQclear("PQclear");
inline constinit TLibpqFunction<decltype(&::PQcmdStatus)> PQcmdStatus("PQcmdStatus");
inline constinit TLibpqFunction<decltype(&::PQcmdTuples)> PQcmdTuples("PQcmdTuples");
inline constinit TLibpqFunction<decltype(&::PQconnectStartParams)> PQconnectStartParams("PQconnectStartParams");
inline constinit TLibpqFunction<decltype(&::PQconnectdbParams)> PQconnectdbParams("PQconnectdbParams");
inline constinit TLibpqFunction<decltype(&::PQconnectionNeedsPassword)> PQconnectionNeedsPassword(
    "PQconnectionNeedsPassword");
inline constinit TLibpqFunction<decltype(&::PQconnectionUsedPassword)> PQconnectionUsedPassword(
    "PQconnectionUsedPassword");
inline constinit TLibpqFunction<decltype(&::PQconninfo)> PQconninfo("PQconninfo");
inline constinit TLibpqFunction<decltype(&::PQconninfoFree)> PQconninfoFree("PQconninfoFree");
inline constinit TLibpqFunction<decltype(&::PQconninfoParse)> PQconninfoParse("PQconninfoParse");
inline constinit TLibpqFunction<decltype(&::PQconsumeInput)> PQconsumeInput("PQconsumeInput");
inline constinit TLibpqFunction<decltype(&::PQenterPipelineMode)> PQenterPipelineMode("PQenterPipelineMode");
inline constinit TLibpqFunction<decltype(&::PQerrorMessage)> PQerrorMessage("PQerrorMessage");
inline constinit TLibpqFunction<decltype(&::PQexitPipelineMode)> PQexitPipelineMode("PQexitPipelineMode");
inline constinit TLibpqFunction<decltype(&::PQfinish)> PQfinish("PQfinish");
inline constinit TLibpqFunction<decltype(&::PQflush)> PQflush("PQflush");
inline constinit TLibpqFunction<decltype(&::PQfmod)> PQfmod("PQfmod");
inline constinit TLibpqFunction<decltype(&::PQfname)> PQfname("PQfname");
inline constinit TLibpqFunction<decltype(&::PQfreeCancel)> PQfreeCancel("PQfreeCancel");
inline constinit TLibpqFunction<decltype(&::PQfreemem)> PQfreemem("PQfreemem");
inline constinit TLibpqFunction<decltype(&::PQftype)> PQftype("PQftype");
inline constinit TLibpqFunction<decltype(&::PQgetCancel)> PQgetCancel("PQgetCancel");
inline constinit TLibpqFunction<decltype(&::PQgetCopyData)> PQgetCopyData("PQgetCopyData");
inline constinit TLibpqFunction<decltype(&::PQgetResult)> PQgetResult("PQgetResult");
inline constinit TLibpqFunction<decltype(&::PQgetisnull)> PQgetisnull("PQgetisnull");
inline constinit TLibpqFunction<decltype(&::PQgetlength)> PQgetlength("PQgetlength");
inline constinit TLibpqFunction<decltype(&::PQgetvalue)> PQgetvalue("PQgetvalue");
inline constinit TLibpqFunction<decltype(&::PQisBusy)> PQisBusy("PQisBusy");
inline constinit TLibpqFunction<decltype(&::PQisthreadsafe)> PQisthreadsafe("PQisthreadsafe");
inline constinit TLibpqFunction<decltype(&::PQnfields)> PQnfields("PQnfields");
inline constinit TLibpqFunction<decltype(&::PQntuples)> PQntuples("PQntuples");
inline constinit TLibpqFunction<decltype(&::PQparameterStatus)> PQparameterStatus("PQparameterStatus");
inline constinit TLibpqFunction<decltype(&::PQpipelineSync)> PQpipelineSync("PQpipelineSync");
inline constinit TLibpqFunction<decltype(&::PQputCopyData)> PQputCopyData("PQputCopyData");
inline constinit TLibpqFunction<decltype(&::PQputCopyEnd)> PQputCopyEnd("PQputCopyEnd");
inline constinit TLibpqFunction<decltype(&::PQresultErrorField)> PQresultErrorField("PQresultErrorField");
inline constinit TLibpqFunction<decltype(&::PQresultErrorMessage)> PQresultErrorMessage("PQresultErrorMessage");
inline constinit TLibpqFunction<decltype(&::PQresultMemorySize)> PQresultMemorySize("PQresultMemorySize");
inline constinit TLibpqFunction<decltype(&::PQresultStatus)> PQresultStatus("PQresultStatus");
inline constinit TLibpqFunction<decltype(&::PQsendDescribePrepared)> PQsendDescribePrepared("PQsendDescribePrepared");
inline constinit TLibpqFunction<decltype(&::PQsendPrepare)> PQsendPrepare("PQsendPrepare");
inline constinit TLibpqFunction<decltype(&::PQsendQuery)> PQsendQuery("PQsendQuery");
inline constinit TLibpqFunction<decltype(&::PQsendQueryParams)> PQsendQueryParams("PQsendQueryParams");
inline constinit TLibpqFunction<decltype(&::PQsendQueryPrepared)> PQsendQueryPrepared("PQsendQueryPrepared");
inline constinit TLibpqFunction<decltype(&::PQserverVersion)> PQserverVersion("PQserverVersion");
inline constinit TLibpqFunction<decltype(&::PQsetNoticeReceiver)> PQsetNoticeReceiver("PQsetNoticeReceiver");
inline constinit TLibpqFunction<decltype(&::PQsetSingleRowMode)> PQsetSingleRowMode("PQsetSingleRowMode");
inline constinit TLibpqFunction<decltype(&::PQsetnonblocking)> PQsetnonblocking("PQsetnonblocking");
inline constinit TLibpqFunction<decltype(&::PQsocket)> PQsocket("PQsocket");
inline constinit TLibpqFunction<decltype(&::PQstatus)> PQstatus("PQstatus");
inline constinit TLibpqFunction<decltype(&::PQtransactionStatus)> PQtransactionStatus("PQtransactionStatus");
inline constinit TLibpqFunction<decltype(&::PQuser)> PQuser("PQuser");

}  // namespace velkrund
