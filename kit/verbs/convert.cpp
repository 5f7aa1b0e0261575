// zelkit convert RECORDING|CAPTURE: converts a recording to documents.

#include <cstdio>

#include "document/LayoutFile.h"
#include "verbs/RecordingConversion.h"
#include "verbs/ReportFile.h"

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

  void addOptions(VerbOptions& options) override {
    options.addText("RECORDING", _input, "a perf.data file, or a capture: a folder or a tar",
                    VerbOptions::Need::kRequired);
    options.addText("-o", _output, "the document; a second one is written to X.timechart.json");
    _options.addTo(options);
    options.addText("--report", _report, "file for the account of the run, as JSON");
    options.addTexts("ZELCONV_OPTIONS", _options.request.engineOptions, "options of zelconv, after --");
  }

  Status run() override {
    if (!checkEngineOptions()) return Status::kUsage;
    const std::string second = timechartName(_output);
    std::vector<std::string> inputs = Source::filesOf(_input);
    if (!_options.machine.empty())
      for (const std::string& file : Source::filesOf(_options.machine)) inputs.push_back(file);
    ReportFile report(_report, inputs,
                      {_output, LayoutFile::pathOf(_output), second, LayoutFile::pathOf(second)});
    std::vector<MadeDocument> made;
    const Status status = convertRecording(
        _input, _options, [&](Kind, bool isSecond) { return isSecond ? second : _output; }, made);
    if (status != Status::kDone) return status;
    std::string reports;
    for (const MadeDocument& document : made) reports += (reports.empty() ? "" : ",\n") + document.report;
    report.write(reports);
    return status;
  }

 private:
  /// Returns whether the engine's options do not contradict those that zelkit sets.
  bool checkEngineOptions() const {
    for (const std::string& option : _options.request.engineOptions) {
      if (option.size() < 2 || option[0] != '-' ||
          std::string_view("iotph").find(option[1]) == std::string_view::npos)
        continue;
      std::fprintf(stderr, "zelkit: %s: zelkit sets this option itself\n", option.c_str());
      return false;
    }
    return true;
  }

  std::string _input;
  std::string _output = "perf.json";
  std::string _report;
  ConversionOptions _options;
};

ConvertVerb verb;

}  // namespace

}  // namespace zelkit
