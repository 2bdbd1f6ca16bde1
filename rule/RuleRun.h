#ifndef QNCORVANE_RULE_RULERUN_H
#define QNCORVANE_RULE_RULERUN_H

#include <QString>
#include <optional>
#include <vector>

#include "base/Text.h"
#include "rule/LinePtrs.h"
#include "rule/MaxDiscount.h"
#include "rule/ProBase.h"
#include "rule/RuleOutcome.h"
#include "rule/RuleRows.h"
#include "rule/RuleType.h"
#include "sale/ProSale.h"

namespace Corvane {

/// Which of a line's two lists a row goes to.
enum class Rows { Both, Results, Apportions };

/// Whether a row tells the member type under which the rule acts.
enum class Member { Told, Untold };

/// What a rule gives on a line, worked out before anything is written.
struct Award {
  double Quantity = 0;
  double Money = 0;      ///< discount
  double NewPrice = 0;   ///< unit price that the discount leaves
  double BaseMoney = 0;  ///< the line's money that the discount was computed on
};

/// How much a row of a rule may give in all, and how much of it is gone.
struct Allowance {
  double Limit = 0;    ///< quantity; 0 means no limit
  double Applied = 0;  ///< quantity given so far
};

/// A rule's run on a sale: this rule, this sale, now. It answers what is still open to the rule, and it is the only
/// hand that lowers a line's `Total` or appends a row. It lives for one step of the rule; rule and sale must outlive
/// it.
class RuleRun {
 public:
  /// @param outcome is told what the rule decides and gives; null where nobody asks.
  RuleRun(const ProBase& rule, ProSale& sale, RuleOutcome* outcome = nullptr);

  const ProInfo& Info() const { return m_rule.Info; }
  const RuleType& Type() const { return m_type; }
  ProSale& Sale() const { return m_sale; }
  std::vector<SalePlu>& Lines() const { return m_sale.Plus; }

  /// Whether the rule's filters let it act on the sale; see ProBase::CheckBaseCondition, which tells the log.
  bool MeetsConditions() const { return m_rule.CheckBaseCondition(m_sale, m_outcome); }

  /// The same for full-amount rules, which ask first whether rules may still act on the sale.
  bool MayActOnSale() const;

  // --- Telling why ----------------------------------------------------------------------------------------------------

  /// Tells a decision on the way, for whoever asks.
  Telling Note(Reason reason) const { return Corvane::Note(m_outcome, reason); }

  /// Tells the decision that ends the rule's step.
  Telling Refuse(Reason reason) const { return Corvane::Refuse(m_outcome, reason); }

  /// Tells that the store didn't give the rule's rows. @param reason the database's words.
  void RefuseUnreadable(const QString& reason) const;

  /// Notes why nothing of the line is open to the rule, in quantity or in money.
  void NoteNothingOpen(const SalePlu& line) const;
  void NoteNoMoneyOpen(const SalePlu& line) const;

  /// Adds the rules that took quantity of the lines to a decision.
  void TellTakersOf(const LinePtrs& lines, Telling& telling) const;

  /// Where decisions go; null where nobody asks.
  RuleOutcome* Told() const { return m_outcome; }

  // --- What is open -------------------------------------------------------------------------------------------------

  /// The quantity of the line that the rule may still discount (GetCalcCount); 0 or less means nothing.
  double OpenCount(const SalePlu& line) const;

  /// The same for a rule that passes itself off as another type.
  double OpenCountAs(Text proType, const SalePlu& line) const;

  /// The money of the line still open to the rule (GetLineLeftTotal); never negative.
  double OpenMoney(const SalePlu& line) const;

  /// Whether a result of the rule is on the line.
  bool HasActedOn(const SalePlu& line) const;

  // --- Giving -------------------------------------------------------------------------------------------------------

  /// Applies one action row to one line, ApplyLineDiscount by its contract's name: takes the line's open quantity
  /// within the allowance at the price before the rule's own family and before "DZ" rules.
  /// @return the quantity taken, 0 where a price kind that nobody knows leaves a row and nothing else; nothing when the
  ///         row can give nothing: the line is untouched then.
  std::optional<double> Discount(SalePlu& line, const PluAction& action, Allowance& allowance);

  /// Lowers the line's `Total` by the award's money and records it.
  void Give(SalePlu& line, const Award& award, Rows rows = Rows::Both);

  /// Gives, onto the row that the rule already has on the line, if there is one: its quantity and money grow. The
  /// apportion row stays as it was first written.
  void GiveOrMerge(SalePlu& line, const Award& award);

  /// Appends a row of the rule, and leaves the line's `Total` to whoever asks.
  void Record(SalePlu& line, const Award& award, Rows rows = Rows::Both, Member member = Member::Told);

  /// Lowers the line's `Total` and nothing else, by money that its rows tell already: a rounding tail, or shares.
  void LowerTotal(SalePlu& line, double money);

  /// Adds money to a row on one of the sale's lines, whoever wrote it: a rounding tail.
  void AddTail(ProResult& row, double tail);

  /// Appends a row of the rule that belongs to the whole sale and to no line.
  void RecordOnSale(const Award& award, Member member);

  // --- Limit --------------------------------------------------------------------------------------------------------

  /// Enforces the rule's money limit, LimitByMaxDiscount.
  void Limit(LimitLog log = LimitLog::Announced);

  /// Enforces it in the form of the types that write no results on lines, LimitInProportion.
  void LimitProportionally();

 private:
  void Lower(SalePlu& line, double money);
  void RecordOrMerge(SalePlu& line, const Award& award);
  ProResult NewRow(const Award& award, Member member) const;

  const ProBase& m_rule;
  const RuleType& m_type;
  ProSale& m_sale;
  Text m_vipType;          ///< member type under which the rule acts, empty for none
  RuleOutcome* m_outcome;  ///< null where nobody asks
};

}  // namespace Corvane

#endif
