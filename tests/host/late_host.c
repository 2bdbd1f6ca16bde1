/*
 * A host whose calls come from a handler of atexit.
 *
 *   late_host LIBRARY before|after|only|loading [tables]
 *
 * "before": the handler is registered before the library is loaded, and runs after all that the library registered.
 * "after": it is registered after the first calls. "only": as before, and nothing else calls. "loading": the handler
 * loads the library.
 */
#include <dlfcn.h>
#include <stdlib.h>

#include "late_calls.h"

static struct Engine engine;
static const char* library_path;

static void Bind(void* library, const char* name, void* place) {
  void* const symbol = library == NULL ? NULL : dlsym(library, name);
  if (symbol == NULL) {
    fprintf(stderr, "late_host: no %s\n", name);
    _exit(1);
  }
  memcpy(place, &symbol, sizeof symbol);
}

static void LoadEngine(void) {
  void* const library = dlopen(library_path, RTLD_NOW | RTLD_LOCAL);
  Bind(library, "BeginInitPro", &engine.BeginInitPro);
  Bind(library, "InitPromotion", &engine.InitPromotion);
  Bind(library, "FinishInitPro", &engine.FinishInitPro);
  Bind(library, "ClearPromotion", &engine.ClearPromotion);
  Bind(library, "CalcPromotion", &engine.CalcPromotion);
  Bind(library, "DeleteSaleSetByKey", &engine.DeleteSaleSetByKey);
  Bind(library, "ClearSaleSetForNet", &engine.ClearSaleSetForNet);
  Bind(library, "GetState", &engine.GetState);
}

static void AtExit(void) { CallLate(&engine); }

static void AtExitLoading(void) {
  LoadEngine();
  CallLate(&engine);
}

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  with_tables = argc > 3 && strcmp(argv[3], "tables") == 0;
  library_path = argv[1];
  const char* const when = argv[2];
  if (strcmp(when, "loading") == 0) {
    atexit(AtExitLoading);
    return 0;
  }
  if (strcmp(when, "after") != 0) atexit(AtExit);
  LoadEngine();
  if (strcmp(when, "only") != 0) CallEarly(&engine);
  if (strcmp(when, "after") == 0) atexit(AtExit);
  return 0;
}
