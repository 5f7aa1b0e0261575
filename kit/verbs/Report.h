/// The account of a run, for a person and for a program.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "layout/Account.h"
#include "layout/MappedFiles.h"
#include "recording/Recording.h"

namespace zelkit {

/// What one document, or one rewritten recording, came out with.
struct Outcome {
  std::string output;
  const Account& account;
  const MappedFiles& files;
  std::size_t depth;               ///< of back-traces
  std::vector<std::string> notes;  ///< what is missing or damaged, a line each
};

/// Returns the account as lines of text, each of which begins with "zelkit: ".
std::string reportText(const Recording& recording, const Outcome& outcome);

/// Returns the account as one JSON object.
std::string reportJson(const Recording& recording, const Outcome& outcome);

/// Returns the file that leads back to the device's own addresses, see docs/layout-file.md.
std::string layoutJson(const Outcome& outcome);

}  // namespace zelkit
