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

enum { Done = 0, Failed = 1, WrongUsage = 2, Cancelled = 3 };

/* Callbacks have no argument of their own: what they need is global. */
static bool CancelAtProgress = false;
static bool CancelNow = false;

static void PrintText(const VelkrundChar* Text) {
  for (; *Text; ++Text) putc(*Text < 0x80 ? (int)*Text : '?', stderr);
}

static void OnProgress(int32_t Current, int32_t Total, int32_t OpCurrent, int32_t OpTotal,
                       const VelkrundChar* OperationName, const VelkrundChar* ObjectName) {
  static int32_t Shown = -1;
  (void)OpCurrent;
  if (CancelAtProgress && OpTotal == 0) CancelNow = true; /* OpTotal is 100 when an operation is announced */
  if (Current == Shown) return;
  Shown = Current;
  fprintf(stderr, "%3d of %d  ", (int)Current, (int)Total);
  PrintText(OperationName);
  fputs("  ", stderr);
  PrintText(ObjectName);
  putc('\n', stderr);
}

static bool OnCancel(void) { return CancelNow; }

/* Runs an operation on a file; the properties are pairs of name and text, ended by NULL. */
static int Run(const char* ClassName, VelkrundManager* Manager, const char* FileProperty, VelkrundFile* File,
               const char* const* Properties) {
  VelkrundOperation* Operation = VelkrundCreateOperation(ClassName, Manager);
  int Result = Failed;
  if (!Operation) {
    fprintf(stderr, "%s\n", VelkrundLastError());
    return Failed;
  }
  while (*Properties && VelkrundSetProperty(Operation, Properties[0], Properties[1])) Properties += 2;
  if (*Properties || !VelkrundSetFile(Operation, FileProperty, File)) {
    fprintf(stderr, "%s\n", VelkrundLastError());
  } else if (VelkrundExecute(Operation)) {
    Result = Done;
  } else if (*VelkrundLastError()) {
    fprintf(stderr, "%s\n", VelkrundLastError());
  } else {
    fprintf(stderr, "Cancelled\n");
    Result = Cancelled;
  }
  VelkrundDestroyOperation(Operation);
  return Result;
}

static VelkrundFile* OpenFile(const char* FileName, VelkrundFileMode Mode) {
  VelkrundFile* File = VelkrundOpenFile(FileName, Mode);
  if (!File) fprintf(stderr, "%s\n", VelkrundLastError());
  return File;
}

static int Export(VelkrundManager* Manager, const char* Database, const char* Table, const char* FileName) {
  const char* const Properties[] = {"DatabaseName", Database,       "TableName", Table, "SectionName",
                                    Table,          "ShowProgress", "true",      NULL};
  VelkrundFile* File = OpenFile(FileName, VELKRUND_CREATE);
  int Result;
  if (!File) return Failed;
  Result = Run("TUOExportTableDataInterface", Manager, "Target", File, Properties);
  /* Only now is the file known to be on the disk. */
  if (!VelkrundCloseFile(File) && Result == Done) {
    fprintf(stderr, "%s\n", VelkrundLastError());
    Result = Failed;
  }
  return Result;
}

static int Import(VelkrundManager* Manager, const char* Database, const char* Table, const char* FileName) {
  const char* const Properties[] = {"DatabaseName", Database, "TableName", Table, "SectionNumber", "0",
                                    "ShowProgress", "true",   NULL};
  VelkrundFile* File = OpenFile(FileName, VELKRUND_READ);
  VelkrundSectionInfo Section;
  int Result = Failed;
  if (!File) return Failed;
  if (VelkrundDescribeSection(File, 0, &Section)) {
    printf("%s: section '%s', %s, version %d\n", FileName, Section.Name, Section.Type, (int)Section.Version);
    Result = Run("TUOImportTableDataInterface", Manager, "Source", File, Properties);
  } else {
    fprintf(stderr, "%s\n", VelkrundLastError());
  }
  VelkrundCloseFile(File);
  return Result;
}

static int Job(char** Names, int Count, bool Cancel) {
  const VelkrundCallbacks Callbacks = {OnProgress, OnCancel, NULL, NULL, 0, 100};
  VelkrundManager* Manager = VelkrundCreateManager(&Callbacks);
  int Result;
  VelkrundStartOperationProgress(Manager, "export", Count == 5 ? 50 : 100);
  Result = Export(Manager, Names[0], Names[1], Names[2]);
  if (Result == Done && Count == 5) {
    CancelAtProgress = Cancel;
    VelkrundStartOperationProgress(Manager, "import", 50);
    Result = Import(Manager, Names[3], Names[4], Names[2]);
  }
  VelkrundDestroyManager(Manager);
  return Result;
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
    return WrongUsage;
  }
  if (!VelkrundInstallPlatform(ConfigFile)) {
    fprintf(stderr, "%s\n", VelkrundLastError());
    return Failed;
  }
  Result = Job(Arguments + At, ArgumentCount - At, Cancel);
  if (!VelkrundRemovePlatform()) fprintf(stderr, "%s\n", VelkrundLastError());
  return Result;
}
