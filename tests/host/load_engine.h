/* Binds an engine by the names of its calls, for hosts in C. Without it there is nothing to test: the process ends. */
#ifndef QNCORVANE_TESTS_HOST_LOAD_ENGINE_H
#define QNCORVANE_TESTS_HOST_LOAD_ENGINE_H

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "engine.h"

static void Bind(void* library, const char* name, void* place) {
  void* const symbol = dlsym(library, name);
  if (symbol == NULL) {
    fprintf(stderr, "no call named %s\n", name);
    _exit(1);
  }
  memcpy(place, &symbol, sizeof symbol);
}

/* The calls of a library that is open. */
static struct Engine BindEngine(void* library) {
  struct Engine engine;
  Bind(library, "BeginInitPro", &engine.BeginInitPro);
  Bind(library, "InitPromotion", &engine.InitPromotion);
  Bind(library, "FinishInitPro", &engine.FinishInitPro);
  Bind(library, "ClearPromotion", &engine.ClearPromotion);
  Bind(library, "CalcPromotion", &engine.CalcPromotion);
  Bind(library, "DeleteSaleSetByKey", &engine.DeleteSaleSetByKey);
  Bind(library, "ClearSaleSetForNet", &engine.ClearSaleSetForNet);
  Bind(library, "GetState", &engine.GetState);
  return engine;
}

static inline struct Engine LoadEngine(const char* path) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    _exit(1);
  }
  return BindEngine(library);
}

#endif
