/*
 * A host whose calls come from a handler of atexit.
 *
 *   late_host LIBRARY before|after|only|loading [tables]
 *
 * "before": the handler is registered before the library is loaded, and runs after all that the library registered.
 * "after": it is registered after the first calls. "only": as before, and nothing else calls. "loading": the handler
 * loads the library.
 */
#include <stdlib.h>

#include "late_calls.h"
#include "load_engine.h"

static struct Engine engine;
static const char* library_path;

static void AtExit(void) { CallLate(&engine); }

static void AtExitLoading(void) {
  engine = LoadEngine(library_path);
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
  engine = LoadEngine(library_path);
  if (strcmp(when, "only") != 0) CallEarly(&engine);
  if (strcmp(when, "after") == 0) atexit(AtExit);
  return 0;
}
