/* Runs a job, or any other operation, by its class and properties, and prints what became of it.
 *
 *   run_job [--config FILE] [--cancel] CLASS [PROPERTY=VALUE ...]
 *   run_job --list [CLASS]
 *
 *   run_job TJobImportTablesInterface DatabaseName=sqlite:shop.db FileName=orders.eif ExistingRows=replace
 *
 * The report, a JSON document, goes to standard output, errors as they come and the last one to standard error.
 * --cancel stops at the first question whether to. Ends with 0 when all is done, 1 after an error, 2 on wrong usage, 3
 * when cancelled.
 *
 *   cc -std=c99 run_job.c $(pkg-config --cflags --libs velkrund-c)
 */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "velkrund/module/Velkrund.h"

enum { Done = 0, Failed = 1, WrongUsage = 2, Cancelled = 3 };

static bool CancelAtOnce = false;

static bool OnCancel(void) { return CancelAtOnce; }

static void OnLog(const VelkrundChar* Message, int32_t Level) {
  if (Level > 1) return;
  for (; *Message; ++Message) putc(*Message < 0x80 ? (int)*Message : '?', stderr);
  putc('\n', stderr);
}

static int Fail(void) {
  fprintf(stderr, "%s\n", VelkrundLastError());
  return Failed;
}

static int List(const char* ClassName) {
  int32_t Index;
  if (!ClassName) {
    for (Index = 0; Index < VelkrundClassCount(); ++Index) puts(VelkrundClassName(Index));
    return Done;
  }
  for (Index = 0; Index < VelkrundPropertyCount(ClassName); ++Index) {
    VelkrundPropertyInfo Info;
    if (!VelkrundDescribeProperty(ClassName, Index, &Info)) return Fail();
    printf("%-24s %s%s%s%s\n", Info.Name, Info.Help, *Info.Choices ? ": " : "", Info.Choices,
           Info.ReadOnly ? " (read only)" : "");
  }
  return Index > 0 ? Done : Fail();
}

/* Text is PROPERTY=VALUE. */
static int Set(VelkrundOperation* Operation, const char* Text) {
  char Name[64];
  const char* Equals = strchr(Text, '=');
  const size_t Length = Equals ? (size_t)(Equals - Text) : 0;
  if (Length == 0 || Length >= sizeof Name) {
    fprintf(stderr, "'%s' is not PROPERTY=VALUE\n", Text);
    return WrongUsage;
  }
  memcpy(Name, Text, Length);
  Name[Length] = '\0';
  if (VelkrundSetProperty(Operation, Name, Equals + 1)) return Done;
  Fail();
  return WrongUsage;
}

/* Operations that are no jobs have none. */
static bool PrintReport(VelkrundOperation* Operation) {
  const size_t Size = VelkrundGetProperty(Operation, "Report", NULL, 0);
  char* Text = Size ? malloc(Size) : NULL;
  const bool Printed = Text && VelkrundGetProperty(Operation, "Report", Text, Size) && fputs(Text, stdout) >= 0;
  free(Text);
  return Printed;
}

static int Run(const char* ClassName, VelkrundOperation* Operation, char** Properties, int Count) {
  char Error[4096];
  int At, Result;
  for (At = 0; At < Count; ++At)
    if ((Result = Set(Operation, Properties[At])) != Done) return Result;
  Result = VelkrundExecute(Operation) ? Done : *VelkrundLastError() ? Failed : Cancelled;
  snprintf(Error, sizeof Error, "%s", VelkrundLastError());
  if (!PrintReport(Operation) && Result == Done && strncmp(ClassName, "TJob", 4) == 0) return Fail();
  if (strncmp(Error, "ESettingsError:", 15) == 0) Result = WrongUsage;
  if (Result == Failed || Result == WrongUsage) fprintf(stderr, "%s\n", Error);
  if (Result == Cancelled) fprintf(stderr, "Cancelled\n");
  return Result;
}

static int Job(char** Arguments, int Count) {
  const VelkrundCallbacks Callbacks = {NULL, OnCancel, NULL, OnLog, 0, 100};
  VelkrundManager* Manager = VelkrundCreateManager(&Callbacks);
  VelkrundOperation* Operation = VelkrundCreateOperation(Arguments[0], Manager);
  const int Result = Operation ? Run(Arguments[0], Operation, Arguments + 1, Count - 1) : Fail();
  VelkrundDestroyOperation(Operation);
  VelkrundDestroyManager(Manager);
  return Result;
}

int main(int ArgumentCount, char** Arguments) {
  const char* ConfigFile = NULL;
  bool ListOnly = false;
  int At = 1, Result;
  for (; At < ArgumentCount && strncmp(Arguments[At], "--", 2) == 0; ++At) {
    if (strcmp(Arguments[At], "--cancel") == 0)
      CancelAtOnce = true;
    else if (strcmp(Arguments[At], "--list") == 0)
      ListOnly = true;
    else if (strcmp(Arguments[At], "--config") == 0 && At + 1 < ArgumentCount)
      ConfigFile = Arguments[++At];
    else
      break;
  }
  if (At == ArgumentCount && !ListOnly) {
    fprintf(stderr, "run_job [--config FILE] [--cancel] CLASS [PROPERTY=VALUE ...]\nrun_job --list [CLASS]\n");
    return WrongUsage;
  }
  if (!VelkrundInstallPlatform(ConfigFile)) return Fail();
  Result = ListOnly ? List(Arguments[At]) : Job(Arguments + At, ArgumentCount - At);
  if (!VelkrundRemovePlatform()) return Fail();
  return Result;
}
