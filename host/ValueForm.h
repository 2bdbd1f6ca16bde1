#ifndef QNCORVANE_HOST_VALUEFORM_H
#define QNCORVANE_HOST_VALUEFORM_H

#include <QString>

namespace Corvane::Host {

/// What a value stands for.
enum class ValueForm {
  kNumber,   ///< decimal, with a point, finite
  kInteger,  ///< whole, of 32 bits
  kDate,     ///< YYYY-MM-DD, a day of the calendar
  kMoment,   ///< a date, and a time behind a blank or none
  kTime      ///< HH:MM:SS
};

/// @return whether a value can be what it stands for; an empty one can, as it counts as absent.
bool Fits(const QString& value, ValueForm form);

/// @return the form in words, to stand behind "is not".
const char* WordsOf(ValueForm form);

}  // namespace Corvane::Host

#endif
