#ifndef TOOLS_SALEVIEW_H
#define TOOLS_SALEVIEW_H

#include <string>
#include <vector>

class TiXmlElement;

namespace Corvane::Tool {

/// A discount row of a result: what a rule took off a line, or its word on the whole sale.
struct Discount {
  std::string rule;
  std::string proType;
  double quantity = 0;
  double money = 0;
  std::string memberType;
};

/// A sale line as it was sent, with the discounts of the latest result.
struct Line {
  int serialNo = 0;
  std::string code;
  double quantity = 0;
  double price = 0;
  /// The amount that was sent, before any rule.
  double amount = 0;
  /// What the latest result says of the line's amount.
  double resultAmount = 0;
  std::vector<Discount> discounts;

  /// What the customer pays for the line: the amount sent less every discount on it.
  [[nodiscard]] double ToPay() const;
};

/// One article that a gift rule offers.
struct OfferedItem {
  std::string code;
  double price = 0;
  std::string thresholdKind;
  double threshold = 0;
  double mostPicked = 0;
  double picked = 0;
  bool canBeTaken = false;
};

/// The offers of one gift rule for one kind of threshold.
struct Offer {
  std::string rule;
  double reached = 0;
  double used = 0;
  double left = 0;
  std::vector<OfferedItem> items;
};

/// A coupon that the customer has presented and that no rule has taken.
struct Coupon {
  std::string type;
  double value = 0;
};

/// A payment as it was sent.
struct Payment {
  std::string mode;
  std::string cardNo;
  double money = 0;
};

/// A sale as a person at the till sees it, put together from what was sent and what came back.
class SaleView {
 public:
  /// Takes in the root of a sale XML that goes to the engine. A line sent again replaces the one of its number.
  void TakeSent(const TiXmlElement& sale);

  /// Takes in the root of a result. `wholeSale` is false for the result of mode "Single", which tells of one line.
  void TakeResult(const TiXmlElement& result, bool wholeSale);

  /// @return a sale XML that brings nothing but the header attributes sent so far.
  [[nodiscard]] std::string HeaderXml() const;

  [[nodiscard]] const std::string& BillNo() const { return m_billNo; }
  [[nodiscard]] const std::string& OrgCode() const { return m_orgCode; }
  [[nodiscard]] const std::string& DateTime() const { return m_dateTime; }
  [[nodiscard]] const std::vector<Line>& Lines() const { return m_lines; }
  [[nodiscard]] const std::vector<Discount>& WholeSale() const { return m_wholeSale; }
  [[nodiscard]] const std::vector<Offer>& Offers() const { return m_offers; }
  [[nodiscard]] const std::vector<Coupon>& Coupons() const { return m_coupons; }
  [[nodiscard]] const std::vector<Payment>& Payments() const { return m_payments; }
  [[nodiscard]] const std::vector<std::string>& Members() const { return m_members; }

  [[nodiscard]] double AmountSent() const;
  [[nodiscard]] double ToPay() const;
  /// The sum of the lines' amounts in the latest result; not every rule lowers them.
  [[nodiscard]] double ResultAmount() const;

 private:
  void TakeSentLine(const TiXmlElement& row);
  void TakeSentGroup(const TiXmlElement& group);
  void TakeResultLines(const TiXmlElement& result);
  void TakeDiscounts(const TiXmlElement& result, bool wholeSale);
  void TakeOffers(const TiXmlElement& result);
  Line& LineOf(int serialNo);

  std::string m_billNo;
  std::string m_orgCode;
  std::string m_isCalc;
  std::string m_dateTime;
  std::vector<Line> m_lines;
  std::vector<Discount> m_wholeSale;
  std::vector<Offer> m_offers;
  std::vector<Coupon> m_coupons;
  std::vector<Payment> m_payments;
  std::vector<std::string> m_members;
};

}  // namespace Corvane::Tool

#endif
