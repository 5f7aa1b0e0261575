// zelkit import RECORDING -o OLD.data: only rewrites a recording into one that zelconv reads correctly.

#include <cstdio>

#include "document/NewFile.h"
#include "layout/Layout.h"
#include "layout/OldFile.h"
#include "tracepoints/OldPayloads.h"
#include "verbs/Choice.h"
#include "verbs/KernelSymbols.h"
#include "verbs/Names.h"
#include "verbs/Progress.h"
#include "verbs/Report.h"
#include "verbs/ReportFile.h"
#include "verbs/Verb.h"

namespace zelkit {

namespace {

class ImportVerb : public Verb {
 public:
  ImportVerb() : Verb("import", "rewrites any perf.data to a recording that zelconv reads correctly") {}

  void addOptions(VerbOptions& options) override {
    options.addText("RECORDING", _input, "a perf.data file, or a capture: a folder or a tar",
                    VerbOptions::Need::kRequired);
    options.addText("-o", _output, "the recording to write", VerbOptions::Need::kRequired);
    options.addText("--machine", _machine, "folder with files of the device");
    options.addTexts("--symbols", _folders, "folder with programs and libraries, repeatable");
    options.addText("--event", _event, "the event whose samples become the plain ones; the first without it");
    options.addText("--report", _report, "file for the account of the run, as JSON");
  }

  Status run() override {
    Source source(_input);
    source.chooseRoots(_machine);
    Recording& recording = source.recording();
    const OldPayloads payloads(recording.info());
    Names names(source, _folders);
    NewFile output(_output, source.files());
    ReportFile reportFile(_report, source.files(), {_output});
    OldFile::EventTable events;
    for (const OldPayloads::TableEntry& entry : payloads.table())
      events.emplace_back(entry.number, entry.name);
    OldFile file(output.path(), _output, events);
    LayoutChoice choice;
    choice.event = chooseEvent(recording, payloads);
    choice.kernelStart = kernelStartOf(recording.info(), ~std::uint64_t{0});
    choice.payloads = [&](const Sample& sample, std::uint16_t& number, std::string& raw) {
      return payloads.make(sample.event, sample.raw, number, raw);
    };
    Layout layout(recording.info(), choice, &names, file);
    recording.walk(layout, progressLine("rewriting"));
    file.finish();
    const Outcome outcome{_output, layout.account(), layout.files(), choice.depth, source.notes()};
    return report(recording, outcome, output, reportFile);
  }

 private:
  /// With a single event no survey is needed.
  std::size_t chooseEvent(Recording& recording, const OldPayloads& payloads) const {
    std::size_t plain = 0;
    for (const EventDescription& event : recording.events())
      if (!event.isTracePoint() && !event.isDummy()) ++plain;
    if (_event.empty() && plain <= 1) return firstPlain(recording);
    return choose(recording, Survey(recording), payloads, _event).event;
  }

  static std::size_t firstPlain(const Recording& recording) {
    const std::vector<EventDescription>& events = recording.events();
    for (std::size_t i = 0; i < events.size(); ++i)
      if (!events[i].isTracePoint() && !events[i].isDummy()) return i;
    return LayoutChoice::kNoEvent;
  }

  static Status report(const Recording& recording, const Outcome& outcome, NewFile& output,
                       ReportFile& reportFile) {
    std::fputs(reportText(recording, outcome).c_str(), stderr);
    reportFile.write(reportJson(recording, outcome));
    if (outcome.account.plainSamplesOut + outcome.account.tracePointsOut == 0) return Status::kNothingCameOut;
    if (outcome.account.tracePointsOut != 0)
      std::fprintf(stderr,
                   "zelkit:   its trace-points are those of kernel 3.10: run kern_ver=3.10 zelconv -t\n");
    output.commit();
    return Status::kDone;
  }

  std::string _input;
  std::string _output;
  std::string _machine;
  std::vector<std::string> _folders;
  std::string _event;
  std::string _report;
};

ImportVerb verb;

}  // namespace

}  // namespace zelkit
