#ifndef QNCORVANE_SALE_PROSALE_H
#define QNCORVANE_SALE_PROSALE_H

#include <cstddef>
#include <string>
#include <vector>

#include "base/ProError.h"
#include "base/TextPool.h"
#include "sale/LineCodes.h"
#include "sale/ModeTrail.h"
#include "sale/Multiton.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// One sale, kept per key between the host's calls: from the first calculation of the key until the key is deleted or
/// all sales are cleared. Rules write their results into it. Whatever the sale brought goes with it: no rule and no
/// other sale may keep a text of it.
class ProSale : public Multiton<ProSale, std::string>, public ProError {
 public:
  TextPool Texts;                        ///< texts that the sale brought and that were made of them
  Text OrgCode = nullptr;                ///< organisation of the sale
  Text BillNo = nullptr;                 ///< sale number
  Text IsCalc = nullptr;                 ///< "0", "1" or "2": decides which rules run on this sale
  std::vector<SalePlu> Plus;             ///< the lines, in order of first arrival
  std::vector<SalePay> Pays;             ///< payments
  std::vector<SaleVip> Vips;             ///< member records
  std::vector<ProResult> SaleResults;    ///< results that belong to the whole sale and to no line
  std::vector<SaleProGift> ProGifts;     ///< offers of gift rules
  std::vector<SaleGift> Gifts;           ///< what the front end took of such offers
  std::vector<SaleCoupon> Coupons;       ///< coupons received from the front end
  std::vector<SaleCoupon> GivenCoupons;  ///< coupons that rules made for the sale; the result tells their value alone
  ModeTrail Trail;                       ///< how the lines came to the results that they have

  /// By what rows can name the lines, in groups; made at the first asking after the lines were read.
  /// @param most lines of a group, the same at each asking.
  /// @return lives until the lines are read again.
  const std::vector<LineCodes>& CodesOfLines(std::size_t most);

  /// To be called before lines change.
  void ForgetCodes() { m_codes.clear(); }

  /// Whether a full-amount rule may still act on the sale, by what `SaleResults` holds.
  bool CanApplyToSale(Text primary, Text billNo) const { return RowAgainst(primary, billNo) == nullptr; }

  /// The sale-level row that keeps such a rule from acting, or null.
  const ProResult* RowAgainst(Text primary, Text billNo) const;

  /// The sum of `Total` over the lines; 0 for no lines.
  double SaleTotal() const;

  /// Takes over what another sale holds. Its texts stay the other's, which has to outlive this one.
  void CopyFrom(const ProSale& sale);

  /// Empties what calculations and the front end left: the lines' results, the offers, gifts and coupons. Payments,
  /// members and sale-level results stay, and so do the lines' amounts.
  void ResetResults();

 private:
  std::vector<LineCodes> m_codes;
};

}  // namespace Corvane

#endif
