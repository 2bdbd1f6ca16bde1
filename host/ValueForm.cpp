#include "host/ValueForm.h"

#include <QDate>
#include <QTime>
#include <algorithm>
#include <cmath>

namespace Corvane::Host {

namespace {

/// Qt reads words for infinity and blanks, too.
bool IsNumber(const QString& value) {
  const QLatin1String parts("0123456789+-.eE");
  const auto isPart = [&](QChar letter) { return parts.contains(letter); };
  bool isRead = false;
  const double number = value.toDouble(&isRead);
  return isRead && std::isfinite(number) && std::all_of(value.begin(), value.end(), isPart);
}

bool IsInteger(const QString& value) {
  bool isRead = false;
  static_cast<void>(value.toInt(&isRead));
  return isRead && IsNumber(value);
}

/// @param form the text with 0 in the place of each digit.
bool HasForm(const QString& value, QLatin1String form) {
  const auto fits = [](QChar letter, QChar wanted) {
    return wanted == QLatin1Char('0') ? letter >= QLatin1Char('0') && letter <= QLatin1Char('9') : letter == wanted;
  };
  if (value.size() != form.size()) return false;
  for (int place = 0; place < value.size(); ++place) {
    if (!fits(value.at(place), form.at(place))) return false;
  }
  return true;
}

int DigitsAt(const QString& value, int place, int length) { return value.midRef(place, length).toInt(); }

/// Digit by digit: Qt's own reader of formats would be most of what a sale costs.
bool IsDate(const QString& value) {
  return HasForm(value, QLatin1String("0000-00-00")) &&
         QDate::isValid(DigitsAt(value, 0, 4), DigitsAt(value, 5, 2), DigitsAt(value, 8, 2));
}

bool IsTime(const QString& value) {
  return HasForm(value, QLatin1String("00:00:00")) &&
         QTime::isValid(DigitsAt(value, 0, 2), DigitsAt(value, 3, 2), DigitsAt(value, 6, 2));
}

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
