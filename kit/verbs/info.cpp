// zelkit info RECORDING|CAPTURE: prints what is in it, how it will be converted, and what is missing.

#include <cstdio>
#include <string>

#include "layout/OldRecords.h"
#include "tracepoints/OldPayloads.h"
#include "verbs/Choice.h"
#include "verbs/Printable.h"
#include "verbs/Source.h"
#include "verbs/Survey.h"
#include "verbs/Verb.h"

namespace zelkit {

namespace {

void line(const char* name, const std::string& text) {
  if (!text.empty()) std::printf("%-12s %s\n", name, printable(text).c_str());
}

class InfoVerb : public Verb {
 public:
  InfoVerb() : Verb("info", "prints what is in a recording, how it will be converted and what is missing") {}

  void addOptions(VerbOptions& options) override {
    options.addText("RECORDING", _input, "a perf.data file, or a capture: a folder or a tar",
                    VerbOptions::Need::kRequired);
    options.addText("--machine", _machine,
                    "folder with kallsyms, softirqs, uptime, trace and files of the device");
  }

  Status run() override {
    Source source(_input);
    const Survey survey(source.recording());
    source.chooseMachine(_machine, survey);
    const OldPayloads payloads(source.recording().info());
    const Choice choice = choose(source.recording(), survey, payloads, {});
    showMachine(source.recording());
    showEvents(source.recording(), survey, payloads);
    showSurvey(survey);
    for (const std::string& damage : source.recording().damage()) line("damaged", damage);
    for (const std::string& note : source.notes()) line("note", note);
    for (const std::string& note : choice.notes) line("note", note);
    return showChoice(choice);
  }

 private:
  static void showMachine(const Recording& recording) {
    const RecordingInfo& info = recording.info();
    line("recording", recording.name() + ", " + std::to_string(recording.size()) + " bytes" +
                          (recording.pipeMode() ? ", pipe mode" : "") +
                          (info.android() ? ", by Android's recorder" : ""));
    line("host", info.hostName);
    line("kernel", info.kernelRelease);
    line("machine",
         info.architecture + (info.cpuCount != 0 ? ", " + std::to_string(info.cpuCount) + " cores" : ""));
    line("perf", info.perfVersion);
    std::string command;
    for (const std::string& word : info.commandLine) command += (command.empty() ? "" : " ") + word;
    line("command", command);
  }

  static void showEvents(const Recording& recording, const Survey& survey, const OldPayloads& payloads) {
    for (std::size_t i = 0; i < recording.events().size(); ++i) {
      const EventDescription& event = recording.events()[i];
      const char* kind = payloads.knows(i)      ? ", for the timechart"
                         : event.isTracePoint() ? ", a trace-point that no chart shows"
                                                : "";
      line("event", event.label() + ": " + std::to_string(survey.samples[i]) + " samples" + kind);
    }
  }

  static void showSurvey(const Survey& survey) {
    if (survey.firstTime <= survey.lastTime) {
      char text[64];
      std::snprintf(text, sizeof text, "%.6f s, from %.6f",
                    static_cast<double>(survey.lastTime - survey.firstTime) / 1e9,
                    static_cast<double>(survey.firstTime) / 1e9);
      line("time", text);
    }
    line("mappings", std::to_string(survey.mappings));
    if (survey.deepestTrace != 0)
      line("deepest", std::to_string(survey.deepestTrace) + " entries of a back-trace");
    if (survey.userStacks != 0)
      line("note",
           std::to_string(survey.userStacks) +
               " samples have a copy of the stack, which is not unwound: record with --call-graph fp");
    if (survey.lostRecords + survey.lostSamples != 0)
      line("lost", std::to_string(survey.lostRecords) + " records and " + std::to_string(survey.lostSamples) +
                       " samples, by the kernel while it recorded");
    if (survey.damagedSamples != 0) line("damaged", std::to_string(survey.damagedSamples) + " samples");
  }

  static Status showChoice(const Choice& choice) {
    if (choice.documents.empty()) {
      line("converts to", "nothing: it has no sample that a document shows");
      return Status::kNothingCameOut;
    }
    for (const Kind kind : choice.documents)
      line("converts to", kind == Kind::profile
                              ? "a profile of " + std::to_string(choice.plainSamples) + " samples"
                              : "a timechart of " + std::to_string(choice.tracePoints) + " trace-points");
    return Status::kDone;
  }

  std::string _input;
  std::string _machine;
};

InfoVerb verb;

}  // namespace

}  // namespace zelkit
