#include <QString>
#include <sstream>

#include "base/Numbers.h"
#include "host/ValueForm.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "rule/RuleType.h"
#include "rule/SaleFilters.h"

namespace Corvane::Host::Lint {

namespace {

constexpr Text kDaily = "DAY";

bool Is(const std::string& value, ValueForm form) {
  return !value.empty() && Fits(QString::fromStdString(value), form);
}

void CheckDates(const Rule& rule, const XmlNode& row, Flaws& flaws) {
  const std::string start = row.Value("StartDate");
  const std::string end = row.Value("EndDate");
  if (row.Find("StartDate") == nullptr) {
    flaws.Add(Codes::kMissingDate, rule.At(row), "the row has no StartDate: it never holds", "write YYYY-MM-DD");
  }
  if (end.empty()) {
    flaws.Add(Codes::kMissingDate, rule.At(row, "EndDate"), "the row has no EndDate: it never holds",
              "write YYYY-MM-DD, 2099-12-31 for no end");
  }
  if (!Is(start, ValueForm::kDate) || !Is(end, ValueForm::kDate) || start <= end) return;
  flaws.Add(Codes::kEndBeforeStart, rule.At(row, "EndDate"),
            "EndDate " + end + " lies before StartDate " + start + ": the row never holds", "change the two");
}

void CheckHours(const Rule& rule, const XmlNode& row, Flaws& flaws) {
  const std::string start = row.Value("StartTime");
  const std::string end = row.Value("EndTime");
  if (!start.empty() && end.empty()) {
    flaws.Add(Codes::kMissingEndTime, rule.At(row, "StartTime"),
              "StartTime " + Shown(start) + " without an EndTime: the row never holds", "write EndTime 23:59:59");
  }
  if (start.empty() && !end.empty()) {
    flaws.Add(Codes::kIdleEndTime, rule.At(row, "EndTime"),
              "EndTime " + Shown(end) + " without a StartTime: the row holds the whole day",
              "write StartTime 00:00:00, or leave EndTime empty");
  }
  if (!Is(start, ValueForm::kTime) || !Is(end, ValueForm::kTime) || start <= end) return;
  flaws.Add(Codes::kOverMidnight, rule.At(row, "EndTime"),
            "EndTime " + end + " lies before StartTime " + start + ": hours over midnight never hold",
            "write two rows, " + start + " to 23:59:59 and 00:00:00 to " + end);
}

void CheckWeekDays(const Rule& rule, const XmlNode& row, Flaws& flaws) {
  std::istringstream days(row.Value("WeekDays"));
  for (std::string day; std::getline(days, day, ',');) {
    const std::string number = Trimmed(day);
    if (number.size() == 1 && number[0] >= '0' && number[0] <= '6') continue;
    const std::int32_t read = ToInt32(day.c_str());
    const bool isDay = read >= 0 && read <= 6;
    flaws.Add(Codes::kBadWeekDay, rule.At(row, "WeekDays"),
              "WeekDays has " + Shown(number) + ", which is read as " + FormatI(read) +
                  (isDay ? ": another day than was meant" : ": no day"),
              "write numbers with commas, Sunday 0 to Saturday 6");
  }
  // A comma at the end is one more number, and an empty text reads as 0.
  const std::string whole = row.Value("WeekDays");
  if (whole.empty() || whole.back() != ',') return;
  flaws.Add(Codes::kBadWeekDay, rule.At(row, "WeekDays"),
            "WeekDays ends with a comma, which is read as 0 behind it: Sunday", "leave the comma out");
}

void CheckDays(const Rule& rule, const XmlNode& row, Flaws& flaws) {
  const XmlAttribute* const frequency = row.Find("Frequency");
  const bool hasDays = !row.Value("WeekDays").empty();
  if (frequency == nullptr) {
    flaws.Add(Codes::kMissingFrequency, rule.At(row), "the row has no Frequency: it never holds",
              "write DAY for every day, WEEK for those of WeekDays");
  } else if (frequency->Value == kWeekly) {
    if (hasDays) {
      CheckWeekDays(rule, row, flaws);
    } else {
      flaws.Add(Codes::kNoWeekDays, rule.At(row, "Frequency"), "Frequency WEEK without WeekDays: the row never holds",
                "write the days, Sunday 0 to Saturday 6");
    }
  } else if (!frequency->Value.empty() && !IsAmong(Trimmed(frequency->Value), {kWeekly, kDaily})) {
    flaws.Add(Codes::kUnknownFrequency, rule.At(row, "Frequency"),
              "Frequency " + Shown(frequency->Value) + " is read as every day",
              MendWord(frequency->Value, {kDaily, kWeekly}));
  } else if (hasDays) {
    flaws.Add(Codes::kIdleDays, rule.At(row, "WeekDays"),
              "WeekDays are not looked at without Frequency WEEK: every day holds",
              "write Frequency WEEK, or leave WeekDays empty");
  }
  if (row.Value("MonthDays").empty()) return;
  flaws.Add(Codes::kIdleDays, rule.At(row, "MonthDays"), "MonthDays are never looked at",
            "write a row for each span of days, and leave MonthDays empty");
}

}  // namespace

void CheckTimes(const Rule& rule, Flaws& flaws) {
  // Where time rows have no power to refuse, nothing about them matters.
  if (TypeOf(rule.Type.c_str()).Has(Fact::IgnoresTime)) return;
  const std::vector<const XmlNode*> rows = rule.Xml.RowsOf("ProTime");
  if (rows.empty()) {
    flaws.Add(Codes::kNoTime, rule.Where(), "the rule has no row in ProTime: it never applies",
              "write from when to when it holds");
  }
  for (const XmlNode* const row : rows) {
    CheckDates(rule, *row, flaws);
    CheckHours(rule, *row, flaws);
    CheckDays(rule, *row, flaws);
  }
}

}  // namespace Corvane::Host::Lint
