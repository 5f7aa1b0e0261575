#include "verbs/Report.h"

#include <algorithm>
#include <utility>

#include "verbs/JsonText.h"

namespace zelkit {

namespace {

/// Number of files without symbols that the text names; the JSON account has all.
constexpr std::size_t kFilesNamed = 5;
constexpr std::size_t kNotesShown = 12;

/// Collects lines and makes them printable: names come from the recording.
class Lines {
 public:
  void add(const std::string& line) {
    _text += "zelkit: ";
    for (const char c : line) _text += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c;
    _text += '\n';
  }
  void addCount(std::uint64_t number, const std::string& what) {
    if (number != 0) add("  " + std::to_string(number) + " " + what);
  }
  void addTally(const Account::Tally& tally, const std::string& before, const std::string& after = {}) {
    for (const auto& [name, number] : tally) addCount(number, before + name + after);
  }
  [[nodiscard]] const std::string& str() const { return _text; }

 private:
  std::string _text;
};

/// Files and numbers of their samples without a function, most samples first.
using Wanted = std::vector<std::pair<const MappedFile*, std::uint64_t>>;

Wanted mostFirst(Wanted wanted) {
  std::stable_sort(wanted.begin(), wanted.end(),
                   [](const auto& left, const auto& right) { return left.second > right.second; });
  return wanted;
}

/// Returns the files that are missing and leave samples without a function.
Wanted missingFiles(const MappedFiles& files) {
  Wanted missing;
  for (std::size_t i = 0; i < files.size(); ++i)
    if (!files[i].known && files[i].samples != 0 && files[i].path.starts_with('/'))
      missing.emplace_back(&files[i], files[i].samples);
  return mostFirst(std::move(missing));
}

/// Returns the files whose debug files would name more functions.
Wanted strippedFiles(const MappedFiles& files) {
  Wanted stripped;
  for (std::size_t i = 0; i < files.size(); ++i)
    if (files[i].stripped && files[i].unnamed != 0) stripped.emplace_back(&files[i], files[i].unnamed);
  return mostFirst(std::move(stripped));
}

std::string ofHost(const Recording& recording) {
  const RecordingInfo& info = recording.info();
  std::string text = recording.name();
  if (!info.kernelRelease.empty()) text += ": kernel " + info.kernelRelease;
  if (!info.architecture.empty()) text += " " + info.architecture;
  if (!info.hostName.empty()) text += " on " + info.hostName;
  if (!info.perfVersion.empty()) text += ", perf " + info.perfVersion;
  return text + (info.android() ? ", Android's recorder" : "");
}

/// Adds one line for each of the first files: the number of samples and what `hint` returns.
void addHints(Lines& lines, const Wanted& wanted, std::string (*hint)(const MappedFile&)) {
  for (std::size_t i = 0; i < wanted.size() && i < kFilesNamed; ++i)
    lines.addCount(wanted[i].second, "samples in " + hint(*wanted[i].first));
  if (wanted.size() > kFilesNamed)
    lines.add("  and " + std::to_string(wanted.size() - kFilesNamed) +
              " more such files (--report lists them)");
}

std::string fetchHint(const MappedFile& file) {
  return file.path + ", which is missing: fetch it from the device, such as by  scp DEVICE:" + file.path +
         " DIR" + file.path + "  and add --symbols DIR";
}

std::string debugFileHint(const MappedFile& file) {
  std::string path = "DIR";
  if (file.buildId.size() > 2)
    path += "/.build-id/" + file.buildId.substr(0, 2) + '/' + file.buildId.substr(2) + ".debug";
  return "functions that the stripped " + file.path +
         " does not name: fetch its debug file (from a package PACKAGE-dbg or PACKAGE-dbgsym, or set "
         "DEBUGINFOD_URLS) to " +
         path + " and add --symbols DIR";
}

void addNotes(Lines& lines, const std::vector<std::string>& notes) {
  for (std::size_t i = 0; i < notes.size() && i < kNotesShown; ++i) lines.add("  " + notes[i]);
  if (notes.size() > kNotesShown)
    lines.add("  and " + std::to_string(notes.size() - kNotesShown) + " more remarks (--report lists them)");
}

void addTally(JsonText& json, std::string_view key, const Account::Tally& tally) {
  json.object(key);
  for (const auto& [name, number] : tally) json.number(name, number);
  json.end();
}

void addFiles(JsonText& json, std::string_view key, const Wanted& wanted) {
  json.array(key);
  for (const auto& [file, samples] : wanted) {
    json.object().text("path", file->path).text("buildId", file->buildId).number("samples", samples).end();
  }
  json.end();
}

/// Adds the moved mappings as docs/layout-file.md has them.
void addMappings(JsonText& json, const Outcome& outcome) {
  json.array("mappings");
  for (const Account::MovedMapping& moved : outcome.account.moved) {
    json.object()
        .number("pid", moved.pid)
        .hexadecimal("start", moved.start)
        .hexadecimal("size", moved.size)
        .hexadecimal("original", moved.original)
        .text("file", outcome.files[moved.file].path)
        .end();
  }
  json.end();
}

void addRecording(JsonText& json, const Recording& recording) {
  const RecordingInfo& info = recording.info();
  json.object("recording")
      .text("path", recording.name())
      .text("host", info.hostName)
      .text("kernel", info.kernelRelease)
      .text("architecture", info.architecture)
      .text("perf", info.perfVersion)
      .array("damage");
  for (const std::string& damage : recording.damage()) json.text({}, damage);
  json.end().end();
}

}  // namespace

std::string reportText(const Recording& recording, const Outcome& outcome) {
  const Account& account = outcome.account;
  Lines lines;
  lines.add(ofHost(recording));
  for (const std::string& damage : recording.damage()) lines.add("  damaged: " + damage);
  const std::uint64_t out = account.plainSamplesOut + account.tracePointsOut;
  lines.add(outcome.output + ": " + std::to_string(out) + " of " + std::to_string(account.samplesIn) +
            " samples");
  lines.addTally(account.samplesLost, "left out: ");
  lines.addTally(account.unnamed, "samples without a function: ");
  addHints(lines, missingFiles(outcome.files), fetchHint);
  addHints(lines, strippedFiles(outcome.files), debugFileHint);
  lines.addCount(account.samplesLostByKernel, "samples were lost by the kernel while it recorded");
  lines.addCount(account.recordsLostByKernel, "records were lost by the kernel while it recorded");
  lines.addCount(
      account.userStacks,
      "samples have a copy of the stack, which is not unwound: their callers in user space are missing");
  lines.addCount(account.cutTraces, "back-traces were cut to their innermost " +
                                        std::to_string(outcome.depth) + " entries (--depth N keeps more)");
  lines.addCount(account.highCores, "samples of cores above 16 are shown on core 16");
  lines.addCount(account.highTracePoints, "trace-points of cores above 15 are not in the charts of cores");
  lines.addCount(account.cutLineages,
                 "processes did not inherit the mappings of their parents, as there were too many");
  lines.addTally(account.shortened, "names were shortened: ");
  lines.addTally(account.noPlace, "mappings kept their addresses, since there was no room for ");
  addNotes(lines, outcome.notes);
  return lines.str();
}

std::string reportJson(const Recording& recording, const Outcome& outcome) {
  const Account& account = outcome.account;
  JsonText json;
  json.object().text("output", outcome.output);
  addRecording(json, recording);
  json.object("samples")
      .number("in", account.samplesIn)
      .number("plainOut", account.plainSamplesOut)
      .number("tracePointsOut", account.tracePointsOut);
  addTally(json, "leftOut", account.samplesLost);
  addTally(json, "withoutFunction", account.unnamed);
  json.number("lostByKernel", account.samplesLostByKernel)
      .number("onCoresAbove16", account.highCores)
      .number("tracePointsOnCoresAbove15", account.highTracePoints)
      .number("withUserStack", account.userStacks)
      .number("cutTraces", account.cutTraces)
      .number("cutEntries", account.cutEntries)
      .boolean("balanced", account.balanced())
      .end();
  json.object("records")
      .number("lostByKernel", account.recordsLostByKernel)
      .number("lineagesCut", account.cutLineages);
  addTally(json, "kept", account.kept);
  addTally(json, "made", account.made);
  addTally(json, "dropped", account.dropped);
  addTally(json, "shortened", account.shortened);
  addTally(json, "withoutRoom", account.noPlace);
  json.end();
  addFiles(json, "filesNotAtHand", missingFiles(outcome.files));
  addFiles(json, "strippedFiles", strippedFiles(outcome.files));
  json.array("notes");
  for (const std::string& note : outcome.notes) json.text({}, note);
  json.end().number("depth", outcome.depth);
  addMappings(json, outcome);
  return json.end().str();
}

std::string layoutJson(const Outcome& outcome) {
  JsonText json;
  json.object().text("Version", "1.0").number("depth", outcome.depth);
  addMappings(json, outcome);
  return json.end().str() + "\n";
}

}  // namespace zelkit
