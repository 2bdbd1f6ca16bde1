#include "promo/mz/ConditionRows.h"

#include <QSqlQuery>
#include <algorithm>
#include <cstdint>
#include <string>

#include "db/RowFields.h"
#include "promo/DetailQuery.h"
#include "promo/Statement.h"
#include "rule/EligibleQuantity.h"

namespace Corvane {

namespace {

using Column = FromColumn<PluCondition>;
constexpr RowField<PluCondition> kColumns[] = {
    {"SerialNo", Column::Integer<&PluCondition::SerialNo>},  {"PluCode", Column::KeptText<&PluCondition::PluCode>},
    {"PluType", Column::KeptText<&PluCondition::PluType>},   {"InRange", Column::KeptText<&PluCondition::Contain>},
    {"ListCode", Column::KeptText<&PluCondition::ListCode>}, {"DataId", Column::KeptText<&PluCondition::DataId>},
};

std::string SelectOfRule(Text billNo) {
  return Join("select SerialNo,PluCode,PluType,InRange,ListCode,DataId from tProMzConPluSet where BillNo='", billNo,
              "'");
}

bool Holds(const std::vector<PluCondition>& rows, const PluCondition& row) {
  return std::any_of(rows.begin(), rows.end(), [&](const PluCondition& held) {
    return held.SerialNo == row.SerialNo && Same(held.ListCode, row.ListCode) && Same(held.DataId, row.DataId);
  });
}

bool AppendRows(QnPosDBPro& db, Text billNo, const QString& sql, std::vector<PluCondition>& rows, QString& error) {
  QSqlQuery query;
  if (!OpenDetail(db, sql, query, error)) return false;
  ReadRows(query, kColumns, [&](PluCondition& row) {
    row.BillNo = billNo;
    row.Index = static_cast<std::int32_t>(rows.size());
    if (!Holds(rows, row)) rows.push_back(row);
  });
  return true;
}

}  // namespace

bool LoadListConditions(QnPosDBPro& db, Text billNo, Text listCode, const std::vector<SalePlu>& lines,
                        std::vector<PluCondition>& rows, QString& error) {
  return std::all_of(lines.begin(), lines.end(), [&](const SalePlu& line) {
    const QString sql = Statement(SelectOfRule(billNo), RowsOfLine(line), " and ListCode='", listCode, "'");
    return AppendRows(db, billNo, sql, rows, error);
  });
}

bool LoadRuleConditions(QnPosDBPro& db, Text billNo, const std::vector<SalePlu>& lines, std::vector<PluCondition>& rows,
                        QString& error) {
  const bool loaded = std::all_of(lines.begin(), lines.end(), [&](const SalePlu& line) {
    return AppendRows(db, billNo, Statement(SelectOfRule(billNo), RowsOfLine(line)), rows, error);
  });
  if (!loaded || !rows.empty()) return loaded;
  return AppendRows(db, billNo, Statement(SelectOfRule(billNo), " limit 1 "), rows, error);
}

RuleLines SelectConditionLines(const ProInfo& rule, const std::vector<PluCondition>& rows,
                               std::vector<SalePlu>& lines) {
  if (!rows.empty()) return SelectRuleLines(rule, SplitRows(rows), lines);
  RuleLines all;
  all.Lines = PointersTo(lines);
  for (const SalePlu& line : lines) {
    all.Money += GetLineLeftTotal(line, rule.Primary, rule.ProType);
    all.Quantity += GetCalcCount(line, rule, lines);
  }
  return all;
}

}  // namespace Corvane
