#include "tests/scenarios/ScenarioWords.h"

#include <algorithm>

namespace Corvane::Testing {

namespace {

using Kind = RowsPlace::Kind;

Words Joined(Words words, const Words& more) {
  words.insert(more.begin(), more.end());
  return words;
}

/// What a row is about: an article, or a class of articles.
const Words& Goods() {
  static const Words words = {{"row", {"SerialNo", "", ""}},
                              {"goods", {"PluCode", "", ""}},
                              {"category", {"PluCode", "PluType", "CAT"}},
                              {"brand", {"PluCode", "PluType", "BRD"}},
                              {"kind", {"PluType", "", ""}}};
  return words;
}

/// What a row makes of a price.
const Words& Prices() {
  static const Words words = {{"price", {"DscPrice", "DscType", "PRC"}},
                              {"% off", {"DscRate", "DscType", "RAT"}},
                              {"money off", {"DscPrice", "DscType", "2"}},
                              {"form", {"DscType", "", ""}},
                              {"amount", {"DscPrice", "", ""}}};
  return words;
}

/// From what on a row gives, and what.
const Words& Gifts() {
  static const Words words = {{"from money", {"BaseConNum", "BaseConType", "SUM"}},
                              {"from pieces", {"BaseConNum", "BaseConType", "NUM"}},
                              {"from", {"BaseConNum", "", ""}},
                              {"unit", {"BaseConType", "", ""}},
                              {"gives money", {"BaseDscNum", "BaseDscType", "SUM"}},
                              {"gives pieces", {"BaseDscNum", "BaseDscType", "NUM"}},
                              {"gives", {"BaseDscNum", "", ""}},
                              {"gift unit", {"BaseDscType", "", ""}},
                              {"step", {"AddConNum", "", ""}},
                              {"gives a step", {"AddDscNum", "", ""}},
                              {"at most", {"SaleMaxIn", "", ""}}};
  return words;
}

std::map<std::string, RowsPlace> StoreTables() {
  const Words list = {{"list", {"ListCode", "", ""}}};
  return {
      {"its prices are",
       {Kind::Store, "tProPrjDirectProAct",
        Joined(Joined(Goods(), Prices()), {{"range", {"InRange", "", ""}},
                                           {"from", {"SaleCount", "", ""}},
                                           {"set of", {"SaleCount", "", ""}},
                                           {"at most", {"TradeMaxCount", "", ""}}})}},
      {"its combination is",
       {Kind::Store,
        "tProPrjCombProAct",
        {{"row", {"SerialNo", "", ""}},
         {"pieces", {"SaleCount", "", ""}},
         {"form", {"PriceType", "", ""}},
         {"price", {"PriceTotal", "", ""}},
         {"slot", {"ProActCode", "", ""}},
         {"slot name", {"ProActname", "", ""}},
         {"required", {"IsRequired", "", ""}}}}},
      {"its goods are",
       {Kind::Store, "tProPrjCombPluSet",
        Joined(Joined(Goods(), Prices()), {{"slot", {"ProActCode", "", ""}}, {"pieces", {"SaleCount", "", ""}}})}},
      {"its conditions are",
       {Kind::Store, "tProCombConditionAct",
        Joined(Goods(), {{"pieces", {"SaleCount", "", ""}}, {"money", {"PriceTotal", "", ""}}})}},
      {"its conditions together are",
       {Kind::Store,
        "tProPrjCombCtrl",
        {{"row", {"SerialNo", "", ""}}, {"pieces", {"CountTotal", "", ""}}, {"money", {"PriceTotal", "", ""}}}}},
      {"its lists are",
       {Kind::Store, "tpromzlist",
        Joined(list, {{"counts", {"ConAreaType", "", ""}},
                      {"falls on", {"RstAreaType", "", ""}},
                      {"at most", {"MaxDiscount", "", ""}},
                      {"in unit price", {"DscIntoPlu", "", ""}}})}},
      {"what counts is",
       {Kind::Store, "tProMzConPluSet",
        Joined(Joined(list, Goods()), {{"range", {"InRange", "", ""}}, {"data", {"DataId", "", ""}}})}},
      {"its tiers are",
       {Kind::Store, "tProMzDiscountAct",
        Joined(list, {{"from", {"BaseMoney", "", ""}},
                      {"off", {"BaseDscMoney", "", ""}},
                      {"step", {"AddMoney", "", ""}},
                      {"off a step", {"AddDscMoney", "", ""}},
                      {"counts up to", {"SaleMaxIn", "", ""}},
                      {"form", {"DscType", "", ""}}})}},
      {"what it gives is",
       {Kind::Store, "tProMzScheme",
        Joined(Gifts(),
               {{"row", {"SerialNo", "", ""}}, {"goods", {"PluCode", "", ""}}, {"price", {"DscPrice", "", ""}}})}},
      {"what it gives on its goods is",
       {Kind::Store, "tProMzPluAct", Joined(Joined(Goods(), Gifts()), {{"data", {"DataId", "", ""}}})}},
  };
}

std::map<std::string, RowsPlace> XmlGroups() {
  const Words goods = Joined(
      Goods(), {{"range", {"Contain", "", ""}}, {"pieces", {"MinNum", "", ""}}, {"money", {"MinMoney", "", ""}}});
  const Words list = {{"list", {"list", "", ""}}};
  return {
      {"its shops are", {Kind::Group, "OrgFilter", {{"shop", {"OrgCode", "", ""}}}}},
      {"its times are",
       {Kind::Group,
        "ProTime",
        {{"first day", {"StartDate", "", ""}},
         {"last day", {"EndDate", "", ""}},
         {"from", {"StartTime", "", ""}},
         {"to", {"EndTime", "", ""}},
         {"frequency", {"Frequency", "", ""}},
         {"weekdays", {"WeekDays", "", ""}},
         {"days", {"MonthDays", "", ""}}}}},
      {"its payments are", {Kind::Group, "PayMode", SaleWords("PayMode")}},
      {"its members are", {Kind::Group, "Vip", SaleWords("Vip")}},
      {"its terms of payment are",
       {Kind::Group,
        "ProCtr",
        {{"way", {"PayType", "", ""}}, {"at most", {"PriceTotal", "", ""}}, {"whole bill", {"WholeBillPay", "", ""}}}}},
      {"its cards are",
       {Kind::Group, "CardNoFilter", {{"from", {"BgnCardNo", "", ""}}, {"to", {"EndCardNo", "", ""}}}}},
      {"its steps are", {Kind::Group, "PluAction", {{"of", {"DisPrice", "", ""}}, {"costs", {"DisRate", "", ""}}}}},
      {"the goods that it asks for are", {Kind::Group, "PluCondition", goods}},
      {"its coupon lists are",
       {Kind::ListHead, "ProList",
        Joined(list, {{"counts", {"ConAreaType", "", ""}},
                      {"at most", {"MaxDiscount", "", ""}},
                      {"in unit price", {"DscIntoPlu", "", ""}},
                      {"coupon", {"CouponTypeCode", "", ""}}})}},
      {"its coupon tiers are",
       {Kind::ListGroup, "PluAddAction",
        Joined(list, {{"from", {"BaseConNum", "", ""}},
                      {"off", {"BaseDscNum", "", ""}},
                      {"gives", {"BaseDscNum", "", ""}},
                      {"step", {"AddConNum", "", ""}},
                      {"off a step", {"AddDscNum", "", ""}},
                      {"gives a step", {"AddDscNum", "", ""}},
                      {"counts up to", {"SaleMaxIn", "", ""}}})}},
      {"what counts for its coupons is", {Kind::ListGroup, "PluCondition", Joined(list, goods)}},
      {"its coupons are",
       {Kind::ListEntry, "CouponType",
        Joined(list, {{"coupon", {"CouponTypeCode", "", ""}},
                      {"from", {"BgnDate", "", ""}},
                      {"to", {"EndDate", "", ""}},
                      {"limit", {"LimitType", "", ""}},
                      {"days", {"LimitDay", "", ""}},
                      {"in notes", {"IsDenom", "", ""}}})}},
      {"its notes are", {Kind::ListGroup, "CouponDenomination", Joined(list, {{"value", {"Denomination", "", ""}}})}},
  };
}

}  // namespace

const RowsPlace* RowsPlaceOf(const std::string& sentence) {
  static const std::map<std::string, RowsPlace> places = [] {
    std::map<std::string, RowsPlace> all = StoreTables();
    all.merge(XmlGroups());
    return all;
  }();
  const auto place = places.find(sentence);
  return place == places.end() ? nullptr : &place->second;
}

const Words& SaleWords(const std::string& group) {
  static const std::map<std::string, Words> words = {
      {"Vip", {{"member", {"VipType", "", ""}}}},
      {"PayMode", {{"way", {"PayMode", "", ""}}, {"card", {"PayCardNo", "", ""}}, {"money", {"PayMoney", "", ""}}}},
      {"Coupon",
       {{"number", {"BillNo", "", ""}},
        {"coupon", {"CouponTypeCode", "", ""}},
        {"value", {"CouponValue", "", ""}},
        {"from", {"BgnDate", "", ""}},
        {"to", {"EndDate", "", ""}}}}};
  return words.at(group);
}

std::string ValueOf(const std::string& cell) { return cell == "\"\"" ? "" : cell; }

bool HasName(const Attributes& attributes, const std::string& name) {
  return std::any_of(attributes.begin(), attributes.end(), [&](const auto& one) { return one.first == name; });
}

Attributes RowOf(const Step& step, const Cells& row, const Words& words) {
  Attributes attributes;
  const auto fill = [&](const std::string& name, const std::string& value) {
    if (HasName(attributes, name)) throw ScenarioError(step.Line, "two cells of a row fill " + name);
    attributes.emplace_back(name, value);
  };
  for (std::size_t place = 0; place < row.size(); ++place) {
    const auto word = words.find(step.Rows.Columns[place]);
    if (word == words.end()) throw ScenarioError(step.Line, "no such column here: " + step.Rows.Columns[place]);
    if (row[place].empty()) continue;
    fill(word->second.Column, ValueOf(row[place]));
    if (!word->second.Implied.empty()) fill(word->second.Implied, word->second.Value);
  }
  return attributes;
}

}  // namespace Corvane::Testing
