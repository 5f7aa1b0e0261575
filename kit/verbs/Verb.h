/// The verbs of zelkit's command line. Each registers itself, so there is no central list.
#pragma once

#include <string>
#include <vector>

#include "verbs/CommandLine.h"

namespace zelkit {

/// Exit statuses of zelkit; command-line errors are kUsage.
enum class Status { kDone = 0, kUsage = 1, kUnreadable = 2, kNothingCameOut = 3 };

/// One verb of the command line. An object with static storage registers itself on construction.
class Verb {
 public:
  Verb(const char* name, const char* description);
  virtual ~Verb() = default;
  Verb(const Verb&) = delete;
  Verb& operator=(const Verb&) = delete;

  const std::string& name() const { return _name; }
  const std::string& description() const { return _description; }

  /// Adds the verb's options. Their variables must outlive the parse, so they are members.
  virtual void addOptions(VerbOptions& options) = 0;

  /// Runs the verb. Throws failures as std::runtime_error with "FILE: reason", which main prints.
  virtual Status run() = 0;

  /// Returns all verbs, sorted by name.
  static std::vector<Verb*> all();

 private:
  std::string _name;
  std::string _description;
};

}  // namespace zelkit
