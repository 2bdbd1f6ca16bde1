#ifndef QNCORVANE_TESTS_SCENARIOS_SCENARIO_WORDS_H
#define QNCORVANE_TESTS_SCENARIOS_SCENARIO_WORDS_H

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/scenarios/ScenarioFile.h"

namespace Corvane::Testing {

/// Names and values of a row, in the order in which they are written.
using Attributes = std::vector<std::pair<std::string, std::string>>;

/// What a shop's word at the head of a column stands for.
struct Word {
  std::string Column;   ///< the name that a cell below it fills
  std::string Implied;  ///< a name that such a cell fills too; empty for none
  std::string Value;    ///< with what
};

/// The words of one kind of table. No other column may stand in it.
using Words = std::map<std::string, Word>;

/// Where the rows below a sentence of a rule go.
struct RowsPlace {
  enum class Kind {
    Store,      ///< rows of a table of the store
    Group,      ///< a group of the rule's XML
    ListHead,   ///< attributes of a list in the rule's XML
    ListGroup,  ///< a group of such a list
    ListEntry   ///< an element of such a list
  };
  Kind Where = Kind::Store;
  std::string Name;  ///< the table, the group or the element
  Words Columns;
};

/// The place of the rows below "And ..." of a rule; null for a sentence that isn't about rows.
const RowsPlace* RowsPlaceOf(const std::string& sentence);

/// The words of a sale's group: "Vip", "PayMode" or "Coupon".
const Words& SaleWords(const std::string& group);

/// A cell's value: two quotes stand for the empty text.
std::string ValueOf(const std::string& cell);

/// A row by its words; an empty cell says nothing.
/// @throws ScenarioError for a column that the words don't have, and for two cells that fill the same name.
Attributes RowOf(const Step& step, const Cells& row, const Words& words);

bool HasName(const Attributes& attributes, const std::string& name);

}  // namespace Corvane::Testing

#endif
