/* A host in C on the installed safe face: installed_host STORE SALE. Prints what the sale in the file SALE comes to. */
#include <qncorvane/host.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The text of a file, to be freed; null when it can't be read. */
static char* read_file(const char* name) {
  FILE* file = fopen(name, "rb");
  char* text = NULL;
  size_t size = 0;
  if (file == NULL) return NULL;
  text = calloc(1, 65536);
  if (text != NULL) size = fread(text, 1, 65535, file);
  if (ferror(file) || size == 65535) {
    free(text);
    text = NULL;
  }
  fclose(file);
  return text;
}

/* Says what a call was refused for, and gives its text back. */
static int refused(const char* call, int code, char* error) {
  fprintf(stderr, "%s answers %d: %s\n", call, code, error);
  qnc_free(error);
  return 1;
}

static int run_sale(qnc_engine* engine, const char* sale) {
  char* error = NULL;
  char* result = NULL;
  const char* to_pay = NULL;
  int code = qnc_load_rules(engine, NULL, 0, 0, NULL, &error);
  if (code != QNC_OK) return refused("qnc_load_rules", code, error);
  code = qnc_calculate(engine, "1", "All", sale, QNC_JSON, 10000, &result, &error);
  if (code != QNC_OK) return refused("qnc_calculate", code, error);
  to_pay = strstr(result, "\"toPayCents\":");
  if (to_pay != NULL) printf("to pay %ld cents\n", strtol(to_pay + strlen("\"toPayCents\":"), NULL, 10));
  qnc_free(result);
  return to_pay == NULL;
}

int main(int argc, char** argv) {
  qnc_engine* engine = NULL;
  char* error = NULL;
  char* sale = argc == 3 ? read_file(argv[2]) : NULL;
  int code = QNC_OK;
  int failed = 0;
  if (sale == NULL) {
    fprintf(stderr, "installed_host: STORE and a SALE that can be read are wanted\n");
    return 2;
  }
  code = qnc_open(argv[1], &engine, &error);
  if (code != QNC_OK) {
    free(sale);
    return refused("qnc_open", code, error);
  }
  failed = run_sale(engine, sale);
  free(sale);
  code = qnc_close(engine, &error);
  if (code != QNC_OK) return refused("qnc_close", code, error);
  return failed;
}
