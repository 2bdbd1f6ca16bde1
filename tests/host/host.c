/*
 * A host as most hosts are: plain C, no Qt, the engine bound by name at run time.
 *
 *   host LIBRARY [--expect-decimal-comma]
 *
 * Runs in a copy of the sample store. Exits with 0 when every call answered as it should, and with 1 and a line on
 * stderr for each that did not.
 */
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "load_engine.h"

static const char* const kSale =
    "<Sale BillNo=\"S-1\" OrgCode=\"01\" IsCalc=\"0\"><Plu>"
    "<Row SerialNo=\"1\" PluCode=\"100101\" Price=\"2.50\" PluCount=\"3\" Total=\"7.50\" PackCnt=\"1\" CAT=\"JUICE\""
    " BRD=\"SUNNY\" SaleDate=\"2024-06-15\" SaleTime=\"10:00:00\"/>"
    "<Row SerialNo=\"2\" PluCode=\"999999\" Price=\"9.90\" PluCount=\"1\" Total=\"9.90\" PackCnt=\"1\""
    " SaleDate=\"2024-06-15\" SaleTime=\"10:00:00\"/>"
    "</Plu></Sale>";

static char result[65536];
static char message[65536];
static int failures = 0;

static void Check(int holds, const char* what) {
  if (holds) return;
  ++failures;
  fprintf(stderr, "host: does not hold: %s\n", what);
}

static void CheckText(const char* found, const char* expected, const char* what) {
  if (strcmp(found, expected) == 0) return;
  ++failures;
  fprintf(stderr, "host: %s: expected '%s', found '%s'\n", what, expected, found);
}

static void CheckContains(const char* text, const char* part, const char* what) {
  if (strstr(text, part) != NULL) return;
  ++failures;
  fprintf(stderr, "host: %s: no '%s' in:\n%s\n", what, part, text);
}

static char* ReadRule(const char* path) {
  static char text[16384];
  FILE* const file = fopen(path, "rb");
  if (file == NULL) {
    fprintf(stderr, "host: no %s; the current directory has to be a copy of the sample store\n", path);
    exit(1);
  }
  const size_t length = fread(text, 1, sizeof text - 1, file);
  text[length] = '\0';
  fclose(file);
  return text;
}

static void CheckState(const struct Engine* engine, const char* expected) {
  char buffer[64] = "";
  Check(engine->GetState(buffer) == buffer, "GetState returns its buffer");
  CheckText(buffer, expected, "state");
}

static int Calculate(const struct Engine* engine, const char* mode, const char* xml) {
  strcpy(result, "untouched");
  strcpy(message, "untouched");
  return engine->CalcPromotion("till-1", mode, xml, result, message);
}

static void TestLoading(const struct Engine* engine) {
  CheckState(engine, "Free");
  Check(engine->BeginInitPro() == 0, "BeginInitPro opens the store's database");
  CheckState(engine, "Init");
  Check(engine->BeginInitPro() == -1, "a second BeginInitPro is refused");
  Check(Calculate(engine, "All", kSale) == -1, "no calculation while rules are loaded");
  CheckText(message, "pro inititalzing", "message of the refused calculation");
  CheckText(result, "untouched", "result of the refused calculation");

  Check(engine->InitPromotion("XXXX", "<a/>", message) == -1, "an unknown type is refused");
  CheckText(message, "pro initialize failed<a/>", "message for an unknown type");
  Check(engine->InitPromotion("PTXS", ReadRule("rules/PTXS-01-juice.xml"), message) == 0, "a rule loads");
  CheckText(message, "sucess", "message for a loaded rule");

  Check(engine->FinishInitPro() == 0, "FinishInitPro");
  CheckState(engine, "Free");
}

static void TestRefusals(const struct Engine* engine) {
  Check(engine->CalcPromotion("", "All", kSale, result, message) == -1, "an empty key is refused");
  CheckText(message, "销售单主键为空！", "message for an empty key");
  Check(Calculate(engine, "", kSale) == -1, "an empty mode is refused");
  CheckText(message, "计算方式为空！", "message for an empty mode");
  Check(Calculate(engine, "All", "") == -1, "an empty sale is refused");
  CheckText(message, "销售单为空！", "message for an empty sale");
  Check(Calculate(engine, "all", kSale) == -1, "an unknown mode is refused");
  CheckText(message, "sucess", "message for an unknown mode");
  CheckState(engine, "Free");
}

/* Three juices at 2.50 for 1.99 each: 5.97, and 1.53 off. */
static void TestDiscount(const struct Engine* engine) {
  Check(Calculate(engine, "All", kSale) == 0, "mode All");
  CheckText(message, "sucess", "message of mode All");
  CheckContains(
      result,
      "PluCode=\"100101\" Price=\"2.50\" FinalPrice=\"1.9900\" PluCount=\"3.00\" DisNum=\"3.00\" Total=\"5.97\"",
      "discounted line");
  CheckContains(result, "DisNum=\"3.00\" DisMoney=\"1.53\" ProBillNo=\"PTXS-01\" ProType=\"PTXS\"", "discount");
  CheckContains(
      result,
      "PluCode=\"999999\" Price=\"9.90\" FinalPrice=\"9.9000\" PluCount=\"1.00\" DisNum=\"0.00\" Total=\"9.90\"",
      "line without a discount");
}

/* One juice more on a line of its own: 0.51 off. */
static void TestScannedLine(const struct Engine* engine) {
  const char* const scanned =
      "<Sale BillNo=\"S-1\" OrgCode=\"01\" IsCalc=\"0\"><Plu>"
      "<Row SerialNo=\"3\" PluCode=\"100101\" Price=\"2.50\" PluCount=\"1\" Total=\"2.50\" PackCnt=\"1\" CAT=\"JUICE\""
      " BRD=\"SUNNY\" SaleDate=\"2024-06-15\" SaleTime=\"10:01:00\"/></Plu></Sale>";
  Check(Calculate(engine, "Single", scanned) == 0, "mode Single");
  CheckContains(result, "<Data SerialNo=\"3\" PluCode=\"100101\" Price=\"2.50\" FinalPrice=\"1.9900\"", "scanned line");
  CheckContains(result, "DisMoney=\"0.51\" ProBillNo=\"PTXS-01\"", "discount of the scanned line");
  Check(strstr(result, "999999") == NULL, "mode Single tells of the scanned line alone");
}

static void TestLaterModes(const struct Engine* engine) {
  static const char* const kModes[] = {"Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"};
  for (size_t i = 0; i < sizeof kModes / sizeof kModes[0]; ++i) {
    Check(Calculate(engine, kModes[i], "<Sale/>") == 0, kModes[i]);
    CheckText(message, "sucess", kModes[i]);
  }
}

static void TestForgetting(const struct Engine* engine) {
  Check(engine->DeleteSaleSetByKey("till-1") == 0, "DeleteSaleSetByKey");
  Check(engine->DeleteSaleSetByKey("nobody") == 0, "DeleteSaleSetByKey of an unknown key");
  Check(Calculate(engine, "All", "<Sale BillNo=\"S-2\" OrgCode=\"01\" IsCalc=\"0\"/>") == 0,
        "a new sale under the key");
  CheckContains(result, "<Plu />", "the new sale has no lines");

  Check(engine->ClearPromotion(message, "ptxs-01") == 0, "ClearPromotion");
  CheckText(message, "sucess", "message of ClearPromotion");
  Check(Calculate(engine, "All", kSale) == 0, "mode All without rules");
  CheckContains(result, "FinalPrice=\"2.5000\" PluCount=\"3.00\" DisNum=\"0.00\" Total=\"7.50\"", "line without rules");
  Check(engine->ClearSaleSetForNet(message) == 0, "ClearSaleSetForNet");
  CheckText(message, "sucess", "message of ClearSaleSetForNet");
}

static void TestLog(void) {
  FILE* const log = fopen("QnCorvane.txt", "rb");
  Check(log != NULL && fgetc(log) != EOF, "the log lies in the current directory and is not empty");
  if (log != NULL) fclose(log);
}

int main(int argc, char** argv) {
  if (argc < 2) {
    fprintf(stderr, "host: LIBRARY [--expect-decimal-comma]\n");
    return 2;
  }
  setlocale(LC_ALL, "");
  const int expectComma = argc > 2 && strcmp(argv[2], "--expect-decimal-comma") == 0;
  CheckText(localeconv()->decimal_point, expectComma ? "," : ".", "decimal sign of the host's locale");
  char localeBefore[256] = "";
  snprintf(localeBefore, sizeof localeBefore, "%s", setlocale(LC_ALL, NULL));

  const struct Engine engine = LoadEngine(argv[1]);
  TestLoading(&engine);
  TestRefusals(&engine);
  TestDiscount(&engine);
  TestScannedLine(&engine);
  TestLaterModes(&engine);
  TestForgetting(&engine);
  TestLog();

  CheckText(setlocale(LC_ALL, NULL), localeBefore, "locale of the host after all calls");
  CheckText(localeconv()->decimal_point, expectComma ? "," : ".", "decimal sign of the host after all calls");
  if (failures != 0) return 1;
  printf("host: every call answers as it should\n");
  return 0;
}
