#ifndef QNCORVANE_RULE_LINESELECTION_H
#define QNCORVANE_RULE_LINESELECTION_H

#include <vector>

#include "base/Text.h"
#include "rule/ProInfo.h"
#include "sale/SaleRecords.h"

namespace Corvane {

/// Pointers to lines of a sale, valid while nothing is added to the sale's list of lines.
using LinePtrs = std::vector<SalePlu*>;

/// Pointers to the heads of detail rows.
using RowPtrs = std::vector<const ProDetailKey*>;

/// Pointers to all lines, in order.
LinePtrs PointersTo(std::vector<SalePlu>& lines);

/// Whether the line's class pairs hold exactly this class word and code.
bool LineHasClass(const SalePlu& line, Text classWord, Text code);

/// Whether a row names the line: a "PLU" row by the goods code, any other row by a class pair of the line.
bool RowNamesLine(const ProDetailKey& row, const SalePlu& line);

/// Whether a row of the type "PLU" names goods; a row of any other type names a class.
inline bool NamesGoods(const ProDetailKey& row) { return Same(row.PluType, "PLU"); }

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

/// The lines that no row names. For the word "PLU" a row names a line by its goods code; for any other word by a class
/// pair of the line. Without rows all lines pass.
LinePtrs SelectOutsideLines(const RowPtrs& rows, const LinePtrs& lines, Text word);

/// The lines that a rule of full-amount kind covers, and what they bring.
struct RuleLines {
  LinePtrs Lines;
  double Quantity = 0;  ///< quantity still open to the rule, over all lines that the rows take
  double Money = 0;     ///< money still open to the rule, over all lines that the rows take
};

/// Finds the lines that a rule's rows take: not named by a "NOT" row, named by an "IN" row, and without a result of
/// this rule. A line counts into both sums as soon as it is taken; it is listed once the money, summed from the first
/// taken line on, is above 0.
RuleLines SelectRuleLines(const ProInfo& rule, const SplitRows& rows, std::vector<SalePlu>& lines);

/// The same over some of a sale's lines. @param allLines the sale's lines, for the rule's limit by quantity.
RuleLines SelectRuleLinePtrs(const ProInfo& rule, const SplitRows& rows, const LinePtrs& lines,
                             const std::vector<SalePlu>& allLines);

/// The line's first result row of the rule, or null.
const ProResult* FindResult(const SalePlu& line, Text billNo);
ProResult* FindResult(SalePlu& line, Text billNo);

/// The first row of the rule in a list, or null.
ProResult* FindRow(std::vector<ProResult>& rows, Text billNo);

}  // namespace Corvane

#endif
