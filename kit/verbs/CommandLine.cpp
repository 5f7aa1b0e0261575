#include "verbs/CommandLine.h"

#include <CLI/CLI.hpp>

#include "verbs/Verb.h"

namespace zelkit {

namespace {

int exitStatus(Status status) {
  return static_cast<int>(status);
}

}  // namespace

void VerbOptions::addText(const char* name, std::string& value, const std::string& description, Need need) {
  CLI::Option* option = _command.add_option(name, value, description)->required(need == Need::kRequired);
  if (!value.empty()) option->capture_default_str();
}

void VerbOptions::addTexts(const char* name, std::vector<std::string>& values, const char* description,
                           Need need) {
  _command.add_option(name, values, description)->required(need == Need::kRequired);
}

void VerbOptions::addChoice(const char* name, std::string& value, const std::vector<std::string>& choices,
                            const char* description) {
  CLI::Option* option = _command.add_option(name, value, description)->check(CLI::IsMember(choices));
  if (!value.empty()) option->capture_default_str();
}

void VerbOptions::addNumber(const char* name, std::size_t& value, std::size_t least, std::size_t most,
                            const char* description) {
  const std::string range = std::to_string(least) + " to " + std::to_string(most);
  _command.add_option(name, value, description)
      ->check(CLI::Range(least, most))
      ->option_text("N, " + range + " [" + std::to_string(value) + "]");
}

void VerbOptions::addFlag(const char* name, bool& value, const char* description) {
  _command.add_flag(name, value, description);
}

int runCommandLine(int argc, char** argv, const char* version) {
  CLI::App app{"zelkit: converts any perf.data or capture of a device to documents for the viewer"};
  app.set_version_flag("--version", version);
  app.require_subcommand(1);
  for (Verb* verb : Verb::all()) {
    VerbOptions options(*app.add_subcommand(verb->name(), verb->description()));
    verb->addOptions(options);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : exitStatus(Status::kUsage);
  }
  for (Verb* verb : Verb::all())
    if (app.got_subcommand(verb->name())) return exitStatus(verb->run());
  return exitStatus(Status::kUsage);
}

}  // namespace zelkit
