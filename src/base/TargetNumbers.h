#pragma once

/// Numbers as the 32-bit target converts them, whatever machine this build runs on.

/// strtol in base 10 with a 32-bit long: leading white space and a sign are taken, and a number outside the
/// range becomes the nearest bound. *end, if asked for, is the first character not taken.
int targetStrtol(const char* text, const char** end = nullptr);

/// Truncates towards zero. What a 64-bit unsigned integer cannot hold becomes the nearest bound, and a
/// not-a-number becomes 0, as the target's conversion has it.
unsigned long long truncateToUnsigned64(double value);

/// The same for a signed integer.
long long truncateToSigned64(double value);

/// The result of an operation on two operands, with the sign that a not-a-number has on the target, as both
/// are printed with their sign: one that comes of two numbers, such as infinity minus infinity, is positive
/// there and negative on a workstation; of two operands that are none the target passes the left one on, and
/// a compiler for a workstation may exchange them.
double asOnTarget(double result, double left, double right);
