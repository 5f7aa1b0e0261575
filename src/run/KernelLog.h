#pragma once

/// Debug markers in the kernel's log (-m), which show in a kernel trace what the program is doing.

/// Writes "zcv-" and the text as a line to the log, and opens the log first if needed. Does nothing without
/// -m. If the log cannot be opened the next call tries again.
void writeMarker(const char* text);

/// Closes the log if it is open. writeMarker must not be called afterwards.
void closeKernelLog();
