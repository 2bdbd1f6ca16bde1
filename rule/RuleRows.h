#ifndef QNCORVANE_RULE_RULEROWS_H
#define QNCORVANE_RULE_RULEROWS_H

#include <cstdint>

#include "base/Text.h"
#include "sale/ProDetailKey.h"
#include "sale/SaleRecords.h"

namespace Corvane {

// The rows of rules: filters and the families of detail rows that several types share. ProPayMode, ProVip and
// PluAddAction are records of the sale too and stand in sale/SaleRecords.h.

/// An organisation in which the rule applies; "*" is every one.
struct ProOrgFilter {
  Text BillNo = nullptr;
  Text OrgCode = nullptr;
};

/// A span of days, and of hours in each of them, in which the rule applies.
struct ProTime {
  Text BillNo = nullptr;
  Text StartDate = nullptr;  ///< "YYYY-MM-DD", inclusive
  Text EndDate = nullptr;    ///< "YYYY-MM-DD", inclusive
  Text StartTime = nullptr;  ///< "HH:MM:SS", inclusive; empty is the whole day
  Text EndTime = nullptr;    ///< "HH:MM:SS", inclusive
  Text Frequency = nullptr;  ///< "WEEK": only the days of WeekDays; any other text: every day
  Text WeekDays = nullptr;   ///< numbers joined by ",", Sunday = 0 to Saturday = 6
  Text MonthDays = nullptr;  ///< carried, never tested

  ProTime() = default;
  /// A row for whole days: from "00:00:00" to "23:59:59".
  ProTime(Text billNo, Text startDate, Text endDate, Text frequency, Text weekDays, Text monthDays)
      : BillNo(billNo),
        StartDate(startDate),
        EndDate(endDate),
        StartTime("00:00:00"),
        EndTime("23:59:59"),
        Frequency(frequency),
        WeekDays(weekDays),
        MonthDays(monthDays) {}
};

/// What a rule asks of goods, or which goods it covers.
struct PluCondition : ProDetailKey {
  double MinNum = 0;        ///< least quantity
  double MinMoney = 0;      ///< least money
  double LimitNum = 0;      ///< most quantity
  Text ListCode = nullptr;  ///< list of a full-amount rule that the row belongs to
  Text DataId = nullptr;    ///< part of a table row's identity
};

/// What a rule does with goods.
struct PluAction : ProDetailKey {
  Text DisType = nullptr;  ///< "PRC" set price, "RAT" percent of the price, "2" fixed reduction of the unit price
  double SaleCount = 0;    ///< pieces of one set
  double DisPrice = 0;     ///< the set price, or the reduction
  double DisRate = 0;      ///< percent of the price that is left to pay
};

/// The kind of coupon that a coupon rule deals with.
struct CouponType {
  Text BgnDate = nullptr;
  Text BillNoType = nullptr;
  Text CouponTypeCode = nullptr;
  Text CouponTypeName = nullptr;
  Text EndDate = nullptr;
  bool IsCheck = false;
  bool IsDenom = false;  ///< a sum is cut into denominations
  bool IsTrack = false;
  std::int32_t LimitDay = 0;  ///< days of validity from the sale on
  Text LimitType = nullptr;   ///< "0": valid until EndDate; any other text: for LimitDay days
  Text PrintType = nullptr;
  Text SaleRefType = nullptr;
  Text ShareType = nullptr;
  Text BillNoRule = nullptr;
  Text CouponMedium = nullptr;
  Text CouponPosition = nullptr;
  Text PayReflect = nullptr;
  Text PayType = nullptr;
  Text UsePluCode = nullptr;
  Text UseOrgCode = nullptr;
};

/// A face value into which a coupon sum is cut.
struct CouponDenomination {
  double Denomination = 0;
  Text CouponDenomiCode = nullptr;
  Text CouponUnit = nullptr;
};

}  // namespace Corvane

#endif
