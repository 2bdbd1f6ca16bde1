/*
 * A host that calls an engine as it is told, for the soak: the engine lives here for the whole run, alone with what it
 * allocates, and whoever thinks up the calls lives elsewhere.
 *
 *   soak_host LIBRARY
 *
 * A request on standard input is a line with the letter of a call and the lengths of its texts, and behind it the texts.
 * The answer on standard output is a line with the call's code and the lengths of `msg` and `out`, and behind it these.
 * The letter M asks for memory: `msg` tells the bytes in use on the heap, the resident KiB, the open descriptors.
 */
#include <dirent.h>
#include <malloc.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include "../host/load_engine.h"

enum { kTexts = 3, kRoom = 16 << 20 };

/* Mapped, so that the heap is the engine's alone. */
static char* g_texts[kTexts];
static char* g_out;
static char* g_msg;

static void Fail(const char* what) {
  fprintf(stderr, "soak_host: %s\n", what);
  exit(70);
}

static char* Map(void) {
  void* const room = mmap(NULL, kRoom, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (room == MAP_FAILED) Fail("no room for texts");
  return room;
}

/* Gives back the pages of a buffer: how long texts have been is no memory of the engine. */
static void Clear(char* room) {
  if (madvise(room, kRoom, MADV_DONTNEED) != 0) Fail("a buffer can't be emptied");
}

static int OpenDescriptors(void) {
  DIR* const folder = opendir("/proc/self/fd");
  int count = 0;
  if (folder == NULL) return -1;
  while (readdir(folder) != NULL) ++count;
  closedir(folder);
  return count - 3; /* ".", ".." and the folder's own */
}

static long ResidentKib(void) {
  long size = 0;
  long resident = 0;
  FILE* const file = fopen("/proc/self/statm", "r");
  if (file == NULL || fscanf(file, "%ld %ld", &size, &resident) != 2) Fail("no /proc/self/statm");
  fclose(file);
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

static int TellMemory(void) {
  for (int text = 0; text < kTexts; ++text) Clear(g_texts[text]);
  Clear(g_out);
  malloc_trim(0);
  const struct mallinfo2 heap = mallinfo2();
  snprintf(g_msg, kRoom, "%zu %ld %d", heap.uordblks + heap.hblkhd, ResidentKib(), OpenDescriptors());
  return 0;
}

static int Call(const struct Engine* engine, char letter) {
  switch (letter) {
    case 'B':
      return engine->BeginInitPro();
    case 'I':
      return engine->InitPromotion(g_texts[0], g_texts[1], g_msg);
    case 'F':
      return engine->FinishInitPro();
    case 'R':
      return engine->ClearPromotion(g_msg, g_texts[0]);
    case 'C':
      return engine->CalcPromotion(g_texts[0], g_texts[1], g_texts[2], g_out, g_msg);
    case 'D':
      return engine->DeleteSaleSetByKey(g_texts[0]);
    case 'N':
      return engine->ClearSaleSetForNet(g_msg);
    case 'S':
      return engine->GetState(g_msg) == g_msg ? 0 : -1;
    case 'M':
      return TellMemory();
    default:
      Fail("no such call");
      return -1;
  }
}

static void ReadTexts(const size_t lengths[kTexts]) {
  for (int text = 0; text < kTexts; ++text) {
    if (lengths[text] >= kRoom || fread(g_texts[text], 1, lengths[text], stdin) != lengths[text]) Fail("a short text");
    g_texts[text][lengths[text]] = '\0';
  }
}

int main(int argc, char** argv) {
  if (argc != 2) Fail("soak_host LIBRARY");
  for (int text = 0; text < kTexts; ++text) g_texts[text] = Map();
  g_out = Map();
  g_msg = Map();
  const struct Engine engine = LoadEngine(argv[1]);
  char letter = 0;
  size_t lengths[kTexts] = {0};
  while (scanf(" %c %zu %zu %zu", &letter, &lengths[0], &lengths[1], &lengths[2]) == 4) {
    if (getchar() != '\n') Fail("a request without its end");
    ReadTexts(lengths);
    g_out[0] = '\0';
    g_msg[0] = '\0';
    const int code = Call(&engine, letter);
    printf("%d %zu %zu\n%s%s", code, strlen(g_msg), strlen(g_out), g_msg, g_out);
    fflush(stdout);
  }
  return 0;
}
