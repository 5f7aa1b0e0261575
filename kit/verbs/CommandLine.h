/// The command line of zelkit. Only its source includes CLI11, whose templates take far longer to compile
/// than a verb.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zelkit {

/// The arguments and options of one verb. A name without a dash is an argument. The variables keep their
/// values where an option is not given, and must outlive the parse.
class VerbOptions {
 public:
  enum class Need { kOptional, kRequired };

  explicit VerbOptions(CLI::App& command) : _command(command) {}

  /// Adds an option with a text, which the help shows if it has one by default.
  void addText(const char* name, std::string& value, const std::string& description,
               Need need = Need::kOptional);

  /// Adds an option that can be repeated.
  void addTexts(const char* name, std::vector<std::string>& values, const char* description,
                Need need = Need::kOptional);

  /// Adds an option whose text is one of `choices`; others are refused.
  void addChoice(const char* name, std::string& value, const std::vector<std::string>& choices,
                 const char* description);

  /// Adds an option with a number of `least` to `most`; others are refused.
  void addNumber(const char* name, std::size_t& value, std::size_t least, std::size_t most,
                 const char* description);

  /// Adds a switch without a value.
  void addFlag(const char* name, bool& value, const char* description);

 private:
  CLI::App& _command;
};

/// Runs the verb that the command line names and returns the exit status. Prints the help, the version or
/// what is wrong with the command line. Throws what the verb throws.
int runCommandLine(int argc, char** argv, const char* version);

}  // namespace zelkit
