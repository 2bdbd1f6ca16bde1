#ifndef QNCORVANE_BASE_NUMBERS_H
#define QNCORVANE_BASE_NUMBERS_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/Text.h"

namespace Corvane {

// Every conversion, rounding and division of the engine. All of them give a defined result for every input and none
// depends on the process's locale: the decimal sign is the point. What comes out of here is a number: what is not
// finite counts as 0 on its way in, in a quotient and on its way out.

// --- Text to number -------------------------------------------------------------------------------------------------

/// The number at the start of the text, behind white space; 0 when there is none. Reads what the C library's atof
/// reads in the "C" locale; a number that is not finite ("inf", "nan", "1e999") reads as 0.
double ToDouble(Text text);

/// The decimal integer at the start of the text, behind white space; 0 when there is none. A number outside 32 bits
/// narrows, as the C library's atoi does here: modulo 2^32, so that serial numbers which differ stay different.
std::int32_t ToInt32(Text text);

// --- Number to text. What is not finite prints as 0 -----------------------------------------------------------------

/// "%.2f": halves to even on the exact value, 0.125 gives "0.12". The form of money and quantities in the result XML.
std::string FormatF2(double value);

/// "%.4f". The form of `FinalPrice` in the result XML.
std::string FormatF4(double value);

/// "%f". The form of the coupon values.
std::string FormatF6(double value);

/// "%d".
std::string FormatI(std::int32_t value);

/// The first two forms and the last, put to `to`, which has room for kNumberRoom; no zero closes them.
/// @return the end of what was put there.
char* PutF2(double value, char* to);
char* PutF4(double value, char* to);
char* PutI(std::int32_t value, char* to);

/// Room for the largest double's 309 digits, sign, point and decimals.
constexpr std::size_t kNumberRoom = 330;

/// The number format 'g' with six significant digits: the form of numbers in the calculation log.
std::string FormatG6(double value);

// --- Rounding -------------------------------------------------------------------------------------------------------

/// To two decimals through the text form of the string class: halves away from zero on the exact value, 0.125 gives
/// 0.13. Not the same as FormatF2, and the two are never exchanged.
double RoundMoney(double value);

/// To two decimals through "%.2f" and back: halves to even on the exact value, 0.125 gives 0.12.
double RoundThroughF2(double value);

/// Whether a receipt would show "0.00" for the value: RoundMoney's text form is compared, so -0.001, which prints as
/// "-0.00", is not zero.
bool PrintsAsZero(double value);

/// Whether a receipt would show "1.00" for the value.
bool PrintsAsOne(double value);

/// To cents, half a cent up and then cut toward zero: trunc((x * 1000 + 5) / 10) / 100. Does not wrap: prices in
/// currencies of small units run into the millions.
double CutToCents(double value);

/// The smallest whole number at or above the value, taken in single precision: 16777217 gives 16777216.
double CeilSingle(double value);

/// A share of money in cents: CeilSingle(x * 100 - 0.5) / 100.
double CeilToCents(double value);

// --- Dividing and comparing -----------------------------------------------------------------------------------------

/// Below this, what is left of a quantity or a price is noise of the arithmetic and neither quantity nor money.
constexpr double kNoise = 1e-9;

/// The value, or exactly 0 when it is only noise.
double WithoutNoise(double value);

/// Whether a new price or rate is no gain on the price `base`: it reaches it, give or take the noise.
inline bool ReachesPrice(double price, double base) { return price >= base - kNoise; }

/// dividend / divisor; 0 when the divisor is 0 or only noise. Every division by what a host or a table brought goes
/// through here: a voided line has a quantity of 0, lines and their returns sum to 0 or to a hair beside it, and no
/// receipt may show what is no number.
double Quotient(double dividend, double divisor);

// --- Conversions that C++ leaves undefined out of range --------------------------------------------------------------

/// Cut toward zero into 32 bits. Out of range and NaN give the smallest integer.
std::int32_t TruncToInt32(double value);

/// Into single precision; a value out of its range becomes infinite.
float ToSingle(double value);

/// left / right in whole numbers. A divisor of 0 gives 0.
std::int32_t DivideInt32(std::int32_t left, std::int32_t right);

}  // namespace Corvane

#endif
