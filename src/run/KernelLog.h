#pragma once

/// Debug markers in the kernel's log (-m), which show in a kernel trace what the program was busy with.

/// Writes "zcv-" and the text as a line to the log, and opens that first if it is not open yet. Does nothing
/// without -m; a log that cannot be opened is tried again by the next call.
void writeMarker(const char* text);

/// Closes the log if writeMarker has opened it. No marker may follow.
void closeKernelLog();
