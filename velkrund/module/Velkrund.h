#pragma once

/* Velkrund for hosts written in C, or in whatever can call C: databases, export/import files (EIF) and the operations
 * between them. examples/export_table.c shows a whole job. Link with libvelkrund-c (pkg-config: velkrund-c).
 *
 * Errors.    A function that fails returns 0 or NULL, where nothing else is said, and VelkrundLastError tells why. No
 *            C++ exception leaves a function.
 * Texts.     Names, values and messages are UTF-8; what callbacks get is UTF-16. All are zero-terminated. A text that
 *            a function returns is owned by the library; how long it lives is said there.
 * Ownership. What a Create or Open function returns is yours until you hand it to its Destroy or Close function, which
 *            take NULL too. Operations and files have to be gone before the platform is removed.
 * Threads.   One operation runs at a time in a process. A handle is used by one thread at a time; callbacks are called
 *            on the thread that called VelkrundExecute, and must not run another operation, nor change or destroy the
 *            running one.
 */

#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
#else
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#endif

#if defined(__GNUC__)
#define VELKRUND_API __attribute__((visibility("default")))
#else
#define VELKRUND_API
#endif

/* NOLINTBEGIN(modernize-*): C has no other way. */
#ifdef __cplusplus
extern "C" {
typedef char16_t VelkrundChar;
#else
typedef uint16_t VelkrundChar;
#endif

typedef struct VelkrundManager VelkrundManager;
typedef struct VelkrundOperation VelkrundOperation;
typedef struct VelkrundFile VelkrundFile;

/* "Class:message" of this thread's last call when it failed, else an empty text. Valid until the thread's next call. */
VELKRUND_API const char* VelkrundLastError(void);

/* --- The platform: what databases are there, and where files are. One at a time. --------------------------------- */

/* Makes the jobs known too, see below. ConfigFile: a velkrund.toml; NULL: $VELKRUND_CONFIG, ./velkrund.toml, the user's
 * one, or the defaults. Relative names in it are relative to its folder. Databases are named by its entries or by URLs
 * such as "sqlite:shop.db"; they have to exist, unless a job is told to make one. */
VELKRUND_API int VelkrundInstallPlatform(const char* ConfigFile);
/* Fails while operations or files exist. */
VELKRUND_API int VelkrundRemovePlatform(void);

/* --- What there is. Texts live as long as the process. ------------------------------------------------------------ */

typedef enum VelkrundType {
  VELKRUND_BOOLEAN,     /* true, false */
  VELKRUND_INTEGER,     /* decimal; of 32 bits where it can be set, counts may be larger */
  VELKRUND_STRING,      /* as it is */
  VELKRUND_ENUMERATION, /* one of the property's Choices, or its number from 0 */
  VELKRUND_STRING_LIST, /* a,b,c */
  VELKRUND_PAIR_LIST,   /* a=b,c=d */
  VELKRUND_OBJECT       /* no text: a file, for VelkrundSetFile */
} VelkrundType;

typedef struct VelkrundPropertyInfo {
  const char* Name;
  const char* Help;
  const char* Choices; /* of an enumeration, separated by commas, else empty */
  VelkrundType Type;
  int32_t ReadOnly; /* 0 or 1 */
} VelkrundPropertyInfo;

/* The classes of operations, such as "TUOExportTableDataInterface", and once a platform is installed those of jobs,
 * such as "TJobImportFilesInterface".
 *
 * A job is a whole run as a person asks for it: it opens and closes its files itself, settles what is there already
 * before the first change, keeps together what foreign keys tie together, and refuses what the command line program
 * refuses. What it would ask about is decided by properties (ExistingRows, ExistingSections, ExistingStructures,
 * OnError, Yes), else by the message box; where neither decides it is an error that names the property. Rows, sections
 * and structures that are there are never touched unasked; structures are asked about as each one comes, all else
 * before the first change. The property Report has what became of everything, as a JSON document; other properties have
 * the counts. examples/run_job.c runs any of them.
 *
 * Single operations do one step and what they are told: TUOImportTableDataInterface empties a table before it loads it,
 * unless its property Append says otherwise, and the imports of files (TUOImportFileInterface and
 * TUOImportFilesInterface) always do. */
VELKRUND_API int32_t VelkrundClassCount(void);
/* Index: 0 .. VelkrundClassCount() - 1. */
VELKRUND_API const char* VelkrundClassName(int32_t Index);
VELKRUND_API int32_t VelkrundPropertyCount(const char* ClassName);
/* Fills Info. Index: 0 .. VelkrundPropertyCount() - 1. */
VELKRUND_API int VelkrundDescribeProperty(const char* ClassName, int32_t Index, VelkrundPropertyInfo* Info);

/* --- Progress, cancel and log of a sequence of operations. -------------------------------------------------------- */

/* Current of Total is the position in the whole sequence, within the range given; Total is 100. OpCurrent of OpTotal is
 * 0 of 100 when an operation starts, and 0 of 0 while it runs. Texts are valid during the call only. */
typedef void (*VelkrundProgressProc)(int32_t Current, int32_t Total, int32_t OpCurrent, int32_t OpTotal,
                                     const VelkrundChar* OperationName, const VelkrundChar* ObjectName);
/* true: stop. Called often. */
typedef bool (*VelkrundCancelProc)(void);
/* What happens in operations beside their result: sections that failed while the import goes on, database objects that
 * are not created. Level: 1 errors, 2 warnings and what may still come right. */
typedef void (*VelkrundLogProc)(const VelkrundChar* Message);
typedef void (*VelkrundLevelLogProc)(const VelkrundChar* Message, int32_t Level);

/* Each procedure may be NULL. LevelLog is preferred to Log. */
typedef struct VelkrundCallbacks {
  VelkrundProgressProc Progress;
  VelkrundCancelProc Cancel;
  VelkrundLogProc Log;
  VelkrundLevelLogProc LevelLog;
  int32_t RangeStart; /* of Current; 0 .. 100 for the plain percentage */
  int32_t RangeEnd;
} VelkrundCallbacks;

VELKRUND_API VelkrundManager* VelkrundCreateManager(const VelkrundCallbacks* Callbacks);
VELKRUND_API int VelkrundDestroyManager(VelkrundManager* Manager);
/* Begins the next operation of the sequence; Weight: its share of the range, in percent. */
VELKRUND_API int VelkrundStartOperationProgress(VelkrundManager* Manager, const char* Name, int32_t Weight);

/* Answers a question, or shows a message, of an operation. Flags and answers are those of the desktop systems' message
 * box: 4 asks yes or no, 3 also cancel, 0 tells; answers are 1 OK, 2 cancel, 6 yes, 7 no. 0: nobody can answer, which
 * makes the question an error. Whether a structure that exists is overwritten is asked with 3: yes replaces it, no
 * leaves it as it is, cancel ends the run. The property OverwriteExisting of TUOImportDSPStructureInterface answers
 * that beforehand, and can also have the structure updated. Jobs ask with 3 too: about rows that are there (yes deletes
 * them, no leaves the table out), sections that are there (yes replaces, no leaves out), whether to go on after an
 * error, and whether to remove or drop. */
typedef int32_t (*VelkrundMessageBoxProc)(uintptr_t Window, const VelkrundChar* Text, const VelkrundChar* Caption,
                                          uint32_t Flags, int32_t Extra1, int32_t Extra2);
/* NULL: nobody answers. To be called while no operation runs. */
VELKRUND_API int VelkrundSetMessageBox(VelkrundMessageBoxProc MessageBox);

/* --- Export/import files. ----------------------------------------------------------------------------------------- */

typedef enum VelkrundFileMode {
  VELKRUND_READ,   /* others may write meanwhile */
  VELKRUND_APPEND, /* an existing file, for exports behind what it holds; other writers are refused */
  VELKRUND_CREATE  /* a new file; one that exists is emptied */
} VelkrundFileMode;

/* Texts live until the file is written to or closed. */
typedef struct VelkrundSectionInfo {
  const char* Name;
  const char* Type; /* such as "TableData" */
  int32_t Version;  /* 100 or 200 */
  int64_t Size;     /* bytes of the body */
} VelkrundSectionInfo;

VELKRUND_API VelkrundFile* VelkrundOpenFile(const char* FileName, VelkrundFileMode Mode);
/* Waits until what was written has reached the disk; 0 when it did not. The handle is gone in either case; the file
 * itself is let go of when no operation has it as a property any more. */
VELKRUND_API int VelkrundCloseFile(VelkrundFile* File);
/* -1 on failure. */
VELKRUND_API int32_t VelkrundSectionCount(VelkrundFile* File);
/* Fills Info. Index: 0 .. VelkrundSectionCount() - 1. */
VELKRUND_API int VelkrundDescribeSection(VelkrundFile* File, int32_t Index, VelkrundSectionInfo* Info);

/* --- Operations. -------------------------------------------------------------------------------------------------- */

/* Manager may be NULL: then there is no progress and no cancel. It may be destroyed before the operation. Progress is
 * reported once the property ShowProgress is true. */
VELKRUND_API VelkrundOperation* VelkrundCreateOperation(const char* ClassName, VelkrundManager* Manager);
VELKRUND_API int VelkrundDestroyOperation(VelkrundOperation* Operation);
/* Sets a property from its text, whose form its type says. */
VELKRUND_API int VelkrundSetProperty(VelkrundOperation* Operation, const char* Name, const char* Text);
/* Sets a list from texts that may hold commas; pairs as a=b. */
VELKRUND_API int VelkrundSetList(VelkrundOperation* Operation, const char* Name, const char* const* Items,
                                 size_t Count);
/* Sets a file, such as Source or Target. NULL takes it away. */
VELKRUND_API int VelkrundSetFile(VelkrundOperation* Operation, const char* Name, VelkrundFile* File);
/* Copies a property's text, cut to Size bytes with the zero at its end. Returns the bytes that the whole text needs,
 * its zero included. Buffer may be NULL when Size is 0. */
VELKRUND_API size_t VelkrundGetProperty(VelkrundOperation* Operation, const char* Name, char* Buffer, size_t Size);
/* Runs the operation; non-zero: done. 0 with an empty VelkrundLastError: cancelled, or ended early by a property; what
 * was not finished is undone. */
VELKRUND_API int32_t VelkrundExecute(VelkrundOperation* Operation);

#ifdef __cplusplus
}
#endif
/* NOLINTEND(modernize-*) */
