#include "Receipt.h"

#include <cmath>
#include <map>
#include <ostream>
#include <vector>

#include "TextTable.h"

namespace Corvane::Tool {
namespace {

constexpr std::size_t kNumberWidth = 4;
constexpr std::size_t kGoodsWidth = 40;
constexpr std::size_t kCodeWidth = 12;
constexpr std::size_t kColumnWidth = 10;
constexpr std::size_t kWidth = kNumberWidth + 2 + kGoodsWidth + kCodeWidth + 3 * kColumnWidth;

std::string Row(const std::string& number, const std::string& goods, const std::string& code,
                const std::string& quantity, const std::string& price, const std::string& amount) {
  return AtRight(number, kNumberWidth) + "  " + AtLeft(goods, kGoodsWidth - 1) + " " + AtLeft(code, kCodeWidth) +
         AtRight(quantity, kColumnWidth) + AtRight(price, kColumnWidth) + AtRight(amount, kColumnWidth);
}

/// Text at the left, amount in the last column.
std::string Sum(const std::string& text, double amount) {
  const std::size_t textWidth = kWidth - kNumberWidth - 2 - kColumnWidth;
  return std::string(kNumberWidth + 2, ' ') + AtLeft(text, textWidth) + AtRight(Money(amount), kColumnWidth);
}

/// What a row for the whole sale means, by the type of the rule that wrote it.
std::string WholeSaleMeaning(const std::string& proType) {
  if (proType == "MZZQ") return "given for the next visit";
  if (proType == "MZYQ") return "coupons taken, see above";
  if (proType == "MZZF") return "for the payment, see above";
  return "on the whole sale";
}

std::string Threshold(const OfferedItem& item) {
  return "from " + Money(item.threshold) + (item.thresholdKind == "NUM" ? " pieces" : " of money");
}

}  // namespace

void Receipt::PrintHeading(const std::string& text) const {
  m_out << "\n" << m_paint.Bold(text) << "\n" << std::string(kWidth, '-') << "\n";
}

void Receipt::PrintColumns() const { m_out << Row("No", "Goods", "Code", "Quantity", "Price", "Amount") << "\n"; }

void Receipt::PrintSum(const std::string& text, double amount) const { m_out << Sum(text, amount) << "\n"; }

void Receipt::PrintLine(const Line& line) const {
  m_out << Row(std::to_string(line.serialNo), m_store.GoodsName(line.code), line.code, Quantity(line.quantity),
               Money(line.price), Money(line.amount))
        << "\n";
}

void Receipt::PrintBefore() const {
  m_out << "Sale " << m_sale.BillNo() << ", shop " << m_sale.OrgCode() << ", " << m_sale.DateTime();
  for (const std::string& member : m_sale.Members()) m_out << ", member " << member;
  m_out << "\n";
  PrintHeading("BEFORE");
  PrintColumns();
  for (const Line& line : m_sale.Lines()) PrintLine(line);
  PrintSum("Total", m_sale.AmountSent());
}

void Receipt::PrintStepsHeading() const { PrintHeading("STEPS"); }

void Receipt::PrintStep(std::size_t number, const std::string& mode, const std::string& sent,
                        const std::string& refusal) const {
  constexpr std::size_t kOutcomeWidth = 2 * kColumnWidth;
  constexpr std::size_t kSentWidth = kWidth - kNumberWidth - 2 - kCodeWidth - kOutcomeWidth;
  const std::string outcome = refusal.empty() ? "to pay" + AtRight(Money(m_sale.ToPay()), kColumnWidth) : refusal;
  m_out << AtRight(std::to_string(number), kNumberWidth) << "  " << AtLeft(mode, kCodeWidth) << AtLeft(sent, kSentWidth)
        << AtRight(outcome, kOutcomeWidth) << "\n";
}

void Receipt::PrintDiscountedLine(const Line& line) const {
  PrintLine(line);
  if (line.discounts.empty()) return;
  for (const Discount& discount : line.discounts) {
    // A reduction for a payment takes money and no pieces.
    const std::string quantity = discount.quantity == 0 ? "" : Quantity(discount.quantity);
    const std::string member = discount.memberType.empty() ? "" : " (member " + discount.memberType + ")";
    m_out << m_paint.Green(Row("", "  " + m_store.RuleName(discount.rule) + member, discount.rule, quantity, "",
                               Money(-discount.money)))
          << "\n";
  }
  m_out << Row("", "", "", "", "=", Money(line.ToPay())) << "\n";
}

void Receipt::PrintAfter() const {
  PrintHeading("AFTER");
  PrintColumns();
  for (const Line& line : m_sale.Lines()) PrintDiscountedLine(line);
  PrintDiscountsByRule();
  PrintToPay();
  PrintWholeSale();
  PrintOffers();
  PrintCouponsAndPayments();
}

void Receipt::PrintDiscountsByRule() const {
  std::map<std::string, double> byRule;
  for (const Line& line : m_sale.Lines()) {
    for (const Discount& discount : line.discounts) byRule[discount.rule] += discount.money;
  }
  m_out << "\n";
  PrintSum("Total before", m_sale.AmountSent());
  for (const auto& [rule, money] : byRule) PrintSum("  " + rule + "  " + m_store.RuleName(rule), -money);
}

void Receipt::PrintToPay() const {
  m_out << m_paint.Bold(Sum("To pay", m_sale.ToPay())) << "\n";
  const bool linesTellTheSame = std::fabs(m_sale.ToPay() - m_sale.ResultAmount()) < 0.005;
  if (!linesTellTheSame)
    PrintSum("(the lines' Total in the result XML, which not every rule lowers)", m_sale.ResultAmount());
}

void Receipt::PrintWholeSale() const {
  if (m_sale.WholeSale().empty()) return;
  PrintHeading("FOR THE WHOLE SALE");
  for (const Discount& row : m_sale.WholeSale()) {
    PrintSum(row.rule + "  " + m_store.RuleName(row.rule) + " (" + WholeSaleMeaning(row.proType) + ")", row.money);
  }
}

void Receipt::PrintItem(const OfferedItem& item) const {
  const std::string price = item.price > 0 ? "at " + Money(item.price) : "free";
  const std::string most = item.mostPicked > 0 ? ", at most " + Money(item.mostPicked) : "";
  const std::string picked = item.picked > 0 ? ", picked " + Money(item.picked) : "";
  const std::string open = item.canBeTaken ? ", can be taken" : ", out of reach";
  m_out << std::string(kNumberWidth + 2, ' ') << AtLeft(m_store.GoodsName(item.code), kGoodsWidth) << Threshold(item)
        << ", " << price << most << picked << open << "\n";
}

void Receipt::PrintOffers() const {
  if (m_sale.Offers().empty()) return;
  PrintHeading("GIFT OFFERS");
  for (const Offer& offer : m_sale.Offers()) {
    m_out << offer.rule << "  " << m_store.RuleName(offer.rule) << ": reached " << Money(offer.reached) << ", used "
          << Money(offer.used) << ", left " << Money(offer.left) << "\n";
    for (const OfferedItem& item : offer.items) PrintItem(item);
  }
}

void Receipt::PrintCouponsAndPayments() const {
  if (!m_sale.Coupons().empty()) PrintHeading("COUPONS PRESENTED, NOT TAKEN");
  for (const Coupon& coupon : m_sale.Coupons()) {
    PrintSum("Coupon of type " + coupon.type, coupon.value);
  }
  if (!m_sale.Payments().empty()) PrintHeading("PAYMENTS SENT");
  for (const Payment& payment : m_sale.Payments()) {
    PrintSum("Payment mode " + payment.mode + (payment.cardNo.empty() ? "" : ", card " + payment.cardNo),
             payment.money);
  }
}

}  // namespace Corvane::Tool
