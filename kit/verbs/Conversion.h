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

/// How a recording is to be converted.
struct ConversionRequest {
  std::vector<std::string> symbolFolders;
  std::size_t depth = 15;  ///< entries of a back-trace that are kept
  std::vector<std::string> engineOptions;
};

/// One document. The engine keeps what it reads in static tables, so each is made in a process of its own.
class Conversion {
 public:
  Conversion(Source& source, const Survey& survey, const OldPayloads& payloads, const Choice& choice,
             const ConversionRequest& request)
      : _source(source), _survey(survey), _payloads(payloads), _choice(choice), _request(request) {}

  /// Makes the document; it is there afterwards if the status is kDone. The account goes to standard error,
  /// and as JSON into `report`. Throws std::runtime_error with "FILE: reason".
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
