#include "promo/direct/DirectDetail.h"

#include <QSqlQuery>
#include <algorithm>
#include <cstddef>

#include "db/RowReader.h"
#include "engine/Log.h"
#include "promo/PercentKept.h"
#include "promo/Statement.h"

namespace Corvane {

namespace {

QString SelectOfLine(Text billNo, const SalePlu& line) {
  return Statement(
      "select DscType,DscPrice,DscRate,SaleCount,TradeMaxCount,SerialNo,PluCode,PluType,InRange from "
      "tProPrjDirectProAct where BillNo='",
      billNo, "'", RowsOfLine(line));
}

}  // namespace

void DirectDetail::Clear() {
  m_conditions.clear();
  m_actions.clear();
}

bool DirectDetail::Holds(std::int32_t serialNo) const {
  return std::any_of(m_actions.begin(), m_actions.end(),
                     [&](const PluAction& action) { return action.SerialNo == serialNo; });
}

bool DirectDetail::Load(QnPosDBPro& db, Text billNo, const SalePlu& line) {
  QString error;
  QSqlQuery query;
  if (!db.EnsureOpen(error) || !db.openRecordset(SelectOfLine(billNo, line), query, error)) {
    Log(Join("获取普通类促销详情失败", billNo));
    return false;
  }
  Log(Join("获取普通类促销详情成功", billNo));
  RowReader rows(query);
  const auto serialNo = rows.Place("SerialNo");
  const auto saleCount = rows.Place("SaleCount");
  const auto tradeMaxCount = rows.Place("TradeMaxCount");
  const auto pluCode = rows.Place("PluCode");
  const auto pluType = rows.Place("PluType");
  const auto inRange = rows.Place("InRange");
  const auto dscType = rows.Place("DscType");
  const auto dscPrice = rows.Place("DscPrice");
  const auto dscRate = rows.Place("DscRate");
  while (rows.Next()) {
    ProDetailKey head;
    head.SerialNo = rows.Integer(serialNo);
    if (Holds(head.SerialNo)) continue;
    head.BillNo = billNo;
    head.Index = static_cast<std::int32_t>(m_conditions.size());
    head.PluCode = rows.KeptText(pluCode);
    head.PluType = rows.KeptText(pluType);
    head.Contain = rows.KeptText(inRange);
    m_conditions.push_back({head, rows.Double(saleCount), 0, rows.Double(tradeMaxCount)});
    m_actions.push_back({head, rows.KeptText(dscType), 0, rows.Double(dscPrice), PercentKept(rows.Double(dscRate))});
  }
  return true;
}

const PluAction& DirectDetail::ActionOf(const ProDetailKey& condition) const {
  return m_actions.at(static_cast<std::size_t>(condition.Index));
}

const PluCondition& DirectDetail::ConditionOf(const ProDetailKey& head) const {
  return m_conditions.at(static_cast<std::size_t>(head.Index));
}

bool MatchClassRow(const ProDetailKey& row, const SalePlu& line) {
  if (Same(row.PluType, "CAT")) return Same(line.CAT, row.PluCode);
  if (Same(row.PluType, "BRD")) return Same(line.BRD, row.PluCode);
  return false;
}

}  // namespace Corvane
