#ifndef QNCORVANE_TESTS_FUZZ_FORMATS_H
#define QNCORVANE_TESTS_FUZZ_FORMATS_H

#include <cstddef>
#include <vector>

namespace Corvane::Fuzz {

// What the bytes of the inputs of rule_xml and table_rows mean.

/// The types that a rule can be loaded as.
inline constexpr const char* kTypes[] = {"PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX",
                                         "MZMJ", "MZDP", "MZZM", "MZZP", "MZHG", "MZZF", "MZYQ"};

/// The modes of a calculation.
inline constexpr const char* kModes[] = {"All", "MzPromotion", "Gift", "Pay", "Coupon", "Union", "Zh", "Single"};

/// A step of table_rows: a byte of 0 to 7.
namespace Step {
inline constexpr std::size_t kRow = 0;  ///< and all below kRule
inline constexpr std::size_t kRule = 6;
inline constexpr std::size_t kCall = 7;
inline constexpr std::size_t kCount = 8;
}  // namespace Step

/// The form of a value.
namespace ValueForm {
inline constexpr std::size_t kNull = 0;
inline constexpr std::size_t kInteger = 1;       ///< eight bytes
inline constexpr std::size_t kReal = 2;          ///< eight bytes
inline constexpr std::size_t kText = 3;          ///< up to a zero byte
inline constexpr std::size_t kBlob = 4;          ///< up to a zero byte
inline constexpr std::size_t kSmallInteger = 5;  ///< one byte
inline constexpr std::size_t kMoney = 6;         ///< two bytes of cents
inline constexpr std::size_t kNumberText = 7;    ///< two bytes and one, with a point between them
inline constexpr std::size_t kOddReal = 8;       ///< one of a list
inline constexpr std::size_t kTextWithZero = 9;  ///< up to a zero byte, and more behind one of its own
inline constexpr std::size_t kWord = 10;         ///< one of a list; and all above
inline constexpr std::size_t kCount = 12;
}  // namespace ValueForm

/// A table, and a row of it that does something.
struct Table {
  const char* Name;
  std::vector<const char*> Columns;
  std::vector<const char*> Usual;
};

inline const std::vector<Table>& Tables() {
  static const std::vector<Table> tables = {
      {"tProPrjDirectProAct",
       {"BillNo", "SerialNo", "PluCode", "PluType", "InRange", "DscType", "DscPrice", "DscRate", "SaleCount",
        "TradeMaxCount"},
       {"", "1", "950101", "PLU", "IN", "PRC", "1.5", "20", "2", "0"}},
      {"tProPrjCombProAct",
       {"BillNo", "SerialNo", "SaleCount", "PriceType", "PriceTotal", "ProActCode", "ProActname", "IsRequired"},
       {"", "1", "3", "DP", "5.8", "SNACK", "Snack", "1"}},
      {"tProPrjCombPluSet",
       {"BillNo", "SerialNo", "ProActCode", "PluCode", "PluType", "SaleCount", "DscType", "DscPrice", "DscRate"},
       {"", "1", "SNACK", "950101", "PLU", "1", "RAT", "4.5", "20"}},
      {"tProCombConditionAct",
       {"BillNo", "SerialNo", "PluCode", "PluType", "SaleCount", "PriceTotal"},
       {"", "1", "HOUSE", "CAT", "0", "15"}},
      {"tProPrjCombCtrl", {"BillNo", "SerialNo", "PriceTotal", "CountTotal"}, {"", "1", "20", "2"}},
      {"tpromzlist",
       {"BillNo", "ListCode", "ConAreaType", "RstAreaType", "MaxDiscount", "DscIntoPlu"},
       {"", "1", "ALL", "ALL", "15", "1"}},
      {"tProMzConPluSet",
       {"BillNo", "ListCode", "SerialNo", "DataId", "PluCode", "PluType", "InRange"},
       {"", "1", "1", "1", "HOUSE", "CAT", "IN"}},
      {"tProMzDiscountAct",
       {"BillNo", "ListCode", "DscType", "BaseMoney", "BaseDscMoney", "AddMoney", "AddDscMoney", "SaleMaxIn"},
       {"", "1", "PRC", "50", "5", "10", "1", "0"}},
      {"tProMzScheme",
       {"BillNo", "SerialNo", "PluCode", "BaseConType", "BaseConNum", "BaseDscType", "BaseDscNum", "AddConNum",
        "AddDscNum", "SaleMaxIn", "DscPrice"},
       {"", "1", "300101", "SUM", "10", "NUM", "1", "0", "0", "1", "0"}},
      {"tProMzPluAct",
       {"BillNo", "SerialNo", "DataId", "PluCode", "PluType", "BaseConType", "BaseConNum", "BaseDscType", "BaseDscNum",
        "AddConNum", "AddDscNum", "SaleMaxIn"},
       {"", "1", "1", "300201", "PLU", "NUM", "3", "NUM", "1", "0", "0", "0"}},
  };
  return tables;
}

}  // namespace Corvane::Fuzz

#endif
