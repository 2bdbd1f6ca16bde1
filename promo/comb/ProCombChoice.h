#ifndef QNCORVANE_PROMO_COMB_PROCOMBCHOICE_H
#define QNCORVANE_PROMO_COMB_PROCOMBCHOICE_H

#include <cstdint>
#include <vector>

#include "db/QnPosDBPro.h"
#include "promo/comb/CombDetail.h"
#include "rule/LineSelection.h"
#include "rule/ProBase.h"
#include "rule/RuleRun.h"

namespace Corvane {

/// An article of a slot, from `tProPrjCombPluSet`. Only goods codes take part.
struct CombChoiceRow : ProDetailKey {
  Text ProActCode = nullptr;  ///< the slot it belongs to
  double SaleCount = 0;       ///< pieces of this article that fill one menu's slot
  double DscPrice = 0;        ///< unit price within the menu; may be lowered for the rest of a calculation
};

/// Whether a menu needs a slot.
enum class SlotKind { Mandatory, Optional };

/// A slot of the menu, from `tProPrjCombProAct`.
struct CombChoiceSlot {
  std::vector<CombChoiceRow> Rows;
  Text ProActCode = nullptr;  ///< the slot's key
  Text ProActname = nullptr;  ///< spelled so in the table
  bool IsRequired = false;    ///< a menu needs this slot

  SlotKind Kind() const { return IsRequired ? SlotKind::Mandatory : SlotKind::Optional; }
};

/// "ZHZX", the set menu with a choice: slots, mandatory or optional, each offering several articles at a set price. The
/// mandatory slots settle the number of menus; then every slot is served up to that number, mandatory slots first, the
/// dearest article of a slot first. The menu's price is not reconciled: each line's discount is rounded on its own.
/// Packages take no part.
class ProCombChoice : public ProBase {
 public:
  /// @param db copied; all copies share one connection.
  explicit ProCombChoice(const QnPosDBPro& db) : m_db(db) {}

  void InitRule(Text xml);

  void CalcRule(RuleRun& run);

 private:
  void LoadRuleDetail(const RuleRun& run);
  void PutIntoSlot(const CombChoiceRow& row);

  std::int32_t GetChoiceSets(const RuleRun& run, LinePtrs& matched) const;
  std::int32_t GetSlotSets(const RuleRun& run, const CombChoiceSlot& slot, const LinePtrs& candidates,
                           LinePtrs& matched) const;

  void ServeSlots(RuleRun& run, SlotKind kind, std::int32_t sets, const LinePtrs& matched);
  void DiscountChoiceRow(RuleRun& run, CombChoiceRow& row, const LinePtrs& matched, std::int64_t& remaining) const;
  std::int32_t MenusOfRow(const RuleRun& run, const CombChoiceRow& row, const LinePtrs& matched,
                          std::int64_t remaining) const;

  std::vector<CombChoiceSlot> m_slots;
  QnPosDBPro m_db;
};

/// Orders a slot's rows ascending by the price of one menu's share; a walk from the last row serves the dearest first.
void SortSlotRows(CombChoiceSlot& slot);

}  // namespace Corvane

#endif
