#include "records/SampleLayout.h"

#include <cstddef>

namespace {

constexpr std::uint32_t kSoftware = 1;    // PERF_TYPE_SOFTWARE
constexpr std::uint32_t kTracePoint = 2;  // PERF_TYPE_TRACEPOINT
constexpr std::uint64_t kDummy = 9;       // PERF_COUNT_SW_DUMMY

/// The index is the number of the bit.
constexpr const char* kFields[] = {
    "ip",
    "tid",
    "time",
    "addr",
    "read",
    "callchain",
    "id",
    "cpu",
    "period",
    "stream_id",
    "raw",
    "branch_stack",
    "regs_user",
    "stack_user",
    "weight",
    "data_src",
    "identifier",
    "transaction",
    "regs_intr",
    "phys_addr",
    "aux",
    "cgroup",
    "data_page_size",
    "code_page_size",
    "weight_struct",
};

enum Field : unsigned int { ip, tid, time, addr, read, callchain, id, cpu, period, streamId, raw };
constexpr unsigned int kIdentifier = 16;

/// The order of the fields in a sample. Later fields are never read.
constexpr unsigned int kOrder[] = {kIdentifier, ip,  tid,    time, addr,      id,
                                   streamId,    cpu, period, read, callchain, raw};

struct ReadField {
  unsigned int field;
  const char* readAs;
};

constexpr ReadField kPlainLayout[] = {
    {ip, "address"}, {tid, "process"},   {time, "time"},
    {cpu, "core"},   {period, "period"}, {callchain, "back-trace"},
};
constexpr ReadField kTracePointLayout[] = {
    {ip, "address"}, {tid, "process"}, {time, "time"}, {id, "stream"}, {cpu, "core"}, {raw, "raw data"},
};

bool has(std::uint64_t sampleType, unsigned int field) {
  return (sampleType >> field & 1) != 0;
}

}  // namespace

std::string sampleFields(std::uint64_t sampleType) {
  std::string names;
  for (unsigned int field = 0; field < 64; ++field) {
    if (!has(sampleType, field)) continue;
    if (!names.empty()) names += ", ";
    names += field < std::size(kFields) ? kFields[field] : "field " + std::to_string(field);
  }
  return names;
}

std::string misplacedField(const RecordedEvent& event) {
  const auto& layout = isTracePoint(event) ? kTracePointLayout : kPlainLayout;
  const unsigned int* next = std::begin(kOrder);
  for (const ReadField& expected : layout) {
    while (next != std::end(kOrder) && !has(event.sampleType, *next)) ++next;
    if (next == std::end(kOrder)) return std::string("nothing is where the ") + expected.readAs + " is read";
    if (*next != expected.field)
      return std::string("the ") + kFields[*next] + " is where the " + expected.readAs + " is read";
    ++next;
  }
  return {};
}

bool isTracePoint(const RecordedEvent& event) {
  return event.type == kTracePoint;
}

bool hasNoSamples(const RecordedEvent& event) {
  return event.type == kSoftware && event.config == kDummy;
}
