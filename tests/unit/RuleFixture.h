#ifndef QNCORVANE_TESTS_UNIT_RULEFIXTURE_H
#define QNCORVANE_TESTS_UNIT_RULEFIXTURE_H

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextCodec>
#include <cstddef>
#include <string>
#include <vector>

#include "base/Text.h"
#include "rule/RuleRun.h"
#include "sale/SaleRecords.h"

namespace ruletest {

using Entries = std::vector<std::string>;

/// The current directory for the life of this object, empty at first. The calculation log lands in it, in UTF-8
/// whatever the locale that the tests run in.
class LogFolder {
 public:
  LogFolder() : m_before(QDir::currentPath()), m_codecBefore(QTextCodec::codecForLocale()) {
    QDir::setCurrent(m_folder.path());
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
  }
  ~LogFolder() {
    QTextCodec::setCodecForLocale(m_codecBefore);
    QDir::setCurrent(m_before);
  }
  LogFolder(const LogFolder&) = delete;
  LogFolder& operator=(const LogFolder&) = delete;

  std::string Path(const std::string& name) const {
    return m_folder.filePath(QString::fromStdString(name)).toStdString();
  }

  /// The whole content of the log; empty without one.
  std::string Bytes() const {
    QFile file(m_folder.filePath(QStringLiteral("QnCorvane.txt")));
    if (!file.open(QIODevice::ReadOnly)) return {};
    return file.readAll().toStdString();
  }

  /// The texts of the entries, without their time stamps.
  Entries Texts() const {
    constexpr std::size_t kStampAndBlanks = 21;
    const std::string bytes = Bytes();
    Entries texts;
    std::size_t begin = 0;
    for (;;) {
      const std::size_t end = bytes.find("\n\r", begin);
      if (end == std::string::npos) break;
      EXPECT_GE(end - begin, kStampAndBlanks) << "an entry without time stamp";
      texts.push_back(bytes.substr(begin, end - begin).erase(0, kStampAndBlanks));
      begin = end + 2;
    }
    EXPECT_EQ(begin, bytes.size()) << "bytes behind the last entry";
    return texts;
  }

 private:
  QTemporaryDir m_folder;
  QString m_before;
  QTextCodec* m_codecBefore;
};

/// A test whose calculation log lies in a folder of its own.
class WithLog : public testing::Test {
 protected:
  Entries Logged() const { return m_log.Texts(); }

  LogFolder m_log;
};

/// A line that was just read: `FinalPrice` is the price, `Total` is `price` times `count`.
inline Corvane::SalePlu Line(Corvane::Text pluCode, double price, double count) {
  Corvane::SalePlu line;
  line.PluCode = pluCode;
  line.Price = price;
  line.FinalPrice = price;
  line.PluCount = count;
  line.Total = price * count;
  return line;
}

/// The header of a rule without any limit.
inline Corvane::ProInfo Rule(Corvane::Text billNo, Corvane::Text proType, Corvane::Text primary) {
  Corvane::ProInfo rule;
  rule.BillNo = billNo;
  rule.ProType = proType;
  rule.Primary = primary;
  return rule;
}

/// What another rule left on a line.
inline Corvane::ProResult Row(Corvane::Text billNo, Corvane::Text proType, Corvane::Text primary, double disNum,
                              double disMoney = 0, double baseMoney = 0) {
  Corvane::ProResult row;
  row.ProBillNo = billNo;
  row.Primary = primary;
  row.ProType = proType;
  row.DisNum = disNum;
  row.DisMoney = disMoney;
  row.BaseMoney = baseMoney;
  row.YhMoney = disMoney;
  return row;
}

/// A rule on a sale of its own. The rule acts for a member when it is given a member type.
class RuleOnSale {
 public:
  RuleOnSale(const Corvane::ProInfo& info, std::vector<Corvane::SalePlu>& lines, Corvane::Text vipType = "")
      : m_lines(lines) {
    m_rule.Info = info;
    m_sale.Plus.swap(m_lines);
    if (Corvane::IsEmpty(vipType)) return;
    m_rule.Vips.emplace_back();
    m_sale.Vips.emplace_back();
    m_sale.Vips.back().VipType = vipType;
  }
  ~RuleOnSale() { m_sale.Plus.swap(m_lines); }
  RuleOnSale(const RuleOnSale&) = delete;
  RuleOnSale& operator=(const RuleOnSale&) = delete;

  Corvane::RuleRun Run() { return {m_rule, m_sale}; }

 private:
  std::vector<Corvane::SalePlu>& m_lines;  ///< given back with what became of them
  Corvane::ProBase m_rule;
  Corvane::ProSale m_sale;
};

}  // namespace ruletest

#endif
