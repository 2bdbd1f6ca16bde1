#ifndef QNCORVANE_HOST_STORETABLES_H
#define QNCORVANE_HOST_STORETABLES_H

namespace Corvane::Host {

/// A table that rules read, and the columns that they ask for.
struct StoreTable {
  const char* Name;
  const char* Columns;  ///< with commas between them
};

constexpr StoreTable kStoreTables[] = {
    {"tProPrjDirectProAct", "BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice,DscRate,SaleCount,TradeMaxCount"},
    {"tProPrjCombProAct", "BillNo,SerialNo,SaleCount,PriceType,PriceTotal,ProActCode,ProActname,IsRequired"},
    {"tProPrjCombPluSet", "BillNo,SerialNo,ProActCode,PluCode,PluType,SaleCount,DscType,DscPrice,DscRate"},
    {"tProCombConditionAct", "BillNo,SerialNo,PluCode,PluType,SaleCount,PriceTotal"},
    {"tProPrjCombCtrl", "BillNo,SerialNo,PriceTotal,CountTotal"},
    {"tpromzlist", "BillNo,ListCode,ConAreaType,RstAreaType,MaxDiscount,DscIntoPlu"},
    {"tProMzConPluSet", "BillNo,ListCode,SerialNo,DataId,PluCode,PluType,InRange"},
    {"tProMzDiscountAct", "BillNo,ListCode,DscType,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn"},
    {"tProMzScheme",
     "BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,SaleMaxIn,DscPrice"},
    {"tProMzPluAct",
     "BillNo,SerialNo,DataId,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,AddDscNum,"
     "SaleMaxIn"},
};

}  // namespace Corvane::Host

#endif
