#pragma once

#include <cstddef>

/// Numbers with a fixed count of decimals, digit for digit as printf's "%.*f" has them: rounded to nearest,
/// exact ties to even. Infinity and NaN are written as the C library does.

/// The number of decimals of a chart's point, and of all other numbers in a document.
inline constexpr int kPointDecimals = 6;
inline constexpr int kDocumentDecimals = 9;

/// Size of the longest text: a sign, 309 digits, the point, the decimals and printf's NUL.
inline constexpr std::size_t kFixedRoom = 1 + 309 + 1 + kDocumentDecimals + 1;

/// Writes a value and returns the end of its text, without a NUL. `text` needs kFixedRoom bytes, all of which
/// may be overwritten. Instantiated for the two numbers of decimals above.
template <int Decimals>
char* writeFixed(char* text, double value);
