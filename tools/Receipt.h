#ifndef TOOLS_RECEIPT_H
#define TOOLS_RECEIPT_H

#include <iosfwd>
#include <string>

#include "SaleView.h"
#include "Store.h"
#include "Terminal.h"

namespace Corvane::Tool {

/// Prints a sale for a person at the till.
class Receipt {
 public:
  /// All four must outlive the receipt.
  Receipt(std::ostream& out, const Paint& paint, const Store& store, const SaleView& sale)
      : m_out(out), m_paint(paint), m_store(store), m_sale(sale) {}

  /// The sale's number, and its lines as they were sent.
  void PrintBefore() const;

  void PrintStepsHeading() const;

  /// One calculation: its mode, what was sent, and what is to pay after it or, when it was refused, why.
  void PrintStep(std::size_t number, const std::string& mode, const std::string& sent,
                 const std::string& refusal) const;

  /// The lines with the discounts of each rule, the total, and what else the result tells.
  void PrintAfter() const;

 private:
  void PrintHeading(const std::string& text) const;
  void PrintColumns() const;
  void PrintLine(const Line& line) const;
  void PrintDiscountedLine(const Line& line) const;
  void PrintDiscountsByRule() const;
  void PrintToPay() const;
  void PrintWholeSale() const;
  void PrintOffers() const;
  void PrintItem(const OfferedItem& item) const;
  void PrintCouponsAndPayments() const;
  void PrintSum(const std::string& text, double amount) const;

  std::ostream& m_out;
  const Paint& m_paint;
  const Store& m_store;
  const SaleView& m_sale;
};

}  // namespace Corvane::Tool

#endif
