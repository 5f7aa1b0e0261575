#pragma once

#include <string>
#include <vector>

#include "support/Conversion.h"

/// What a run of the program printed, and its status.
struct Said {
  int status = 0;        ///< as wait gives it
  std::string terminal;  ///< what came to the terminal, lines ended by a newline alone
  std::string output;    ///< standard output
  std::string error;     ///< standard error, where that is a file
};

enum class StandardError { terminal, file };

/// Runs the program with these arguments in its own process and on its own terminal, 80 columns wide.
Said runOnTerminal(const Conversion& conversion, const std::vector<std::string>& arguments,
                   StandardError standardError);
