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
         AtRight(quantity, kColumnWidth) + AtRight(price, kColumnWidth) + AtRight(amount, kColumnWidth) + "\n";
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
  out_ << "\n" << text << "\n" << std::string(kWidth, '-') << "\n";
}

void Receipt::PrintColumns() const { out_ << Row("No", "Goods", "Code", "Quantity", "Price", "Amount"); }

void Receipt::PrintSum(const std::string& text, double amount) const {
  const std::size_t textWidth = kWidth - kNumberWidth - 2 - kColumnWidth;
  out_ << std::string(kNumberWidth + 2, ' ') << AtLeft(text, textWidth) << AtRight(Money(amount), kColumnWidth) << "\n";
}

void Receipt::PrintLine(const Line& line) const {
  out_ << Row(std::to_string(line.serialNo), store_.GoodsName(line.code), line.code, Quantity(line.quantity),
              Money(line.price), Money(line.amount));
}

void Receipt::PrintBefore() const {
  out_ << "Sale " << sale_.BillNo() << ", shop " << sale_.OrgCode() << ", " << sale_.DateTime();
  for (const std::string& member : sale_.Members()) out_ << ", member " << member;
  out_ << "\n";
  PrintHeading("BEFORE");
  PrintColumns();
  for (const Line& line : sale_.Lines()) PrintLine(line);
  PrintSum("Total", sale_.AmountSent());
}

void Receipt::PrintStepsHeading() const { PrintHeading("STEPS"); }

void Receipt::PrintStep(std::size_t number, const std::string& mode, const std::string& sent,
                        const std::string& refusal) const {
  constexpr std::size_t kOutcomeWidth = 2 * kColumnWidth;
  constexpr std::size_t kSentWidth = kWidth - kNumberWidth - 2 - kCodeWidth - kOutcomeWidth;
  const std::string outcome = refusal.empty() ? "to pay" + AtRight(Money(sale_.ToPay()), kColumnWidth) : refusal;
  out_ << AtRight(std::to_string(number), kNumberWidth) << "  " << AtLeft(mode, kCodeWidth) << AtLeft(sent, kSentWidth)
       << AtRight(outcome, kOutcomeWidth) << "\n";
}

void Receipt::PrintDiscountedLine(const Line& line) const {
  PrintLine(line);
  if (line.discounts.empty()) return;
  for (const Discount& discount : line.discounts) {
    // A reduction for a payment takes money and no pieces.
    const std::string quantity = discount.quantity == 0 ? "" : Quantity(discount.quantity);
    const std::string member = discount.memberType.empty() ? "" : " (member " + discount.memberType + ")";
    out_ << Row("", "  " + store_.RuleName(discount.rule) + member, discount.rule, quantity, "",
                Money(-discount.money));
  }
  out_ << Row("", "", "", "", "=", Money(line.ToPay()));
}

void Receipt::PrintAfter() const {
  PrintHeading("AFTER");
  PrintColumns();
  for (const Line& line : sale_.Lines()) PrintDiscountedLine(line);
  PrintDiscountsByRule();
  PrintToPay();
  PrintWholeSale();
  PrintOffers();
  PrintCouponsAndPayments();
}

void Receipt::PrintDiscountsByRule() const {
  std::map<std::string, double> byRule;
  for (const Line& line : sale_.Lines()) {
    for (const Discount& discount : line.discounts) byRule[discount.rule] += discount.money;
  }
  out_ << "\n";
  PrintSum("Total before", sale_.AmountSent());
  for (const auto& [rule, money] : byRule) PrintSum("  " + rule + "  " + store_.RuleName(rule), -money);
}

void Receipt::PrintToPay() const {
  PrintSum("To pay", sale_.ToPay());
  const bool linesTellTheSame = std::fabs(sale_.ToPay() - sale_.ResultAmount()) < 0.005;
  if (!linesTellTheSame)
    PrintSum("(the lines' Total in the result XML, which not every rule lowers)", sale_.ResultAmount());
}

void Receipt::PrintWholeSale() const {
  if (sale_.WholeSale().empty()) return;
  PrintHeading("FOR THE WHOLE SALE");
  for (const Discount& row : sale_.WholeSale()) {
    PrintSum(row.rule + "  " + store_.RuleName(row.rule) + " (" + WholeSaleMeaning(row.proType) + ")", row.money);
  }
}

void Receipt::PrintItem(const OfferedItem& item) const {
  const std::string price = item.price > 0 ? "at " + Money(item.price) : "free";
  const std::string most = item.mostPicked > 0 ? ", at most " + Money(item.mostPicked) : "";
  const std::string picked = item.picked > 0 ? ", picked " + Money(item.picked) : "";
  const std::string open = item.canBeTaken ? ", can be taken" : ", out of reach";
  out_ << std::string(kNumberWidth + 2, ' ') << AtLeft(store_.GoodsName(item.code), kGoodsWidth) << Threshold(item)
       << ", " << price << most << picked << open << "\n";
}

void Receipt::PrintOffers() const {
  if (sale_.Offers().empty()) return;
  PrintHeading("GIFT OFFERS");
  for (const Offer& offer : sale_.Offers()) {
    out_ << offer.rule << "  " << store_.RuleName(offer.rule) << ": reached " << Money(offer.reached) << ", used "
         << Money(offer.used) << ", left " << Money(offer.left) << "\n";
    for (const OfferedItem& item : offer.items) PrintItem(item);
  }
}

void Receipt::PrintCouponsAndPayments() const {
  if (!sale_.Coupons().empty()) PrintHeading("COUPONS PRESENTED, NOT TAKEN");
  for (const Coupon& coupon : sale_.Coupons()) {
    PrintSum("Coupon of type " + coupon.type, coupon.value);
  }
  if (!sale_.Payments().empty()) PrintHeading("PAYMENTS SENT");
  for (const Payment& payment : sale_.Payments()) {
    PrintSum("Payment mode " + payment.mode + (payment.cardNo.empty() ? "" : ", card " + payment.cardNo),
             payment.money);
  }
}

}  // namespace Corvane::Tool
