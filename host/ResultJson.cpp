#include "host/ResultJson.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>
#include <system_error>
#include <unordered_map>

#include "base/Numbers.h"
#include "base/Text.h"
#include "base/Xml.h"

namespace Corvane::Host {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kNumbers[] = {
    "SerialNo",   "Price",     "FinalPrice", "PluCount",  "DisNum",     "Total",    "PackCnt",
    "PluDtId",    "PageNo",    "LnNo",       "YhBefore",  "VipPrice",   "DisMoney", "AppNum",
    "AppMoney",   "IsVip",     "RowID",      "LeftTotal", "UsedTotal",  "DscPrice", "BaseConNum",
    "BaseDscNum", "AddConNum", "AddDscNum",  "SaleMaxIn", "HgPluCount", "CanPart",
};

/// What is an amount to the cent. `FinalPrice` has four decimals; two others lose their cents on the way out.
constexpr std::string_view kAmounts[] = {"Price",     "Total",     "DisMoney", "AppMoney",
                                         "LeftTotal", "UsedTotal", "DscPrice"};

template <std::size_t Size>
bool IsAmong(const std::string_view (&names)[Size], std::string_view name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

/// The most cents that are told, upwards and downwards.
constexpr std::int64_t kMostCents = std::numeric_limits<std::int64_t>::max();

/// An amount in whole cents, from its text with two decimals: digit by digit, since a number doesn't hold the cents of
/// every amount.
std::int64_t CentsOf(std::string digits) {
  digits.erase(std::remove(digits.begin(), digits.end(), '.'), digits.end());
  std::int64_t cents = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), cents);
  if (error == std::errc::result_out_of_range) return digits.front() == '-' ? -kMostCents : kMostCents;
  return std::max(cents, -kMostCents);
}

/// Coupons are texts throughout: they come and go as the host writes them.
enum class Values { kByName, kTexts };

Json RowOf(const TiXmlElement& element, Values values) {
  Json row = Json::object();
  for (const TiXmlAttribute& attribute : Attributes(element)) {
    const std::string name = attribute.Name();
    const Text value = attribute.Value();
    if (values == Values::kTexts || !IsAmong(kNumbers, name)) {
      row[name] = value;
      continue;
    }
    const double number = ToDouble(value);
    const bool isWhole = std::string_view(value).find('.') == std::string_view::npos;
    if (isWhole) {
      row[name] = static_cast<std::int64_t>(TruncToInt32(number));
    } else {
      row[name] = number;
    }
    if (IsAmong(kAmounts, name)) row[name + "Cents"] = CentsOf(value);
  }
  return row;
}

Json GroupOf(const TiXmlElement& group) {
  const Values values = std::string_view(group.Value()) == "ProCoupons" ? Values::kTexts : Values::kByName;
  Json rows = Json::array();
  for (const TiXmlElement& element : ChildElements(group)) {
    Json row = RowOf(element, values);
    if (std::string_view(element.Value()) == "ProGift") {
      row["Goods"] = Json::array();
      for (const TiXmlElement& goods : ChildElements(element)) row["Goods"].push_back(RowOf(goods, Values::kByName));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

Json SaleOf(const TiXmlElement& root) {
  Json sale = RowOf(root, Values::kTexts);
  for (const TiXmlElement& group : ChildElements(root)) sale[group.Value()] = GroupOf(group);
  return sale;
}

double CurrencyOf(std::int64_t cents) { return static_cast<double>(cents) / 100; }

/// Sums of cents stay within what there is.
std::int64_t Sum(std::int64_t left, std::int64_t right) {
  std::int64_t sum = 0;
  if (!__builtin_add_overflow(left, right, &sum) && sum >= -kMostCents) return sum;
  return left < 0 ? -kMostCents : kMostCents;
}

std::int64_t AmountsBefore(const Json& lines, const ProSale& sale) {
  std::unordered_map<std::int64_t, double> amounts;
  for (const SalePlu& line : sale.Plus) amounts.emplace(line.SerialNo, line.TotalBefore);
  std::int64_t before = 0;
  for (const Json& line : lines) before = Sum(before, CentsOf(FormatF2(amounts[line["SerialNo"].get<std::int64_t>()])));
  return before;
}

/// The rows of the lines, summed up by rule. Those of the whole sale tell again what stands in the lines' rows, or coupons
/// that are given.
Json RulesOf(const Json& rows) {
  Json rules = Json::array();
  std::unordered_map<std::string, std::size_t> places;
  for (const Json& row : rows) {
    if (row["PluCode"] == "*" && !row.contains("RowID")) continue;
    const std::int64_t cents = row["DisMoneyCents"].get<std::int64_t>();
    const auto [held, isNew] = places.emplace(row["ProBillNo"].get<std::string>(), rules.size());
    if (isNew) {
      rules.push_back({{"billNo", row["ProBillNo"]}, {"type", row["ProType"]}, {"cents", cents}});
    } else {
      Json& sum = rules[held->second]["cents"];
      sum = Sum(sum.get<std::int64_t>(), cents);
    }
  }
  for (Json& rule : rules) rule["money"] = CurrencyOf(rule["cents"].get<std::int64_t>());
  return rules;
}

Json TotalsOf(const Json& result, const ProSale& sale) {
  const std::int64_t before = AmountsBefore(result["Plu"], sale);
  const Json rules = RulesOf(result["ProResult"]);
  std::int64_t toPay = before;
  for (const Json& rule : rules) toPay = Sum(toPay, -rule["cents"].get<std::int64_t>());
  return {{"before", CurrencyOf(before)},
          {"beforeCents", before},
          {"rules", rules},
          {"toPay", CurrencyOf(toPay)},
          {"toPayCents", toPay}};
}

}  // namespace

std::string ResultJson(const std::string& xml, const ProSale& sale) {
  const XmlDocument document(xml.c_str());
  Json json = Json::object();
  json["sale"] = SaleOf(*document.Root());
  json["totals"] = TotalsOf(json["sale"], sale);
  return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace Corvane::Host
