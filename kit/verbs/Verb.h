/// What zelkit can be asked for: each verb registers itself, so that no central list of them exists.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

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

  /// Adds the verb's own options to its subcommand. They must outlive the parse, so a verb keeps them in
  /// members.
  virtual void addOptions(CLI::App& command) = 0;

  /// Does the work. Failures are thrown as std::runtime_error with "FILE: reason"; main prints them.
  virtual Status run() = 0;

  /// Returns all verbs in the order of their names.
  static std::vector<Verb*> all();

 private:
  std::string _name;
  std::string _description;
};

}  // namespace zelkit
