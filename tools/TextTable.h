#ifndef TOOLS_TEXTTABLE_H
#define TOOLS_TEXTTABLE_H

#include <cstddef>
#include <string>
#include <vector>

namespace Corvane::Tool {

/// @return how many columns a UTF-8 text takes on a terminal; an ideograph takes two.
std::size_t DisplayWidth(const std::string& text);

/// @return `text` cut or filled with blanks to `width` columns, at the left of its place.
std::string AtLeft(const std::string& text, std::size_t width);

/// @return `text` behind so many blanks that both take `width` columns; a longer text stays whole.
std::string AtRight(const std::string& text, std::size_t width);

/// @return `text` in lines of at most `width` columns, broken at blanks and beside ideographs; at least one line.
std::vector<std::string> Wrapped(const std::string& text, std::size_t width);

/// @return the number with two decimals; a sum that rounds to nothing is "0.00", without a sign.
std::string Money(double number);

/// @return the number with two decimals, or with three where it has a third: goods are weighed in grams.
std::string Quantity(double number);

}  // namespace Corvane::Tool

#endif
