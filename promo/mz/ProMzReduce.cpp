#include "promo/mz/ProMzReduce.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"
#include "promo/DetailTable.h"
#include "promo/mz/ConditionRows.h"
#include "promo/mz/Tiers.h"
#include "rule/LineSelection.h"
#include "rule/ResultRows.h"
#include "rule/RuleReader.h"
#include "rule/Spreading.h"

namespace Corvane {

namespace {

/// A list with the key under which its rows stand.
struct ListRow : ProMzList {
  Text ListCode = nullptr;
};

using ListColumn = FromColumn<ListRow>;
constexpr RowField<ListRow> kListColumns[] = {
    {"ConAreaType", ListColumn::KeptText<&ListRow::ConAreaType>},
    {"RstAreaType", ListColumn::KeptText<&ListRow::RstAreaType>},
    {"MaxDiscount", ListColumn::Double<&ListRow::MaxDiscount>},
    {"DscIntoPlu", ListColumn::KeptText<&ListRow::DscIntoPlu>},
    {"ListCode", ListColumn::KeptText<&ListRow::ListCode>},
};

using TierColumn = FromColumn<PluAddAction>;
constexpr RowField<PluAddAction> kTierColumns[] = {
    {"DscType", TierColumn::KeptText<&PluAddAction::DisType>},
    {"BaseMoney", TierColumn::Double<&PluAddAction::BaseConNum>},
    {"BaseDscMoney", TierColumn::Double<&PluAddAction::BaseDscNum>},
    {"AddMoney", TierColumn::Double<&PluAddAction::AddConNum>},
    {"AddDscMoney", TierColumn::Double<&PluAddAction::AddDscNum>},
    {"SaleMaxIn", TierColumn::Double<&PluAddAction::SaleMaxIn>},
};

bool LoadTiers(DetailTables& tables, ListRow& list) {
  const SqlText sql = tables.Select(
      "SELECT DscType,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn FROM tProMzDiscountAct where BillNo=");
  return tables.ReadTiers(tables.Sql(sql, " and ListCode=", Quoted{list.ListCode}), kTierColumns, list.Tiers);
}

/// What the rule gives on the line so far.
double GivenOn(const RuleRun& run, const SalePlu& line) {
  const ProResult* const row = FindResult(line, run.Info().BillNo);
  return row != nullptr ? row->DisMoney : 0;
}

}  // namespace

void ProMzReduce::InitRule(Text xml) { ReadRule(xml, *this); }

bool ProMzReduce::LoadRuleDetail(ProSale& sale, QString& error) {
  DetailTables tables(m_db, Info.BillNo, error);
  if (!tables.Open()) return false;
  const SqlText sql =
      tables.Select("SELECT ConAreaType,RstAreaType,MaxDiscount,DscIntoPlu,ListCode FROM tpromzlist where BillNo=");
  std::vector<ListRow> lists;
  if (!tables.Read(sql, kListColumns, lists)) return false;
  return std::all_of(lists.begin(), lists.end(), [&](ListRow& list) {
    const bool read = LoadListConditions(tables, list.ListCode, sale, list.Conditions) && LoadTiers(tables, list);
    if (read) m_lists.push_back(std::move(list));
    return read;
  });
}

void ProMzReduce::CalcRule(RuleRun& run) {
  if (!run.MayActOnSale()) return;
  m_lists.clear();
  QString error;
  // Nothing changes the lines while rows are read, so the loader takes no copy of them.
  if (!LoadRuleDetail(run.Sale(), error)) {
    Log(QString::fromUtf8(LogText::kReduceFailed) + error);
    run.RefuseUnreadable(error);
    return;
  }
  if (m_lists.empty()) run.Refuse(Reason::NoRows);
  for (ProMzList& list : m_lists) CalcList(run, list);
  run.Limit();
}

void ProMzReduce::CalcList(RuleRun& run, ProMzList& list) {
  if (!list.HasTiers(run)) return;
  SortTiersDown(list.Tiers);
  if (list.IsOfWholeSale()) ReduceWholeSale(run, list);
  if (list.IsOfChosenLines()) ReduceChosenLines(run, list);
}

void ProMzReduce::ReduceWholeSale(RuleRun& run, const ProMzList& list) {
  double amount = 0;
  for (const SalePlu& line : LastToFirst(run.Lines())) {
    const double open = run.OpenMoney(line);
    amount += open;
    if (!(open > 0)) run.NoteNoMoneyOpen(line);
  }
  const double sum = SumOfTiers(list, amount, &run);
  if (!(sum > 0)) return;

  // This spreading leaves the lines' amounts to this type: each falls by what the rule's row on it gained, the rounding
  // tail included.
  std::vector<double> held;
  for (const SalePlu& line : run.Lines()) held.push_back(GivenOn(run, line));
  SpreadOverLines(run, sum, amount, list.Price());
  auto heldBefore = held.begin();
  for (SalePlu& line : run.Lines()) run.LowerTotal(line, GivenOn(run, line) - *heldBefore++);
}

void ProMzReduce::ReduceChosenLines(RuleRun& run, const ProMzList& list) {
  const RuleLines chosen = SelectRuleLines(run, SplitRows(list.Conditions));
  if (chosen.Money == 0) return;
  const double sum = SumOfTiers(list, chosen.Money, &run, &chosen.Lines);
  SpreadOptions options;
  options.Price = list.Price();
  if (sum > 0) SpreadOverLinePtrs(run, chosen.Lines, sum, chosen.Money, options);
}

double ProMzReduce::SumOfTiers(const ProMzList& list, double amount, const RuleRun* run, const LinePtrs* lines) {
  double remainder = amount;
  double sum = 0;
  for (const PluAddAction& tier : list.Tiers) {
    if (remainder < tier.BaseConNum) {
      if (run != nullptr) NoteBelow(*run, list.Tiers, tier, Unit::Money, remainder, lines);
      continue;
    }
    sum += tier.BaseDscNum;
    const double left = GiveFurtherSteps(tier, remainder, list.MaxDiscount, sum);
    if (run != nullptr) NoteNextStep(*run, list.Tiers, tier, remainder, list.MaxDiscount, sum, lines);
    // A tier that repeats its threshold leaves nothing at least; with a step of its own it may leave less than nothing.
    remainder = tier.AddConNum == 0 ? std::max(left, 0.0) : left;
    if (sum <= 0 && run != nullptr)
      run->Note(Reason::GivesNothing).Tier(&tier - list.Tiers.data()).Has(Unit::Money, 0.0);
  }
  return sum;
}

}  // namespace Corvane
