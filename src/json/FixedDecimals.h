#pragma once

#include <cstddef>

/// Numbers with a fixed count of decimals, digit for digit as printf's "%.*f" has them: rounded to nearest,
/// exact ties to even. Infinity and not-a-number become the C library's words for them.

inline constexpr int kMostFixedDecimals = 9;
/// The room for the longest text: a sign, 309 digits, the point and the decimals.
inline constexpr std::size_t kFixedRoom = 1 + 309 + 1 + kMostFixedDecimals + 1;

/// Writes a value with 1 to 9 decimals and answers the end of its text, which has no NUL.
char* writeFixed(char* text, double value, int decimals);
