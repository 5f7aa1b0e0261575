#pragma once

/// Opens a file for writing and truncates it; returns its descriptor, or -1 with errno set.
///
/// The descriptor is never 0 to 2, even if the caller of the program has closed those: messages of the
/// program or of nm must not get into the file. Child processes do not inherit it.
int openOutputFile(const char* path);

/// Returns the descriptor if it is above 2. Otherwise closes it and returns a copy above 2, which is closed
/// on exec.
int aboveStandard(int descriptor);
