#ifndef QNCORVANE_TESTS_SCENARIOS_RESULT_TABLES_H
#define QNCORVANE_TESTS_SCENARIOS_RESULT_TABLES_H

#include <string>
#include <vector>

#include "tests/scenarios/ScenarioFile.h"

namespace Corvane::Testing {

/// The groups of a result XML as the rows of a "Then" table, in the order in which the engine holds them (a result has
/// them from the last to the first). A cell is empty where the attribute is absent; two quotes are the empty text.
/// All throw ScenarioError for a column of `told` that the group doesn't have.
std::vector<Cells> LinesOf(const std::string& result, const Step& told);
/// Lines first, in the sale's order; then what belongs to the whole sale, with "*" as its line.
std::vector<Cells> DiscountsOf(const std::string& result, const Step& told);
std::vector<Cells> ApportionsOf(const std::string& result, const Step& told);
/// One row for each row of an offer, with the offer's own values in each; one for an offer without rows.
std::vector<Cells> OfferRowsOf(const std::string& result, const Step& told);
std::vector<Cells> CouponsOf(const std::string& result, const Step& told);

}  // namespace Corvane::Testing

#endif
