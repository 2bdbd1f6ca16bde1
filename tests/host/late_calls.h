/*
 * All eight calls, made while the process ends: each works or answers -1. For hosts in C and in C++.
 */
/* NOLINTBEGIN(modernize-*,readability-implicit-bool-conversion): C */
#ifndef QNCORVANE_TESTS_HOST_LATE_CALLS_H
#define QNCORVANE_TESTS_HOST_LATE_CALLS_H

#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "engine.h"

static const char* const kCouponRule =
    "<Rules><Rule BillNo='Q1' ProType='MZZQ' Primary='DJ'><OrgFilter><R OrgCode='*'/></OrgFilter><ProTime>"
    "<R StartDate='2000-01-01' EndDate='2099-12-31' Frequency='DAY'/></ProTime><ProList ConAreaType='ALL'>"
    "<PluAddAction><R BaseConNum='10' BaseDscNum='8'/></PluAddAction><CouponType LimitType='1' LimitDay='9'/>"
    "</ProList></Rule></Rules>";
/* Reads a table, which it may find or not. */
static const char* const kTableRule =
    "<Rules><Rule BillNo='PTXS-01' ProType='PTXS' Primary='PT'><OrgFilter><R OrgCode='*'/></OrgFilter><ProTime>"
    "<R StartDate='2000-01-01' EndDate='2099-12-31' Frequency='DAY'/></ProTime></Rule></Rules>";
static const char* const kSale =
    "<Sale BillNo='1' OrgCode='01' IsCalc='0'><Plu><R SerialNo='1' PluCode='100101' Price='10' PluCount='1' Total='10'"
    " PackCnt='1' SaleDate='2024-06-15' SaleTime='10:00:00'/></Plu></Sale>";
static const char* const kModes[] = {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"};

/* Whether the rule that reads a table is loaded: 1 once the host was told "tables". */
static int with_tables = 0;

static char result[65536];
static char message[65536];

/* Ends the process at once: what runs behind it could hide the failure. */
static void Demand(int holds, const char* what) {
  if (holds) return;
  fprintf(stderr, "late calls: does not hold: %s (%s)\n", what, message);
  _exit(1);
}

static int Answered(int code) { return code == 0 || code == -1; }

static void LoadRules(const struct Engine* engine) {
  if (with_tables) Demand(engine->InitPromotion("PTXS", kTableRule, message) == 0, "a rule that reads a table loads");
  Demand(engine->InitPromotion("MZYQ", kCouponRule, message) == 0, "a rule loads");
}

/* Rules and a sale, left in the engine. */
static void CallEarly(const struct Engine* engine) {
  Demand(Answered(engine->BeginInitPro()), "BeginInitPro");
  LoadRules(engine);
  engine->FinishInitPro();
  Demand(engine->CalcPromotion("early", "All", kSale, result, message) == 0, "a sale is calculated");
}

static void CallLate(const struct Engine* engine) {
  Demand(engine->GetState(message) == message && strcmp(message, "Free") == 0, "GetState");
  LoadRules(engine);
  Demand(engine->InitPromotion("none", "<x/>", message) == -1, "an unknown type is refused late");
  for (size_t i = 0; i < sizeof kModes / sizeof kModes[0]; ++i) {
    Demand(engine->CalcPromotion("late", kModes[i], kSale, result, message) == 0, kModes[i]);
  }
  Demand(strstr(result, "DisMoney=\"8.00\" ProBillNo=\"Q1\"") != NULL, "the late sale has its coupon value");
  Demand(engine->DeleteSaleSetByKey("late") == 0, "DeleteSaleSetByKey");
  Demand(engine->DeleteSaleSetByKey("early") == 0, "DeleteSaleSetByKey of an early sale");
  Demand(engine->ClearSaleSetForNet(message) == 0, "ClearSaleSetForNet");
  Demand(engine->ClearPromotion(message, "*") == 0, "ClearPromotion");
  Demand(Answered(engine->BeginInitPro()), "BeginInitPro late");
  Demand(engine->FinishInitPro() == 0, "FinishInitPro");
  printf("late calls: all answered\n");
  fflush(stdout);
}

#endif
/* NOLINTEND(modernize-*,readability-implicit-bool-conversion) */
