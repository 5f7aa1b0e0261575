#pragma once

#include <memory>
#include <string>
#include <vector>

#include "capture/TemporaryFolder.h"
#include "verbs/RecordingConversion.h"

namespace zelkit {

/// The documents that a user means by a path: the document itself, or those that a recording or capture
/// gives, converted into a folder that goes with the object.
class Documents {
 public:
  explicit Documents(ConversionOptions options) : _options(std::move(options)) {}

  /// Adds those of the path; "-" is a document on standard input. Returns another status than kDone if a
  /// recording gives none. Throws std::runtime_error with "PATH: reason".
  Status add(const std::string& path);

  const std::vector<std::string>& paths() const { return _paths; }

 private:
  Status convert(const std::string& recording);

  ConversionOptions _options;
  std::vector<std::unique_ptr<TemporaryFolder>> _folders;
  std::vector<std::string> _paths;
};

}  // namespace zelkit
