#pragma once

/// One conversion from start to end, as the command line and the environment say. Answers the exit status 0;
/// what ends the run early goes through errorExit with status -1.
int profile(int argc, char** argv);
