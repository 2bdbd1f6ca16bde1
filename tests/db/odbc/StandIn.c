/* Stands between the ODBC driver manager and the driver for SQLite files, which it is linked with and whose calls it
 * leaves as they are, three excepted. It takes the way in which SQL Server and Access ask for one row; it notes the
 * timeouts that reach a driver in the file that QNCORVANE_ODBC_NOTES names; and for a statement that holds
 * "stand-in silence" it keeps silent for as long as a driver may, a minute without a query timeout. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#define SQL_ERROR ((short)-1)
#define SQL_NTS (-3)
#define EXPORTED __attribute__((visibility("default")))

typedef short (*SetAttribute)(void* connection, int attribute, void* value, int length);
typedef short (*Execute)(void* statement, unsigned char* sql, int length);

static unsigned query_timeout;

EXPORTED short SQLSetConnectAttr(void* connection, int attribute, void* value, int length) {
  const char* notes = getenv("QNCORVANE_ODBC_NOTES");
  FILE* file = notes && (attribute == 0 || attribute == 103 || attribute == 113) ? fopen(notes, "a") : NULL;
  if (file) {
    fprintf(file, "%d=%u\n", attribute, (unsigned)(size_t)value);
    fclose(file);
  }
  if (attribute == 0) {
    query_timeout = (unsigned)(size_t)value;
    return 0;
  }
  SetAttribute next = (SetAttribute)dlsym(RTLD_NEXT, "SQLSetConnectAttr");
  return next(connection, attribute, value, length);
}

EXPORTED short SQLExecDirect(void* statement, unsigned char* sql, int length) {
  static const char top[] = "select top 1 ";
  Execute next = (Execute)dlsym(RTLD_NEXT, "SQLExecDirect");
  const size_t size = length == SQL_NTS ? strlen((char*)sql) : (size_t)length;
  char* text = malloc(size + sizeof " limit 1");
  if (!text) return SQL_ERROR;
  memcpy(text, sql, size);
  text[size] = '\0';
  if (strstr(text, "stand-in silence")) sleep(query_timeout ? query_timeout : 60);
  if (strncmp(text, top, sizeof top - 1) == 0) {
    memmove(text + 7, text + sizeof top - 1, size - sizeof top + 2);
    strcat(text, " limit 1");
  }
  const short result = next(statement, (unsigned char*)text, SQL_NTS);
  free(text);
  return result;
}
