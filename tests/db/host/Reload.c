/* A host that loads the library, works, closes it and goes on.
 *   db_reload_test LIBRARY
 * Runs in the current directory, which it fills. */
#include <dirent.h>
#include <dlfcn.h>
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

typedef int (*Begin)(void);
typedef int (*Finish)(void);
typedef int (*Load)(const char* type, const char* xml, char* msg);
typedef int (*Calculate)(const char* key, const char* mode, const char* xml, char* out, char* msg);

static const char rule[] =
    "<Rules><Rule BillNo=\"X1\" OrgCode=\"S01\" ProType=\"PTXS\" ProMode=\"PT\" Primary=\"PT\" JzDate=\"2026-01-01\">"
    "<OrgFilter><D OrgCode=\"*\"/></OrgFilter><ProTime><D StartDate=\"2020-01-01\" EndDate=\"2099-12-31\" "
    "StartTime=\"\" EndTime=\"\" Frequency=\"DAY\"/></ProTime></Rule></Rules>";
static const char sale[] =
    "<Sale OrgCode=\"S01\" BillNo=\"B1\" IsCalc=\"0\"><Plu><D SerialNo=\"1\" PluCode=\"COLA\" Price=\"10\" "
    "PluCount=\"1\" Total=\"10\" PackCnt=\"1\" SaleDate=\"2026-11-21\" SaleTime=\"10:00:00\"/></Plu></Sale>";

static char message[8192];
static char result[1 << 16];

static void must(int held, const char* what) {
  if (held) return;
  fprintf(stderr, "failed: %s (%s)\n", what, message);
  _exit(1);
}

/* Stores the function at `place`: C has no conversion from what dlsym gives to a function. */
static void find(void* library, const char* name, void* place) {
  void* found = dlsym(library, name);
  must(found != NULL, name);
  memcpy(place, &found, sizeof found);
}

static int descriptors(void) {
  int count = 0;
  DIR* folder = opendir("/proc/self/fd");
  while (readdir(folder)) ++count;
  closedir(folder);
  return count;
}

static void make_store(void) {
  sqlite3* store = NULL;
  unlink("store.db");
  must(sqlite3_open("store.db", &store) == SQLITE_OK, "store");
  must(sqlite3_exec(store,
                    "create table tProPrjDirectProAct (BillNo,SerialNo integer,PluCode,PluType,InRange,DscType,"
                    "DscPrice real,DscRate real,SaleCount real,TradeMaxCount real);"
                    "insert into tProPrjDirectProAct values ('X1',1,'COLA','PLU','IN','PRC',8,0,0,0)",
                    NULL, NULL, NULL) == SQLITE_OK,
       "table");
  sqlite3_close(store);
  FILE* settings = fopen("config.ini", "w");
  fputs("[DataBase]\nDbType=SQLITE\nDBName=./store.db\n", settings);
  fclose(settings);
}

static void* open_library(const char* path) {
  void* library = dlopen(path, RTLD_NOW);
  must(library != NULL, path);
  return library;
}

static int sell(void* library) {
  Calculate calculate = NULL;
  find(library, "CalcPromotion", &calculate);
  return calculate("till", "All", sale, result, message);
}

static void work(void* library) {
  Load load = NULL;
  Begin begin = NULL;
  Finish finish = NULL;
  find(library, "InitPromotion", &load);
  find(library, "BeginInitPro", &begin);
  find(library, "FinishInitPro", &finish);
  must(load("PTXS", rule, message) == 0, "InitPromotion");
  must(begin() == 0, "BeginInitPro");
  finish();
  must(sell(library) == 0, "CalcPromotion");
  must(strstr(result, "DisMoney=\"2.00\"") != NULL, result);
}

int main(int count, char** arguments) {
  must(count == 2, "usage: db_reload_test LIBRARY");
  make_store();
  int opened = 0;
  for (int round = 0; round < 10; ++round) {
    void* library = open_library(arguments[1]);
    work(library);
    must(dlclose(library) == 0, "dlclose");
    if (round == 0) opened = descriptors(); /* what Qt itself keeps */
    must(descriptors() == opened, "a round left a descriptor open");
  }
  return 0;
}
