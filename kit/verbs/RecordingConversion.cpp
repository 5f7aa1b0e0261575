#include "verbs/RecordingConversion.h"

#include <cstdio>

namespace zelkit {

namespace {

std::vector<Kind> wanted(const std::string& mode, const Choice& choice) {
  if (mode.empty() || mode == "both") return choice.documents;
  const Kind kind = mode == "profile" ? Kind::profile : Kind::timechart;
  const std::uint64_t samples = kind == Kind::profile ? choice.plainSamples : choice.tracePoints;
  return samples != 0 ? std::vector<Kind>{kind} : std::vector<Kind>{};
}

Status nothing(const Recording& recording, const std::string& mode) {
  std::fprintf(stderr, "zelkit: %s: nothing to show%s; see zelkit info\n", recording.name().c_str(),
               mode.empty() ? "" : (" in mode " + mode).c_str());
  for (const std::string& damage : recording.damage())
    std::fprintf(stderr, "zelkit:   damaged: %s\n", damage.c_str());
  return Status::kNothingCameOut;
}

}  // namespace

void ConversionOptions::addTo(VerbOptions& options) {
  options.addChoice("--mode", mode, {"profile", "timechart", "both"},
                    "what to make; without it what the recording has");
  options.addText("--machine", machine,
                  "folder with kallsyms, softirqs, uptime, trace and files of the device");
  options.addTexts("--symbols", request.symbolFolders, "folder with programs and libraries, repeatable");
  options.addText("--event", event, "the event whose samples the profile shows; the first without it");
  options.addNumber("--depth", request.depth, 1, 127, "entries of a back-trace that are kept");
}

Status convertRecording(const std::string& input, const ConversionOptions& options,
                        const std::function<std::string(Kind kind, bool isSecond)>& pathOf,
                        std::vector<MadeDocument>& made) {
  Source source(input);
  const Survey survey(source.recording());
  source.chooseMachine(options.machine, survey);
  const OldPayloads payloads(source.recording().info());
  const Choice choice = choose(source.recording(), survey, payloads, options.event);
  const std::vector<Kind> kinds = wanted(options.mode, choice);
  if (kinds.empty()) return nothing(source.recording(), options.mode);
  Conversion conversion(source, survey, payloads, choice, options.request);
  for (const Kind kind : kinds) {
    MadeDocument document{kind, pathOf(kind, kind == Kind::timechart && kinds.size() > 1), {}};
    if (const Status status = conversion.make(kind, document.path, document.report); status != Status::kDone)
      return status;
    made.push_back(std::move(document));
  }
  return Status::kDone;
}

}  // namespace zelkit
