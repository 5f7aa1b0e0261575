#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "verbs/Verb.h"

namespace {

using zelkit::Status;
using zelkit::Verb;

int exitStatus(Status status) {
  return static_cast<int>(status);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"zelkit: takes any perf.data or a capture of a device and gives the document a user expects"};
  app.set_version_flag("--version", ZELKIT_VERSION);
  app.require_subcommand(1);
  for (Verb* verb : Verb::all()) verb->addOptions(*app.add_subcommand(verb->name(), verb->description()));
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : exitStatus(Status::kUsage);
  }
  try {
    for (Verb* verb : Verb::all())
      if (app.got_subcommand(verb->name())) return exitStatus(verb->run());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zelkit: %s\n", error.what());
    return exitStatus(Status::kUnreadable);
  }
  return exitStatus(Status::kUsage);
}
