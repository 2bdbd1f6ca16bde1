#ifndef QNCORVANE_RULE_LINESELECTION_H
#define QNCORVANE_RULE_LINESELECTION_H

#include <vector>

#include "base/Text.h"
#include "rule/LinePtrs.h"
#include "rule/RuleRun.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// Pointers to the heads of detail rows.
using RowPtrs = std::vector<const ProDetailKey*>;

/// Pointers to all lines, in order.
LinePtrs PointersTo(std::vector<SalePlu>& lines);

/// Whether the line's class pairs hold exactly this class word and code.
bool LineHasClass(const SalePlu& line, Text classWord, Text code);

/// Whether a row names the line: a "PLU" row by the goods code, any other row by a class pair of the line.
bool RowNamesLine(const ProDetailKey& row, const SalePlu& line);

/// Whether a row of the type "PLU" names goods; a row of any other type names a class.
inline bool NamesGoods(const ProDetailKey& row) { return Same(row.PluType, GoodsKind::kGoods); }

/// Detail rows by what they name and whether they include it, each list in the order of the rows. A row whose `Contain`
/// is neither "IN" nor "NOT" is in none.
struct SplitRows {
  RowPtrs PluIn;
  RowPtrs PluNot;
  RowPtrs ClassIn;
  RowPtrs ClassNot;

  template <class Row>
  explicit SplitRows(const std::vector<Row>& rows) {
    for (const Row& row : rows) Add(row);
  }

 private:
  void Add(const ProDetailKey& row);
};

/// The lines that are one package or no package at all: `PackCnt` within 0.00001 of 1 or of 0.
LinePtrs SelectSingleLines(std::vector<SalePlu>& lines);

/// The same of the rule's sale; notes the packages.
LinePtrs SelectSingleLines(const RuleRun& run);

/// Notes the lines that "NOT" rows have taken out.
void NoteExcluded(const RuleRun& run, const LinePtrs& before, const LinePtrs& behind);

/// How rows name lines: by their goods codes, or by class pairs of the lines.
enum class RowsBy { Goods, Class };

/// The lines that no row names. Without rows all lines pass.
LinePtrs SelectOutsideLines(const RowPtrs& rows, const LinePtrs& lines, RowsBy by);

/// The lines that a rule of full-amount kind covers, and what they bring.
struct RuleLines {
  LinePtrs Lines;
  double Quantity = 0;  ///< quantity still open to the rule, over all lines that the rows take
  double Money = 0;     ///< money still open to the rule, over all lines that the rows take
};

/// Finds the lines that a rule's rows take: not named by a "NOT" row, named by an "IN" row, and without a result of
/// this rule. A line counts into both sums as soon as it is taken; it is listed once the money, summed from the first
/// taken line on, is above 0.
RuleLines SelectRuleLines(const RuleRun& run, const SplitRows& rows);

/// The same over some of the sale's lines.
RuleLines SelectRuleLinePtrs(const RuleRun& run, const SplitRows& rows, const LinePtrs& lines);

}  // namespace Corvane

#endif
