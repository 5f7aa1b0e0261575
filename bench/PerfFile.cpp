#include "PerfFile.h"

#include <fstream>

namespace {

constexpr std::size_t kFileHeaderSize = 104;
constexpr std::size_t kEventSize = 64;  // of the first perf_event_attr
constexpr std::size_t kAttributeSize = kEventSize + 16;

// Features of perf's file header: the trace-points' layouts, and descriptions of the machine.
constexpr unsigned int kLayouts = 1;
constexpr unsigned int kFirstMachineText = 3;

// Bits of perf_event_attr's sample_type.
constexpr std::uint64_t kIp = 1;
constexpr std::uint64_t kTid = 2;
constexpr std::uint64_t kTime = 4;
constexpr std::uint64_t kCallchain = 32;
constexpr std::uint64_t kId = 64;
constexpr std::uint64_t kCpu = 128;
constexpr std::uint64_t kPeriod = 256;
constexpr std::uint64_t kRaw = 1024;

constexpr unsigned int kSoftware = 1;
constexpr unsigned int kTracePoint = 2;

constexpr const char* kHeaderPage =
    "\tfield: u64 timestamp;\toffset:0;\tsize:8;\tsigned:0;\n"
    "\tfield: local_t commit;\toffset:8;\tsize:8;\tsigned:1;\n"
    "\tfield: int overwrite;\toffset:8;\tsize:1;\tsigned:1;\n"
    "\tfield: char data;\toffset:16;\tsize:4080;\tsigned:1;\n";
constexpr const char* kHeaderEvent =
    "# compressed entry header\n\ttype_len    :    5 bits\n\ttime_delta  :   27 bits\n\tarray       :   32 "
    "bits\n";
constexpr const char* kCommonFields =
    "\tfield:unsigned short common_type;\toffset:0;\tsize:2;\tsigned:0;\n"
    "\tfield:unsigned char common_flags;\toffset:2;\tsize:1;\tsigned:0;\n"
    "\tfield:unsigned char common_preempt_count;\toffset:3;\tsize:1;\tsigned:0;\n"
    "\tfield:int common_pid;\toffset:4;\tsize:4;\tsigned:1;\n\n";

std::string sized(const std::string& text) {
  return Bytes().u64(text.size()).append(text).str();
}

std::string named(const std::string& name) {
  return name + '\0';
}

std::string packText(const std::string& text) {
  constexpr std::size_t width = 64;
  return Bytes().u32(width).text(text, width).str();
}

std::string formatOf(const PerfFile::TracePoint& point) {
  return "name: " + point.name + "\nID: " + std::to_string(point.number) + "\nformat:\n" + kCommonFields +
         point.fields + "\nprint fmt: \"\"\n";
}

/// The section as the kernel's trace files are packed into it: page and event headers, the layouts by group,
/// and no symbols, formats of texts or names of tasks.
std::string packLayouts(const std::vector<PerfFile::TracePoint>& points) {
  std::map<std::string, std::vector<std::string>> groups;
  for (const PerfFile::TracePoint& point : points) groups[point.group].push_back(formatOf(point));
  Bytes section;
  section.u8(23).u8(8).u8(68).append("tracing").append(named("0.6")).u8(0).u8(8).u32(4096);
  section.append(named("header_page")).append(sized(kHeaderPage));
  section.append(named("header_event")).append(sized(kHeaderEvent));
  section.u32(0).u32(groups.size());
  for (const auto& [group, formats] : groups) {
    section.append(named(group)).u32(formats.size());
    for (const std::string& format : formats) section.append(sized(format));
  }
  return section.u32(0).u32(0).u64(0).str();
}

}  // namespace

PerfFile::PerfFile() {
  unsigned int number = kFirstMachineText;
  for (const char* text : {"host", "3.10", "3.10", "armv7l"}) _features[number++] = packText(text);
  _features[number++] = Bytes().u32(16).u32(16).str();  // processors
  for (const char* text : {"processor", "0"}) _features[number++] = packText(text);
  _features[number++] = Bytes().u64(2097152).str();  // kilobytes of memory
  _features[number++] = Bytes().u32(1).str() + packText("perf");
}

PerfFile PerfFile::ofSamples() {
  PerfFile file;
  file.attribute(kSoftware, 0, kIp | kTid | kTime | kCpu | kPeriod | kCallchain, 1);
  return file;
}

PerfFile PerfFile::ofTracePoints(const std::vector<TracePoint>& points) {
  PerfFile file;
  for (const TracePoint& point : points) {
    file.attribute(kTracePoint, point.number, kIp | kTid | kTime | kId | kCpu | kRaw, point.number);
    file._eventTypes.u64(point.number).text(point.group + ":" + point.name, 64);
  }
  file._features[kLayouts] = packLayouts(points);
  return file;
}

void PerfFile::attribute(unsigned int type, std::uint64_t config, std::uint64_t sampleType,
                         std::uint64_t id) {
  const std::string fields = Bytes().u32(type).u32(kEventSize).u64(config).u64(1).u64(sampleType).str();
  _attributes.push_back({Bytes().text(fields, kEventSize).str(), id});
}

void PerfFile::save(const std::string& path, const std::string& records) const {
  const std::size_t attributes = kFileHeaderSize + 8 * _attributes.size();
  const std::size_t attributesSize = kAttributeSize * _attributes.size();
  const std::size_t eventTypesSize = _eventTypes.str().size();
  const std::size_t data = attributes + attributesSize + eventTypesSize;

  Bytes file;
  file.append("PERFILE2").u64(kFileHeaderSize).u64(kAttributeSize).u64(attributes).u64(attributesSize);
  file.u64(data).u64(records.size()).u64(data - eventTypesSize).u64(eventTypesSize);
  std::uint64_t featureBits = 0;
  for (const auto& [number, section] : _features) featureBits |= std::uint64_t{1} << number;
  file.u64(featureBits).text("", 24);
  for (const Attribute& attribute : _attributes) file.u64(attribute.id);
  for (std::size_t i = 0; i < _attributes.size(); ++i)
    file.append(_attributes[i].event).u64(kFileHeaderSize + 8 * i).u64(8);
  file.append(_eventTypes.str());

  std::ofstream stream(path, std::ios::binary);
  stream << file.str() << records;
  std::size_t place = data + records.size() + 16 * _features.size();
  for (const auto& [number, section] : _features) {
    stream << Bytes().u64(place).u64(section.size()).str();
    place += section.size();
  }
  for (const auto& [number, section] : _features) stream << section;
}
