#include "promo/mz/ConditionRows.h"

#include <algorithm>
#include <cstdint>

#include "promo/DetailQuery.h"
#include "promo/Statement.h"

namespace Corvane {

namespace {

using Column = FromColumn<PluCondition>;
constexpr RowField<PluCondition> kColumns[] = {
    {"SerialNo", Column::Integer<&PluCondition::SerialNo>},  {"PluCode", Column::KeptText<&PluCondition::PluCode>},
    {"PluType", Column::KeptText<&PluCondition::PluType>},   {"InRange", Column::KeptText<&PluCondition::Contain>},
    {"ListCode", Column::KeptText<&PluCondition::ListCode>}, {"DataId", Column::KeptText<&PluCondition::DataId>},
};

constexpr char kRowsOfRule[] = "SerialNo,PluCode,PluType,InRange,ListCode,DataId from tProMzConPluSet where BillNo=";

SqlText SelectOfLine(const QnPosDBPro& db, Text billNo, const SalePlu& line) {
  return Statement(db, "select ", kRowsOfRule, Quoted{billNo}, RowsOfLine(db, line));
}

/// Any one row of the rule.
SqlText SelectOneRow(const QnPosDBPro& db, Text billNo) {
  switch (db.Dialect().AskForOneRow) {
    case SqlDialect::OneRow::Top:
      return Statement(db, "select top 1 ", kRowsOfRule, Quoted{billNo});
    case SqlDialect::OneRow::RowNum:
      return Statement(db, "select ", kRowsOfRule, Quoted{billNo}, " and rownum<=1");
    case SqlDialect::OneRow::Limit:
      break;
  }
  return Statement(db, "select ", kRowsOfRule, Quoted{billNo}, " limit 1 ");
}

bool Holds(const std::vector<PluCondition>& rows, const PluCondition& row) {
  return std::any_of(rows.begin(), rows.end(), [&](const PluCondition& held) {
    return held.SerialNo == row.SerialNo && Same(held.ListCode, row.ListCode) && Same(held.DataId, row.DataId);
  });
}

bool AppendRows(QnPosDBPro& db, Text billNo, const SqlText& sql, std::vector<PluCondition>& rows, QString& error) {
  return LoadDetail(db, sql, kColumns, error, [&](PluCondition& row) {
    row.BillNo = billNo;
    row.Index = static_cast<std::int32_t>(rows.size());
    if (!Holds(rows, row)) rows.push_back(row);
  });
}

}  // namespace

bool LoadListConditions(QnPosDBPro& db, Text billNo, Text listCode, const std::vector<SalePlu>& lines,
                        std::vector<PluCondition>& rows, QString& error) {
  return std::all_of(lines.begin(), lines.end(), [&](const SalePlu& line) {
    const SqlText sql = Statement(db, SelectOfLine(db, billNo, line), " and ListCode=", Quoted{listCode});
    return AppendRows(db, billNo, sql, rows, error);
  });
}

bool LoadRuleConditions(QnPosDBPro& db, Text billNo, const std::vector<SalePlu>& lines, std::vector<PluCondition>& rows,
                        QString& error) {
  const bool loaded = std::all_of(lines.begin(), lines.end(), [&](const SalePlu& line) {
    return AppendRows(db, billNo, SelectOfLine(db, billNo, line), rows, error);
  });
  if (!loaded || !rows.empty()) return loaded;
  return AppendRows(db, billNo, SelectOneRow(db, billNo), rows, error);
}

RuleLines SelectConditionLines(const RuleRun& run, const std::vector<PluCondition>& rows) {
  if (!rows.empty()) return SelectRuleLines(run, SplitRows(rows));
  RuleLines all;
  all.Lines = PointersTo(run.Lines());
  for (const SalePlu* line : all.Lines) {
    all.Money += run.OpenMoney(*line);
    all.Quantity += run.OpenCount(*line);
  }
  return all;
}

}  // namespace Corvane
