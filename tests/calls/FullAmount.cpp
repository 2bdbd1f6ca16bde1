#include "tests/calls/FullAmount.h"

#include <algorithm>

namespace Corvane::Testing {

namespace {

Texts Reversed(const std::vector<Row>& printed, const std::string& column) {
  Texts values;
  for (const Row& row : printed) values.insert(values.begin(), row[column]);
  return values;
}

}  // namespace

std::string PrintedGroup(const std::string& result, const std::string& group) {
  const std::string closing = "</" + group + ">";
  const std::size_t empty = result.find("<" + group + " />");
  if (empty != std::string::npos) return result.substr(empty, group.size() + 4);
  const std::size_t begin = result.find("<" + group + ">");
  const std::size_t end = result.find(closing);
  if (begin == std::string::npos || end == std::string::npos) {
    ADD_FAILURE() << "no group " << group << " in " << result;
    return "";
  }
  return result.substr(begin, end + closing.size() - begin);
}

Texts Held(const std::string& result, const std::string& group, const std::string& column) {
  return Reversed(RowsOf(result, group), column);
}

Texts HeldOffers(const std::string& result, const std::string& column, std::size_t group) {
  const auto groups = OffersOf(result);
  if (group < groups.size()) return Reversed(groups[group].Rows, column);
  ADD_FAILURE() << "no group of offers at place " << group << " in " << result;
  return {};
}

Texts AfterReading(const Texts& log) {
  const auto end = std::find(log.begin(), log.end(), "初始化流水完成");
  if (end == log.end()) {
    ADD_FAILURE() << "the sale was not read";
    return {};
  }
  return {end + 1, log.end()};
}

Texts BaseConditionsMet() { return {"时间满足", "组织满足", "会员满足", "所有基本条件都被判断过，满足"}; }

Texts AskedQuantity(const std::string& proType) {
  return {"促销优惠类型：", "促销类型：" + proType, "计算整单已优惠数量：0"};
}

Texts Joined(const std::vector<Texts>& parts) {
  Texts all;
  for (const Texts& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

long Naming(const Texts& log, const std::string& billNo) {
  return std::count_if(log.begin(), log.end(),
                       [&](const std::string& entry) { return entry.find(billNo) != std::string::npos; });
}

std::string TierXml(const std::string& threshold, const std::string& sum, const std::string& step,
                    const std::string& stepSum, const std::string& most) {
  return "<Row BaseConNum=\"" + threshold + "\" BaseDscNum=\"" + sum + "\" AddConNum=\"" + step + "\" AddDscNum=\"" +
         stepSum + "\" SaleMaxIn=\"" + most + "\"/>";
}

std::string OfferXml(const std::string& area, const std::string& tiers, const std::string& groups,
                     const std::string& more) {
  return "<ProList ConAreaType=\"" + area + "\" RstAreaType=\"ALL\" DscIntoPlu=\"0\" " + more + "><PluAddAction>" +
         tiers + "</PluAddAction>" + groups + "</ProList>";
}

void FullAmount::SetUp() {
  Till::SetUp();
  MakeTables();
}

void FullAmount::Offer(const std::string& values) {
  Sql("insert into tpromzlist (BillNo,ListCode,ConAreaType,MaxDiscount,DscIntoPlu) values (" + values + ")");
}

void FullAmount::Tier(const std::string& values) {
  Sql("insert into tProMzDiscountAct (BillNo,ListCode,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn) values (" +
      values + ")");
}

void FullAmount::Condition(const std::string& values) {
  Sql("insert into tProMzConPluSet (BillNo,ListCode,SerialNo,DataId,PluCode,PluType,InRange) values (" + values + ")");
}

void FullAmount::Scheme(const std::string& values) {
  Sql("insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,AddConNum,"
      "AddDscNum,SaleMaxIn,DscPrice) values (" +
      values + ")");
}

void FullAmount::Giving(const std::string& values) {
  Sql("insert into tProMzPluAct (BillNo,SerialNo,DataId,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum,"
      "AddConNum,AddDscNum,SaleMaxIn) values (" +
      values + ")");
}

void FullAmount::LooseTable(const std::string& table, const std::string& columns) {
  Sql("drop table " + table + "; create table " + table + " (" + columns + ")");
}

void FullAmount::LoadRule(const std::string& billNo, const std::string& type, const std::string& header,
                          const std::string& groups) {
  const Answer answer = Load(type, RuleXml(billNo, type, header, groups));
  ASSERT_EQ(answer.Code, 0) << answer.Msg;
}

std::string FullAmount::Result(const std::string& mode, const std::string& xml) {
  const Answer answer = Calc("till", mode, xml);
  EXPECT_EQ(answer.Code, 0);
  EXPECT_EQ(answer.Msg, "sucess");
  return answer.Out;
}

std::string FullAmount::AsItStands() { return R"(<Sale OrgCode="S01" BillNo="B1" IsCalc="0"/>)"; }

}  // namespace Corvane::Testing
