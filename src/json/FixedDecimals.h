#pragma once

#include <cstddef>

/// Numbers with a fixed count of decimals, digit for digit as printf's "%.*f" has them: rounded to nearest,
/// exact ties to even. Infinity and not-a-number become the C library's words for them.

/// The decimals of a chart's point and of all other numbers in a document.
inline constexpr int kPointDecimals = 6;
inline constexpr int kDocumentDecimals = 9;

/// The room for the longest text: a sign, 309 digits, the point, the decimals and printf's NUL.
inline constexpr std::size_t kFixedRoom = 1 + 309 + 1 + kDocumentDecimals + 1;

/// Writes a value and returns the end of its text, which has no NUL; the rest of the room is scratch. There
/// are versions for the two counts above.
template <int Decimals>
char* writeFixed(char* text, double value);
