#pragma once

#include <memory>
#include <string>
#include <vector>

#include "capture/TemporaryFolder.h"
#include "verbs/RecordingConversion.h"

namespace zelkit {

/// The documents of a path: the document itself, or those of a recording or capture, converted into a
/// temporary folder that is removed with the object.
class Documents {
 public:
  explicit Documents(ConversionOptions options) : _options(std::move(options)) {}

  /// Adds the documents of a path; "-" is a document on standard input. Returns another status than kDone if
  /// a recording cannot be converted. Throws std::runtime_error with "PATH: reason".
  Status add(const std::string& path);

  const std::vector<std::string>& paths() const { return _paths; }

 private:
  Status convert(const std::string& recording);

  ConversionOptions _options;
  std::vector<std::unique_ptr<TemporaryFolder>> _folders;
  std::vector<std::string> _paths;
};

}  // namespace zelkit
