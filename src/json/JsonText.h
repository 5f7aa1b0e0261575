#pragma once

#include <cstddef>
#include <string>

namespace loomstat {

/// Appends the value with the given number of decimals, less trailing zeros and a trailing point. A text of
/// at most precision + 1 characters stays as it is, which keeps "nan" and "inf" whole. A precision of 0
/// leaves zeros of the integer part to the trimming: 120 becomes "12".
void appendTrimmed(std::string& out, double value, int precision);

/// Appends the text between double quotes. The seven bytes 0x08, 0x09, 0x0a, 0x0c, 0x0d, the double quote and
/// the backslash become a backslash and a letter; all others pass unchanged, NUL and bytes above 0x7f
/// included.
void appendQuoted(std::string& out, const char* text, std::size_t length);

}  // namespace loomstat
