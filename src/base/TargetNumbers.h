#pragma once

/// Number conversions with the results of the 32-bit target, whatever machine this build runs on.

/// strtol in base 10 with a 32-bit long: accepts leading white space and a sign; a number outside the range
/// becomes the nearest bound. Sets *end, if not null, to the first character that is not part of the number.
int targetStrtol(const char* text, const char** end = nullptr);

/// Truncates towards zero. A value outside the range of the result becomes the nearest bound and a NaN
/// becomes 0, as in the target's conversion.
unsigned long long truncateToUnsigned64(double value);

/// The same for a signed result.
long long truncateToSigned64(double value);

/// Returns `result`, the outcome of an operation on the two operands; if it is a NaN, with the sign that it
/// has on the target, as NaNs are printed with their sign. A NaN that results from two numbers, such as
/// infinity minus infinity, is positive there and negative on a workstation. If both operands are NaNs the
/// target returns the left one, while a compiler for a workstation may exchange them.
double asOnTarget(double result, double left, double right);
