/* The installed header in C, the installed library at link time. */
#include <qncorvane/qncorvane.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  char state[64] = "";
  char result[4096] = "";
  char message[1024] = "";
  if (strcmp(GetState(state), "Free") != 0) {
    fprintf(stderr, "installed: the state is '%s'\n", state);
    return 1;
  }
  if (CalcPromotion("1", "All", "<Sale BillNo='7' OrgCode='01' IsCalc='0'/>", result, message) != 0) {
    fprintf(stderr, "installed: '%s'\n", message);
    return 1;
  }
  if (strstr(result, "<Sale BillNo=\"7\" OrgCode=\"01\">") == NULL) {
    fprintf(stderr, "installed: the result is '%s'\n", result);
    return 1;
  }
  return 0;
}
