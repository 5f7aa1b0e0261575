#pragma once

/// Opens a file for writing and truncates it; returns its descriptor, or -1 with errno set.
///
/// The descriptor is never 0 to 2, even if the caller of the program has closed those: what the program or nm
/// says there must not land in the file. No program that is started inherits it.
int openOutputFile(const char* path);

/// Returns the descriptor, or if it is one of 0 to 2 a copy above those, and closes it then. The copy is
/// closed when another program is executed.
int aboveStandard(int descriptor);
