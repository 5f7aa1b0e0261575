// pprof's profile.proto, gzipped: samples with equal stacks of one thread are one sample with a count.

#include <protozero/pbf_builder.hpp>

#include "document/LayoutFile.h"
#include "document/exports/ExportFormat.h"
#include "document/exports/GzipOutput.h"
#include "document/exports/JsonOutput.h"
#include "document/exports/TextTable.h"
#include "document/exports/ThreadSamples.h"
#include "document/exports/WholeUnits.h"

namespace zelkit {

namespace {

/// Field numbers of the messages, github.com/google/pprof/proto/profile.proto.
enum class Profile : protozero::pbf_tag_type {
  kSampleType = 1,
  kSample = 2,
  kMapping = 3,
  kLocation = 4,
  kFunction = 5,
  kStringTable = 6,
  kDurationNanos = 10,
};
enum class ValueType : protozero::pbf_tag_type { kType = 1, kUnit = 2 };
enum class Sample : protozero::pbf_tag_type { kLocationId = 1, kValue = 2, kLabel = 3 };
enum class Label : protozero::pbf_tag_type { kKey = 1, kText = 2, kNumber = 3 };
enum class Mapping : protozero::pbf_tag_type {
  kId = 1,
  kStart = 2,
  kLimit = 3,
  kFile = 5,
  kHasFunctions = 7
};
enum class Location : protozero::pbf_tag_type { kId = 1, kMappingId = 2, kAddress = 3, kLine = 4 };
enum class Line : protozero::pbf_tag_type { kFunctionId = 1, kLine = 2 };
enum class Function : protozero::pbf_tag_type { kId = 1, kName = 2, kFile = 4, kStartLine = 5 };

class Pprof : public Exporter {
 public:
  explicit Pprof(OutputFile& output) : _output(output) {
    // The format wants the empty text as the first.
    _strings.indexOf("");
  }

  void documentStart(const std::string& name) override { _layout = LayoutFile::beside(name); }
  ReadOutcome read(ByteSource& source) override { return readDocument(source, _samples); }

  void finish() override {
    writeSampleType();
    for (const ThreadSamples::Thread& thread : _samples.threads()) writeThread(thread);
    if (const std::int64_t duration = wholeUnits(_samples.duration(), kNanosecondsPerSecond); duration > 0)
      _profile.add_int64(Profile::kDurationNanos, duration);
    for (const std::string* text : _strings.texts())
      _profile.add_string(Profile::kStringTable, validUtf8(*text));
    GzipOutput compressed(_output);
    compressed.write(_bytes);
    compressed.finish();
  }

 private:
  void writeSampleType() {
    protozero::pbf_builder<ValueType> type(_profile, Profile::kSampleType);
    type.add_int64(ValueType::kType, _strings.indexOf("samples"));
    type.add_int64(ValueType::kUnit, _strings.indexOf("count"));
  }

  void writeThread(const ThreadSamples::Thread& thread) {
    std::map<StackTree::Node, std::int64_t> counts;
    for (const StackTree::Node node : thread.nodes) ++counts[node];
    for (const auto& [node, count] : counts) {
      std::vector<std::uint64_t> locations;
      for (StackTree::Node at = node; at != StackTree::kRoot; at = _samples.tree().parent(at))
        locations.push_back(locationOf(ThreadSamples::frameKey(_samples.tree(), at)));
      protozero::pbf_builder<Sample> sample(_profile, Profile::kSample);
      sample.add_packed_uint64(Sample::kLocationId, locations.begin(), locations.end());
      sample.add_packed_int64(Sample::kValue, &count, &count + 1);
      writeLabels(sample, thread);
    }
  }

  void writeLabels(protozero::pbf_builder<Sample>& sample, const ThreadSamples::Thread& thread) {
    const ProfileTables::Process* process = _samples.findProcess(thread.pidKey);
    {
      protozero::pbf_builder<Label> label(sample, Sample::kLabel);
      label.add_int64(Label::kKey, _strings.indexOf("thread"));
      label.add_int64(Label::kText, _strings.indexOf(_samples.threadTitle(thread)));
    }
    protozero::pbf_builder<Label> label(sample, Sample::kLabel);
    label.add_int64(Label::kKey, _strings.indexOf("pid"));
    label.add_int64(Label::kNumber, process == nullptr ? 0 : process->pid);
  }

  /// Returns the id of the frame's location, which it writes with its function when the frame is new.
  std::uint64_t locationOf(std::uint32_t key) {
    const auto [place, isNew] = _locations.try_emplace(key, _locations.size() + 1);
    if (!isNew) return place->second;
    const std::uint64_t id = place->second;
    const ProfileTables::Library* library = _samples.libraryOf(key);
    const std::uint64_t mapping = library == nullptr ? 0 : mappingOf(*library);
    writeFunction(id, key);
    protozero::pbf_builder<Location> location(_profile, Profile::kLocation);
    location.add_uint64(Location::kId, id);
    if (mapping != 0) location.add_uint64(Location::kMappingId, mapping);
    location.add_uint64(Location::kAddress, addressOf(key, library));
    protozero::pbf_builder<Line> line(location, Location::kLine);
    line.add_uint64(Line::kFunctionId, id);
    if (const auto* function = _samples.findFunction(key); function != nullptr && function->line != 0)
      line.add_int64(Line::kLine, function->line);
    return id;
  }

  void writeFunction(std::uint64_t id, std::uint32_t key) {
    const std::int64_t name = _strings.indexOf(_samples.frameName(key));
    protozero::pbf_builder<Function> function(_profile, Profile::kFunction);
    function.add_uint64(Function::kId, id);
    // No system name: pprof regards a system name equal to the name as mangled, and cuts off parameters.
    function.add_int64(Function::kName, name);
    const ProfileTables::Function* known = _samples.findFunction(key);
    if (known == nullptr || known->file.empty()) return;
    function.add_int64(Function::kFile, _strings.indexOf(known->file));
    function.add_int64(Function::kStartLine, known->line);
  }

  std::uint64_t mappingOf(const ProfileTables::Library& library) {
    const std::uint64_t start = originalStart(library);
    const auto [place, isNew] = _mappings.try_emplace(&library, _mappings.size() + 1);
    if (!isNew) return place->second;
    protozero::pbf_builder<Mapping> mapping(_profile, Profile::kMapping);
    mapping.add_uint64(Mapping::kId, place->second);
    mapping.add_uint64(Mapping::kStart, start);
    mapping.add_uint64(Mapping::kLimit, start + library.size);
    mapping.add_int64(Mapping::kFile, _strings.indexOf(library.name));
    // Keeps pprof from searching for the file to symbolise the addresses itself.
    mapping.add_bool(Mapping::kHasFunctions, true);
    return place->second;
  }

  std::uint64_t originalStart(const ProfileTables::Library& library) const {
    const ProfileTables::Process* process = _samples.findProcess(library.pidKey);
    return _layout.original(process == nullptr ? 0 : process->pid, library.start);
  }

  /// Returns where the function begins in the process; of a library without symbols where that does.
  std::uint64_t addressOf(std::uint32_t key, const ProfileTables::Library* library) const {
    const ProfileTables::Function* function = _samples.findFunction(key);
    if (library == nullptr) return function == nullptr ? 0 : function->start;
    return originalStart(*library) + (function == nullptr ? 0 : library->offsetOf(*function));
  }

  OutputFile& _output;
  std::string _bytes;
  protozero::pbf_builder<Profile> _profile{_bytes};
  ThreadSamples _samples;
  TextTable _strings;
  LayoutFile _layout;
  std::map<std::uint32_t, std::uint64_t> _locations;
  std::map<const ProfileTables::Library*, std::uint64_t> _mappings;
};

const ExportFormat format("pprof", "gzipped protocol buffer for pprof", {.profile = true},
                          [](OutputFile& output) -> std::unique_ptr<Exporter> {
                            return std::make_unique<Pprof>(output);
                          });

}  // namespace

}  // namespace zelkit
