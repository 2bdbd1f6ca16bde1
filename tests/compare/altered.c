/*
 * The engine with one small change, for the tests of the comparison, the properties and the soak: hands every call on to
 * the library that QNCORVANE_REAL names and alters what QNCORVANE_ALTER says. Without a change it is as good as the real
 * one.
 */
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "qncorvane/qncorvane.h"

typedef int (*CalcCall)(const char*, const char*, const char*, char*, char*);
typedef int (*InitCall)(const char*, const char*, char*);
typedef int (*ClearCall)(char*, const char*);
typedef int (*TextCall)(const char*);
typedef int (*BufferCall)(char*);
typedef int (*PlainCall)(void);
typedef char* (*StateCall)(char*);

/* The library is loaded with this one, before any till is played. */
static void* library;

__attribute__((constructor)) static void load(void) {
  const char* const path = getenv("QNCORVANE_REAL");
  library = path == NULL ? NULL : dlopen(path, RTLD_NOW);
  if (library == NULL) {
    fprintf(stderr, "QNCORVANE_REAL names no library\n");
    abort();
  }
}

/* Converting an object pointer to a function pointer is left to the union: C knows no cast for it. */
typedef union {
  void* Address;
  CalcCall Calc;
  InitCall Init;
  ClearCall Clear;
  TextCall Text;
  BufferCall Buffer;
  PlainCall Plain;
  StateCall State;
} Call;

static Call real(const char* name) {
  Call call;
  call.Address = dlsym(library, name);
  if (call.Address == NULL) abort();
  return call;
}

static int alters(const char* what) {
  const char* const word = getenv("QNCORVANE_ALTER");
  return word != NULL && strcmp(word, what) == 0;
}

/* Another last digit in the first discount of a result. */
static void alter_digit(char* out) {
  char* money = strstr(out, "DisMoney=\"");
  if (money == NULL) return;
  money = strchr(money, '.');
  if (money != NULL) money[2] = money[2] == '9' ? '8' : (char)(money[2] + 1);
}

/* One more blank at the end of the log's last entry, in front of its newline and carriage return. */
static void alter_log(void) {
  const int file = open("QnCorvane.txt", O_WRONLY);
  if (file < 0) return;
  const off_t end = lseek(file, -2, SEEK_END);
  if (end > 0 && write(file, " \n\r", 3) != 3) abort();
  close(file);
}

/* The last piece that nobody gives back; volatile, so that none is optimized away. */
static void* volatile leaked;

/* Whether this process has calculated often enough to show its age. */
static int is_late(void) {
  static int calls = 0;
  return ++calls > 300;
}

int BeginInitPro(void) { return real("BeginInitPro").Plain(); }

int InitPromotion(const char* type, const char* xml, char* msg) { return real("InitPromotion").Init(type, xml, msg); }

int FinishInitPro(void) { return real("FinishInitPro").Plain(); }

int ClearPromotion(char* msg, const char* billNo) { return real("ClearPromotion").Clear(msg, billNo); }

int CalcPromotion(const char* key, const char* mode, const char* xml, char* out, char* msg) {
  const int code = real("CalcPromotion").Calc(key, mode, xml, out, msg);
  if (alters("digit") || (alters("late") && is_late())) alter_digit(out);
  if (alters("leak")) leaked = malloc(512);
  if (alters("descriptors") && is_late()) (void)open("/dev/null", O_RDONLY);
  if (alters("log") && mode != NULL && strcmp(mode, "Pay") == 0) alter_log();
  if (alters("code") && code == -2) return -1;
  if (alters("crash") && mode != NULL && strcmp(mode, "Coupon") == 0) raise(SIGSEGV);
  while (alters("hang") && mode != NULL && strcmp(mode, "Coupon") == 0) pause();
  return code;
}

int DeleteSaleSetByKey(const char* key) { return real("DeleteSaleSetByKey").Text(key); }

int ClearSaleSetForNet(char* msg) { return real("ClearSaleSetForNet").Buffer(msg); }

char* GetState(char* buffer) { return real("GetState").State(buffer); }
