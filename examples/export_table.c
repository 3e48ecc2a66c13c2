/* Exports a table into a file, with progress shown, and imports the file into another table when one is named.
 *
 *   export_table [--config FILE] [--cancel] DATABASE TABLE FILE [TARGET_DATABASE TARGET_TABLE]
 *
 * A database is an entry of the configuration, or a URL such as sqlite:shop.db. FILE is made new; the rows of the
 * target table are replaced. --cancel stops the import at its first sign of progress: the target table stays as it was.
 * Ends with 0 when all is done, 1 after an error, 2 on wrong usage, 3 when cancelled.
 *
 *   cc -std=c99 export_table.c $(pkg-config --cflags --libs velkrund-c)
 */

#include <stdio.h>
#include <string.h>

#include "velkrund/module/Velkrund.h"

/* What the callbacks of one operation need. */
typedef struct Watch {
  const char* What;
  int64_t Shown; /* percent; -1: nothing yet */
  bool CancelAtProgress, CancelNow;
} Watch;

static void OnProgress(void* UserData, int64_t Current, int64_t Total, const char* ObjectName) {
  Watch* This = UserData;
  const int64_t Percent = Total > 0 ? Current * 100 / Total : 0;
  if (This->CancelAtProgress) This->CancelNow = true;
  if (Percent == This->Shown) return;
  This->Shown = Percent;
  fprintf(stderr, "%s %s: %d %%\n", This->What, ObjectName, (int)Percent);
}

static int32_t OnCancel(void* UserData) { return ((const Watch*)UserData)->CancelNow; }

/* The error of the operation's last run, or with NULL that of the last call. */
static int Fail(VelkrundOperation* Operation) {
  VelkrundError Error = VELKRUND_ERROR_INIT;
  if (!VelkrundGetError(Operation, &Error)) return VELKRUND_FAILED;
  fprintf(stderr, "%s: %s (%s)\n", Error.Class, Error.Message, Error.Code);
  if (*Error.Table) fprintf(stderr, "  table %s\n", Error.Table);
  if (*Error.Column) fprintf(stderr, "  column %s\n", Error.Column);
  if (Error.Line) fprintf(stderr, "  %s, line %lld\n", Error.File, (long long)Error.Line);
  return VELKRUND_FAILED;
}

/* Runs an operation on a file; the properties are pairs of name and text, ended by NULL. */
static int Run(const char* ClassName, Watch* Watching, const char* FileProperty, VelkrundFile* File,
               const char* const* Properties) {
  VelkrundOperation* Operation = VelkrundCreateOperation(ClassName, NULL);
  VelkrundListener Listener = VELKRUND_LISTENER_INIT;
  int64_t Rows = 0;
  int Result = VELKRUND_FAILED;
  if (!Operation) return Fail(NULL);
  Listener.UserData = Watching;
  Listener.Progress = OnProgress;
  Listener.Cancel = OnCancel;
  while (*Properties && VelkrundSetProperty(Operation, Properties[0], Properties[1])) Properties += 2;
  if (*Properties || !VelkrundSetFile(Operation, FileProperty, File) || !VelkrundSetListener(Operation, &Listener)) {
    Fail(NULL);
  } else {
    VelkrundExecute(Operation);
    Result = VelkrundLastEnd(Operation);
    if (Result == VELKRUND_CANCELLED)
      fprintf(stderr, "Cancelled\n");
    else if (Result != VELKRUND_DONE)
      Fail(Operation);
    else if (VelkrundGetInteger(Operation, "Rows", &Rows))
      printf("%s: %lld rows\n", Watching->What, (long long)Rows);
  }
  VelkrundDestroyOperation(Operation);
  return Result;
}

static int Export(const char* Database, const char* Table, const char* FileName) {
  const char* const Properties[] = {"DatabaseName", Database, "TableName", Table, "SectionName", Table, NULL};
  Watch Watching = {"export", -1, false, false};
  VelkrundFile* File = VelkrundOpenFile(FileName, VELKRUND_CREATE);
  int Result;
  if (!File) return Fail(NULL);
  Result = Run("TUOExportTableDataInterface", &Watching, "Target", File, Properties);
  /* Only now is the file known to be on the disk. */
  if (!VelkrundCloseFile(File) && Result == VELKRUND_DONE) Result = Fail(NULL);
  return Result;
}

static int Import(const char* Database, const char* Table, const char* FileName, bool Cancel) {
  const char* const Properties[] = {"DatabaseName", Database, "TableName", Table, "SectionNumber", "0", NULL};
  Watch Watching = {"import", -1, Cancel, false};
  VelkrundFile* File = VelkrundOpenFile(FileName, VELKRUND_READ);
  VelkrundSectionInfo Section = VELKRUND_SECTION_INFO_INIT;
  int Result = VELKRUND_FAILED;
  if (!File) return Fail(NULL);
  if (VelkrundDescribeSection(File, 0, &Section)) {
    printf("%s: section '%s', %s, version %d\n", FileName, Section.Name, Section.Type, (int)Section.Version);
    Result = Run("TUOImportTableDataInterface", &Watching, "Source", File, Properties);
  } else {
    Fail(NULL);
  }
  VelkrundCloseFile(File);
  return Result;
}

static int Job(char** Names, int Count, bool Cancel) {
  const int Result = Export(Names[0], Names[1], Names[2]);
  return Result == VELKRUND_DONE && Count == 5 ? Import(Names[3], Names[4], Names[2], Cancel) : Result;
}

int main(int ArgumentCount, char** Arguments) {
  const char* ConfigFile = NULL;
  bool Cancel = false;
  int At = 1, Result;
  for (; At < ArgumentCount && strncmp(Arguments[At], "--", 2) == 0; ++At) {
    if (strcmp(Arguments[At], "--cancel") == 0)
      Cancel = true;
    else if (strcmp(Arguments[At], "--config") == 0 && At + 1 < ArgumentCount)
      ConfigFile = Arguments[++At];
    else
      break;
  }
  if (ArgumentCount - At != 3 && ArgumentCount - At != 5) {
    fprintf(stderr, "export_table [--config FILE] [--cancel] DATABASE TABLE FILE [TARGET_DATABASE TARGET_TABLE]\n");
    return VELKRUND_WRONG_SETTINGS;
  }
  if (!VelkrundInstallPlatform(ConfigFile)) return Fail(NULL);
  Result = Job(Arguments + At, ArgumentCount - At, Cancel);
  if (!VelkrundRemovePlatform()) return Fail(NULL);
  return Result;
}
