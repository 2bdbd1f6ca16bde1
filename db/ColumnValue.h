#ifndef QNCORVANE_DB_COLUMNVALUE_H
#define QNCORVANE_DB_COLUMNVALUE_H

#include <QVariant>
#include <cstdint>

namespace Corvane {

// A table column's value in the form that a field has. NULL reads as 0 or false; a text that is no number reads as 0.

/// Whether the database holds a text there, of signs or of bytes, rather than a number.
bool IsText(const QVariant& value);

/// A value that is not finite reads as 0.
double ColumnDouble(const QVariant& value);

/// A whole number outside 32 bits narrows to its lowest 32, so that different numbers stay different; a number with
/// decimals is cut, and is the smallest integer when out of range.
std::int32_t ColumnInteger(const QVariant& value);

/// False are 0, the empty text and, in any letter case, "N", "NO", "F" and "FALSE", blanks around them left aside; and
/// a bit that is not set, which some drivers hand over as a byte of 0.
bool ColumnBoolean(const QVariant& value);

}  // namespace Corvane

#endif
