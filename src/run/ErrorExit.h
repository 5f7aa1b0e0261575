#pragma once

/// Prints "ERROR: " and the message on standard output and exits with the status. Static objects are
/// destroyed, local ones are not.
[[noreturn]] void errorExit(const char* message, int status);
