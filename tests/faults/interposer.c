#include "tests/faults/interposer.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

/* Names of the C library are taken here, with their parameters: the next library's own stands behind each. */
/* NOLINTBEGIN(bugprone-easily-swappable-parameters,readability-inconsistent-declaration-parameter-name,cert-dcl37-c) */

enum { kMostDescriptors = 4096 };

/* Of the calls that signals arrive in, the first and then one of so many is broken off. The steps of a lock are three: a
 * later attempt meets no signal. */
enum { kBreaksOffOneOf = 5 };

static char directory[4096];
static size_t directory_length;
static char is_watched[kMostDescriptors];

static long calls;
static long granted_calls = -1; /* below 0: nothing fails */
static int error_number;
static int arriving_signal;
static int all_fail;
static long failures;
static const char* last_failed = "";

void WatchCurrentDirectory(void) {
  if (getcwd(directory, sizeof directory) == NULL) directory[0] = '\0';
  directory_length = strlen(directory);
}

static void Arm(long granted, int error, int signal_number, int all_behind) {
  failures = 0;
  last_failed = "";
  error_number = error;
  arriving_signal = signal_number;
  all_fail = all_behind;
  granted_calls = granted;
}

void FailAfter(long granted, int error, int all_behind) { Arm(granted, error, 0, all_behind); }
void SignalAfter(long granted, int signal_number, int all_behind) { Arm(granted, EINTR, signal_number, all_behind); }

long EndFailures(void) {
  granted_calls = -1;
  return failures;
}

long SystemCalls(void) { return calls; }
const char* LastFailed(void) { return last_failed; }

static int MeansPath(const char* path) {
  if (directory_length == 0 || path == NULL) return 0;
  if (path[0] != '/') return 1;
  return strncmp(path, directory, directory_length) == 0 &&
         (path[directory_length] == '/' || path[directory_length] == '\0');
}

static int MeansDescriptor(int descriptor) {
  return descriptor >= 0 && descriptor < kMostDescriptors && is_watched[descriptor];
}

static int Watch(int descriptor) {
  if (descriptor >= 0 && descriptor < kMostDescriptors) is_watched[descriptor] = 1;
  return descriptor;
}

/* What happens to a call. */
enum Fate { kWorks, kFails, kMovesHalf };

/* `breaks_off`: whether a signal may break off a call of this kind. */
static enum Fate Decide(int is_meant, const char* name, int moves_bytes, int breaks_off) {
  if (!is_meant) return kWorks;
  ++calls;
  if (granted_calls < 0) return kWorks;
  if (granted_calls > 0) {
    --granted_calls;
    return kWorks;
  }
  if (!all_fail) granted_calls = -1;
  ++failures;
  last_failed = name;
  if (arriving_signal != 0) {
    raise(arriving_signal);
    if (!breaks_off || failures % kBreaksOffOneOf != 1) return kWorks;
  }
  if (error_number == kHalfOfIt) return moves_bytes ? kMovesHalf : kWorks;
  errno = error_number;
  return kFails;
}

/* The call of this name in the libraries behind this program. */
#define NEXT(type, name)                         \
  static __typeof__(type) next;                  \
  if (next == NULL) {                            \
    void* const symbol = dlsym(RTLD_NEXT, name); \
    memcpy(&next, &symbol, sizeof next);         \
  }

#define HALF(size) ((size) > 1 ? (size) / 2 : (size))

/* --- Opening and closing ---------------------------------------------------------------------------------------- */

typedef int (*Open)(const char*, int, ...);

#define OPEN(function)                                                                \
  int function(const char* path, int flags, ...) {                                    \
    NEXT(Open, #function)                                                             \
    va_list more;                                                                     \
    va_start(more, flags);                                                            \
    const mode_t mode = (flags & (O_CREAT | __O_TMPFILE)) ? va_arg(more, mode_t) : 0; \
    va_end(more);                                                                     \
    if (Decide(MeansPath(path), #function, 0, 1) == kFails) return -1;                \
    const int descriptor = next(path, flags, mode);                                   \
    return MeansPath(path) ? Watch(descriptor) : descriptor;                          \
  }

OPEN(open)
OPEN(open64)

int close(int descriptor) {
  NEXT(int (*)(int), "close")
  const int fails = Decide(MeansDescriptor(descriptor), "close", 0, 1) == kFails;
  const int error = errno;
  if (MeansDescriptor(descriptor)) is_watched[descriptor] = 0;
  /* Linux has closed the descriptor whatever it says. */
  const int done = next(descriptor);
  if (!fails) return done;
  errno = error;
  return -1;
}

/* --- Reading and writing ---------------------------------------------------------------------------------------- */

ssize_t read(int descriptor, void* room, size_t size) {
  NEXT(ssize_t(*)(int, void*, size_t), "read")
  const enum Fate fate = Decide(MeansDescriptor(descriptor), "read", 1, 1);
  if (fate == kFails) return -1;
  return next(descriptor, room, fate == kMovesHalf ? HALF(size) : size);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  NEXT(ssize_t(*)(int, const void*, size_t), "write")
  const enum Fate fate = Decide(MeansDescriptor(descriptor), "write", 1, 1);
  if (fate == kFails) return -1;
  return next(descriptor, bytes, fate == kMovesHalf ? HALF(size) : size);
}

ssize_t writev(int descriptor, const struct iovec* pieces, int count) {
  NEXT(ssize_t(*)(int, const struct iovec*, int), "writev")
  const enum Fate fate = Decide(MeansDescriptor(descriptor), "writev", 1, 1);
  if (fate == kFails) return -1;
  return next(descriptor, pieces, fate == kMovesHalf ? HALF(count) : count);
}

#define AT_OFFSET(function, pointer)                                               \
  ssize_t function(int descriptor, pointer room, size_t size, off64_t offset) {    \
    NEXT(ssize_t (*)(int, pointer, size_t, off64_t), #function)                    \
    const enum Fate fate = Decide(MeansDescriptor(descriptor), #function, 1, 1);   \
    if (fate == kFails) return -1;                                                 \
    return next(descriptor, room, fate == kMovesHalf ? HALF(size) : size, offset); \
  }

typedef void* ReadRoom;
typedef const void* WrittenBytes;
AT_OFFSET(pread, ReadRoom)
AT_OFFSET(pread64, ReadRoom)
AT_OFFSET(pwrite, WrittenBytes)
AT_OFFSET(pwrite64, WrittenBytes)

/* --- What is asked of a file ------------------------------------------------------------------------------------- */

#define OF_PATH(function, state)                                                        \
  int function(const char* path, struct state* found) {                                 \
    NEXT(int (*)(const char*, struct state*), #function)                                \
    return Decide(MeansPath(path), #function, 0, 0) == kFails ? -1 : next(path, found); \
  }

OF_PATH(stat, stat)
OF_PATH(stat64, stat64)
OF_PATH(lstat, stat)
OF_PATH(lstat64, stat64)

#define OF_DESCRIPTOR(function, state)                                                                    \
  int function(int descriptor, struct state* found) {                                                     \
    NEXT(int (*)(int, struct state*), #function)                                                          \
    return Decide(MeansDescriptor(descriptor), #function, 0, 0) == kFails ? -1 : next(descriptor, found); \
  }

OF_DESCRIPTOR(fstat, stat)
OF_DESCRIPTOR(fstat64, stat64)

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* found) {
  NEXT(int (*)(int, const char*, int, unsigned, struct statx*), "statx")
  const int is_meant = path[0] != '\0' ? MeansPath(path) : MeansDescriptor(folder);
  return Decide(is_meant, "statx", 0, 0) == kFails ? -1 : next(folder, path, flags, mask, found);
}

int access(const char* path, int mode) {
  NEXT(int (*)(const char*, int), "access")
  return Decide(MeansPath(path), "access", 0, 0) == kFails ? -1 : next(path, mode);
}

ssize_t readlink(const char* path, char* room, size_t size) {
  NEXT(ssize_t(*)(const char*, char*, size_t), "readlink")
  return Decide(MeansPath(path), "readlink", 0, 0) == kFails ? -1 : next(path, room, size);
}

char* getcwd(char* room, size_t size) {
  NEXT(char* (*)(char*, size_t), "getcwd")
  return Decide(directory_length > 0, "getcwd", 0, 0) == kFails ? NULL : next(room, size);
}

#define SEEK(function)                                                                                             \
  off64_t function(int descriptor, off64_t offset, int whence) {                                                   \
    NEXT(off64_t (*)(int, off64_t, int), #function)                                                                \
    return Decide(MeansDescriptor(descriptor), #function, 0, 0) == kFails ? -1 : next(descriptor, offset, whence); \
  }

SEEK(lseek)
SEEK(lseek64)

/* --- What is done with a file ------------------------------------------------------------------------------------ */

static int IsLock(int command) { return command == F_SETLK || command == F_SETLKW || command == F_GETLK; }

/* Whether a signal may break it off: a lock that is taken may be waited for at another machine, one that is given back
 * is not waited for. */
static int Takes(const struct flock* lock) { return lock->l_type != F_UNLCK; }

/* Locks alone: what else SQLite and Qt ask of it needs no disk. */
#define CONTROL(function)                                                                             \
  int function(int descriptor, int command, ...) {                                                    \
    NEXT(int (*)(int, int, ...), #function)                                                           \
    va_list more;                                                                                     \
    va_start(more, command);                                                                          \
    void* const argument = va_arg(more, void*);                                                       \
    va_end(more);                                                                                     \
    if (!MeansDescriptor(descriptor) || !IsLock(command)) return next(descriptor, command, argument); \
    const enum Fate fate = Decide(1, "lock by " #function, 0, Takes(argument));                       \
    return fate == kFails ? -1 : next(descriptor, command, argument);                                 \
  }

CONTROL(fcntl)
CONTROL(fcntl64)

#define CUT(function)                                                                                      \
  int function(int descriptor, off64_t length) {                                                           \
    NEXT(int (*)(int, off64_t), #function)                                                                 \
    return Decide(MeansDescriptor(descriptor), #function, 0, 1) == kFails ? -1 : next(descriptor, length); \
  }

CUT(ftruncate)
CUT(ftruncate64)

#define SYNCHRONISE(function)                                                                      \
  int function(int descriptor) {                                                                   \
    NEXT(int (*)(int), #function)                                                                  \
    return Decide(MeansDescriptor(descriptor), #function, 0, 1) == kFails ? -1 : next(descriptor); \
  }

SYNCHRONISE(fsync)
SYNCHRONISE(fdatasync)

int unlink(const char* path) {
  NEXT(int (*)(const char*), "unlink")
  return Decide(MeansPath(path), "unlink", 0, 0) == kFails ? -1 : next(path);
}

int rename(const char* from, const char* to) {
  NEXT(int (*)(const char*, const char*), "rename")
  return Decide(MeansPath(from) || MeansPath(to), "rename", 0, 0) == kFails ? -1 : next(from, to);
}

#define MAP(function)                                                                                     \
  void* function(void* place, size_t length, int protection, int flags, int descriptor, off64_t offset) { \
    NEXT(void* (*)(void*, size_t, int, int, int, off64_t), #function)                                     \
    if (Decide(MeansDescriptor(descriptor), #function, 0, 0) == kFails) return MAP_FAILED;                \
    return next(place, length, protection, flags, descriptor, offset);                                    \
  }

MAP(mmap)
MAP(mmap64)

/* NOLINTEND(bugprone-easily-swappable-parameters,readability-inconsistent-declaration-parameter-name,cert-dcl37-c) */
