/* The eight calls of an engine, for hosts in C and in C++. */
#ifndef QNCORVANE_TESTS_HOST_ENGINE_H
#define QNCORVANE_TESTS_HOST_ENGINE_H

struct Engine {
  int (*BeginInitPro)(void); /* NOLINT(modernize-redundant-void-arg): C */
  int (*InitPromotion)(const char* type, const char* xml, char* msg);
  int (*FinishInitPro)(void); /* NOLINT(modernize-redundant-void-arg): C */
  int (*ClearPromotion)(char* msg, const char* billNo);
  int (*CalcPromotion)(const char* key, const char* mode, const char* xml, char* out, char* msg);
  int (*DeleteSaleSetByKey)(const char* key);
  int (*ClearSaleSetForNet)(char* msg);
  char* (*GetState)(char* buffer);
};

#endif
