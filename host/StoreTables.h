#ifndef QNCORVANE_HOST_STORETABLES_H
#define QNCORVANE_HOST_STORETABLES_H

namespace Corvane::Host {

/// The tables by name.
namespace Table {
constexpr const char* kDirect = "tProPrjDirectProAct";
constexpr const char* kCombination = "tProPrjCombProAct";
constexpr const char* kCombinationGoods = "tProPrjCombPluSet";
constexpr const char* kCombinationDemand = "tProCombConditionAct";
constexpr const char* kCombinationControl = "tProPrjCombCtrl";
constexpr const char* kList = "tpromzlist";
constexpr const char* kConditionGoods = "tProMzConPluSet";
constexpr const char* kListTier = "tProMzDiscountAct";
constexpr const char* kGift = "tProMzScheme";
constexpr const char* kGoodsTier = "tProMzPluAct";
}  // namespace Table

/// A table that rules read, and the columns that they ask for.
struct StoreTable {
  const char* Name;
  const char* Columns;  ///< with commas between them
  const char* Key;      ///< those of them that tell a row from all others
};

constexpr StoreTable kStoreTables[] = {
    {Table::kDirect, "BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice,DscRate,SaleCount,TradeMaxCount",
     "BillNo,SerialNo"},
    {Table::kCombination, "BillNo,SerialNo,SaleCount,PriceType,PriceTotal,ProActCode,ProActname,IsRequired",
     "BillNo,SerialNo"},
    {Table::kCombinationGoods, "BillNo,SerialNo,ProActCode,PluCode,PluType,SaleCount,DscType,DscPrice,DscRate",
     "BillNo,SerialNo"},
    {Table::kCombinationDemand, "BillNo,SerialNo,PluCode,PluType,SaleCount,PriceTotal", "BillNo,SerialNo"},
    {Table::kCombinationControl, "BillNo,SerialNo,PriceTotal,CountTotal", "BillNo,SerialNo"},
    {Table::kList, "BillNo,ListCode,ConAreaType,RstAreaType,MaxDiscount,DscIntoPlu", "BillNo,ListCode"},
    {Table::kConditionGoods, "BillNo,ListCode,SerialNo,DataId,PluCode,PluType,InRange",
     "BillNo,ListCode,SerialNo,DataId"},
    {Table::kListTier, "BillNo,ListCode,DscType,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn",
     "BillNo,ListCode,BaseMoney"},
    {Table::kGift,
     "BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,SaleMaxIn,DscPrice",
     "BillNo,SerialNo"},
    {Table::kGoodsTier,
     "BillNo,SerialNo,DataId,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,"
     "SaleMaxIn",
     "BillNo,SerialNo,DataId,PluCode"},
};

}  // namespace Corvane::Host

#endif
