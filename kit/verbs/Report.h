/// The account of a run, for a person and for a program.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "layout/Account.h"
#include "layout/MappedFiles.h"
#include "recording/Recording.h"

namespace zelkit {

/// The result of one conversion or rewriting.
struct Outcome {
  std::string output;
  const Account& account;
  const MappedFiles& files;
  std::size_t depth;               ///< of back-traces
  std::vector<std::string> notes;  ///< one line for each missing or damaged thing
};

/// Returns the account as lines of text, each starting with "zelkit: ".
std::string reportText(const Recording& recording, const Outcome& outcome);

/// Returns the account as one JSON object.
std::string reportJson(const Recording& recording, const Outcome& outcome);

/// Returns the contents of the layout file, which maps addresses back to those of the device, see
/// docs/layout-file.md.
std::string layoutJson(const Outcome& outcome);

}  // namespace zelkit
