// zelkit convert RECORDING|CAPTURE: the documents that a recording gives.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "document/OutputFile.h"
#include "verbs/Conversion.h"
#include "verbs/Progress.h"

namespace zelkit {

namespace {

/// Returns "X.timechart.json" for "X.json".
std::string timechartName(const std::string& output) {
  constexpr std::string_view ending = ".json";
  const std::string stem =
      output.ends_with(ending) ? output.substr(0, output.size() - ending.size()) : output;
  return stem + ".timechart.json";
}

class ConvertVerb : public Verb {
 public:
  ConvertVerb()
      : Verb("convert", "converts any perf.data or capture of a device to documents for the viewer") {}

  void addOptions(CLI::App& command) override {
    command.add_option("RECORDING", _input, "a perf.data file, or a capture: a folder or a tar")->required();
    command.add_option("-o", _output, "the document; a second one is written to X.timechart.json")
        ->capture_default_str();
    command.add_option("--mode", _mode, "profile, timechart or both; without it what the recording holds")
        ->check(CLI::IsMember({"profile", "timechart", "both"}));
    command.add_option("--machine", _machine,
                       "folder with kallsyms, softirqs, uptime, trace and files of the device");
    command.add_option("--symbols", _request.symbolFolders, "folder with programs and libraries, repeatable");
    command.add_option("--event", _event, "the event whose samples the profile shows; the first without it");
    command.add_option("--depth", _request.depth, "entries of a back-trace that are kept")
        ->check(CLI::Range(1, 127))
        ->capture_default_str();
    command.add_option("--report", _report, "file for the account of the run, as JSON");
    command.add_option("ZELCONV_OPTIONS", _request.engineOptions, "options of zelconv, after --");
  }

  Status run() override {
    if (!checkEngineOptions()) return Status::kUsage;
    Source source(_input);
    const Survey survey(source.recording());
    source.chooseMachine(_machine, survey);
    const OldPayloads payloads(source.recording().info());
    Choice choice = choose(source.recording(), survey, payloads, _event);
    const std::vector<Kind> kinds = wanted(choice);
    if (kinds.empty()) return nothing(source.recording());
    Conversion conversion(source, survey, payloads, choice, _request);
    std::string reports;
    for (const Kind kind : kinds) {
      const bool second = kind == Kind::timechart && kinds.size() > 1;
      std::string report;
      const Status status = conversion.make(kind, second ? timechartName(_output) : _output, report);
      if (status != Status::kDone) return status;
      reports += (reports.empty() ? "" : ",\n") + report;
    }
    writeReport(reports);
    return Status::kDone;
  }

 private:
  /// The engine's own options must not turn against what zelkit asks of it.
  bool checkEngineOptions() const {
    for (const std::string& option : _request.engineOptions) {
      if (option.size() < 2 || option[0] != '-' ||
          std::string_view("iotph").find(option[1]) == std::string_view::npos)
        continue;
      std::fprintf(stderr, "zelkit: %s: zelkit sets this option itself\n", option.c_str());
      return false;
    }
    return true;
  }

  std::vector<Kind> wanted(const Choice& choice) const {
    if (_mode.empty() || _mode == "both") return choice.documents;
    const Kind kind = _mode == "profile" ? Kind::profile : Kind::timechart;
    const std::uint64_t samples = kind == Kind::profile ? choice.plainSamples : choice.tracePoints;
    return samples != 0 ? std::vector<Kind>{kind} : std::vector<Kind>{};
  }

  Status nothing(const Recording& recording) const {
    std::fprintf(stderr, "zelkit: %s: nothing to show%s; zelkit info tells what is in it\n",
                 recording.path().c_str(), _mode.empty() ? "" : (" in mode " + _mode).c_str());
    for (const std::string& damage : recording.damage())
      std::fprintf(stderr, "zelkit:   damaged: %s\n", damage.c_str());
    return Status::kNothingCameOut;
  }

  void writeReport(const std::string& reports) const {
    if (_report.empty()) return;
    OutputFile file(_report);
    file.write("[\n" + reports + "\n]\n");
    file.commit();
  }

  std::string _input;
  std::string _output = "perf.json";
  std::string _mode;
  std::string _machine;
  std::string _event;
  std::string _report;
  ConversionRequest _request;
};

ConvertVerb verb;

}  // namespace

}  // namespace zelkit
