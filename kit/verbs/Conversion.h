#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tracepoints/OldPayloads.h"
#include "verbs/Choice.h"
#include "verbs/Source.h"
#include "verbs/Survey.h"
#include "verbs/Verb.h"

namespace zelkit {

/// Options of a conversion.
struct ConversionRequest {
  std::vector<std::string> symbolFolders;
  std::size_t depth = 15;  ///< maximum number of entries of a back-trace
  std::vector<std::string> engineOptions;
};

/// Makes one document, in a child process, as the engine keeps its data in static tables.
class Conversion {
 public:
  Conversion(Source& source, const Survey& survey, const OldPayloads& payloads, const Choice& choice,
             const ConversionRequest& request)
      : _source(source), _survey(survey), _payloads(payloads), _choice(choice), _request(request) {}

  /// Makes the document, which exists afterwards if the status is kDone. Prints the account on standard
  /// error, and sets `report` to it as JSON. Throws std::runtime_error with "FILE: reason".
  Status make(Kind kind, const std::string& output, std::string& report);

 private:
  void runEngine(Kind kind, const std::string& output, const std::string& document, const std::string& layout,
                 std::string& report);
  void pointEngineAtMachine() const;
  [[nodiscard]] int callEngine(Kind kind, const std::string& document, class EngineRecords& records) const;

  Source& _source;
  const Survey& _survey;
  const OldPayloads& _payloads;
  const Choice& _choice;
  const ConversionRequest& _request;
};

}  // namespace zelkit
