#include "db/ColumnValue.h"

#include <QByteArray>
#include <QString>
#include <algorithm>
#include <cmath>
#include <iterator>

#include "base/Numbers.h"

namespace Corvane {
namespace {

/// A sign and digits, nothing else.
bool IsWholeNumber(const QByteArray& text) {
  const bool hasSign = text.startsWith('-') || text.startsWith('+');
  const auto* const digits = text.begin() + (hasSign ? 1 : 0);
  return digits != text.end() && std::all_of(digits, text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// The lowest 32 bits.
std::int32_t Narrowed(quint64 number) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(number)); }

}  // namespace

bool IsText(const QVariant& value) { return value.type() == QVariant::String || value.type() == QVariant::ByteArray; }

double ColumnDouble(const QVariant& value) {
  const double number = value.toDouble();
  return std::isfinite(number) ? number : 0;
}

std::int32_t ColumnInteger(const QVariant& value) {
  if (value.isNull()) return 0;
  if (value.type() == QVariant::Double) return TruncToInt32(value.toDouble());
  if (!IsText(value)) return Narrowed(value.toULongLong());
  const QByteArray text = value.toString().toUtf8().trimmed();
  return IsWholeNumber(text) ? ToInt32(text.constData()) : 0;
}

bool ColumnBoolean(const QVariant& value) {
  if (!IsText(value)) return value.toBool();
  const QByteArray bytes = value.toString().toUtf8();
  if (std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == '\0'; })) return false;
  const QByteArray text = bytes.trimmed();
  static constexpr Text kFalse[] = {"", "N", "NO", "F", "FALSE"};
  if (std::any_of(std::begin(kFalse), std::end(kFalse),
                  [&](Text word) { return SameIgnoringCase(word, text.constData()); })) {
    return false;
  }
  bool isNumber = false;
  const double number = text.toDouble(&isNumber);
  return !isNumber || number != 0;
}

}  // namespace Corvane
