/* Runs a job, or any other operation, by its class and properties, and prints what became of it.
 *
 *   run_job [--config FILE] [--report FILE] [--cancel] CLASS [PROPERTY=VALUE ...]
 *   run_job --list [CLASS]
 *
 *   run_job TJobImportTablesInterface DatabaseName=sqlite:shop.db FileName=orders.eif ExistingRows=replace
 *   run_job --report report.json TJobExportTablesInterface DatabaseName=sqlite:shop.db FileName=- | gzip > shop.eif.gz
 *
 * The report, a JSON document, goes to standard output or to a file, errors as they come and the last one to standard
 * error. --cancel stops at the first question whether to. Ends with 0 when all is done, 1 after an error, 2 on wrong
 * usage, 3 when cancelled.
 *
 *   cc -std=c99 run_job.c $(pkg-config --cflags --libs velkrund-c)
 */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "velkrund/module/Velkrund.h"

static int32_t OnCancel(void* UserData) { return *(const bool*)UserData; }

static void OnLog(void* UserData, int32_t Level, const char* Message) {
  (void)UserData;
  if (Level == 1) fprintf(stderr, "%s\n", Message);
}

static void PrintField(const char* Name, const char* Text) {
  if (*Text) fprintf(stderr, "  %s: %s\n", Name, Text);
}

static void PrintNumber(const char* Name, int64_t Number) {
  if (Number) fprintf(stderr, "  %s: %lld\n", Name, (long long)Number);
}

/* The error of the operation's last run, or with NULL that of the last call. */
static int Fail(VelkrundOperation* Operation) {
  VelkrundError Error = VELKRUND_ERROR_INIT;
  size_t At;
  if (!VelkrundGetError(Operation, &Error)) return VELKRUND_FAILED;
  fprintf(stderr, "%s: %s\n", Error.Class, Error.Message);
  PrintField("code", Error.Code);
  PrintField("file", Error.File);
  PrintNumber("line", Error.Line);
  PrintField("section", Error.Section);
  PrintField("table", Error.Table);
  PrintField("column", Error.Column);
  PrintNumber("record", Error.Record);
  PrintField("value", Error.Value);
  PrintField("database", Error.Database);
  PrintField("engine's code", Error.EngineCode);
  PrintField("statement", Error.Statement);
  for (At = 0; At < Error.ContextCount; ++At) PrintField("in", Error.Context[At]);
  return VELKRUND_FAILED;
}

static int List(const char* ClassName) {
  int32_t Index;
  if (!ClassName) {
    for (Index = 0; Index < VelkrundClassCount(); ++Index) puts(VelkrundClassName(Index));
    return VELKRUND_DONE;
  }
  for (Index = 0; Index < VelkrundPropertyCount(ClassName); ++Index) {
    VelkrundPropertyInfo Info = VELKRUND_PROPERTY_INFO_INIT;
    if (!VelkrundDescribeProperty(ClassName, Index, &Info)) return Fail(NULL);
    printf("%-24s %s%s%s%s\n", Info.Name, Info.Help, *Info.Choices ? ": " : "", Info.Choices,
           Info.ReadOnly ? " (read only)" : "");
  }
  return Index > 0 ? VELKRUND_DONE : Fail(NULL);
}

/* Text is PROPERTY=VALUE. */
static int Set(VelkrundOperation* Operation, const char* Text) {
  char Name[64];
  const char* Equals = strchr(Text, '=');
  const size_t Length = Equals ? (size_t)(Equals - Text) : 0;
  if (Length == 0 || Length >= sizeof Name) {
    fprintf(stderr, "'%s' is not PROPERTY=VALUE\n", Text);
    return VELKRUND_WRONG_SETTINGS;
  }
  memcpy(Name, Text, Length);
  Name[Length] = '\0';
  if (VelkrundSetProperty(Operation, Name, Equals + 1)) return VELKRUND_DONE;
  Fail(NULL);
  return VELKRUND_WRONG_SETTINGS;
}

static bool PrintReport(VelkrundOperation* Operation, const char* FileName) {
  const size_t Size = VelkrundGetProperty(Operation, "Report", NULL, 0);
  char* Text = Size ? malloc(Size) : NULL;
  FILE* File = FileName ? fopen(FileName, "w") : stdout;
  bool Printed = Text && File && VelkrundGetProperty(Operation, "Report", Text, Size) && fputs(Text, File) >= 0;
  if (FileName && File && fclose(File) != 0) Printed = false;
  free(Text);
  return Printed;
}

static int Run(VelkrundOperation* Operation, char** Properties, int Count, bool IsJob, const char* ReportFile) {
  int At, Result;
  for (At = 0; At < Count; ++At)
    if ((Result = Set(Operation, Properties[At])) != VELKRUND_DONE) return Result;
  VelkrundExecute(Operation);
  Result = VelkrundLastEnd(Operation);
  if (Result == VELKRUND_CANCELLED) fprintf(stderr, "Cancelled\n");
  if (Result == VELKRUND_FAILED || Result == VELKRUND_WRONG_SETTINGS) Fail(Operation);
  if (IsJob && !PrintReport(Operation, ReportFile)) {
    fprintf(stderr, "The report cannot be written\n");
    if (Result == VELKRUND_DONE) Result = VELKRUND_FAILED;
  }
  return Result;
}

static int Job(char** Arguments, int Count, bool Cancel, const char* ReportFile) {
  VelkrundOperation* Operation = VelkrundCreateOperation(Arguments[0], NULL);
  VelkrundListener Listener = VELKRUND_LISTENER_INIT;
  int Result = VELKRUND_FAILED;
  Listener.UserData = &Cancel;
  Listener.Cancel = OnCancel;
  Listener.Log = OnLog;
  if (Operation && VelkrundSetListener(Operation, &Listener))
    Result = Run(Operation, Arguments + 1, Count - 1, strncmp(Arguments[0], "TJob", 4) == 0, ReportFile);
  else
    Fail(NULL);
  VelkrundDestroyOperation(Operation);
  return Result;
}

int main(int ArgumentCount, char** Arguments) {
  const char *ConfigFile = NULL, *ReportFile = NULL;
  bool ListOnly = false, Cancel = false;
  int At = 1, Result;
  for (; At < ArgumentCount && strncmp(Arguments[At], "--", 2) == 0; ++At) {
    if (strcmp(Arguments[At], "--cancel") == 0)
      Cancel = true;
    else if (strcmp(Arguments[At], "--list") == 0)
      ListOnly = true;
    else if (strcmp(Arguments[At], "--config") == 0 && At + 1 < ArgumentCount)
      ConfigFile = Arguments[++At];
    else if (strcmp(Arguments[At], "--report") == 0 && At + 1 < ArgumentCount)
      ReportFile = Arguments[++At];
    else
      break;
  }
  if (At == ArgumentCount && !ListOnly) {
    fprintf(stderr,
            "run_job [--config FILE] [--report FILE] [--cancel] CLASS [PROPERTY=VALUE ...]\nrun_job --list [CLASS]\n");
    return VELKRUND_WRONG_SETTINGS;
  }
  if (!VelkrundInstallPlatform(ConfigFile)) return Fail(NULL);
  Result = ListOnly ? List(Arguments[At]) : Job(Arguments + At, ArgumentCount - At, Cancel, ReportFile);
  if (!VelkrundRemovePlatform()) return Fail(NULL);
  return Result;
}
