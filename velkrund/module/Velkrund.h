#pragma once

/* Velkrund for hosts written in C, or in whatever can call C: databases, export/import files (EIF) and the operations
 * between them. examples/run_job.c runs whole jobs, examples/export_table.c single operations. Link with libvelkrund-c
 * (pkg-config: velkrund-c; CMake: find_package(Velkrund COMPONENTS c), Velkrund::c).
 *
 * Errors.     A function that fails returns 0 or NULL, where nothing else is said. VelkrundLastError tells why in one
 *             text, VelkrundGetError in its parts. No C++ exception leaves a function. NULL for an argument that is not
 *             said to take it is an error, and so is an index or a name that is not there.
 * Texts.      UTF-8, zero-terminated; the callbacks of a manager and the message box get UTF-16. Texts that are given
 *             are copied. A text that a function returns is owned by the library; how long it lives is said there. A
 *             text that is unknown is empty, never NULL.
 * Structures. Each begins with its size, which the caller sets, best by its initializer (VELKRUND_LISTENER_INIT and so
 *             on): the library reads and fills what both sides know, and leaves the rest alone. Later versions append
 *             fields. They are copied: a structure may go when the call has returned.
 * Ownership.  What a Create or Open function returns is yours until you hand it to its Destroy or Close function, which
 *             take NULL too. They may go in any order; operations and files have to be gone before the platform is
 *             removed. A handle that was given back is not to be used any more.
 * Threads.    One operation runs at a time in a process; a second one is refused. A handle is used by one thread at a
 *             time.
 * Callbacks.  Called on the thread that called VelkrundExecute (or VelkrundStartOperationProgress), before it returns;
 *             they must come back by returning. From within them, whatever touches the running operation, its files or
 *             its manager is refused with an error, and so is another run; all else may be called.
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

/* Of this header; VelkrundVersion has that of the library. Before 1.0.0 a new minor version may break what was there,
 * afterwards a new major version alone may. */
#define VELKRUND_VERSION_MAJOR 0
#define VELKRUND_VERSION_MINOR 1
#define VELKRUND_VERSION_PATCH 0
#define VELKRUND_VERSION "0.1.0"

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

/* Such as "1.2.3"; lives as long as the process. Never fails. */
VELKRUND_API const char* VelkrundVersion(void);

/* --- Errors. ------------------------------------------------------------------------------------------------------ */

/* "Class:message" of this thread's last call when it failed, else an empty text. Valid until the thread's next call
 * of another function than this one, VelkrundGetError and VelkrundLastEnd, and of these two when they fail. */
VELKRUND_API const char* VelkrundLastError(void);

/* An error in its parts; texts that are unknown are empty, numbers 0. */
typedef struct VelkrundError {
  size_t Size;
  const char* Class;   /* such as "EDatabaseError"; empty: there is no error */
  const char* Message; /* of the innermost cause, for people */
  const char* Code;    /* what kind of error it is, a word that does not change: "table-missing"; else "other" */
  const char* File;    /* as it was named */
  int64_t Line;        /* of File, from 1 */
  const char* Section; /* its name */
  const char* Table;
  const char* Column;         /* of the table, or the field of a section */
  int64_t Record;             /* of the section, from 1 */
  const char* Value;          /* that was refused, shortened */
  const char* Database;       /* without passwords */
  const char* EngineCode;     /* the engine's own: an SQLSTATE, or a number of SQLite */
  const char* Statement;      /* what the engine was asked to do, shortened */
  const char* const* Context; /* class, ": " and message of what was made of the cause on its way, outermost first */
  size_t ContextCount;
} VelkrundError;
#define VELKRUND_ERROR_INIT \
  { sizeof(VelkrundError), NULL, NULL, NULL, NULL, 0, NULL, NULL, NULL, 0, NULL, NULL, NULL, NULL, NULL, 0 }

/* Fills Error with why this thread's last call failed, or, where an operation is given, why its last run did; with
 * empty texts when it did not fail. Texts live until the thread's next call (see VelkrundLastError), those of an
 * operation until it runs again or is destroyed. Fails for the wrong size and for a running operation. */
VELKRUND_API int VelkrundGetError(VelkrundOperation* Operation, VelkrundError* Error);

/* --- The platform: what databases are there, and where files are. One at a time. --------------------------------- */

/* Makes the jobs known too, see below. ConfigFile: a velkrund.toml; NULL: $VELKRUND_CONFIG, ./velkrund.toml, the user's
 * one, or the defaults. Relative names in it are relative to its folder. Databases are named by its entries or by URLs
 * such as "sqlite:shop.db"; they have to exist, unless a job is told to make one. Fails for a configuration that cannot
 * be read, and while a platform is installed. */
VELKRUND_API int VelkrundInstallPlatform(const char* ConfigFile);
/* Fails while operations or files exist. */
VELKRUND_API int VelkrundRemovePlatform(void);

/* --- What there is. Texts live as long as the process. ------------------------------------------------------------ */

typedef int32_t VelkrundType;
enum {
  VELKRUND_BOOLEAN,     /* true, false */
  VELKRUND_INTEGER,     /* decimal; of 32 bits where it can be set, of 64 where it is read only */
  VELKRUND_STRING,      /* as it is */
  VELKRUND_ENUMERATION, /* one of the property's Choices, or its number from 0 */
  VELKRUND_STRING_LIST, /* a,b,c */
  VELKRUND_PAIR_LIST,   /* a=b,c=d */
  VELKRUND_OBJECT       /* no text: a file, for VelkrundSetFile */
};

typedef struct VelkrundPropertyInfo {
  size_t Size;
  const char* Name;
  const char* Help;
  const char* Choices; /* of an enumeration, separated by commas, else empty */
  VelkrundType Type;
  int32_t ReadOnly; /* 0 or 1; what is read only is a result of the last run */
} VelkrundPropertyInfo;
#define VELKRUND_PROPERTY_INFO_INIT \
  { sizeof(VelkrundPropertyInfo), NULL, NULL, NULL, 0, 0 }

/* The classes of operations, such as "TUOExportTableDataInterface", and once a platform is installed those of jobs,
 * such as "TJobImportFilesInterface".
 *
 * A job is a whole run as a person asks for it: it opens and closes its files itself, settles what is there already
 * before the first change, keeps together what foreign keys tie together, and refuses what the command line program
 * refuses. What it would ask about is decided by properties (ExistingRows, ExistingSections, ExistingStructures,
 * OnError, Yes), else by the listener or the message box; where none decides it is an error that names the property.
 * Structures are asked about as each one comes, all else before the first change. Counts of the last run are properties
 * (Rows, SectionsDone ...), Report has what became of everything, as a JSON document. examples/run_job.c runs any job.
 *
 *   class TJob...Interface   does                                    files
 *   ExportTables             rows of tables into a file              FileName; "-" is standard output
 *   ExportStructures         stored structures into a file           the same
 *   ImportTables             table data sections into tables         FileName; "-" is standard input
 *   ImportStructures         structure sections into a database      the same
 *   ImportFiles              all that files hold                     FileNames; one may be "-"
 *   ListSections             the sections of a file                  FileName; "-" is standard input
 *   CheckFiles               reads all as an import would            FileNames; one may be "-"
 *   RemoveSections           takes sections out of a file            FileName; no pipe
 *   RepairFile               mends line ends, cuts an unfinished      FileName; no pipe
 *                            last section off
 *   ListStructures, ShowStructure, DropStructure                     none
 *   DatabaseInfo             tables with rows and sizes, see VelkrundTableCount
 *   RunProcedure             runs a procedure of a database; Report has its rows with KeepRows
 *
 * Other pipes than these two are named as files are. Standard input and output are those of the process, beside the
 * buffers of C's own streams: flush stdout before such a run.
 *
 * What empties tables, and what does not. Jobs never touch rows, sections or structures that are there unasked. Single
 * operations do one step and what they are told: TUOImportTableDataInterface empties a table before it loads it, unless
 * its property Append is true; TUOImportFileInterface and TUOImportFilesInterface empty every table that their files
 * have rows for, always. No other one does. */
VELKRUND_API int32_t VelkrundClassCount(void);
/* Index: 0 .. VelkrundClassCount() - 1. */
VELKRUND_API const char* VelkrundClassName(int32_t Index);
/* Of a class, whose name is found ignoring case; 0 on failure. */
VELKRUND_API int32_t VelkrundPropertyCount(const char* ClassName);
/* Fills Info. Index: 0 .. VelkrundPropertyCount() - 1. */
VELKRUND_API int VelkrundDescribeProperty(const char* ClassName, int32_t Index, VelkrundPropertyInfo* Info);

/* --- Export/import files. ----------------------------------------------------------------------------------------- */

typedef int32_t VelkrundFileMode;
enum {
  VELKRUND_READ,      /* others may write meanwhile */
  VELKRUND_APPEND,    /* an existing file, for exports behind what it holds; other writers are refused */
  VELKRUND_CREATE,    /* a new file; one that exists is emptied, unless somebody else writes to it */
  VELKRUND_CREATE_NEW /* a new file; one that exists is an error, and stays as it is */
};

/* Texts live until the file is written to or closed. */
typedef struct VelkrundSectionInfo {
  size_t Size;
  const char* Name;
  const char* Type; /* such as "TableData" */
  int32_t Version;  /* 100 or 200 */
  int64_t DataSize; /* bytes of the body */
} VelkrundSectionInfo;
#define VELKRUND_SECTION_INFO_INIT \
  { sizeof(VelkrundSectionInfo), NULL, NULL, 0, 0 }

/* For single operations; jobs open their files themselves. Needs a platform, and a name: "-" is a file like any other
 * here. Reads the headers of all sections: a file whose headers are faulty is an error. */
VELKRUND_API VelkrundFile* VelkrundOpenFile(const char* FileName, VelkrundFileMode Mode);
/* Waits until what was written has reached the disk; 0 when it did not. The handle is gone in either case, unless a
 * running operation uses the file; the file itself is let go of when no operation has it as a property any more. */
VELKRUND_API int VelkrundCloseFile(VelkrundFile* File);
/* -1 on failure. */
VELKRUND_API int32_t VelkrundSectionCount(VelkrundFile* File);
/* Fills Info. Index: 0 .. VelkrundSectionCount() - 1. */
VELKRUND_API int VelkrundDescribeSection(VelkrundFile* File, int32_t Index, VelkrundSectionInfo* Info);

/* --- Operations. -------------------------------------------------------------------------------------------------- */

/* Manager: see below; NULL: none. It may be destroyed before the operation. */
VELKRUND_API VelkrundOperation* VelkrundCreateOperation(const char* ClassName, VelkrundManager* Manager);
/* Fails while it runs. */
VELKRUND_API int VelkrundDestroyOperation(VelkrundOperation* Operation);

/* Sets a property from its text, whose form its type says. Names are found ignoring case. Settings last until they are
 * set anew. */
VELKRUND_API int VelkrundSetProperty(VelkrundOperation* Operation, const char* Name, const char* Text);
/* Sets a list from texts that may hold commas; pairs as a=b. Count: 0 empties the list, Items may be NULL then. */
VELKRUND_API int VelkrundSetList(VelkrundOperation* Operation, const char* Name, const char* const* Items,
                                 size_t Count);
/* Sets a file, such as Source or Target. NULL takes it away. */
VELKRUND_API int VelkrundSetFile(VelkrundOperation* Operation, const char* Name, VelkrundFile* File);
/* Copies a property's text, cut to Size bytes with the zero at its end. Returns the bytes that the whole text needs,
 * its zero included; 0 on failure. Buffer may be NULL when Size is 0. */
VELKRUND_API size_t VelkrundGetProperty(VelkrundOperation* Operation, const char* Name, char* Buffer, size_t Size);
/* Copies a property that is a number into Value: an integer, the number of a choice, 0 or 1 for a boolean. What is not
 * known is -1. */
VELKRUND_API int VelkrundGetInteger(VelkrundOperation* Operation, const char* Name, int64_t* Value);

/* What an operation tells and asks while it runs. Texts are valid during the call only. Each procedure may be NULL;
 * UserData is handed to every one of them, and has to live as long as the listener is set. */
typedef struct VelkrundListener {
  size_t Size;
  void* UserData;
  /* Current of Total: rows, bytes or something else; of jobs the whole run in millionths. Total is 0 or less where
   * nobody knows. Called for every row: has to be quick. */
  void (*Progress)(void* UserData, int64_t Current, int64_t Total, const char* ObjectName);
  /* Non-zero: stop. Called often, and while an engine lets the operation wait. */
  int32_t (*Cancel)(void* UserData);
  /* What happens beside the result: sections that failed while the import goes on, database objects that are not
   * created. Level: 1 errors, 2 warnings and what may still come right, 3 details. */
  void (*Log)(void* UserData, int32_t Level, const char* Message);
  /* Answers a question, see VelkrundMessageBoxProc for Flags and answers; 0 passes it on to the message box. */
  int32_t (*Ask)(void* UserData, const char* Text, const char* Caption, uint32_t Flags);
} VelkrundListener;
#define VELKRUND_LISTENER_INIT \
  { sizeof(VelkrundListener), NULL, NULL, NULL, NULL, NULL }

/* The listener of an operation, in place of the one before; NULL takes it away. A manager hears of the same beside it;
 * the wish of either to stop is heeded. */
VELKRUND_API int VelkrundSetListener(VelkrundOperation* Operation, const VelkrundListener* Listener);

/* Runs the operation; non-zero: done. 0: it failed, or was cancelled and VelkrundLastError is empty; VelkrundLastEnd
 * tells which. What was not finished is undone. An operation may run more than once. */
VELKRUND_API int32_t VelkrundExecute(VelkrundOperation* Operation);

typedef int32_t VelkrundEnd;
enum {
  VELKRUND_NOT_RUN = -1,
  VELKRUND_DONE = 0,           /* or left out, as an answer wished */
  VELKRUND_FAILED = 1,         /* VelkrundGetError says why */
  VELKRUND_WRONG_SETTINGS = 2, /* the same; nothing was begun */
  VELKRUND_CANCELLED = 3       /* by a callback, or by the answer to a question */
};

/* How its last run ended; VELKRUND_NOT_RUN on failure too. */
VELKRUND_API VelkrundEnd VelkrundLastEnd(VelkrundOperation* Operation);

/* --- Database objects that are created again by their structures. --------------------------------------------------
 */

/* The TUORecreate...Interface classes create one object each, or those of a list. A TUORecreateContainerInterface
 * creates objects that need each other, in whatever order they are added: what fails is tried again as long as
 * something else could be created. Objects that are there already are asked about, see VelkrundSetMessageBox. What
 * could not be created is told in the log and by the message box, unless ContinueOnError is false: then it is an error.
 */
typedef int32_t VelkrundObjectType;
enum {
  VELKRUND_GENERATOR = 71,
  VELKRUND_VIEW = 72,
  VELKRUND_EXEC_PROCEDURE = 73,  /* returns no rows */
  VELKRUND_SELECT_PROCEDURE = 74 /* returns rows */
};

/* Adds an object to a container; it is one of the database that the property DatabaseName names at this moment. Its
 * structure may still be missing. Fails for other types, and for operations of another class. The property Count tells
 * how many there are; they stay when they have been created, and are not created twice. */
VELKRUND_API int VelkrundAddObject(VelkrundOperation* Container, VelkrundObjectType Type, const char* Name);
/* Takes all objects out of a container. */
VELKRUND_API int VelkrundClearObjects(VelkrundOperation* Container);

/* --- The tables of a database, as found by the last run of a TJobDatabaseInfoInterface. --------------------------- */

/* Texts live until the operation runs again or is destroyed. */
typedef struct VelkrundTableInfo {
  size_t Size;
  const char* Name;    /* as operations take it, with its schema where it needs one */
  const char* Kind;    /* "table", "view" or "foreign" */
  const char* Problem; /* why it could not be looked into; mostly empty */
  int64_t Rows;        /* -1: not known, as of views */
  int64_t Bytes;       /* with indexes; -1: not known */
} VelkrundTableInfo;
#define VELKRUND_TABLE_INFO_INIT \
  { sizeof(VelkrundTableInfo), NULL, NULL, NULL, 0, 0 }

/* 0 before the first run; -1 on failure, also for an operation of another class. */
VELKRUND_API int32_t VelkrundTableCount(VelkrundOperation* DatabaseInfo);
/* Fills Info. Index: 0 .. VelkrundTableCount() - 1. */
VELKRUND_API int VelkrundDescribeTable(VelkrundOperation* DatabaseInfo, int32_t Index, VelkrundTableInfo* Info);

/* --- Managers: progress, cancel and log of a sequence of operations, in UTF-16 and without user data. ------------- */

/* Current of Total is the position in the whole sequence, within the range given; Total is 100. OpCurrent of OpTotal is
 * 0 of 100 when an operation starts, and 0 of 0 while it runs. Texts are valid during the call only. */
typedef void (*VelkrundProgressProc)(int32_t Current, int32_t Total, int32_t OpCurrent, int32_t OpTotal,
                                     const VelkrundChar* OperationName, const VelkrundChar* ObjectName);
/* true: stop. Called often. */
typedef bool (*VelkrundCancelProc)(void);
/* As Log of a listener. */
typedef void (*VelkrundLogProc)(const VelkrundChar* Message);
typedef void (*VelkrundLevelLogProc)(const VelkrundChar* Message, int32_t Level);

/* Each procedure may be NULL. LevelLog is preferred to Log. */
typedef struct VelkrundCallbacks {
  size_t Size;
  VelkrundProgressProc Progress;
  VelkrundCancelProc Cancel;
  VelkrundLogProc Log;
  VelkrundLevelLogProc LevelLog;
  int32_t RangeStart; /* of Current; 0 .. 100 for the plain percentage */
  int32_t RangeEnd;
} VelkrundCallbacks;
#define VELKRUND_CALLBACKS_INIT \
  { sizeof(VelkrundCallbacks), NULL, NULL, NULL, NULL, 0, 100 }

/* Progress of its operations is told where their property ShowProgress is true. */
VELKRUND_API VelkrundManager* VelkrundCreateManager(const VelkrundCallbacks* Callbacks);
/* Fails while one of its operations runs. */
VELKRUND_API int VelkrundDestroyManager(VelkrundManager* Manager);
/* Begins the next operation of the sequence; Weight: its share of the range, in percent. Fails while one of its
 * operations runs. */
VELKRUND_API int VelkrundStartOperationProgress(VelkrundManager* Manager, const char* Name, int32_t Weight);

/* --- The message box of the process, for operations whose listener does not answer. ------------------------------- */

/* Answers a question, or shows a message, of an operation. Window is 0; Extra1 and Extra2 may be ignored. Flags and
 * answers are those of the desktop systems' message box: 4 asks yes or no, 3 also cancel, 0 tells; answers are 1 OK, 2
 * cancel, 6 yes, 7 no. 0: nobody can answer, which makes the question an error; so does any other number. Whether a
 * structure that exists is overwritten is asked with 3: yes replaces it, no leaves it as it is, cancel ends the run.
 * The property OverwriteExisting of TUOImportDSPStructureInterface answers that beforehand, and can also have the
 * structure updated. Whether database objects that exist are created again is asked with 4 by single operations and
 * containers, with 3 by lists (cancel ends the run), unless their property Overwrite decides. Jobs ask with 3 too:
 * about rows that are there (yes deletes them, no leaves the table out), sections that are there (yes replaces, no
 * leaves out), whether to go on after an error, and whether to remove or drop. */
typedef int32_t (*VelkrundMessageBoxProc)(uintptr_t Window, const VelkrundChar* Text, const VelkrundChar* Caption,
                                          uint32_t Flags, int32_t Extra1, int32_t Extra2);
/* NULL: nobody answers. Fails while an operation runs. */
VELKRUND_API int VelkrundSetMessageBox(VelkrundMessageBoxProc MessageBox);

#ifdef __cplusplus
}
#endif
/* NOLINTEND(modernize-*) */
