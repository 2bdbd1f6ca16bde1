#ifndef QNCORVANE_TESTS_FUZZ_CHECK_H
#define QNCORVANE_TESTS_FUZZ_CHECK_H

#include <string>
#include <string_view>

namespace Corvane::Fuzz {

/// Ends the process like a crash, so that the fuzzer keeps the input, when `holds` is false.
///
/// @param what   what should have held.
/// @param detail what was there instead.
void Require(bool holds, const char* what, std::string_view detail = {});

/// Whether a text is well-formed UTF-8: no surrogates, nothing overlong, nothing beyond the last code point.
bool IsUtf8(std::string_view text);

/// Requires of a result XML that it parses, and that every attribute of a number holds a finite one in plain digits.
///
/// @param isUtf8 whether all that went in was UTF-8: then the result is, too.
void RequireResult(const std::string& result, bool isUtf8);

}  // namespace Corvane::Fuzz

#endif
