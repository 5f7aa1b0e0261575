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

int run(int argc, char** argv) {
  CLI::App app{"zelkit: converts any perf.data or capture of a device to documents for the viewer"};
  app.set_version_flag("--version", ZELKIT_VERSION);
  app.require_subcommand(1);
  for (Verb* verb : Verb::all()) verb->addOptions(*app.add_subcommand(verb->name(), verb->description()));
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : exitStatus(Status::kUsage);
  }
  for (Verb* verb : Verb::all())
    if (app.got_subcommand(verb->name())) return exitStatus(verb->run());
  return exitStatus(Status::kUsage);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zelkit: %s\n", error.what());
  } catch (...) {
    std::fputs("zelkit: failed for an unknown reason\n", stderr);
  }
  return exitStatus(Status::kUnreadable);
}
