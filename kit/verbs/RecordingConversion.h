/// The whole way from a recording or capture to documents, which several verbs go.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "verbs/Conversion.h"

namespace zelkit {

/// What a user can say of a conversion.
struct ConversionOptions {
  std::string mode;  ///< profile, timechart or both; empty for what the recording holds
  std::string machine;
  std::string event;
  ConversionRequest request;

  /// Adds the options that every verb has that converts.
  void addTo(CLI::App& command);
};

/// A document that a conversion made.
struct MadeDocument {
  Kind kind;
  std::string path;
  std::string report;  ///< the account of it, a JSON object
};

/// Makes the documents of a recording or capture, each at the path that `pathOf` returns for its kind;
/// `isSecond` tells it that the recording gives another one, a profile. Stops at the first that fails; the
/// accounts go to standard error. Throws std::runtime_error with "FILE: reason".
Status convertRecording(const std::string& input, const ConversionOptions& options,
                        const std::function<std::string(Kind kind, bool isSecond)>& pathOf,
                        std::vector<MadeDocument>& made);

}  // namespace zelkit
