#ifndef QNCORVANE_LOG_LOGTEXTS_H
#define QNCORVANE_LOG_LOGTEXTS_H

#include "base/Text.h"

/// Every text of the calculation log, but for the database's own. They are read by people and compared by tools: their
/// spelling is part of the interface. docs/log.md says what each of them means. A text that ends in a colon, or that
/// stands in front of numbers, has the value directly behind it in the same entry.
namespace Corvane::LogText {

// --- The frame of a calculation -------------------------------------------------------------------------------------

constexpr Text kSaleRead = "初始化流水完成";
constexpr Text kDatabaseConnected = "数据库连接成功";
constexpr Text kDatabaseNotConnected = "数据库连接失败";
constexpr Text kRuleSkipped = "跳过促销";
constexpr Text kModeAll = "计算模式为ALL时";
constexpr Text kModeUnion = "计算模式为Union时";
constexpr Text kModeZh = "计算模式为Zh时";
constexpr Text kModeGift = "赠品返回数据计算";
constexpr Text kModePay = "进入Pay节";
constexpr Text kModeCoupon = "满赠用券";

// --- Sale XML in, result XML out ------------------------------------------------------------------------------------

constexpr Text kReadingSale = "开始初始化流水";
constexpr Text kLineWithoutAttributes = "流水行没有属性，已跳过";
constexpr Text kReadingPayments = "初始化支付对象";
constexpr Text kReadingPayment = "读到支付对象，开始初始化";
constexpr Text kWritingLine = "获取一个销售流水经过计算之后的xml";

// --- Base conditions ------------------------------------------------------------------------------------------------

constexpr Text kTimeMet = "时间满足";
constexpr Text kTimeNotMet = "时间条件不满足";
constexpr Text kOrganisationMet = "组织满足";
constexpr Text kOrganisationNotMet = "组织条件不满足";
constexpr Text kMemberMet = "会员满足";
constexpr Text kMemberNotMet = "会员条件不满足";
constexpr Text kPaymentNotMet = "支付条件不满足";
constexpr Text kConditionsMet = "所有基本条件都被判断过，满足";

// --- Open quantity --------------------------------------------------------------------------------------------------

constexpr Text kLimitKind = "促销优惠类型：";
constexpr Text kRuleType = "促销类型：";
constexpr Text kLimitedByQuantity = "类型为2";
constexpr Text kHeldRow = "11111";
constexpr Text kHeldQuantity = "计算整单已优惠数量：";
constexpr Text kOpenQuantity = "可计算数量：";

// --- Limit by money -------------------------------------------------------------------------------------------------

constexpr Text kLimitedByMoney = "促销单按照最大优惠额限制";
constexpr Text kRowsOfRule = "ProNums= ";
constexpr Text kRowNumber = "ProNumsT为：";
constexpr Text kLastRow = "ProNumsT=ProNums";
constexpr Text kAllocated = "allocated=";
constexpr Text kMoneyLimit = "proInfo.MaxYhValue=";

// --- Sharing --------------------------------------------------------------------------------------------------------

constexpr Text kApportioned = "已有分摊记录";
constexpr Text kNotApportioned = "不存在已有分摊记录，创建分摊记录";
constexpr Text kSetDiscount = "组合自选促销生成的优惠：";
constexpr Text kSetRest = "temp:";
constexpr Text kSetSum = "m_dTotalPrice:";
constexpr Text kPoolBrought = "自由组合原始total";
constexpr Text kPoolCosts = "自由组合实际total";
constexpr Text kPoolDiscount = "自由组合优惠total";
constexpr Text kPoolTail = "自由组合尾差为";

// --- Rows that make no sense ----------------------------------------------------------------------------------------

constexpr Text kSaleCountBelowOne = "SaleCount小于1，该行不参与计算，促销单号：";
constexpr Text kRowOf = "，行号：";
constexpr Text kTooManyRepeats = "重复次数过多，该方案不参与计算，促销单号：";
constexpr Text kPayStepWithoutGain = "支付阶梯的DisPrice不大于0且没有优惠，停止计算，促销单号：";
constexpr Text kDenominationNotPositive = "券面额不大于0，不赠券，促销单号：";

// --- Ordinary promotions --------------------------------------------------------------------------------------------

constexpr Text kDetailRead = "获取普通类促销详情成功";
constexpr Text kDetailNotRead = "获取普通类促销详情失败";
constexpr Text kLimitStarts = "开始计算普通限时促销，促销单号：";
constexpr Text kBeforeOpenQuantity = "1";
constexpr Text kBehindOpenQuantity = "2";
constexpr Text kBatchLimitKind = "促销单限制类型：";

// --- Combination promotions -----------------------------------------------------------------------------------------

constexpr Text kFreeStarts = "开始计算自由组合促销，促销单号：";
constexpr Text kFreeRowsRead = "开始计算自由组合促销，1";
constexpr Text kFreePoolStarts = "GetSaleAccordCombFree函数开始计算";
constexpr Text kFreeRows = "iCondition数量为：";
constexpr Text kFreeRowType = "优惠类型为";
constexpr Text kFreeRowCode = "plucode为：";
constexpr Text kFreeLineStarts = "ProCombFree::DiscountSale begin";
constexpr Text kFreeLastLine = "本组中最后一行商品，需要分摊尾差";
constexpr Text kChoiceStarts = "开始计算套餐自选，判断是否满足基本规则";
constexpr Text kChoiceRowsRead = "基本规则满足";
constexpr Text kMandatorySlot = "计算必选坑";
constexpr Text kOptionalSlot = "计算可选坑";
constexpr Text kConditionFailed = "计算条件组合促销失败";

// --- Full-amount promotions -----------------------------------------------------------------------------------------

constexpr Text kGiftStarts = "开始满减赠品计算";
constexpr Text kGiftFailed = "计算满赠赠品促销失败";
constexpr Text kGiftRowsRead = "满减赠品基本促销条件满足！";
constexpr Text kGoodsFreeFailed = "计算商品直免促销失败";
constexpr Text kGoodsFailed = "计算单品赠送促销失败";
constexpr Text kReduceFailed = "计算满减促销失败";
constexpr Text kCouponOffers = "赠券方案个数";
constexpr Text kCouponTiers = "赠券方案内的行为个数";
constexpr Text kCouponAmount = "赠券方案内满足的金额";
constexpr Text kCouponSum = "真实赠券额";
constexpr Text kPayActionGroup = "判断节点是PluAction时";
constexpr Text kPayConditionsNotMet = "基本条件不满足，再检查！";

}  // namespace Corvane::LogText

#endif
