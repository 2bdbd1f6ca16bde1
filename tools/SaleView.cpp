#include "SaleView.h"

#include <tinyxml.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <numeric>

#include "XmlFile.h"

namespace Corvane::Tool {
namespace {

/// A number too large for an int is the largest there is.
int WholeNumber(const TiXmlElement& element, const char* attribute) {
  constexpr long kLeast = std::numeric_limits<int>::min();
  constexpr long kMost = std::numeric_limits<int>::max();
  return static_cast<int>(std::clamp(std::strtol(Text(element, attribute).c_str(), nullptr, 10), kLeast, kMost));
}

/// The rows of a group of the result; the engine writes them from the last to the first.
std::vector<const TiXmlElement*> RowsInOrder(const TiXmlElement& result, const char* group) {
  std::vector<const TiXmlElement*> rows = Children(result.FirstChildElement(group));
  std::reverse(rows.begin(), rows.end());
  return rows;
}

void Replace(std::string& text, const TiXmlElement& element, const char* attribute) {
  if (element.Attribute(attribute) != nullptr) text = element.Attribute(attribute);
}

Discount ReadDiscount(const TiXmlElement& row) {
  return {Text(row, "ProBillNo"), Text(row, "ProType"), Number(row, "DisNum"), Number(row, "DisMoney"),
          Text(row, "VipType")};
}

OfferedItem ReadItem(const TiXmlElement& row) {
  return {Text(row, "PluCode"),     Number(row, "DscPrice"),   Text(row, "BaseConTp"),     Number(row, "BaseConNum"),
          Number(row, "SaleMaxIn"), Number(row, "HgPluCount"), Text(row, "CanPart") == "1"};
}

}  // namespace

double Line::ToPay() const {
  return std::accumulate(discounts.begin(), discounts.end(), amount,
                         [](double rest, const Discount& discount) { return rest - discount.money; });
}

void SaleView::TakeSent(const TiXmlElement& sale) {
  Replace(m_billNo, sale, "BillNo");
  Replace(m_orgCode, sale, "OrgCode");
  Replace(m_isCalc, sale, "IsCalc");
  for (const TiXmlElement* group : Children(&sale)) TakeSentGroup(*group);
}

void SaleView::TakeSentGroup(const TiXmlElement& group) {
  const std::string name = group.Value();
  for (const TiXmlElement* row : Children(&group)) {
    if (name == "Plu") TakeSentLine(*row);
    if (name == "PayMode")
      m_payments.push_back({Text(*row, "PayMode"), Text(*row, "PayCardNo"), Number(*row, "PayMoney")});
    if (name == "Vip") m_members.push_back(Text(*row, "VipType"));
  }
}

void SaleView::TakeSentLine(const TiXmlElement& row) {
  Line line;
  line.serialNo = WholeNumber(row, "SerialNo");
  line.code = Text(row, "PluCode");
  line.quantity = Number(row, "PluCount");
  line.price = Number(row, "Price");
  line.amount = Number(row, "Total");
  line.resultAmount = line.amount;
  LineOf(line.serialNo) = line;
  if (m_dateTime.empty()) m_dateTime = Text(row, "SaleDate") + " " + Text(row, "SaleTime");
}

Line& SaleView::LineOf(int serialNo) {
  for (Line& line : m_lines) {
    if (line.serialNo == serialNo) return line;
  }
  m_lines.emplace_back();
  m_lines.back().serialNo = serialNo;
  return m_lines.back();
}

void SaleView::TakeResult(const TiXmlElement& result, bool wholeSale) {
  TakeResultLines(result);
  TakeDiscounts(result, wholeSale);
  if (!wholeSale) return;
  TakeOffers(result);
  m_coupons.clear();
  for (const TiXmlElement* row : RowsInOrder(result, "ProCoupons")) {
    m_coupons.push_back({Text(*row, "CouponTypeCode"), Number(*row, "Value")});
  }
}

void SaleView::TakeResultLines(const TiXmlElement& result) {
  for (const TiXmlElement* row : RowsInOrder(result, "Plu")) {
    Line& line = LineOf(WholeNumber(*row, "SerialNo"));
    line.resultAmount = Number(*row, "Total");
    line.discounts.clear();
  }
}

void SaleView::TakeDiscounts(const TiXmlElement& result, bool wholeSale) {
  if (wholeSale) m_wholeSale.clear();
  for (const TiXmlElement* row : RowsInOrder(result, "ProResult")) {
    const bool onALine = row->Attribute("RowID") != nullptr;
    (onALine ? LineOf(WholeNumber(*row, "RowID")).discounts : m_wholeSale).push_back(ReadDiscount(*row));
  }
}

void SaleView::TakeOffers(const TiXmlElement& result) {
  m_offers.clear();
  for (const TiXmlElement* row : RowsInOrder(result, "ProGifts")) {
    Offer offer{
        Text(*row, "ProBillNo"), Number(*row, "Total"), Number(*row, "UsedTotal"), Number(*row, "LeftTotal"), {}};
    for (const TiXmlElement* item : Children(row)) offer.items.push_back(ReadItem(*item));
    std::reverse(offer.items.begin(), offer.items.end());
    m_offers.push_back(offer);
  }
}

std::string SaleView::HeaderXml() const {
  TiXmlElement sale("Sale");
  sale.SetAttribute("BillNo", m_billNo);
  sale.SetAttribute("OrgCode", m_orgCode);
  sale.SetAttribute("IsCalc", m_isCalc);
  TiXmlPrinter printer;
  sale.Accept(&printer);
  return printer.Str();
}

double SaleView::AmountSent() const {
  return std::accumulate(m_lines.begin(), m_lines.end(), 0.0,
                         [](double sum, const Line& line) { return sum + line.amount; });
}

double SaleView::ToPay() const {
  return std::accumulate(m_lines.begin(), m_lines.end(), 0.0,
                         [](double sum, const Line& line) { return sum + line.ToPay(); });
}

double SaleView::ResultAmount() const {
  return std::accumulate(m_lines.begin(), m_lines.end(), 0.0,
                         [](double sum, const Line& line) { return sum + line.resultAmount; });
}

}  // namespace Corvane::Tool
