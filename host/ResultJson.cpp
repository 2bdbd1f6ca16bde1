#include "host/ResultJson.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/Numbers.h"
#include "base/Text.h"
#include "base/Xml.h"
#include "host/Cents.h"
#include "host/ExplanationJson.h"
#include "host/JsonWriter.h"

namespace Corvane::Host {

namespace {

/// What stays text; all else that a result tells is a number.
constexpr std::string_view kTextFields[] = {"BillNo",   "OrgCode",  "PluCode", "BRD",       "CAT",
                                            "SaleDate", "SaleTime", "ClsId",   "PluID",     "ProBillNo",
                                            "ProType",  "VipType",  "PluType", "BaseConTp", "BaseDscTp"};

/// What is an amount to the cent. `FinalPrice` has four decimals; two others lose their cents on the way out.
constexpr std::string_view kAmounts[] = {"Price",     "Total",     "DisMoney", "AppMoney",
                                         "LeftTotal", "UsedTotal", "DscPrice"};

template <std::size_t Size>
bool IsAmong(const std::string_view (&names)[Size], std::string_view name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// --- The result ------------------------------------------------------------------------------------------------------

/// Coupons are texts throughout: they come and go as the host writes them.
enum class Values { kByName, kTexts };

void WriteFields(JsonWriter& json, const TiXmlElement& element, Values values) {
  for (const TiXmlAttribute& attribute : Attributes(element)) {
    const std::string_view name = attribute.NameTStr();
    json.Key(name);
    if (values == Values::kTexts || IsAmong(kTextFields, name)) {
      json.String(attribute.ValueStr());
      continue;
    }
    json.Number(attribute.ValueStr());
    if (IsAmong(kAmounts, name)) json.Key(std::string(name) + "Cents").Integer(CentsOf(attribute.ValueStr()));
  }
}

void WriteRow(JsonWriter& json, const TiXmlElement& element, Values values) {
  json.Object();
  WriteFields(json, element, values);
  if (std::string_view(element.Value()) == "ProGift") {
    json.Key("Goods").Array();
    for (const TiXmlElement& goods : ChildElements(element)) WriteRow(json, goods, Values::kByName);
    json.End();
  }
  json.End();
}

void WriteSale(JsonWriter& json, const TiXmlElement& root) {
  json.Object();
  WriteFields(json, root, Values::kTexts);
  for (const TiXmlElement& group : ChildElements(root)) {
    const Values values = std::string_view(group.Value()) == "ProCoupons" ? Values::kTexts : Values::kByName;
    json.Key(group.Value()).Array();
    for (const TiXmlElement& row : ChildElements(group)) WriteRow(json, row, values);
    json.End();
  }
  json.End();
}

// --- The totals ------------------------------------------------------------------------------------------------------

std::int64_t AmountsBefore(const TiXmlElement* lines, const ProSale& sale) {
  std::unordered_map<std::int32_t, double> amounts;
  for (const SalePlu& line : sale.Plus) amounts.emplace(line.SerialNo, line.TotalBefore);
  std::int64_t before = 0;
  for (const TiXmlElement& line : ChildElements(lines)) {
    before = SumOfCents(before, PrintedCents(amounts[ToInt32(line.Attribute("SerialNo"))]));
  }
  return before;
}

/// What a rule took off the lines.
struct RuleSum {
  std::string BillNo;
  std::string ProType;
  std::int64_t Cents;
};

/// The rows of the lines, summed up by rule. Those of the whole sale tell again what stands in the lines' rows, or coupons
/// that are given.
std::vector<RuleSum> SumsOf(const TiXmlElement* rows) {
  std::vector<RuleSum> sums;
  std::unordered_map<std::string, std::size_t> places;
  for (const TiXmlElement& row : ChildElements(rows)) {
    if (row.Attribute("RowID") == nullptr && Same(row.Attribute("PluCode"), "*")) continue;
    const std::string billNo = OrEmpty(row.Attribute("ProBillNo"));
    const auto [place, isNew] = places.emplace(billNo, sums.size());
    if (isNew) sums.push_back({billNo, OrEmpty(row.Attribute("ProType")), 0});
    RuleSum& sum = sums[place->second];
    sum.Cents = SumOfCents(sum.Cents, CentsOf(OrEmpty(row.Attribute("DisMoney"))));
  }
  return sums;
}

void WriteTotals(JsonWriter& json, const TiXmlElement& root, const ProSale& sale) {
  const std::int64_t before = AmountsBefore(root.FirstChildElement("Plu"), sale);
  std::int64_t toPay = before;
  json.Object();
  json.Key("before").Number(UnitsOf(before));
  json.Key("beforeCents").Integer(before);
  json.Key("rules").Array();
  for (const RuleSum& sum : SumsOf(root.FirstChildElement("ProResult"))) {
    json.Object();
    json.Key("billNo").String(sum.BillNo);
    json.Key("type").String(sum.ProType);
    json.Key("cents").Integer(sum.Cents);
    json.Key("money").Number(UnitsOf(sum.Cents));
    json.End();
    toPay = SumOfCents(toPay, -sum.Cents);
  }
  json.End();
  json.Key("toPay").Number(UnitsOf(toPay));
  json.Key("toPayCents").Integer(toPay);
  json.End();
}

}  // namespace

std::string ResultJson(const std::string& xml, const ProSale& sale, const Explained* explained) {
  const XmlDocument document(xml.c_str());
  const TiXmlElement& root = *document.Root();
  JsonWriter json;
  json.Object();
  json.Key("sale");
  WriteSale(json, root);
  json.Key("totals");
  WriteTotals(json, root, sale);
  if (explained != nullptr) WriteExplanation(json.Key("explanation"), *explained, sale);
  json.End();
  return json.Take();
}

}  // namespace Corvane::Host
