/// The conversion of a recording or capture to documents, used by several verbs.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "verbs/CommandLine.h"
#include "verbs/Conversion.h"

namespace zelkit {

/// Command-line options of a conversion.
struct ConversionOptions {
  std::string mode;  ///< profile, timechart or both; empty for what the recording has
  std::string machine;
  std::string event;
  ConversionRequest request;

  /// Adds the options that all converting verbs have.
  void addTo(VerbOptions& options);
};

/// A document made by a conversion.
struct MadeDocument {
  Kind kind;
  std::string path;
  std::string report;  ///< its account, a JSON object
};

/// Makes the documents of a recording or capture, each at the path returned by `pathOf` for its kind;
/// `isSecond` is true for a timechart that is made besides a profile. Stops at the first failure; accounts
/// are printed on standard error. Throws std::runtime_error with "FILE: reason".
Status convertRecording(const std::string& input, const ConversionOptions& options,
                        const std::function<std::string(Kind kind, bool isSecond)>& pathOf,
                        std::vector<MadeDocument>& made);

}  // namespace zelkit
