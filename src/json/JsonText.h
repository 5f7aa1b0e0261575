#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace loomstat {

/// Returns a number's text without trailing zeros and without a trailing point. A text of at most precision +
/// 1 characters is returned unchanged, such as "nan" and "inf". With a precision of 0 zeros of the integer
/// part are trimmed too: 120 becomes "12".
std::string_view trimmed(std::string_view number, int precision);

/// Returns the value with `precision` decimals, trimmed.
std::string trimmedDecimals(double value, int precision);

/// Returns whether a number is so large that it is written with an exponent.
inline bool hasExponent(double value) {
  return value > 1e16 || value < -1e16;
}

/// Writes a number of the document: up to kDocumentDecimals decimals without trailing zeros, or an exponent.
/// Infinity and NaN are written as the C library does. Returns the end of the text, which needs kFixedRoom
/// bytes, all of which may be overwritten.
char* writeDocumentNumber(char* text, double value);

/// Appends the text between double quotes. The seven bytes 0x08, 0x09, 0x0a, 0x0c, 0x0d, the double quote and
/// the backslash become a backslash and a letter; all others are copied unchanged, including NUL and bytes
/// above 0x7f.
void appendQuoted(std::string& out, const char* text, std::size_t length);

}  // namespace loomstat
