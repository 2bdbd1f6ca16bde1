#include "promo/mz/ConditionRows.h"

namespace Corvane {

namespace {

using Column = FromColumn<PluCondition>;
constexpr RowField<PluCondition> kColumns[] = {
    {"SerialNo", Column::Integer<&PluCondition::SerialNo>},  {"PluCode", Column::KeptText<&PluCondition::PluCode>},
    {"PluType", Column::KeptText<&PluCondition::PluType>},   {"InRange", Column::KeptText<&PluCondition::Contain>},
    {"ListCode", Column::KeptText<&PluCondition::ListCode>}, {"DataId", Column::KeptText<&PluCondition::DataId>},
};

constexpr char kRowsOfRule[] = "SerialNo,PluCode,PluType,InRange,ListCode,DataId from tProMzConPluSet where BillNo=";

/// Any one row of the rule.
SqlText SelectOneRow(const DetailTables& tables) {
  switch (tables.Dialect().AskForOneRow) {
    case SqlDialect::OneRow::Top:
      return tables.Select("select top 1 ", kRowsOfRule);
    case SqlDialect::OneRow::RowNum:
      return tables.Sql(tables.Select("select ", kRowsOfRule), " and rownum<=1");
    case SqlDialect::OneRow::Limit:
      break;
  }
  return tables.Sql(tables.Select("select ", kRowsOfRule), " limit 1 ");
}

bool SameRow(const PluCondition& left, const PluCondition& right) {
  return left.SerialNo == right.SerialNo && Same(left.ListCode, right.ListCode) && Same(left.DataId, right.DataId);
}

}  // namespace

bool LoadListConditions(DetailTables& tables, Text listCode, ProSale& sale, std::vector<PluCondition>& rows) {
  return tables.ReadOfLines(sale, tables.Select("select ", kRowsOfRule), kColumns, rows, SameRow,
                            tables.Sql(" and ListCode=", Quoted{listCode}));
}

bool LoadRuleConditions(DetailTables& tables, ProSale& sale, std::vector<PluCondition>& rows) {
  const bool loaded = tables.ReadOfLines(sale, tables.Select("select ", kRowsOfRule), kColumns, rows, SameRow);
  if (!loaded || !rows.empty()) return loaded;
  return tables.Read(SelectOneRow(tables), kColumns, rows);
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
