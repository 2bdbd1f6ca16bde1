#ifndef QNCORVANE_TESTS_SUPPORT_TILL_H
#define QNCORVANE_TESTS_SUPPORT_TILL_H

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace Corvane::Testing {

/// What a call answered.
struct Answer {
  int Code = 0;
  std::string Msg;  ///< the status text; "(untouched)" when the call left the buffer alone
  std::string Out;  ///< the result XML; "(untouched)" likewise
};

/// One element of a result XML: its attributes in order.
class Row {
 public:
  explicit Row(std::vector<std::pair<std::string, std::string>> attributes) : m_attributes(std::move(attributes)) {}
  /// The attribute's value; "(absent)" without one.
  std::string operator[](const std::string& name) const;
  const std::vector<std::pair<std::string, std::string>>& All() const { return m_attributes; }

 private:
  std::vector<std::pair<std::string, std::string>> m_attributes;
};

/// How many entries a log's bytes hold.
std::size_t EntriesIn(const std::string& log);

/// The rows of a group of a result XML ("Plu", "ProResult", "Apportion", "ProGifts", "ProCoupons"), in document order.
std::vector<Row> RowsOf(const std::string& result, const std::string& group);

/// The one row of a group whose attribute has this value; fails the test when there isn't exactly one.
Row RowWhere(const std::string& result, const std::string& group, const std::string& name, const std::string& value);

/// An offer of a result XML: the element's attributes, and its rows in document order.
struct Offer {
  Row Head;
  std::vector<Row> Rows;
};

/// The offers of a result XML, in document order.
std::vector<Offer> OffersOf(const std::string& result);

/// The lines of a result from first to last, as a receipt shows them: "1 COLA 3.00 x 10.00 = 24.00".
std::vector<std::string> LinesOf(const std::string& result);

/// The discounts of a result line by line, in the order in which the rules gave them: "1 COLA: X1 on 3.00 gives 6.00"
/// for line 1, rule X1, quantity and money. What belongs to no line stands first, as "*: ...".
std::vector<std::string> DiscountsOf(const std::string& result);

/// The shares ("Apportion") of a result in the same form.
std::vector<std::string> SharesOf(const std::string& result);

class DirectRow;

/// A till: a directory of its own as current directory, with "config.ini" and an empty SQLite store, and the engine
/// behind its exported calls. Every test starts with no rules, no sales, an empty store and no log, in the state
/// "Free".
class Till : public ::testing::Test {
 protected:
  void SetUp() override;

  /// Runs SQL statements on the store.
  static void Sql(const std::string& statements);
  /// Makes all tables that the engine reads, without rows.
  static void MakeTables();
  /// Writes rows into the table of the ordinary promotions.
  static void Put(const std::vector<DirectRow>& rows);

  static Answer Load(const std::string& type, const std::string& xml);
  static Answer Clear(const std::string& billNo);
  static Answer Calc(const std::string& key, const std::string& mode, const std::string& xml);
  static Answer ClearSales();
  static std::string State();

  /// The texts of the log's entries since the test began or the log was last taken, without their times.
  static std::vector<std::string> TakeLog();
  /// How often an entry stands in a log.
  static long Count(const std::vector<std::string>& log, const std::string& entry);
  static bool Holds(const std::vector<std::string>& log, const std::string& entry) { return Count(log, entry) > 0; }

  /// The till's directory.
  static const std::string& Directory();
};

/// The groups that open a rule everywhere and always.
inline constexpr const char* kEveryOrganisation = R"(<OrgFilter><Row OrgCode="*"/></OrgFilter>)";
inline constexpr const char* kEveryDay =
    R"(<ProTime><Row StartDate="2000-01-01" EndDate="2099-12-31" StartTime="" EndTime="" Frequency="DAY"/></ProTime>)";

/// A till whose engine nobody has called yet, for what holds only then.
class FreshTill : public Till {
 protected:
  /// Calls nothing of the engine. The current directory is an empty one inside the till's.
  void SetUp() override;

  /// Runs the body in a process of its own and fails the test when an expectation fails there. Once in a test; what
  /// stands before it in the test is run in that process too.
  static void InFreshProcess(const std::function<void()>& body);
  /// Writes "config.ini" into the current directory.
  static void WriteSettings(const std::string& dbType, const std::string& dbName);
};

/// A row of the table of the ordinary promotions ("PTXS", "PTPL", "PTOS"): what the rule `billNo` gives for goods, or
/// with `type` "CAT" or "BRD" for a category or a brand. Numbers are texts of SQL. Without a price, rate or reduction
/// nothing.
class DirectRow {
 public:
  DirectRow(std::string billNo, int serialNo, std::string code, std::string type = "PLU");
  DirectRow& Price(const std::string& price) { return Dsc("PRC", price, "0"); }     ///< the new price
  DirectRow& PercentOff(const std::string& rate) { return Dsc("RAT", "0", rate); }  ///< percent taken off
  DirectRow& MoneyOff(const std::string& amount) { return Dsc("2", amount, "0"); }  ///< money off each piece
  DirectRow& Dsc(const std::string& type, const std::string& price, const std::string& rate);
  DirectRow& SaleCount(const std::string& count);
  DirectRow& AtMost(const std::string& count);  ///< `TradeMaxCount`
  /// The statement that writes the row.
  std::string Insert() const;

 private:
  std::string m_billNo;
  int m_serialNo;
  std::string m_code;
  std::string m_type;
  std::string m_dscType;
  std::string m_price = "0";
  std::string m_rate = "0";
  std::string m_saleCount = "0";
  std::string m_atMost = "0";
};

/// The XML of a rule that applies at every organisation on every day, so that only what a test is about differs.
/// `header` are further header attributes or other values for the ones given here, e.g. `Primary="DZ"`; `groups` are
/// further groups, or "OrgFilter" and "ProTime" groups instead of the given ones when `ownFilters` is true.
std::string RuleXml(const std::string& billNo, const std::string& proType, const std::string& header = "",
                    const std::string& groups = "", bool ownFilters = false);

/// The XML of a sale of the organisation "S01": `lines` are the rows of the group "Plu", `groups` further groups.
std::string SaleXml(const std::string& lines, const std::string& groups = "", const std::string& isCalc = "0");

/// A sale line on 2026-11-21, a Saturday, at 10:00:00; `more` are further attributes, or the given ones again: of an
/// attribute that occurs twice the last value counts.
std::string LineXml(int serialNo, const std::string& pluCode, const std::string& price, const std::string& count,
                    const std::string& total, const std::string& more = "");

}  // namespace Corvane::Testing

#endif
