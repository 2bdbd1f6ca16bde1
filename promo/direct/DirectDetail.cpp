#include "promo/direct/DirectDetail.h"

#include <algorithm>
#include <cstddef>

#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailQuery.h"
#include "promo/PercentKept.h"
#include "promo/Statement.h"

namespace Corvane {

namespace {

/// A row of the table, as it stands there.
struct DirectRow : ProDetailKey {
  Text DscType = nullptr;
  double DscPrice = 0;
  double DscRate = 0;        ///< percent taken off
  double SaleCount = 0;      ///< least quantity, or pieces of a set
  double TradeMaxCount = 0;  ///< most quantity
};

using Column = FromColumn<DirectRow>;
constexpr RowField<DirectRow> kColumns[] = {
    {"SerialNo", Column::Integer<&DirectRow::SerialNo>},
    {"PluCode", Column::KeptText<&DirectRow::PluCode>},
    {"PluType", Column::KeptText<&DirectRow::PluType>},
    {"InRange", Column::KeptText<&DirectRow::Contain>},
    {"DscType", Column::KeptText<&DirectRow::DscType>},
    {"DscPrice", Column::Double<&DirectRow::DscPrice>},
    {"DscRate", Column::Double<&DirectRow::DscRate>},
    {"SaleCount", Column::Double<&DirectRow::SaleCount>},
    {"TradeMaxCount", Column::Double<&DirectRow::TradeMaxCount>},
};

SqlText SelectOfLine(const QnPosDBPro& db, Text billNo, const SalePlu& line) {
  return Statement(db,
                   "select DscType,DscPrice,DscRate,SaleCount,TradeMaxCount,SerialNo,PluCode,PluType,InRange from "
                   "tProPrjDirectProAct where BillNo=",
                   Quoted{billNo}, RowsOfLine(db, line));
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

void DirectDetail::LoadRuleDetail(QnPosDBPro& db, Text billNo, const std::vector<SalePlu>& lines) {
  Clear();
  for (const SalePlu& line : lines) LoadRowsOf(line, db, billNo);
}

void DirectDetail::LoadRowsOf(const SalePlu& line, QnPosDBPro& db, Text billNo) {
  QString error;
  const auto take = [&](const DirectRow& row) {
    if (Holds(row.SerialNo)) return;
    ProDetailKey head = row;
    head.BillNo = billNo;
    head.Index = static_cast<std::int32_t>(m_conditions.size());
    m_conditions.push_back({head, row.SaleCount, 0, row.TradeMaxCount});
    m_actions.push_back({head, row.DscType, 0, row.DscPrice, PercentKept(row.DscRate)});
  };
  const bool read = db.EnsureOpen(error) && SelectRows(db, SelectOfLine(db, billNo, line), kColumns, error, take);
  Log(read ? LogText::kDetailRead : LogText::kDetailNotRead, billNo);
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
