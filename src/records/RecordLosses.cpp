#include "records/RecordLosses.h"

#include <cstring>
#include <iterator>

#include "records/PerfRecordType.h"

namespace {

constexpr std::uint32_t kLastReadType = 16;
constexpr std::uint16_t kHeaderSize = 8;
constexpr std::uint16_t kLongestRecord = 256;

constexpr std::string_view kKernelTypes[] = {
    "",
    "MMAP",
    "LOST",
    "COMM",
    "EXIT",
    "THROTTLE",
    "UNTHROTTLE",
    "FORK",
    "READ",
    "SAMPLE",
    "MMAP2",
    "AUX",
    "ITRACE_START",
    "LOST_SAMPLES",
    "SWITCH",
    "SWITCH_CPU_WIDE",
    "NAMESPACES",
    "KSYMBOL",
    "BPF_EVENT",
    "CGROUP",
    "TEXT_POKE",
    "AUX_OUTPUT_HW_ID",
};

constexpr std::uint32_t kFirstOfPerf = 64;
constexpr std::string_view kTypesOfPerf[] = {
    "HEADER_ATTR",
    "HEADER_EVENT_TYPE",
    "HEADER_TRACING_DATA",
    "HEADER_BUILD_ID",
    "FINISHED_ROUND",
    "ID_INDEX",
    "AUXTRACE_INFO",
    "AUXTRACE",
    "AUXTRACE_ERROR",
    "THREAD_MAP",
    "CPU_MAP",
    "STAT_CONFIG",
    "STAT",
    "STAT_ROUND",
    "EVENT_UPDATE",
    "TIME_CONV",
    "HEADER_FEATURE",
    "COMPRESSED",
    "FINISHED_INIT",
    "COMPRESSED2",
};
static_assert(kFirstOfPerf + std::size(kTypesOfPerf) <= RecordLosses::kTypes);

}  // namespace

std::string_view recordTypeName(std::uint32_t type) {
  if (type < std::size(kKernelTypes)) return kKernelTypes[type];
  // A type below perf's first own type wraps to an index above the last.
  const std::uint32_t index = type - kFirstOfPerf;
  return index < std::size(kTypesOfPerf) ? kTypesOfPerf[index] : std::string_view();
}

void RecordLosses::countRejected(std::uint32_t type, std::uint16_t size) {
  if (type > kLastReadType) {
    if (size >= kHeaderSize && !recordTypeName(type).empty()) ++passedOver[type];
  } else if (type > 0 && size > kLongestRecord) {
    ++longRecords;
    if (type == PERF_RECORD_SAMPLE) ++longSamples;
  }
}

void RecordLosses::countPassedOver(std::uint32_t type, const char* record, std::size_t size) {
  ++passedOver[type];
  // In PERF_RECORD_LOST an id precedes the number.
  const std::size_t offset = type == PERF_RECORD_LOST ? 16 : 8;
  std::uint64_t lost = 0;
  if ((type != PERF_RECORD_LOST && type != PERF_RECORD_LOST_SAMPLES) || size < offset + sizeof lost) return;
  std::memcpy(&lost, record + offset, sizeof lost);
  lostByKernel += lost;
}
