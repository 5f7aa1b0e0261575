#pragma once

/// Parses the command line into the settings. Options take effect in the order given. -h prints the help and
/// exits with status 0; an unknown option or a missing argument goes to errorExit with status -1.
void parseOptions(int argc, char** argv);
