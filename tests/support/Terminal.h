#pragma once

#include <string>
#include <vector>

#include "support/Conversion.h"

/// Output and status of a run of the program.
struct Said {
  int status = 0;        ///< as wait gives it
  std::string terminal;  ///< output on the terminal, with lines ended by a newline only
  std::string output;    ///< standard output
  std::string error;     ///< standard error, where that is a file
};

enum class StandardError { terminal, file };

/// Runs the program with these arguments in its own process and on its own terminal, 80 columns wide.
Said runOnTerminal(const Conversion& conversion, const std::vector<std::string>& arguments,
                   StandardError standardError);
