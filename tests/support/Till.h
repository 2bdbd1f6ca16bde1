#ifndef QNCORVANE_TESTS_SUPPORT_TILL_H
#define QNCORVANE_TESTS_SUPPORT_TILL_H

#include <gtest/gtest.h>

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

/// The XML of a rule that applies at every organisation on every day, so that only what a test is about differs.
/// `header` are further header attributes or other values for the ones given here, e.g. `Primary="DZ"`; `groups` are
/// further groups, or "OrgFilter" and "ProTime" groups instead of the given ones when `ownFilters` is true.
std::string RuleXml(const std::string& billNo, const std::string& proType, const std::string& header = "",
                    const std::string& groups = "", bool ownFilters = false);

/// The XML of a sale of the organisation "S01": `lines` are the rows of the group "Plu", `groups` further groups.
std::string SaleXml(const std::string& lines, const std::string& groups = "", const std::string& isCalc = "0");

/// A sale line on 2026-11-21 at 10:00:00; `more` are further attributes.
std::string LineXml(int serialNo, const std::string& pluCode, const std::string& price, const std::string& count,
                    const std::string& total, const std::string& more = "");

}  // namespace Corvane::Testing

#endif
