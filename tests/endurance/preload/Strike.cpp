/// Loaded before the C library: counts the calls of a program that touch its files, folders and sockets, and makes the
/// n-th fail, or ends the process there. What the program reads of the system (libraries, locales, /proc) does not
/// count. The environment says what is to happen:
///
/// - STRIKE_ROOTS: folders of interest, separated by ":". Sockets, standard input and output are of interest too.
/// - STRIKE_FAULT: what happens to the call.
///   - eio, eintr: it fails so; a connection is gone then.
///   - full: it writes half, or fails with ENOSPC, and so does every later one that needs space.
///   - short: it reads or writes half of what it was asked for.
///   - kill, torn, after: the process is killed before it, in the middle of what it writes, or after it.
/// - STRIKE_AIM: set, only calls count that make something last or take it away.
/// - STRIKE_AT: n. Calls that the fault cannot happen to are not counted. 0 strikes nothing.
/// - STRIKE_LOG: gets a line with the call that was struck, or with the numbers of calls when none was.

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>

/// What can happen to a call, besides failing with EIO.
enum { Waits = 1, TakesSpace = 2, Moves = 4, Writes = 8, Commits = 16 };

/// What the caller of Meet has to do.
enum TStrike { Goes, Fails, Halves, HalvesAndDies, Dies };

enum { MostDescriptors = 4096 };

static char Marked[MostDescriptors];
static const char *Roots, *Fault, *Log;
static char Current[PATH_MAX];
static long At;
static int AimsAtCommit;
static std::atomic<long> Count;

static void Note(const char* Line) {
  const long File = syscall(SYS_openat, AT_FDCWD, Log, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (File < 0) return;
  (void)!syscall(SYS_write, File, Line, strlen(Line));
  syscall(SYS_close, File);
}

__attribute__((constructor)) static void Begin(void) {
  Roots = getenv("STRIKE_ROOTS");
  Fault = getenv("STRIKE_FAULT");
  Log = getenv("STRIKE_LOG");
  if (!Roots || !Fault || !Log) Fault = NULL;
  const char* const Number = getenv("STRIKE_AT");
  At = Number ? atol(Number) : 0;
  AimsAtCommit = getenv("STRIKE_AIM") != NULL;
  if (syscall(SYS_getcwd, Current, sizeof Current) < 0) Current[0] = 0;
  Marked[0] = Marked[1] = 1;
}

/// In this order the numbers of calls are told.
static const char* const Faults[] = {"eio", "full", "eintr", "short", "kill", "torn"};
enum { MostFaults = sizeof Faults / sizeof *Faults };
static std::atomic<long> Counts[MostFaults];

__attribute__((destructor)) static void End(void) {
  if (!Fault || (At && Count >= At)) return;
  char Line[32 * MostFaults] = "";
  size_t Length = 0;
  for (const auto& Number : Counts)
    Length += static_cast<size_t>(snprintf(Line + Length, sizeof Line - Length, "%ld ", Number.load()));
  Line[Length - 1] = '\n';
  Note(Line);
}

__attribute__((noreturn)) static void Die(void) {
  for (;;) syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
}

static int IsBelowRoot(const char* Path) {
  for (const char* Root = Roots; Root && *Root;) {
    const size_t Length = strcspn(Root, ":");
    if (!strncmp(Path, Root, Length) && (Path[Length] == '/' || !Path[Length])) return 1;
    Root += Length + (Root[Length] == ':');
  }
  return 0;
}

static int OfPath(const char* Path) { return Fault && Path && IsBelowRoot(*Path == '/' ? Path : Current); }
static int OfDescriptor(int Descriptor) {
  return Fault && Descriptor >= 0 && Descriptor < MostDescriptors && Marked[Descriptor];
}
static int Mark(int Descriptor, int IsOfInterest) {
  if (Descriptor >= 0 && Descriptor < MostDescriptors) Marked[Descriptor] = (char)IsOfInterest;
  return Descriptor;
}

static int Applies(const char* What, int Can) {
  if (AimsAtCommit && !(Can & Commits)) return 0;
  if (!strcmp(What, "eintr")) return Can & Waits;
  if (!strcmp(What, "full")) return Can & TakesSpace;
  if (!strcmp(What, "short")) return Can & Moves;
  return strcmp(What, "torn") || (Can & Moves && Can & Writes);
}

static TStrike FailWith(int Error) {
  errno = Error;
  return Fails;
}

/// Path may be null; then the descriptor says what is touched.
static TStrike Meet(const char* Call, int Can, const char* Path, int Descriptor) {
  for (int I = 0; I < MostFaults; ++I)
    if (Applies(Faults[I], Can)) ++Counts[I];
  if (!Applies(Fault, Can)) return Goes;
  const long Now = ++Count;
  const int IsLater = Now > At;
  if (!At || Now < At || (IsLater && strcmp(Fault, "full"))) return Goes;
  if (!IsLater) {
    char Name[64], Target[PATH_MAX], Line[PATH_MAX + 64];
    if (!Path) {
      snprintf(Name, sizeof Name, "/proc/self/fd/%d", Descriptor);
      const long Length = syscall(SYS_readlinkat, AT_FDCWD, Name, Target, sizeof Target - 1);
      Target[Length > 0 ? Length : 0] = 0;
    }
    snprintf(Line, sizeof Line, "%s %s\n", Call, Path ? Path : Target);
    Note(Line);
  }
  if (!strcmp(Fault, "kill")) Die();
  if (!strcmp(Fault, "after")) return Dies;
  if (!strcmp(Fault, "torn")) return HalvesAndDies;
  if (!strcmp(Fault, "short")) return Halves;
  if (!strcmp(Fault, "full")) return Can & Moves && !IsLater ? Halves : FailWith(ENOSPC);
  return FailWith(!strcmp(Fault, "eintr") ? EINTR : EIO);
}

/// The function of the C library, looked up once.
#define NEXT(NAME)                                                  \
  (__extension__({                                                  \
    static __typeof__(&NAME) Found;                                 \
    if (!Found) Found = (__typeof__(&NAME))dlsym(RTLD_NEXT, #NAME); \
    Found;                                                          \
  }))

/// Whether writing there makes the file longer; what a file has already needs no space. Position -1: where it stands.
static int Space(int Descriptor, long Position, size_t Size) {
  struct stat Status;
  if (!OfDescriptor(Descriptor) || syscall(SYS_fstat, Descriptor, &Status) < 0) return 0;
  if (Position < 0) Position = (long)syscall(SYS_lseek, Descriptor, 0L, SEEK_CUR);
  return !S_ISREG(Status.st_mode) || Position + (long)Size > Status.st_size ? TakesSpace : 0;
}

/// A connection on which a call has failed is gone, for both sides.
static TStrike Cut(TStrike Strike, int Descriptor) {
  const int Error = errno;
  if (Strike == Fails && Error != EINTR) syscall(SYS_shutdown, Descriptor, SHUT_RDWR);
  errno = Error;
  return Strike;
}

/// The body of a call that either happens as a whole or fails.
#define MEET(TYPE, FAILURE, NAME, OFINTEREST, CAN, PATH, DESCRIPTOR, ...)          \
  const TStrike Strike = (OFINTEREST) ? Meet(#NAME, CAN, PATH, DESCRIPTOR) : Goes; \
  if (Strike == Fails) return FAILURE;                                             \
  TYPE Result = NEXT(NAME)(__VA_ARGS__);                                           \
  if (Strike == Dies) Die();                                                       \
  return Result

/// Of a call that moves Size bytes; none of fewer than two can be halved.
#define MEET_MOVING(NAME, CAN, DESCRIPTOR, SIZE, ...)                                                           \
  const int Can = (CAN) & ~((SIZE) < 2 ? Moves : 0);                                                            \
  const TStrike Strike = Cut(OfDescriptor(DESCRIPTOR) ? Meet(#NAME, Can, NULL, DESCRIPTOR) : Goes, DESCRIPTOR); \
  if (Strike == Fails) return -1;                                                                               \
  if (Strike == Halves || Strike == HalvesAndDies) SIZE /= 2;                                                   \
  const ssize_t Result = NEXT(NAME)(__VA_ARGS__);                                                               \
  if (Strike == Dies || Strike == HalvesAndDies) Die();                                                         \
  return Result

#define WITH_MODE(FLAGS, LAST)           \
  mode_t Mode = 0;                       \
  if ((FLAGS) & (O_CREAT | O_TMPFILE)) { \
    va_list Rest;                        \
    va_start(Rest, LAST);                \
    Mode = va_arg(Rest, mode_t);         \
    va_end(Rest);                        \
  }

#define OPEN(NAME)                                                                                        \
  int NAME(const char* Path, int Flags, ...) {                                                            \
    WITH_MODE(Flags, Flags)                                                                               \
    const int Is = OfPath(Path);                                                                          \
    const TStrike Strike = Is ? Meet(#NAME, Waits | (Flags & O_CREAT ? TakesSpace : 0), Path, -1) : Goes; \
    if (Strike == Fails) return -1;                                                                       \
    const int Result = Mark(NEXT(NAME)(Path, Flags, Mode), Is);                                           \
    if (Strike == Dies) Die();                                                                            \
    return Result;                                                                                        \
  }
OPEN(open)
OPEN(open64)

#define OPENAT(NAME)                                                                                      \
  int NAME(int Folder, const char* Path, int Flags, ...) {                                                \
    WITH_MODE(Flags, Flags)                                                                               \
    const int Is = *Path == '/' || Folder == AT_FDCWD ? OfPath(Path) : OfDescriptor(Folder);              \
    const TStrike Strike = Is ? Meet(#NAME, Waits | (Flags & O_CREAT ? TakesSpace : 0), Path, -1) : Goes; \
    if (Strike == Fails) return -1;                                                                       \
    const int Result = Mark(NEXT(NAME)(Folder, Path, Flags, Mode), Is);                                   \
    if (Strike == Dies) Die();                                                                            \
    return Result;                                                                                        \
  }
OPENAT(openat)
OPENAT(openat64)

#define FOPEN(NAME)                                                                                   \
  FILE* NAME(const char* Path, const char* How) {                                                     \
    const int Is = OfPath(Path);                                                                      \
    const TStrike Strike = Is ? Meet(#NAME, Waits | (*How == 'r' ? 0 : TakesSpace), Path, -1) : Goes; \
    if (Strike == Fails) return NULL;                                                                 \
    FILE* const Result = NEXT(NAME)(Path, How);                                                       \
    if (Result) Mark(fileno(Result), Is);                                                             \
    if (Strike == Dies) Die();                                                                        \
    return Result;                                                                                    \
  }
FOPEN(fopen)
FOPEN(fopen64)

#define MKSTEMP(NAME)                                                             \
  int NAME(char* Path) {                                                          \
    const int Is = OfPath(Path);                                                  \
    const TStrike Strike = Is ? Meet(#NAME, Waits | TakesSpace, Path, -1) : Goes; \
    if (Strike == Fails) return -1;                                               \
    const int Result = Mark(NEXT(NAME)(Path), Is);                                \
    if (Strike == Dies) Die();                                                    \
    return Result;                                                                \
  }
MKSTEMP(mkstemp)
MKSTEMP(mkstemp64)

/// The descriptor is gone, whatever the call says.
int close(int Descriptor) {
  const TStrike Strike = OfDescriptor(Descriptor) ? Meet("close", 0, NULL, Descriptor) : Goes;
  const int Error = errno;
  Mark(Descriptor, 0);
  const int Result = NEXT(close)(Descriptor);
  if (Strike == Dies) Die();
  if (Strike != Fails) return Result;
  errno = Error;
  return -1;
}

ssize_t read(int Descriptor, void* Data, size_t Size) {
  MEET_MOVING(read, Waits | Moves, Descriptor, Size, Descriptor, Data, Size);
}
ssize_t write(int Descriptor, const void* Data, size_t Size) {
  MEET_MOVING(write, Waits | Moves | Writes | Space(Descriptor, -1, Size), Descriptor, Size, Descriptor, Data, Size);
}
ssize_t pread(int Descriptor, void* Data, size_t Size, off_t Position) {
  MEET_MOVING(pread, Waits | Moves, Descriptor, Size, Descriptor, Data, Size, Position);
}
ssize_t pread64(int Descriptor, void* Data, size_t Size, off64_t Position) {
  MEET_MOVING(pread64, Waits | Moves, Descriptor, Size, Descriptor, Data, Size, Position);
}
ssize_t pwrite(int Descriptor, const void* Data, size_t Size, off_t Position) {
  MEET_MOVING(pwrite, Waits | Moves | Writes | Space(Descriptor, Position, Size), Descriptor, Size, Descriptor, Data,
              Size, Position);
}
ssize_t pwrite64(int Descriptor, const void* Data, size_t Size, off64_t Position) {
  MEET_MOVING(pwrite64, Waits | Moves | Writes | Space(Descriptor, Position, Size), Descriptor, Size, Descriptor, Data,
              Size, Position);
}
ssize_t writev(int Descriptor, const struct iovec* Parts, int Number) {
  MEET(ssize_t, -1, writev, OfDescriptor(Descriptor), Waits | TakesSpace, NULL, Descriptor, Descriptor, Parts, Number);
}
ssize_t readv(int Descriptor, const struct iovec* Parts, int Number) {
  MEET(ssize_t, -1, readv, OfDescriptor(Descriptor), Waits, NULL, Descriptor, Descriptor, Parts, Number);
}
ssize_t recv(int Descriptor, void* Data, size_t Size, int Flags) {
  MEET_MOVING(recv, Waits | Moves, Descriptor, Size, Descriptor, Data, Size, Flags);
}
ssize_t send(int Descriptor, const void* Data, size_t Size, int Flags) {
  const int CanCommit = OfDescriptor(Descriptor) && memmem(Data, Size, "COMMIT", 6) ? Commits : 0;
  MEET_MOVING(send, Waits | Moves | CanCommit, Descriptor, Size, Descriptor, Data, Size, Flags);
}
ssize_t copy_file_range(int From, off64_t* FromPosition, int To, off64_t* ToPosition, size_t Size, unsigned Flags) {
  MEET_MOVING(copy_file_range, Waits | Moves | Writes | TakesSpace, To, Size, From, FromPosition, To, ToPosition, Size,
              Flags);
}

#define ON_DESCRIPTOR(NAME, CAN, PARAMETERS, ...) \
  int NAME PARAMETERS { MEET(int, -1, NAME, OfDescriptor(Descriptor), CAN, NULL, Descriptor, __VA_ARGS__); }
ON_DESCRIPTOR(ftruncate, Waits | Commits, (int Descriptor, off_t Size), Descriptor, Size)
ON_DESCRIPTOR(ftruncate64, Waits | Commits, (int Descriptor, off64_t Size), Descriptor, Size)
ON_DESCRIPTOR(fallocate, Waits | TakesSpace, (int Descriptor, int How, off_t From, off_t Size), Descriptor, How, From,
              Size)
ON_DESCRIPTOR(posix_fallocate, TakesSpace, (int Descriptor, off_t From, off_t Size), Descriptor, From, Size)
ON_DESCRIPTOR(flock, Waits, (int Descriptor, int How), Descriptor, How)
ON_DESCRIPTOR(fstat, 0, (int Descriptor, struct stat* Status), Descriptor, Status)
ON_DESCRIPTOR(fstat64, 0, (int Descriptor, struct stat64* Status), Descriptor, Status)
ON_DESCRIPTOR(fchmod, 0, (int Descriptor, mode_t Mode), Descriptor, Mode)
ON_DESCRIPTOR(fchown, 0, (int Descriptor, uid_t User, gid_t Group), Descriptor, User, Group)
ON_DESCRIPTOR(fsetxattr, TakesSpace, (int Descriptor, const char* Name, const void* Value, size_t Size, int Flags),
              Descriptor, Name, Value, Size, Flags)
ON_DESCRIPTOR(fremovexattr, 0, (int Descriptor, const char* Name), Descriptor, Name)
ON_DESCRIPTOR(getsockopt, 0, (int Descriptor, int Level, int Option, void* Value, socklen_t* Size), Descriptor, Level,
              Option, Value, Size)
ON_DESCRIPTOR(setsockopt, 0, (int Descriptor, int Level, int Option, const void* Value, socklen_t Size), Descriptor,
              Level, Option, Value, Size)
ssize_t fgetxattr(int Descriptor, const char* Name, void* Value, size_t Size) {
  MEET(ssize_t, -1, fgetxattr, OfDescriptor(Descriptor), 0, NULL, Descriptor, Descriptor, Name, Value, Size);
}
ssize_t flistxattr(int Descriptor, char* Names, size_t Size) {
  MEET(ssize_t, -1, flistxattr, OfDescriptor(Descriptor), 0, NULL, Descriptor, Descriptor, Names, Size);
}

/* Nothing that a process gave to the system is lost when the process is killed, so that there is no need to wait for
 * the disk. */
#define SYNC(NAME)                                                                                           \
  int NAME(int Descriptor) {                                                                                 \
    const TStrike Strike = OfDescriptor(Descriptor) ? Meet(#NAME, Waits | Commits, NULL, Descriptor) : Goes; \
    if (Strike == Dies) Die();                                                                               \
    return Strike == Fails ? -1 : 0;                                                                         \
  }
SYNC(fsync)
SYNC(fdatasync)

/// Only a lock waits, and only a lock and a copy of the descriptor touch more than the process.
#define FCNTL(NAME)                                                                       \
  int NAME(int Descriptor, int Command, ...) {                                            \
    va_list Rest;                                                                         \
    va_start(Rest, Command);                                                              \
    void* const Argument = va_arg(Rest, void*);                                           \
    va_end(Rest);                                                                         \
    const int Copies = Command == F_DUPFD || Command == F_DUPFD_CLOEXEC;                  \
    const int Is = OfDescriptor(Descriptor);                                              \
    const TStrike Strike = Is ? Meet(#NAME, Copies ? 0 : Waits, NULL, Descriptor) : Goes; \
    if (Strike == Fails) return -1;                                                       \
    const int Result = NEXT(NAME)(Descriptor, Command, Argument);                         \
    if (Copies) Mark(Result, Is);                                                         \
    if (Strike == Dies) Die();                                                            \
    return Result;                                                                        \
  }
FCNTL(fcntl)
FCNTL(fcntl64)

void* mmap(void* Address, size_t Size, int Protection, int Flags, int Descriptor, off_t Position) {
  MEET(void*, MAP_FAILED, mmap, OfDescriptor(Descriptor), 0, NULL, Descriptor, Address, Size, Protection, Flags,
       Descriptor, Position);
}
void* mmap64(void* Address, size_t Size, int Protection, int Flags, int Descriptor, off64_t Position) {
  MEET(void*, MAP_FAILED, mmap64, OfDescriptor(Descriptor), 0, NULL, Descriptor, Address, Size, Protection, Flags,
       Descriptor, Position);
}

#define ON_PATH(NAME, CAN, PARAMETERS, ...) \
  int NAME PARAMETERS { MEET(int, -1, NAME, OfPath(Path), CAN, Path, -1, __VA_ARGS__); }
ON_PATH(stat, 0, (const char* Path, struct stat* Status), Path, Status)
ON_PATH(stat64, 0, (const char* Path, struct stat64* Status), Path, Status)
ON_PATH(lstat, 0, (const char* Path, struct stat* Status), Path, Status)
ON_PATH(lstat64, 0, (const char* Path, struct stat64* Status), Path, Status)
ON_PATH(statvfs, 0, (const char* Path, struct statvfs* Status), Path, Status)
ON_PATH(access, 0, (const char* Path, int Mode), Path, Mode)
ON_PATH(unlink, Commits, (const char* Path), Path)
ON_PATH(truncate, Waits | Commits, (const char* Path, off_t Size), Path, Size)
ON_PATH(mkdir, TakesSpace, (const char* Path, mode_t Mode), Path, Mode)
ON_PATH(rmdir, Commits, (const char* Path), Path)
ON_PATH(chmod, 0, (const char* Path, mode_t Mode), Path, Mode)
ON_PATH(chown, 0, (const char* Path, uid_t User, gid_t Group), Path, User, Group)
ON_PATH(setxattr, TakesSpace, (const char* Path, const char* Name, const void* Value, size_t Size, int Flags), Path,
        Name, Value, Size, Flags)
ON_PATH(rename, TakesSpace | Commits, (const char* Path, const char* To), Path, To)
ON_PATH(link, TakesSpace | Commits, (const char* Path, const char* To), Path, To)
ON_PATH(symlink, TakesSpace | Commits, (const char* Target, const char* Path), Target, Path)
ssize_t readlink(const char* Path, char* Text, size_t Size) {
  MEET(ssize_t, -1, readlink, OfPath(Path), 0, Path, -1, Path, Text, Size);
}
ssize_t getxattr(const char* Path, const char* Name, void* Value, size_t Size) {
  MEET(ssize_t, -1, getxattr, OfPath(Path), 0, Path, -1, Path, Name, Value, Size);
}
ssize_t listxattr(const char* Path, char* Names, size_t Size) {
  MEET(ssize_t, -1, listxattr, OfPath(Path), 0, Path, -1, Path, Names, Size);
}
char* realpath(const char* Path, char* Resolved) {
  MEET(char*, NULL, realpath, OfPath(Path), 0, Path, -1, Path, Resolved);
}
DIR* opendir(const char* Path) { MEET(DIR*, NULL, opendir, OfPath(Path), 0, Path, -1, Path); }

/// Of a path below an open folder.
static int OfPathAt(int Folder, const char* Path) {
  return *Path == '/' || Folder == AT_FDCWD ? OfPath(Path) : OfDescriptor(Folder);
}
int fstatat(int Folder, const char* Path, struct stat* Status, int Flags) {
  const int Is = *Path ? OfPathAt(Folder, Path) : OfDescriptor(Folder);
  MEET(int, -1, fstatat, Is, 0, Path, -1, Folder, Path, Status, Flags);
}
int statx(int Folder, const char* Path, int Flags, unsigned Mask, struct statx* Status) {
  const int Is = *Path ? OfPathAt(Folder, Path) : OfDescriptor(Folder);
  MEET(int, -1, statx, Is, 0, Path, -1, Folder, Path, Flags, Mask, Status);
}
int unlinkat(int Folder, const char* Path, int Flags) {
  MEET(int, -1, unlinkat, OfPathAt(Folder, Path), Commits, Path, -1, Folder, Path, Flags);
}
int renameat(int From, const char* Path, int To, const char* New) {
  MEET(int, -1, renameat, OfPathAt(To, New), TakesSpace | Commits, New, -1, From, Path, To, New);
}
int renameat2(int From, const char* Path, int To, const char* New, unsigned Flags) {
  MEET(int, -1, renameat2, OfPathAt(To, New), TakesSpace | Commits, New, -1, From, Path, To, New, Flags);
}
int linkat(int From, const char* Path, int To, const char* New, int Flags) {
  MEET(int, -1, linkat, OfPathAt(To, New), TakesSpace | Commits, New, -1, From, Path, To, New, Flags);
}

int socket(int Domain, int Type, int Protocol) {
  const TStrike Strike = Fault ? Meet("socket", 0, "", -1) : Goes;
  if (Strike == Fails) return -1;
  const int Result = Mark(NEXT(socket)(Domain, Type, Protocol), 1);
  if (Strike == Dies) Die();
  return Result;
}

/// A connection that a signal interrupts goes on being made.
int connect(int Descriptor, const struct sockaddr* Address, socklen_t Size) {
  const TStrike Strike = OfDescriptor(Descriptor) ? Meet("connect", Waits, NULL, Descriptor) : Goes;
  if (Strike == Fails && errno != EINTR) return -1;
  const int Result = NEXT(connect)(Descriptor, Address, Size);
  if (Strike == Dies) Die();
  if (Strike != Fails) return Result;
  errno = EINTR;
  return -1;
}

int poll(struct pollfd* Descriptors, nfds_t Number, int Timeout) {
  int First = -1;
  for (nfds_t I = 0; I < Number && First < 0; ++I)
    if (OfDescriptor(Descriptors[I].fd)) First = Descriptors[I].fd;
  MEET(int, -1, poll, First > 1, Waits, NULL, First, Descriptors, Number, Timeout);
}
