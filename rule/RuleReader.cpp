#include "rule/RuleReader.h"

#include <cstdint>
#include <utility>

#include "base/XmlFields.h"

namespace Corvane {

namespace {

using HeaderField = Into<ProInfo>;
constexpr XmlField<ProInfo> kHeaderFields[] = {
    {"BillNo", HeaderField::KeptText<&ProInfo::BillNo>},
    {"OrgCode", HeaderField::KeptText<&ProInfo::OrgCode>},
    {"ProType", HeaderField::KeptText<&ProInfo::ProType>},
    {"ProMode", HeaderField::KeptText<&ProInfo::ProMode>},
    {"ProStatus", HeaderField::KeptText<&ProInfo::ProStatus>},
    {"Primary", HeaderField::KeptText<&ProInfo::Primary>},
    {"JzDate", HeaderField::KeptText<&ProInfo::JzDate>},
    {"MaxYhValue", HeaderField::Double<&ProInfo::MaxYhValue>},
    {"MaxYhType", HeaderField::KeptText<&ProInfo::MaxYhType>},
    {"Remark", HeaderField::KeptText<&ProInfo::Remark>},
};

constexpr XmlField<ProOrgFilter> kOrgFields[] = {
    {"OrgCode", Into<ProOrgFilter>::KeptText<&ProOrgFilter::OrgCode>},
};

using TimeField = Into<ProTime>;
constexpr XmlField<ProTime> kTimeFields[] = {
    {"StartDate", TimeField::KeptText<&ProTime::StartDate>}, {"EndDate", TimeField::KeptText<&ProTime::EndDate>},
    {"StartTime", TimeField::KeptText<&ProTime::StartTime>}, {"EndTime", TimeField::KeptText<&ProTime::EndTime>},
    {"Frequency", TimeField::KeptText<&ProTime::Frequency>}, {"WeekDays", TimeField::KeptText<&ProTime::WeekDays>},
    {"MonthDays", TimeField::KeptText<&ProTime::MonthDays>},
};

using PayField = Into<ProPayMode>;
constexpr XmlField<ProPayMode> kPayFields[] = {
    {"PayMode", PayField::KeptText<&ProPayMode::PayMode>},
    {"PayCardNo", PayField::KeptText<&ProPayMode::PayCardNo>},
    {"PayMoney", PayField::Double<&ProPayMode::PayMoney>},
};

constexpr XmlField<ProVip> kVipFields[] = {
    {"VipType", Into<ProVip>::KeptText<&ProVip::VipType>},
};

using ConditionField = Into<PluCondition>;
constexpr XmlField<PluCondition> kConditionFields[] = {
    {"SerialNo", ConditionField::Integer<&PluCondition::SerialNo>},
    {"PluCode", ConditionField::KeptText<&PluCondition::PluCode>},
    {"PluType", ConditionField::KeptText<&PluCondition::PluType>},
    {"Contain", ConditionField::KeptText<&PluCondition::Contain>},
    {"MinNum", ConditionField::Double<&PluCondition::MinNum>},
    {"LimitNum", ConditionField::Double<&PluCondition::LimitNum>},
    {"MinMoney", ConditionField::Double<&PluCondition::MinMoney>},
};

using ActionField = Into<PluAction>;
constexpr XmlField<PluAction> kActionFields[] = {
    {"SerialNo", ActionField::Integer<&PluAction::SerialNo>}, {"PluCode", ActionField::KeptText<&PluAction::PluCode>},
    {"PluType", ActionField::KeptText<&PluAction::PluType>},  {"Contain", ActionField::KeptText<&PluAction::Contain>},
    {"DisType", ActionField::KeptText<&PluAction::DisType>},  {"DisPrice", ActionField::Double<&PluAction::DisPrice>},
    {"DisRate", ActionField::Double<&PluAction::DisRate>},    {"SaleCount", ActionField::Double<&PluAction::SaleCount>},
};

/// What the element of a "PluAction" group says for all its rows.
struct ActionGroup {
  Text ActionType = "";
  double PrjTotal = 0;
};
constexpr XmlField<ActionGroup> kActionGroupFields[] = {
    {"ActionType", Into<ActionGroup>::KeptText<&ActionGroup::ActionType>},
    {"PrjTotal", Into<ActionGroup>::Double<&ActionGroup::PrjTotal>},
};

using TierField = Into<PluAddAction>;
constexpr XmlField<PluAddAction> kTierFields[] = {
    {"SerialNo", TierField::Integer<&PluAddAction::SerialNo>},
    {"PluCode", TierField::KeptText<&PluAddAction::PluCode>},
    {"PluType", TierField::KeptText<&PluAddAction::PluType>},
    {"Contain", TierField::KeptText<&PluAddAction::Contain>},
    {"DisType", TierField::KeptText<&PluAddAction::DisType>},
    {"DisRate", TierField::Double<&PluAddAction::DisRate>},
    {"DscPrice", TierField::Double<&PluAddAction::DscPrice>},
    {"BaseConTp", TierField::KeptText<&PluAddAction::BaseConTp>},
    {"BaseConNum", TierField::Double<&PluAddAction::BaseConNum>},
    {"BaseDscTp", TierField::KeptText<&PluAddAction::BaseDscTp>},
    {"BaseDscNum", TierField::Double<&PluAddAction::BaseDscNum>},
    {"AddConNum", TierField::Double<&PluAddAction::AddConNum>},
    {"AddDscTp", TierField::KeptText<&PluAddAction::AddDscTp>},
    {"AddDscNum", TierField::Double<&PluAddAction::AddDscNum>},
    {"SaleMaxIn", TierField::Double<&PluAddAction::SaleMaxIn>},
};

using CouponField = Into<CouponType>;
constexpr XmlField<CouponType> kCouponFields[] = {
    {"BgnDate", CouponField::KeptText<&CouponType::BgnDate>},
    {"BillNoType", CouponField::KeptText<&CouponType::BillNoType>},
    {"CouponTypeCode", CouponField::KeptText<&CouponType::CouponTypeCode>},
    {"CouponTypeName", CouponField::KeptText<&CouponType::CouponTypeName>},
    {"EndDate", CouponField::KeptText<&CouponType::EndDate>},
    {"IsCheck", CouponField::Presence<&CouponType::IsCheck>},
    {"IsDenom", CouponField::Presence<&CouponType::IsDenom>},
    {"IsTrack", CouponField::Presence<&CouponType::IsTrack>},
    {"LimitDay", CouponField::Integer<&CouponType::LimitDay>},
    {"LimitType", CouponField::KeptText<&CouponType::LimitType>},
    {"PrintType", CouponField::KeptText<&CouponType::PrintType>},
    {"SaleRefType", CouponField::KeptText<&CouponType::SaleRefType>},
    {"ShareType", CouponField::KeptText<&CouponType::ShareType>},
    {"BillNoRule", CouponField::KeptText<&CouponType::BillNoRule>},
    {"CouponMedium", CouponField::KeptText<&CouponType::CouponMedium>},
    {"CouponPosition", CouponField::KeptText<&CouponType::CouponPosition>},
    {"PayReflect", CouponField::KeptText<&CouponType::PayReflect>},
    {"PayType", CouponField::KeptText<&CouponType::PayType>},
    {"UsePluCode", CouponField::KeptText<&CouponType::UsePluCode>},
    {"UseOrgCode", CouponField::KeptText<&CouponType::UseOrgCode>},
};

using DenominationField = Into<CouponDenomination>;
constexpr XmlField<CouponDenomination> kDenominationFields[] = {
    {"Denomination", DenominationField::Double<&CouponDenomination::Denomination>},
    {"CouponDenomiCode", DenominationField::KeptText<&CouponDenomination::CouponDenomiCode>},
    {"CouponUnit", DenominationField::KeptText<&CouponDenomination::CouponUnit>},
};

template <class FieldTable>
std::vector<Text> NamesIn(const FieldTable& table) {
  std::vector<Text> names;
  for (const auto& field : table) names.push_back(field.Name.data());  // literals, each with its end
  return names;
}

/// Appends one filter row per child element.
template <class Row, class FieldTable>
void ReadFilter(const FieldTable& table, const TiXmlElement& group, Text billNo, std::vector<Row>& rows) {
  for (const TiXmlElement& element : ChildElements(group)) {
    Row row;
    row.BillNo = billNo;
    ReadAttributes(table, element, row);
    rows.push_back(std::move(row));
  }
}

/// Appends one detail row per child element, numbered in the order of reading.
template <class Row, class FieldTable>
void ReadDetail(const FieldTable& table, const TiXmlElement& group, Text billNo, std::vector<Row>& rows) {
  for (const TiXmlElement& element : ChildElements(group)) {
    Row row;
    row.BillNo = billNo;
    row.Index = static_cast<std::int32_t>(rows.size());
    ReadAttributes(table, element, row);
    rows.push_back(std::move(row));
  }
}

void ReadGroup(const TiXmlElement& group, ProBase& rule, const OwnGroupReader& readOwnGroup) {
  const Text name = group.Value();
  const Text billNo = rule.Info.BillNo;
  if (Same(name, "OrgFilter")) {
    ReadFilter(kOrgFields, group, billNo, rule.OrgFilters);
  } else if (Same(name, "PayMode")) {
    ReadFilter(kPayFields, group, billNo, rule.PayModes);
  } else if (Same(name, "ProTime")) {
    ReadFilter(kTimeFields, group, billNo, rule.Times);
  } else if (Same(name, "Vip")) {
    ReadFilter(kVipFields, group, billNo, rule.Vips);
  } else if (readOwnGroup) {
    readOwnGroup(group);
  }
}

}  // namespace

void ReadRule(Text xml, ProBase& rule, const OwnGroupReader& readOwnGroup) {
  const XmlDocument document(xml);
  for (const TiXmlElement& element : ChildElements(document.Root())) {
    ReadAttributes(kHeaderFields, element, rule.Info);
    for (const TiXmlElement& group : ChildElements(element)) ReadGroup(group, rule, readOwnGroup);
  }
}

std::vector<Text> AttributesRead(Text group) {
  if (Same(group, "Rule")) return NamesIn(kHeaderFields);
  if (Same(group, "OrgFilter")) return NamesIn(kOrgFields);
  if (Same(group, "PayMode")) return NamesIn(kPayFields);
  if (Same(group, "ProTime")) return NamesIn(kTimeFields);
  if (Same(group, "Vip")) return NamesIn(kVipFields);
  if (Same(group, "PluCondition")) return NamesIn(kConditionFields);
  if (Same(group, "PluAction")) return NamesIn(kActionFields);
  if (Same(group, "PluAddAction")) return NamesIn(kTierFields);
  if (Same(group, "CouponType")) return NamesIn(kCouponFields);
  if (Same(group, "CouponDenomination")) return NamesIn(kDenominationFields);
  return {};
}

void ReadPluCondition(const TiXmlElement& group, Text billNo, std::vector<PluCondition>& rows) {
  ReadDetail(kConditionFields, group, billNo, rows);
}

void ReadPluAction(const TiXmlElement& group, Text billNo, std::vector<PluAction>& rows) {
  ActionGroup all;
  ReadAttributes(kActionGroupFields, group, all);
  const std::size_t held = rows.size();
  ReadDetail(kActionFields, group, billNo, rows);
  if (!Same(all.ActionType, "TC")) return;
  for (std::size_t place = held; place < rows.size(); ++place) rows[place].DisPrice = all.PrjTotal;
}

void ReadPluAddAction(const TiXmlElement& group, Text billNo, std::vector<PluAddAction>& rows) {
  ReadDetail(kTierFields, group, billNo, rows);
}

void ReadCouponType(const TiXmlElement& group, CouponType& coupon) {
  ReadAttributes(kCouponFields, group, coupon);
  for (const TiXmlElement& element : ChildElements(group)) ReadAttributes(kCouponFields, element, coupon);
}

void ReadCouponDenomination(const TiXmlElement& group, std::vector<CouponDenomination>& rows) {
  for (const TiXmlElement& element : ChildElements(group)) {
    CouponDenomination row;
    ReadAttributes(kDenominationFields, element, row);
    rows.push_back(row);
  }
}

}  // namespace Corvane
