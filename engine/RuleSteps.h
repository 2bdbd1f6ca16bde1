#ifndef QNCORVANE_ENGINE_RULESTEPS_H
#define QNCORVANE_ENGINE_RULESTEPS_H

#include <cstddef>
#include <vector>

#include "promo/AnyRule.h"
#include "sale/ProSale.h"

namespace Corvane {

/// Copies of lines that a rule's step leaves for itself; empty before and after each step.
using Scratch = std::vector<SalePlu>;

/// A rule's step. A rule whose class doesn't have it does nothing.
using RuleStep = void (*)(AnyRule& rule, ProSale& sale, Scratch& scratch);

/// Which step answers to a type word. The driver goes by the rule's `ProType`, the class by the word under which the
/// rule was loaded; where the two don't fit, nothing happens.
struct TypeStep {
  Text ProType;
  RuleStep Run;
};

/// A set of types: a constant table.
class TypeSteps {
 public:
  template <std::size_t Size>
  constexpr explicit TypeSteps(const TypeStep (&table)[Size]) : m_begin(table), m_end(table + Size) {}
  const TypeStep* begin() const { return m_begin; }
  const TypeStep* end() const { return m_end; }

 private:
  const TypeStep* m_begin;
  const TypeStep* m_end;
};

TypeSteps OrdinarySteps();     ///< "PTXS", "PTPL", "PTOS"
TypeSteps CombinationSteps();  ///< "ZHZY", "ZHGD", "ZHTJ", "ZHZX"
TypeSteps FullAmountSteps();   ///< "MZMJ", "MZZQ", "MZDP", "MZZM", "MZZP", "MZHG"
TypeSteps PaySteps();          ///< "MZZF"

/// @return null for a type outside the set.
RuleStep FindStep(const TypeSteps& steps, Text proType);

/// The single-line form of "PTXS".
void RunOnLine(AnyRule& rule, ProSale& sale, SalePlu& line, Scratch& scratch);

/// The use of coupons. There is no test of the type: only rules of the class that takes coupons have this step.
void UseCoupons(AnyRule& rule, ProSale& sale);

}  // namespace Corvane

#endif
