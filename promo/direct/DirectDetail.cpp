#include "promo/direct/DirectDetail.h"

#include <algorithm>
#include <cstddef>

#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailTable.h"
#include "promo/PercentKept.h"

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

constexpr char kRowsOfRule[] =
    "select DscType,DscPrice,DscRate,SaleCount,TradeMaxCount,SerialNo,PluCode,PluType,InRange from "
    "tProPrjDirectProAct where BillNo=";

}  // namespace

void DirectDetail::Clear() {
  m_conditions.clear();
  m_actions.clear();
}

void DirectDetail::LoadRuleDetail(QnPosDBPro& db, const RuleRun& run) {
  Clear();
  const Text billNo = run.Info().BillNo;
  QString error;
  DetailTables tables(db, billNo, error);
  const bool isOpen = tables.Open();
  std::vector<DirectRow> rows;
  DistinctRows<DirectRow, SameSerialNo> distinct(rows);
  for (const LineCodes& codes : tables.GroupsOf(run.Sale())) {
    const bool readAtOnce = isOpen && tables.ReadAtOnce(codes, tables.Select(kRowsOfRule), kColumns, distinct);
    for (const SalePlu* line = codes.First; line != codes.End; ++line) {
      const bool read =
          readAtOnce || (tables.Open() && tables.ReadOfLine(*line, tables.Select(kRowsOfRule), kColumns, distinct));
      Log(read ? LogText::kDetailRead : LogText::kDetailNotRead, billNo);
      if (!read) run.RefuseUnreadable(error);
    }
  }
  for (const DirectRow& row : rows) {
    m_conditions.push_back({row, row.SaleCount, 0, row.TradeMaxCount});
    m_actions.push_back({row, row.DscType, 0, row.DscPrice, PercentKept(row.DscRate)});
  }
}

const PluAction& DirectDetail::ActionOf(const ProDetailKey& condition) const {
  return m_actions.at(static_cast<std::size_t>(condition.Index));
}

const PluCondition& DirectDetail::ConditionOf(const ProDetailKey& head) const {
  return m_conditions.at(static_cast<std::size_t>(head.Index));
}

bool MatchClassRow(const ProDetailKey& row, const SalePlu& line) {
  if (Same(row.PluType, GoodsKind::kCategory)) return Same(line.CAT, row.PluCode);
  if (Same(row.PluType, GoodsKind::kBrand)) return Same(line.BRD, row.PluCode);
  return false;
}

bool LineMatchesRows(const RowPtrs& rows, const SalePlu& line, RowsBy by) {
  return std::any_of(rows.rbegin(), rows.rend(), [&](const ProDetailKey* row) {
    return by == RowsBy::Goods ? Same(row->PluCode, line.PluCode) : MatchClassRow(*row, line);
  });
}

bool NoteUnnamed(const RuleRun& run, const SplitRows& rows, const SalePlu& line) {
  if (run.Told() == nullptr) return false;
  const bool isNamed =
      LineMatchesRows(rows.PluIn, line, RowsBy::Goods) || LineMatchesRows(rows.ClassIn, line, RowsBy::Class);
  if (!isNamed) run.Note(Reason::NotNamed).On(line);
  return !isNamed;
}

}  // namespace Corvane
