#include "promo/direct/ProDirectLimit.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "engine/Log.h"
#include "rule/EligibleQuantity.h"
#include "rule/LineDiscount.h"
#include "rule/MaxDiscount.h"
#include "rule/RuleReader.h"

namespace Corvane {

void ProDirectLimit::InitRule(Text xml) { ReadRule(xml, *this); }

void ProDirectLimit::CalcRule(ProSale& sale, std::vector<SalePlu>& lines, std::vector<SalePlu>& changed) {
  m_detail.Clear();
  if (!CheckBaseCondition(sale)) return;
  m_detail.LoadRuleDetail(m_db, Info.BillNo, lines);  // nothing changes the lines meanwhile
  for (SalePlu& line : lines) CalcRuleOnLine(sale, line, changed);
  // This type enforces its ceiling without announcing it in the log.
  LimitByMaxDiscount(Info, sale, LimitLog::Unannounced);
}

void ProDirectLimit::CalcRuleOnLine(ProSale& sale, SalePlu& line, std::vector<SalePlu>& changed) {
  Log(Join("开始计算普通限时促销，促销单号：", Info.BillNo));
  Log("1");
  const double open = GetCalcCount(line, Info, sale.Plus);
  Log("2");
  if (open <= 0) return;
  const SplitRows rows(m_detail.Conditions());
  if (LineMatchesRows(rows.PluNot, line, "PLU")) return;
  const LineWork work{sale, line, changed, MemberText(sale)};
  if (!DiscountByGoods(rows.PluIn, work)) return;
  if (LineMatchesRows(rows.ClassNot, line, "")) return;
  DiscountByClass(rows.ClassIn, work);
}

/// @return false when the rule is over for this line.
bool ProDirectLimit::DiscountByGoods(const RowPtrs& rows, const LineWork& work) {
  bool goesOn = true;
  for (const ProDetailKey* row : LastToFirst(rows)) {
    // A set price never applies to a package; rates and reductions do. What a receipt would show decides.
    const bool isSetPrice = Same(m_detail.ActionOf(*row).DisType, PriceKind::kPrice);
    if (isSetPrice && !PrintsAsOne(work.Line.PackCnt)) continue;
    if (!Same(row->PluCode, work.Line.PluCode)) continue;
    goesOn = DiscountByRow(*row, "PLU", work);
    if (!goesOn) break;
  }
  return goesOn;
}

void ProDirectLimit::DiscountByClass(const RowPtrs& rows, const LineWork& work) {
  for (const ProDetailKey* row : LastToFirst(rows)) {
    if (!MatchClassRow(*row, work.Line)) continue;
    // Earlier lines are sought under no class word here, so that none counts against the limit of a class row.
    if (!DiscountByRow(*row, "", work)) return;
  }
}

/// @return false when the quantities on earlier lines make no sense, which ends the rule for this line.
bool ProDirectLimit::DiscountByRow(const ProDetailKey& row, Text word, const LineWork& work) {
  const double earlier = GetEarlierCount(work.Sale, work.Line.PluCode, word, work.Line.Index - 1);
  if (earlier < 0) return false;
  const double limit = m_detail.ConditionOf(row).LimitNum;
  const bool usedUp = limit > 0 && limit <= earlier;
  if (usedUp) return true;
  double applied = earlier;
  ApplyLineDiscount(m_detail.ActionOf(row), limit, work.Line, applied, Info, work.Changed, work.VipType,
                    work.Sale.Plus);
  return true;
}

bool LineMatchesRows(const RowPtrs& rows, const SalePlu& line, Text word) {
  const bool byGoods = Same(word, "PLU");
  return std::any_of(rows.rbegin(), rows.rend(), [&](const ProDetailKey* row) {
    return byGoods ? Same(row->PluCode, line.PluCode) : MatchClassRow(*row, line);
  });
}

double GetTypeCountOnLine(const SalePlu& line, Text type) {
  double count = 0;
  for (const ProResult& row : line.ProResults) {
    if (Same(row.ProType, type)) count += row.DisNum;
  }
  return line.ProResults.empty() || (count >= 0 && count <= line.PluCount + kNoise) ? count : -1;
}

double GetEarlierCount(const ProSale& sale, Text code, Text word, std::int32_t lastIndex) {
  const bool byGoods = Same(word, "PLU");
  double count = 0;
  for (const SalePlu& line : sale.Plus) {
    if (line.Index > lastIndex) break;
    const bool counts = byGoods ? Same(line.PluCode, code) : LineHasClass(line, word, code);
    if (!counts) continue;
    const double onLine = GetTypeCountOnLine(line, "PTXS");
    if (onLine < 0) return -1;
    count += onLine;
  }
  return count;
}

}  // namespace Corvane
