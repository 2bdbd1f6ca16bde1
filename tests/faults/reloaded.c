/*
 * A host that loads the library, works a till, closes it, and loads it again, fifty times; with descriptors used up now
 * and then, when it can't be loaded. Each time the till gives the same, and leaves neither descriptors nor threads.
 *
 *   reloaded LIBRARY
 *
 * Runs in a copy of the sample store.
 */
/* NOLINTBEGIN(modernize-*,readability-implicit-bool-conversion): C */
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/host/engine.h"
#include "tests/host/load_engine.h"

enum { kRounds = 50, kSettled = 5, kMostDescriptors = 64, kMostLost = 20000 };

static char rule[8192];
static char message[16384];
static char result[1 << 16];
static char first_result[1 << 16];

static const char sale[] =
    "<Sale BillNo='S-1' OrgCode='01' IsCalc='0'><Plu><R SerialNo='1' PluCode='100101' Price='2.50' PluCount='3' "
    "Total='7.50' PackCnt='1' CAT='JUICE' BRD='SUNNY' SaleDate='2024-06-15' SaleTime='10:00:00'/></Plu></Sale>";

static void Demand(int holds, const char* what, int round) {
  if (holds) return;
  fprintf(stderr, "reloaded: round %d: does not hold: %s (%s)\n", round, what, message);
  _exit(1);
}

static int EntriesOf(const char* folder) {
  int count = 0;
  DIR* const entries = opendir(folder);
  if (entries == NULL) return -1;
  for (const struct dirent* entry = readdir(entries); entry != NULL; entry = readdir(entries)) {
    if (entry->d_name[0] != '.') ++count;
  }
  closedir(entries);
  return count;
}

static void ReadRule(void) {
  FILE* const file = fopen("rules/PTXS-01-juice.xml", "rb");
  Demand(file != NULL && fread(rule, 1, sizeof rule - 1, file) > 0, "the rule can be read", 0);
  fclose(file);
}

static void* Open(const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }

/* Which calls a till makes differs from round to round: the library is closed with rules and sales in it, too. */
static void Work(void* library, int round) {
  const struct Engine engine = BindEngine(library);
  if (round % 3 != 0) Demand(engine.BeginInitPro() == 0, "BeginInitPro", round);
  Demand(engine.InitPromotion("PTXS", rule, message) == 0, "InitPromotion", round);
  Demand(engine.FinishInitPro() == 0, "FinishInitPro", round);
  Demand(engine.CalcPromotion("k", "All", sale, result, message) == 0, "CalcPromotion", round);
  if (round == 0) strcpy(first_result, result);
  Demand(strstr(result, "DisMoney=\"1.53\"") != NULL, "the rule gives its discount", round);
  Demand(strcmp(result, first_result) == 0, "each round gives the same", round);
  if (round % 2 == 0) return;
  Demand(engine.DeleteSaleSetByKey("k") == 0, "DeleteSaleSetByKey", round);
  Demand(engine.ClearSaleSetForNet(message) == 0, "ClearSaleSetForNet", round);
  Demand(engine.ClearPromotion(message, "*") == 0, "ClearPromotion", round);
  Demand(strcmp(engine.GetState(message), "Free") == 0, "GetState", round);
}

/* With all descriptors taken. */
static void FailToOpen(const char* path, int round) {
  int taken[kMostDescriptors];
  int count = 0;
  while ((taken[count] = open("/dev/null", O_RDONLY)) >= 0) ++count;
  void* const library = Open(path);
  while (count > 0) close(taken[--count]);
  Demand(library == NULL, "without descriptors the library can't be loaded", round);
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const struct rlimit limit = {kMostDescriptors, kMostDescriptors};
  if (setrlimit(RLIMIT_NOFILE, &limit) != 0) return 2;
  ReadRule();
  int descriptors = 0;
  size_t memory = 0;
  for (int round = 0; round < kRounds; ++round) {
    void* const library = Open(argv[1]);
    Demand(library != NULL, "the library is loaded", round);
    Work(library, round);
    Demand(dlclose(library) == 0, "the library is closed", round);
    Demand(dlopen(argv[1], RTLD_NOW | RTLD_NOLOAD) == NULL, "a library that was closed is gone", round);
    Demand(EntriesOf("/proc/self/task") == 1, "there is no other thread", round);
    if (round == 0) descriptors = EntriesOf("/proc/self/fd"); /* what Qt itself keeps */
    Demand(EntriesOf("/proc/self/fd") == descriptors, "no descriptor stays", round);
    if (round % 10 == 9) FailToOpen(argv[1], round);
    if (round == kSettled) memory = mallinfo2().uordblks;
  }
  /* What is there until the process ends is there until it ends also when the library is closed before. */
  const size_t lost = (mallinfo2().uordblks - memory) / (kRounds - 1 - kSettled);
  printf("reloaded: %d rounds, %zu bytes stay behind each\n", kRounds, lost);
  Demand(lost < kMostLost, "a round leaves little", kRounds);
  return 0;
}
/* NOLINTEND(modernize-*,readability-implicit-bool-conversion) */
