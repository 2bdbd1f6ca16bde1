#include "host/ValueForm.h"

#include <QDate>
#include <QTime>
#include <algorithm>
#include <cmath>

namespace Corvane::Host {

namespace {

/// Qt reads words for infinity and blanks, too.
bool IsNumber(const QString& value) {
  const auto isPart = [](QChar letter) { return QStringLiteral("0123456789+-.eE").contains(letter); };
  bool isRead = false;
  const double number = value.toDouble(&isRead);
  return isRead && std::isfinite(number) && std::all_of(value.begin(), value.end(), isPart);
}

bool IsInteger(const QString& value) {
  bool isRead = false;
  static_cast<void>(value.toInt(&isRead));
  return isRead && IsNumber(value);
}

bool IsDate(const QString& value) { return QDate::fromString(value, QStringLiteral("yyyy-MM-dd")).isValid(); }

bool IsTime(const QString& value) { return QTime::fromString(value, QStringLiteral("HH:mm:ss")).isValid(); }

bool IsMoment(const QString& value) {
  constexpr int kDateLength = 10;
  const bool hasTime = value.size() > kDateLength;
  return IsDate(value.left(kDateLength)) &&
         (!hasTime || (value.at(kDateLength) == QLatin1Char(' ') && IsTime(value.mid(kDateLength + 1))));
}

}  // namespace

bool Fits(const QString& value, ValueForm form) {
  if (value.isEmpty()) return true;
  switch (form) {
    case ValueForm::kNumber:
      return IsNumber(value);
    case ValueForm::kInteger:
      return IsInteger(value);
    case ValueForm::kDate:
      return IsDate(value);
    case ValueForm::kMoment:
      return IsMoment(value);
    case ValueForm::kTime:
      return IsTime(value);
  }
  return false;
}

const char* WordsOf(ValueForm form) {
  switch (form) {
    case ValueForm::kNumber:
      return "a number, with a point as its decimal sign";
    case ValueForm::kInteger:
      return "a whole number of 32 bits";
    case ValueForm::kDate:
      return "YYYY-MM-DD";
    case ValueForm::kMoment:
      return "YYYY-MM-DD, with or without HH:MM:SS behind a blank";
    case ValueForm::kTime:
      return "HH:MM:SS";
  }
  return "";
}

}  // namespace Corvane::Host
