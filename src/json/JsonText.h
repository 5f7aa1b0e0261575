#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace loomstat {

/// A number's text less trailing zeros of its decimals and a trailing point. A text of at most precision + 1
/// characters stays as it is, which keeps "nan" and "inf" whole. A precision of 0 leaves zeros of the integer
/// part to the trimming: 120 becomes "12".
std::string_view trimmed(std::string_view number, int precision);

/// A value with that many decimals, trimmed.
std::string trimmedDecimals(double value, int precision);

/// Appends the text between double quotes. The seven bytes 0x08, 0x09, 0x0a, 0x0c, 0x0d, the double quote and
/// the backslash become a backslash and a letter; all others pass unchanged, NUL and bytes above 0x7f
/// included.
void appendQuoted(std::string& out, const char* text, std::size_t length);

}  // namespace loomstat
